/* Undercut: the functions that a host calls, and the records that it fills and reads.
 *
 * From a triangle mesh the library works out from which tool axes its surface can be reached, where
 * it cannot, and how a region of it divides into undercut regions that can each be machined along
 * one axis.
 *
 * A call goes like this: set parameters, ini_Req and ini_Res on your own two records, fill what the
 * computation reads, call it, read the result, clr_Res.
 *
 * - Units: lengths in the host's unit, taken as mm; angles in degrees; all geometry in double.
 * - Ownership: what you hand over stays yours; the library neither keeps, frees nor writes it, but
 *   for the lists of `rois` in get_Dcm. What the library hands out is its own until clr_Res.
 * - Threads: call from one thread at a time. Results do not depend on the number of threads that
 *   the library uses inside.
 * - Errors: every function returns a 32-bit status, 0 for success. No exception leaves the library.
 *   Codes are local to each function; the three below mean the same everywhere. A computation that
 *   fails leaves the result as it was, but for get_Dcm.
 * - Null: a null pointer in place of a record, a list or a value is harmless. A computation then
 *   answers as for a request without a mesh; every other function does nothing and returns 0.
 * - Values that are not finite are allowed in coordinates: such a triangle gets a harmless answer,
 *   in bounded time, and triangles away from it keep theirs.
 *
 * Compiles as C11 and as C++17.
 */
#ifndef UNDERCUT_EXPORTS_H
#define UNDERCUT_EXPORTS_H

#include "foundation/records.h"

#if defined(__GNUC__)
#define UNDERCUT_API __attribute__((visibility("default")))
#else
#define UNDERCUT_API
#endif

/* No memory, in a step that has no code of its own. */
#define UNDERCUT_NO_MEMORY (-1000)
/* A triangle of the mesh names a vertex at or beyond the vertex count. */
#define UNDERCUT_BAD_VERTEX (-1001)
/* A list names a triangle at or beyond the triangle count. */
#define UNDERCUT_BAD_TRIANGLE (-1002)

#pragma pack(push, 4)

/* The request. ini_Req empties it; then fill what the computation reads. 652 bytes. */
typedef struct TUcReq {
  T3DMSH msh;        /* 0: the mesh */
  TArrMsh msh_b;     /* 24: further meshes that shadow it */
  TArrArrVec arg;    /* 36: closed curves */
  TLstU32 roi;       /* 48: triangle indices */
  TArrU8 bit;        /* 64: byte mask, one byte for each triangle */
  TLstLstU32 cav;    /* 76: triangles of each region; the capacity is the number of regions */
  uint32_t gap_92;   /* 92 */
  TArrRay axi;       /* 96: axes */
  TArrCrv lst;       /* 108: optional sets of closed curves */
  const double* add; /* 120: one value for each triangle */
  double f_a;        /* 128: start angle theta, degrees */
  double f_b;        /* 136: start angle phi, degrees */
  T3DRAY ray;        /* 144: a reference axis */
  T3DMSH msh_c;      /* 192: a second mesh */
  T3DFRM frm;        /* 216: a frame */
  uint32_t n_cnt;    /* 312: start triangle */
  uint32_t gap_316;  /* 316 */
  double p_a;        /* 320: radius of the closing disk; not touched by ini_Req */
  double p_b;        /* 328: without effect; not touched by ini_Req */
  TLstLstU32 rois;   /* 336: the regions of interest of get_Dcm; count is their number */
  char dir[256];     /* 352: base directory of stage files; "" means "." */
  TLstLstU32 prj_l;  /* 608: for each area its triangle indices */
  TArrArrVec prj_p;  /* 624: for each area the points to project */
  TLstFrm prj_f;     /* 636: for each area its frame */
} TUcReq;

/* What became of one region of interest. 12 bytes. */
typedef struct TUcSts {
  uint32_t roi;   /* its index */
  int32_t first;  /* code of the first attempt, 0 if it succeeded */
  int32_t second; /* code of the second attempt, 0 if there was none or it succeeded */
} TUcSts;

#pragma pack(pop)

