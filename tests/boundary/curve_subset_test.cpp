// get_Sub, called as a host calls it.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tests/boundary/defaults.h"
#include "tests/support/pieces_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

void make_Good(TPiecesRequest& q) {
  q.soup = make_Grid(6, 6);
  q.curve = make_Rectangle(1, 2, 3, 2);
}

class CurveSubset : public testing::Test {
 protected:
  CurveSubset() { make_Good(r); }
  TPiecesRequest r{get_Sub};
};

TEST_F(CurveSubset, IsOneListOfTheTrianglesInside_InRisingOrder) {
  EXPECT_EQ(r.lists(), (Lists{list_Squares(6, 1, 2, 3, 2)}));
}

TEST_F(CurveSubset, IsWhatLiesLeftOfTheCurve) {
  const Indices inside = list_Squares(6, 1, 2, 3, 2);
  std::reverse(r.curve.begin(), r.curve.end());
  const Lists outside = r.lists();
  ASSERT_EQ(outside.size(), 1u);
  EXPECT_EQ(outside[0].size(), 72 - inside.size());
  for (const uint32_t t : inside)
    EXPECT_FALSE(std::binary_search(outside[0].begin(), outside[0].end(), t)) << t;
}

TEST_F(CurveSubset, IsOneListForSeveralCurves) {
  TCurves two = {{make_Rectangle(0, 0, 1, 1), make_Rectangle(4, 4, 2, 1)}};
  r.fill();
  r.req.arg = two.view();
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0, 1, 2 * 28, 2 * 28 + 1, 2 * 29, 2 * 29 + 1}}));
}

TEST_F(CurveSubset, LeavesOutTrianglesWithEqualCorners) {
  const Lists before = r.lists();
  r.soup.tri.push_back({23, 23, 24});  // beside a vertex inside, which is on no curve
  r.soup.tri.push_back({0, 0, 0});
  r.soup.tri.insert(r.soup.tri.begin(), {48, 48, 48});
  Lists after = r.lists();
  ASSERT_EQ(after.size(), 1u);
  for (uint32_t& t : after[0]) --t;
  EXPECT_EQ(after, before);
}

TEST_F(CurveSubset, GivesMinus7_ForCurvesThatCutOutNothing) {
  r.curve = {{2, 2, 0}};
  EXPECT_EQ(r.fill_AndCall(), -7);
  r.curve = make_Rectangle(0, 0, 6, 6);
  EXPECT_EQ(r.fill_AndCall(), -7);
  r.curve = make_Rectangle(100, 100, 1, 1);
  EXPECT_EQ(r.fill_AndCall(), -7);
  TArrVec no_Points = {nullptr, 3};
  r.req.arg = {&no_Points, 1};
  EXPECT_EQ(r.call(), -7);
}

TEST_F(CurveSubset, StandsCoordinatesThatAreNotFinite) {
  const double bad[] = {std::numeric_limits<double>::quiet_NaN(),
                        std::numeric_limits<double>::infinity(), 1e308};
  for (const double x : bad) {
    make_Good(r);
    r.soup.vtx[48].x = x;  // a corner of the sheet, away from the curve
    EXPECT_EQ(r.lists(), (Lists{list_Squares(6, 1, 2, 3, 2)}));
    r.curve[1].y = x;
    const int32_t code = r.fill_AndCall();
    EXPECT_TRUE(code == 0 || code == -7) << code;
  }
}

const TPiecesFault kFaults[] = {
    {-1, [](TPiecesRequest& q) { q.req.msh.vtx = nullptr; }},
    {-2, [](TPiecesRequest& q) { q.req.msh.n_vtx = 0; }},
    {-3, [](TPiecesRequest& q) { q.req.msh.tri = nullptr; }},
    {-4, [](TPiecesRequest& q) { q.req.msh.n_tri = 0; }},
    {-5, [](TPiecesRequest& q) { q.req.arg.data = nullptr; }},
    {-6, [](TPiecesRequest& q) { q.req.arg.count = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[71].c = 49; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[0].a = 0xFFFFFFFFu; }},
    {-7,
     [](TPiecesRequest& q) {
       static TArrVec no_Points = {};
       if (q.req.arg.data) q.req.arg.data = &no_Points;
     }},
};

TEST_F(CurveSubset, TellsEachFaultByItsCode_TheFirstOfTwo_AndLeavesTheResultAsItWas) {
  expect_Faults(kFaults, get_Sub, make_Good);
}

TEST_F(CurveSubset, TellsTheStepThatHasNoMemory) { EXPECT_EQ(r.list_Codes(), (Codes{-7, -8, 0})); }

TEST_F(CurveSubset, TakesAMissingRecordAsOneWithoutAMesh) {
  r.fill();
  EXPECT_EQ(get_Sub(nullptr, &r.res), -1);
  EXPECT_EQ(get_Sub(&r.req, nullptr), -1);
  EXPECT_EQ(get_Sub(nullptr, nullptr), -1);
}

TEST_F(CurveSubset, HoldsItsOneListAndNothingElse) {
  r.fill();
  clr_Res(&r.res);
  const int64_t live = live_Allocations();
  ASSERT_EQ(get_Sub(&r.req, &r.res), 0);
  EXPECT_EQ(live_Allocations(), live + 2);
}

TEST_F(CurveSubset, OverwritesAnEarlierList_WithoutFreeingIt) {
  const Lists expected = r.lists();
  const TLstLstU32 earlier = r.res.com;
  ASSERT_EQ(get_Sub(&r.req, &r.res), 0);
  EXPECT_EQ(copy_Nested(earlier), expected);
  TUcRes old;
  ini_Res(&old);
  old.com = earlier;
  clr_Res(&old);
}

TEST_F(CurveSubset, WritesNothingOfTheResultButCom) {
  r.fill();
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  ASSERT_EQ(get_Sub(&r.req, &res), 0);
  r.res.com = res.com;
  before.com = res.com;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(CurveSubset, LeavesTheRequestAsItWas) { expect_Untouched(r); }

TEST_F(CurveSubset, WorksOnRecordsAtAMultipleOf4Bytes) { expect_WorksUnaligned(r, get_Sub); }

TEST_F(CurveSubset, LeaksNothingInAHundredCycles) { expect_NoLeak(r); }

TEST_F(CurveSubset, WritesNoFile) {
  std::remove("roi.stl");
  ASSERT_EQ(r.fill_AndCall(), 0);
  std::FILE* file = std::fopen("roi.stl", "r");
  EXPECT_TRUE(file == nullptr);
  if (file) std::fclose(file);
}

}  // namespace
