// A part of an object that is made when it is first needed, by whichever thread asks first.
#pragma once

#include <atomic>
#include <mutex>

namespace undercut {

// Costs one load when the part is there.
class CMadeOnce {
 public:
  // Runs make() unless an earlier call of it came to its end; threads that ask meanwhile wait. What
  // make() throws is passed on, and the next call tries again.
  template <typename Make>
  void ensure(const Make& make) {
    if (made_.load(std::memory_order_acquire)) [[likely]]
      return;
    const std::lock_guard<std::mutex> lock(mutex_);
    if (made_.load(std::memory_order_relaxed)) return;
    make();
    made_.store(true, std::memory_order_release);
  }
  bool is_Made() const { return made_.load(std::memory_order_acquire); }
  // Not while another thread asks.
  void forget() { made_.store(false, std::memory_order_relaxed); }

 private:
  std::atomic<bool> made_ = false;
  std::mutex mutex_;
};

}  // namespace undercut
