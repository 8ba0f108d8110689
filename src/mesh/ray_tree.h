// A second tree over the triangles of a box tree, for the one question that is asked by the hundred
// million: does a ray hit anything?
//
// Eight children a node, with boxes in single precision, tested four at once (wide bounding volume
// hierarchies: I. Wald, C. Benthin, S. Boulos, Getting Rid of Packets, 2008). The nodes only choose
// which triangles are looked at; each of those is decided by hit_Box with its own box and hit_Tri,
// in double precision. So the answer is that of a loop over all triangles, provided that no node is
// passed over which holds a triangle whose own box passes hit_Box. ray_tree.cpp shows that it is
// so.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/values.h"
#include "mesh/box_tree.h"

namespace undercut {

// The bounds of all children stand together, axis by axis: low x, high x, low y, ...
struct alignas(64) TRayNode {
  static constexpr int kChildren = 8;
  float bounds[6][kChildren];
  uint32_t child[kChildren];  // a node or a triangle
  uint32_t triangles;         // bit k: child k is a triangle
};

class TRayTree {
 public:
  // Throws std::bad_alloc. Does nothing where the boxes are not finite or out of range.
  void build(const TBoxTree<C3DAABB>& tree, const T3DMSH& msh);
  void clear();

  // Whether any_Hit may be asked with this ray: there is a tree, the ray is finite and in range.
  bool takes(const T3DRAY& ray) const;
  // Whether some triangle passes hit_Box with its own box and hit_Tri. The mesh is that of the
  // build.
  bool any_Hit(const T3DRAY& ray, const T3DMSH& msh) const;

 private:
  std::vector<TRayNode> nodes_;
  double reach_ = 0;  // the largest coordinate, without its sign
};

}  // namespace undercut
