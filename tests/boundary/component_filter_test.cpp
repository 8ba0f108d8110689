// flt_Com, called as a host calls it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/boundary/defaults.h"
#include "tests/support/pieces_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

// A sheet of 6 by 6 squares; without curves and without limits until a test sets some.
class ComponentFilter : public testing::Test {
 protected:
  ComponentFilter() {
    defaults::restore();
    set_Limits(0, 0);
    r.soup = make_Grid(6, 6);
    r.add.assign(r.soup.tri.size(), 1.0);
  }
  ~ComponentFilter() override { defaults::restore(); }

  static void set_Limits(double area, double value) {
    defaults::set(flt_Srf, area);
    defaults::set(flt_Dep, value);
  }
  Lists filter(const Lists& pieces) {
    r.pieces = pieces;
    return r.lists();
  }

  TPiecesRequest r{flt_Com};
};

Indices squares(uint32_t x, uint32_t y, uint32_t width, uint32_t height) {
  return list_Squares(6, x, y, width, height);
}

TEST_F(ComponentFilter, KeepsCopiesInTheOrderOfTheHost) {
  const Lists pieces = {{7, 3, 3}, {}, {71}, {0, 1, 2}};
  EXPECT_EQ(filter(pieces), pieces);
  for (uint32_t k = 0; k < 4; ++k) EXPECT_TRUE(r.res.com.data[k].data != r.cav[k].data || k == 1);
}

TEST_F(ComponentFilter, KeepsAnAreaExactlyAtItsLimit) {
  set_Limits(1.0, 0);
  EXPECT_EQ(filter({{0, 1}, {0}, {0, 1, 2}}), (Lists{{0, 1}, {0, 1, 2}}));
  set_Limits(std::nextafter(1.0, 2.0), 0);
  EXPECT_EQ(filter({{0, 1}, {0}, {0, 1, 2}}), (Lists{{0, 1, 2}}));
}

TEST_F(ComponentFilter, KeepsALargestValueExactlyAtItsLimit) {
  r.add[0] = 0.25;
  r.add[1] = 0.125;
  set_Limits(0, 0.25);
  EXPECT_EQ(filter({{0, 1}, {1, 0}, {1}, {0}}), (Lists{{0, 1}, {1, 0}, {0}}));
  set_Limits(0, std::nextafter(0.25, 1.0));
  EXPECT_EQ(filter({{0, 1}, {1, 0}, {1}, {2}}), (Lists{{2}}));
}

TEST_F(ComponentFilter, AsksForBothAreaAndValue) {
  r.add.assign(r.add.size(), 0.0);
  r.add[0] = 2.0;
  set_Limits(1.0, 1.0);
  EXPECT_EQ(filter({{0}, {2, 3}, {0, 1}}), (Lists{{0, 1}}));
}

TEST_F(ComponentFilter, StartsTheLargestValueAtZero) {
  r.add.assign(r.add.size(), -5.0);
  EXPECT_EQ(filter({{0}}), (Lists{{0}}));
  set_Limits(0, -1.0);
  EXPECT_EQ(filter({{0}}), (Lists{{0}}));
  set_Limits(0, 5e-324);
  EXPECT_EQ(filter({{0}}), Lists{});
}

TEST_F(ComponentFilter, NeverTakesAValueThatIsNoNumberForTheLargest) {
  r.add[0] = kNoNumber;
  r.add[1] = 0.5;
  set_Limits(0, 0.5);
  EXPECT_EQ(filter({{0}, {0, 1}, {1, 0}}), (Lists{{0, 1}, {1, 0}}));
}

TEST_F(ComponentFilter, TakesAnInfiniteValueForTheLargest) {
  r.add[0] = kInfinite;
  r.add[1] = -kInfinite;
  set_Limits(0, 1e308);
  EXPECT_EQ(filter({{0}, {1}, {1, 0}}), (Lists{{0}, {1, 0}}));
}

TEST_F(ComponentFilter, PassesAnAreaThatIsNoNumber_AndEveryPieceWhereALimitIsNone) {
  r.soup.vtx[0].x = kNoNumber;
  set_Limits(1e300, 0);
  EXPECT_EQ(filter({{0, 1}, {5}}), (Lists{{0, 1}}));
  set_Limits(kNoNumber, kNoNumber);
  EXPECT_EQ(filter({{0, 1}, {5}, {}}), (Lists{{0, 1}, {5}, {}}));
}

