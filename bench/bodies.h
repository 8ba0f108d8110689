// Smooth closed bodies with real undercuts, and rows of walls, of any number of triangles, the same
// on every run.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "foundation/values.h"

namespace bodies {

struct TBody {
  std::vector<T3DVEC> points;
  std::vector<T3DTRI> triangles;

  T3DMSH view() {
    T3DMSH msh = {};
    msh.vtx = points.data();
    msh.n_vtx = static_cast<uint32_t>(points.size());
    msh.tri = triangles.data();
    msh.n_tri = static_cast<uint32_t>(triangles.size());
    return msh;
  }
};

// A ring of 100 mm with a tube of 16 mm whose thickness and height wave: it shades itself from most
// directions. `count` triangles or up to a hundredth fewer.
inline TBody make_Ring(uint32_t count) {
  const auto across = static_cast<uint32_t>(std::sqrt(count / 6.0));
  const uint32_t along = count / 2 / across;
  TBody body;
  body.points.reserve(static_cast<size_t>(across) * along);
  body.triangles.reserve(2 * static_cast<size_t>(across) * along);
  const double turn = 2.0 * 3.14159265358979323846;
  for (uint32_t i = 0; i < along; ++i)
    for (uint32_t k = 0; k < across; ++k) {
      const double u = turn * i / along, v = turn * k / across;
      const double tube = 16.0 + 2.5 * std::sin(9.0 * u) * std::cos(4.0 * v) + std::sin(23.0 * u);
      const double radius = 50.0 + tube * std::cos(v);
      body.points.push_back({radius * std::cos(u), radius * std::sin(u),
                             tube * std::sin(v) + 6.0 * std::sin(3.0 * u)});
    }
  const auto at = [&](uint32_t i, uint32_t k) { return i % along * across + k % across; };
  for (uint32_t i = 0; i < along; ++i)
    for (uint32_t k = 0; k < across; ++k) {
      body.triangles.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
      body.triangles.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
    }
  return body;
}

// A ball of 60 mm covered with overhanging warts. `count` triangles or up to a hundredth fewer.
inline TBody make_Ball(uint32_t count) {
  const auto across = static_cast<uint32_t>(std::sqrt(count / 4.0));
  const uint32_t along = count / 2 / across;
  TBody body;
  const double turn = 2.0 * 3.14159265358979323846;
  for (uint32_t i = 0; i <= across; ++i)
    for (uint32_t k = 0; k < along; ++k) {
      const double polar = turn / 2 * (i + 0.25) / (across + 0.5), azimuth = turn * k / along;
      const double wave = std::sin(11.0 * polar) * std::sin(12.0 * azimuth) * std::sin(polar);
      const double radius = 30.0 + 3.0 * wave;
      const double bent = azimuth + 0.06 * std::cos(12.0 * azimuth) * wave;
      const double tilt = polar + 0.12 * wave;
      body.points.push_back({radius * std::sin(tilt) * std::cos(bent),
                             radius * std::sin(tilt) * std::sin(bent), radius * std::cos(tilt)});
    }
  const auto at = [&](uint32_t i, uint32_t k) { return i * along + k % along; };
  for (uint32_t i = 0; i < across; ++i)
    for (uint32_t k = 0; k < along; ++k) {
      body.triangles.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
      body.triangles.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
    }
  return body;
}

// 170 parallel walls without thickness, 60 mm square and 1 mm apart along X, all facing +X: a view
// along X looks at all of them behind one another. `count` triangles or some hundredths fewer.
inline TBody make_Walls(uint32_t count) {
  constexpr uint32_t kWalls = 170;
  const auto across = static_cast<uint32_t>(std::sqrt(count / 2.0 / kWalls));
  const uint32_t along = count / 2 / kWalls / across;
  TBody body;
  for (uint32_t wall = 0; wall < kWalls; ++wall) {
    const auto first = static_cast<uint32_t>(body.points.size());
    for (uint32_t i = 0; i <= along; ++i)
      for (uint32_t k = 0; k <= across; ++k)
        body.points.push_back({1.0 * wall, 60.0 * i / along, 60.0 * k / across});
    const auto at = [&](uint32_t i, uint32_t k) { return first + i * (across + 1) + k; };
    for (uint32_t i = 0; i < along; ++i)
      for (uint32_t k = 0; k < across; ++k) {
        body.triangles.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
        body.triangles.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
      }
  }
  return body;
}

}  // namespace bodies
