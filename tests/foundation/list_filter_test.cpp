#include "foundation/list_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/threads.h"

namespace undercut {
namespace {

std::vector<uint32_t> make_List(uint64_t seed, uint32_t count) {
  reference::Random random(seed);
  std::vector<uint32_t> list(count);
  for (uint32_t& entry : list) entry = static_cast<uint32_t>(random.below(1000));
  return list;
}

TEST(ListFilterThreads, KeepsWhatIsToBeKept_InItsOrder_AskingOnceOfEach) {
  for (const int threads : {1, 2, 3, 8}) {
    const tests::CThreads scope(threads);
    CScratch<uint32_t> scratch;
    for (const uint32_t count : {50000u, 0u, 1u, 4095u, 4096u, 4097u, 20480u}) {
      for (const uint32_t share : {0u, 1u, 500u, 999u, 1000u}) {
        std::vector<uint32_t> list = make_List(count + share, count), plain;
        const std::vector<uint32_t> before = list;
        for (const uint32_t entry : before)
          if (entry < share) plain.push_back(entry);
        std::vector<uint8_t> asked(count);
        TArr<uint32_t> arr = {list.data(), count};
        filter_List(arr, scratch, [&](uint32_t i, uint32_t entry) {
          ++asked[i];
          EXPECT_EQ(entry, before[i]);
          return entry < share;
        });
        ASSERT_EQ(arr.count, plain.size());
        EXPECT_TRUE(std::ranges::equal(plain, std::vector(list.data(), list.data() + arr.count)));
        EXPECT_EQ(std::ranges::count(asked, 1), count);
      }
    }
  }
}

TEST(ListFilter, LeavesTheList_WithoutMemory) {
  std::vector<uint32_t> list = make_List(1, 5000);
  const std::vector<uint32_t> before = list;
  TArr<uint32_t> arr = {list.data(), 5000};
  CScratch<uint32_t> scratch;
  {
    tests::FailingAllocation failing(1);
    EXPECT_THROW(filter_List(arr, scratch, [](uint32_t, uint32_t) { return false; }),
                 std::bad_alloc);
  }
  EXPECT_EQ(list, before);
  EXPECT_EQ(arr.count, 5000u);
}

}  // namespace
}  // namespace undercut
