// The range of many points, found in blocks.
#include "mesh/point_range.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "tests/support/threads.h"

namespace undercut::tests {

namespace {

TPointRange range_Of(const std::vector<T3DVEC>& points) {
  return range_Blocks(static_cast<uint32_t>(points.size()), [&](uint32_t first, uint32_t end) {
    TPointRange part;
    for (uint32_t i = first; i < end; ++i) part.add(points[i]);
    return part;
  });
}

}  // namespace

TEST(PointRange, IsThatOfAllPoints_ForAnyNumberOfThreads) {
  reference::Random random(20241125);
  for (const int count : {1, 2, 3}) {
    const CThreads threads(count);
    for (const uint32_t n : {1u, 1023u, 1024u, 1025u, 5000u, 9216u}) {
      std::vector<T3DVEC> points;
      C3DAABB box;
      for (uint32_t i = 0; i < n; ++i) {
        points.push_back(random.triple(-1, 1));
        box.add(points.back());
      }
      EXPECT_TRUE(range_Of(points).is_finite);
      EXPECT_TRUE(range_Of(points).box.min == box.min && range_Of(points).box.max == box.max) << n;
      // The first and the last count too.
      for (const uint32_t odd : {0u, n / 2, n - 1}) {
        std::vector<T3DVEC> far = points;
        far[odd] = {-5, 6, -7};
        EXPECT_TRUE(range_Of(far).box.min.x == -5 && range_Of(far).box.max.y == 6) << n;
        far[odd].z = std::numeric_limits<double>::quiet_NaN();
        EXPECT_FALSE(range_Of(far).is_finite) << n;
        EXPECT_EQ(range_Of(far).box.max.y, 6) << n;
        far[odd].z = -std::numeric_limits<double>::infinity();
        EXPECT_FALSE(range_Of(far).is_finite) << n;
      }
    }
  }
}

TEST(PointRange, OfNoPoints_IsEmptyAndFinite) {
  EXPECT_TRUE(range_Of({}).box.is_Inverted());
  EXPECT_TRUE(range_Of({}).is_finite);
}

}  // namespace undercut::tests
