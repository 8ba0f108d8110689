// Writers of the stage files, for inspection: each writes one file whole, over any older one.
//
// Common to all:
// - A path or base path is a plain text. A null one, and one that cannot be opened, write nothing.
// - An empty input (a null array or a count of 0) writes no file. A list that is not empty may hold
//   empty inner lists unless told otherwise.
// - The bool is true when the file was written; it tells of no failing write, such as a full disk.
//   Writers with a file for each element say what theirs means. No writer prints a message, but for
//   sef_Pol and sef_PolFrm. No writer throws.
// - A list of triangles that names one beyond the mesh writes nothing, and is no failure: true.
// - Binary STL and outlines of triangles that name vertices beyond the mesh write nothing: false.
// - Lengths are in the host's unit, written with six digits behind the point, in the C locale.
//   Counts, indices and ids are written as signed 32-bit numbers.
// - An id array has an id for each element of the list it goes with; a shorter one writes nothing.
// - Local coordinates are those of to_Local: the offsets from the frame's origin along its axes.
// - Names of files made from a base path are built in kNameSize bytes; one that does not fit counts
//   as a file that cannot be opened.
#pragma once

#include <cstdint>

#include "foundation/bit_vector.h"
#include "foundation/values.h"
#include "mesh/adjacency.h"

namespace undercut {

// ---- Binary STL --------------------------------------------------------------------------------
// Little-endian, single precision; every normal is (0, 0, 1), since a viewer computes its own.

// All triangles.
bool stl_Msh(const char* path, const T3DMSH& msh);
// All triangles; the attribute is the low 16 bits of label + 1, so 0xFFFFFFFF gives 0, and 65535
// too. One label for each triangle.
bool stl_Lbl(const char* path, const T3DMSH& msh, const uint32_t* labels);
// The listed triangles in list order.
bool stl_Ids(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids);
// The same in local coordinates.
bool stl_Frm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm);
// stl_Ids for each list, as "<base>-<index>.stl" with three digits. Stops at the first failure, an
// empty list among them, and keeps what was written; true if there was none.
bool stl_Lst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists);

// ---- Coloured PLY ------------------------------------------------------------------------------
// Text. Values, labels and colours: one for each triangle. Modes of colour: see col_Map. Ranges
// hold the low bound in x and the high one in y.

// A colour for each face from its value, which is negated first if told so.
bool ply_Val(const char* path, const T3DMSH& msh, const T2DVEC& range, const double* values,
             int32_t mode, bool negate);
bool ply_Rng(const char* path, const T3DMSH& msh, double low, double high, const double* values,
             int32_t mode);
// A colour for each vertex, from the mean of the values that are not zero at its triangles; 0 if
// there are none. `vtx_tri` is the table of adj_VtxTri.
bool ply_Vtx(const char* path, const T3DMSH& msh, const TAdj& vtx_tri, const T2DVEC& range,
             const double* values, int32_t mode);
// Palette by list: colour 0 for a triangle in none, else 1 plus the index of its (last) list, held
// to 148.
bool ply_Reg(const char* path, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists);
// Palette by label: colour label + 1, so label -1 has colour 0; from 149 on it wraps to
// n mod 149 + 2, held to 148. Labels below -1 have colour 0.
bool ply_Lbl(const char* path, const T3DMSH& msh, const int32_t* labels);
// Red for a set bit, white otherwise. Needs a bit for each triangle, no more, no less.
bool ply_Bit(const char* path, const T3DMSH& msh, const CBitVector& bits);
// ply_Bit of the listed triangles.
bool ply_Ids(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids);

// ---- .pol: tagged blocks of points -------------------------------------------------------------

