// Frames and matrices of tool axes.
#include "foundation/axis_frames.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
const T3DVEC kNotFinite[] = {{kNoNumber, 0, 1}, {0, kNoNumber, 1},  {0, 1, kNoNumber},
                             {kInfinite, 0, 1}, {0, -kInfinite, 1}, {0, 1, kInfinite}};

bool are_Equal(const T3DMAT& a, const T3DMAT& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

T3DMAT mat_Of(const T3DRAY& axis) {
  T3DMAT mat;
  frm_ToMat(mat, frm_Ray(axis));
  return mat;
}

TEST(AxisFrames, AreThoseOfTheRays) {
  const T3DRAY axis = {{1, 2, 3}, {0.3, -4, 0.5}};
  T3DFRM frm;
  ASSERT_TRUE(frm_Axis(axis, frm));
  const T3DFRM expected = frm_Ray(axis);
  EXPECT_EQ(std::memcmp(&frm, &expected, sizeof frm), 0);
  EXPECT_EQ(frm.z, unit(unit(axis.dir)));
  EXPECT_EQ(frm.org, axis.org);
}

TEST(AxisFrames, AreTheIdentity_ForAnAxisWithoutDirection) {
  T3DFRM frm;
  ASSERT_TRUE(frm_Axis({{1, 2, 3}, {0, -0.0, 0}}, frm));
  EXPECT_EQ(std::memcmp(&frm, &kIdentity, sizeof frm), 0);
}

TEST(AxisFrames, ExistForAnyFiniteDirection_HoweverLargeOrSmall) {
  const double largest = std::numeric_limits<double>::max();
  for (const T3DVEC& dir : {T3DVEC{largest, -largest, largest}, {5e-324, 0, 0}, {0, 1e-200, 1}}) {
    T3DFRM frm;
    ASSERT_TRUE(frm_Axis({{0, 0, 0}, dir}, frm));
    EXPECT_TRUE(std::isfinite(frm.z.x) && std::isfinite(frm.z.y) && std::isfinite(frm.z.z));
  }
}

TEST(AxisFrames, AreMissing_ForADirectionThatIsNotFinite) {
  for (const T3DVEC& dir : kNotFinite) {
    T3DFRM frm;
    EXPECT_FALSE(frm_Axis({{0, 0, 0}, dir}, frm));
  }
}

TEST(AxisFrames, HoldForAnyOrigin) {
  T3DFRM frm;
  EXPECT_TRUE(frm_Axis({{kNoNumber, kInfinite, 0}, {0, 0, 1}}, frm));
  EXPECT_EQ(frm.z, (T3DVEC{0, 0, 1}));
}

TEST(AxisMatrices, ComeInTheOrderOfTheAxes) {
  std::vector<T3DRAY> axi = {
      {{1, 2, 3}, {0, 0, -2}}, {{4, 5, 6}, {1, 1, 1}}, {{7, 8, 9}, {0, 0, 0}}};
  Scoped<TArr<T3DMAT>> mats;
  ASSERT_EQ(mat_Axes(view_Arr(axi), *mats), 0);
  ASSERT_EQ(mats->count, 3u);
  for (uint32_t k = 0; k < 3; ++k) EXPECT_TRUE(are_Equal(mats->data[k], mat_Of(axi[k]))) << k;
}

TEST(AxisMatrices, OfNoAxes_SucceedWithAnEmptyRecord) {
  T3DRAY axis = {};
  for (const TArr<T3DRAY>& none : {TArr<T3DRAY>{nullptr, 0}, {nullptr, 9}, {&axis, 0}}) {
    T3DMAT unread = {};
    TArr<T3DMAT> mats = {&unread, 1};
    EXPECT_EQ(mat_Axes(none, mats), 0);
    EXPECT_TRUE(mats.data == nullptr);
    EXPECT_EQ(mats.count, 0u);
  }
}

TEST(AxisMatrices, GiveMinus5_WithoutMemory) {
  std::vector<T3DRAY> axi(2, T3DRAY{{0, 0, 0}, {0, 0, 1}});
  Scoped<TArr<T3DMAT>> mats;
  const FailingAllocation failing(1);
  EXPECT_EQ(mat_Axes(view_Arr(axi), *mats), -5);
  EXPECT_TRUE(failing.has_Failed());
  EXPECT_EQ(mats->count, 0u);
}

TEST(AxisMatrices, GiveMinus6_ForAnAxisWithoutAFrame_AndCanBeReleased) {
  for (const T3DVEC& dir : kNotFinite) {
    std::vector<T3DRAY> axi(3, T3DRAY{{0, 0, 0}, {0, 0, 1}});
    axi[2].dir = dir;
    const int64_t live = live_Allocations();
    {
      Scoped<TArr<T3DMAT>> mats;
      EXPECT_EQ(mat_Axes(view_Arr(axi), *mats), -6);
    }
    EXPECT_EQ(live_Allocations(), live);
  }
}

}  // namespace
