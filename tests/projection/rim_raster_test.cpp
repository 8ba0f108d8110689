// The grid of a rim: fitting, drawing, and the disk.
#include "projection/rim_raster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "foundation/arrays.h"
#include "tests/reference/plain_grid.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;
using reference::PlainGrid;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
const double kNoNumber = std::nan("");

// ---- Fitting -----------------------------------------------------------------------------------

// A box, in whole numbers.
TGriPar make_Box(double x0, double y0, double x1, double y1) {
  TGriPar grid;
  grid.org_xy = {x0, y0};
  grid.ext_xy = {x1, y1};
  grid.f_val = 0.0;
  return grid;
}
TGriPar sized_Box(double width, double height, double dxx, double dyy) {
  TGriPar grid = make_Box(0, 0, width, height);
  grid.b_res = 1;
  grid.f_dxx = dxx;
  grid.f_dyy = dyy;
  return grid;
}

TEST(GridFit, DividesTheBoxByTheNumbers) {
  TGriPar grid = make_Box(1, 2, 11, 8);
  grid.n_col = 40;
  grid.n_row = 3;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.f_dxx, 0.25);
  EXPECT_EQ(grid.f_dyy, 2.0);
  EXPECT_EQ(grid.org_xy, (T2DVEC{1, 2}));
  EXPECT_EQ(grid.ext_xy, (T2DVEC{11, 8}));
  EXPECT_EQ(grid.n_col, 40u);
  EXPECT_EQ(grid.n_row, 3u);
}

TEST(GridFit, FindsTheNumbersFromTheSize_OneCellMoreOnEachSide_AndCentresTheBox) {
  TGriPar grid = sized_Box(10, 6, 4, 2);
  ASSERT_TRUE(grid_Fit(grid));
  // 18 wide with a cell on each side: five cells of 4, of whose surplus a half goes to each side.
  EXPECT_EQ(grid.n_col, 5u);
  EXPECT_EQ(grid.org_xy.x, -5.0);
  EXPECT_EQ(grid.ext_xy.x, 15.0);
  // 10 high: five cells of 2 without surplus.
  EXPECT_EQ(grid.n_row, 5u);
  EXPECT_EQ(grid.org_xy.y, -2.0);
  EXPECT_EQ(grid.ext_xy.y, 8.0);
  EXPECT_EQ(grid.f_dxx, 4.0);
  EXPECT_EQ(grid.f_dyy, 2.0);
}

TEST(GridFit, GrowsTheBoxByItsValueFirst) {
  TGriPar grid = make_Box(1, 2, 11, 8);
  grid.f_val = 0.5;
  grid.n_col = 11;
  grid.n_row = 7;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.org_xy, (T2DVEC{0.5, 1.5}));
  EXPECT_EQ(grid.ext_xy, (T2DVEC{11.5, 8.5}));
  EXPECT_EQ(grid.f_dxx, 1.0);
  EXPECT_EQ(grid.f_dyy, 1.0);

  grid = sized_Box(10, 6, 1, 1);
  grid.f_val = 2.0;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.n_col, 16u);
  EXPECT_EQ(grid.n_row, 12u);
  EXPECT_EQ(grid.org_xy, (T2DVEC{-3, -3}));
}

TEST(GridFit, RefusesASizeThatIsNotAbove0_WhereItCounts) {
  for (const double size : {0.0, -0.0, -0.1, -kInfinite, kInfinite, kNoNumber}) {
    TGriPar grid = sized_Box(10, 6, size, 1);
    EXPECT_FALSE(grid_Fit(grid)) << size;
    grid = sized_Box(10, 6, 1, size);
    EXPECT_FALSE(grid_Fit(grid)) << size;
    grid.b_res = 0;
    grid.f_dxx = size;
    EXPECT_TRUE(grid_Fit(grid)) << size;
  }
}

