#include "foundation/band.h"

#include <gtest/gtest.h>

using namespace undercut;

namespace {

// The side of the middle plane is of no account.
bool holds(const T3DSLB& band, const T3DVEC& p) { return cls_Slab(band, p) != '0'; }

TEST(Band, LiesRoundThePlaneOfBothDirections_ThroughOrg) {
  const T3DSLB band = make_Band({{5, 2, 5}, {3, 0, 0}}, {0, 0, -7}, 0.5);
  EXPECT_TRUE(holds(band, {-90, 2.25, 40}));
  EXPECT_TRUE(holds(band, {-90, 1.75, 40}));
  EXPECT_FALSE(holds(band, {5, 2.2500001, 5}));
  EXPECT_FALSE(holds(band, {5, 1.7499999, 5}));
}

TEST(Band, HasANormalAsLongAsTheSineOfTheAngle) {
  const T3DSLB band = make_Band({{0, 0, 0}, {2, 0, 0}}, {1, 0, 1}, 2);
  EXPECT_DOUBLE_EQ(len(band.frm.x), std::sqrt(0.5));
  EXPECT_TRUE(holds(band, {0, 0.7071, 0}));
  EXPECT_FALSE(holds(band, {0, 0.7072, 0}));
}

TEST(Band, OfParallelDirections_HoldsEverything) {
  for (const double along : {2.0, -2.0}) {
    const T3DSLB band = make_Band({{0, 0, 0}, {0, 3, 0}}, {0, along, 0}, 0.1);
    EXPECT_EQ(band.frm.x, (T3DVEC{0, 0, 0}));
    EXPECT_TRUE(holds(band, {1e9, -1e9, 1e9}));
  }
}

TEST(Band, HasTheUnitDirectionsAsItsFurtherAxes_AndHalfTheWidthToEachSide) {
  const T3DSLB band = make_Band({{1, 2, 3}, {0, 4, 0}}, {0, 0, 5}, 3.8);
  EXPECT_EQ(band.frm.x, (T3DVEC{1, 0, 0}));
  EXPECT_EQ(band.frm.y, (T3DVEC{0, 1, 0}));
  EXPECT_EQ(band.frm.z, (T3DVEC{0, 0, 1}));
  EXPECT_EQ(band.frm.org, (T3DVEC{1, 2, 3}));
  EXPECT_EQ(band.low, -1.9);
  EXPECT_EQ(band.high, 1.9);
}

}  // namespace
