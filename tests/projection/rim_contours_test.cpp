// The contours of the set cells of a grid.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "foundation/arrays.h"
#include "projection/rim_raster.h"
#include "tests/reference/plain_grid.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;
using reference::PlainCell;
using reference::PlainGrid;

namespace {

using Cells = std::vector<PlainCell>;

// Rows from the highest down, as they are seen; '#' is set.
PlainGrid draw_Grid(const std::vector<std::string>& picture) {
  PlainGrid grid(int(picture.size()), int(picture[0].size()));
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      grid.cells[r * grid.columns + c] = picture[grid.rows - 1 - r][c] == '#';
  return grid;
}

CBitMatrix to_Bits(const PlainGrid& grid) {
  CBitMatrix cells;
  EXPECT_TRUE(cells.init(grid.rows, grid.columns));
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      if (grid.at(r, c)) cells.set(r, c);
  return cells;
}

// Cells of 1 by 1 whose centres are their columns and rows.
TGriPar plain_Cells() {
  TGriPar grid;
  grid.org_xy = {-0.5, -0.5};
  grid.f_dxx = grid.f_dyy = 1.0;
  return grid;
}

std::vector<Cells> list_Contours(const PlainGrid& grid) {
  Scoped<TArr<TArr<T3DVEC>>> out;
  const bool traced = grid_Trace(to_Bits(grid), plain_Cells(), *out);
  EXPECT_EQ(traced, out->count != 0);
  std::vector<Cells> contours;
  for (uint32_t i = 0; i < out->count; ++i) {
    contours.emplace_back();
    for (uint32_t k = 0; k < out->data[i].count; ++k) {
      const T3DVEC& p = out->data[i].data[k];
      EXPECT_EQ(p.z, 0.0);
      contours.back().push_back({int(p.y), int(p.x)});
      EXPECT_EQ(p.y, contours.back().back().row);
      EXPECT_EQ(p.x, contours.back().back().column);
    }
  }
  return contours;
}
std::vector<Cells> list_Contours(const std::vector<std::string>& picture) {
  return list_Contours(draw_Grid(picture));
}

// ---- Named shapes ------------------------------------------------------------------------------

TEST(RimContours, OfABlock_RunCounterClockwiseFromItsLowestLeftCell) {
  const Cells expected = {{1, 1}, {1, 2}, {1, 3}, {2, 3}, {3, 3}, {3, 2}, {3, 1}, {2, 1}};
  EXPECT_EQ(list_Contours({".....", ".###.", ".###.", ".###.", "....."}),
            std::vector<Cells>{expected});
}

TEST(RimContours, OfARing_AreTheOuterOneAndTheInnerOneClockwise) {
  const Cells outer = {{0, 0}, {0, 1}, {0, 2}, {1, 2}, {2, 2}, {2, 1}, {2, 0}, {1, 0}};
  // From the lowest cell, up its left side: over the corners, which have no clear neighbour there.
  const Cells inner = {{0, 1}, {1, 0}, {2, 1}, {1, 2}};
  EXPECT_EQ(list_Contours({"###", "#.#", "###"}), (std::vector<Cells>{outer, inner}));
}

TEST(RimContours, OfASingleCell_AreOnePoint) {
  EXPECT_EQ(list_Contours({"...", ".#.", "..."}), (std::vector<Cells>{{{1, 1}}}));
  EXPECT_EQ(list_Contours({"#"}), (std::vector<Cells>{{{0, 0}}}));
}

TEST(RimContours, OfAGroupOneCellWide_GoThereAndBackThroughTheSameCells) {
  EXPECT_EQ(list_Contours({"####"}),
            (std::vector<Cells>{{{0, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 2}, {0, 1}}}));
  EXPECT_EQ(list_Contours({"#", "#", "#"}), (std::vector<Cells>{{{0, 0}, {1, 0}, {2, 0}, {1, 0}}}));
  EXPECT_EQ(list_Contours({"##"}), (std::vector<Cells>{{{0, 0}, {0, 1}}}));
}

TEST(RimContours, StartAtTheLowestRow_ThenAtTheLowestColumn) {
  // The lowest row's first cell lies right of other cells, and the contour comes back to it.
  const auto contours = list_Contours({"#...", ".#.#", "..#."});
  ASSERT_EQ(contours.size(), 1u);
  EXPECT_EQ(contours[0], (Cells{{0, 2}, {1, 3}, {0, 2}, {1, 1}, {2, 0}, {1, 1}}));
}

TEST(RimContours, HoldCellsTogetherThatTouchAtACorner) {
  EXPECT_EQ(list_Contours({".#", "#."}), (std::vector<Cells>{{{0, 0}, {1, 1}}}));
  EXPECT_EQ(list_Contours({"#.", ".#"}), (std::vector<Cells>{{{0, 1}, {1, 0}}}));
}

TEST(RimContours, KeepHolesApartThatTouchAtACorner) {
  const auto contours = list_Contours({"####", "##.#", "#.##", "####"});
  ASSERT_EQ(contours.size(), 3u);
  EXPECT_EQ(contours[1], (Cells{{0, 1}, {1, 0}, {2, 1}, {1, 2}}));
  EXPECT_EQ(contours[2], (Cells{{1, 2}, {2, 1}, {3, 2}, {2, 3}}));
}

TEST(RimContours, TakeANotchThatIsOpenOverACorner_ForAHole) {
  // The clear cell touches the outside at a corner alone, which does not connect it.
  EXPECT_EQ(list_Contours({"##.", "#.#", "###"}).size(), 2u);
  EXPECT_EQ(list_Contours({"#.#", "#.#", "###"}).size(), 1u);
}

TEST(RimContours, OfGroupsComeByTheirFirstCells_EachOuterOneWithItsInnerOnes) {
  // The frame begins first, has a hole on either side, and another group in its right one.
  const auto contours = list_Contours({
      "...........",
      ".#########.",
      ".#.#.....#.",
      ".###..##.#.",
      "...#.....#.",
      ".#.#######.",
  });
  ASSERT_EQ(contours.size(), 5u);
  EXPECT_EQ(contours[0], (Cells{{0, 1}}));
  EXPECT_EQ(contours[1][0], (PlainCell{0, 3}));  // outer
  EXPECT_EQ(contours[2][0], (PlainCell{0, 4}));  // the right hole
  EXPECT_EQ(contours[3][0], (PlainCell{2, 2}));  // the left hole
  EXPECT_EQ(contours[4], (Cells{{2, 6}, {2, 7}}));
}

TEST(RimContours, TakeTheOutsideOfTheGridForClear) {
  const auto contours = list_Contours({"####", "####", "####"});
  ASSERT_EQ(contours.size(), 1u);
  EXPECT_EQ(contours[0].size(), 10u);
}

TEST(RimContours, StandAtTheCentresOfTheCells) {
  TGriPar grid;
  grid.org_xy = {10.25, -3.5};
  grid.f_dxx = 0.1;
  grid.f_dyy = 0.7;
  CBitMatrix cells;
  ASSERT_TRUE(cells.init(4, 5));
  cells.set(2, 3);
  Scoped<TArr<TArr<T3DVEC>>> out;
  ASSERT_TRUE(grid_Trace(cells, grid, *out));
  EXPECT_EQ(out->data[0].data[0].x, 10.25 + (3 + 0.5) * 0.1);
  EXPECT_EQ(out->data[0].data[0].y, -3.5 + (2 + 0.5) * 0.7);
}

TEST(RimContours, OfAnEmptyGrid_AreARefusal) {
  Scoped<TArr<TArr<T3DVEC>>> out;
  CBitMatrix cells;
  EXPECT_FALSE(grid_Trace(cells, plain_Cells(), *out));
  ASSERT_TRUE(cells.init(9, 13));
  EXPECT_FALSE(grid_Trace(cells, plain_Cells(), *out));
  EXPECT_EQ(out->count, 0u);
  // Bits behind the last cell are no cells.
  cells.flip_All();
  for (uint32_t r = 0; r < 9; ++r) ASSERT_TRUE(cells.clear_Run(r, 0, 12));
  EXPECT_FALSE(grid_Trace(cells, plain_Cells(), *out));
}

TEST(RimContours, ReadNoCellsBehindTheLast) {
  CBitMatrix cells;
  ASSERT_TRUE(cells.init(3, 3));
  cells.flip_All();
  Scoped<TArr<TArr<T3DVEC>>> out;
  ASSERT_TRUE(grid_Trace(cells, plain_Cells(), *out));
  ASSERT_EQ(out->count, 1u);
  EXPECT_EQ(out->data[0].count, 8u);
}

TEST(RimContours, FailWithoutMemory_AndLeakNothing) {
  const CBitMatrix cells = to_Bits(draw_Grid({"#.###", "#.#.#", "..###"}));
  const auto codes = list_FailureCodes([&] {
    Scoped<TArr<TArr<T3DVEC>>> out;
    const bool traced = grid_Trace(cells, plain_Cells(), *out);
    EXPECT_EQ(out->count, traced ? 3u : 0u);
    return traced ? 0 : -36;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-36, 0}));
}