TEST_F(ComponentFilter, CountsATriangleTwiceThatIsListedTwice) {
  set_Limits(1.0, 0);
  EXPECT_EQ(filter({{0, 0}, {0}}), (Lists{{0, 0}}));
}

TEST_F(ComponentFilter, CountsTheValueOfATriangleWithoutArea) {
  r.soup.tri[0] = {3, 3, 4};
  r.add.assign(r.add.size(), 0.0);
  r.add[0] = 7.0;
  set_Limits(0.5, 7.0);
  EXPECT_EQ(filter({{0}, {0, 1}}), (Lists{{0, 1}}));
}

TEST_F(ComponentFilter, TakesAnEmptyListForAPieceWithoutAreaAndValue) {
  EXPECT_EQ(filter({{}, {0}}), (Lists{{}, {0}}));
  set_Limits(5e-324, 0);
  EXPECT_EQ(filter({{}, {0}}), (Lists{{0}}));
  set_Limits(0, 5e-324);
  EXPECT_EQ(filter({{}, {0}}), (Lists{{0}}));
}

TEST_F(ComponentFilter, TakesAListWithoutArrayForAnEmptyOne) {
  r.pieces = {{0}, {1, 2}};
  r.fill();
  r.cav[0] = {nullptr, 9, 9};
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{}, {1, 2}}));
}

TEST_F(ComponentFilter, WithoutAPieceThatPasses_GivesAnEmptyList) {
  set_Limits(1e9, 0);
  EXPECT_EQ(filter({{0}, {1}}), Lists{});
  EXPECT_TRUE(r.res.com.data == nullptr);
}

TEST_F(ComponentFilter, DoesNotReadTheLimitOfVisibility) {
  for (const double limit : {-1.0, 0.0, 1e300, kNoNumber}) {
    defaults::set(flt_Vis, limit);
    EXPECT_EQ(filter({{0}, {1}}), (Lists{{0}, {1}}));
  }
}

TEST_F(ComponentFilter, MergesNoVertices_WhateverTheTolerance) {
  set_Limits(1.0, 0);
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  for (const double tolerance : {0.0, 0.5, 3.0}) {
    defaults::set(ucs_Eps, tolerance);
    EXPECT_EQ(filter({{0}, {0, 1}, {28, 29}}), (Lists{{0, 1}})) << tolerance;
  }
}

TEST_F(ComponentFilter, HasLimitsByDefault) {
  defaults::restore();
  r.soup.vtx[1].x = 0.02;  // triangle 0 has the area 0.01
  r.add[2] = 0.005;
  r.add[3] = 0.0049;
  EXPECT_EQ(filter({{0}, {2}, {3}}), (Lists{{0}, {2}}));
  r.soup.vtx[1].x = 0.0199;
  EXPECT_EQ(filter({{0}, {2}, {3}}), (Lists{{2}}));
}

// ---- Curves ----------------------------------------------------------------------------------

TEST_F(ComponentFilter, DropsAPieceWithATriangleInsideTheCurves_AndSparesTheOutside) {
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  const Indices outside = squares(0, 0, 6, 2), inside = squares(2, 2, 2, 2);
  const Indices across = squares(1, 2, 2, 1);
  EXPECT_EQ(filter({outside, inside, across}), (Lists{outside}));
}

TEST_F(ComponentFilter, DropsWhatLiesInsideAnySetOfCurves) {
  r.sets = {{{make_Rectangle(1, 1, 1, 1)}}, {{make_Rectangle(4, 4, 1, 1)}}};
  const Indices first = squares(1, 1, 1, 1), second = squares(4, 4, 1, 1);
  const Indices neither = squares(2, 2, 2, 2);
  EXPECT_EQ(filter({first, neither, second}), (Lists{neither}));
  r.sets = {{{make_Rectangle(1, 1, 1, 1), make_Rectangle(4, 4, 1, 1)}}};
  EXPECT_EQ(filter({first, neither, second}), (Lists{neither}));
}

TEST_F(ComponentFilter, ChecksAreaAndValueOutsideTheCurvesToo) {
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  set_Limits(1.0, 0);
  EXPECT_EQ(filter({{0}, {0, 1}, {28, 29}}), (Lists{{0, 1}}));
}

