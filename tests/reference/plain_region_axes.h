// The searches that find an axis for each region as plain programs: no tree, no prepared arrays, no
// threads. Codes are those of the exports.
#pragma once

#include <optional>

#include "tests/reference/plain_axis.h"

namespace reference {

struct TGolden {
  double tilt, rating;
  double low, high;  // the bracket that is left
  unsigned iterations;
};

inline double rate_Folded(double x, double phi, const Rating& f) {
  if (x >= -360 && x < -180) return f(360 + x, phi);
  if (x >= -180 && x < 0) return f(-x, phi + 180);
  if (x >= 180 && x <= 360) return f(360 - x, phi + 180);
  return f(x, phi);
}

inline TGolden search_Golden(double lo, double hi, double phi, double eps, unsigned limit,
                             const Rating& rating) {
  const auto f = [&](double x) { return rate_Folded(x, phi, rating); };
  const double c = 0.6180339887498949;
  double x2 = (hi - lo) * c + lo, x1 = (hi - x2) + lo;
  double f1 = f(x1), f2 = f(x2);
  unsigned i = 0;
  while (i < limit) {
    const double old_x1 = x1, old_x2 = x2, old_f1 = f1, old_f2 = f2;
    if (old_f2 <= old_f1) {
      x2 = 2 * old_x1 - lo;
      lo = old_x1;
      x1 = old_x2;
      f1 = old_f2;
      f2 = f(x2);
    } else {
      hi = old_x2;
      x2 = old_x1;
      f2 = old_f1;
      x1 = (old_x2 - old_x1) + lo;
      f1 = f(x1);
    }
    if (std::fabs(hi - lo) < eps) break;
    if (!(lo < x1)) break;
    if (!(x1 < x2)) break;
    if (!(x2 < hi)) break;
    ++i;
  }
  if (f2 <= f1) return {x2, f2, lo, hi, i};
  return {x1, f1, lo, hi, i};
}

// The triangles of a region; none stands for the whole mesh.
using Region = std::optional<std::vector<uint32_t>>;

struct TRegionAxes {
  int32_t code;
  std::vector<T3DFRM> frames;
};

struct TTiltSettings {
  double th0 = -25, th1 = 25, phi = 90, eps = 0.1;
  unsigned limit = 50, intervals = 20;
  double weight = 0.01, lift = 0.001;
};

inline std::vector<uint32_t> list_Rated(const T3DMSH& msh, const Region& region) {
  if (region) return *region;
  std::vector<uint32_t> all;
  for (uint32_t t = 0; t < msh.n_tri; ++t) all.push_back(t);
  return all;
}

inline T3DVEC centre_Of(const T3DMSH& msh, const Region& region) {
  if (!region) return mean_Point(msh);
  T3DVEC mean = {0, 0, 0};
  double i = 0;
  for (const uint32_t t : *region) {
    const T3DVEC sum = msh.vtx[msh.tri[t].a] + msh.vtx[msh.tri[t].b] + msh.vtx[msh.tri[t].c];
    mean = (i / (i + 1)) * mean + (1 / (i + 1)) * T3DVEC{sum.x / 3, sum.y / 3, sum.z / 3};
    i = i + 1;
  }
  return mean;
}

inline T3DFRM frame_Along(const T3DVEC& centre, double theta, double phi) {
  const T3DVEC d = direction_Of(theta, phi);
  return undercut::frm_Ray({centre, {-d.x, -d.y, -d.z}});
}

inline TRegionAxes find_4ay(const T3DMSH& msh, const std::vector<Region>& regions,
                            const TTiltSettings& set) {
  TRegionAxes out = {0, {}};
  for (const Region& region : regions) {
    const std::vector<uint32_t> list = list_Rated(msh, region);
    const Rating rating = [&](double theta, double phi) {
      return rate_5ax(msh, set.weight, set.lift, list, theta, phi);
    };
    const double step = (set.th1 - set.th0) / set.intervals;
    double least = 1.7976931348623157e+308;
    unsigned best = 0;
    for (unsigned k = 0; k <= set.intervals; ++k) {
      const double value = rate_Folded(k * step + set.th0, set.phi, rating);
      if (!(value < least)) continue;
      least = value;
      best = k;
    }
    if (least == 1.7976931348623157e+308) return {-19, {}};
    const double x = best * step + set.th0;
    double lo = x - step, hi = x + step;
    if (best == 0) lo = x;
    if (best == set.intervals) hi = x;
    const TGolden found = search_Golden(lo, hi, set.phi, set.eps, set.limit, rating);
    rate_Folded(found.tilt, set.phi, [&](double theta, double phi) {
      out.frames.push_back(frame_Along(centre_Of(msh, region), theta, phi));
      return 0.0;
    });
  }
  return out;
}

inline TSimplex start_At(double theta, double phi, double radius) {
  const double s = 1.0 / std::sqrt(2.0);
  TSimplex simplex = {};
  const double offsets[3][2] = {{-s, -s}, {s, -s}, {0, 1}};
  for (int k = 0; k < 3; ++k) {
    simplex.x[k] = theta + radius * offsets[k][0];
    simplex.y[k] = phi + radius * offsets[k][1];
  }
  return simplex;
}

// An empty region is the whole mesh. A region is a soup of its own, without triangles of equal
// corner indices: in the whole mesh their boxes are obstacles, in a region they are nothing.
inline T3DFRM find_5ax(const T3DMSH& msh, const Region& region, const TAxisSettings& set,
                       double lift) {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  T3DMSH part = msh;
  T3DVEC centre = mean_Point(msh);
  if (region && !region->empty()) {
    centre = centre_Of(msh, region);
    for (const uint32_t t : *region) {
      if (undercut::is_Flat(msh.tri[t])) continue;
      const auto n = static_cast<uint32_t>(vtx.size());
      for (const uint32_t v : {msh.tri[t].a, msh.tri[t].b, msh.tri[t].c}) vtx.push_back(msh.vtx[v]);
      tri.push_back({n, n + 1, n + 2});
    }
    part = {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
            static_cast<uint32_t>(tri.size())};
  }
  const std::vector<uint32_t> all = list_Rated(part, std::nullopt);
  const Rating rating = [&](double theta, double phi) {
    return rate_5ax(part, set.weight, lift, all, theta, phi);
  };
  const TFound s = scan_Sphere(set.box, set.dxx, set.dyy, rating);
  TSimplex simplex = start_At(s.theta, s.phi, set.dxy);
  const TFound found = walk_Downhill(simplex, set.eps, set.limit, rating);
  return frame_Along(centre, found.theta, found.phi);
}

inline TRegionAxes find_5ay(const T3DMSH& msh, const std::vector<Region>& regions,
                            const TAxisSettings& set, double lift) {
  TRegionAxes out = {0, {}};
  const double* box = set.box;
  double r = set.dxy;
  for (const Region& region : regions) {
    const std::vector<uint32_t> list = list_Rated(msh, region);
    const Rating rating = [&](double theta, double phi) {
      if (theta < box[0] || theta > box[2] || phi < box[1] || phi > box[3])
        return 1.7976931348623157e+308;
      return rate_5ax(msh, set.weight, lift, list, theta, phi);
    };
    const TFound s = scan_Sphere(set.box, set.dxx, set.dyy, rating);
    if (s.theta == 1.7976931348623157e+308) return {-14, {}};
    TSimplex simplex = start_At(s.theta, s.phi, r);
    bool inside = true;
    for (int k = 0; k < 3; ++k) {
      inside = inside && simplex.x[k] >= box[0] && simplex.x[k] < box[2];
      inside = inside && simplex.y[k] >= box[1] && simplex.y[k] < box[3];
    }
    if (!inside) {
      r = 0;
      simplex = start_At(s.theta, s.phi, r);
    }
    const TFound found = walk_Downhill(simplex, set.eps, set.limit, rating);
    out.frames.push_back(frame_Along(centre_Of(msh, region), found.theta, found.phi));
  }
  return out;
}

}  // namespace reference
