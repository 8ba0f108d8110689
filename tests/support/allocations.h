// Counts allocations and makes a chosen one fail. A test program that uses this has one source that
// includes tests/support/failing_new.h.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace undercut::tests {

// Blocks of operator new that are not freed yet.
int64_t live_Allocations();

// While it lives, the n-th allocation of the process from then on fails, counted from 1. One at a
// time.
class FailingAllocation {
 public:
  explicit FailingAllocation(uint64_t n);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  bool has_Failed() const;
};

// While it lives, remembers which blocks are freed, the first 64 of them. One at a time.
class FreedBlocks {
 public:
  FreedBlocks();
  ~FreedBlocks();
  FreedBlocks(const FreedBlocks&) = delete;
  FreedBlocks& operator=(const FreedBlocks&) = delete;
  // The place of a block in the order of freeing, from 0; -1 if it was not freed.
  int place_Of(const void* block) const;
};

// Runs `call`, which returns a code and releases what it was given, with its first allocation
// failing, then its second, and so on until all succeed. Returns the codes in their order, each run
// of equal ones once; the last is that of the call without a failure. No run may leak.
template <typename Call>
std::vector<int32_t> list_FailureCodes(Call call) {
  std::vector<int32_t> codes;
  codes.reserve(100);
  for (uint64_t n = 1;; ++n) {
    const int64_t before = live_Allocations();
    int32_t code = 0;
    bool failed = false;
    {
      FailingAllocation failing(n);
      code = call();
      failed = failing.has_Failed();
    }
    EXPECT_EQ(live_Allocations(), before) << "leak where allocation " << n << " fails";
    if (codes.empty() || codes.back() != code) codes.push_back(code);
    if (!failed) return codes;
  }
}

}  // namespace undercut::tests
