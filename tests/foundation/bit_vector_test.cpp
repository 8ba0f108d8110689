#include "foundation/bit_vector.h"

#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <vector>

#include "foundation/arrays.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

namespace undercut {
namespace {

using tests::FailingAllocation;

CBitVector make_Bits(const std::vector<bool>& plain) {
  CBitVector bits;
  bits.init(plain.size());
  for (size_t i = 0; i < plain.size(); ++i)
    if (plain[i]) bits.set(i);
  return bits;
}

void expect_Same(const CBitVector& bits, const std::vector<bool>& plain) {
  ASSERT_EQ(bits.size(), plain.size());
  uint64_t set = 0;
  for (size_t i = 0; i < plain.size(); ++i) {
    ASSERT_EQ(bits.test(i), plain[i]) << i;
    ASSERT_EQ(bits.test_Not(i), !plain[i]) << i;
    set += plain[i];
  }
  EXPECT_EQ(bits.count(), set);
  EXPECT_EQ(bits.is_Empty(), set == 0);
}

TEST(BitVector, IsUsableThroughABasePointer) {
  EXPECT_TRUE(std::has_virtual_destructor_v<CBitVector>);
}

TEST(BitVector, InitWithNoBits_IsFalseAndLeavesItEmpty) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(10));
  EXPECT_FALSE(bits.init(0));
  EXPECT_FALSE(bits.is_Valid());
  EXPECT_EQ(bits.size(), 0u);
  EXPECT_EQ(bits.data(), nullptr);
  for (uint64_t i : {uint64_t{0}, uint64_t{9}, UINT64_MAX}) {
    EXPECT_FALSE(bits.set(i));
    EXPECT_FALSE(bits.clear(i));
    EXPECT_FALSE(bits.test(i));
    EXPECT_TRUE(bits.test_Not(i));
    EXPECT_FALSE(bits.fill(i, i, true));
  }
}

TEST(BitVector, AnEmptyVector_IsNeitherValidNorEmptyOfBits) {
  CBitVector bits;
  EXPECT_FALSE(bits.is_Valid());
  EXPECT_FALSE(bits.is_Empty());
  EXPECT_EQ(bits.count(), 0u);
  bits.set_All();
  bits.clear_All();
  bits.flip_All();
  EXPECT_EQ(bits.data(), nullptr);
}

TEST(BitVector, NineBits_HaveTwoBytesAndACapacityOf16) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(9));
  EXPECT_EQ(bits.bytes(), 2u);
  EXPECT_EQ(bits.capacity(), 16u);
  EXPECT_EQ(bits.size(), 9u);
  EXPECT_TRUE(bits.is_Valid());
  EXPECT_TRUE(bits.is_Empty());
}

TEST(BitVector, SetAll_LeavesCountAtTheLogicalSize) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(9));
  bits.set_All();
  EXPECT_EQ(bits.data()[0], 0xFF);
  EXPECT_EQ(bits.data()[1], 0xFF);
  EXPECT_EQ(bits.count(), 9u);
}

TEST(BitVector, IsEmpty_StopsAtTheLogicalSize) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(9));
  bits.set_All();
  for (uint64_t i = 0; i < 9; ++i) EXPECT_TRUE(bits.clear(i));
  EXPECT_EQ(bits.data()[1], 0x7F);
  EXPECT_TRUE(bits.is_Empty());
  EXPECT_EQ(bits.count(), 0u);
}

TEST(BitVector, TheMostSignificantBitComesFirst) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(16));
  bits.set(0);
  bits.set(6);
  bits.set(15);
  EXPECT_EQ(bits.data()[0], 0x82);
  EXPECT_EQ(bits.data()[1], 0x01);
}

TEST(BitVector, AnIndexAtTheSizeIsOutOfRange) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(9));
  bits.set_All();
  EXPECT_FALSE(bits.set(9));
  EXPECT_FALSE(bits.clear(9));
  EXPECT_FALSE(bits.test(9));
  EXPECT_TRUE(bits.test_Not(9));
  EXPECT_FALSE(bits.set(UINT64_MAX));
  EXPECT_TRUE(bits.set(8));
}

