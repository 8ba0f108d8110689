// Closed meshes round the filled cells of a grid, and meshes of revolution: welded, and oriented
// outwards. Lengths in mm.
#pragma once

#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "tests/mesh/soups.h"

namespace undercut::tests {

// The surface between filled and empty cells of 1 mm, each side of a cell in density by density
// squares and each square in halves. Coordinates are multiples of 1 / density, exact for powers of
// two. Across one axis all squares have the same diagonal, whichever way they face, so that a ray
// along an axis from the middle of a triangle meets no diagonal. Filled cells that touch along an
// edge alone would share that edge among four triangles: a caller has none.
class CCellMesh {
 public:
  CCellMesh(int nx, int ny, int nz, int density) : size_{nx, ny, nz}, density_(density) {}

  template <typename Filled>
  TSoup build(Filled filled) {
    const auto at = [&](const int(&cell)[3]) {
      for (int k = 0; k < 3; ++k)
        if (cell[k] < 0 || cell[k] >= size_[k]) return false;
      return static_cast<bool>(filled(cell[0], cell[1], cell[2]));
    };
    for (int x = 0; x < size_[0]; ++x)
      for (int y = 0; y < size_[1]; ++y)
        for (int z = 0; z < size_[2]; ++z) {
          const int cell[3] = {x, y, z};
          if (at(cell)) add_Sides(cell, at);
        }
    return std::move(soup_);
  }

 private:
  template <typename At>
  void add_Sides(const int (&cell)[3], At at) {
    for (int k = 0; k < 3; ++k)
      for (const int side : {-1, 1}) {
        int beside[3] = {cell[0], cell[1], cell[2]};
        beside[k] += side;
        if (!at(beside)) add_Side(cell, k, side);
      }
  }

  void add_Side(const int (&cell)[3], int k, int side) {
    const int u = (k + 1) % 3, v = (k + 2) % 3;
    for (int i = 0; i < density_; ++i)
      for (int j = 0; j < density_; ++j) {
        const auto corner = [&](int di, int dj) {
          int p[3] = {cell[0] * density_, cell[1] * density_, cell[2] * density_};
          p[k] += side > 0 ? density_ : 0;
          p[u] += i + di;
          p[v] += j + dj;
          return number(p);
        };
        const uint32_t a = corner(0, 0), b = corner(1, 0), c = corner(1, 1), d = corner(0, 1);
        soup_.tri.push_back(side > 0 ? T3DTRI{a, b, c} : T3DTRI{a, c, b});
        soup_.tri.push_back(side > 0 ? T3DTRI{a, c, d} : T3DTRI{a, d, c});
      }
  }

  uint32_t number(const int (&p)[3]) {
    const auto next = static_cast<uint32_t>(soup_.vtx.size());
    const auto found = numbers_.try_emplace({p[0], {p[1], p[2]}}, next);
    if (found.second)
      soup_.vtx.push_back(
          {double(p[0]) / density_, double(p[1]) / density_, double(p[2]) / density_});
    return found.first->second;
  }

  int size_[3];
  int density_;
  TSoup soup_;
  std::map<std::pair<int, std::pair<int, int>>, uint32_t> numbers_;
};

// Radius and height.
using Profile = std::vector<std::pair<double, double>>;

// Turns a profile round the Z axis in flat sectors: from (0, z) below to (0, z) above, with the
// body on its left. Both ends become fans.
inline TSoup revolve(const Profile& profile, uint32_t sectors) {
  TSoup soup;
  const uint32_t rings = static_cast<uint32_t>(profile.size()) - 2;
  soup.vtx.push_back({0, 0, profile.front().second});
  for (uint32_t i = 1; i <= rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k) {
      const double turn = 6.283185307179586 * k / sectors;
      const double r = profile[i].first;
      soup.vtx.push_back({r * std::cos(turn), r * std::sin(turn), profile[i].second});
    }
  soup.vtx.push_back({0, 0, profile.back().second});
  const auto at = [&](uint32_t i, uint32_t k) { return 1 + (i - 1) * sectors + k % sectors; };
  const uint32_t last = rings * sectors + 1;
  for (uint32_t k = 0; k < sectors; ++k) soup.tri.push_back({0, at(1, k + 1), at(1, k)});
  for (uint32_t i = 1; i < rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k) {
      soup.tri.push_back({at(i, k), at(i, k + 1), at(i + 1, k + 1)});
      soup.tri.push_back({at(i, k), at(i + 1, k + 1), at(i + 1, k)});
    }
  for (uint32_t k = 0; k < sectors; ++k) soup.tri.push_back({at(rings, k), at(rings, k + 1), last});
  return soup;
}

// Each segment of a profile in equal pieces no longer than a length.
inline Profile divide(const Profile& corners, double longest) {
  Profile profile = {corners.front()};
  for (size_t i = 1; i < corners.size(); ++i) {
    const auto [r, z] = corners[i - 1];
    const double dr = corners[i].first - r, dz = corners[i].second - z;
    const int pieces = static_cast<int>(std::ceil(std::hypot(dr, dz) / longest - 1e-9));
    for (int k = 1; k < pieces; ++k) profile.push_back({r + dr * k / pieces, z + dz * k / pieces});
    profile.push_back(corners[i]);
  }
  return profile;
}

// What the flat sectors of a ring between two points of a profile add up to, in mm2.
inline double area_Ring(double r0, double z0, double r1, double z1, uint32_t sectors) {
  const double half = 3.141592653589793 / sectors;
  return sectors * (r0 + r1) * std::sin(half) * std::hypot((r1 - r0) * std::cos(half), z1 - z0);
}

}  // namespace undercut::tests
