// The library's own contenders: what is built, and how rays are asked. What changes in trees.h or
// sight.h changes this file alone.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "bench/embree/rays.h"
#include "mesh/sight.h"
#include "mesh/trees.h"

namespace versus {

using undercut::C3DTriAABBTree;
using undercut::Ways;

inline void check(bool done) {
  if (!done) throw std::runtime_error("a tree of ours fails to build");
}

// Excluding a triangle that is not there makes AnyHit walk the prescribed tree.
inline void build_Prescribed(C3DTriAABBTree& tree, const T3DMSH& msh) {
  check(tree.Build(msh));
  tree.Exclude(UINT32_MAX);
}

inline void build_Wide(C3DTriAABBTree& tree, const T3DMSH& msh) {
  check(tree.Prepare(msh));
  tree.BuildRays();
}

inline void ask_Tree(const C3DTriAABBTree& tree, const TRays& rays, uint8_t* open) {
  each_Block(rays.count(), [&](size_t first, size_t end) {
    for (size_t i = first; i < end; ++i) open[i] = !tree.AnyHit(rays.exact[i]);
  });
}

// The same in the order of make_Parallel: all rays ahead, then all behind.
inline std::vector<uint8_t> unpack_Sight(const std::vector<uint8_t>& sight, Ways ways) {
  std::vector<uint8_t> open;
  open.reserve(2 * sight.size());
  for (const uint8_t seen : sight) open.push_back((seen & undercut::kSeesAhead) != 0);
  if (ways == Ways::kAhead) return open;
  for (const uint8_t seen : sight) open.push_back((seen & undercut::kSeesBehind) != 0);
  return open;
}

// All that one direction costs from a bare mesh.
inline void sight_Afresh(C3DTriAABBTree& tree, const T3DMSH& msh, const T3DVEC& direction,
                         uint8_t* sight) {
  check(tree.Prepare(msh));
  see_Along(tree, {msh, kLift}, direction, Ways::kAhead, nullptr, msh.n_tri, sight);
}

}  // namespace versus
