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
  TArrArrVec arg;    /* 36: closed curves for debug files, or an id list */
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

/* ---- Computations ----------------------------------------------------------------------------*/

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

/* For each region of cav: the sum of its triangle areas, and the largest value of `add` in it.
 * Triangles with two equal corners are passed over, and so are values that are not a number; where
 * nothing is left, the area is 0 and the value -1.7976931348623157e+308. A triangle that is listed
 * twice counts twice. Reads msh, cav (its capacity is the number of regions; a null entry is an
 * empty region), add (a value for each triangle). Fills sta: area and value; the rest is 0.
 * Codes: -1 no vertex array, -2 no triangle array, -3 no vertices, -4 no triangles, -5 no regions,
 * -6 their number is 0, -7 no values, UNDERCUT_BAD_VERTEX, UNDERCUT_BAD_TRIANGLE, -8 no memory. */
UNDERCUT_API int32_t get_Stc(const TUcReq* req, TUcRes* res);

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
