// What is seen of regions and of their rims, with rays against every triangle.
#pragma once

#include <set>
#include <vector>

#include "interface/exports.h"
#include "tests/reference/plain_undercut.h"

namespace reference {

constexpr double kNoShare = 1.7976931348623157e+308;

// The seen part of each region. A triangle that is listed twice counts twice.
inline TUcStat rate_Surface(const T3DMSH& msh, const std::vector<uint32_t>& region,
                            const T3DRAY& axis, double lift) {
  TUcStat stat = {};
  stat.seen = 1;
  std::vector<uint32_t> seen;
  for (const uint32_t t : region) {
    const TRated tri = look_At(msh, t);
    if (!tri.rated) continue;
    if (sees(msh, tri, lift, -tool_Of(axis)))
      seen.push_back(t);
    else
      stat.seen = 0;
  }
  for (const uint32_t t : seen) stat.area_seen = stat.area_seen + look_At(msh, t).area;
  for (const uint32_t t : region) stat.area = stat.area + look_At(msh, t).area;
  stat.share = stat.area == 0 ? kNoShare : stat.area_seen / stat.area;
  return stat;
}

struct TRimEdge {
  uint32_t a, b;
};

inline bool holds(const T3DMSH& msh, uint32_t t, uint32_t v) {
  return msh.tri[t].a == v || msh.tri[t].b == v || msh.tri[t].c == v;
}

// The edges of a set of triangles that no second triangle of it has: by triangle, then corner.
inline std::vector<TRimEdge> list_Rim(const T3DMSH& msh, const std::set<uint32_t>& set) {
  std::vector<TRimEdge> rim;
  for (const uint32_t t : set) {
    const uint32_t corners[] = {msh.tri[t].a, msh.tri[t].b, msh.tri[t].c, msh.tri[t].a};
    for (int k = 0; k < 3; ++k) {
      bool shared = false;
      for (const uint32_t j : set)
        shared = shared || (j != t && holds(msh, j, corners[k]) && holds(msh, j, corners[k + 1]));
      if (!shared) rim.push_back({corners[k], corners[k + 1]});
    }
  }
  return rim;
}

// The triangle of the set at an edge: from those at its first end, then from those at its second,
// by rising index; -1 if there is none.
inline int64_t find_AtEdge(const T3DMSH& msh, const std::set<uint32_t>& set, const TRimEdge& edge) {
  for (const uint32_t end : {edge.a, edge.b})
    for (uint32_t t = 0; t < msh.n_tri; ++t)
      if (holds(msh, t, end) && set.count(t) && holds(msh, t, edge.a) && holds(msh, t, edge.b))
        return t;
  return -1;
}

// The seen part of the rim of each region.
inline TUcStat rate_Rim(const T3DMSH& msh, const std::vector<uint32_t>& region, const T3DRAY& axis,
                        double lift) {
  const std::set<uint32_t> set(region.begin(), region.end());
  TUcStat stat = {};
  stat.seen = 1;
  double length = 0, length_seen = 0;
  for (const TRimEdge& edge : list_Rim(msh, set)) {
    ++stat.rim;
    const T3DVEC a = msh.vtx[edge.a], b = msh.vtx[edge.b], e = b - a;
    const double l = std::sqrt(e.x * e.x + e.y * e.y + e.z * e.z);
    length = length + l;
    const int64_t t = find_AtEdge(msh, set, edge);
    if (t < 0) continue;
    const TRated tri = look_At(msh, static_cast<uint32_t>(t));
    if (!tri.rated) continue;
    const T3DVEC middle = {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
    if (any_Hit(msh, {middle + lift * tri.normal, -tool_Of(axis)})) {
      stat.seen = 0;
    } else {
      ++stat.rim_seen;
      length_seen = length_seen + l;
    }
  }
  stat.share = length == 0 ? kNoShare : length_seen / length;
  return stat;
}

}  // namespace reference