TEST(GridFit, RefusesABoxThatIsNotFinite) {
  constexpr double huge = 1.7e308;
  for (const uint8_t b_res : {uint8_t{0}, uint8_t{1}, uint8_t{255}}) {
    for (const double x : {kInfinite, -kInfinite, kNoNumber}) {
      for (int place = 0; place < 4; ++place) {
        TGriPar grid = make_Box(place == 0 ? x : 0, place == 1 ? x : 0, place == 2 ? x : 1,
                                place == 3 ? x : 1);
        grid.b_res = b_res;
        EXPECT_FALSE(grid_Fit(grid)) << place;
      }
    }
    TGriPar grid = make_Box(-huge, 0, huge, 1);
    grid.b_res = b_res;
    EXPECT_FALSE(grid_Fit(grid));
    grid = make_Box(0, 0, 1, 1);
    grid.f_val = kNoNumber;
    grid.b_res = b_res;
    EXPECT_FALSE(grid_Fit(grid));
  }
  // The whole cells alone leave the range.
  TGriPar grid = sized_Box(0.3e308, 1, 0.7e308, 1);
  EXPECT_FALSE(grid_Fit(grid));
}

TEST(GridFit, LeavesNumbersOf0_AndTheSizesWithThem) {
  TGriPar grid = make_Box(0, 0, 10, 10);
  grid.n_col = 0;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.n_col, 0u);
  EXPECT_EQ(grid.f_dxx, 0.1);
  EXPECT_EQ(grid.f_dyy, 0.01);
}

TEST(GridFit, Makes0OfANumberBeyond32Bits) {
  // A cell on each side comes on top.
  TGriPar grid = sized_Box(4294967293.0, 1, 1, 1);
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.n_col, 4294967295u);
  EXPECT_EQ(grid.n_row, 3u);
  for (const double width : {4294967293.5, 4294967294.0, 1e300}) {
    grid = sized_Box(width, 1, 1, 1);
    ASSERT_TRUE(grid_Fit(grid));
    EXPECT_EQ(grid.n_col, 0u) << width;
  }
  grid = sized_Box(1, 1, 1, 5e-324);
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.n_row, 0u);
  // A box turned inside out has no cells either.
  grid = sized_Box(-10, 1, 1, 1);
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.n_col, 0u);
}

// The steps once more, in the order of their operations.
void fit_Plainly(double& low, double& high, double& size, uint32_t& count, bool b_res) {
  if (!b_res) {
    size = (high - low) / count;
    return;
  }
  low = low - size;
  high = high + size;
  const double width = high - low;
  count = static_cast<uint32_t>(std::ceil(width / size));
  const double surplus = count * size - width;
  low = low - 0.5 * surplus;
  high = low + count * size;
}

TEST(GridFit, EqualsItsStepsToTheLastBit_OnRandomBoxes) {
  constexpr uint64_t seed = 20240612;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(20000); ++round) {
    const T2DVEC low = random.pair(-100, 100), extent = random.pair(0, 100);
    TGriPar grid = make_Box(low.x, low.y, low.x + extent.x, low.y + extent.y);
    grid.b_res = random.chance(0.5);
    grid.f_dxx = random.real(0.01, 10);
    grid.f_dyy = random.real(0.01, 10);
    grid.n_col = static_cast<uint32_t>(random.integer(1, 5000));
    grid.n_row = static_cast<uint32_t>(random.integer(1, 5000));
    TGriPar plain = grid;
    fit_Plainly(plain.org_xy.x, plain.ext_xy.x, plain.f_dxx, plain.n_col, plain.b_res);
    fit_Plainly(plain.org_xy.y, plain.ext_xy.y, plain.f_dyy, plain.n_row, plain.b_res);
    ASSERT_TRUE(grid_Fit(grid));
    ASSERT_EQ(grid.org_xy, plain.org_xy);
    ASSERT_EQ(grid.ext_xy, plain.ext_xy);
    ASSERT_EQ(grid.f_dxx, plain.f_dxx);
    ASSERT_EQ(grid.f_dyy, plain.f_dyy);
    ASSERT_EQ(grid.n_col, plain.n_col);
    ASSERT_EQ(grid.n_row, plain.n_row);
  }
}

