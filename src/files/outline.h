// The boundary of a list of triangles.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// Works on a copy of the listed triangles and of their vertices alone, each in the order of the
// mesh: edges and loops come out as from the whole mesh, and a file for each of many regions costs
// no pass over the whole mesh each time.
class COutline {
 public:
  // The ids must be in range. False without a boundary, for a vertex index out of range, or without
  // memory.
  bool init(const T3DMSH& msh, const TLst<uint32_t>& ids);
  // The chains of boundary edges as points, see bnd_Loops.
  bool loops(TArr<TArr<T3DVEC>>& out);
  // The boundary edges, points of exactly equal coordinates merged.
  bool edges(T3DPOL& out);

 private:
  bool copy_Tris(const T3DMSH& msh, const TArr<uint32_t>& tris);

  Scoped<T3DMSH> msh_;
  Scoped<TArr<T3DSGM>> edges_;
};

}  // namespace undercut