/* Statistics of one region. 48 bytes; bytes 1 to 7 are a gap, zero. */
typedef struct TUcStat {
  uint8_t seen;      /* 0: 1 if all of it is seen */
  uint8_t gap_1[7];  /* 1 */
  double share;      /* 8: seen part, 0 to 1 */
  double area_seen;  /* 16 */
  double area;       /* 24: area of the region */
  double value;      /* 32: largest value of `add` in the region */
  uint32_t rim_seen; /* 40: number of seen rim edges */
  uint32_t rim;      /* 44: number of rim edges */
} TUcStat;

#pragma pack(push, 4)

UNDERCUT_ARR(TArrSts, TUcSts);

/* The result. Only the fields of the computation that ran have a meaning. 368 bytes. */
typedef struct TUcRes {
  T3DFRM frm_a;        /* 0 */
  T3DFRM frm_b;        /* 96 */
  T3DFRM* lst;         /* 192: a frame for each region */
  uint32_t n_lst;      /* 200 */
  uint32_t gap_204;    /* 204 */
  double* dfi;         /* 208: a depth for each triangle */
  uint8_t* ucs;        /* 216: a byte for each triangle, 1 for undercut */
  uint8_t gap_224[16]; /* 224 */
  TArrArrVec rma;      /* 240: rim curves */
  TLstLstU32 com;      /* 252: components */
  uint32_t gap_268;    /* 268 */
  TUcStat* sta;        /* 272: statistics, one for each region */
  TLstRgn uca_t;       /* 280: by region of interest and region: triangle indices */
  TLstLstRay uca_a;    /* 296: likewise: centre, and direction of the tool, towards the part */
  TLstLstFrm uca_f;    /* 312: likewise: local frame, Z along the tool axis */
  TArrArrVec prj;      /* 328: moved points */
  TLstLstRay nml;      /* 340 */
  TArrSts sts;         /* 356: one record for each region of interest */
} TUcRes;

#pragma pack(pop)

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Records ---------------------------------------------------------------------------------*/

/* Empties a request: views and lists null, `frm` the identity, `dir` "". Leaves the two gaps, p_a
 * and p_b as they are; allocates nothing. Returns 0. */
UNDERCUT_API int32_t ini_Req(TUcReq* req);

/* Empties a result from byte 192 on; frm_a and frm_b are left as they are. Frees nothing, so call
 * it on a new record, not on one that still holds results. Returns 0. */
UNDERCUT_API int32_t ini_Res(TUcRes* res);

/* Frees every array of a result and empties its record; calling it twice is harmless. Returns 0. */
UNDERCUT_API int32_t clr_Res(TUcRes* res);

/* Frees the array of one list that the library handed out and empties the list. Not for the list of
 * get_Roi, which is a view. Returns 0. */
UNDERCUT_API int32_t clr_Sub(TLstU32* lst);

/* ---- The registered mesh ---------------------------------------------------------------------*/

/* Registers a mesh: copies it deeply and builds a tree and lists over it. The mesh and the lists of
 * an earlier call are not freed, since a host may still hold a view of them: call clr_Dll first.
 * Codes: -1 no vertex array, -2 no triangle array, -3 no vertices, -4 no triangles,
 * UNDERCUT_BAD_VERTEX; no memory for: -5 the copy, -6 the tree, -7 to -9 the lists, -10 to -12 the
 * bit vectors. After a failure call clr_Dll. */
UNDERCUT_API int32_t ini_Adt(const T3DMSH* msh);

/* Releases the registered mesh; harmless without one. Parameters keep their values. Returns 0. */
UNDERCUT_API int32_t clr_Dll(void);

/* Stores the number of triangles of the registered mesh, 0 without one. Returns 0. */
UNDERCUT_API int32_t cnt_Tri(uint32_t* count);

/* Stores a view of the triangles that are selected on the registered mesh. The array stays the
 * library's, until clr_Dll: never pass it to clr_Sub. Returns 0. */
UNDERCUT_API int32_t get_Roi(TLstU32* lst);