TEST(BitVector, FlipAll_ChangesTheBitsBeyondTheSizeToo) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(9));
  bits.set(3);
  bits.flip_All();
  EXPECT_EQ(bits.data()[0], 0xEF);
  EXPECT_EQ(bits.data()[1], 0xFF);
  EXPECT_EQ(bits.count(), 8u);
}

TEST(BitVector, And_ChangesOnlyTheBytesThatBothHave) {
  CBitVector wide, narrow;
  ASSERT_TRUE(wide.init(24));
  ASSERT_TRUE(narrow.init(9));
  wide.set_All();
  narrow.set(1);
  wide &= narrow;
  EXPECT_EQ(wide.data()[0], 0x40);
  EXPECT_EQ(wide.data()[1], 0x00);
  EXPECT_EQ(wide.data()[2], 0xFF);
  EXPECT_EQ(wide.size(), 24u);
  narrow &= wide;
  EXPECT_EQ(narrow.bytes(), 2u);
  EXPECT_EQ(narrow.count(), 1u);
}

TEST(BitVector, Or_ChangesOnlyTheBytesThatBothHave) {
  CBitVector wide, narrow;
  ASSERT_TRUE(wide.init(24));
  ASSERT_TRUE(narrow.init(9));
  narrow.set_All();
  wide |= narrow;
  EXPECT_EQ(wide.count(), 16u);
  EXPECT_EQ(wide.data()[2], 0x00);
}

TEST(BitVector, AndWithAnEmptyVector_ChangesNothing) {
  CBitVector bits, none;
  ASSERT_TRUE(bits.init(5));
  bits.set_All();
  bits &= none;
  bits |= none;
  EXPECT_EQ(bits.count(), 5u);
  none |= bits;
  EXPECT_FALSE(none.is_Valid());
}

TEST(BitVector, TheFormsByValue_LeaveTheirOperands) {
  const CBitVector a = make_Bits({true, true, false, false});
  const CBitVector b = make_Bits({true, false, true, false});
  expect_Same(a & b, {true, false, false, false});
  expect_Same(a | b, {true, true, true, false});
  expect_Same(a, {true, true, false, false});
  expect_Same(b, {true, false, true, false});
}

TEST(BitVector, ACopyIsIndependent) {
  CBitVector a = make_Bits({true, false, true});
  CBitVector b = a, c;
  c = a;
  a.set(1);
  expect_Same(b, {true, false, true});
  expect_Same(c, {true, false, true});
  const CBitVector& self = c;
  c = self;
  expect_Same(c, {true, false, true});
  c = CBitVector();
  EXPECT_FALSE(c.is_Valid());
}

TEST(BitVector, Release_EmptiesAndInitStartsClear) {
  CBitVector bits = make_Bits({true, true});
  bits.release();
  EXPECT_FALSE(bits.is_Valid());
  EXPECT_EQ(bits.capacity(), 0u);
  ASSERT_TRUE(bits.init(2));
  EXPECT_TRUE(bits.is_Empty());
}

TEST(BitVector, FromBytes_SetsABitForEachByteThatIsNotZero) {
  const uint8_t bytes[] = {0, 1, 255, 0, 2, 0, 0, 0, 0, 3};
  CBitVector bits;
  ASSERT_TRUE(bits.from_Bytes(bytes, 10));
  expect_Same(bits, {false, true, true, false, true, false, false, false, false, true});
  EXPECT_FALSE(bits.from_Bytes(nullptr, 10));
  EXPECT_FALSE(bits.from_Bytes(bytes, 0));
}

TEST(BitVector, ToBytes_GivesZeroAndOne) {
  Scoped<TArrU8> bytes;
  ASSERT_TRUE(make_Bits({true, false, true}).to_Bytes(*bytes));
  ASSERT_EQ(bytes->count, 3u);
  EXPECT_EQ(bytes->data[0], 1);
  EXPECT_EQ(bytes->data[1], 0);
  EXPECT_EQ(bytes->data[2], 1);
  TArrU8 none;
  EXPECT_FALSE(CBitVector().to_Bytes(none));
  EXPECT_TRUE(none.data == nullptr);
}

