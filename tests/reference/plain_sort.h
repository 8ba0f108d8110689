// The quicksort of seeds and tree items written down step by step, by recursion on both parts and
// with no shortcut.
#pragma once

#include <cstdint>
#include <utility>

namespace reference {

template <typename Record, typename KeyOf>
void plain_Sort(Record* r, int64_t first, int64_t last, KeyOf key) {
  if (first >= last) return;
  const int64_t s = last - first + 1;
  if (s <= 8) {
    for (int64_t end = first + 1; end <= last; ++end)
      for (int64_t k = end; k > first; --k) {
        if (!(key(r[k - 1]) > key(r[k]))) break;
        std::swap(r[k - 1], r[k]);
      }
    return;
  }
  int64_t mid = first + s / 2;
  if (key(r[last]) > key(r[first])) {
    if (key(r[first]) > key(r[mid])) mid = first;
    if (key(r[mid]) > key(r[last])) mid = last;
  } else {
    if (key(r[last]) > key(r[mid])) mid = last;
    if (key(r[mid]) > key(r[first])) mid = first;
  }
  std::swap(r[mid], r[last]);
  const double pivot = key(r[last]);
  int64_t i = first - 1, j = last;
  while (true) {
    ++i;
    while (key(r[i]) < pivot && i < last) ++i;
    --j;
    while (pivot < key(r[j]) && j > first) --j;
    if (i >= j) break;
    std::swap(r[i], r[j]);
  }
  std::swap(r[i], r[last]);
  plain_Sort(r, i + 1, last, key);
  plain_Sort(r, first, i - 1, key);
}

}  // namespace reference
