// The arithmetic of the sweep: triangles and rays in single precision, up to sixteen at a time.
//
// Each function comes in a portable form and in the widest ones that the processor has. The errors
// of all are bounded by the same numbers (sweep.cpp shows how), so what they call a hit or a miss
// is one; where they differ in what they call unclear, that never shows.
#pragma once

#include <cstdint>

#include "mesh/sweep_space.h"

namespace undercut {

inline constexpr uint32_t kGroup = 16;  // triangles or rays at a time
inline constexpr uint32_t find_Groups(uint32_t count) { return (count + kGroup - 1) / kGroup; }
inline constexpr uint32_t kMostFlats = 512;
// A little more, lest rows lie a power of two apart, where the first cache would hold few of them.
inline constexpr uint32_t kFlatRow = kMostFlats + kGroup;
inline constexpr uint32_t kMostIndex = 1u << 27;  // so that tiles stay below 2^24

// A vertex in the coordinates of a sweep: with a number to fill it up, it is read at once.
struct alignas(16) TFlatVec {
  float x, y, z, none;
};

// A mesh in the coordinates of a sweep.
struct TFlatMesh {
  const TFlatVec* vtx;
  const T3DTRI* tri;
  float least;  // twice the area that a triangle must have across the direction not to be thin
};

// Triangles of one tile: corner a, the edges a to b and c to a in the plane, twice the area there,
// and the normal, which is not a unit vector. The rest are bounds: beyond `edge` the sides of the
// three edges that are computed of a ray have the signs that hit_Tri finds, and beyond `side` that
// of the triangle. Beyond `clear` they also tell that nothing is flat or on an edge; infinite for
// thin triangles, which lie so steep that their area in the plane is no measure of them. `steep`,
// which is 0 for others, adds to their `side` for each unit of x, y and z that a ray is from a.
//
// A sure triangle, whose area is kSure times as large as `clear` or more, has 0 for its `edge`. Its
// edges and its area are divided by -clear, its normal by `side`, all of them by the sign of its
// area: a ray misses where some of the four sides is above 1, and hits where all are below -1.
//
// A ray that starts outside of the bounds in x and y misses, and so does one that runs away from
// those in z.
struct TFlats {
  alignas(64) float ax[kFlatRow];
  alignas(64) float ay[kFlatRow];
  alignas(64) float az[kFlatRow];
  alignas(64) float abx[kFlatRow];
  alignas(64) float aby[kFlatRow];
  alignas(64) float cax[kFlatRow];
  alignas(64) float cay[kFlatRow];
  alignas(64) float area[kFlatRow];
  alignas(64) float nx[kFlatRow];
  alignas(64) float ny[kFlatRow];
  alignas(64) float nz[kFlatRow];
  alignas(64) float edge[kFlatRow];
  alignas(64) float side[kFlatRow];
  alignas(64) float clear[kFlatRow];
  alignas(64) float steep[kFlatRow];
  alignas(64) float low_x[kFlatRow];
  alignas(64) float high_x[kFlatRow];
  alignas(64) float low_y[kFlatRow];
  alignas(64) float high_y[kFlatRow];
  alignas(64) float low_z[kFlatRow];
  alignas(64) float high_z[kFlatRow];
};

// Sixteen rays that run the same way: 1 along the direction, -1 against it. Those that are missing
// repeat another. Aligned to 64 bytes.
struct TGroup {
  const float *x, *y, *z;
  float way;
};

// A listed triangle and the rays, a bit each, that it hits for sure or perhaps.
struct TSifted {
  uint32_t at;  // in TFlats
  uint16_t hit, unclear;
};

// Fills `out` with the listed triangles, at most kMostFlats; it may write more up to a group. Tells
// whether any are thin: these are not bounded in x and y.
bool flatten(const TFlatMesh& mesh, const uint32_t* ids, uint32_t count, TFlats& out);

// The tiles that triangles may lie over: the first and, in the upper half, the last of each.
struct TSpans {
  uint32_t *columns, *rows;
};

// Those of the `count` triangles from `first` on, at most a group; it writes a whole group. Bit k
// of the answer: that one is thin, and its tiles are not told.
uint32_t find_Spans(const TFlatMesh& mesh, uint32_t first, uint32_t count, const TTiles& tiles,
                    const TSpans& out);

// Where rays start, and their spots (see TTiles).
struct TPlaced {
  float *x, *y, *z;
  uint32_t* spot;
};

// A group of rays: ray k starts at orgs[starts[k]]. Which of them hit the triangle own[k] for sure:
// in bits 0 to 15 along the direction, in bits 16 to 31 against it.
uint32_t place_Rays(const TFlatMesh& mesh, const TAcross& across, const TTiles& tiles,
                    const T3DVEC* orgs, const uint32_t* starts, const uint32_t* own,
                    const TPlaced& out);

// Lists the triangles from `first`, a multiple of a group, to `end` within whose bounds some of the
// rays may be. The list has room for all and for a group more.
uint32_t select(const TFlats& flats, uint32_t first, uint32_t end, const TGroup& rays,
                uint32_t* list);

// Writes those of the listed triangles that may hit one of the `alive` rays to `out`, which has
// room for all; their number.
uint32_t sift(const TFlats& flats, const uint32_t* list, uint32_t count, const TGroup& rays,
              uint32_t alive, TSifted* out);

// One form of all of them.
struct TSweepLanes {
  decltype(&undercut::flatten) flatten;
  decltype(&undercut::find_Spans) find_Spans;
  decltype(&undercut::place_Rays) place_Rays;
  decltype(&undercut::select) select;
  decltype(&undercut::sift) sift;
};

extern const TSweepLanes kPortableLanes;
// Null where the processor lacks what they need, or the compiler a way to use it.
const TSweepLanes* avx2_Lanes();
const TSweepLanes* avx512_Lanes();

}  // namespace undercut
