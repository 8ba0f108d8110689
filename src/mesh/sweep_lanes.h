// The arithmetic of the sweep: triangles and rays in single precision, eight at a time.
//
// Each function comes in a portable form and in the fastest one that the processor has. The errors
// of both are bounded by the same numbers (sweep.cpp shows how), so what they call a hit or a miss
// is one; where they differ in what they call unclear, that never shows.
#pragma once

#include <cstdint>

#include "mesh/sweep_space.h"

namespace undercut {

inline constexpr uint32_t kLanes8 = 8;
inline constexpr uint32_t kMostFlats = 256;
inline constexpr uint32_t kMostIndex = 1u << 28;  // of lanes that count in int32_t

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

// The tile whose rays are asked: its centre, and how far they may be from it, in x or in y.
struct TSpot {
  float x, y, reach;
};

// Triangles of one tile: corner a, the edges a to b and c to a in the plane, and the normal, which
// is not a unit vector. The rest are bounds: beyond `edge` the sides of the three edges that are
// computed of a ray have the signs that hit_Tri finds, and beyond `side` that of the triangle.
// Beyond `clear` they also tell that nothing is flat or on an edge; infinite for thin triangles,
// which lie so steep that their area in the plane is no measure of them. A ray that starts outside
// of the bounds in x and y misses, and so does one that runs away from those in z.
struct TFlats {
  alignas(32) float ax[kMostFlats];
  alignas(32) float ay[kMostFlats];
  alignas(32) float az[kMostFlats];
  alignas(32) float abx[kMostFlats];
  alignas(32) float aby[kMostFlats];
  alignas(32) float cax[kMostFlats];
  alignas(32) float cay[kMostFlats];
  alignas(32) float nx[kMostFlats];
  alignas(32) float ny[kMostFlats];
  alignas(32) float nz[kMostFlats];
  alignas(32) float edge[kMostFlats];
  alignas(32) float side[kMostFlats];
  alignas(32) float clear[kMostFlats];
  alignas(32) float low_x[kMostFlats];
  alignas(32) float high_x[kMostFlats];
  alignas(32) float low_y[kMostFlats];
  alignas(32) float high_y[kMostFlats];
  alignas(32) float low_z[kMostFlats];
  alignas(32) float high_z[kMostFlats];
};

// Up to eight rays that run the same way: 1 along the direction, -1 against it. The last stands for
// those that are missing.
struct TRays8 {
  alignas(32) float x[kLanes8];
  alignas(32) float y[kLanes8];
  alignas(32) float z[kLanes8];
  float way;
};

// A listed triangle and the rays, a bit each, that it hits for sure or perhaps.
struct TSifted {
  uint32_t at;  // in TFlats
  uint32_t hit, unclear;
};

// Fetches `count` listed rays, one at least.
void fetch(const float* x, const float* y, const float* z, const uint32_t* list, uint32_t count,
           TRays8& out);

// Fills `out` with the listed triangles, at most kMostFlats; it may write up to seven more.
void flatten(const TFlatMesh& mesh, const uint32_t* ids, uint32_t count, const TSpot& spot,
             TFlats& out);

// The tiles of the `count` triangles from `first` on, at most eight. Bit k of the answer: that one
// is thin, and its tiles are not told.
uint32_t find_Spans(const TFlatMesh& mesh, uint32_t first, uint32_t count, const TTiles& tiles,
                    TSpan* spans);

// Up to eight rays: where they start, and their spots (see TTiles). Ray k starts at
// orgs[starts[k]]. Which of them hit the triangle own[k] for sure: in bits 0 to 7 along the
// direction, in bits 8 to 15 against it.
struct TPlaced {
  float *x, *y, *z;
  uint32_t* spot;
};
// `own` has eight entries, whatever the count.
uint32_t place_Rays(const TFlatMesh& mesh, const TAcross& across, const TTiles& tiles,
                    const T3DVEC* orgs, const uint32_t* starts, const uint32_t* own, uint32_t count,
                    const TPlaced& out);

// Lists the triangles, of `count`, within whose bounds some of the rays may be. The list has room
// for all.
uint32_t select(const TFlats& flats, uint32_t count, const TRays8& rays, uint32_t* list);

// Writes those of the listed triangles that may hit one of the `alive` rays to `out`, which has
// room for all; their number.
uint32_t sift(const TFlats& flats, const uint32_t* list, uint32_t count, const TRays8& rays,
              uint32_t alive, TSifted* out);

// One form of all of them.
struct TSweepLanes {
  decltype(&undercut::flatten) flatten;
  decltype(&undercut::find_Spans) find_Spans;
  decltype(&undercut::place_Rays) place_Rays;
  decltype(&undercut::fetch) fetch;
  decltype(&undercut::select) select;
  decltype(&undercut::sift) sift;
};

extern const TSweepLanes kPortableLanes;
// Null where the processor has no AVX2, or the compiler no way to use it.
const TSweepLanes* avx2_Lanes();

}  // namespace undercut
