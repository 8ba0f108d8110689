// Meshes that the tests of adjacency, boundaries, components, welding and repair share.
#pragma once

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "foundation/arrays.h"
#include "foundation/bit_vector.h"

namespace undercut::tests {

struct TSoup {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  T3DMSH msh() {
    return {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
            static_cast<uint32_t>(tri.size())};
  }
};

// Triangles over vertices at (0, 0, 0), (1, 0, 0), ...: all that matters to tests of indices.
inline TSoup make_Soup(uint32_t vertices, std::vector<T3DTRI> triangles) {
  TSoup soup;
  for (uint32_t v = 0; v < vertices; ++v) soup.vtx.push_back({double(v), 0, 0});
  soup.tri = std::move(triangles);
  return soup;
}

inline TSoup make_Tetrahedron() {
  return make_Soup(4, {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}});
}

// A fan around vertex 0.
inline TSoup make_Fan(uint32_t triangles) {
  TSoup soup = make_Soup(triangles + 2, {});
  for (uint32_t t = 0; t < triangles; ++t) soup.tri.push_back({0, t + 1, t + 2});
  return soup;
}

// Corners at random: with few vertices, edges of many triangles, repeated triangles and, where
// `flat` is set, triangles with equal corners.
inline TSoup make_Random(std::mt19937_64& random, uint32_t vertices, uint32_t triangles,
                         bool flat) {
  const auto pick = [&] { return static_cast<uint32_t>(random() % vertices); };
  TSoup soup = make_Soup(vertices, {});
  while (soup.tri.size() < triangles) {
    const T3DTRI tri = {pick(), pick(), pick()};
    if (flat || !is_Flat(tri)) soup.tri.push_back(tri);
  }
  return soup;
}

// A sheet of n by n squares in halves, with some triangles missing and some vertices made one, so
// that fans touch.
inline TSoup make_Torn(std::mt19937_64& random, uint32_t n, uint32_t merges, double missing) {
  TSoup soup = make_Soup((n + 1) * (n + 1), {});
  std::vector<uint32_t> map(soup.vtx.size());
  for (uint32_t v = 0; v < map.size(); ++v) map[v] = v;
  for (uint32_t i = 0; i < merges; ++i) map[random() % map.size()] = map[random() % map.size()];
  std::bernoulli_distribution is_Missing(missing);
  for (uint32_t y = 0; y < n; ++y)
    for (uint32_t x = 0; x < n; ++x) {
      const uint32_t a = y * (n + 1) + x, b = a + 1, d = a + n + 1, c = d + 1;
      if (!is_Missing(random)) soup.tri.push_back({map[a], map[b], map[c]});
      if (!is_Missing(random)) soup.tri.push_back({map[a], map[c], map[d]});
    }
  return soup;
}

inline std::vector<bool> pick_Some(std::mt19937_64& random, size_t count, uint32_t percent) {
  std::vector<bool> set(count);
  for (size_t i = 0; i < count; ++i) set[i] = random() % 100 < percent;
  return set;
}

inline CBitVector to_Bits(const std::vector<bool>& set) {
  CBitVector bits;
  bits.init(set.size());
  for (size_t i = 0; i < set.size(); ++i)
    if (set[i]) bits.set(i);
  return bits;
}

inline std::vector<bool> all_Of(const TSoup& soup) {
  return std::vector<bool>(soup.tri.size(), true);
}

// Views of a vector, and copies of records, to compare.
template <typename T>
TArr<T> view_Arr(std::vector<T>& v) {
  return {v.data(), static_cast<uint32_t>(v.size())};
}
template <typename T>
TLst<T> view_Lst(std::vector<T>& v) {
  return {v.data(), static_cast<uint32_t>(v.size()), static_cast<uint32_t>(v.size())};
}
template <typename T>
std::vector<T> copy_Of(const TArr<T>& arr) {
  return std::vector<T>(arr.data, arr.data + arr.count);
}
template <typename T>
std::vector<T> copy_Of(const TLst<T>& lst) {
  return std::vector<T>(lst.data, lst.data + lst.count);
}
template <template <typename> class Outer, template <typename> class Inner, typename T>
std::vector<std::vector<T>> copy_Nested(const Outer<Inner<T>>& lists) {
  std::vector<std::vector<T>> copy;
  for (uint32_t i = 0; i < lists.count; ++i) copy.push_back(copy_Of(lists.data[i]));
  return copy;
}

// Edges as pairs, which print and compare.
using Edges = std::vector<std::pair<uint32_t, uint32_t>>;
inline Edges copy_Of(const TArr<T3DSGM>& edges) {
  Edges copy;
  for (uint32_t i = 0; i < edges.count; ++i) copy.push_back({edges.data[i].a, edges.data[i].b});
  return copy;
}

}  // namespace undercut::tests
