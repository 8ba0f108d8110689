// A second tree over the triangles of a mesh, for the one question that is asked by the hundred
// million: does a ray hit anything?
//
// Eight children a node and eight triangles a leaf, in single precision, tested eight at once (wide
// bounding volume hierarchies: I. Wald, C. Benthin, S. Boulos, Getting Rid of Packets, 2008). The
// answer is that of a loop over all triangles with hit_Box and hit_Tri, in double precision: nodes
// pass over no triangle whose own box passes hit_Box (ray_tree.cpp shows it), leaves leave to these
// two what single precision doesn't settle (ray_walk.inc shows it).
#pragma once

#include "foundation/values.h"
#include "mesh/ray_builder.h"

namespace undercut {

class TRayTree {
 public:
  // Throws std::bad_alloc, and is empty then. Does nothing where the boxes are not finite or out of
  // range.
  void build(const T3DMSH& msh);
  void clear();

  // Whether any_Hit may be asked with this ray: there is a tree, the ray is finite and in range.
  bool takes(const T3DRAY& ray) const;
  // Whether some triangle passes hit_Box with its own box and hit_Tri. The mesh is that of the
  // build. any_HitPortable is the same without what only some processors have.
  bool any_Hit(const T3DRAY& ray, const T3DMSH& msh) const;
  bool any_HitPortable(const T3DRAY& ray, const T3DMSH& msh) const;

 private:
  TRayParts parts_;
  double scale_ = 1;  // a power of two that brings all coordinates below 1
};

}  // namespace undercut
