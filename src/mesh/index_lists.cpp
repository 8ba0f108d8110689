// Repeated neighbours, the last element and the longest loop of a closed list of indices.
#include "mesh/index_lists.h"

#include <algorithm>

#include "foundation/bit_vector.h"

namespace undercut {

namespace {

bool is_Empty(const TArr<uint32_t>& lst) { return !lst.data || lst.count == 0; }

// Rebuilds the list without the marked positions.
int32_t drop_Marked(TArr<uint32_t>& lst, const CBitVector& marked) {
  const uint64_t gone = marked.count();
  if (gone == 0) return 0;
  TArr<uint32_t> kept;
  if (!alloc(kept, lst.count - static_cast<uint32_t>(gone))) return -3;
  uint32_t end = 0;
  for (uint32_t i = 0; i < lst.count; ++i)
    if (!marked.test(i)) kept.data[end++] = lst.data[i];
  release(lst);
  lst = kept;
  return 0;
}

// For each position the one before it, nearest first, that holds the same vertex; kNone for none.
bool find_Repeats(const TArr<uint32_t>& lst, TArr<uint32_t>& previous) {
  Scoped<TArr<uint32_t>> order;
  if (!alloc(*order, lst.count) || !alloc(previous, lst.count)) return false;
  for (uint32_t i = 0; i < lst.count; ++i) order->data[i] = i;
  std::sort(order->data, order->data + lst.count, [&](uint32_t i, uint32_t j) {
    return lst.data[i] != lst.data[j] ? lst.data[i] < lst.data[j] : i < j;
  });
  previous.data[order->data[0]] = kNone;
  for (uint32_t i = 1; i < lst.count; ++i) {
    const uint32_t here = order->data[i], before = order->data[i - 1];
    previous.data[here] = lst.data[here] == lst.data[before] ? before : kNone;
  }
  return true;
}

// The longest loop so far. Only this one is stored: on a list made for it the loops together are
// as long as the square of the list.
struct TLongest {
  TArr<uint32_t>& loop;
  uint32_t count = 0;

  // A loop of `extra` more elements than there are positions from `first` to `last` along `next`.
  // Positions rise along `next`, so the walk ends.
  void offer(const TArr<uint32_t>& lst, const uint32_t* next, uint32_t first, uint32_t last,
             uint32_t extra) {
    uint32_t length = 1 + extra;
    for (uint32_t i = first; i != last; i = next[i]) ++length;
    if (length <= count) return;
    count = length;
    uint32_t* end = loop.data;
    for (uint32_t i = first; i != last; i = next[i]) *end++ = lst.data[i];
    *end++ = lst.data[last];
    if (extra > 0) *end = lst.data[first];
  }
};

}  // namespace

int32_t lst_DropDup(TArr<uint32_t>& lst) {
  if (is_Empty(lst)) return -1;
  CBitVector marked;
  if (!marked.init(lst.count)) return -2;
  uint32_t before = lst.data[lst.count - 1];
  for (uint32_t i = 0; i < lst.count; ++i) {
    if (lst.data[i] == before) marked.set(i);
    before = lst.data[i];
  }
  if (marked.count() == lst.count) marked.clear(0);
  return drop_Marked(lst, marked);
}

int32_t lst_DropLast(TArr<uint32_t>& lst) {
  if (is_Empty(lst)) return -1;
  CBitVector marked;
  if (!marked.init(lst.count)) return -2;
  marked.set(lst.count - 1);
  return drop_Marked(lst, marked);
}

// The last position takes part in no split, and a vertex is cut out from its last occurrence on,
// which is itself cut out already where it came a third time: then the rest keeps what lies between
// the two. Both decide which loop is kept.
int32_t lst_BigLoop(TArr<uint32_t>& lst) {
  if (is_Empty(lst)) return -8;
  Scoped<TArr<uint32_t>> next, previous, loop;
  const uint32_t n = lst.count;
  if (!alloc(*next, n)) return -2;
  if (!find_Repeats(lst, *previous)) return -3;
  if (n == UINT32_MAX || !alloc(*loop, n + 1)) return -4;
  for (uint32_t i = 0; i < n; ++i) next->data[i] = i + 1 < n ? i + 1 : 0;
  TLongest longest = {*loop};
  for (uint32_t i = 0; i + 1 < n; ++i) {
    const uint32_t before = previous->data[i];
    if (before == kNone) continue;
    longest.offer(lst, next->data, next->data[before], i, 0);
    next->data[before] = next->data[i];
  }
  uint32_t last = 0;
  while (next->data[last] != 0) last = next->data[last];
  longest.offer(lst, next->data, 0, last, 1);
  loop->count = longest.count;
  release(lst);
  lst = loop.take();
  return 0;
}

}  // namespace undercut
