// Random meshes in general position: no ray of theirs passes through an edge by design. Lengths in
// mm, sizes about 10.
#pragma once

#include <cmath>

#include "tests/support/meshes.h"

namespace undercut::tests {

inline T3DFRM any_Frame(reference::Random& random) {
  return frm_Ray({random.triple(-5, 5), random.triple(-1, 1)});
}

inline void move(TSoup& soup, const T3DFRM& to) {
  for (T3DVEC& v : soup.vtx) v = to_World(to, v);
}

inline void join(TSoup& soup, const TSoup& other) {
  const auto base = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), other.vtx.begin(), other.vtx.end());
  for (const T3DTRI& t : other.tri) soup.tri.push_back({t.a + base, t.b + base, t.c + base});
}

// A closed ball with bumps and dents.
inline TSoup any_Ball(reference::Random& random, uint32_t rings, uint32_t sectors, double bump) {
  TSoup soup = make_Sphere(rings, sectors, 1);
  const double p = random.real(2, 5), q = random.real(2, 5), r = random.real(0, 6);
  for (T3DVEC& v : soup.vtx) {
    const double wave = std::sin(p * v.x + r) * std::cos(q * v.y) + std::sin(p * v.z - q * v.x);
    v = (4 + bump * wave + 0.05 * random.real(-1, 1)) * v;
  }
  move(soup, any_Frame(random));
  return soup;
}

// Closed convex bodies that may run into one another.
inline TSoup any_Heap(reference::Random& random, uint32_t bodies) {
  TSoup heap;
  for (uint32_t i = 0; i < bodies; ++i) {
    const auto rings = static_cast<uint32_t>(random.integer(3, 6));
    TSoup body = make_Sphere(rings, rings + 2, 1);
    const T3DVEC size = random.triple(0.5, 3);
    for (T3DVEC& v : body.vtx) v = {v.x * size.x, v.y * size.y, v.z * size.z};
    move(body, any_Frame(random));
    join(heap, body);
  }
  return heap;
}

// Single large triangles across one another. Some have two corners at one place: they start no ray
// and stop every ray that meets their box. That holds where the products and sums of their
// coordinates are exact: these are multiples of 1/64.
inline TSoup any_Soup(reference::Random& random, uint32_t triangles, double flat) {
  TSoup soup;
  const auto snap = [](double x) { return std::round(64 * x) / 64; };
  for (uint32_t t = 0; t < triangles; ++t) {
    T3DVEC a = random.triple(-5, 5), b = a + random.triple(-3, 3), c = a + random.triple(-3, 3);
    if (random.chance(flat)) {
      a = {snap(a.x), snap(a.y), snap(a.z)};
      b = c = {snap(b.x), snap(b.y), snap(b.z)};
    }
    for (const T3DVEC& v : {a, b, c}) soup.vtx.push_back(v);
    soup.tri.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  }
  return soup;
}

// A rolled sheet with holes: an open border outside and within.
inline TSoup any_Patch(reference::Random& random, uint32_t nx, uint32_t ny, double missing) {
  TSoup soup = make_Bumpy(nx, ny);
  const double roll = random.real(0.1, 5.0 / nx);
  for (T3DVEC& v : soup.vtx) {
    v += 0.1 * random.triple(-1, 1);
    const double radius = 1 / roll + v.z + 0.15 * v.x;
    v = {radius * std::sin(roll * v.x), v.y, radius * std::cos(roll * v.x)};
  }
  std::vector<T3DTRI> kept;
  for (const T3DTRI& t : soup.tri)
    if (!random.chance(missing)) kept.push_back(t);
  if (!kept.empty()) soup.tri = std::move(kept);
  move(soup, any_Frame(random));
  return soup;
}

// A flat sheet: along an axis it hides all of itself or nothing.
inline TSoup any_Sheet(reference::Random& random) {
  TSoup soup = make_Grid(static_cast<uint32_t>(random.integer(1, 6)), 5);
  move(soup, any_Frame(random));
  return soup;
}

// Numbers are drawn one statement after the other: arguments are evaluated in an order that each
// compiler chooses.
inline TSoup any_Mesh(reference::Random& random) {
  const uint64_t kind = random.below(4);
  const auto a = static_cast<uint32_t>(random.integer(4, 12));
  const auto b = static_cast<uint32_t>(random.integer(4, 12));
  const double share = random.real(0, 1);
  if (kind == 0) return any_Ball(random, a + 1, b + 2, 1.5 * share);
  if (kind == 1) return any_Heap(random, a / 2);
  if (kind == 2) return any_Soup(random, 12 * a, share < 0.5 ? 0.05 : 0.0);
  return any_Patch(random, a, b, share < 0.5 ? 0.1 : 0.0);
}

}  // namespace undercut::tests
