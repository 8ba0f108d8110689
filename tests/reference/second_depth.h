// Depths under overhangs without trees, adjacency lists and floods: patches by passing the lowest
// number on over edges until nothing changes, rims by counting edges, distances to every segment.
// For meshes without triangles with two equal corner indices.
#pragma once

#include <algorithm>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "tests/reference/second_rays.h"

namespace reference::second {

inline constexpr double kNoDepth = std::numeric_limits<double>::max();

using Edge = std::pair<uint32_t, uint32_t>;

class CEdges {
 public:
  explicit CEdges(const T3DMSH& msh) : msh_(msh), open_(msh.n_vtx) {
    for (uint32_t t = 0; t < msh.n_tri; ++t)
      for (const Edge& e : edges_Of(t)) at_[key(e)].push_back(t);
    for (const auto& [edge, triangles] : at_)
      if (triangles.size() == 1) open_[edge.first] = open_[edge.second] = true;
  }

  // By triangle the lowest triangle of its patch of the set; triangles outside have their own.
  std::vector<uint32_t> patches(const std::vector<bool>& set) const {
    std::vector<uint32_t> lowest(msh_.n_tri);
    for (uint32_t t = 0; t < msh_.n_tri; ++t) lowest[t] = t;
    for (bool changed = true; changed;) {
      changed = false;
      for (const auto& [edge, triangles] : at_)
        for (const uint32_t s : triangles)
          for (const uint32_t t : triangles)
            if (set[s] && set[t] && lowest[t] < lowest[s]) {
              lowest[s] = lowest[t];
              changed = true;
            }
    }
    return lowest;
  }

  // Edges of the set that it has once, less those between two ends of the mesh's own border. These
  // are dropped by putting the last in their place, and the one that is last in the end stays.
  std::vector<Edge> rim(const std::vector<bool>& set) const {
    std::vector<Edge> edges;
    for (uint32_t t = 0; t < msh_.n_tri; ++t)
      for (const Edge& e : edges_Of(t)) {
        const auto& triangles = at_.at(key(e));
        if (set[t] && std::count_if(triangles.begin(), triangles.end(),
                                    [&](uint32_t other) { return set[other]; }) == 1)
          edges.push_back(e);
      }
    for (size_t i = 0; i + 1 < edges.size();) {
      if (open_[edges[i].first] && open_[edges[i].second]) {
        edges[i] = edges.back();
        edges.pop_back();
      } else {
        ++i;
      }
    }
    return edges;
  }

 private:
  std::vector<Edge> edges_Of(uint32_t t) const {
    const T3DTRI& tri = msh_.tri[t];
    return {{tri.a, tri.b}, {tri.b, tri.c}, {tri.c, tri.a}};
  }
  static Edge key(const Edge& e) {
    return {std::min(e.first, e.second), std::max(e.first, e.second)};
  }

