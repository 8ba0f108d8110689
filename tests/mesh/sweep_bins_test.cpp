// Entries sorted into bins, against a list for each bin.
#include "mesh/sweep_bins.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <vector>

#include "foundation/parallel.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"
#include "tests/support/threads.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20241123;
constexpr uint32_t kOutside = 0xfffffff0u;  // a bin that is none, where there is no entry

// One thing that is put, or that may be: `is` tells, and `spare` for which of such.
struct TItem {
  uint32_t bin, spare, is;
  bool is_sure;
};

// What each entry is put into, in turn.
using Entries = std::vector<std::vector<TItem>>;

Entries make_Entries(reference::Random& random, uint32_t bins, uint32_t count) {
  Entries entries(count);
  const double share = random.real(0, 1);
  const uint32_t few = 1 + static_cast<uint32_t>(random.below(bins));  // that most go to
  for (std::vector<TItem>& items : entries) {
    const auto any_Bin = [&] {
      return static_cast<uint32_t>(random.below(random.chance(0.9) ? few : bins));
    };
    for (uint64_t n = random.below(3); n > 0; --n) items.push_back({any_Bin(), 0, 1, true});
    for (uint32_t spare = 0; spare < CBins::kSpare; ++spare) {
      const bool is = random.chance(share);
      const uint32_t bin = is || random.chance(0.5) ? any_Bin() : kOutside;
      items.push_back({bin, spare, is ? 1u : 0u, false});
    }
  }
  return entries;
}

std::vector<std::vector<uint32_t>> list_Plain(const Entries& entries, uint32_t bins) {
  std::vector<std::vector<uint32_t>> lists(bins);
  for (uint32_t i = 0; i < entries.size(); ++i)
    for (const TItem& item : entries[i])
      if (item.is) lists[item.bin].push_back(i);
  return lists;
}

// body(part, first, end) for the entries of each part, parts beside one another.
template <typename Body>
void each_Entry(const Entries& entries, uint32_t parts, Body body) {
  each_Index(
      parts,
      [&](uint32_t part) {
        const size_t count = entries.size();
        body(part, static_cast<uint32_t>(count * part / parts),
             static_cast<uint32_t>(count * (part + 1) / parts));
      },
      2);
}

void count_All(const Entries& entries, uint32_t bins, uint32_t parts, CBins& out) {
  out.start(bins, parts);
  each_Entry(entries, parts, [&](uint32_t part, uint32_t first, uint32_t end) {
    CBins::CRow row = out.clear_Row(part);
    for (uint32_t i = first; i < end; ++i)
      for (const TItem& item : entries[i])
        if (item.is_sure)
          row.count(item.bin);
        else
          row.count_If(item.is, item.bin, item.spare);
  });
}

void put_All(const Entries& entries, uint32_t parts, CBins& out) {
  each_Entry(entries, parts, [&](uint32_t part, uint32_t first, uint32_t end) {
    CBins::CRow row = out.row(part);
    for (uint32_t i = first; i < end; ++i)
      for (const TItem& item : entries[i])
        if (item.is_sure)
          row.put(item.bin, i);
        else
          row.put_If(item.is, item.bin, item.spare, i);
  });
}

std::vector<std::vector<uint32_t>> list_Bins(const CBins& bins, uint32_t count) {
  std::vector<std::vector<uint32_t>> lists;
  uint32_t begin = 0;
  for (uint32_t bin = 0; bin < count; ++bin) {
    EXPECT_EQ(bins.begin(bin), begin);
    begin += bins.count(bin);
    lists.emplace_back();
    for (uint32_t k = bins.begin(bin); k < bins.begin(bin + 1); ++k)
      lists.back().push_back(*bins.entries(k));
  }
  return lists;
}

}  // namespace

TEST(SweepBins, EqualAListForEachBin_ForAnyNumberOfPartsAndThreads) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  reference::Random random(kSeed);
  CBins bins;  // with what the rounds before left in memory
  for (uint32_t round = 0; round < scale_Cases(40); ++round) {
    const auto count = static_cast<uint32_t>(1 + random.below(round % 3 == 0 ? 8 : 400));
    const auto some = static_cast<uint32_t>(random.below(round % 5 == 0 ? 12 : 1500));
    const Entries entries = make_Entries(random, count, some);
    const auto want = list_Plain(entries, count);
    const CThreads threads(round % 6 == 0 ? 3 : round % 6 == 3 ? 2 : 1);
    for (uint32_t parts = 1; parts <= 16; ++parts) {
      count_All(entries, count, parts, bins);
      ASSERT_TRUE(bins.make_Room(std::numeric_limits<uint32_t>::max()));
      put_All(entries, parts, bins);
      ASSERT_EQ(list_Bins(bins, count), want) << "round " << round << ", parts " << parts;
    }
  }
}

TEST(SweepBins, MakeNoRoom_ForMoreThanSoMany) {
  reference::Random random(kSeed + 1);
  for (uint32_t parts = 1; parts <= 16; parts += 5) {
    const Entries entries = make_Entries(random, 20, 300);
    uint64_t all = 0;
    for (const std::vector<uint32_t>& list : list_Plain(entries, 20)) all += list.size();
    ASSERT_GT(all, 0u);
    for (const uint64_t most : {uint64_t{0}, all - 1, all, all + 1}) {
      CBins bins;
      count_All(entries, 20, parts, bins);
      EXPECT_EQ(bins.make_Room(most), all <= most) << most << " of " << all;
    }
  }
}

TEST(SweepBins, HoldNothing_WhereNoEntryIs) {
  Entries none(50);
  for (std::vector<TItem>& items : none)
    for (uint32_t spare = 0; spare < CBins::kSpare; ++spare)
      items.push_back({spare % 2 ? 1 : kOutside, spare, 0, false});
  CBins bins;
  for (const uint32_t parts : {1u, 7u}) {
    count_All(none, 4, parts, bins);
    ASSERT_TRUE(bins.make_Room(0));
    put_All(none, parts, bins);
    EXPECT_EQ(bins.begin(4), 0u);
  }
}

}  // namespace undercut::tests
