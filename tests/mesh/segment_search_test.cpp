// The nearest of many segments against a walk along all of them, bit by bit.
#include "mesh/segment_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/flat_polyline.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;
using reference::Random;

namespace {

// The hostile kinds: on a lattice, where distances tie; of no length; of one place; far from the
// origin; long and short at once; so small that squares underflow.
T2DVEC make_Point(Random& random, uint32_t kind) {
  const T2DVEC p = random.pair(-5, 5);
  switch (kind) {
    case 0:
      return {std::round(p.x), std::round(p.y)};
    case 1:
      return {0.0, std::round(p.y)};
    case 2:
      return {1.5, -2.5};
    case 3:
      return {1e9 + p.x, p.y - 1e9};
    case 4:
      return std::pow(10.0, random.real(-9, 6)) * p;
    case 5:
      return std::pow(10.0, random.real(-170, -145)) * p;
    case 6:
      return 1e149 * p;
    default:
      return p;
  }
}
constexpr uint32_t kKinds = 8;

TFlatPolyline make_Segments(Random& random, uint32_t kind, uint32_t count) {
  TFlatPolyline pol;
  for (uint32_t i = 0; i <= count; ++i) pol.points.push_back(make_Point(random, kind));
  for (uint32_t i = 0; i < count; ++i)
    pol.segments.push_back({i, random.chance(0.8) ? i + 1 : uint32_t(random.below(count))});
  return pol;
}

bool is_Same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(SegmentSearch, EqualsAWalkAlongAllSegments) {
  for (uint32_t seed = 0; seed < scale_Cases(400); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    const uint32_t kind = seed % kKinds;
    const auto count = static_cast<uint32_t>(1 + std::pow(10.0, random.real(0, 3)));
    TFlatPolyline pol = make_Segments(random, kind, count);
    C2DSgmSearch search;
    ASSERT_TRUE(search.Build(pol.view()));
    uint32_t near = 0;
    for (int k = 0; k < 100; ++k) {
      T2DVEC p = make_Point(random, random.chance(0.8) ? kind : seed / kKinds % kKinds);
      if (random.chance(0.1)) p = pol.points[random.below(pol.points.size())];
      if (random.chance(0.1)) near = static_cast<uint32_t>(random.below(2 * count));
      ASSERT_TRUE(is_Same(search.Nearest(p, near), dst_Pol2(pol.view(), p))) << p.x << " " << p.y;
    }
  }
}

TEST(SegmentSearch, EqualsAWalk_ForWhatIsHugeOrNoNumber) {
  for (uint32_t seed = 0; seed < scale_Cases(100); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    TFlatPolyline pol = make_Segments(random, kKinds, 40);
    if (seed % 2) pol.points[random.below(40)].y = random.special();
    C2DSgmSearch search;
    ASSERT_TRUE(search.Build(pol.view()));
    uint32_t near = 0;
    for (int k = 0; k < 20; ++k) {
      const T2DVEC p = {random.special(), random.real(-3, 3)};
      ASSERT_TRUE(is_Same(search.Nearest(p, near), dst_Pol2(pol.view(), p))) << p.x << " " << p.y;
    }
  }
}

// Outlines, where most of the boxes are passed over.
TEST(SegmentSearch, EqualsAWalk_RoundALongOutline) {
  Random random(7);
  TFlatPolyline pol;
  const uint32_t count = 5000;
  for (uint32_t i = 0; i < count; ++i) {
    const double angle = 6.283185307179586 * i / count;
    const double radius = 50 + 10 * std::sin(7 * angle) + random.real(-0.05, 0.05);
    pol.points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    pol.segments.push_back({i, (i + 1) % count});
  }
  C2DSgmSearch search;
  ASSERT_TRUE(search.Build(pol.view()));
  uint32_t near = 0;
  for (uint32_t k = 0; k < scale_Cases(3000); ++k) {
    const T2DVEC p = k % 50 ? random.pair(-80, 80) : T2DVEC{random.real(-1e-9, 1e-9), 0.0};
    ASSERT_TRUE(is_Same(search.Nearest(p, near), dst_Pol2(pol.view(), p))) << p.x << " " << p.y;
  }
}

TEST(SegmentSearch, OfNothing_FindsNothing) {
  C2DSgmSearch search;
  uint32_t near = 0;
  EXPECT_EQ(search.Nearest({1, 2}, near), kAbsent);
  Random random(1);
  TFlatPolyline pol = make_Segments(random, kKinds, 20);
  ASSERT_TRUE(search.Build(pol.view()));
  search.Clear();
  EXPECT_EQ(search.Nearest({1, 2}, near), kAbsent);
}

TEST(SegmentSearch, Build_FailsAndLeavesItEmpty_WithoutArraysOrCounts) {
  Random random(2);
  TFlatPolyline pol = make_Segments(random, kKinds, 20);
  for (int missing = 0; missing < 5; ++missing) {
    C2DSgmSearch search;
    ASSERT_TRUE(search.Build(pol.view()));
    T2DPOL view = pol.view();
    if (missing == 0) view.pnt = nullptr;
    if (missing == 1) view.sgm = nullptr;
    if (missing == 2) view.n_pnt = 0;
    if (missing == 3) view.n_sgm = 0;
    if (missing == 4) view.n_pnt = 5;  // points that are not there
    EXPECT_FALSE(search.Build(view));
    uint32_t near = 0;
    EXPECT_EQ(search.Nearest({0, 0}, near), kAbsent);
  }
}

TEST(SegmentSearch, Build_FailsAndLeavesItEmpty_WhereverMemoryRunsOut) {
  Random random(3);
  TFlatPolyline pol = make_Segments(random, kKinds, 200);
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    C2DSgmSearch search;
    if (search.Build(pol.view())) return 1;
    uint32_t near = 0;
    return search.Nearest({0, 0}, near) == kAbsent ? 0 : -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{0, 1}));
}

