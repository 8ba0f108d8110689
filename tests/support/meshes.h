// Small meshes with real geometry, the same on every run. Lengths in mm, triangles counterclockwise
// seen from outside (from +Z for open surfaces).
#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/mesh/soups.h"
#include "tests/reference/random_geometry.h"

namespace undercut::tests {

// A sheet of nx by ny unit squares in halves, each vertex lifted by height(x, y). Square (x, y) is
// the triangles 2 (y nx + x) and the one after it.
template <typename Height>
TSoup make_Sheet(uint32_t nx, uint32_t ny, Height height) {
  TSoup soup;
  for (uint32_t y = 0; y <= ny; ++y)
    for (uint32_t x = 0; x <= nx; ++x)
      soup.vtx.push_back({double(x), double(y), height(double(x), double(y))});
  for (uint32_t y = 0; y < ny; ++y)
    for (uint32_t x = 0; x < nx; ++x) {
      const uint32_t a = y * (nx + 1) + x, b = a + 1, d = a + nx + 1, c = d + 1;
      soup.tri.push_back({a, b, c});
      soup.tri.push_back({a, c, d});
    }
  return soup;
}
inline TSoup make_Grid(uint32_t nx, uint32_t ny) {
  return make_Sheet(nx, ny, [](double, double) { return 0.0; });
}
// Waves of a few tenths of a millimetre: normals tilt to about 35 degrees.
inline TSoup make_Bumpy(uint32_t nx, uint32_t ny) {
  return make_Sheet(nx, ny, [](double x, double y) {
    return 0.45 * std::sin(1.1 * x + 0.3) * std::cos(0.9 * y) + 0.07 * std::sin(2.3 * x * y);
  });
}

// A row of triangles, each across an edge from the next: triangle t has the corners t, t + 1 and
// t + 2, which stand at y = 0 and y = 1 in turn.
inline TSoup make_Strip(uint32_t triangles) {
  TSoup soup;
  for (uint32_t v = 0; v < triangles + 2; ++v) soup.vtx.push_back({0.5 * v, double(v % 2), 0});
  for (uint32_t t = 0; t < triangles; ++t)
    soup.tri.push_back(t % 2 == 0 ? T3DTRI{t, t + 2, t + 1} : T3DTRI{t, t + 1, t + 2});
  return soup;
}

// A closed ring of triangles round vertex 0.
inline TSoup make_Wheel(uint32_t triangles) {
  TSoup soup;
  soup.vtx.push_back({0, 0, 0});
  for (uint32_t t = 0; t < triangles; ++t) {
    const double turn = 6.283185307179586 * t / triangles;
    soup.vtx.push_back({std::cos(turn), std::sin(turn), 0});
    soup.tri.push_back({0, t + 1, (t + 1) % triangles + 1});
  }
  return soup;
}

// Pages that all share the edge from vertex 0 to vertex 1.
inline TSoup make_Book(uint32_t pages) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {0, 0, 1}};
  for (uint32_t p = 0; p < pages; ++p) {
    const double turn = 3.141592653589793 * p / pages;
    soup.vtx.push_back({std::cos(turn), std::sin(turn), 0.5});
    soup.tri.push_back({0, 1, p + 2});
  }
  return soup;
}

inline TSoup make_Pyramid() {
  return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
          {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}}};
}

// Faces in the order -Z, +Z, -Y, +X, +Y, -X, two triangles each.
inline TSoup make_Box(double x, double y, double z) {
  return {{{0, 0, 0}, {x, 0, 0}, {x, y, 0}, {0, y, 0}, {0, 0, z}, {x, 0, z}, {x, y, z}, {0, y, z}},
          {{0, 2, 1},
           {0, 3, 2},
           {4, 5, 6},
           {4, 6, 7},
           {0, 1, 5},
           {0, 5, 4},
           {1, 2, 6},
           {1, 6, 5},
           {2, 3, 7},
           {2, 7, 6},
           {3, 0, 4},
           {3, 4, 7}}};
}

// A closed sphere round the origin: two fans at the poles, squares in halves between.
inline TSoup make_Sphere(uint32_t rings, uint32_t sectors, double radius) {
  TSoup soup;
  soup.vtx.push_back({0, 0, radius});
  for (uint32_t i = 1; i < rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k)
      soup.vtx.push_back(radius * sph_ToCar(180.0 * i / rings, 360.0 * k / sectors));
  soup.vtx.push_back({0, 0, -radius});
  const auto at = [&](uint32_t i, uint32_t k) { return 1 + (i - 1) * sectors + k % sectors; };
  const auto last = static_cast<uint32_t>(soup.vtx.size() - 1);
  for (uint32_t k = 0; k < sectors; ++k) soup.tri.push_back({0, at(1, k), at(1, k + 1)});
  for (uint32_t i = 1; i + 1 < rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k) {
      soup.tri.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
      soup.tri.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
    }
  for (uint32_t k = 0; k < sectors; ++k)
    soup.tri.push_back({at(rings - 1, k), last, at(rings - 1, k + 1)});
  return soup;
}

// Triangles over few vertices: edges of many triangles, repeated triangles, triangles with equal
// corner indices, and triangles whose corners differ by index and coincide by coordinates.
inline TSoup make_Tangle(reference::Random& random, uint64_t vertices, uint64_t triangles) {
  TSoup soup;
  for (uint64_t v = 0; v < vertices; ++v)
    soup.vtx.push_back(v > 2 && random.chance(0.1) ? soup.vtx[random.below(v)]
                                                   : random.triple(-5, 5));
  const auto pick = [&] { return static_cast<uint32_t>(random.below(vertices)); };
  while (soup.tri.size() < triangles) {
    const uint32_t a = pick(), b = pick(), c = pick();
    if (!soup.tri.empty() && random.chance(0.1))
      soup.tri.push_back(soup.tri[random.below(soup.tri.size())]);
    else
      soup.tri.push_back({a, b, c});
  }
  return soup;
}

// Turns and moves a mesh out of the axes.
inline TSoup tilt(TSoup soup) {
  const T3DFRM frm = frm_Ray({{3, -7, 2}, {0.3, -0.5, 0.8}});
  for (T3DVEC& v : soup.vtx) v = to_World(frm, v);
  return soup;
}

// 0, 1, 2, ...: the whole mesh as a region of interest.
inline std::vector<uint32_t> list_All(const TSoup& soup) {
  std::vector<uint32_t> all;
  for (uint32_t t = 0; t < soup.tri.size(); ++t) all.push_back(t);
  return all;
}

// Stacks of triangles across X, each four times as far out as the one before it: every split of
// the tree cuts off one stack, and walks of so deep a tree outgrow their fixed room.
inline TSoup make_Uneven() {
  TSoup soup;
  for (int k = 0; k < 200; ++k) {
    const double x = std::ldexp(1.0, 2 * k - 40);
    const auto first = static_cast<uint32_t>(soup.vtx.size());
    soup.vtx.insert(soup.vtx.end(), {{x, 0, 0}, {x, x / 4, 0}, {x, 0, x / 4}});
    soup.tri.insert(soup.tri.end(), 6, {first, first + 1, first + 2});
  }
  return soup;
}

}  // namespace undercut::tests