/* Lists the shaded triangles of the registered mesh into `lst`, which is emptied first (not freed)
 * and must be released by clr_Sub. No computation shades a triangle, so the list is empty. Returns
 * 0, or -1 for no memory. */
UNDERCUT_API int32_t get_Shd(TLstU32* lst);

/* ---- Undercut regions ------------------------------------------------------------------------*/

/* Divides each region of interest of a mesh into undercut regions, each reachable along one axis.
 *
 * Reads msh, rois, dir and the parameters dcm_* and ucs_Tol. Fills uca_t, uca_a, uca_f (entry k of
 * the three belongs to one region; a region of interest that is empty has no slot, one that failed
 * has an empty slot) and sts, one record for each region of interest. uca_a holds the centre of the
 * region and the direction of the tool, which is the opposite of the region's axis.
 *
 * The lists of rois are changed in place: afterwards each holds the triangles that stayed free.
 *
 * Returns 0; 1 if a region of interest needed a second attempt or failed twice (see sts, code 11);
 * 4 bad mesh (null, empty, or a vertex index out of range); 5 no region of interest; 6 no memory at
 * the start; 7 no memory for bit vectors or tree; 8 more than three bands; 9 bands refused; 10 no
 * memory for the adjacency; 12 any other failure. Two failures can't be cured and hand nothing
 * over: -112 a frame file could not be opened, -143 a triangle could not be locked. A triangle
 * index out of range fails its region of interest. */
UNDERCUT_API int32_t get_Dcm(const TUcReq* req, TUcRes* res);

/* ---- Searches for the best axis ---------------------------------------------------------------
 *
 * A direction d is rated by what rays see along it: one starts from each triangle's centroid,
 * lifted along its normal, and runs along d; the triangle is seen if it hits nothing. The Z axis
 * of a frame that is handed out is the direction of the tool, so rays run along minus Z; its
 * origin is the mean of the vertices, or the mean of the centroids of the region that was searched
 * for. Triangles with two equal corners are not rated. With ucs_Sta set, each search prints a line
 * on standard output: the number of ratings, the best rating, theta and phi.
 *
 * All give -4 no vertex array, -5 no triangle array, -6 no vertices, -7 no triangles; then
 * UNDERCUT_BAD_VERTEX; UNDERCUT_NO_MEMORY for a search without memory. A list with a null pointer
 * stands for the whole mesh; one with a pointer and a count of 0 is an empty region. A rating that
 * is not a number is never the best. */

/* The axis along whose two ends a three-axis machine reaches the most of the mesh: a scan of the
 * sphere (nxn_*), then a downhill simplex (amo_*). Minimises minus the seen area in mm2, where a
 * triangle counts with its true area times err_Gew and its projected area times 1 - err_Gew, once
 * for each end that sees it. The lift is 0.001 mm. Z points to the side of the part where the seen
 * surface lies. Fills frm_a. Further codes: -8 mesh not prepared (no memory), -12 no memory for
 * the bits, -13 sight, -14 no frame. */
UNDERCUT_API int32_t get_3ax(const TUcReq* req, TUcRes* res);

/* The same without the scan: the simplex starts at theta = f_a, phi = f_b, degrees. */
UNDERCUT_API int32_t get_Amo(const TUcReq* req, TUcRes* res);

/* For each region of cav (its capacity is the number of regions) the best tilt between gcu_Th0 and
 * gcu_Th1 in the plane of azimuth gcu_Phi: a scan of gcu_Dim intervals, or with gcu_Flg of as many
 * as steps of gcu_Win ask for, 100,000 at the most; then a golden section round its best tilt,
 * whose end is handed out, also where the scan had a better one. Minimises the blocked area of the
 * region as a part of the area of the whole mesh, plus err_Gew times the sine of the angle between
 * the direction and the mean normal of what is seen. The lift is ucs_Tol. Fills lst and n_lst.
 * Further codes: UNDERCUT_BAD_TRIANGLE; -8 no regions, -9 their number is 0, -10 gcu_Th1 not above
 * gcu_Th0, -11 gcu_Th0 below -360, -12 gcu_Th1 above 360, -13 gcu_Phi below 0, -14 gcu_Phi above
 * 180, -15 mesh not prepared, -16 gcu_Win not above 0, -17 fewer than 5 intervals, -18 no memory
 * for the frames, -19 no tilt has a rating. A limit that is not a number gives the code of the
 * first check of it. */