TEST(BitVector, ToLst_GivesRisingIndicesBelowTheSize) {
  CBitVector bits = make_Bits({true, false, true, false, false, false, false, false, false, true});
  Scoped<TLstU32> lst;
  ASSERT_TRUE(bits.to_Lst(*lst));
  ASSERT_EQ(lst->count, 3u);
  EXPECT_EQ(lst->capacity, 3u);
  EXPECT_EQ(lst->data[0], 0u);
  EXPECT_EQ(lst->data[1], 2u);
  EXPECT_EQ(lst->data[2], 9u);
  bits.set_All();
  Scoped<TLstU32> all;
  ASSERT_TRUE(bits.to_Lst(*all));
  EXPECT_EQ(all->count, 10u);
}

TEST(BitVector, ToLst_OfNoSetBitsIsAnEmptyList) {
  CBitVector bits;
  TLstU32 lst;
  EXPECT_FALSE(bits.to_Lst(lst));
  ASSERT_TRUE(bits.init(20));
  EXPECT_TRUE(bits.to_Lst(lst));
  EXPECT_TRUE(lst.data == nullptr);
  EXPECT_EQ(lst.count, 0u);
}

TEST(BitVector, FromLst_SetsTheListedBitsAndNoOthers) {
  uint32_t ids[] = {3, 0, 3, 1000000, 4};
  CBitVector bits = make_Bits({true, true, true});
  ASSERT_TRUE(bits.from_Lst({ids, 5, 5}, 5));
  expect_Same(bits, {true, false, false, true, true});
  EXPECT_TRUE(bits.from_Lst({nullptr, 0, 0}, 5));
  EXPECT_TRUE(bits.is_Empty());
  EXPECT_FALSE(bits.from_Lst({ids, 5, 5}, 0));
  EXPECT_FALSE(bits.is_Valid());
  EXPECT_FALSE(bits.from_Lst({nullptr, 5, 5}, 5));
}

TEST(BitVector, Fill_RefusesAReversedRunAndOneOutOfRange) {
  CBitVector bits;
  ASSERT_TRUE(bits.init(20));
  EXPECT_FALSE(bits.fill(5, 4, true));
  EXPECT_FALSE(bits.fill(5, 20, true));
  EXPECT_FALSE(bits.fill(UINT64_MAX, UINT64_MAX, true));
  EXPECT_TRUE(bits.is_Empty());
  EXPECT_TRUE(bits.fill(0, 19, true));
  EXPECT_EQ(bits.count(), 20u);
  EXPECT_EQ(bits.data()[2], 0xF0);
}

TEST(BitVector, Fill_GivesEveryRunOfASmallVector) {
  const uint64_t size = 35;
  for (bool value : {true, false}) {
    for (uint64_t first = 0; first < size; ++first) {
      for (uint64_t last = first; last < size; ++last) {
        std::vector<bool> plain(size, !value);
        CBitVector bits = make_Bits(plain);
        ASSERT_TRUE(bits.fill(first, last, value));
        for (uint64_t i = first; i <= last; ++i) plain[i] = value;
        expect_Same(bits, plain);
      }
    }
  }
}

TEST(BitVector, Assign_GivesEachBitItsTest_AndClearsThoseBeyondTheSize) {
  for (const uint64_t size : {1u, 7u, 8u, 35u, 5000u}) {
    std::vector<bool> plain(size);
    for (uint64_t i = 0; i < size; ++i) plain[i] = i % 3 == 0 || i % 7 == 2;
    CBitVector bits;
    bits.init(size);
    bits.set_All();
    bits.assign([&](uint64_t i) { return plain[i]; });
    expect_Same(bits, plain);
    if (size % 8 != 0) {
      EXPECT_EQ(bits.data()[size / 8] & (0xFFu >> (size % 8)), 0);
    }
  }
  CBitVector empty;
  empty.assign([](uint64_t) { return true; });
  EXPECT_FALSE(empty.is_Valid());
}

