// Walks of curves over a mesh, and the labels of the triangles beside the loops, told step by step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <queue>
#include <set>
#include <utility>
#include <vector>

#include "tests/reference/plain_adjacency.h"
#include "tests/reference/plain_lists.h"

namespace undercut::plain {

using Vertices = std::vector<T3DVEC>;

inline double dst_Segment(const T3DVEC& p, const T3DVEC& a, const T3DVEC& b) {
  if (a == b) return dst(p, a);
  const T3DVEC along = (b - a) / dst(a, b);
  const double s = dot(p - a, along);
  return s < 0.0 ? dst(p, a) : s > dst(a, b) ? dst(p, b) : dst(p, a + s * along);
}

// False where the walk does not come back to its start.
inline bool walk_Curve(const Vertices& vtx, const Triangles& tris, const Vertices& curve,
                       List& path) {
  uint32_t start = 0;
  for (uint32_t v = 1; v < vtx.size(); ++v)
    if (dst_Sqr(vtx[v], curve[0]) < dst_Sqr(vtx[start], curve[0])) start = v;
  const size_t n = curve.size();
  uint32_t here = start;
  for (size_t i = 0; i < n; ++i) {
    const T3DVEC from = curve[i], target = curve[(i + 1) % n];
    for (;;) {
      std::set<uint32_t> visited;
      std::vector<uint32_t> nearer;  // in the order of the triangles
      for (const T3DTRI& t : tris) {
        if (!has_Vtx(t, here)) continue;
        for (const uint32_t w : get_Corners(t))
          if (w != here && visited.insert(w).second &&
              dst_Sqr(vtx[w], target) < dst_Sqr(vtx[here], target))
            nearer.push_back(w);
      }
      if (nearer.empty()) break;
      if (i >= n / 2 && std::count(nearer.begin(), nearer.end(), start) > 0) {
        path.push_back(start);
        return true;
      }
      here = *std::min_element(nearer.begin(), nearer.end(), [&](uint32_t v, uint32_t w) {
        return dst_Segment(vtx[v], from, target) < dst_Segment(vtx[w], from, target);
      });
      path.push_back(here);
    }
  }
  return here == start;
}

// A label for each triangle; loops[k] are the loops of set k. False where a loop runs through a
// vertex that is no manifold point.
inline bool label_Sides(const Triangles& tris, uint32_t vertices,
                        const std::vector<std::vector<List>>& sets, List& label) {
  const Table at = list_AtVertices(tris, vertices);
  std::vector<bool> on_Curve(vertices);
  List follow(vertices);
  for (uint32_t v = 0; v < vertices; ++v) follow[v] = v;
  for (const std::vector<List>& loops : sets)
    for (const List& loop : loops)
      for (size_t i = 0; i < loop.size(); ++i) {
        follow[loop[i]] = loop[(i + 1) % loop.size()];
        on_Curve[loop[i]] = true;
      }
  for (uint32_t v = 0; v < vertices; ++v) {
    if (!on_Curve[v]) continue;
    for (const uint32_t t : at[v])
      if (is_Flat(tris[t])) return false;
    for (uint32_t w = 0; w < vertices; ++w)
      if (w != v && std::count_if(at[v].begin(), at[v].end(),
                                  [&](uint32_t t) { return has_Vtx(tris[t], w); }) > 2)
        return false;
  }
  label.assign(tris.size(), 0);
  for (uint32_t k = 0; k < sets.size(); ++k)
    for (const List& loop : sets[k])
      for (size_t i = 0; i < loop.size(); ++i)
        for (const uint32_t t : at[loop[i]])
          for (const auto& [p, q] : get_Edges(tris[t]))
            if (label[t] == 0 && p == loop[i] && q == loop[(i + 1) % loop.size()]) label[t] = k + 1;
  for (uint32_t k = 0; k < sets.size(); ++k)
    for (const List& loop : sets[k])
      for (const uint32_t v : loop)
        for (const uint32_t t : at[v]) {
          const T3DTRI& tri = tris[t];
          if (label[t] != 0 || !on_Curve[tri.a] || !on_Curve[tri.b] || !on_Curve[tri.c]) continue;
          uint32_t step = follow[tri.a];
          for (size_t i = 1; i < loop.size() && step != tri.b && step != tri.c; ++i)
            step = follow[step];
          if (step == tri.b) label[t] = k + 1;
        }
  std::queue<uint32_t> queue;
  for (uint32_t t = 0; t < tris.size(); ++t)
    if (label[t] != 0) queue.push(t);
  for (; !queue.empty(); queue.pop()) {
    const uint32_t t = queue.front();
    for (const auto& [p, q] : get_Edges(tris[t]))
      for (const uint32_t u : at[p])
        if (has_Vtx(tris[u], q) && label[u] == 0 && (!on_Curve[p] || !on_Curve[q])) {
          label[u] = label[t];
          queue.push(u);
        }
  }
  return true;
}

}  // namespace undercut::plain
