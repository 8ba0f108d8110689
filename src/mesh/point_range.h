// The range of many points, found by several threads, a block of points at a time.
#pragma once

#include <algorithm>
#include <cmath>

#include "foundation/box.h"
#include "foundation/parallel.h"
#include "foundation/scratch.h"

namespace undercut {

struct TPointRange {
  C3DAABB box;
  bool is_finite = true;  // all of them are

  void add(const T3DVEC& p) {
    is_finite &= std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
    box.add(p);
  }
  void merge(const TPointRange& other) {
    is_finite &= other.is_finite;
    box.merge(other.box);
  }
};

// body(first, end) gives the range of a block. Throws std::bad_alloc.
template <typename Body>
TPointRange range_Blocks(uint32_t count, Body body) {
  constexpr uint32_t kBlock = 1024, kFewBlocks = 4;  // that stay on one thread
  const uint32_t blocks = (count + kBlock - 1) / kBlock;
  CScratch<TPointRange> parts;
  parts.resize(blocks);
  each_Index(
      blocks, [&](uint32_t k) { parts[k] = body(k * kBlock, std::min((k + 1) * kBlock, count)); },
      kFewBlocks);
  TPointRange all;
  for (uint32_t k = 0; k < blocks; ++k) all.merge(parts[k]);
  return all;
}

}  // namespace undercut