// ---- Drawing -----------------------------------------------------------------------------------

// Cells of 1 by 1 from the origin.
TGriPar unit_Cells(uint32_t rows, uint32_t columns) {
  TGriPar grid = make_Box(0, 0, columns, rows);
  grid.n_row = rows;
  grid.n_col = columns;
  EXPECT_TRUE(grid_Fit(grid));
  return grid;
}

PlainGrid to_Plain(const CBitMatrix& cells) {
  PlainGrid plain(static_cast<int>(cells.rows()), static_cast<int>(cells.columns()));
  for (uint32_t r = 0; r < cells.rows(); ++r)
    for (uint32_t c = 0; c < cells.columns(); ++c)
      plain.cells[r * cells.columns() + c] = cells.test(r, c);
  return plain;
}

using Cells = std::vector<std::pair<int, int>>;  // row, column

Cells list_Drawn(const TGriPar& grid, const T3DFAC& f) {
  CBitMatrix cells;
  EXPECT_TRUE(cells.init(grid.n_row, grid.n_col));
  EXPECT_TRUE(grid_Draw(grid, f, cells));
  Cells list;
  const PlainGrid plain = to_Plain(cells);
  for (int r = 0; r < plain.rows; ++r)
    for (int c = 0; c < plain.columns; ++c)
      if (plain.at(r, c)) list.emplace_back(r, c);
  return list;
}
Cells draw_Point(double x, double y) {
  return list_Drawn(unit_Cells(4, 5), {{x, y, 0}, {x, y, 0}, {x, y, 0}});
}
Cells draw_Line(const T3DVEC& a, const T3DVEC& b) {
  return list_Drawn(unit_Cells(4, 5), {a, b, a});
}

bool can_Draw(const TGriPar& grid, const T3DFAC& f) {
  CBitMatrix cells;
  EXPECT_TRUE(cells.init(std::max(grid.n_row, 1u), std::max(grid.n_col, 1u)));
  return grid_Draw(grid, f, cells);
}
bool can_DrawPoint(const TGriPar& grid, double x, double y) {
  return can_Draw(grid, {{x, y, 0}, {x, y, 0}, {x, y, 0}});
}

TEST(GridDraw, SetsTheCellThatHoldsAPoint) {
  EXPECT_EQ(draw_Point(2.5, 1.5), (Cells{{1, 2}}));
  EXPECT_EQ(draw_Point(0.001, 3.999), (Cells{{3, 0}}));
}

TEST(GridDraw, SetsTheCellsOnBothSidesOfALine_ForAPointOnIt) {
  EXPECT_EQ(draw_Point(2, 1.5), (Cells{{1, 1}, {1, 2}}));
  EXPECT_EQ(draw_Point(2.5, 1), (Cells{{0, 2}, {1, 2}}));
  EXPECT_EQ(draw_Point(2, 1), (Cells{{0, 1}, {0, 2}, {1, 1}, {1, 2}}));
}

TEST(GridDraw, TakesTheBorderOfTheGridForItsFirstAndLastCells) {
  EXPECT_EQ(draw_Point(0, 0), (Cells{{0, 0}}));
  EXPECT_EQ(draw_Point(5, 4), (Cells{{3, 4}}));
  EXPECT_EQ(draw_Point(0, 4), (Cells{{3, 0}}));
  EXPECT_EQ(draw_Point(5, 1.5), (Cells{{1, 4}}));
}

