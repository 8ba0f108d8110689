// Operations on closed lists of vertex indices.
#include "mesh/index_lists.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/mesh/soups.h"
#include "tests/reference/plain_lists.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;
using plain::List;

namespace {

using Operation = int32_t (*)(TArr<uint32_t>&);

// A copy that the operation may free.
void copy(const List& list, TArr<uint32_t>& out) {
  ASSERT_TRUE(alloc(out, static_cast<uint32_t>(list.size())));
  for (uint32_t i = 0; i < out.count; ++i) out.data[i] = list[i];
}

List run(Operation operation, const List& list) {
  Scoped<TArr<uint32_t>> lst;
  copy(list, *lst);
  EXPECT_EQ(operation(*lst), 0);
  return copy_Of(*lst);
}

List pick_List(std::mt19937_64& random, uint32_t most, uint32_t vertices) {
  List list(1 + random() % most);
  for (uint32_t& v : list) v = static_cast<uint32_t>(random() % vertices);
  return list;
}

constexpr int32_t kNoCopy = -99;

// The codes of an operation that runs out of memory at each of its allocations in turn, kNoCopy
// before them. The list must be as it was then.
std::vector<int32_t> list_Codes(Operation operation, const List& list) {
  return list_FailureCodes([&] {
    Scoped<TArr<uint32_t>> lst;
    if (!alloc(*lst, static_cast<uint32_t>(list.size()))) return kNoCopy;
    std::copy(list.begin(), list.end(), lst->data);
    const uint32_t* data = lst->data;
    const int32_t code = operation(*lst);
    if (code == 0) return 0;
    EXPECT_EQ(lst->data, data);
    EXPECT_EQ(copy_Of(*lst), list);
    return code;
  });
}

}  // namespace

TEST(DropDup, RemovesRepeatedNeighbours) {
  EXPECT_EQ(run(lst_DropDup, {1, 1, 2, 3, 3, 3, 1}), (List{2, 3, 1}));
}

TEST(DropDup, LeavesVerticesThatAreRepeatedElsewhere) {
  EXPECT_EQ(run(lst_DropDup, {1, 2, 1, 3}), (List{1, 2, 1, 3}));
}

TEST(DropDup, KeepsOfARunAcrossTheEndItsFirstElement) {
  EXPECT_EQ(run(lst_DropDup, {7, 7, 8, 9, 7}), (List{8, 9, 7}));
  EXPECT_EQ(run(lst_DropDup, {7, 7, 8}), (List{7, 8}));
}

TEST(DropDup, LeavesAListWithoutRepeatsInItsArray) {
  Scoped<TArr<uint32_t>> lst;
  copy({1, 2, 3}, *lst);
  const uint32_t* data = lst->data;
  EXPECT_EQ(lst_DropDup(*lst), 0);
  EXPECT_EQ(lst->data, data);
}

TEST(DropDup, KeepsOneOfAListOfEqualElements) {
  EXPECT_EQ(run(lst_DropDup, {5, 5, 5}), List{5});
  EXPECT_EQ(run(lst_DropDup, {5}), List{5});
}

TEST(DropDup, EqualsAWalkOnceRound) {
  const uint64_t seed = 42;
  std::mt19937_64 random(seed);
  for (uint32_t i = 0; i < scale_Cases(20000); ++i) {
    const List list = pick_List(random, 12, 3);
    ASSERT_EQ(run(lst_DropDup, list), plain::drop_Repeats(list)) << "seed " << seed;
  }
}

TEST(DropLast, RemovesTheLastElement) { EXPECT_EQ(run(lst_DropLast, {1, 2, 2}), (List{1, 2})); }

TEST(DropLast, OfASingleElementLeavesAnEmptyList) { EXPECT_EQ(run(lst_DropLast, {1}), List{}); }

TEST(BigLoop, OfAFigureOfEightIsTheLonger) {
  EXPECT_EQ(run(lst_BigLoop, {0, 1, 2, 0, 3, 4, 5}), (List{0, 3, 4, 5, 0}));
}

TEST(BigLoop, ThatWasCutOutHasTheVertexOfTheCutOnceAtItsEnd) {
  // So the removal of the last element takes it away.
  EXPECT_EQ(run(lst_BigLoop, {0, 1, 2, 3, 4, 0, 5}), (List{1, 2, 3, 4, 0}));
}

TEST(BigLoop, OfASimpleListIsTheListWithItsFirstElementRepeated) {
  EXPECT_EQ(run(lst_BigLoop, {4, 2, 9}), (List{4, 2, 9, 4}));
  EXPECT_EQ(run(lst_BigLoop, {4}), (List{4, 4}));
}

