// Closing, notches and holes of a set of triangles.
#include <gtest/gtest.h>

#include "projection/rim_area.h"
#include "tests/reference/plain_rim_area.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using plain::Set;
using plain::Table;

// An adjacency table written down by hand, which need not belong to any mesh.
class CTable {
 public:
  explicit CTable(Table table) : table_(std::move(table)) {
    for (auto& list : table_) {
      list.reserve(1);
      lists_.push_back(list.data());
      counts_.push_back(static_cast<uint32_t>(list.size()));
    }
  }
  TAdj view() { return {lists_.data(), counts_.data()}; }
  const Table& table() const { return table_; }

 private:
  Table table_;
  std::vector<uint32_t*> lists_;
  std::vector<uint32_t> counts_;
};

// A row of n triangles, each beside the next.
Table make_Row(uint32_t n) {
  Table row(n);
  for (uint32_t t = 0; t < n; ++t) {
    if (t > 0) row[t].push_back(t - 1);
    if (t + 1 < n) row[t].push_back(t + 1);
  }
  return row;
}

// "01011": the state of triangle 0, 1, ...
Set read_Set(const std::string& text) {
  Set set;
  for (const char c : text) set.push_back(c == '1');
  return set;
}
std::string text_Of(const CBitVector& bits) {
  std::string text;
  for (uint64_t t = 0; t < bits.size(); ++t) text += bits.test(t) ? '1' : '0';
  return text;
}
std::string text_Of(const Set& set) { return text_Of(to_Bits(set)); }

std::string dilated(CTable table, const std::string& set) {
  CBitVector bits = to_Bits(read_Set(set));
  EXPECT_TRUE(dil_Bits(table.view(), bits));
  return text_Of(bits);
}
std::string eroded(CTable table, const std::string& set) {
  CBitVector bits = to_Bits(read_Set(set));
  EXPECT_TRUE(ero_Bits(table.view(), bits));
  return text_Of(bits);
}
std::string notched(CTable table, const std::string& set, uint32_t count = 2, bool flag = true) {
  CBitVector bits = to_Bits(read_Set(set));
  EXPECT_TRUE(fix_Notch(table.view(), count, flag, bits));
  return text_Of(bits);
}
std::string filled(CTable table, const std::string& set) {
  CBitVector bits = to_Bits(read_Set(set));
  EXPECT_EQ(fill_Holes(table.view(), bits), 0);
  return text_Of(bits);
}

}  // namespace

TEST(RimDilation, AddsOneRing) {
  EXPECT_EQ(dilated(CTable(make_Row(9)), "000010000"), "000111000");
  EXPECT_EQ(dilated(CTable(make_Row(9)), "100000001"), "110000011");
  EXPECT_EQ(dilated(CTable(make_Row(4)), "0000"), "0000");
  EXPECT_EQ(dilated(CTable(make_Row(4)), "1111"), "1111");
}

TEST(RimErosion, TakesOneRing) {
  EXPECT_EQ(eroded(CTable(make_Row(9)), "011111110"), "001111100");
  EXPECT_EQ(eroded(CTable(make_Row(9)), "111101111"), "111000111");
  EXPECT_EQ(eroded(CTable(make_Row(4)), "0000"), "0000");
}

TEST(RimErosion, LeavesTheBorderOfTheMesh) {
  EXPECT_EQ(eroded(CTable(make_Row(4)), "1111"), "1111");
  EXPECT_EQ(eroded(CTable(make_Row(5)), "11100"), "11000");
}

TEST(RimDilation, AndErosionLeaveATriangleWithoutNeighbours) {
  const Table lonely = {{}, {2}, {1}};
  EXPECT_EQ(dilated(CTable(lonely), "010"), "011");
  EXPECT_EQ(eroded(CTable(lonely), "110"), "100");
}

TEST(RimClosing, FillsAGapOfTwo_AndNoWiderOne) {
  const auto closed = [](const std::string& set) {
    const auto n = static_cast<uint32_t>(set.size());
    return eroded(CTable(make_Row(n)), dilated(CTable(make_Row(n)), set));
  };
  EXPECT_EQ(closed("00110110000"), "00111110000");
  EXPECT_EQ(closed("00110011000"), "00111111000");
  EXPECT_EQ(closed("00110001100"), "00110001100");
}

