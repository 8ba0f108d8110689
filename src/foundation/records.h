/* The plain records that a host and the library share: points, meshes, frames, lists.
 *
 * Units: lengths in the host's unit (areas are then in its square; the library speaks of mm),
 * angles in degrees. Compiles as C11 and as C++17.
 *
 * A record that holds a pointer followed by a 32-bit count is packed to 4-byte alignment: that is
 * what places the second pointer of T3DMSH at byte 12. The layout is a contract with the host.
 */
#ifndef UNDERCUT_RECORDS_H
#define UNDERCUT_RECORDS_H

#include <stdint.h>

typedef struct T2DVEC {
  double x, y;
} T2DVEC;

/* A point, a direction or a normal. */
typedef struct T3DVEC {
  double x, y, z;
} T3DVEC;

/* Three vertex indices. */
typedef struct T3DTRI {
  uint32_t a, b, c;
} T3DTRI;

/* A segment: two point indices, start and end. */
typedef struct T3DSGM {
  uint32_t a, b;
} T3DSGM;

/* A ray, an axis or a plane: a point and a direction or normal, not necessarily of unit length. */
typedef struct T3DRAY {
  T3DVEC org, dir;
} T3DRAY;

/* A local frame: three axes and an origin. */
typedef struct T3DFRM {
  T3DVEC x, y, z, org;
} T3DFRM;

#pragma pack(push, 4)

/* A view of a triangle mesh. Whoever made the arrays owns them. */
typedef struct T3DMSH {
  T3DVEC* vtx;    /* vertex array */
  uint32_t n_vtx; /* number of vertices */
  T3DTRI* tri;    /* triangle array */
  uint32_t n_tri; /* number of triangles */
} T3DMSH;

/* A view of points joined by segments, of the same shape as T3DMSH. */
typedef struct T3DPOL {
  T3DVEC* pnt;
  uint32_t n_pnt;
  T3DSGM* sgm;
  uint32_t n_sgm;
} T3DPOL;

/* TArr: an array of `count` elements. TLst: `count` elements in room for `capacity`. In C++ they
 * are templates; in C each element type has a name of its own, made by the two macros below. */
#ifdef __cplusplus
template <typename T>
struct TArr {
  T* data;
  uint32_t count;
};
template <typename T>
struct TLst {
  T* data;
  uint32_t count;
  uint32_t capacity;
};
#define UNDERCUT_ARR(NAME, ELEMENT) typedef TArr<ELEMENT> NAME
#define UNDERCUT_LST(NAME, ELEMENT) typedef TLst<ELEMENT> NAME
#else
#define UNDERCUT_ARR(NAME, ELEMENT) \
  typedef struct NAME {             \
    ELEMENT* data;                  \
    uint32_t count;                 \
  } NAME
#define UNDERCUT_LST(NAME, ELEMENT) \
  typedef struct NAME {             \
    ELEMENT* data;                  \
    uint32_t count;                 \
    uint32_t capacity;              \
  } NAME
#endif

UNDERCUT_ARR(TArrU8, uint8_t);     /* byte mask */
UNDERCUT_ARR(TArrU32, uint32_t);   /* indices */
UNDERCUT_ARR(TArrVec, T3DVEC);     /* points */
UNDERCUT_ARR(TArrArrVec, TArrVec); /* polylines, closed curves */
UNDERCUT_ARR(TArrCrv, TArrArrVec); /* sets of closed curves */
UNDERCUT_ARR(TArrMsh, T3DMSH);     /* meshes */
UNDERCUT_ARR(TArrRay, T3DRAY);     /* axes */
UNDERCUT_LST(TLstU32, uint32_t);   /* triangle indices */
UNDERCUT_LST(TLstLstU32, TLstU32); /* regions */
UNDERCUT_LST(TLstRgn, TLstLstU32); /* regions of each region of interest */
UNDERCUT_LST(TLstRay, T3DRAY);     /* axes */
UNDERCUT_LST(TLstLstRay, TLstRay);
UNDERCUT_LST(TLstFrm, T3DFRM); /* frames */
UNDERCUT_LST(TLstLstFrm, TLstFrm);

#pragma pack(pop)

#endif
