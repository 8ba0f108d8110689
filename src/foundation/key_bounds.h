// The lowest and the highest key of each block of records, and of pairs of blocks upward: finds the
// next record at or beyond a pivot in logarithmic time. For ranges in which the quicksort goes
// wrong.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace undercut {

// Over records first to last. What is not a number counts as the lowest and the highest at once: it
// stops every search, as it stops the scans of the sort.
template <typename Record, typename KeyOf>
class KeyBounds {
 public:
  KeyBounds(Record* r, int64_t first, int64_t last, KeyOf key)
      : r_(r), first_(first), last_(last), key_(key) {}

  // False without memory.
  bool build() {
    leaves_ = static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(get_Block(last_) + 1)));
    spans_.reset(new (std::nothrow) Span[static_cast<size_t>(2 * leaves_)]);
    if (!spans_) return false;
    for (int64_t block = 0; block <= get_Block(last_); ++block)
      spans_[leaves_ + block] = measure(block);
    for (int64_t k = leaves_ - 1; k > 0; --k) spans_[k] = join(spans_[2 * k], spans_[2 * k + 1]);
    return true;
  }

  void swap(int64_t a, int64_t b) {
    std::swap(r_[a], r_[b]);
    if (key_(r_[a]) == key_(r_[b])) return;
    update(a);
    update(b);
  }

  // The first record from i on whose key is not below the pivot; there must be one.
  int64_t find_Up(int64_t i, double pivot) const {
    int64_t block = get_Block(i);
    for (;;) {
      for (const int64_t end = get_End(block); i <= end; ++i)
        if (!(key_(r_[i]) < pivot)) return i;
      int64_t k = leaves_ + block;
      do {
        while (k & 1) k >>= 1;
        ++k;
      } while (spans_[k].high < pivot);
      while (k < leaves_) k = 2 * k + (spans_[2 * k].high < pivot);
      block = k - leaves_;
      i = get_Start(block);
    }
  }

  // The last record from j down to `first` whose key is not above the pivot; `first` if there is
  // none.
  int64_t find_Down(int64_t j, int64_t first, double pivot) const {
    int64_t block = get_Block(j);
    for (;;) {
      for (const int64_t start = get_Start(block); j >= start; --j)
        if (j <= first || !(pivot < key_(r_[j]))) return j < first ? first : j;
      int64_t k = leaves_ + block;
      do {
        while ((k & 1) == 0) k >>= 1;
        if (k == 1) return first;
        --k;
      } while (pivot < spans_[k].low);
      while (k < leaves_) k = 2 * k + !(pivot < spans_[2 * k + 1].low);
      block = k - leaves_;
      j = get_End(block);
    }
  }

 private:
  static constexpr int64_t kBlock = 32;
  static constexpr double kInf = std::numeric_limits<double>::infinity();
  struct Span {
    double low = kInf, high = -kInf;
  };

  int64_t get_Block(int64_t i) const { return (i - first_) / kBlock; }
  int64_t get_Start(int64_t block) const { return first_ + block * kBlock; }
  int64_t get_End(int64_t block) const { return std::min(get_Start(block + 1) - 1, last_); }

  static Span join(const Span& a, const Span& b) {
    return {a.low < b.low ? a.low : b.low, a.high > b.high ? a.high : b.high};
  }
  Span measure(int64_t block) const {
    Span span;
    for (int64_t i = get_Start(block); i <= get_End(block); ++i) {
      const double k = key_(r_[i]);
      if (!(k > span.low)) span.low = std::isnan(k) ? -kInf : k;
      if (!(k < span.high)) span.high = std::isnan(k) ? kInf : k;
    }
    return span;
  }
  void update(int64_t i) {
    int64_t k = leaves_ + get_Block(i);
    spans_[k] = measure(get_Block(i));
    while (k >>= 1) spans_[k] = join(spans_[2 * k], spans_[2 * k + 1]);
  }

  Record* r_;
  int64_t first_, last_;
  KeyOf key_;
  int64_t leaves_ = 0;
  std::unique_ptr<Span[]> spans_;
};

}  // namespace undercut
