// The rays that every contender is asked about, and the loop that shares them out among threads.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "foundation/values.h"

namespace versus {

inline constexpr double kLift = 0.001;  // mm, of a ray's start above its triangle

// Made before the clock starts, in double precision for ours and in single for the kernel. Answers
// are one byte for each ray: 1 for a ray that leaves without a hit, else 0.
struct TRays {
  std::string name;
  bool one_direction = false;  // or one and its opposite
  std::vector<T3DRAY> exact;
  std::vector<float> org[3], dir[3];

  size_t count() const { return exact.size(); }

  void add(const T3DRAY& ray) {
    exact.push_back(ray);
    const double from[3] = {ray.org.x, ray.org.y, ray.org.z};
    const double to[3] = {ray.dir.x, ray.dir.y, ray.dir.z};
    for (int axis = 0; axis < 3; ++axis) {
      org[axis].push_back(static_cast<float>(from[axis]));
      dir[axis].push_back(static_cast<float>(to[axis]));
    }
  }
};

inline std::vector<T3DVEC> make_Normals(const T3DMSH& msh) {
  std::vector<T3DVEC> nml;
  for (uint32_t t = 0; t < msh.n_tri; ++t)
    nml.push_back(undercut::nml_Tri(undercut::get_Fac(msh, t)));
  return nml;
}

inline T3DVEC get_Start(const T3DMSH& msh, uint32_t t) {
  const undercut::T3DFAC f = undercut::get_Fac(msh, t);
  return undercut::cen_Tri(f) + kLift * undercut::nml_Tri(f);
}

// A ray from each triangle along each direction, direction by direction.
inline TRays make_Parallel(const T3DMSH& msh, const std::vector<T3DVEC>& directions,
                           const std::string& name) {
  TRays rays;
  rays.name = name;
  rays.one_direction = true;
  for (const T3DVEC& direction : directions)
    for (uint32_t t = 0; t < msh.n_tri; ++t) rays.add({get_Start(msh, t), direction});
  return rays;
}

// A ray from each triangle, each in a direction of its own.
inline TRays make_Scattered(const T3DMSH& msh) {
  TRays rays;
  rays.name = "scattered";
  std::mt19937 random(20240229);
  std::normal_distribution<double> normal;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DVEC d = {normal(random), normal(random), normal(random)};
    rays.add({get_Start(msh, t), undercut::unit(d)});
  }
  return rays;
}

// body(first, end) for blocks of 1,024 rays.
template <typename Body>
void each_Block(size_t count, const Body& body) {
  constexpr size_t kBlock = 1024;
  const auto blocks = static_cast<int64_t>((count + kBlock - 1) / kBlock);
#pragma omp parallel for schedule(dynamic)
  for (int64_t k = 0; k < blocks; ++k) {
    const size_t first = static_cast<size_t>(k) * kBlock;
    body(first, std::min(first + kBlock, count));
  }
}

}  // namespace versus
