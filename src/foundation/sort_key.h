// The quicksort that settles the order of equal keys: by seeds, by scores, by tree items.
//
// Median of three as the pivot, moved to the end; ranges of up to 8 by insertion. Which of two
// equal keys comes first depends on the whole array, and results hang on it: every swap is kept.
// (C. A. R. Hoare, Quicksort, 1962; R. Sedgewick, Implementing Quicksort Programs, 1978.)
// Departures that change no result: the longer part is sorted in a loop, not by recursion, so the
// stack stays flat; and where partitions are so uneven that the scans would take quadratic time, as
// with descending keys, bounds of blocks of keys let them skip. Swaps are few there: none but those
// that fill the smaller part. So n records cost n log^2 n at the worst.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "foundation/key_bounds.h"

namespace undercut {

namespace sort_detail {

inline constexpr int64_t kInsertion = 8;
inline constexpr int64_t kWorthBounds = 256;  // a shorter range is scanned whatever it costs

template <typename Record, typename KeyOf>
void insert_Range(Record* r, int64_t first, int64_t last, KeyOf key) {
  for (int64_t i = first + 1; i <= last; ++i)
    for (int64_t k = i; k > first && key(r[k - 1]) > key(r[k]); --k) std::swap(r[k - 1], r[k]);
}

template <typename Record, typename KeyOf>
int64_t median(const Record* r, int64_t first, int64_t last, KeyOf key) {
  int64_t mid = first + (last - first + 1) / 2;
  if (key(r[last]) > key(r[first])) {
    if (key(r[first]) > key(r[mid])) mid = first;
    if (key(r[mid]) > key(r[last])) mid = last;
  } else {
    if (key(r[last]) > key(r[mid])) mid = last;
    if (key(r[mid]) > key(r[first])) mid = first;
  }
  return mid;
}

// Scans record by record. The pivot at the end of the range stops the way up.
template <typename Record, typename KeyOf>
struct PlainScan {
  Record* r;
  KeyOf key;

  void swap(int64_t a, int64_t b) { std::swap(r[a], r[b]); }
  int64_t find_Up(int64_t i, double pivot) const {
    while (key(r[i]) < pivot) ++i;
    return i;
  }
  int64_t find_Down(int64_t j, int64_t first, double pivot) const {
    while (pivot < key(r[j]) && j > first) --j;
    return j;
  }
};

// Moves the pivot to its place and returns it: no greater key left of it, no smaller one right.
template <typename Record, typename KeyOf, typename Scan>
int64_t split(const Record* r, int64_t first, int64_t last, KeyOf key, Scan& scan) {
  scan.swap(median(r, first, last, key), last);
  const double pivot = key(r[last]);
  int64_t i = first - 1, j = last;
  for (;;) {
    i = scan.find_Up(i + 1, pivot);
    j = scan.find_Down(j - 1, first, pivot);
    if (i >= j) break;
    scan.swap(i, j);
  }
  scan.swap(i, last);
  return i;
}

// `budget` is how many records may yet be scanned before bounds are built.
template <typename Record, typename KeyOf, typename Scan>
void sort_Range(Record* r, int64_t first, int64_t last, KeyOf key, Scan& scan, int64_t& budget) {
  while (last - first + 1 > kInsertion) {
    if constexpr (std::is_same_v<Scan, PlainScan<Record, KeyOf>>) {
      if (budget < 0 && last - first >= kWorthBounds) {
        KeyBounds<Record, KeyOf> bounds(r, first, last, key);
        if (bounds.build()) return sort_Range(r, first, last, key, bounds, budget);
      }
      budget -= last - first;
    }
    const int64_t i = split(r, first, last, key, scan);
    if (i - first < last - i) {
      sort_Range(r, first, i - 1, key, scan, budget);
      first = i + 1;
    } else {
      sort_Range(r, i + 1, last, key, scan, budget);
      last = i - 1;
    }
  }
  insert_Range(r, first, last, key);
}

}  // namespace sort_detail

// Sorts records first to last (inclusive) ascending by key(record), a double. Allocates only where
// partitions are uneven, and then does without if there is no memory.
template <typename Record, typename KeyOf>
void sort_Key(Record* r, int64_t first, int64_t last, KeyOf key) {
  if (first >= last) return;
  sort_detail::PlainScan<Record, KeyOf> scan{r, key};
  // Even partitions need about 1.2 n log n.
  int64_t budget = 3 * (last - first + 1) * std::bit_width(static_cast<uint64_t>(last - first));
  sort_detail::sort_Range(r, first, last, key, scan, budget);
}

}  // namespace undercut