// Polylines, tagged with their index; empty ones are skipped, and the others keep their index.
bool pol_Lst(const char* path, const TArr<TArr<T3DVEC>>& lines);
// The same in local coordinates.
bool pol_LstFrm(const char* path, const TArr<TArr<T3DVEC>>& lines, const T3DFRM& frm);
// One polyline, tagged 000.
bool pol_One(const char* path, const TArr<T3DVEC>& line);
// One segment, tagged sgm.
bool pol_Seg(const char* path, const T3DVEC& a, const T3DVEC& b);
// The axes of a frame as segments of length 1, tagged X, Y and Z.
bool pol_Frm(const char* path, const T3DFRM& frm);
// A point, a polyline or a ray (its two vectors as they are stored) in each block, tagged lnd(id).
// Empty polylines are skipped.
bool pol_Pts(const char* path, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids);
bool pol_Ids(const char* path, const TArr<TArr<T3DVEC>>& lines, const TArr<uint32_t>& ids);
bool pol_Rays(const char* path, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids);
// The boundary loops of the listed triangles, as pol_Lst. Triangles with two equal corner indices
// count on neither side of an edge. False if there is no boundary.
bool pol_Out(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids);
// The same in local coordinates.
bool pol_OutFrm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm);
// pol_Out for each list, as "<base>-<id>.pol" with three digits. Stops at the first failure and
// keeps what was written; true if there was none.
bool pol_OutLst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists,
                const TArr<uint32_t>& ids);

// ---- .sef: points and segments -----------------------------------------------------------------

// A polyline as it is. Prints to standard error when the file cannot be opened.
bool sef_Pol(const char* path, const T3DPOL& pol);
// The same in local coordinates.
bool sef_PolFrm(const char* path, const T3DPOL& pol, const T3DFRM& frm);
// A closed polyline: from each point to the next and from the last to the first. A single point has
// a segment to itself.
bool sef_Loop(const char* path, const TArr<T3DVEC>& loop);
// The axes of a frame as segments of length 10.
bool sef_Frm(const char* path, const T3DFRM& frm);
// The two vectors of a ray as they are stored, and the segment between them.
bool sef_Ray(const char* path, const T3DRAY& ray);
// One point and no segment.
bool sef_Pnt(const char* path, const T3DVEC& point);
// The boundary edges of the listed triangles, points of equal coordinates merged. False if there is
// no boundary. Triangles with two equal corner indices count on neither side of an edge.
bool sef_Out(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids);
// The same in local coordinates.
bool sef_OutFrm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm);
// sef_Out for each list, as "<base>-<id>.sef" with three digits. Stops at the first failure and
// keeps what was written; true if there was none.
bool sef_OutLst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists,
                const TArr<uint32_t>& ids);
// A file for each element, as "<base>-lnd(<id>).sef" with three digits. Go on where one fails; true
// if none did.
bool sef_IdPts(const char* base, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids);
bool sef_IdLps(const char* base, const TArr<TArr<T3DVEC>>& loops, const TArr<uint32_t>& ids);
bool sef_IdRays(const char* base, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids);

// ---- .asc: bare points -------------------------------------------------------------------------

bool asc_Pts(const char* path, const TArr<T3DVEC>& points);
bool asc_Pnt(const char* path, const T3DVEC& point);
// The two vectors of a ray as they are stored.
bool asc_Ray(const char* path, const T3DRAY& ray);
// A file for each element, as "<base>-lnd(<id>).asc" with three digits. Go on where one fails; true
// if none did.
bool asc_IdPts(const char* base, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids);
bool asc_IdLst(const char* base, const TArr<TArr<T3DVEC>>& lists, const TArr<uint32_t>& ids);
bool asc_IdRays(const char* base, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids);

// ---- .trf and .txt -----------------------------------------------------------------------------

// The upper three rows of a matrix, then 0 0 0 1 whatever its last row holds; nine digits each.
bool trf_Mat(const char* path, const T3DMAT& mat);
// A frame as its matrix: a column for each axis, then the origin.
bool trf_Frm(const char* path, const T3DFRM& frm);
// One index a line.
bool txt_Ids(const char* path, const TLst<uint32_t>& ids);
// txt_Ids for each list, as "<base>-<id>.txt" without leading zeros. Stops at the first failure and
// keeps what was written; true if there was none.
bool txt_IdLst(const char* base, const TLst<TLst<uint32_t>>& lists, const TArr<uint32_t>& ids);

}  // namespace undercut
