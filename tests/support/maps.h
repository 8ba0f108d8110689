// Maps over test meshes, and what must hold of any map.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "decomposition/map.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

// A mesh with its map, which borrows the mesh's arrays.
struct TWorld {
  TSoup soup;
  CMap map;
  explicit TWorld(TSoup mesh) : soup(std::move(mesh)) { EXPECT_TRUE(map.ini_Msh(soup.msh())); }
  TWorld(TSoup mesh, std::vector<uint32_t> roi) : TWorld(std::move(mesh)) { start(std::move(roi)); }
  TWorld(const TWorld&) = delete;
  TWorld& operator=(const TWorld&) = delete;

  void start(std::vector<uint32_t> roi) { EXPECT_TRUE(map.ini_Roi(view_Arr(roi))); }
  void start() { start(list_All(soup)); }
  // Puts a new region of these triangles into the map, the last of them at its head.
  CUcA* settle(int32_t id, const std::vector<uint32_t>& triangles) {
    auto region = std::make_unique<CUcA>(id);
    CUcA* target = region.get();
    EXPECT_TRUE(map.add_Uca(target));
    region.release();
    for (const uint32_t t : triangles) {
      CUcA* source = map.get_Uca(map.region_of[t]);
      EXPECT_TRUE(source && map.pass_Tri(t, source, target));
    }
    return target;
  }
};

inline std::vector<uint32_t> list_Tri(const CMap& map, const CUcA& region) {
  std::vector<uint32_t> list;
  for (int32_t t = region.head; t != -1; t = map.next_Tri(t)) {
    list.push_back(static_cast<uint32_t>(t));
    if (list.size() > map.msh.n_tri) break;  // a ring: the count tells
  }
  return list;
}

inline std::vector<int32_t> list_Ids(const CMap& map, bool sorted = false) {
  std::vector<TUcRef> refs;
  EXPECT_TRUE(map.get_Ucs(refs, sorted));
  std::vector<int32_t> ids;
  for (const TUcRef& ref : refs) ids.push_back(ref.id);
  return ids;
}

// Each triangle of the region of interest is in the list of its region and in no other, none from
// outside is in any, lists are linked both ways and as long as their counts, and only region 0 is
// ever empty.
inline void expect_Sound(const CMap& map, const std::set<uint32_t>& roi) {
  std::vector<TUcRef> refs;
  ASSERT_TRUE(map.get_Ucs(refs, false));
  std::set<uint32_t> seen;
  for (const TUcRef& ref : refs) {
    ASSERT_EQ(ref.id, ref.region->id);
    ASSERT_EQ(map.get_Uca(ref.id), ref.region);
    const std::vector<uint32_t> list = list_Tri(map, *ref.region);
    ASSERT_EQ(list.size(), ref.region->count) << "region " << ref.id;
    ASSERT_TRUE(ref.id == 0 || !list.empty()) << "region " << ref.id;
    int32_t before = -1;
    for (const uint32_t t : list) {
      ASSERT_TRUE(seen.insert(t).second) << "triangle " << t << " is in two lists";
      ASSERT_EQ(map.region_of[t], ref.id);
      ASSERT_EQ(map.prev[t], before);
      before = static_cast<int32_t>(t);
    }
  }
  ASSERT_EQ(seen, roi);
  for (uint32_t t = 0; t < map.msh.n_tri; ++t)
    if (!roi.count(t)) {
      ASSERT_EQ(map.region_of[t], -1);
      ASSERT_EQ(map.prev[t], -1);
      ASSERT_EQ(map.next[t], -1);
    }
}

}  // namespace undercut::tests
