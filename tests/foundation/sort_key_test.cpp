#include "foundation/sort_key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/reference/plain_sort.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

namespace undercut {
namespace {

struct Record {
  double key;
  int32_t index, band;
};
static_assert(sizeof(Record) == 16);

double get_Key(const Record& record) { return record.key; }

std::vector<Record> number_All(const std::vector<double>& keys) {
  std::vector<Record> records;
  for (double key : keys) records.push_back({key, static_cast<int32_t>(records.size()), -1});
  return records;
}

std::vector<int32_t> list_Indices(const std::vector<Record>& records) {
  std::vector<int32_t> indices;
  for (const Record& record : records) indices.push_back(record.index);
  return indices;
}

// Sorted by both forms, each record must end at the same place.
void expect_Same(const std::vector<double>& keys) {
  std::vector<Record> sorted = number_All(keys), plain = sorted;
  const int64_t last = static_cast<int64_t>(keys.size()) - 1;
  sort_Key(sorted.data(), 0, last, get_Key);
  reference::plain_Sort(plain.data(), 0, last, get_Key);
  ASSERT_EQ(list_Indices(sorted), list_Indices(plain)) << keys.size() << " keys";
  if (keys.size() < 300) return;
  // With bounds from the start.
  sorted = number_All(keys);
  sort_detail::PlainScan<Record, double (*)(const Record&)> scan{sorted.data(), get_Key};
  int64_t budget = -1;
  sort_detail::sort_Range(sorted.data(), 0, last, get_Key, scan, budget);
  ASSERT_EQ(list_Indices(sorted), list_Indices(plain)) << keys.size() << " keys, with bounds";
}

TEST(SortKey, EmptyAndSingleRangesStay) {
  Record one = {3, 7, -1};
  sort_Key(&one, 0, -1, get_Key);
  sort_Key(&one, 0, 0, get_Key);
  sort_Key(&one, 5, 2, get_Key);
  EXPECT_EQ(one.index, 7);
}

TEST(SortKey, UpToEightRecords_KeepTheOrderOfEqualKeys) {
  std::vector<Record> records = number_All({2, 1, 2, 1, 2, 1, 0, 1});
  sort_Key(records.data(), 0, 7, get_Key);
  EXPECT_EQ(list_Indices(records), (std::vector<int32_t>{6, 1, 3, 5, 7, 0, 2, 4}));
}

TEST(SortKey, NineEqualKeys_AreNotLeftInTheirOrder) {
  // Mid and last change places, then the partition swaps from both ends, then the pivot goes back.
  std::vector<Record> records = number_All(std::vector<double>(9, 1.0));
  sort_Key(records.data(), 0, 8, get_Key);
  EXPECT_EQ(list_Indices(records), (std::vector<int32_t>{7, 6, 5, 8, 4, 2, 1, 0, 3}));
}

TEST(SortKey, RecordsOutsideTheRangeStay) {
  std::vector<Record> records = number_All({9, 8, 7, 6, 5, 4, 3, 2, 1, 0, -1, -2, -3});
  sort_Key(records.data(), 2, 11, get_Key);
  EXPECT_EQ(list_Indices(records),
            (std::vector<int32_t>{0, 1, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 12}));
}

TEST(SortKey, SortsAscending) {
  std::mt19937_64 random(51);
  SCOPED_TRACE("seed 51");
  std::uniform_real_distribution<double> value(-1, 1);
  std::vector<double> keys(5000);
  for (double& key : keys) key = value(random);
  std::vector<Record> records = number_All(keys);
  sort_Key(records.data(), 0, 4999, get_Key);
  for (size_t i = 1; i < keys.size(); ++i) EXPECT_LE(records[i - 1].key, records[i].key);
  expect_Same(keys);
}

TEST(SortKey, EqualsThePlainFormOnAllSmallArraysOfFewKeys) {
  for (int size = 9; size <= 12; ++size) {
    const int cases = size <= 10 ? 59049 : 40000;
    std::mt19937_64 random(52);
    SCOPED_TRACE("seed 52");
    for (int n = 0; n < cases; ++n) {
      std::vector<double> keys(size);
      uint64_t digits = size <= 10 ? static_cast<uint64_t>(n) : random();
      for (double& key : keys) key = static_cast<double>(digits % 3), digits /= 3;
      expect_Same(keys);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(SortKey, EqualsThePlainFormWithManyEqualKeys) {
  std::mt19937_64 random(53);
  SCOPED_TRACE("seed 53");
  for (uint32_t round = 0; round < tests::scale_Cases(1000); ++round) {
    const size_t size = random() % (round % 10 ? 400 : 4000);
    const uint64_t values = 1 + random() % (round % 2 ? 4 : 400);
    std::vector<double> keys(size);
    for (double& key : keys) key = -static_cast<double>(random() % values) / 7.0;
    expect_Same(keys);
    if (HasFatalFailure()) return;
  }
}

TEST(SortKey, EqualsThePlainFormWithKeysThatAreAllEqual) {
  for (size_t size = 0; size < 600; ++size) expect_Same(std::vector<double>(size, -0.5));
  expect_Same(std::vector<double>(100003, 0.0));
}

TEST(SortKey, ZeroAndNegativeZeroAreEqualKeys) {
  std::mt19937_64 random(54);
  SCOPED_TRACE("seed 54");
  for (size_t size = 0; size < 300; ++size) {
    std::vector<double> keys(size);
    for (double& key : keys) key = random() % 2 ? 0.0 : -0.0;
    expect_Same(keys);
    std::vector<Record> mixed = number_All(keys);
    std::vector<Record> same = number_All(std::vector<double>(size, 0.0));
    sort_Key(mixed.data(), 0, static_cast<int64_t>(size) - 1, get_Key);
    sort_Key(same.data(), 0, static_cast<int64_t>(size) - 1, get_Key);
    ASSERT_EQ(list_Indices(mixed), list_Indices(same));
  }
}

TEST(SortKey, KeysThatAreNotNumbersAreHarmless) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  std::mt19937_64 random(55);
  SCOPED_TRACE("seed 55");
  for (uint32_t round = 0; round < tests::scale_Cases(1000); ++round) {
    const size_t size = random() % (round % 10 ? 300 : 3000);
    const uint64_t share = random() % 11;
    std::vector<double> keys(size);
    for (double& key : keys) key = random() % 10 < share ? nan : static_cast<double>(random() % 9);
    expect_Same(keys);
    if (HasFatalFailure()) return;
  }
  expect_Same(std::vector<double>(5000, nan));
}

TEST(SortKey, EqualsThePlainFormOnOrderedArrays) {
  for (int size : {9, 10, 17, 100, 1000, 10001}) {
    std::vector<double> up(size), down(size), pipe(size), steps(size);
    for (int i = 0; i < size; ++i) {
      up[i] = i;
      down[i] = -i;
      pipe[i] = std::min(i, size - i);
      steps[i] = i / 13;
    }
    std::vector<double> down_steps(steps.rbegin(), steps.rend()), broken = down;
    broken[size / 3] = std::numeric_limits<double>::quiet_NaN();
    for (const auto& keys : {up, down, pipe, steps, down_steps, broken}) expect_Same(keys);
  }
}

// Written in full these take hours, and a stack as deep as there are records.
TEST(SortKey, AMillionKeysInOrder_AreAMatterOfASecond) {
  const int64_t size = 1000000;
  for (int kind = 0; kind < 5; ++kind) {
    std::vector<double> keys(size);
    for (int64_t i = 0; i < size; ++i) {
      const int64_t orders[] = {0, i, -i, std::min(i, size - i), -(i / 100)};
      keys[i] = static_cast<double>(orders[kind]);
    }
    std::vector<Record> records = number_All(keys);
    sort_Key(records.data(), 0, size - 1, get_Key);
    for (int64_t i = 1; i < size; ++i) ASSERT_LE(records[i - 1].key, records[i].key);
  }
}

TEST(SortKey, WithoutMemoryForBounds_TheScansGoOn) {
  std::vector<double> keys(3000);
  for (size_t i = 0; i < keys.size(); ++i) keys[i] = -static_cast<double>(i / 3);
  std::vector<Record> sorted = number_All(keys), plain = sorted;
  bool failed = false;
  {
    tests::FailingAllocation failing(1);
    sort_Key(sorted.data(), 0, 2999, get_Key);
    failed = failing.has_Failed();
  }
  EXPECT_TRUE(failed);
  reference::plain_Sort(plain.data(), 0, 2999, get_Key);
  EXPECT_EQ(list_Indices(sorted), list_Indices(plain));
}

}  // namespace
}  // namespace undercut
