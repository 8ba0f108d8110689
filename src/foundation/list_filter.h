// Lists that are cut down again and again, on all threads.
#pragma once

#include <algorithm>
#include <cstdint>

#include "foundation/parallel.h"
#include "foundation/records.h"
#include "foundation/scratch.h"

namespace undercut {

// Keeps, in their order, the entries of which keep(i, entry) is true; it is asked once of each, and
// may write what no other entry touches. What a block of the list keeps moves to the begin of the
// block, and then to that of the list. Throws std::bad_alloc, and leaves the list as it is.
template <typename Keep>
void filter_List(TArr<uint32_t>& list, CScratch<uint32_t>& scratch, const Keep& keep) {
  constexpr uint32_t kBlock = 4096;
  scratch.resize(list.count / kBlock + 1);  // how many of each block are kept
  each_Block(list.count, kBlock, [&](uint64_t first, uint64_t end) {
    uint64_t next = first;
    for (uint64_t i = first; i < end; ++i) {
      const uint32_t entry = list.data[i];
      list.data[next] = entry;
      next += keep(static_cast<uint32_t>(i), entry) ? 1 : 0;
    }
    scratch[first / kBlock] = static_cast<uint32_t>(next - first);
  });
  uint32_t count = 0;
  for (uint64_t first = 0; first < list.count; first += kBlock) {
    const uint32_t kept = scratch[first / kBlock];
    if (count != first) std::copy_n(list.data + first, kept, list.data + count);
    count += kept;
  }
  list.count = count;
}

}  // namespace undercut
