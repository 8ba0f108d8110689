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
  constexpr uint32_t kBlock = 1024;
  CScratch<TPointRange> parts;
  parts.resize(count / kBlock + 1);
  each_Block(count, kBlock, [&](uint64_t first, uint64_t end) {
    parts[first / kBlock] = body(static_cast<uint32_t>(first), static_cast<uint32_t>(end));
  });
  TPointRange all;
  for (uint64_t first = 0; first < count; first += kBlock) all.merge(parts[first / kBlock]);
  return all;
}

}  // namespace undercut