TEST(GridDraw, SetsEveryCellThatASegmentTouches) {
  EXPECT_EQ(draw_Line({0.5, 0.5, 0}, {2.5, 0.5, 0}), (Cells{{0, 0}, {0, 1}, {0, 2}}));
  EXPECT_EQ(draw_Line({0.5, 2.5, 0}, {0.5, 0.5, 0}), (Cells{{0, 0}, {1, 0}, {2, 0}}));
  // Along a line between rows, the cells of both rows.
  EXPECT_EQ(draw_Line({0.5, 1, 0}, {1.5, 1, 0}), (Cells{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
  // Through corners of cells, those beside them as well.
  EXPECT_EQ(draw_Line({0.5, 0.5, 0}, {1.5, 1.5, 0}), (Cells{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
  EXPECT_EQ(draw_Line({1.5, 0.5, 0}, {0.5, 1.5, 0}), (Cells{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
}

// A quotient of 2 by 98 times 49 would fall short of 1.
TEST(GridDraw, FindsACrossingOnALineBetweenColumns_JustThere) {
  const Cells cells = list_Drawn(unit_Cells(98, 3), {{0, 0, 0}, {2, 98, 0}, {0, 0, 0}});
  for (const int row : {48, 49})
    for (const int column : {0, 1})
      EXPECT_EQ(std::count(cells.begin(), cells.end(), std::pair(row, column)), 1);
  EXPECT_EQ(std::count(cells.begin(), cells.end(), std::pair(47, 1)), 0);
}

TEST(GridDraw, FillsATriangle) {
  const TGriPar grid = unit_Cells(6, 6);
  EXPECT_EQ(list_Drawn(grid, {{1.5, 1.5, 0}, {4.5, 1.5, 0}, {1.5, 4.5, 0}}), (Cells{{1, 1},
                                                                                    {1, 2},
                                                                                    {1, 3},
                                                                                    {1, 4},
                                                                                    {2, 1},
                                                                                    {2, 2},
                                                                                    {2, 3},
                                                                                    {2, 4},
                                                                                    {3, 1},
                                                                                    {3, 2},
                                                                                    {3, 3},
                                                                                    {4, 1},
                                                                                    {4, 2}}));
}

TEST(GridDraw, PassesOverZ) {
  const TGriPar grid = unit_Cells(4, 5);
  EXPECT_EQ(list_Drawn(grid, {{1.5, 1.5, kNoNumber}, {1.5, 1.5, kInfinite}, {1.5, 1.5, -1e308}}),
            (Cells{{1, 1}}));
}

TEST(GridDraw, AddsToWhatIsSet) {
  const TGriPar grid = unit_Cells(4, 5);
  CBitMatrix cells;
  ASSERT_TRUE(cells.init(4, 5));
  ASSERT_TRUE(grid_Draw(grid, {{0.5, 0.5, 0}, {0.5, 0.5, 0}, {0.5, 0.5, 0}}, cells));
  ASSERT_TRUE(grid_Draw(grid, {{3.5, 0.5, 0}, {3.5, 0.5, 0}, {3.5, 0.5, 0}}, cells));
  EXPECT_TRUE(cells.test(0, 0));
  EXPECT_TRUE(cells.test(0, 3));
  EXPECT_FALSE(cells.test(0, 1));
}

TEST(GridDraw, RefusesACornerOutside_OrOneThatIsNoNumber) {
  const TGriPar grid = unit_Cells(4, 5);
  for (const double x : {-1e-9, 5.0 + 1e-9, -1e300, 1e300, kInfinite, -kInfinite, kNoNumber}) {
    for (int corner = 0; corner < 3; ++corner) {
      T3DVEC p[3] = {{1, 1, 0}, {2, 1, 0}, {1, 2, 0}};
      p[corner].x = x;
      EXPECT_FALSE(can_Draw(grid, {p[0], p[1], p[2]})) << x;
      p[corner] = {1, x, 0};
      EXPECT_FALSE(can_Draw(grid, {p[0], p[1], p[2]})) << x;
    }
  }
  EXPECT_FALSE(can_DrawPoint(grid, 1, 4.0 + 1e-9));
  EXPECT_TRUE(can_DrawPoint(grid, 1, 4.0));
}

TEST(GridDraw, TakesACornerThatMissesTheBorderByRounding_ForOneOnIt) {
  const TGriPar grid = unit_Cells(4, 5);
  const double above = std::nextafter(5.0, 6.0), below = -5e-324;
  EXPECT_EQ(draw_Point(above, 1.5), (Cells{{1, 4}}));
  EXPECT_EQ(draw_Point(below, 1.5), (Cells{{1, 0}}));
  EXPECT_FALSE(can_DrawPoint(grid, 5.0 + 5.0 * 1e-15, 1.5));
  // The box of corners as it is made, without room for a disk.
  reference::Random random(7);
  for (int round = 0; round < 20000; ++round) {
    // Products, so that all their bits are in use.
    const double low = -333.3 * random.real(0, 1), high = 777.7 * random.real(0.001, 1);
    TGriPar tight = make_Box(low, low, low + (high - low), low + (high - low));
    tight.n_row = tight.n_col = 1 + static_cast<uint32_t>(random.below(200));
    ASSERT_TRUE(grid_Fit(tight));
    ASSERT_TRUE(can_DrawPoint(tight, high, low));
    ASSERT_TRUE(can_DrawPoint(tight, low, high));
  }
}

TEST(GridDraw, RefusesCellsWithoutSize) {
  TGriPar grid = make_Box(3, 0, 3, 1);
  grid.n_row = grid.n_col = 4;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_EQ(grid.f_dxx, 0.0);
  EXPECT_FALSE(can_DrawPoint(grid, 3, 0.5));
  grid = make_Box(3, 0, 4, 0);
  grid.n_row = grid.n_col = 4;
  ASSERT_TRUE(grid_Fit(grid));
  EXPECT_FALSE(can_DrawPoint(grid, 3.5, 0));
}

TEST(GridDraw, RefusesAGridOfAnotherSizeThanItsCells) {
  const TGriPar grid = unit_Cells(4, 5);
  CBitMatrix cells;
  EXPECT_FALSE(grid_Draw(grid, {{1, 1, 0}, {1, 1, 0}, {1, 1, 0}}, cells));
  ASSERT_TRUE(cells.init(2, 2));
  EXPECT_FALSE(grid_Draw(grid, {{4.5, 3.5, 0}, {4.5, 3.5, 0}, {4.5, 3.5, 0}}, cells));
}

// Corners on multiples of a part of a cell: touching is then exact.
TEST(GridDraw, EqualsEveryCellThatIsTouched_OnRandomTriangles) {
  constexpr uint64_t seed = 20240613;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(8000); ++round) {
    const int64_t part = int64_t{1} << random.below(7);
    const auto rows = static_cast<uint32_t>(random.integer(1, 13));
    const auto columns = static_cast<uint32_t>(random.integer(1, 13));
    reference::PlainTriangle<int64_t> tri;
    T3DVEC corners[3];
    for (int k = 0; k < 3; ++k) {
      tri[k].x = random.integer(0, columns * part);
      tri[k].y = random.integer(0, rows * part);
      // Segments and points among them.
      if (k > 0 && random.chance(0.1)) tri[k] = tri[k - 1];
      corners[k] = {double(tri[k].x) / double(part), double(tri[k].y) / double(part), 0};
    }
    PlainGrid plain(static_cast<int>(rows), static_cast<int>(columns));
    reference::draw(plain, tri, part);
    CBitMatrix cells;
    ASSERT_TRUE(cells.init(rows, columns));
    ASSERT_TRUE(grid_Draw(unit_Cells(rows, columns), {corners[0], corners[1], corners[2]}, cells));
    ASSERT_EQ(to_Plain(cells).cells, plain.cells) << "round " << round;
  }
}

// Anywhere else, rounding may decide about cells that are touched or missed by next to nothing.
TEST(GridDraw, SetsWhatIsClearlyTouched_AndNothingThatIsClearlyMissed) {
  constexpr uint64_t seed = 20240614;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(3000); ++round) {
    const T2DVEC low = random.pair(-50, 50);
    TGriPar grid = make_Box(low.x, low.y, low.x + random.real(1, 9), low.y + random.real(1, 9));
    grid.n_row = static_cast<uint32_t>(random.integer(1, 15));
    grid.n_col = static_cast<uint32_t>(random.integer(1, 15));
    ASSERT_TRUE(grid_Fit(grid));
    reference::PlainTriangle<double> tri;
    T3DVEC p[3];
    for (int k = 0; k < 3; ++k) {
      tri[k] = {random.real(grid.org_xy.x, grid.ext_xy.x),
                random.real(grid.org_xy.y, grid.ext_xy.y)};
      p[k] = {tri[k].x, tri[k].y, 0};
    }
    CBitMatrix cells, turned;
    ASSERT_TRUE(cells.init(grid.n_row, grid.n_col) && turned.init(grid.n_row, grid.n_col));
    ASSERT_TRUE(grid_Draw(grid, {p[0], p[1], p[2]}, cells));
    ASSERT_TRUE(grid_Draw(grid, {p[2], p[1], p[0]}, turned));
    ASSERT_EQ(to_Plain(cells).cells, to_Plain(turned).cells);
    for (uint32_t r = 0; r < grid.n_row; ++r)
      for (uint32_t c = 0; c < grid.n_col; ++c) {
        const double x = grid.org_xy.x + c * grid.f_dxx, y = grid.org_xy.y + r * grid.f_dyy;
        const double gap =
            reference::get_Gap<double>(tri, {x, y}, {x + grid.f_dxx, y + grid.f_dyy});
        if (std::fabs(gap) > 1e-9) {
          ASSERT_EQ(cells.test(r, c), gap < 0) << "round " << round;
        }
      }
  }
}

TEST(GridDraw, WalksOverTheRowsOfTheTriangleAlone) {
  TGriPar grid = unit_Cells(4000000, 64);
  CBitMatrix cells;
  ASSERT_TRUE(cells.init(grid.n_row, grid.n_col));
  for (int k = 0; k < 200000; ++k) {
    const double y = 19.0 * k + 0.5;
    ASSERT_TRUE(grid_Draw(grid, {{3.5, y, 0}, {4.5, y, 0}, {3.5, y + 1, 0}}, cells));
  }
  EXPECT_TRUE(cells.test(19u * 199999u, 4));
}

// ---- The disk ----------------------------------------------------------------------------------

TGriPar cells_Of(double dxx, double dyy) {
  TGriPar grid;
  grid.f_dxx = dxx;
  grid.f_dyy = dyy;
  return grid;
}

TEST(GridDisk, HoldsTheCellsWithinItsRadius) {
  for (uint32_t k = 0; k <= 80; ++k) {
    Scoped<TDisk> disk;
    ASSERT_TRUE(grid_Disk(k, cells_Of(1, 1), *disk));
    ASSERT_EQ(disk->count, 2 * k + 1);
    for (uint32_t n = 0; n < disk->count; ++n) {
      const int32_t i = static_cast<int32_t>(n) - static_cast<int32_t>(k);
      ASSERT_EQ(disk->row[n], i);
      uint32_t half = 0;
      while (i * i + static_cast<int>((half + 1) * (half + 1)) <= static_cast<int>(k * k)) ++half;
      ASSERT_EQ(disk->half[n], half) << k << ", " << i;
    }
  }
}

TEST(GridDisk, TruncatesTheRadiusInCells) {
  const struct {
    double radius, dxx, dyy;
    uint32_t k;
  } cases[] = {{2.999, 1, 1, 2}, {3, 1, 1, 3},       {0.999, 1, 1, 0}, {0, 1, 1, 0},
               {-0.0, 1, 1, 0},  {6, 1, 4, 3},       {6, 4, 1, 3},     {0.25, 0.125, 0.125, 2},
               {1, 1e6, 1e6, 0}, {7.5, 0.25, 16, 3}, {1e-300, 1, 1, 0}};
  for (const auto& c : cases) {
    Scoped<TDisk> disk;
    ASSERT_TRUE(grid_Disk(c.radius, cells_Of(c.dxx, c.dyy), *disk));
    EXPECT_EQ(disk->count, 2 * c.k + 1) << c.radius << " in " << c.dxx << " by " << c.dyy;
  }
}

TEST(GridDisk, RefusesARadiusThatIsNone) {
  Scoped<TDisk> disk;
  for (const double radius : {-1.0, -1e-300, kNoNumber, -kInfinite, kInfinite, 2147483648.0, 1e300})
    EXPECT_FALSE(grid_Disk(radius, cells_Of(1, 1), *disk)) << radius;
  // Cells whose product is no size.
  for (const double size : {0.0, 1e-200, kNoNumber, -1e-200})
    EXPECT_FALSE(grid_Disk(1.0, cells_Of(size, 1e-200), *disk)) << size;
  EXPECT_FALSE(grid_Disk(0.0, cells_Of(0, 0), *disk));
  EXPECT_FALSE(grid_Disk(1.0, cells_Of(-1, 1), *disk));
  EXPECT_EQ(disk->count, 0u);
}

TEST(GridDisk, FailsWithoutMemory_AndLeaksNothing) {
  const auto codes = list_FailureCodes([] {
    Scoped<TDisk> disk;
    const bool made = grid_Disk(5.0, cells_Of(1, 1), *disk);
    EXPECT_EQ(disk->count, made ? 11u : 0u);
    EXPECT_EQ(disk->half != nullptr, made);
    EXPECT_EQ(disk->row != nullptr, made);
    return made ? 0 : -33;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-33, 0}));
}

// ---- Drawing, then closing ---------------------------------------------------------------------

reference::PlainDisk copy_Disk(const TDisk& disk) {
  return {{disk.half, disk.half + disk.count}, {disk.row, disk.row + disk.count}};
}

TEST(GridClosing, OfDrawnTriangles_EqualsThatCellByCell) {
  constexpr uint64_t seed = 20240615;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  uint32_t changed = 0;
  for (uint32_t round = 0; round < scale_Cases(150); ++round) {
    const auto n = static_cast<uint32_t>(random.integer(6, 22));
    const TGriPar grid = unit_Cells(n, n);
    CBitMatrix cells;
    ASSERT_TRUE(cells.init(n, n));
    PlainGrid plain(static_cast<int>(n), static_cast<int>(n));
    for (uint64_t k = 1 + random.below(4); k > 0; --k) {
      reference::PlainTriangle<int64_t> tri;
      for (auto& p : tri) p = {random.integer(0, 4 * n), random.integer(0, 4 * n)};
      const auto at = [&](int i) { return T3DVEC{double(tri[i].x) / 4, double(tri[i].y) / 4, 0}; };
      ASSERT_TRUE(grid_Draw(grid, {at(0), at(1), at(2)}, cells));
      reference::draw(plain, tri, 4);
    }
    Scoped<TDisk> disk;
    ASSERT_TRUE(grid_Disk(random.real(0, 4), grid, *disk));
    ASSERT_TRUE(cells.close(*disk));
    const PlainGrid closed =
        reference::erode(reference::dilate(plain, copy_Disk(*disk)), copy_Disk(*disk));
    ASSERT_EQ(to_Plain(cells).cells, closed.cells) << "round " << round;
    changed += closed.cells != plain.cells;
  }
  EXPECT_GT(changed, 20u);
}

}  // namespace
