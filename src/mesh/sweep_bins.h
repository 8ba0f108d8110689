// Entries sorted into bins: counted first, then put, by several threads beside one another. In a
// bin they keep their order, whatever the number of parts that they are taken in.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "foundation/scratch.h"

namespace undercut {

class CBins {
  static constexpr uint32_t kLine = 16;  // entries in a line of the cache

 public:
  // Entries that may turn out not to be there are counted and put without a branch, which half of
  // the time would be foretold wrongly: in bins of their own, one each, that nobody reads.
  static constexpr uint32_t kSpare = 3;

  // One part of the entries: its counts, then where its next ones go.
  class CRow {
   public:
    CRow(uint32_t* next, uint32_t* entries, uint32_t bins)
        : next_(next), entries_(entries), bins_(bins) {}
    void count(uint32_t bin) { ++next_[bin]; }
    void put(uint32_t bin, uint32_t entry) {
      uint32_t* const place = entries_ + next_[bin]++;
      *place = entry;
      // The bin's next line of the cache, for later: in long lists each would be waited for.
      __builtin_prefetch(place + kLine, 1);
    }
    // `is` is 0 or 1.
    void count_If(uint32_t is, uint32_t bin, uint32_t spare) { next_[pick(is, bin, spare)] += is; }
    void put_If(uint32_t is, uint32_t bin, uint32_t spare, uint32_t entry) {
      uint32_t& next = next_[pick(is, bin, spare)];
      entries_[next] = entry;
      next += is;
    }

   private:
    uint32_t pick(uint32_t is, uint32_t bin, uint32_t spare) const {
      const uint32_t none = bins_ + spare;
      return none ^ ((none ^ bin) & (0u - is));
    }

    uint32_t *next_, *entries_;
    uint32_t bins_;
  };

  // Throws std::bad_alloc.
  void start(uint32_t bins, uint32_t parts) {
    bins_ = bins;
    parts_ = parts;
    next_.resize(size_t{parts} * row_Size());
    begin_.resize(size_t{bins} + 1);
  }
  // For counting: all 0.
  CRow clear_Row(uint32_t part) {
    std::fill_n(&next_[part * row_Size()], row_Size(), 0u);
    return row(part);
  }
  CRow row(uint32_t part) { return {&next_[part * row_Size()], entries_.data(), bins_}; }

  // All are counted: makes room for them. False if there are more than so many. Throws
  // std::bad_alloc.
  bool make_Room(uint64_t most) {
    uint64_t next = 0;
    for (uint32_t bin = 0; bin < bins_; ++bin) {
      begin_[bin] = static_cast<uint32_t>(next);
      for (uint32_t part = 0; part < parts_; ++part)
        next += std::exchange(next_[part * row_Size() + bin], static_cast<uint32_t>(next));
    }
    begin_[bins_] = static_cast<uint32_t>(next);
    const uint64_t spare = uint64_t{kApart} * (parts_ + 1);
    if (next > std::min(most, UINT32_MAX - spare)) return false;
    for (uint32_t part = 0; part < parts_; ++part)
      for (uint32_t k = 0; k < kSpare; ++k)
        next_[part * row_Size() + bins_ + k] =
            static_cast<uint32_t>(next + kApart * (part + 1) + k);
    entries_.resize(next + spare);
    return true;
  }

  // Those of a bin stand from begin(bin) to begin(bin + 1).
  uint32_t begin(uint32_t bin) const { return begin_[bin]; }
  uint32_t count(uint32_t bin) const { return begin_[bin + 1] - begin_[bin]; }
  uint32_t* entries(uint32_t from) { return &entries_[from]; }
  const uint32_t* entries(uint32_t from) const { return &entries_[from]; }

 private:
  // So far from one another, in entries, that no two threads write to one line of the cache again
  // and again.
  static constexpr uint32_t kApart = 2 * kLine;
  static_assert(kSpare <= kLine);

  size_t row_Size() const { return size_t{bins_} + kApart; }

  uint32_t bins_ = 0, parts_ = 0;
  CScratch<uint32_t> next_;  // of each part in each bin
  CScratch<uint32_t> begin_, entries_;
};

}  // namespace undercut
