// Breadth-first search over triangle adjacency.
#pragma once

#include "mesh/adjacency.h"

namespace undercut {

// Appends to `order`, from `end` on, the triangles that are connected with the seed over triangles
// whose `waiting` mark is set, as they are found, the seed first. Clears their marks; returns the
// new end.
inline uint32_t flood_Patch(const TAdj& tri_tri, uint32_t seed, uint8_t* waiting, uint32_t* order,
                            uint32_t end) {
  uint32_t front = end;
  waiting[seed] = 0;
  order[end++] = seed;
  for (; front < end; ++front) {
    const uint32_t t = order[front];
    for (uint32_t i = 0; i < tri_tri.counts[t]; ++i) {
      const uint32_t n = tri_tri.lists[t][i];
      if (!waiting[n]) continue;
      waiting[n] = 0;
      order[end++] = n;
    }
  }
  return end;
}

}  // namespace undercut