TEST(RimContours, OfALargeDisk_CostNoMoreThanItsBorder) {
  CBitMatrix cells;
  ASSERT_TRUE(cells.init(9000, 9000));
  TGriPar grid = plain_Cells();
  Scoped<TDisk> disk;
  ASSERT_TRUE(grid_Disk(4000.0, grid, *disk));
  ASSERT_TRUE(cells.stamp(4500, 4500, *disk, true));
  Scoped<TArr<TArr<T3DVEC>>> out;
  ASSERT_TRUE(grid_Trace(cells, grid, *out));
  ASSERT_EQ(out->count, 1u);
  EXPECT_GT(out->data[0].count, 20000u);
  for (uint32_t k = 0; k < out->data[0].count; ++k)
    ASSERT_NEAR(dst(out->data[0].data[k], {4500, 4500, 0}), 4000.0, 1.5);
}

// ---- What holds of all -------------------------------------------------------------------------

bool is_BorderCell(const PlainGrid& grid, const PlainCell& cell) {
  return grid.at(cell.row, cell.column) &&
         !(grid.at(cell.row - 1, cell.column) && grid.at(cell.row + 1, cell.column) &&
           grid.at(cell.row, cell.column - 1) && grid.at(cell.row, cell.column + 1));
}

// Twice the area within the points.
int64_t get_Area(const Cells& contour) {
  int64_t area = 0;
  for (size_t i = 0; i < contour.size(); ++i) {
    const PlainCell &a = contour[i], &b = contour[(i + 1) % contour.size()];
    area += int64_t{a.column} * b.row - int64_t{b.column} * a.row;
  }
  return area;
}