TEST_F(ComponentFilter, TakesSetsWithoutArrayOrCountForNoCurves) {
  r.pieces = {squares(2, 2, 2, 2)};
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  r.fill();
  r.req.lst.count = 0;
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), r.pieces);
  r.req.lst = {nullptr, 1};
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), r.pieces);
}

TEST_F(ComponentFilter, GivesMinus12_ForCurvesThatCutOutNothing) {
  r.pieces = {{0}};
  r.sets = {{{Points{}}}};
  EXPECT_EQ(r.fill_AndCall(), -12);
  r.sets = {{{make_Rectangle(0, 0, 6, 6)}}};  // nothing is left outside
  EXPECT_EQ(r.fill_AndCall(), -12);
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}, {{}}};
  EXPECT_EQ(r.fill_AndCall(), -12);
}

TEST_F(ComponentFilter, TellsAnIndexOutOfRangeByMinus15) {
  for (const uint32_t bad : {72u, 0xFFFFFFFFu}) {
    r.pieces = {{0}, {1, bad}};
    EXPECT_EQ(r.fill_AndCall(), -15) << bad;
    r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
    EXPECT_EQ(r.fill_AndCall(), -15) << bad;
    r.sets.clear();
  }
}

TEST_F(ComponentFilter, NeverLooksAtAnIndexBehindATriangleInsideTheCurves) {
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  EXPECT_EQ(filter({{0, 28, 72}, {1}}), (Lists{{1}}));
  r.pieces = {{0, 72, 28}, {1}};
  EXPECT_EQ(r.fill_AndCall(), -15);
}

TEST_F(ComponentFilter, LooksAtEveryIndexOfAPieceThatIsTooSmallAnyway) {
  set_Limits(1e9, 1e9);
  r.pieces = {{0, 1, 72}};
  EXPECT_EQ(r.fill_AndCall(), -15);
}

// ---- Count and capacity ----------------------------------------------------------------------

TEST_F(ComponentFilter, TakesTheNumberOfPiecesFromTheCount) {
  r.pieces = {{0}, {1, 2}, {3}};
  r.fill();
  r.cav[2] = {nullptr, 7, 7};
  r.req.cav.count = 2;
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0}, {1, 2}}));
  r.req.cav.capacity = 1;  // of which no more is asked than that it is not 0
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0}, {1, 2}}));
  r.pieces = {{0, 1}, {2}};
  r.fill();
  r.req.cav.capacity = 1;
  set_Limits(1.0, 0);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0, 1}}));
}

TEST_F(ComponentFilter, TakesTheLengthOfAPieceFromItsCount) {
  r.pieces = {{0, 1, 2}};
  r.fill();
  r.cav[0].count = 2;
  r.cav[0].capacity = 0;
  set_Limits(1.0, 0);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0, 1}}));
}

// ---- The result's own pieces -----------------------------------------------------------------

TEST_F(ComponentFilter, FreesAnEarlierList) {
  r.pieces = {{0}, {1, 2}};
  r.fill();
  clr_Res(&r.res);
  const int64_t live = live_Allocations();
  ASSERT_EQ(flt_Com(&r.req, &r.res), 0);
  const int64_t held = live_Allocations();
  ASSERT_EQ(flt_Com(&r.req, &r.res), 0);
  EXPECT_EQ(live_Allocations(), held);
  r.req.cav.count = 1;
  ASSERT_EQ(flt_Com(&r.req, &r.res), 0);
  EXPECT_EQ(live_Allocations(), held - 1);
  clr_Res(&r.res);
  EXPECT_EQ(live_Allocations(), live);
}

TEST_F(ComponentFilter, TakesTheResultsOwnPieces) {
  r.bit.assign(72, 1);
  for (const uint32_t t : squares(0, 2, 6, 1)) r.bit[t] = 0;
  r.fill();
  ASSERT_EQ(get_Com(&r.req, &r.res), 0);
  const Lists all = copy_Nested(r.res.com);
  ASSERT_EQ(all.size(), 2u);
  r.req.cav = r.res.com;
  ASSERT_EQ(flt_Com(&r.req, &r.res), 0);
  EXPECT_EQ(copy_Nested(r.res.com), all);
  set_Limits(13, 0);
  r.req.cav = r.res.com;
  ASSERT_EQ(flt_Com(&r.req, &r.res), 0);
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{all[1]}));
}