UNDERCUT_API int32_t get_4ay(const TUcReq* req, TUcRes* res);

/* The best direction of the sphere for the mesh, or for the triangles of roi, or for those inside
 * the closed curves of arg, which replace roi; a roi or arg with a count of 0 is none. A region is
 * cut out: the rest of the mesh is no obstacle. Rating as get_4ay; scan and simplex as get_3ax, the
 * scan in nxn_Box, which the simplex may leave. No code tells that nothing in the scan has a rating
 * (an empty box, a mesh without area): the axis then means nothing; and where the simplex ends at
 * angles that are not finite, the frame is the identity. Fills frm_b. Further codes:
 * UNDERCUT_BAD_TRIANGLE; -9 curves that cut out nothing, -11 region not cut out, -12 region not
 * prepared, -13 mesh not prepared, -14 and -15 not reached. */
UNDERCUT_API int32_t get_5ax(const TUcReq* req, TUcRes* res);

/* For each region of cav (its capacity is the number of regions) the best direction within the
 * window nxn_Box. Rating as get_4ay: the whole mesh is an obstacle. From the first region on whose
 * start lies closer than amo_Dxy to the rim of the window, the best point of the scan is handed
 * out without refinement, for the later regions too; call once for each region to avoid that.
 * Fills lst and n_lst. Further codes: UNDERCUT_BAD_TRIANGLE; -8 no regions, -9 their number is 0,
 * -10 window empty in theta, -11 in phi, -12 mesh not prepared, -13 no memory for the frames, -14
 * no theta has a rating, -15 no phi, -16 (not reached) start outside the window. */
UNDERCUT_API int32_t get_5ay(const TUcReq* req, TUcRes* res);

/* ---- What a set of axes does not reach -------------------------------------------------------*/

/* Which triangles of the mesh are seen along none of the axes axi: rays run from the centroids,
 * lifted by ucs_Tol, along minus the Z axis of a frame that is made from each axis (for a zero
 * direction along -Z). Fills ucs, a byte for each triangle: 1 for undercut, 0 for seen and for
 * what roi does not list; a triangle with two equal corners inside roi counts as undercut. A null
 * roi is the whole mesh; of one with as many entries as the mesh has triangles, those that it
 * leaves out count as undercut. ucs_Dil above 0 lets each triangle grow by as much first.
 * Codes: UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE; -5 no memory for the axes, -6 no frame; -13
 * no memory for the bits; -15 triangles not grown, -16 no tree over them, -17 no tree over the
 * mesh, both with an empty mesh among the causes; -18 no memory for the result. */
UNDERCUT_API int32_t get_UCs(const TUcReq* req, TUcRes* res);

/* Which triangles of the registered mesh are blocked by the mesh msh_c at some pose of a tool that
 * follows a corridor: for each axis of axi the band of width con_Wid round the plane through ray
 * that holds both directions (the band is narrower by the sine of the angle between them; parallel
 * directions take everything). Fills ucs, a byte for each triangle of the registered mesh. Codes:
 * -1 to -4 registered mesh without vertex array, triangle array, vertices, triangles; -5 to -8
 * likewise msh_c; -9 no axes; -10 the direction of ray is zero; -11 to -14 lists or bits of the
 * registered mesh are missing or of another size; UNDERCUT_BAD_VERTEX; -16 no tree over msh_c; -17
 * no memory for the result. */
UNDERCUT_API int32_t get_UCd(const TUcReq* req, TUcRes* res);

/* The triangles in the corridor of the last axis that msh_c blocks at every pose. Stores a view of
 * the list of selected triangles (a TLstU32) at the start of frm_a: it stays the library's, valid
 * until the next call that selects, and is never to be freed. Codes as get_UCd to -11, then -12 to
 * -18 lists or bits missing or of another size, UNDERCUT_BAD_VERTEX, -19 no tree over msh_c. */
