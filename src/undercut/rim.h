// The rim of an undercut patch: its border, less what lies on the mesh's own open border, projected
// along the tool axis. Lengths in mm.
#pragma once

#include "foundation/arrays.h"
#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"
#include "mesh/trees.h"

namespace undercut {

// Sets the bits of both ends of each edge of the mesh's open border. `ends` has a bit for each
// vertex at least. False without memory.
bool mark_Open(const T3DMSH& msh, const TAdj& vtx_tri, CBitVector& ends);

// Drops the edges with both ends marked. An edge that is dropped gives its place to the last one,
// and the last edge left is never tested: so something stays where there was anything.
void drop_Open(TArr<T3DSGM>& edges, const CBitVector& ends);

class CRim {
 public:
  CRim() = default;
  CRim(const CRim&) = delete;
  CRim& operator=(const CRim&) = delete;

  // To be called once. 0; -1 no polyline, no edge among the causes, -2 no projection, -3 no tree.
  int32_t Build(const T3DMSH& msh, const TArr<T3DSGM>& edges, const T3DFRM& frm);

  // The distance to the rim, from a walk along all of it; kAbsent only where no distance is a
  // number below that.
  double walk_All(const T2DVEC& p) { return dst_Pol2(*flat_, p); }
  // The distance from the centre to what lies within the circle; kAbsent for nothing.
  double ask_Near(const C2DCIRC& circle) { return tree_.Nearest(circle, *found_); }

 private:
  Scoped<T2DPOL> flat_;
  Scoped<TLst<uint32_t>> found_;
  C2DSgmAABBTree tree_;
};

}  // namespace undercut