  T3DMSH msh_;
  std::map<Edge, std::vector<uint32_t>> at_;
  std::vector<bool> open_;  // by vertex: an end of the mesh's own border
};

// Distance across d from a point to a segment.
inline Real distance_Across(const TVec& d, const TVec& p, const TVec& a, const TVec& b) {
  const auto flat = [&](const TVec& v) { return minus(v, times(inner(v, d), d)); };
  const TVec along = flat(minus(b, a)), from = flat(minus(p, a));
  const Real square = inner(along, along);
  Real s = square == 0 ? 0 : inner(from, along) / square;
  s = std::min(std::max(s, Real(0)), Real(1));
  return length(minus(from, times(s, along)));
}

// Distance across d to a rim of a mesh; no depth for a rim without edges.
inline double distance_Rim(const T3DMSH& msh, const std::vector<Edge>& rim, const TVec& d,
                           const TVec& p) {
  Real least = kNoDepth;
  for (const auto& [a, b] : rim)
    least = std::min(least, distance_Across(d, p, to_Real(msh.vtx[a]), to_Real(msh.vtx[b])));
  return static_cast<double>(least);
}

inline std::vector<bool> where(const std::vector<Sight>& sight, Sight what) {
  std::vector<bool> set;
  set.reserve(sight.size());
  for (const Sight s : sight) set.push_back(s == what);
  return set;
}

// A patch's members in rising order; patches by their lowest triangle.
inline std::vector<std::vector<uint32_t>> list_Patches(const CEdges& edges,
                                                       const std::vector<bool>& set) {
  const std::vector<uint32_t> lowest = edges.patches(set);
  std::map<uint32_t, std::vector<uint32_t>> patches;
  for (uint32_t t = 0; t < set.size(); ++t)
    if (set[t]) patches[lowest[t]].push_back(t);
  std::vector<std::vector<uint32_t>> list;
  list.reserve(patches.size());
  for (auto& [first, members] : patches) list.push_back(members);
  return list;
}

// A triangle's depth for each patch of a set that has a rim, along d, in a mesh of its own.
inline void fill_Patches(const T3DMSH& msh, const CEdges& edges, const std::vector<bool>& set,
                         const TVec& d, std::vector<double>& depth) {
  for (const std::vector<uint32_t>& patch : list_Patches(edges, set)) {
    std::vector<bool> alone(msh.n_tri);
    for (const uint32_t t : patch) alone[t] = true;
    const std::vector<Edge> rim = edges.rim(alone);
    for (const uint32_t t : patch) depth[t] = distance_Rim(msh, rim, d, middle(facet(msh, t)));
  }
}

inline void clear_Outside(const std::vector<bool>& selected, std::vector<double>& depth) {
  for (size_t t = 0; t < depth.size(); ++t)
    if (!selected[t]) depth[t] = 0;
}

// The depth of each triangle of a mesh that shades itself. A triangle that one axis has seen is no
// part of the patches of later axes. Patches whose number times the area of the triangle of the
// patch's index is not above `least` count as seen; 0: all count.
inline std::vector<double> depth_Own(const T3DMSH& msh, const std::vector<T3DRAY>& axes,
                                     double lift, const std::vector<bool>& selected,
                                     double least = 0) {
  const CEdges edges(msh);
  const std::vector<TFacet> obstacle = facets(msh);
  std::vector<double> depth(msh.n_tri, kNoDepth);
  std::vector<bool> seen(msh.n_tri);
  for (const T3DRAY& axis : axes) {
    const TVec d = against(axis);
    const std::vector<Sight> sight = look(msh, obstacle, d, lift);
    std::vector<bool> hidden = where(sight, Sight::kHidden);
    for (uint32_t t = 0; t < msh.n_tri; ++t) {
      if (sight[t] == Sight::kSeen) seen[t] = true;
      if (seen[t]) depth[t] = 0, hidden[t] = false;
    }
    std::vector<double> now(msh.n_tri, kNoDepth);
    fill_Patches(msh, edges, hidden, d, now);
    const auto patches = list_Patches(edges, hidden);
    for (uint32_t j = 0; j < patches.size(); ++j) {
      const Real area = length(across(facet(msh, j))) / 2 * static_cast<Real>(patches[j].size());
      for (const uint32_t t : patches[j])
        depth[t] = least > 0 && area <= least ? 0 : std::min(depth[t], now[t]);
    }
  }
  clear_Outside(selected, depth);
  return depth;
}

inline void join(std::vector<T3DVEC>& vtx, std::vector<T3DTRI>& tri, const T3DMSH& msh) {
  const auto base = static_cast<uint32_t>(vtx.size());
  vtx.insert(vtx.end(), msh.vtx, msh.vtx + msh.n_vtx);
  for (uint32_t t = 0; t < msh.n_tri; ++t)
    tri.push_back({msh.tri[t].a + base, msh.tri[t].b + base, msh.tri[t].c + base});
}

// The depth of each triangle of a mesh that shades itself and that others shade. Each axis stands
// for itself; where both shade a triangle the deeper one decides.
inline std::vector<double> depth_Both(const T3DMSH& msh, const std::vector<T3DMSH>& others,
                                      const std::vector<T3DRAY>& axes, double lift,
                                      const std::vector<bool>& selected) {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  for (const T3DMSH& other : others) join(vtx, tri, other);
  const T3DMSH sum = {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
                      static_cast<uint32_t>(tri.size())};
  const CEdges own_edges(msh), sum_edges(sum);
  const std::vector<TFacet> own = facets(msh), add = facets(sum);
  std::vector<double> depth(msh.n_tri, kNoDepth);
  for (const T3DRAY& axis : axes) {
    const TVec d = against(axis);
    const std::vector<Sight> by_own = look(msh, own, d, lift), by_add = look(msh, add, d, lift);
    const std::vector<Edge> rim = sum_edges.rim(where(look(sum, add, d, lift), Sight::kHidden));
    std::vector<double> rho(msh.n_tri, kNoDepth);
    fill_Patches(msh, own_edges, where(by_own, Sight::kHidden), d, rho);
    for (uint32_t t = 0; t < msh.n_tri; ++t) {
      if (by_own[t] == Sight::kNone) continue;
      double now = 0;
      if (by_own[t] == Sight::kHidden) now = rho[t];
      if (by_add[t] == Sight::kHidden)
        now = std::max(now, distance_Rim(sum, rim, d, middle(facet(msh, t))));
      depth[t] = std::min(depth[t], now);
    }
  }
  clear_Outside(selected, depth);
  return depth;
}

}  // namespace reference::second
