// The meshes of the golden results: real parts and generated bodies.
//
// Coordinates of generated bodies are multiples of 2^-20 mm, so that they do not hang on how the
// last bit of a sine rounds.
#pragma once

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include "bench/bodies.h"
#include "tests/support/stl_mesh.h"

namespace undercut::tests {

inline TSoup round_Body(const bodies::TBody& body) {
  TSoup soup = {body.points, body.triangles};
  const auto round = [](double x) { return std::nearbyint(x * 0x1p20) * 0x1p-20; };
  for (T3DVEC& v : soup.vtx) v = {round(v.x), round(v.y), round(v.z)};
  return soup;
}

// Turned away from all axes by the rotation of the quaternion (4, 1, 2, 2), whose length is 5.
inline TSoup turn_Body(TSoup soup) {
  for (T3DVEC& v : soup.vtx)
    v = {(9 * v.x - 12 * v.y + 20 * v.z) / 25, (20 * v.x + 15 * v.y) / 25,
         (-12 * v.x + 16 * v.y + 15 * v.z) / 25};
  return soup;
}

// Every 50th triangle stands twice, every 51st with two equal corners, every 53rd turned round,
// every 57th with its corners on one line, and every 59th is missing.
inline TSoup spoil_Triangles(const TSoup& body) {
  TSoup soup = {body.vtx, {}};
  for (uint32_t t = 0; t < body.tri.size(); ++t) {
    const T3DTRI tri = body.tri[t];
    const T3DVEC middle = 0.5 * (soup.vtx[tri.a] + soup.vtx[tri.b]);
    if (t % 50 == 0) soup.tri.push_back(tri);
    if (t % 51 == 0) soup.tri.push_back({tri.a, tri.b, tri.b});
    if (t % 53 == 0) soup.tri.push_back({tri.a, tri.c, tri.b});
    if (t % 57 == 0) {
      soup.tri.push_back({tri.a, tri.b, static_cast<uint32_t>(soup.vtx.size())});
      soup.vtx.push_back(middle);
    }
    if (t % 59 != 0) soup.tri.push_back(tri);
  }
  return soup;
}

// A few vertices that are infinite, no numbers, or very far away.
inline TSoup spoil_Vertices(TSoup soup) {
  const double infinite = std::numeric_limits<double>::infinity();
  const double values[] = {infinite, -infinite, std::numeric_limits<double>::quiet_NaN(),
                           1e300,    -1e160,    1e-310};
  for (uint32_t k = 0; k < 6; ++k) {
    T3DVEC& v = soup.vtx[(2 * k + 1) * soup.vtx.size() / 12];
    (k % 3 == 0 ? v.x : k % 3 == 1 ? v.y : v.z) = values[k];
  }
  return soup;
}

// Steps of whole millimetres with walls along the axes: many edges and centroids lie exactly over
// one another.
inline TSoup make_Steps(uint32_t width) {
  TSoup soup;
  std::map<T3DVECF, uint32_t> places;
  const auto at = [&](uint32_t x, uint32_t y, uint32_t z) {
    const auto next = static_cast<uint32_t>(soup.vtx.size());
    const auto found = places.try_emplace({float(x), float(y), float(z)}, next);
    if (found.second) soup.vtx.push_back({double(x), double(y), double(z)});
    return found.first->second;
  };
  const auto add_Quad = [&](uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    soup.tri.push_back({a, b, c});
    soup.tri.push_back({a, c, d});
  };
  const auto height = [](uint32_t x, uint32_t y) { return (x / 3 + y / 4 * 5) % 7; };
  for (uint32_t x = 0; x < width; ++x)
    for (uint32_t y = 0; y < width; ++y) {
      const uint32_t r = x + 1, b = y + 1, z = height(x, y), right = height(r, y),
                     back = height(x, b);
      add_Quad(at(x, y, z), at(r, y, z), at(r, b, z), at(x, b, z));
      if (z != right) add_Quad(at(r, y, z), at(r, y, right), at(r, b, right), at(r, b, z));
      if (z != back) add_Quad(at(x, b, z), at(r, b, z), at(r, b, back), at(x, b, back));
    }
  return soup;
}

inline constexpr const char* kParts[] = {
    "bad_skull",       "extruder_body",  "feature_block", "grille_case",
    "incisor_dentine", "incisor_enamel", "milk_tooth",    "molar_open",
    "molar_stub",      "scorpion",       "spot",          "x_end_motor"};
inline constexpr const char* kGenerated[] = {"ball_8k",       "ball_60k",       "ring_8k",
                                             "ring_60k",      "turned_ring_8k", "steps",
                                             "bad_triangles", "bad_vertices"};

// A part without its file gives an empty mesh.
inline TSoup make_GoldenMesh(const std::string& name) {
  if (name == "ball_8k") return round_Body(bodies::make_Ball(8000));
  if (name == "ball_60k") return round_Body(bodies::make_Ball(60000));
  if (name == "ring_8k") return round_Body(bodies::make_Ring(8000));
  if (name == "ring_60k") return round_Body(bodies::make_Ring(60000));
  if (name == "turned_ring_8k") return turn_Body(round_Body(bodies::make_Ring(8000)));
  if (name == "steps") return make_Steps(36);
  if (name == "bad_triangles") return spoil_Triangles(round_Body(bodies::make_Ball(6000)));
  if (name == "bad_vertices") return spoil_Vertices(round_Body(bodies::make_Ball(4000)));
  return read_Stl(UNDERCUT_MESHES "/" + name + ".stl");
}

}  // namespace undercut::tests