UNDERCUT_API int32_t get_UCc(const TUcReq* req, TUcRes* res);

/* ---- How deep the undercuts are --------------------------------------------------------------*/

/* How far under an overhang each triangle of the mesh lies, in mm: the distance, across the axis,
 * from its centroid to the rim of the connected patch of triangles that the axis does not see; the
 * smallest over all axes of axi. Fills dfi, a double for each triangle: 0 where some axis sees it
 * and outside the selection (roi and the inside of the closed curves arg; none of both:
 * everything; a roi with a count of 0: nothing; an arg with a count of 0 is none),
 * 1.7976931348623157e+308 for no answer: a triangle with two equal corners, or a patch without a
 * rim. The rim of a patch is its border, less what lies on the mesh's own open border; one edge is
 * left in any case. Triangles that an earlier axis sees belong to no patch of a later one.
 *
 * Rays as get_UCs, ucs_Dil too. ucs_Eps above 0 merges vertices that are no farther apart before
 * patches are formed. ucs_Srf above 0 gives 0 to each patch whose rated area is not above it: the
 * number of its triangles times the area of the mesh's triangle k, for patch k of the axis. ucs_Off
 * is the slack of the search for the rim; below 0 it may miss the rim, which gives no answer and a
 * line on standard error.
 *
 * Codes: UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE (any index in roi where the mesh is empty); -5
 * no memory for the axes, -6 no frame; -7 roi, -8 curves not turned to bits; -12 to -16 no memory
 * for the sets, -12 also for an empty mesh without roi and arg; -17, -18 no memory for the values,
 * -19 for the queue; -20 triangles not grown, -21 no tree over them; -22 no tree over the mesh; -23
 * vertices not merged; -24, -25 adjacency; -26 open border; -27, -28 patches; -29 border of a
 * patch, -30 its polyline, -31 its projection, -32 the tree over its rim; -33 to -37 steps of the
 * search through a patch. */
UNDERCUT_API int32_t get_dFi(const TUcReq* req, TUcRes* res);

/* The same for a mesh and the shadow of further meshes msh_b on it, which are joined into one. Each
 * axis stands for itself: a triangle that the mesh hides has its distance from the rim of its own
 * patch, one that the joined mesh hides has its distance from the rim of all that the joined mesh
 * hides of itself, one hidden by both has the greater of the two, one hidden by neither has 0. The
 * smallest over all axes is stored. ucs_Dil, ucs_Eps and ucs_Srf have no effect here.
 *
 * ucs_Rti prints the run and its time; ucs_Sta prints for each axis how many triangles of the mesh
 * are seen, hidden by the mesh and hidden by the joined mesh; ucs_Dbg writes D:/msh.stl, D:/sum.stl
 * and D:/dFi.ply, where a folder "D:" takes them, the last with a colour for each face (ucs_pCl 0)
 * or for each vertex, of mode ucs_iCl over the range ucs_Lef to ucs_Rig.
 *
 * Codes: UNDERCUT_BAD_VERTEX (also in msh_b), UNDERCUT_BAD_TRIANGLE; -5 to -8 as get_dFi; -9 the
 * meshes not joined: no triangles in msh_b, more than 2^32 - 1 vertices or triangles, or no memory;
 * -10 no tree over the mesh, an empty mesh among the causes (with roi or arg that is -7 or -8); -11
 * no tree over the joined mesh; -12 to -21 no memory for bits: hidden and seen by the mesh (-12,
 * -13) and by the joined mesh (-14, -15), the joined mesh hidden and seen by itself (-16, -17), the
 * triangles to be cleared (-18), a patch (-19), the open borders of the mesh (-20) and of the
 * joined mesh (-21); -22 to -24 no memory for the values, -25 for the queue; -26, -27 adjacency of
 * the mesh, -28 its open border; -29 adjacency of the joined mesh, -30 its open border; -31 border
 * of what is hidden of the joined mesh, -32 its polyline, -33 its projection, -34 the tree over its
 * rim; -35 patches that the joined mesh hides, -36 to -40 steps of the search through them; -41
 * patches that the mesh hides, -42 border of a patch, -43 its polyline, -44 its projection, -45 the
 * tree over its rim, -46 to -50 steps of the search through it. */
