// Selections from lists and curves.
#include "undercut/selection.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

class Selection : public testing::Test {
 protected:
  int32_t select(std::vector<uint32_t>* list) {
    std::vector<TArr<T3DVEC>> views;
    for (auto& curve : curves) views.push_back(view_Arr(curve));
    TLst<uint32_t> roi = {};
    if (list) {
      list->reserve(1);
      roi = view_Lst(*list);
    }
    return sel_Bits(soup.msh(), roi, view_Arr(views), sel);
  }
  std::vector<uint32_t> selected() {
    std::vector<uint32_t> list;
    for (uint32_t t = 0; t < soup.tri.size(); ++t)
      if (sel.test(t)) list.push_back(t);
    return list;
  }
  // Round the middle square of 3 by 3, which has the triangles 8 and 9.
  void add_Curve() { curves.push_back({{1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}}); }

  TSoup soup = make_Grid(3, 3);
  std::vector<std::vector<T3DVEC>> curves;
  CBitVector sel;
};

TEST_F(Selection, OfNothingGiven_HasNoBits) {
  sel.init(5);
  EXPECT_EQ(select(nullptr), 0);
  EXPECT_FALSE(sel.is_Valid());
}

TEST_F(Selection, OfAList_HasItsBits) {
  std::vector<uint32_t> list = {7, 3, 7};
  EXPECT_EQ(select(&list), 0);
  EXPECT_EQ(selected(), (std::vector<uint32_t>{3, 7}));
  EXPECT_EQ(sel.size(), 18u);
}

TEST_F(Selection, OfAnEmptyList_HasBitsThatAreAllClear) {
  std::vector<uint32_t> list;
  EXPECT_EQ(select(&list), 0);
  EXPECT_TRUE(sel.is_Valid());
  EXPECT_TRUE(sel.is_Empty());
}

TEST_F(Selection, OfCurves_HasTheirInside) {
  add_Curve();
  EXPECT_EQ(select(nullptr), 0);
  EXPECT_EQ(selected(), (std::vector<uint32_t>{8, 9}));
}

TEST_F(Selection, OfAnArrayWithoutCurves_IsThatOfTheListAlone) {
  TArr<T3DVEC> unread = {nullptr, 7};
  const TArrArrVec none = {&unread, 0};
  ASSERT_EQ(sel_Bits(soup.msh(), {nullptr, 0, 0}, none, sel), 0);
  EXPECT_FALSE(sel.is_Valid());
  std::vector<uint32_t> list = {7, 3};
  ASSERT_EQ(sel_Bits(soup.msh(), view_Lst(list), none, sel), 0);
  EXPECT_EQ(selected(), (std::vector<uint32_t>{3, 7}));
  // Nor is there a mesh to cut.
  EXPECT_EQ(sel_Bits({}, {nullptr, 0, 0}, none, sel), 0);
  EXPECT_FALSE(sel.is_Valid());
}

TEST_F(Selection, OfBoth_AddsThem) {
  add_Curve();
  std::vector<uint32_t> list = {0, 8};
  EXPECT_EQ(select(&list), 0);
  EXPECT_EQ(selected(), (std::vector<uint32_t>{0, 8, 9}));
}

TEST_F(Selection, OfCurvesThatBoundNothing_Fails) {
  curves = {{{0, 0, 0}}};
  EXPECT_EQ(select(nullptr), -8);
  std::vector<uint32_t> list = {0};
  EXPECT_EQ(select(&list), -8);
}

TEST_F(Selection, OnAnEmptyMesh_Fails) {
  soup = {};
  std::vector<uint32_t> list;
  EXPECT_EQ(select(&list), -7);
  add_Curve();
  EXPECT_EQ(select(nullptr), -8);
}

TEST_F(Selection, WithoutMemory_TellsWhatItIsMissingFor) {
  std::vector<T3DVEC> curve = {{1, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}};
  TArr<T3DVEC> view = view_Arr(curve);
  std::vector<uint32_t> list = {1};
  const auto codes = list_FailureCodes([&] {
    sel.release();
    int32_t code = -8;  // what curves may throw has their code
    try {
      code = sel_Bits(soup.msh(), view_Lst(list), {&view, 1}, sel);
    } catch (const std::bad_alloc&) {
    }
    sel.release();
    return code;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-7, -8, 0}));
}

TEST_F(Selection, ClearsWhatLiesOutside) {
  std::vector<double> values(18, 4.0);
  TArr<double> arr = view_Arr(values);
  clear_Outside(sel, arr);
  EXPECT_EQ(values, std::vector<double>(18, 4.0));
  std::vector<uint32_t> list = {2};
  ASSERT_EQ(select(&list), 0);
  clear_Outside(sel, arr);
  for (uint32_t t = 0; t < 18; ++t) EXPECT_EQ(values[t], t == 2 ? 4.0 : 0.0) << t;
}

}  // namespace
