// Depth fields, one triangle and one axis after the other: rays against every triangle by another
// method, patches from all pairs of triangles, distances from walks along whole rims.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "tests/reference/plain_adjacency.h"
#include "tests/reference/plain_undercut.h"

namespace reference {

using undercut::plain::Edge;

inline constexpr double kNoAnswer = 1.7976931348623157e+308;

struct TLong {
  long double x, y, z;
};
inline TLong to_Long(const T3DVEC& v) { return {v.x, v.y, v.z}; }
inline TLong minus(const TLong& a, const TLong& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline long double times(const TLong& a, const TLong& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline TLong across(const TLong& a, const TLong& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The intersection in barycentric coordinates (T. Moeller, B. Trumbore, 1997).
inline bool crosses(const T3DRAY& ray, const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
  const TLong d = to_Long(ray.dir), u = minus(to_Long(b), to_Long(a));
  const TLong v = minus(to_Long(c), to_Long(a)), s = minus(to_Long(ray.org), to_Long(a));
  const TLong p = across(d, v), q = across(s, u);
  const long double det = times(u, p);
  if (det == 0) return false;
  const long double beta = times(s, p) / det, gamma = times(d, q) / det;
  return beta >= 0 && gamma >= 0 && beta + gamma <= 1 && times(v, q) / det > 0;
}

inline bool is_Blocked(const T3DMSH& obstacle, const TRated& tri, double lift, const T3DVEC& d) {
  const T3DRAY ray = {tri.centre + lift * tri.normal, d};
  for (uint32_t t = 0; t < obstacle.n_tri; ++t)
    if (crosses(ray, obstacle.vtx[obstacle.tri[t].a], obstacle.vtx[obstacle.tri[t].b],
                obstacle.vtx[obstacle.tri[t].c]))
      return true;
  return false;
}

// The distance of a triangle's centroid from the nearest of the edges, across an axis.
using Distance = std::function<double(const T3DMSH& msh, const T3DVEC& centre,
                                      const std::vector<Edge>& rim, const T3DRAY& axis)>;

// In space, by what is left of each vector across the direction.
inline double measure_InSpace(const T3DMSH& msh, const T3DVEC& centre, const std::vector<Edge>& rim,
                              const T3DRAY& axis) {
  const TLong z = to_Long(tool_Of(axis));
  const auto flat = [&](const TLong& v) {
    const long double along = times(v, z) / times(z, z);
    return TLong{v.x - along * z.x, v.y - along * z.y, v.z - along * z.z};
  };
  long double best = kNoAnswer;
  for (const auto& [from, to] : rim) {
    const TLong e = flat(minus(to_Long(msh.vtx[to]), to_Long(msh.vtx[from])));
    const TLong w = flat(minus(to_Long(centre), to_Long(msh.vtx[from])));
    const long double square = times(e, e);
    const long double s = square > 0 ? std::clamp(times(w, e) / square, 0.0L, 1.0L) : 0.0L;
    const TLong gap = minus(w, {s * e.x, s * e.y, s * e.z});
    best = std::min(best, std::sqrt(times(gap, gap)));
  }
  return static_cast<double>(best);
}

// The topology of a mesh: neighbours, and the ends of its own open border.
struct TPlainTopology {
  undercut::plain::Triangles tris;
  undercut::plain::Table neighbours;
  std::vector<bool> open_end;

  explicit TPlainTopology(const T3DMSH& msh)
      : tris(msh.tri, msh.tri + msh.n_tri),
        neighbours(undercut::plain::list_Neighbours(tris)),
        open_end(msh.n_vtx) {
    for (const auto& [a, b] :
         undercut::plain::list_Boundary(tris, std::vector<bool>(msh.n_tri, true)))
      open_end[a] = open_end[b] = true;
  }

  // The border of a set, less what lies on the open border; the last edge is never looked at.
  std::vector<Edge> find_Rim(const std::vector<bool>& set) const {
    std::vector<Edge> rim = undercut::plain::list_Boundary(tris, set);
    size_t i = 0;
    while (!rim.empty() && i < rim.size() - 1) {
      if (!open_end[rim[i].first] || !open_end[rim[i].second]) {
        ++i;
        continue;
      }
      rim[i] = rim.back();
      rim.pop_back();
    }
    return rim;
  }
};

struct TPlainDepth {
  T3DMSH view, start, obstacle;  // patches; where rays start; what they meet
  std::vector<T3DRAY> axi;
  double lift = 0.001, smallest = 0;
  Distance distance = measure_InSpace;
};

inline std::vector<double> find_Depth(const TPlainDepth& in) {
  const TPlainTopology topology(in.view);
  const uint32_t count = in.view.n_tri;
  std::vector<double> depth(count, kNoAnswer);
  std::vector<bool> seen(count);
  for (const T3DRAY& axis : in.axi) {
    std::vector<bool> hidden(count);
    for (uint32_t t = 0; t < count; ++t) {
      const TRated start = look_At(in.start, t);
      if (seen[t] || !start.rated) continue;
      const bool blocked = is_Blocked(in.obstacle, start, in.lift, -tool_Of(axis));
      (blocked ? hidden : seen)[t] = true;
      if (!blocked) depth[t] = 0;
    }
    const auto patches = undercut::plain::search_Components(topology.neighbours, hidden);
    for (uint32_t j = 0; j < patches.size(); ++j) {
      std::vector<bool> patch(count);
      double rated = 0;
      for (const uint32_t t : patches[j]) {
        patch[t] = true;
        rated = rated + look_At(in.view, j).area;
      }
      const std::vector<Edge> rim = topology.find_Rim(patch);
      for (const uint32_t t : patches[j]) {
        if (in.smallest > 0 && rated <= in.smallest)
          depth[t] = 0;
        else if (!rim.empty())
          depth[t] =
              std::min(depth[t], in.distance(in.view, look_At(in.view, t).centre, rim, axis));
      }
    }
  }
  return depth;
}

// A mesh in its own shadow and in that of another, `sum`: the deeper of the two on each axis, the
// least over the axes.
inline std::vector<double> find_JointDepth(const T3DMSH& msh, const T3DMSH& sum,
                                           const std::vector<T3DRAY>& axi, double lift,
                                           const Distance& distance) {
  const TPlainTopology topology(msh), sum_topology(sum);
  std::vector<double> depth(msh.n_tri, kNoAnswer);
  const auto list_Hidden = [&](const T3DMSH& of, const T3DMSH& by, const T3DRAY& axis) {
    std::vector<bool> hidden(of.n_tri);
    for (uint32_t t = 0; t < of.n_tri; ++t) {
      const TRated start = look_At(of, t);
      hidden[t] = start.rated && is_Blocked(by, start, lift, -tool_Of(axis));
    }
    return hidden;
  };
  for (const T3DRAY& axis : axi) {
    const auto own = list_Hidden(msh, msh, axis), add = list_Hidden(msh, sum, axis);
    const auto sum_rim = sum_topology.find_Rim(list_Hidden(sum, sum, axis));
    std::vector<double> from_own(msh.n_tri, kNoAnswer);
    for (const auto& patch : undercut::plain::search_Components(topology.neighbours, own)) {
      std::vector<bool> set(msh.n_tri);
      for (const uint32_t t : patch) set[t] = true;
      const std::vector<Edge> rim = topology.find_Rim(set);
      for (const uint32_t t : patch)
        if (!rim.empty()) from_own[t] = distance(msh, look_At(msh, t).centre, rim, axis);
    }
    for (uint32_t t = 0; t < msh.n_tri; ++t) {
      const TRated tri = look_At(msh, t);
      if (!tri.rated) continue;
      double here = own[t] ? from_own[t] : 0;
      if (add[t])
        here =
            std::max(here, sum_rim.empty() ? kNoAnswer : distance(sum, tri.centre, sum_rim, axis));
      depth[t] = std::min(depth[t], here);
    }
  }
  return depth;
}

}  // namespace reference
