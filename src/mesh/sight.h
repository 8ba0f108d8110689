// Which triangles see out of a mesh along a direction: from the centroid of each, lifted along its
// normal, does a ray leave without a hit?
//
// There is no test of orientation. A ray that enters the surface is hit by its own triangle, which
// is how triangles that face away drop out.
#pragma once

#include "mesh/ray_starts.h"
#include "mesh/sweep.h"
#include "mesh/trees.h"

namespace undercut {

// What is found for a triangle: kSeesAhead, kSeesBehind, or none, or kNoRay alone.

enum class Ways { kAhead, kBoth };

// Looks from one mesh at another, or at itself, along any number of directions, and keeps between
// them what hangs on none: the starts of the rays, and the memory of the sweep.
class CSight {
 public:
  CSight() = default;
  CSight(const C3DTriAABBTree& obstacle, const TRayStarts& starts) { ini_Sight(obstacle, starts); }
  // Borrows the tree and the mesh, which must stay alive and unchanged.
  void ini_Sight(const C3DTriAABBTree& obstacle, const TRayStarts& starts);
  // Forgets both and gives the memory back.
  void clear();

  // sight[i] for the i-th listed triangle, or for triangle i where the list is null. Loops in
  // parallel over the list; every entry hangs on its own triangle alone. Throws std::bad_alloc,
  // from the calling thread. The indices must be in range.
  void see_Along(const T3DVEC& direction, Ways ways, const uint32_t* list, uint32_t count,
                 uint8_t* sight);

 private:
  void make_Starts();
  bool prefers_Sweep(uint32_t rays);
  uint8_t ask_Tree(const T3DVEC& org, const T3DVEC& direction, uint8_t open) const;

  const C3DTriAABBTree* obstacle_ = nullptr;
  TRayStarts starts_ = {};
  CSweep sweep_;
  bool has_Starts_ = false, can_Sweep_ = true;
  double lost_ = 0;  // what sweeps of few rays took longer than a tree would have, in ns
  CScratch<T3DVEC> orgs_;
  CScratch<uint8_t> no_ray_;
  C3DAABB box_;  // of all starts
};

// The same for one direction.
inline void see_Along(const C3DTriAABBTree& obstacle, const TRayStarts& starts,
                      const T3DVEC& direction, Ways ways, const uint32_t* list, uint32_t count,
                      uint8_t* sight) {
  CSight(obstacle, starts).see_Along(direction, ways, list, count, sight);
}

}  // namespace undercut
