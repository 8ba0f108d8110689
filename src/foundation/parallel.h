// Loops over independent entries, shared out among the threads of OpenMP.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <new>

#if defined(__SANITIZE_THREAD__)
#define UNDERCUT_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define UNDERCUT_TSAN 1
#endif
#endif

#ifdef UNDERCUT_TSAN
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
#endif

namespace undercut {

// The order in which OpenMP starts and joins its threads, told to the thread sanitizer, which does
// not see into the runtime and would take every hand-over for a race.
class CThreadOrder {
 public:
#ifdef UNDERCUT_TSAN
  CThreadOrder() { __tsan_release(&begin_); }
  ~CThreadOrder() { __tsan_acquire(&end_); }
  void begin() { __tsan_acquire(&begin_); }
  void end() { __tsan_release(&end_); }

 private:
  char begin_ = 0, end_ = 0;
#else
  void begin() {}
  void end() {}
#endif
};

// Entries of next to no work, a load and a store, that pay for threads.
inline constexpr uint32_t kWorthIfLight = 1u << 14;

// body(i) for each i below the count, in contiguous runs, one for each thread; loops of fewer than
// `worth` entries stay on the calling thread. An entry may write only what no other entry touches.
// Where an entry throws, which it does for lack of memory alone, the others still run, and the
// calling thread throws std::bad_alloc at the end.
template <typename Body>
void each_Index(uint32_t count, const Body& body, uint32_t worth = 256) {
  std::atomic<bool> failed = false;
  const auto run = [&](uint32_t i) {
    try {
      body(i);
    } catch (...) {
      failed.store(true, std::memory_order_relaxed);
    }
  };
  if (count < worth) {  // outside of OpenMP, where even a single thread takes half a microsecond
    for (uint32_t i = 0; i < count; ++i) run(i);
  } else {
    CThreadOrder order;
#pragma omp parallel
    {
      order.begin();
#pragma omp for schedule(static)
      for (int64_t i = 0; i < static_cast<int64_t>(count); ++i) run(static_cast<uint32_t>(i));
      order.end();
    }
  }
  if (failed) throw std::bad_alloc();
}

// body(first, end) for blocks of entries beside one another, fewer than 2^32 of them; loops of
// fewer than `worth` blocks stay on the calling thread. Otherwise as each_Index.
template <typename Body>
void each_Block(uint64_t count, uint32_t block, const Body& body, uint32_t worth = 4) {
  each_Index(
      static_cast<uint32_t>((count + block - 1) / block),
      [&](uint32_t k) {
        const uint64_t first = uint64_t{k} * block;
        body(first, std::min(first + block, count));
      },
      worth);
}

// Whether test(i) holds for all i below the count; it may be asked of some after one failed.
template <typename Test>
bool holds_All(uint32_t count, const Test& test) {
  std::atomic<bool> all = true;
  each_Block(count, 4096, [&](uint64_t first, uint64_t end) {
    bool holds = true;
    for (uint64_t i = first; i < end; ++i) holds &= test(static_cast<uint32_t>(i));
    if (!holds) all.store(false, std::memory_order_relaxed);
  });
  return all;
}

}  // namespace undercut
