// What axes and poses don't reach, one triangle after the other, with rays against every triangle.
#pragma once

#include <set>
#include <vector>

#include "tests/reference/plain_ratings.h"

namespace reference {

inline bool is_Zero(const T3DVEC& v) { return v.x == 0 && v.y == 0 && v.z == 0; }

inline T3DVEC scale_ToOne(const T3DVEC& v) {
  const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  return length == 0 ? v : T3DVEC{v.x / length, v.y / length, v.z / length};
}

// A frame is made from a record with a unit direction, which it scales once more.
inline T3DVEC tool_Of(const T3DRAY& axis) {
  const T3DVEC d = scale_ToOne(axis.dir);
  return is_Zero(d) ? T3DVEC{0, 0, 1} : scale_ToOne(d);
}

// Each triangle with corners of its own, moved away from its centroid. A corner on the centroid
// stays.
struct TPlainSoup {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  T3DMSH msh() {
    return {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
            static_cast<uint32_t>(tri.size())};
  }
};

inline TPlainSoup grow_Triangles(const T3DMSH& msh, double distance) {
  TPlainSoup soup;
  for (uint32_t i = 0; i < msh.n_tri; ++i) {
    const T3DVEC corners[] = {msh.vtx[msh.tri[i].a], msh.vtx[msh.tri[i].b], msh.vtx[msh.tri[i].c]};
    const T3DVEC sum = corners[0] + corners[1] + corners[2];
    const T3DVEC g = {sum.x / 3, sum.y / 3, sum.z / 3};
    for (const T3DVEC& p : corners) {
      const T3DVEC e = p - g;
      const double t = 1 + distance / std::sqrt(e.x * e.x + e.y * e.y + e.z * e.z);
      soup.vtx.push_back(is_Zero(e) ? p : (1 - t) * g + t * p);
    }
    soup.tri.push_back({3 * i, 3 * i + 1, 3 * i + 2});
  }
  return soup;
}

// A byte for each triangle, 1 for undercut. `roi` may be null; triangles with two equal corners in
// `msh` are never tested. Rays start from `test` and are tested on it.
inline std::vector<uint8_t> find_Undercut(const T3DMSH& msh, const T3DMSH& test,
                                          const std::vector<uint32_t>* roi,
                                          const std::vector<T3DRAY>& axi, double lift) {
  std::vector<uint8_t> done(msh.n_tri, 0);
  const size_t active = roi ? roi->size() : msh.n_tri;
  if (active != msh.n_tri) {
    done.assign(msh.n_tri, 1);
    for (const uint32_t t : *roi) done[t] = 0;
  }
  for (size_t i = 0; i < active; ++i) {
    const uint32_t t = roi ? (*roi)[i] : static_cast<uint32_t>(i);
    if (!look_At(msh, t).rated) continue;
    const TRated start = look_At(test, t);
    for (const T3DRAY& axis : axi) {
      if (done[t]) break;
      if (sees(test, start, lift, -tool_Of(axis))) done[t] = 1;
    }
  }
  for (uint8_t& byte : done) byte = !byte;
  return done;
}

// The triangles that reach into the band of a pose, by rising index.
inline std::set<uint32_t> find_Band(const T3DMSH& msh, const T3DRAY& ray, const T3DVEC& pose,
                                    double width) {
  const T3DVEC u = scale_ToOne(ray.dir), v = scale_ToOne(pose);
  const T3DVEC w = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  std::set<uint32_t> band;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const uint32_t corners[] = {msh.tri[t].a, msh.tri[t].b, msh.tri[t].c};
    bool all_below = true, all_above = true;
    for (const uint32_t c : corners) {
      const T3DVEC low = msh.vtx[c] - (ray.org + (-width / 2) * w);
      const T3DVEC high = msh.vtx[c] - (ray.org + (width / 2) * w);
      all_below = all_below && w.x * low.x + w.y * low.y + w.z * low.z < 0;
      all_above = all_above && w.x * high.x + w.y * high.y + w.z * high.z > 0;
    }
    if (!all_below && !all_above) band.insert(t);
  }
  return band;
}

// For each pose the triangles of its band, and those among them that the obstacle leaves free.
struct TBand {
  std::set<uint32_t> all, seen, blocked;
};

inline std::vector<TBand> follow_Corridor(const T3DMSH& msh, const T3DMSH& obstacle,
                                          const T3DRAY& ray, const std::vector<T3DRAY>& axi,
                                          double width, double lift) {
  std::vector<TBand> bands;
  for (const T3DRAY& axis : axi) {
    TBand band;
    band.all = find_Band(msh, ray, axis.dir, width);
    for (const uint32_t t : band.all) {
      const TRated start = look_At(msh, t);
      if (!start.rated) continue;
      const T3DVEC lifted = start.centre + lift * start.normal;
      (any_Hit(obstacle, {lifted, -axis.dir}) ? band.blocked : band.seen).insert(t);
    }
    bands.push_back(band);
  }
  return bands;
}

}  // namespace reference
