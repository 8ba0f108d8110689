// The rim of an undercut patch: its border, less what lies on the mesh's own open border, projected
// along the tool axis. Lengths in mm.
#pragma once

#include "foundation/arrays.h"
#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"
#include "mesh/segment_search.h"
#include "mesh/trees.h"

namespace undercut {

// Sets the bits of both ends of each edge of the mesh's open border. `ends` has a bit for each
// vertex at least. False without memory.
bool mark_Open(const T3DMSH& msh, const TAdj& tri_tri, CBitVector& ends);

// Drops the edges with both ends marked. An edge that is dropped gives its place to the last one,
// and the last edge left is never tested: so something stays where there was anything.
void drop_Open(TArr<T3DSGM>& edges, const CBitVector& ends);

// Whether a slack in mm is more than rounding takes from distances between points of meshes, seen
// across the Z axis of a frame: no coordinate of the meshes is larger than the extent. Then each
// circle of the flood in depth_flood.h holds what is nearest of the rim, so that the flood gives
// every triangle its distance from all of the rim, which can be measured without it.
bool is_Ample(double slack, double extent, const T3DFRM& frm);
// The largest coordinate of a mesh's vertices; infinite where one is not finite.
double find_Extent(const T3DMSH& msh);

class CRim {
 public:
  CRim() = default;
  CRim(const CRim&) = delete;
  CRim& operator=(const CRim&) = delete;

  // To be called once. 0; -1 no polyline, no edge among the causes, -2 no projection, -3 no memory
  // for the search.
  int32_t Build(const T3DMSH& msh, const TArr<T3DSGM>& edges, const T3DFRM& frm);
  // What ask_Near needs; false for no memory.
  bool build_Tree() { return tree_.Build(*flat_) && alloc(*found_, flat_->n_sgm); }

  bool is_Empty() { return flat_->n_sgm == 0; }
  // The distance to the rim; kAbsent only where no distance is a number below that. Any number of
  // threads may ask, each with a `near` of its own: see C2DSgmSearch.
  double measure(const T2DVEC& p, uint32_t& near) const { return search_.Nearest(p, near); }
  // The same from a walk along all of it.
  double walk_All(const T2DVEC& p) { return dst_Pol2(*flat_, p); }
  // The distance from the centre to what lies within the circle; kAbsent for nothing.
  double ask_Near(const C2DCIRC& circle) { return tree_.Nearest(circle, *found_); }

 private:
  Scoped<T2DPOL> flat_;
  Scoped<TLst<uint32_t>> found_;
  C2DSgmSearch search_;
  C2DSgmAABBTree tree_;
};

}  // namespace undercut
