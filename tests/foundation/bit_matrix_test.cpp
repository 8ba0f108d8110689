#include "foundation/bit_matrix.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/reference/plain_closing.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

namespace undercut {
namespace {

using reference::PlainDisk;
using reference::PlainGrid;
using tests::FailingAllocation;
using Rows = std::vector<std::string>;

CBitMatrix make_Grid(const Rows& rows) {
  CBitMatrix grid;
  grid.init(static_cast<uint32_t>(rows.size()), static_cast<uint32_t>(rows[0].size()));
  for (uint32_t r = 0; r < grid.rows(); ++r)
    for (uint32_t c = 0; c < grid.columns(); ++c)
      if (rows[r][c] == '#') grid.set(r, c);
  return grid;
}

Rows show_Grid(const CBitMatrix& grid) {
  Rows rows(grid.rows(), std::string(grid.columns(), '.'));
  for (uint32_t r = 0; r < grid.rows(); ++r)
    for (uint32_t c = 0; c < grid.columns(); ++c)
      if (grid.test(r, c)) rows[r][c] = '#';
  return rows;
}

Rows show_Grid(const PlainGrid& grid) {
  Rows rows(grid.rows, std::string(grid.columns, '.'));
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      if (grid.at(r, c)) rows[r][c] = '#';
  return rows;
}

TDisk view_Disk(PlainDisk& disk) {
  return {disk.half.data(), disk.row.data(), static_cast<uint32_t>(disk.row.size())};
}

PlainDisk make_Disk(int radius) {
  PlainDisk disk;
  for (int i = -radius; i <= radius; ++i) {
    uint32_t half = 0;
    while (static_cast<int>((half + 1) * (half + 1)) + i * i <= radius * radius) ++half;
    disk.row.push_back(i);
    disk.half.push_back(half);
  }
  return disk;
}

TEST(BitMatrix, TheDiskHas20Bytes) {
  EXPECT_EQ(sizeof(TDisk), 20u);
  EXPECT_EQ(offsetof(TDisk, half), 0u);
  EXPECT_EQ(offsetof(TDisk, row), 8u);
  EXPECT_EQ(offsetof(TDisk, count), 16u);
  EXPECT_TRUE(std::has_virtual_destructor_v<CBitMatrix>);
}

TEST(BitMatrix, InitWithoutCells_IsFalseAndLeavesItEmpty) {
  CBitMatrix grid;
  EXPECT_FALSE(grid.is_Valid());
  ASSERT_TRUE(grid.init(2, 3));
  EXPECT_FALSE(grid.init(0, 3));
  EXPECT_FALSE(grid.is_Valid());
  EXPECT_FALSE(grid.init(3, 0));
  EXPECT_EQ(grid.rows(), 0u);
  EXPECT_EQ(grid.columns(), 0u);
  EXPECT_FALSE(grid.set(0, 0));
  EXPECT_FALSE(grid.test(0, 0));
  EXPECT_FALSE(grid.set_Run(0, 0, 0));
  PlainDisk disk = make_Disk(1);
  EXPECT_FALSE(grid.stamp(0, 0, view_Disk(disk), true));
  EXPECT_TRUE(grid.close(view_Disk(disk)));
}

TEST(BitMatrix, EachRowFollowsTheLastAtOnce) {
  CBitMatrix grid;
  ASSERT_TRUE(grid.init(3, 5));
  EXPECT_EQ(grid.bytes(), 2u);
  EXPECT_EQ(grid.capacity(), 16u);
  EXPECT_TRUE(grid.set(1, 0));
  EXPECT_TRUE(grid.set(2, 4));
  EXPECT_EQ(grid.data()[0], 0x04);
  EXPECT_EQ(grid.data()[1], 0x02);
}

TEST(BitMatrix, ACellOutOfRangeIsFalse) {
  CBitMatrix grid;
  ASSERT_TRUE(grid.init(3, 5));
  grid.flip_All();
  EXPECT_FALSE(grid.set(3, 0));
  EXPECT_FALSE(grid.set(0, 5));
  EXPECT_FALSE(grid.test(3, 0));
  EXPECT_FALSE(grid.test(0, 5));
  EXPECT_FALSE(grid.test(UINT32_MAX, UINT32_MAX));
  EXPECT_TRUE(grid.test(2, 4));
  EXPECT_EQ(grid.data()[1], 0xFF);
  grid.clear_All();
  EXPECT_EQ(show_Grid(grid), (Rows{".....", ".....", "....."}));
}

TEST(BitMatrix, Runs_AreInclusiveAndFailOutOfRange) {
  CBitMatrix grid;
  ASSERT_TRUE(grid.init(3, 20));
  EXPECT_TRUE(grid.set_Run(1, 2, 18));
  EXPECT_TRUE(grid.clear_Run(1, 4, 5));
  EXPECT_TRUE(grid.clear_Run(1, 18, 18));
  EXPECT_FALSE(grid.set_Run(3, 0, 1));
  EXPECT_FALSE(grid.set_Run(0, 0, 20));
  EXPECT_FALSE(grid.set_Run(0, 20, 20));
  EXPECT_FALSE(grid.set_Run(0, 3, 2));
  EXPECT_EQ(show_Grid(grid), (Rows{"....................",  //
                                   "..##..############..",  //
                                   "...................."}));
}

TEST(BitMatrix, ACopyIsIndependent) {
  CBitMatrix a = make_Grid({"#.", ".#"});
  const CBitMatrix b = a;
  a.flip_All();
  EXPECT_EQ(show_Grid(b), (Rows{"#.", ".#"}));
  EXPECT_EQ(show_Grid(a), (Rows{".#", "#."}));
}

TEST(BitMatrix, AStampIsCutOffAtTheEdges) {
  PlainDisk disk = make_Disk(2);
  CBitMatrix grid = make_Grid({"......", "......", "......", "......", "......"});
  EXPECT_TRUE(grid.stamp(0, 0, view_Disk(disk), true));
  EXPECT_TRUE(grid.stamp(4, 5, view_Disk(disk), true));
  EXPECT_EQ(show_Grid(grid), (Rows{"###...", "##....", "#....#", "....##", "...###"}));
  EXPECT_TRUE(grid.stamp(0, 1, view_Disk(disk), false));
  EXPECT_EQ(show_Grid(grid), (Rows{"......", "......", "#....#", "....##", "...###"}));
}

TEST(BitMatrix, AStampRoundACentreOutsideTheRows_KeepsTheEntriesInside) {
  PlainDisk disk = make_Disk(2);
  CBitMatrix grid = make_Grid({".....", ".....", "....."});
  EXPECT_TRUE(grid.stamp(-1, 2, view_Disk(disk), true));
  EXPECT_EQ(show_Grid(grid), (Rows{".###.", "..#..", "....."}));
  EXPECT_TRUE(grid.stamp(4, 2, view_Disk(disk), true));
  EXPECT_EQ(show_Grid(grid), (Rows{".###.", "..#..", "..#.."}));
  EXPECT_TRUE(grid.stamp(50, 2, view_Disk(disk), false));
  EXPECT_EQ(show_Grid(grid), (Rows{".###.", "..#..", "..#.."}));
}

TEST(BitMatrix, AStampRoundACentreOutsideTheColumns_KeepsWhatReachesInside) {
  PlainDisk disk = make_Disk(2);
  CBitMatrix grid = make_Grid({".....", ".....", "....."});
  EXPECT_TRUE(grid.stamp(1, -2, view_Disk(disk), true));
  EXPECT_TRUE(grid.stamp(1, 6, view_Disk(disk), true));
  EXPECT_EQ(show_Grid(grid), (Rows{".....", "#...#", "....."}));
}

TEST(BitMatrix, ANegativeHalfWidthIsAnEmptyRun) {
  PlainDisk disk = {{UINT32_MAX, 0x80000000u, 0x7FFFFFFFu}, {-1, 0, 1}};
  CBitMatrix grid = make_Grid({".....", ".....", "....."});
  EXPECT_TRUE(grid.stamp(1, 2, view_Disk(disk), true));
  EXPECT_EQ(show_Grid(grid), (Rows{".....", ".....", "#####"}));
}

TEST(BitMatrix, AStampWithoutArraysFails) {
  CBitMatrix grid = make_Grid({"..", ".."});
  uint32_t half[1] = {0};
  int32_t row[1] = {0};
  EXPECT_FALSE(grid.stamp(0, 0, {nullptr, row, 1}, true));
  EXPECT_FALSE(grid.stamp(0, 0, {half, nullptr, 1}, true));
  EXPECT_TRUE(grid.stamp(0, 0, {nullptr, nullptr, 0}, true));
  EXPECT_EQ(show_Grid(grid), (Rows{"..", ".."}));
}

TEST(BitMatrix, Dilation_StartsFromInnerClearCellsOnly) {
  PlainDisk disk = make_Disk(1);
  // The clear cells beside the set one all lie on the grid's edge.
  CBitMatrix corner = make_Grid({"#...", "....", "...."});
  EXPECT_TRUE(corner.dilate(view_Disk(disk)));
  EXPECT_EQ(show_Grid(corner), (Rows{"#...", "....", "...."}));
  // Of the three clear cells beside this one, only (1, 2) is an inner one.
  CBitMatrix side = make_Grid({"..#..", ".....", "....."});
  EXPECT_TRUE(side.dilate(view_Disk(disk)));
  EXPECT_EQ(show_Grid(side), (Rows{"..#..", ".###.", "..#.."}));
}

TEST(BitMatrix, Erosion_WorksFromEdgeCells) {
  PlainDisk disk = make_Disk(1);
  CBitMatrix corner = make_Grid({"##..", "##..", "...."});
  EXPECT_TRUE(corner.erode(view_Disk(disk)));
  EXPECT_EQ(show_Grid(corner), (Rows{"....", "....", "...."}));
  // A full grid has clear neighbours outside: it is worn off all round.
  CBitMatrix full = make_Grid({"#####", "#####", "#####", "#####", "#####"});
  PlainDisk dot = make_Disk(0);
  EXPECT_TRUE(full.erode(view_Disk(dot)));
  EXPECT_EQ(show_Grid(full), (Rows{".....", ".###.", ".###.", ".###.", "....."}));
}

TEST(BitMatrix, Closing_FillsAGapAndGivesTheOutlineBack) {
  PlainDisk disk = make_Disk(1);
  CBitMatrix grid = make_Grid({
      "...........",  //
      "...........",  //
      "...........",  //
      "...###.##..",  //
      "...###.##..",  //
      "...###.##..",  //
      "...........",  //
      "...........",  //
      "...........",  //
  });
  EXPECT_TRUE(grid.close(view_Disk(disk)));
  EXPECT_TRUE(grid.test(4, 6));
  EXPECT_TRUE(grid.test(4, 4));
  EXPECT_FALSE(grid.test(1, 4));
  EXPECT_FALSE(grid.test(4, 0));
}

TEST(BitMatrix, Closing_EqualsThePlainFormOnRandomGrids) {
  std::mt19937_64 random(21);
  SCOPED_TRACE("seed 21");
  int changed = 0;
  for (uint32_t round = 0; round < tests::scale_Cases(1000); ++round) {
    const int rows = 1 + static_cast<int>(random() % 13);
    const int columns = 1 + static_cast<int>(random() % 19);
    PlainGrid plain(rows, columns);
    const uint64_t share = 1 + random() % 9;
    for (char& cell : plain.cells) cell = random() % 10 < share;
    PlainDisk disk = make_Disk(static_cast<int>(random() % 4));
    if (round % 3 == 0) disk = {{2, 0, 1}, {-2, 1, 4}};  // lopsided
    CBitMatrix grid = make_Grid(show_Grid(plain));
    const Rows before = show_Grid(plain);
    plain = reference::dilate(plain, disk);
    CBitMatrix dilated = grid;
    ASSERT_TRUE(dilated.dilate(view_Disk(disk)));
    ASSERT_EQ(show_Grid(dilated), show_Grid(plain)) << "round " << round;
    plain = reference::erode(plain, disk);
    ASSERT_TRUE(grid.close(view_Disk(disk)));
    ASSERT_EQ(show_Grid(grid), show_Grid(plain)) << "round " << round;
    changed += show_Grid(grid) != before;
  }
  EXPECT_GT(changed, 250);
}

TEST(BitMatrix, FailingMemory_LeavesTheGridAsItIs) {
  PlainDisk disk = make_Disk(1);
  const TDisk view = view_Disk(disk);
  const Rows rows = {"....", ".##.", "...."};
  CBitMatrix grid = make_Grid(rows), fresh;
  bool done[3];
  {
    FailingAllocation failing(1);
    done[0] = grid.close(view);
  }
  {
    FailingAllocation failing(1);
    done[1] = grid.erode(view);
  }
  {
    FailingAllocation failing(1);
    done[2] = fresh.init(3, 3);
  }
  for (bool d : done) EXPECT_FALSE(d);
  EXPECT_EQ(show_Grid(grid), rows);
  EXPECT_FALSE(fresh.is_Valid());
}

}  // namespace
}  // namespace undercut