// Whether `call` succeeds with its first allocation failing.
template <typename Call>
bool try_WithoutMemory(Call call) {
  FailingAllocation failing(1);
  return call();
}

TEST(BitVector, FailingMemory_LeavesItEmpty) {
  CBitVector bits = make_Bits({true, true, true});
  CBitVector other = bits;
  TLstU32 lst;
  TArrU8 bytes;
  EXPECT_FALSE(try_WithoutMemory([&] { return CBitVector(bits).is_Valid(); }));
  EXPECT_FALSE(try_WithoutMemory([&] { return (other = bits).is_Valid(); }));
  EXPECT_FALSE(try_WithoutMemory([&] { return bits.to_Lst(lst); }));
  EXPECT_FALSE(try_WithoutMemory([&] { return bits.to_Bytes(bytes); }));
  EXPECT_TRUE(lst.data == nullptr);
  EXPECT_TRUE(bytes.data == nullptr);
  expect_Same(bits, {true, true, true});
  EXPECT_FALSE(try_WithoutMemory([&] { return bits.init(9); }));
  EXPECT_FALSE(bits.is_Valid());
  EXPECT_FALSE(bits.set(0));
}

TEST(BitVector, BehavesLikeAVectorOfBools) {
  std::mt19937_64 random(11);
  SCOPED_TRACE("seed 11");
  for (uint32_t round = 0; round < tests::scale_Cases(60); ++round) {
    const size_t size = 1 + random() % (round % 2 ? 20 : 700);
    std::vector<bool> plain(size, false), other(size, false);
    CBitVector bits = make_Bits(plain);
    for (int step = 0; step < 60; ++step) {
      const size_t i = random() % size, k = random() % size;
      const uint64_t kind = random() % 8;
      if (kind <= 1) {
        EXPECT_TRUE(bits.set(i));
        plain[i] = true;
      } else if (kind == 2) {
        EXPECT_TRUE(bits.clear(i));
        plain[i] = false;
      } else if (kind == 3) {
        bits.flip_All();
        plain.flip();
      } else if (kind == 4) {
        other[i] = !other[i];
      } else if (kind == 5) {
        bits &= make_Bits(other);
        for (size_t n = 0; n < size; ++n) plain[n] = plain[n] && other[n];
      } else if (kind == 6) {
        bits |= make_Bits(other);
        for (size_t n = 0; n < size; ++n) plain[n] = plain[n] || other[n];
      } else {
        EXPECT_EQ(bits.fill(i, k, step % 2), i <= k);
        for (size_t n = i; n <= k; ++n) plain[n] = step % 2;
      }
      expect_Same(bits, plain);
      if (testing::Test::HasFatalFailure()) return;
    }
    Scoped<TLstU32> lst;
    Scoped<TArrU8> bytes;
    ASSERT_TRUE(bits.to_Lst(*lst));
    ASSERT_TRUE(bits.to_Bytes(*bytes));
    CBitVector from_lst, from_bytes;
    ASSERT_TRUE(from_lst.from_Lst(*lst, size));
    ASSERT_TRUE(from_bytes.from_Bytes(bytes->data, bytes->count));
    expect_Same(from_lst, plain);
    expect_Same(from_bytes, plain);
  }
}

TEST(BitVector, ThreadsThatSetNeighbouringBits_LoseNone) {
  const int64_t size = 8000;
  for (int round = 0; round < 200; ++round) {
    CBitVector bits;
    ASSERT_TRUE(bits.init(size));
    // Consecutive bits go to different threads, so that they share every byte.
#pragma omp parallel for schedule(static, 1) num_threads(4)
    for (int64_t i = 0; i < size; ++i)
      if (i % 7 != 3) bits.set(static_cast<uint64_t>(i));
    for (int64_t i = 0; i < size; ++i) ASSERT_EQ(bits.test(static_cast<uint64_t>(i)), i % 7 != 3);
  }
}

}  // namespace
}  // namespace undercut