UNDERCUT_API int32_t get_dFb(const TUcReq* req, TUcRes* res);

/* ---- Points onto a mesh ----------------------------------------------------------------------*/

/* Where a line meets the registered mesh: the crossing nearest to the ray's org; of equally near
 * ones the first that the tree lists. A crossing behind org counts as well, if the triangle's own
 * box reaches org or beyond: what lies wholly behind is not met. A line through a shared edge does
 * not slip through. Stores the point, which may lie in the ray itself; with -7, for a line that
 * misses, it stores org. Codes: -1 to -4 registered mesh without vertex array, triangle array,
 * vertices, triangles; -5, -6 its scratch list is missing or of another size; UNDERCUT_NO_MEMORY.
 * Then, and with a null argument (-1), nothing is stored. Uses the scratch list of the registered
 * mesh. */
UNDERCUT_API int32_t det_Prj(const T3DRAY* ray, T3DVEC* point);

/* Selects the triangles of the registered mesh that reach into a slab of width con_Wid for each
 * axis of axi: the slab lies round the plane through ray's org that holds ray's direction and the
 * axis' own; it is thinner by the sine of the angle between the two, and takes everything where
 * they are parallel. Only the directions of axi are read. Each call starts anew; a triangle is
 * listed once, as it is first met. Read the selection with get_Roi; a call that fails keeps it,
 * but for UNDERCUT_NO_MEMORY. Codes: -1 to -4 as det_Prj; -5 no axes, or a null request; -6 the
 * direction of ray is zero; -7, -8 scratch list missing or of another size, -9 the list of selected
 * triangles, -10 the marks of another size. */
UNDERCUT_API int32_t det_Roi(const TUcReq* req);

/* Moves points onto a mesh, area by area: area k has the triangles prj_l[k], the points prj_p[k]
 * and the frame prj_f[k], whose Z axis Z is the direction of projection. Nothing else of the frame
 * is read; Z may have any length, and without one no point moves.
 *
 * First each point goes along Z to the height of the centroid of a triangle of its own area: of
 * those that reach into the cylinder round its line, the one whose centroid is nearest to the line.
 * The radius is prj_off, raised by prj_inc while it is below prj_lim, until something is found; at
 * most a million radii are tried. Where nothing is found the point stays. Then it goes along Z onto
 * the nearest crossing with the whole mesh, but no farther than prj_tol, else it stays; of equally
 * near crossings on both sides that on the side of -Z wins.
 *
 * Fills prj, of the shape of prj_p: an area without points or without triangles has an empty list.
 * Codes: -3 no prj_l, -4 no prj_p, -5 no prj_f, -6 and -7 of different counts, -11 no memory for
 * the lists; -16 to -19 mesh without vertex array, triangle array, vertices, triangles;
 * UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE; -20 no memory for the areas' meshes, -21 no area at
 * all, -22 and -23 not reached; -24 no memory for the hits; -25 no tree over an area, -26 no memory
 * for its points; -27 no tree over the mesh. */
UNDERCUT_API int32_t get_Prj(const TUcReq* req, TUcRes* res);

/* ---- Rims ------------------------------------------------------------------------------------*/

