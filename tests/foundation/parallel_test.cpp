#include "foundation/parallel.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "foundation/arrays.h"

namespace undercut {
namespace {

class ParallelLoop : public testing::TestWithParam<int> {
 protected:
  ParallelLoop() { omp_set_num_threads(GetParam()); }
  ~ParallelLoop() override { omp_set_num_threads(before_); }

 private:
  int before_ = omp_get_max_threads();
};

INSTANTIATE_TEST_SUITE_P(Threads, ParallelLoop, testing::Values(1, 2, 3, 4, 8, 16));

TEST_P(ParallelLoop, VisitsEachIndexOnce) {
  for (const uint32_t count : {0u, 1u, 255u, 256u, 1000u, 100003u}) {
    std::vector<uint8_t> visits(count);
    each_Index(count, [&](uint32_t i) { ++visits[i]; });
    EXPECT_EQ(std::ranges::count(visits, 1), count);
  }
}

TEST_P(ParallelLoop, SeesWhatWasWrittenBeforeAndShowsWhatItWroteAfter) {
  std::vector<uint64_t> values(10000);
  for (uint64_t round = 0; round < 50; ++round) {
    std::iota(values.begin(), values.end(), round);
    each_Index(10000, [&](uint32_t i) { values[i] *= 2; });
    for (uint64_t i = 0; i < values.size(); ++i) ASSERT_EQ(values[i], 2 * (i + round));
  }
}

TEST_P(ParallelLoop, AnEntryThatThrows_LeavesTheOthersTheirTurnAndEndsAsBadAlloc) {
  std::vector<uint8_t> visits(1000);
  const auto body = [&](uint32_t i) {
    ++visits[i];
    if (i % 400 == 7) throw 5;
  };
  EXPECT_THROW(each_Index(1000, body), std::bad_alloc);
  EXPECT_EQ(std::ranges::count(visits, 1), 1000);
  EXPECT_THROW(each_Index(1000, body, 1001), std::bad_alloc);  // on the calling thread
  EXPECT_EQ(std::ranges::count(visits, 2), 1000);
}

TEST_P(ParallelLoop, VisitsEachEntryInOneBlock) {
  for (const uint32_t block : {1u, 10u, 1000u})
    for (const uint32_t count : {0u, 1u, 9u, 10u, 11u, 9999u, 10000u, 10001u}) {
      std::vector<uint8_t> visits(count);
      each_Block(count, block, [&](uint64_t first, uint64_t end) {
        EXPECT_EQ(first % block, 0u);
        EXPECT_LE(end - first, block);
        for (uint64_t i = first; i < end; ++i) ++visits[i];
      });
      EXPECT_EQ(std::ranges::count(visits, 1), count);
    }
}

TEST_P(ParallelLoop, ATestHoldsForAll_UnlessItFailsForOne) {
  for (const uint32_t count : {0u, 1u, 4095u, 4096u, 50001u}) {
    EXPECT_TRUE(holds_All(count, [&](uint32_t i) { return i < count; }));
    for (const uint32_t bad : {0u, count / 3, count - 1})
      EXPECT_EQ(holds_All(count, [&](uint32_t i) { return i != bad; }), count == 0) << bad;
  }
}

TEST_P(ParallelLoop, WorksWithinAnother) {
  std::vector<uint8_t> bytes(8 << 21, 7);
  std::vector<uint8_t> holds(8);
  each_Index(
      8,
      [&](uint32_t i) {
        clear_Bytes(&bytes[size_t{i} << 21], 1u << 21);
        holds[i] = holds_All(50000, [](uint32_t) { return true; }) ? 1 : 0;
      },
      2);
  EXPECT_EQ(std::ranges::count(bytes, 0), 8 << 21);
  EXPECT_EQ(std::ranges::count(holds, 1), 8);
}

TEST(ParallelLoopOrder, EachThreadHasARunOfNeighbours_InRisingOrder) {
  const int before = omp_get_max_threads();
  omp_set_num_threads(4);
  std::vector<int> thread(1000);
  each_Index(1000, [&](uint32_t i) { thread[i] = omp_get_thread_num(); });
  omp_set_num_threads(before);
  EXPECT_TRUE(std::ranges::is_sorted(thread));
  EXPECT_EQ(thread.back(), 3);
}

}  // namespace
}  // namespace undercut
