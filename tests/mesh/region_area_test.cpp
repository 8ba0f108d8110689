// The area of a list of triangles.
#include "mesh/region_area.h"

#include <gtest/gtest.h>

#include "tests/mesh/soups.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

TEST(RegionArea, IsTheSumOverTheList) {
  TSoup box = make_Box(2, 3, 5);
  std::vector<uint32_t> list = {0, 3, 11};
  EXPECT_EQ(reg_Area(box.msh(), view_Lst(list)), 3.0 + 3.0 + 7.5);
}

TEST(RegionArea, CountsATriangleAsOftenAsItIsListed) {
  TSoup box = make_Box(2, 3, 5);
  std::vector<uint32_t> list = {4, 4};
  EXPECT_EQ(reg_Area(box.msh(), view_Lst(list)), 10.0);
}

TEST(RegionArea, IsSummedInTheOrderOfTheList) {
  // One large triangle and two that are lost beside it, unless they come first.
  TSoup soup = {{{0, 0, 0}, {0x1p54, 0, 0}, {0, 1, 0}, {1, 0, 0}}, {{0, 1, 2}, {0, 3, 2}}};
  std::vector<uint32_t> last = {0, 1, 1, 1}, first = {1, 1, 1, 0};
  EXPECT_EQ(reg_Area(soup.msh(), view_Lst(last)), 0x1p53);
  EXPECT_GT(reg_Area(soup.msh(), view_Lst(first)), 0x1p53);
}

TEST(RegionArea, OfAnEmptyListIsZero) {
  TSoup box = make_Box(2, 3, 5);
  EXPECT_EQ(reg_Area(box.msh(), {nullptr, 4, 4}), 0.0);
}