TEST(BigLoop, OfEqualLoopsIsTheFirst) {
  EXPECT_EQ(run(lst_BigLoop, {0, 1, 2, 3, 0, 5, 6}), (List{1, 2, 3, 0}));
}

TEST(BigLoop, DoesNotSplitAtTheLastElement) {
  EXPECT_EQ(run(lst_BigLoop, {0, 1, 2, 3, 1}), (List{0, 1, 2, 3, 1, 0}));
}

TEST(BigLoop, KeepsInTheRestWhatLiesBehindTheSecondOccurrenceOfAVertex) {
  // The third 0 closes a loop with the second, which is cut out already: the rest runs past both.
  EXPECT_EQ(run(lst_BigLoop, {0, 1, 2, 0, 3, 4, 0, 5, 6}), (List{0, 3, 4, 0, 5, 6, 0}));
}

TEST(BigLoop, LeavesOutOfALoopWhatWasCutOutWithinIt) {
  EXPECT_EQ(run(lst_BigLoop, {9, 0, 1, 2, 3, 1, 4, 5, 0, 8}), (List{1, 4, 5, 0}));
}

TEST(BigLoop, EqualsThePlainForm) {
  const uint64_t seed = 43;
  std::mt19937_64 random(seed);
  for (uint32_t i = 0; i < scale_Cases(50000); ++i) {
    const List list = pick_List(random, 24, 2 + static_cast<uint32_t>(random() % 12));
    ASSERT_EQ(run(lst_BigLoop, list), plain::find_BigLoop(list)) << "seed " << seed;
  }
}

TEST(BigLoop, StoresOneLoopOnlyHoweverManyThereAre) {
  // Each of the outer vertices comes three times and closes a loop with all that lies within:
  // together the loops are as long as the square of the list.
  const uint32_t outer = 1000, inner = 2000;
  List list;
  for (uint32_t v = 0; v < outer; ++v) list.insert(list.end(), {v, outer + v, v});
  for (uint32_t v = 0; v < inner; ++v) list.push_back(2 * outer + v);
  for (uint32_t v = outer; v-- > 0;) list.push_back(v);
  Scoped<TArr<uint32_t>> lst;
  copy(list, *lst);
  const FailingAllocation far(10);
  EXPECT_EQ(lst_BigLoop(*lst), 0);
  EXPECT_FALSE(far.has_Failed());
  EXPECT_GT(lst->count, inner + outer);
}

TEST(ListOperations, OfAnEmptyListFailWithTheirCodes) {
  TArr<uint32_t> lst = {nullptr, 0};
  EXPECT_EQ(lst_DropDup(lst), -1);
  EXPECT_EQ(lst_DropLast(lst), -1);
  EXPECT_EQ(lst_BigLoop(lst), -8);
  uint32_t value = 1;
  lst = {&value, 0};
  EXPECT_EQ(lst_DropDup(lst), -1);
  EXPECT_EQ(lst_DropLast(lst), -1);
  EXPECT_EQ(lst_BigLoop(lst), -8);
  lst = {nullptr, 3};
  EXPECT_EQ(lst_DropDup(lst), -1);
  EXPECT_EQ(lst_DropLast(lst), -1);
  EXPECT_EQ(lst_BigLoop(lst), -8);
}

TEST(ListOperations, WithoutMemoryFailWithTheCodeOfTheStepAndLeaveTheList) {
  using Codes = std::vector<int32_t>;
  EXPECT_EQ(list_Codes(lst_DropDup, {1, 1, 2}), (Codes{kNoCopy, -2, -3, 0}));
  EXPECT_EQ(list_Codes(lst_DropLast, {1, 1, 2}), (Codes{kNoCopy, -2, -3, 0}));
  EXPECT_EQ(list_Codes(lst_BigLoop, {1, 2, 1, 3}), (Codes{kNoCopy, -2, -3, -4, 0}));
}

TEST(ListOperations, InTheirOrderMakeASimpleLoopOfAWalkWithSpurs) {
  List list = {0, 1, 7, 1, 2, 2, 3, 0};
  list = run(lst_DropDup, list);
  EXPECT_EQ(list, (List{1, 7, 1, 2, 3, 0}));
  list = run(lst_BigLoop, list);
  EXPECT_EQ(list, (List{1, 2, 3, 0, 1}));
  EXPECT_EQ(run(lst_DropLast, list), (List{1, 2, 3, 0}));
}