TEST_F(ComponentFilter, KeepsTheResultsOwnPieces_WhereItFails) {
  r.pieces = {{0}, {1, 2}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  r.req.cav = r.res.com;
  const TLstLstU32 before = r.res.com;
  for (uint64_t n = 1;; ++n) {
    const int64_t live = live_Allocations();
    int32_t code = 0;
    {
      const FailingAllocation failing(n);
      code = flt_Com(&r.req, &r.res);
    }
    if (code == 0) break;
    ASSERT_EQ(live_Allocations(), live) << n;
    ASSERT_EQ(std::memcmp(&r.res.com, &before, sizeof before), 0) << n;
    ASSERT_EQ(copy_Nested(r.res.com), (Lists{{0}, {1, 2}})) << n;
  }
  EXPECT_EQ(copy_Nested(r.res.com), (Lists{{0}, {1, 2}}));
}

// ---- Failures --------------------------------------------------------------------------------

void make_Good(TPiecesRequest& q) {
  q.soup = make_Grid(6, 6);
  q.add.assign(72, 1.0);
  q.pieces = {{0, 1}, {2, 3}};
}

const TPiecesFault kFaults[] = {
    {-1, [](TPiecesRequest& q) { q.req.msh.vtx = nullptr; }},
    {-2, [](TPiecesRequest& q) { q.req.msh.tri = nullptr; }},
    {-3, [](TPiecesRequest& q) { q.req.msh.n_vtx = 0; }},
    {-4, [](TPiecesRequest& q) { q.req.msh.n_tri = 0; }},
    {-5, [](TPiecesRequest& q) { q.req.cav.data = nullptr; }},
    {-6, [](TPiecesRequest& q) { q.req.cav.count = 0; }},
    {-9, [](TPiecesRequest& q) { q.req.add = nullptr; }},
    {-10, [](TPiecesRequest& q) { q.req.cav.capacity = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[71].c = 49; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[0].a = 0xFFFFFFFFu; }},
    {-12,
     [](TPiecesRequest& q) {
       static TArrArrVec no_Curves = {};
       q.req.lst = {&no_Curves, 1};
     }},
    {-15, [](TPiecesRequest& q) { q.pieces[1][1] = 72; }},
};

TEST_F(ComponentFilter, TellsEachFaultByItsCode_TheFirstOfTwo_AndLeavesTheResultAsItWas) {
  expect_Faults(kFaults, flt_Com, make_Good);
}

TEST_F(ComponentFilter, TellsTheStepThatHasNoMemory) {
  make_Good(r);
  EXPECT_EQ(r.list_Codes(), (Codes{-11, -14, -16, -17, 0}));
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  EXPECT_EQ(r.list_Codes(), (Codes{-11, -12, -14, -16, -17, 0}));
}

TEST_F(ComponentFilter, TakesAMissingRecordAsOneWithoutAMesh) {
  make_Good(r);
  r.fill();
  EXPECT_EQ(flt_Com(nullptr, &r.res), -1);
  EXPECT_EQ(flt_Com(&r.req, nullptr), -1);
  EXPECT_EQ(flt_Com(nullptr, nullptr), -1);
}

TEST_F(ComponentFilter, WritesNothingOfTheResultButCom) {
  make_Good(r);
  r.fill();
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  res.com = {};
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  ASSERT_EQ(flt_Com(&r.req, &res), 0);
  r.res.com = res.com;
  before.com = res.com;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(ComponentFilter, LeavesTheRequestAsItWas) {
  make_Good(r);
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  expect_Untouched(r);
}

TEST_F(ComponentFilter, WorksOnRecordsAtAMultipleOf4Bytes) {
  make_Good(r);
  expect_WorksUnaligned(r, flt_Com);
}

TEST_F(ComponentFilter, LeaksNothingInAHundredCycles) {
  make_Good(r);
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  expect_NoLeak(r);
}

TEST_F(ComponentFilter, WritesNoFile) {
  std::remove("cav.ply");
  make_Good(r);
  r.sets = {{{make_Rectangle(2, 2, 2, 2)}}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  std::FILE* file = std::fopen("cav.ply", "r");
  EXPECT_TRUE(file == nullptr);
  if (file) std::fclose(file);
}

}  // namespace
