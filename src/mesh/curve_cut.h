// Cuts the triangles of a mesh along closed curves.
//
// The vertex indices of the mesh must be in range. Curves are a host's: a curve, or a set of them,
// may have no array. Each operation answers 0 or a code, and then leaves `out` empty.
#pragma once

#include "mesh/adjacency.h"

namespace undercut {

// For each closed curve (points near the mesh) the mesh vertices that a walk along it passes, in
// walking order: the walk starts at the vertex nearest to the first point and ends there, where its
// list ends too. A curve without points, or that leads the walk nowhere, gives an empty list. -17
// if a walk does not come back to its start; -13 no memory for the tables, -16 for a list (one of
// more than 2^32 - 1 vertices counts as such); -1 for an empty mesh. `vtx_tri` is used when given.
int32_t crv_Path(const T3DMSH& msh, const TArrArrVec& curves, TArr<TArr<uint32_t>>& out);
int32_t crv_Path(const T3DMSH& msh, const TAdj& vtx_tri, const TArrArrVec& curves,
                 TArr<TArr<uint32_t>>& out);

// Two lists of triangles, in rising order: those outside the curves, and those inside, which lie to
// the left of the directed curves as the triangles' orientation sees them. Triangles with two equal
// corner indices are in neither.
//
// Codes of crv_Path; -2 no memory for the loops; -3 for the labels and lists; -11 for the search
// for vertices that are no manifold points, -15 if a curve runs through one; -19 if a list is
// empty, -20 if one holds all triangles, whichever list comes first. So a curve that bounds nothing
// gives -20, or -19 if the mesh has triangles that are in neither list; one that leads the walk
// nowhere gives -19, and so do no sets at all.
int32_t crv_Cut(const T3DMSH& msh, const TArrArrVec& curves, TLst<TLst<uint32_t>>& out);

// The same for several sets of curves: list 0 is what lies in no set, list k + 1 what lies left of
// the loops of set k. No set reaches across a loop of any other; where two loops without another
// between them both have a triangle to their left, the one that is fewer triangles away has it.
int32_t crv_CutLst(const T3DMSH& msh, const TArrCrv& sets, TLst<TLst<uint32_t>>& out);

}  // namespace undercut