// Clear cells that are cut off from the outside, counted over four neighbours in a grid with a rim
// of clear cells added.
int count_Holes(const PlainGrid& grid) {
  PlainGrid wide(grid.rows + 2, grid.columns + 2);
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      wide.cells[(r + 1) * wide.columns + c + 1] = grid.at(r, c);
  const std::vector<int> labels = reference::label(wide, false, false);
  return *std::max_element(labels.begin(), labels.end()) - 1;
}

void expect_Rules(const PlainGrid& grid, const std::vector<Cells>& contours) {
  const std::vector<int> groups = reference::label(grid, true, true);
  const auto group_Of = [&](const PlainCell& cell) {
    return groups[cell.row * grid.columns + cell.column];
  };
  std::set<PlainCell> passed;
  std::set<int> begun;
  int outer = 0, inner = 0;
  for (const Cells& contour : contours) {
    ASSERT_EQ(*std::min_element(contour.begin(), contour.end()), contour[0]);
    for (size_t i = 0; i < contour.size(); ++i) {
      const PlainCell &a = contour[i], &b = contour[(i + 1) % contour.size()];
      ASSERT_TRUE(is_BorderCell(grid, a));
      ASSERT_LE(std::max(std::abs(a.row - b.row), std::abs(a.column - b.column)), 1);
      if (contour.size() > 1) {
        ASSERT_FALSE(a == b);
      }
      ASSERT_EQ(group_Of(a), group_Of(contour[0]));
      passed.insert(a);
    }
    // The outer contour of a group is its first.
    const bool is_Outer = begun.insert(group_Of(contour[0])).second;
    ASSERT_EQ(*begun.rbegin(), group_Of(contour[0])) << "groups out of order";
    ASSERT_TRUE(is_Outer ? get_Area(contour) >= 0 : get_Area(contour) < 0);
    ++(is_Outer ? outer : inner);
  }
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      ASSERT_EQ(is_BorderCell(grid, {r, c}), passed.count({r, c}) == 1);
  ASSERT_EQ(outer, *std::max_element(groups.begin(), groups.end()));
  ASSERT_EQ(inner, count_Holes(grid));
}

void expect_PlainContours(const PlainGrid& grid) {
  const std::vector<Cells> contours = list_Contours(grid);
  ASSERT_NO_FATAL_FAILURE(expect_Rules(grid, contours));
  const std::vector<reference::PlainContour> plain = reference::trace_Sides(grid);
  ASSERT_EQ(contours.size(), plain.size());
  for (size_t i = 0; i < plain.size(); ++i) ASSERT_EQ(contours[i], plain[i].cells) << i;
}

TEST(RimContours, EqualTheWalkAlongSides_OnAllGridsOfFourByThree) {
  for (uint32_t bits = 0; bits < 1u << 12; ++bits) {
    PlainGrid grid(4, 3);
    for (int i = 0; i < 12; ++i) grid.cells[i] = (bits >> i & 1) != 0;
    ASSERT_NO_FATAL_FAILURE(expect_PlainContours(grid)) << bits;
  }
}

TEST(RimContours, EqualTheWalkAlongSides_OnRandomGrids) {
  constexpr uint64_t seed = 20240611;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  const uint32_t rounds = scale_Cases(1500);
  for (uint32_t round = 0; round < rounds; ++round) {
    const int rows = int(random.integer(1, 14)), columns = int(random.integer(1, 19));
    PlainGrid grid(rows, columns);
    const double share = random.real(0.2, 0.95);
    for (char& cell : grid.cells) cell = random.chance(share);
    ASSERT_NO_FATAL_FAILURE(expect_PlainContours(grid)) << "round " << round;
  }
}

}  // namespace
