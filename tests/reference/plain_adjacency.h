// Adjacency, boundaries, chains, components and repair in their plainest form: all pairs of
// triangles, union-find, maps of edges, rounds over everything. Slow, and meant to be obviously
// right.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <numeric>
#include <set>
#include <utility>
#include <vector>

#include "foundation/values.h"

namespace undercut::plain {

using Triangles = std::vector<T3DTRI>;
using Set = std::vector<bool>;
using Table = std::vector<std::vector<uint32_t>>;
using Edge = std::pair<uint32_t, uint32_t>;

inline std::array<uint32_t, 3> get_Corners(const T3DTRI& t) { return {t.a, t.b, t.c}; }

inline std::array<Edge, 3> get_Edges(const T3DTRI& t) {
  return {Edge{t.a, t.b}, Edge{t.b, t.c}, Edge{t.c, t.a}};
}

// Per vertex the triangles at it, once for each corner.
inline Table list_AtVertices(const Triangles& tris, uint32_t vertices) {
  Table at(vertices);
  for (uint32_t t = 0; t < tris.size(); ++t)
    for (const uint32_t v : get_Corners(tris[t])) at[v].push_back(t);
  return at;
}

// Per triangle its neighbours, from all pairs: over its edges (p, q), each other triangle that has
// both ends, as often as p is among its corners.
inline Table list_Neighbours(const Triangles& tris) {
  Table table(tris.size());
  for (uint32_t i = 0; i < tris.size(); ++i)
    for (const auto& [p, q] : get_Edges(tris[i]))
      for (uint32_t j = 0; j < tris.size(); ++j) {
        if (j == i || !has_Vtx(tris[j], q)) continue;
        for (const uint32_t v : get_Corners(tris[j]))
          if (v == p) table[i].push_back(j);
      }
  return table;
}

// The boundary of a set, from a map of how many of its triangles have both of two vertices (or one,
// taken twice).
inline std::vector<Edge> list_Boundary(const Triangles& tris, const Set& set) {
  std::map<Edge, std::set<uint32_t>> users;
  for (uint32_t t = 0; t < tris.size(); ++t)
    for (const uint32_t p : get_Corners(tris[t]))
      for (const uint32_t q : get_Corners(tris[t]))
        if (set[t]) users[{p, q}].insert(t);
  std::vector<Edge> boundary;
  for (uint32_t t = 0; t < tris.size(); ++t)
    for (const Edge& edge : get_Edges(tris[t]))
      if (set[t] && users[edge].size() == 1) boundary.push_back(edge);
  return boundary;
}

// The chains of directed edges: each linked backwards while a stack walks it, then turned round.
inline Table list_Chains(const std::vector<Edge>& edges, uint32_t vertices) {
  Table at(vertices);
  for (uint32_t e = 0; e < edges.size(); ++e) {
    at[edges[e].first].push_back(e);
    at[edges[e].second].push_back(e);
  }
  Table chains;
  std::vector<bool> seen(vertices);
  const auto walk = [&](uint32_t start) {
    std::vector<uint32_t> chain, stack = {start};
    seen[start] = true;
    while (!stack.empty()) {
      const uint32_t v = stack.back();
      stack.pop_back();
      chain.insert(chain.begin(), v);
      for (const uint32_t e : at[v])
        if (const uint32_t w = edges[e].second; !seen[w]) {
          seen[w] = true;
          stack.push_back(w);
        }
    }
    std::reverse(chain.begin(), chain.end());
    chains.push_back(chain);
  };
  for (uint32_t v = 0; v < vertices; ++v)
    if (at[v].size() == 1 && edges[at[v][0]].first == v) walk(v);
  for (uint32_t v = 0; v < vertices; ++v)
    if (!at[v].empty() && !seen[v]) walk(v);
  return chains;
}

// Components by breadth-first search with a queue, each list turned round as a linked list that
// grows at its head would be.
inline Table search_Components(const Table& neighbours, const Set& set) {
  Table components;
  Set seen(set.size());
  for (uint32_t t = 0; t < set.size(); ++t) {
    if (!set[t] || seen[t]) continue;
    std::vector<uint32_t> component = {t};
    std::deque<uint32_t> queue = {t};
    seen[t] = true;
    for (; !queue.empty(); queue.pop_front())
      for (const uint32_t n : neighbours[queue.front()])
        if (set[n] && !seen[n]) {
          seen[n] = true;
          component.insert(component.begin(), n);
          queue.push_back(n);
        }
    components.push_back(component);
  }
  return components;
}

// The partition into components by union-find over shared pairs of vertices, each component sorted.
// For triangles with three different corners.
inline std::set<std::vector<uint32_t>> join_Components(const Triangles& tris, const Set& set) {
  std::vector<uint32_t> parent(tris.size());
  std::iota(parent.begin(), parent.end(), 0u);
  const auto find_Root = [&](uint32_t t) {
    while (parent[t] != t) t = parent[t];
    return t;
  };
  std::map<Edge, uint32_t> first;
  for (uint32_t t = 0; t < tris.size(); ++t)
    for (const auto& [p, q] : get_Edges(tris[t]))
      if (set[t]) {
        const auto [at, is_New] = first.insert({std::minmax(p, q), t});
        if (!is_New) parent[find_Root(t)] = find_Root(at->second);
      }
  std::map<uint32_t, std::vector<uint32_t>> members;
  for (uint32_t t = 0; t < tris.size(); ++t)
    if (set[t]) members[find_Root(t)].push_back(t);
  std::set<std::vector<uint32_t>> components;
  for (const auto& [root, component] : members) components.insert(component);
  return components;
}

// Vertices with an edge of more than two triangles, or at a triangle with equal corners.
inline Set flag_Bows(const Triangles& tris, uint32_t vertices) {
  Set flags(vertices);
  for (uint32_t v = 0; v < vertices; ++v) {
    std::map<uint32_t, std::set<uint32_t>> users;
    for (uint32_t t = 0; t < tris.size(); ++t) {
      if (!has_Vtx(tris[t], v)) continue;
      if (is_Flat(tris[t])) flags[v] = true;
      for (const uint32_t w : get_Corners(tris[t]))
        if (w != v) users[w].insert(t);
    }
    for (const auto& [w, triangles] : users)
      if (triangles.size() > 2) flags[v] = true;
  }
  return flags;
}

// The repair of a list, in whole rounds. Tells the number of rounds of the search for bow ties.
inline std::vector<uint32_t> repair(const Triangles& tris, uint32_t vertices,
                                    const std::vector<uint32_t>& lst, uint32_t& rounds) {
  const Table at = list_AtVertices(tris, vertices);
  Set rejected(tris.size()), listed(tris.size());
  for (const uint32_t t : lst) listed[t] = true;
  for (const uint32_t t : lst)
    if (is_Flat(tris[t])) rejected[t] = true;
  const Set before = rejected;
  for (const uint32_t t : lst)
    for (const auto& [p, q] : get_Edges(tris[t])) {
      const uint32_t end = q;
      const auto users = std::count_if(at[p].begin(), at[p].end(), [&](uint32_t j) {
        return !before[j] && has_Vtx(tris[j], end);
      });
      if (!before[t] && users > 2) rejected[t] = true;
    }
  Set marked(vertices);
  rounds = 0;
  for (bool found = true; found; ++rounds) {
    found = false;
    for (uint32_t v = 0; v < vertices; ++v) {
      std::map<uint32_t, uint32_t> opposite;
      for (const uint32_t j : at[v])
        for (const uint32_t w : get_Corners(tris[j]))
          if (listed[j] && !rejected[j] && w != v) ++opposite[w];
      const auto ends = std::count_if(opposite.begin(), opposite.end(),
                                      [](const auto& entry) { return entry.second == 1; });
      if (marked[v] || ends <= 2) continue;
      marked[v] = found = true;
    }
    for (uint32_t v = 0; v < vertices; ++v)
      for (const uint32_t j : at[v])
        if (marked[v]) rejected[j] = true;
  }
  const Table neighbours = list_Neighbours(tris);
  std::set<uint32_t> best;
  Set seen(tris.size());
  for (const uint32_t t : lst) {
    if (rejected[t] || seen[t]) continue;
    std::set<uint32_t> patch = {t};
    std::deque<uint32_t> queue = {t};
    for (; !queue.empty(); queue.pop_front())
      for (const uint32_t n : neighbours[queue.front()])
        if (listed[n] && !rejected[n] && patch.insert(n).second) queue.push_back(n);
    for (const uint32_t n : patch) seen[n] = true;
    if (patch.size() > best.size()) best = patch;
  }
  std::vector<uint32_t> kept;
  for (const uint32_t t : lst)
    if (best.count(t)) kept.push_back(t);
  return kept;
}

}  // namespace undercut::plain