/* The closed curves that bound an area of a mesh, as seen along minus the Z axis of frm: smoothed,
 * resampled and thinned out, in the coordinates of frm, z = 0, the first point not repeated. All
 * fill rma.
 *
 * get_Rma and get_Rmb take as area what is connected with the start triangle n_cnt within roi and
 * seen along minus Z, then close it, fill its notches and all its holes but the largest clear
 * component that touches it. The lift of the rays is ucs_Tol. get_Rmc takes roi as it stands, and
 * needs no start. get_Rma follows the edges of the mesh round the area and takes Z as given;
 * get_Rmb and get_Rmc make Z a unit vector and follow the outline of the area on a grid of cells
 * (gri_*) after a closing by a disk of radius p_a. They keep the grid in its parameter block: its
 * box, and with gri_Res the numbers of rows and columns, without it the size of a cell. A radius
 * below the size of a cell can wear off cells at the edge of the grid.
 *
 * Curves are smoothed by a cubic smoothing spline over their points (ucs_Gew: its parameter; the
 * larger, the nearer to the points), resampled in steps of ucs_Res points, and lose the points that
 * stand no higher than ucs_Err over their neighbours' chord.
 *
 * Codes: -1 no vertex array, -2 no triangle array, -3 no vertices, -4 no triangles, -5 no roi, -6
 * an empty roi; -9 n_cnt beyond the triangles; UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE; no
 * memory for: -10, -11 the bits, -13 the queue, -14 the tree, -15 the adjacency; -12 n_cnt is not
 * in roi; -16 it has two equal corners, -17 it is not seen; -18 to -24 steps of the flood; -25 to
 * -28 closing, notches, notches again, holes. The grid: -29 a size of a cell that is not above 0 or
 * a box that is not finite, -30 no rows or no columns, or too many, -31 no memory for the cells,
 * -32 a corner outside the grid, -33 no disk, -34 dilation, -35 erosion, -36 no outline (get_Rma:
 * no border; an area without border gives this). Curves: -37 no memory, -40 fewer than 7 points
 * or a spline that can't be solved, -44 ucs_Res not above 0 or more than 2^32 - 1 points, -46 not
 * thinned out; -38, -39, -41 to -43 and -45 are not reached.
 * get_Rma gives -1 to -6, -9 to -28 and -36 to -46, get_Rmb -1 to -6 and -9 to -46, get_Rmc -1 to
 * -6 and -29 to -46. */
UNDERCUT_API int32_t get_Rma(const TUcReq* req, TUcRes* res);
UNDERCUT_API int32_t get_Rmb(const TUcReq* req, TUcRes* res);
UNDERCUT_API int32_t get_Rmc(const TUcReq* req, TUcRes* res);

/* ---- Statistics ------------------------------------------------------------------------------*/

/* How much of the surface of each region of cav (its capacity is the number of regions; a null
 * entry is an empty region) is seen along its axis in axi. Rays run from the centroids, lifted by
 * ucs_Tol, along minus the direction of the axis; the whole mesh is the obstacle. Fills sta: seen
 * (1 if no ray was blocked), share, area_seen, area; a share of an area of 0 is
 * 1.7976931348623157e+308; the rest is 0. Triangles with two equal corners are not tested. Codes:
 * -1 no vertex array, -2 no triangle array, -3 no vertices, -4 no triangles, -5 no regions, -6
 * their number is 0, -7 no axes, -8 their number is 0, -9 another number than that of the regions,
 * UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE, -10 no memory for the axes, -11 no frame, -12 no
 * tree, -13 no memory for the seen triangles, -14 for the records, -15 not reached. */
UNDERCUT_API int32_t get_Sta(const TUcReq* req, TUcRes* res);

/* The same for the rim of each region: rays run from the midpoints of its border edges, lifted by
 * ucs_Tol along the normal of the region's triangle there. Fills sta: seen, share (of the length),
 * rim_seen, rim; the rest is 0. An edge whose triangle has two equal corners counts in rim and in
 * the length, and is not tested. A region without rim has the share 1.7976931348623157e+308. Codes
 * as get_Sta to -12, then -13 not reached, -14 adjacency, -15 no memory for the records, -16 for a
 * region's bits, -17 for its border. */
UNDERCUT_API int32_t get_Stb(const TUcReq* req, TUcRes* res);

/* ---- Sums ------------------------------------------------------------------------------------*/

