// Replaces the global operators new and delete by ones that count and that fail on request. To be
// included in exactly one source of a test program. Memory comes from malloc, so that an address
// sanitizer still sees each block. Over-aligned forms are left as they are.
#pragma once

#include <omp.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/support/allocations.h"

namespace undercut::tests {

namespace {

std::atomic<int64_t> live_blocks{0};
std::atomic<uint64_t> calls_left{0};  // until the one that fails; 0 for none
std::atomic<bool> call_failed{false};
std::atomic<bool> notes_freed{false};
std::atomic<int> freed_count{0};
const void* freed_blocks[64];

// Takes part in the count; true for the allocation that is to fail.
bool count_Call() {
  uint64_t left = calls_left.load();
  while (left > 0)
    if (calls_left.compare_exchange_weak(left, left - 1)) {
      if (left == 1) call_failed = true;
      return left == 1;
    }
  return false;
}

[[maybe_unused]] void* take_Block(std::size_t size) noexcept {
  if (count_Call()) return nullptr;
  void* block = std::malloc(size > 0 ? size : 1);
  if (block) ++live_blocks;
  return block;
}

[[maybe_unused]] void* take_OrThrow(std::size_t size) {
  void* block = take_Block(size);
  if (!block) throw std::bad_alloc();
  return block;
}

[[maybe_unused]] void give_Block(void* block) noexcept {
  if (block) --live_blocks;
  if (block && notes_freed && freed_count < 64) freed_blocks[freed_count++] = block;
  std::free(block);
}

}  // namespace

int64_t live_Allocations() { return live_blocks; }

FailingAllocation::FailingAllocation(uint64_t n) {
  omp_get_max_threads();  // the runtime of OpenMP allocates when it is first asked for anything
  call_failed = false;
  calls_left = n;
}
FailingAllocation::~FailingAllocation() { calls_left = 0; }
bool FailingAllocation::has_Failed() const { return call_failed; }

FreedBlocks::FreedBlocks() {
  freed_count = 0;
  notes_freed = true;
}
FreedBlocks::~FreedBlocks() { notes_freed = false; }
int FreedBlocks::place_Of(const void* block) const {
  for (int i = 0; i < freed_count; ++i)
    if (freed_blocks[i] == block) return i;
  return -1;
}

}  // namespace undercut::tests

// The thread sanitizer brings operators of its own, which cannot be replaced: under it nothing is
// counted and nothing fails.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define UNDERCUT_OWN_NEW 0
#endif
#endif
#ifndef UNDERCUT_OWN_NEW
void* operator new(std::size_t size) { return undercut::tests::take_OrThrow(size); }
void* operator new[](std::size_t size) { return undercut::tests::take_OrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return undercut::tests::take_Block(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return undercut::tests::take_Block(size);
}
void operator delete(void* block) noexcept { undercut::tests::give_Block(block); }
void operator delete[](void* block) noexcept { undercut::tests::give_Block(block); }
void operator delete(void* block, std::size_t) noexcept { undercut::tests::give_Block(block); }
void operator delete[](void* block, std::size_t) noexcept { undercut::tests::give_Block(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept {
  undercut::tests::give_Block(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  undercut::tests::give_Block(block);
}
#endif
