// Which triangles meet at a vertex, and which share an edge.
//
// A mesh carries no edges: an edge is a pair of vertex indices that two triangles share. All tests
// compare indices. Counting passes first, filling second: every array has its exact size.
#pragma once

#include <cstdint>

#include "foundation/arrays.h"
#include "foundation/values.h"

namespace undercut {

// An incidence table: lists[i] has counts[i] entries. All entries lie in one block that begins at
// lists[0].
struct TAdj {
  uint32_t** lists = nullptr;
  uint32_t* counts = nullptr;
};

void adj_Free(TAdj& adj);
inline void release(TAdj& adj) { adj_Free(adj); }

// Per vertex the triangles at it, in rising order, a triangle once for each occurrence of the
// vertex. 0; -1 no triangle array, -2 no memory for lists, -3 for counts, -4 for the block.
int32_t adj_VtxTri(const T3DMSH& msh, TAdj& out);

// Per point the segments at it, in rising order. Codes as adj_VtxTri.
int32_t adj_PntSgm(const T3DPOL& pol, TAdj& out);

// Per triangle the triangles that share an edge with it: for its edges ab, bc, ca in turn, the
// other triangles that contain both ends, in rising order; one that shares two edges is listed
// twice, and an edge of three triangles gives each of them two neighbours. `vtx_tri` is used when
// given. 0; -1 no triangle array, -2 no vertex table, -3, -4, -5 no memory (more than 2^32 - 1
// entries count as such: a table of that size comes only from thousands of triangles on one edge).
int32_t adj_TriTri(const T3DMSH& msh, TAdj& out);
int32_t adj_TriTri(const T3DMSH& msh, const TAdj& vtx_tri, TAdj& out);

}  // namespace undercut