TEST(RimDilation, AndErosionAreRefusedWithoutBits) {
  CTable table(make_Row(3));
  CBitVector none;
  EXPECT_FALSE(dil_Bits(table.view(), none));
  EXPECT_FALSE(ero_Bits(table.view(), none));
  EXPECT_FALSE(fix_Notch(table.view(), 2, true, none));
}

TEST(RimDilation, AndErosionAreRefusedWithoutMemory_AndChangeNothing) {
  CTable table(make_Row(5));
  CBitVector bits = to_Bits(read_Set("01100"));
  for (bool (*ring)(const TAdj&, CBitVector&) : {dil_Bits, ero_Bits}) {
    const FailingAllocation failing(1);
    EXPECT_FALSE(ring(table.view(), bits));
    EXPECT_TRUE(failing.has_Failed());
  }
  EXPECT_EQ(text_Of(bits), "01100");
}

TEST(RimNotch, IsATriangleWithExactlyTwoSetNeighbours) {
  const Table star = {{1, 2, 3}, {0}, {0}, {0}};
  EXPECT_EQ(notched(CTable(star), "0000"), "0000");
  EXPECT_EQ(notched(CTable(star), "0100"), "0100");
  EXPECT_EQ(notched(CTable(star), "0110"), "1110");
  EXPECT_EQ(notched(CTable(star), "0111"), "0111");
  EXPECT_EQ(notched(CTable(star), "0111", 3), "1111");
  EXPECT_EQ(notched(CTable({{1}, {0, 2}, {1}, {4}, {}}), "00001", 1), "00011");
  EXPECT_EQ(notched(CTable(star), "1000", 2), "1000");
}

TEST(RimNotch, CountsANeighbourOverTwoEdgesTwice) {
  EXPECT_EQ(notched(CTable({{1, 1, 2}, {0, 0}, {0}}), "010"), "110");
}

TEST(RimNotch, FilledEarlierCountsForLaterTriangles) {
  // Triangles 5 and 6 are set. 0 lies between them; 1 lies between 0 and 5, 2 between 1 and 6.
  const Table chain = {{5, 6}, {0, 5}, {1, 6}, {}, {}, {}, {}};
  EXPECT_EQ(notched(CTable(chain), "0000011"), "1110011");
}

TEST(RimNotch, ThatTheFirstCallMakesIsFilledByTheSecond) {
  // 2 becomes a notch's neighbour: 1, which lies between 2 and 5, is passed before it.
  const Table chain = {{}, {2, 5}, {5, 6}, {}, {}, {}, {}};
  const std::string once = notched(CTable(chain), "0000011");
  EXPECT_EQ(once, "0010011");
  EXPECT_EQ(notched(CTable(chain), once), "0110011");
}

TEST(RimNotch, HangsOnNoFlag) {
  const Table star = {{1, 2, 3}, {0}, {0}, {0}};
  for (const std::string set : {"0000", "0100", "0110", "0111", "1110"})
    EXPECT_EQ(notched(CTable(star), set, 2, false), notched(CTable(star), set, 2, true));
}

TEST(RimHoles, AreFilled_ButTheLargestThatTouches) {
  EXPECT_EQ(filled(CTable(make_Row(10)), "0001001111"), "0001111111");
  EXPECT_EQ(filled(CTable(make_Row(10)), "0100111000"), "1111111000");
  EXPECT_EQ(filled(CTable(make_Row(10)), "1100010001"), "1100011111");
}

TEST(RimHoles, OfEqualSizeAreFilled_ButTheFirst) {
  EXPECT_EQ(filled(CTable(make_Row(9)), "001001001"), "001111111");
  EXPECT_EQ(filled(CTable(make_Row(9)), "100100111"), "100111111");
}

TEST(RimHoles, ThatDoNotTouchTheAreaStayOpen_AndCountForNothing) {
  // Two rows apart: triangles 0 to 4 hold no area.
  Table rows = make_Row(5);
  for (const auto& list : make_Row(6)) {
    rows.push_back(list);
    for (uint32_t& n : rows.back()) n += 5;
  }
  EXPECT_EQ(filled(CTable(rows), "00000010110"), "00000011111");
  EXPECT_EQ(filled(CTable(rows), "00000001010"), "00000001111");
  EXPECT_EQ(filled(CTable(rows), "00000000000"), "00000000000");
}

