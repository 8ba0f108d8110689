// Merging of vertices: those closer than a tolerance, or those with exactly equal coordinates.
#pragma once

#include "mesh/adjacency.h"

namespace undercut {

// The members of one merged vertex, as a chain through TWeld::next.
struct TCluster {
  uint32_t head;  // first member, kNone if empty
  uint32_t count;
  uint32_t id;  // kNone if unset
};

struct TWeld {
  T3DMSH source = {};  // the view of the input, never freed
  T3DMSH merged = {};
  uint32_t* map = nullptr;       // old vertex to merged vertex
  TCluster* clusters = nullptr;  // one for each merged vertex
  uint32_t* next = nullptr;      // old vertex to the next member of its cluster, kNone at the end
};
void release(TWeld& weld);

// Merges vertices no farther than the tolerance from the first vertex, in index order, that is not
// merged yet: greedy, so a vertex may lie closer to a later centre than to its own. A merged vertex
// is the mean of its members. Triangles are mapped and all kept. False for an empty mesh, for a
// vertex that its own query does not find (a coordinate that is not a number), or no memory; a
// query without memory throws std::bad_alloc.
bool wld_Tol(const T3DMSH& msh, TWeld& out, double tolerance);

// Merges points of exactly equal coordinates, in place: points in order of first use by a segment.
// Without points or segments, or without memory, false and no change.
bool wld_Pol(T3DPOL& pol);

// The listed triangles with their own vertices, merged where coordinates are exactly equal. A
// listed triangle with two equal corner indices leaves its slot zero. False for an empty mesh or
// list, an index beyond the mesh, a list of nothing else than such triangles, or no memory.
bool wld_Sub(const T3DMSH& msh, const TLst<uint32_t>& lst, T3DMSH& out);
// wld_Sub for each list; false for no list at all, or when one fails.
bool wld_SubLst(const T3DMSH& msh, const TLst<TArr<uint32_t>>& lists, TArr<T3DMSH>& out);

}  // namespace undercut