// What the processor has stands in for the plain form.
TEST(SegmentBlocks, AreMeasuredAlikeByBothForms) {
  Random random(4);
  for (uint32_t round = 0; round < scale_Cases(20000); ++round) {
    TSgmBlock block;
    TBoxBlock boxes;
    for (uint32_t k = 0; k < kBlock; ++k) {
      const uint32_t kind = round % kKinds;
      const T2DVEC a = make_Point(random, kind), b = make_Point(random, kind);
      const double length = len(b - a);
      const T2DVEC along = length == 0.0 ? T2DVEC{0, 0} : (b - a) / length;
      block.ax[k] = a.x, block.ay[k] = a.y, block.bx[k] = b.x, block.by[k] = b.y;
      block.ux[k] = along.x, block.uy[k] = along.y, block.length[k] = length;
      const bool there = random.chance(0.9);
      const double none = std::numeric_limits<double>::infinity();
      boxes.low_x[k] = there ? std::min(a.x, b.x) : none;
      boxes.low_y[k] = there ? std::min(a.y, b.y) : none;
      boxes.high_x[k] = there ? std::max(a.x, b.x) : -none;
      boxes.high_y[k] = there ? std::max(a.y, b.y) : -none;
    }
    const T2DVEC p = make_Point(random, round / kKinds % kKinds);
    ASSERT_TRUE(is_Same(near_Block(block, p), near_BlockPlain(block, p))) << round;
    double squares[kBlock], plain[kBlock];
    const double limit = dst_Sqr(p, {boxes.low_x[0], boxes.low_y[0]});
    ASSERT_EQ(reach_Boxes(boxes, p, limit, squares), reach_BoxesPlain(boxes, p, limit, plain));
    ASSERT_EQ(std::memcmp(squares, plain, sizeof plain), 0) << round;
  }
}

}  // namespace