TEST(RimHoles, OfNoneOrOneAreLeft) {
  EXPECT_EQ(filled(CTable(make_Row(4)), "1111"), "1111");
  EXPECT_EQ(filled(CTable(make_Row(4)), "0000"), "0000");
  EXPECT_EQ(filled(CTable(make_Row(4)), "0111"), "0111");
}

TEST(RimHoles, AreChosenBySizeAlone_WhateverTheNumberOfNeighbours) {
  // Both ends hold two triangles. Those on the left have three neighbours each, those on the right
  // one or two; then the other way round.
  const Table left = {{1, 1, 2}, {0, 0, 0}, {0, 3, 3}, {2, 4}, {3}};
  EXPECT_EQ(filled(CTable(left), "00100"), "00111");
  const Table right = {{1}, {0, 2}, {1, 1, 3}, {2, 2, 4}, {3, 3, 3, 3, 3}};
  EXPECT_EQ(filled(CTable(right), "00100"), "00111");
  const Table larger = {{1}, {0, 2}, {1, 1, 3}, {2, 2, 4}, {3, 5, 5}, {4, 4, 4, 4}};
  EXPECT_EQ(filled(CTable(larger), "001000"), "111000");
}

TEST(RimHoles, GiveACodeForWhatIsMissing) {
  CTable table(make_Row(3));
  CBitVector bits = to_Bits(read_Set("010")), none;
  const TAdj adj = table.view();
  EXPECT_EQ(fill_Holes({nullptr, adj.counts}, bits), -1);
  EXPECT_EQ(fill_Holes({adj.lists, nullptr}, bits), -2);
  EXPECT_EQ(fill_Holes(adj, none), -3);
  EXPECT_EQ(fill_Holes({nullptr, nullptr}, none), -1);
}

TEST(RimHoles, GiveMinus4_WithoutMemory) {
  CTable table(make_Row(5));
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    CBitVector bits;
    if (!bits.init(5)) return 0;
    bits.set(1);
    return fill_Holes(table.view(), bits);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{0, -4, 0}));
}

// Meshes with edges of many triangles and triangles with equal corners, whose neighbours need not
// name them in turn.
TEST(RimCleaning, EqualsThePlainForm_OnRandomMeshes) {
  const uint64_t seed = 730;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  std::mt19937_64 random(seed);
  for (uint32_t round = 0; round < scale_Cases(600); ++round) {
    SCOPED_TRACE(round);
    TSoup soup = round % 3 == 0
                     ? make_Torn(random, 4 + static_cast<uint32_t>(random() % 8), 3, 0.1)
                     : make_Random(random, 4 + static_cast<uint32_t>(random() % 12),
                                   3 + static_cast<uint32_t>(random() % 50), round % 3 == 1);
    if (soup.tri.empty()) continue;
    const Table table = plain::list_Neighbours(soup.tri);
    Scoped<TAdj> adj;
    ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
    Set expected = pick_Some(random, soup.tri.size(), static_cast<uint32_t>(random() % 100));
    CBitVector bits = to_Bits(expected);
    for (uint32_t step = 0; step < 6; ++step) {
      const auto which = random() % 4;
      const uint32_t count = static_cast<uint32_t>(random() % 4);
      if (which == 0) {
        expected = plain::dilate(table, expected);
        ASSERT_TRUE(dil_Bits(*adj, bits));
      } else if (which == 1) {
        expected = plain::erode(table, expected);
        ASSERT_TRUE(ero_Bits(*adj, bits));
      } else if (which == 2) {
        expected = plain::fill_Notches(table, count, expected);
        ASSERT_TRUE(fix_Notch(*adj, count, true, bits));
      } else {
        expected = plain::fill_Holes(table, expected);
        ASSERT_EQ(fill_Holes(*adj, bits), 0);
      }
      ASSERT_EQ(text_Of(bits), text_Of(expected)) << "step " << step << ", operation " << which;
    }
  }
}