/* For each region of cav: the sum of its triangle areas, and the largest value of `add` in it.
 * Triangles with two equal corners are passed over, and so are values that are not a number; where
 * nothing is left, the area is 0 and the value -1.7976931348623157e+308. A triangle that is listed
 * twice counts twice. Reads msh, cav (its capacity is the number of regions; a null entry is an
 * empty region), add (a value for each triangle). Fills sta: area and value; the rest is 0.
 * Codes: -1 no vertex array, -2 no triangle array, -3 no vertices, -4 no triangles, -5 no regions,
 * -6 their number is 0, -7 no values, UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE, -8 no memory. */
UNDERCUT_API int32_t get_Stc(const TUcReq* req, TUcRes* res);

/* ---- Pieces, sub-meshes, normals -------------------------------------------------------------*/

/* The connected pieces of the triangles that bit names (a byte for each triangle, 0 for no). With
 * ucs_Eps above 0 vertices that are no farther apart are merged first, for this call. Fills com, in
 * the order of the pieces' lowest triangles; no triangle gives an empty list. An earlier com of the
 * result is overwritten, not freed. Codes: -1 no vertex array, -2 no triangle array, -3 no
 * vertices, -4 no triangles, UNDERCUT_BAD_VERTEX; -5 vertices not merged; -6 (merged) or -7 (not
 * merged) pieces not found: bit is not as long as the mesh has triangles, or no memory. */
UNDERCUT_API int32_t get_Com(const TUcReq* req, TUcRes* res);

/* Those regions of cav (here its count is their number) that are worth machining: their area is
 * not below flt_Srf, their largest value of add (at least 0) not below flt_Dep, and, where closed
 * curves are given in lst, no triangle of theirs lies inside a set of curves. Fills com with copies
 * in the order of cav, and frees what com held; so com may be handed in as cav. Codes: -1 no vertex
 * array, -2 no triangle array, -3 no vertices, -4 no triangles, -5 no cav, -6 its count is 0, -9 no
 * values, -10 its capacity is 0, UNDERCUT_BAD_VERTEX; -11 no memory for the bits; -12 curves that
 * cut out nothing; -13 not reached; -14 no memory for the marks; -15 a triangle index out of range;
 * -16, -17 no memory for the lists. */
UNDERCUT_API int32_t flt_Com(const TUcReq* req, TUcRes* res);

/* The triangles inside the closed curves arg, in rising order: fills com with this one list. An
 * earlier com of the result is overwritten, not freed. Codes: -1 no vertex array, -2 no vertices,
 * -3 no triangle array, -4 no triangles, -5 no curves, -6 their number is 0, UNDERCUT_BAD_VERTEX;
 * -7 curves that cut out nothing, or no memory; -8 no memory for the list. */
UNDERCUT_API int32_t get_Sub(const TUcReq* req, TUcRes* res);

/* For each ray of axi the directions in the polar ranges of the machine (dcm_Con, dcm_aT0 to
 * dcm_bT2) that come nearest to its own: its polar angle is held to the limits of one range after
 * the other, each starting from what the one before left. Polar angles are those of minus the
 * direction. Fills nml: for each ray a list with an entry for each range, at the ray's org. Codes:
 * -1 no rays, -2 their number is 0, -3 no ranges (dcm_Con 0), -4 no memory for the ranges, -5 more
 * than three, -6, -7 no memory for the lists. */
UNDERCUT_API int32_t err_Nml(const TUcReq* req, TUcRes* res);

/* ---- Parameters ------------------------------------------------------------------------------*/

/* One setter for each row of setters.def, which tells default, unit, range and meaning. Each copies
 * the value that the pointer names, for the next call that reads it, and returns 0; a null pointer
 * changes nothing. Texts are cut to 63 characters. */
#define UNDERCUT_VALUE_I32 int32_t
#define UNDERCUT_VALUE_U32 uint32_t
#define UNDERCUT_VALUE_U8 uint8_t
#define UNDERCUT_VALUE_B32 uint8_t
#define UNDERCUT_VALUE_F64 double
#define UNDERCUT_VALUE_TXT char
#define UNDERCUT_VALUE_BOX double
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  UNDERCUT_API int32_t setter(const UNDERCUT_VALUE_##type* value_);
#include "interface/setters.def"
#undef UNDERCUT_SETTER

#ifdef __cplusplus
}
#endif

#endif
