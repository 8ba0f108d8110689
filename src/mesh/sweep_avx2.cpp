// The arithmetic of the sweep, eight triangles or rays at a time. Value by value it is that of
// sweep_portable.cpp.
#include "mesh/avx2.h"
#include "mesh/sweep_bounds.h"
#include "mesh/sweep_lanes.h"

#ifdef UNDERCUT_AVX2

namespace undercut {

UNDERCUT_BEGIN_AVX2
namespace {

using V = __m256;

[[gnu::always_inline]] inline V fill(float x) { return _mm256_set1_ps(x); }
[[gnu::always_inline]] inline V add(V a, V b) { return _mm256_add_ps(a, b); }
[[gnu::always_inline]] inline V sub(V a, V b) { return _mm256_sub_ps(a, b); }
[[gnu::always_inline]] inline V mul(V a, V b) { return _mm256_mul_ps(a, b); }
[[gnu::always_inline]] inline V lesser(V a, V b) { return _mm256_min_ps(a, b); }
[[gnu::always_inline]] inline V greater(V a, V b) { return _mm256_max_ps(a, b); }
[[gnu::always_inline]] inline V both(V a, V b) { return _mm256_and_ps(a, b); }
[[gnu::always_inline]] inline V either(V a, V b) { return _mm256_or_ps(a, b); }
[[gnu::always_inline]] inline V above(V a, V b) { return _mm256_cmp_ps(a, b, _CMP_GT_OQ); }
[[gnu::always_inline]] inline V minus(V a) { return _mm256_xor_ps(a, fill(-0.0f)); }
[[gnu::always_inline]] inline V size(V a) { return _mm256_andnot_ps(fill(-0.0f), a); }
[[gnu::always_inline]] inline uint32_t bits(V a) {
  return static_cast<uint32_t>(_mm256_movemask_ps(a));
}

struct TFlat8 {
  V ax, ay, az, abx, aby, abz, cax, cay, caz, nx, ny, nz;
  V wide, longest, is_thin;
};

[[gnu::always_inline]] inline V gather(const float* from, __m256i at) {
  return _mm256_i32gather_ps(from, at, 4);
}

// Into zeros, lest the compiler warn of lanes that are never left as they were.
[[gnu::always_inline]] inline __m256d gather(const double* from, __m128i at) {
  const __m256d all = _mm256_castsi256_pd(_mm256_set1_epi32(-1));
  return _mm256_mask_i32gather_pd(_mm256_setzero_pd(), from, at, all, 8);
}

// Corner k of eight triangles.
struct TCorner8 {
  V x, y, z;
};

template <uint32_t T3DTRI::*kCorner>
[[gnu::always_inline]] inline TCorner8 get_Corner(const TFlatMesh& mesh, const uint32_t* ids) {
  V pair[4];  // of triangles k and k + 4
  for (uint32_t k = 0; k < 4; ++k) {
    const __m128 low = _mm_load_ps(&mesh.vtx[mesh.tri[ids[k]].*kCorner].x);
    const __m128 high = _mm_load_ps(&mesh.vtx[mesh.tri[ids[k + 4]].*kCorner].x);
    pair[k] = _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
  }
  const V xy = _mm256_unpacklo_ps(pair[0], pair[1]), xy_next = _mm256_unpacklo_ps(pair[2], pair[3]);
  const V z = _mm256_unpackhi_ps(pair[0], pair[1]), z_next = _mm256_unpackhi_ps(pair[2], pair[3]);
  return {_mm256_shuffle_ps(xy, xy_next, 0x44), _mm256_shuffle_ps(xy, xy_next, 0xee),
          _mm256_shuffle_ps(z, z_next, 0x44)};
}

[[gnu::always_inline]] inline TFlat8 get_Flat(const TFlatMesh& mesh, const uint32_t* ids) {
  const TCorner8 a = get_Corner<&T3DTRI::a>(mesh, ids), b = get_Corner<&T3DTRI::b>(mesh, ids);
  const TCorner8 c = get_Corner<&T3DTRI::c>(mesh, ids);
  TFlat8 f;
  f.ax = a.x, f.ay = a.y, f.az = a.z;
  f.abx = sub(b.x, a.x), f.aby = sub(b.y, a.y), f.abz = sub(b.z, a.z);
  f.cax = sub(a.x, c.x), f.cay = sub(a.y, c.y), f.caz = sub(a.z, c.z);
  f.nx = sub(mul(f.cay, f.abz), mul(f.caz, f.aby));
  f.ny = sub(mul(f.caz, f.abx), mul(f.cax, f.abz));
  f.nz = sub(mul(f.cax, f.aby), mul(f.cay, f.abx));
  f.wide = greater(greater(size(f.abx), size(f.cax)), greater(size(f.aby), size(f.cay)));
  f.longest = mul(fill(2.0f), greater(f.wide, greater(size(f.abz), size(f.caz))));
  f.is_thin = above(add(mul(fill(kThin), f.longest), fill(mesh.least)), size(f.nz));
  return f;
}

struct TRect8 {
  V low_x, high_x, low_y, high_y;
};

[[gnu::always_inline]] inline TRect8 get_Rect(const TFlat8& f) {
  const V pad = greater(mul(f.wide, fill(kWiden)), fill(kPad));
  const V bx = add(f.ax, f.abx), by = add(f.ay, f.aby);
  const V cx = sub(f.ax, f.cax), cy = sub(f.ay, f.cay);
  return {sub(lesser(f.ax, lesser(bx, cx)), pad), add(greater(f.ax, greater(bx, cx)), pad),
          sub(lesser(f.ay, lesser(by, cy)), pad), add(greater(f.ay, greater(by, cy)), pad)};
}

struct TBounds8 {
  V edge, side, clear;
};

[[gnu::always_inline]] inline TBounds8 get_Bounds(const TFlat8& f, float least, V reach) {
  const V one = fill(1.0f), two = fill(2.0f), four = fill(4.0f);
  const V across = add(size(f.nx), size(f.ny)), up = size(f.nz);
  const V tilt = mul(mul(fill(kNormal), f.longest), add(one, f.longest));
  TBounds8 b;
  b.edge = mul(mul(fill(kEdge), add(mul(two, f.wide), reach)), add(one, mul(four, f.wide)));
  b.edge = add(add(b.edge, mul(fill(kLongEdge), f.longest)), fill(kLeast));
  b.side = add(mul(fill(kSide), add(across, up)), mul(mul(fill(kReach), reach), across));
  b.side = add(add(b.side, mul(fill(kLongSide), f.longest)), fill(kLeast));
  const V thin = mul(add(mul(fill(kTilts), reach), fill(kDepth)), tilt);
  const V flat = mul(mul(_mm256_div_ps(tilt, sub(up, tilt)), reach), add(across, mul(two, up)));
  b.side = add(b.side, _mm256_blendv_ps(flat, thin, f.is_thin));
  b.clear =
      _mm256_blendv_ps(add(mul(two, b.edge), fill(kClear * least)), fill(kInfinite), f.is_thin);
  return b;
}

// Bit masks: which rays are hit for sure, and which are missed.
struct TFinding8 {
  uint32_t hit, missed;
};

[[gnu::always_inline]] inline TFinding8 judge(V side, V ab, V bc, V ca, const TBounds8& b) {
  const V low = lesser(ab, lesser(bc, ca)), high = greater(ab, greater(bc, ca));
  const V over = above(side, b.side), under = above(minus(b.side), side);
  const V apart = both(above(high, b.clear), above(minus(b.clear), low));
  const V missed = either(both(over, above(high, b.edge)), both(under, above(minus(b.edge), low)));
  const V hit = either(both(over, above(minus(b.clear), high)), both(under, above(low, b.clear)));
  return {bits(hit), bits(either(apart, missed))};
}

void flatten_Wide(const TFlatMesh& mesh, const uint32_t* ids, uint32_t count, const TSpot& spot,
                  TFlats& out) {
  for (uint32_t i = 0; i < count; i += kLanes8) {
    // The last group takes the last triangle again.
    uint32_t group[kLanes8];
    for (uint32_t k = 0; k < kLanes8; ++k) group[k] = ids[i + k < count ? i + k : count - 1];
    const TFlat8 f = get_Flat(mesh, group);
    const V away = greater(size(sub(f.ax, fill(spot.x))), size(sub(f.ay, fill(spot.y))));
    const TBounds8 b = get_Bounds(f, mesh.least, add(away, fill(spot.reach)));
    const TRect8 r = get_Rect(f);
    const V all = fill(kInfinite), none = minus(all);
    const V deep = add(mul(fill(kDeep), f.longest), fill(kPad));
    _mm256_store_ps(out.ax + i, f.ax);
    _mm256_store_ps(out.ay + i, f.ay);
    _mm256_store_ps(out.az + i, f.az);
    _mm256_store_ps(out.abx + i, f.abx);
    _mm256_store_ps(out.aby + i, f.aby);
    _mm256_store_ps(out.cax + i, f.cax);
    _mm256_store_ps(out.cay + i, f.cay);
    _mm256_store_ps(out.nx + i, f.nx);
    _mm256_store_ps(out.ny + i, f.ny);
    _mm256_store_ps(out.nz + i, f.nz);
    _mm256_store_ps(out.edge + i, b.edge);
    _mm256_store_ps(out.side + i, b.side);
    _mm256_store_ps(out.clear + i, b.clear);
    _mm256_store_ps(out.low_x + i, _mm256_blendv_ps(r.low_x, none, f.is_thin));
    _mm256_store_ps(out.high_x + i, _mm256_blendv_ps(r.high_x, all, f.is_thin));
    _mm256_store_ps(out.low_y + i, _mm256_blendv_ps(r.low_y, none, f.is_thin));
    _mm256_store_ps(out.high_y + i, _mm256_blendv_ps(r.high_y, all, f.is_thin));
    _mm256_store_ps(out.low_z + i, sub(f.az, deep));
    _mm256_store_ps(out.high_z + i, add(f.az, deep));
  }
}

[[gnu::always_inline]] inline __m256i place(V at, float low, float per_unit, uint32_t count) {
  const V scaled = greater(mul(sub(at, fill(low)), fill(per_unit)), fill(0.0f));
  return _mm256_cvttps_epi32(lesser(scaled, fill(static_cast<float>(count - 1))));
}

[[gnu::always_inline]] inline __m256i column(V x, const TTiles& tiles) {
  return place(x, tiles.low_x, tiles.per_unit, tiles.columns);
}
[[gnu::always_inline]] inline __m256i row(V y, const TTiles& tiles) {
  return place(y, tiles.low_y, tiles.per_unit, tiles.rows);
}

uint32_t span_Wide(const TFlatMesh& mesh, uint32_t first, uint32_t count, const TTiles& tiles,
                   TSpan* spans) {
  uint32_t ids[kLanes8];
  for (uint32_t n = 0; n < kLanes8; ++n) ids[n] = first + (n < count ? n : count - 1);
  const TFlat8 f = get_Flat(mesh, ids);
  const TRect8 r = get_Rect(f);
  const __m256i low_x = column(r.low_x, tiles), high_x = column(r.high_x, tiles);
  const __m256i low_y = row(r.low_y, tiles), high_y = row(r.high_y, tiles);
  alignas(32) uint32_t x[kLanes8], y[kLanes8];
  _mm256_store_si256(reinterpret_cast<__m256i*>(x),
                     _mm256_or_si256(low_x, _mm256_slli_epi32(high_x, 16)));
  _mm256_store_si256(reinterpret_cast<__m256i*>(y),
                     _mm256_or_si256(low_y, _mm256_slli_epi32(high_y, 16)));
  for (uint32_t k = 0; k < count; ++k)
    spans[k] = {static_cast<uint16_t>(x[k]), static_cast<uint16_t>(x[k] >> 16),
                static_cast<uint16_t>(y[k]), static_cast<uint16_t>(y[k] >> 16)};
  return bits(f.is_thin) & ((1u << count) - 1);
}

// Four points of a list, along one of the axes of a sweep.
struct TPoints4 {
  __m256d x, y, z;
};

[[gnu::always_inline]] inline TPoints4 get_Points(const T3DVEC* from, __m128i ids,
                                                  const T3DVEC& centre) {
  const auto* numbers = reinterpret_cast<const double*>(from);
  const __m128i at = _mm_add_epi32(ids, _mm_add_epi32(ids, ids));
  return {_mm256_sub_pd(gather(numbers, at), _mm256_set1_pd(centre.x)),
          _mm256_sub_pd(gather(numbers + 1, at), _mm256_set1_pd(centre.y)),
          _mm256_sub_pd(gather(numbers + 2, at), _mm256_set1_pd(centre.z))};
}

[[gnu::always_inline]] inline __m128 along(const TPoints4& p, const T3DVEC& axis) {
  return _mm256_cvtpd_ps(_mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(p.x, _mm256_set1_pd(axis.x)),
                                                     _mm256_mul_pd(p.y, _mm256_set1_pd(axis.y))),
                                       _mm256_mul_pd(p.z, _mm256_set1_pd(axis.z))));
}

[[gnu::always_inline]] inline V along(const TPoints4& low, const TPoints4& high,
                                      const T3DVEC& axis) {
  return _mm256_set_m128(along(high, axis), along(low, axis));
}

[[gnu::always_inline]] inline __m256i spots(V x, V y, const TTiles& tiles) {
  const __m256i tile =
      _mm256_add_epi32(_mm256_mullo_epi32(place(y, tiles.low_y, tiles.per_unit, tiles.rows),
                                          _mm256_set1_epi32(static_cast<int>(tiles.columns))),
                       place(x, tiles.low_x, tiles.per_unit, tiles.columns));
  const __m256i three = _mm256_set1_epi32(3);
  const __m256i i = place(x, tiles.low_x, 4.0f * tiles.per_unit, 4 * tiles.columns);
  const __m256i k = place(y, tiles.low_y, 4.0f * tiles.per_unit, 4 * tiles.rows);
  const __m256i in_tile = _mm256_add_epi32(_mm256_slli_epi32(_mm256_and_si256(k, three), 2),
                                           _mm256_and_si256(i, three));
  return _mm256_add_epi32(_mm256_slli_epi32(tile, 5),
                          _mm256_i32gather_epi32(kSpotOrder, in_tile, 4));
}
static_assert(2 * kSpots == 1u << 5);

uint32_t place_Wide(const TFlatMesh& mesh, const TAcross& across, const TTiles& tiles,
                    const T3DVEC* orgs, const uint32_t* starts, const uint32_t* own, uint32_t count,
                    const TPlaced& out) {
  const __m256i at = _mm256_min_epi32(_mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7),
                                      _mm256_set1_epi32(static_cast<int>(count - 1)));
  const __m256i ids = _mm256_i32gather_epi32(reinterpret_cast<const int*>(starts), at, 4);
  const TPoints4 low = get_Points(orgs, _mm256_castsi256_si128(ids), across.centre);
  const TPoints4 high = get_Points(orgs, _mm256_extracti128_si256(ids, 1), across.centre);
  const V x = along(low, high, across.x), y = along(low, high, across.y);
  const V z = along(low, high, across.z);
  const __m256i asked = _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(count)),
                                           _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
  _mm256_maskstore_ps(out.x, asked, x);
  _mm256_maskstore_ps(out.y, asked, y);
  _mm256_maskstore_ps(out.z, asked, z);
  _mm256_maskstore_epi32(reinterpret_cast<int*>(out.spot), asked, spots(x, y, tiles));

  const TFlat8 f = get_Flat(mesh, own);
  const V qx = sub(x, f.ax), qy = sub(y, f.ay), qz = sub(z, f.az);
  const TBounds8 b = get_Bounds(f, mesh.least, greater(size(qx), size(qy)));
  const V ab = sub(mul(f.abx, qy), mul(f.aby, qx)), ca = sub(mul(f.cax, qy), mul(f.cay, qx));
  const V bc = sub(sub(f.nz, ab), ca);
  const V side = add(add(mul(f.nx, qx), mul(f.ny, qy)), mul(f.nz, qz));
  const uint32_t all = (1u << count) - 1;
  return (judge(side, ab, bc, ca, b).hit & all) | (judge(minus(side), ab, bc, ca, b).hit & all)
                                                      << kLanes8;
}

void fetch_Wide(const float* x, const float* y, const float* z, const uint32_t* list,
                uint32_t count, TRays8& out) {
  const __m256i at = _mm256_min_epi32(_mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7),
                                      _mm256_set1_epi32(static_cast<int>(count - 1)));
  const __m256i ids = _mm256_i32gather_epi32(reinterpret_cast<const int*>(list), at, 4);
  _mm256_store_ps(out.x, gather(x, ids));
  _mm256_store_ps(out.y, gather(y, ids));
  _mm256_store_ps(out.z, gather(z, ids));
}

// For each set of lanes their numbers, in rising order.
struct TOrders {
  alignas(64) uint8_t of[256][kLanes8];

  constexpr TOrders() : of() {
    for (uint32_t set = 0; set < 256; ++set)
      for (uint32_t k = 0, next = 0; k < kLanes8; ++k)
        if (set >> k & 1u) of[set][next++] = static_cast<uint8_t>(k);
  }
};
constexpr TOrders kOrders;

// The least and the greatest of eight numbers, in all lanes.
[[gnu::always_inline]] inline V least(V a) {
  a = lesser(a, _mm256_permute2f128_ps(a, a, 1));
  a = lesser(a, _mm256_permute_ps(a, 0x4e));
  return lesser(a, _mm256_permute_ps(a, 0xb1));
}
[[gnu::always_inline]] inline V greatest(V a) { return minus(least(minus(a))); }

uint32_t select_Wide(const TFlats& f, uint32_t count, const TRays8& rays, uint32_t* list) {
  const V x = _mm256_load_ps(rays.x), y = _mm256_load_ps(rays.y), z = _mm256_load_ps(rays.z);
  const V low_x = least(x), high_x = greatest(x), low_y = least(y), high_y = greatest(y);
  // Ahead: those whose upper end is not below the lowest ray; behind: the same upside down.
  const bool ahead = rays.way > 0.0f;
  const V sign = ahead ? fill(0.0f) : fill(-0.0f);
  const float* ends = ahead ? f.high_z : f.low_z;
  const V first = least(_mm256_xor_ps(z, sign));
  uint32_t kept = 0;
  for (uint32_t i = 0; i < count; i += kLanes8) {
    V out = either(above(_mm256_load_ps(f.low_x + i), high_x),
                   above(low_x, _mm256_load_ps(f.high_x + i)));
    out = either(out, above(_mm256_load_ps(f.low_y + i), high_y));
    out = either(out, above(low_y, _mm256_load_ps(f.high_y + i)));
    out = either(out, above(first, _mm256_xor_ps(_mm256_load_ps(ends + i), sign)));
    const uint32_t in = ~bits(out) & 0xffu;
    const __m256i order =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(kOrders.of[in])));
    const __m256i next = _mm256_add_epi32(_mm256_set1_epi32(static_cast<int>(i)), order);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(list + kept), next);
    kept += static_cast<uint32_t>(__builtin_popcount(in));
  }
  while (kept != 0 && list[kept - 1] >= count) --kept;
  return kept;
}

uint32_t sift_Wide(const TFlats& f, const uint32_t* list, uint32_t count, const TRays8& rays,
                   uint32_t alive, TSifted* out) {
  const V px = _mm256_load_ps(rays.x), py = _mm256_load_ps(rays.y);
  const V pz = _mm256_load_ps(rays.z), way = fill(rays.way);
  uint32_t found = 0;
  for (uint32_t n = 0; n < count; ++n) {
    const uint32_t i = list[n];
    const V x = sub(px, fill(f.ax[i])), y = sub(py, fill(f.ay[i])), z = sub(pz, fill(f.az[i]));
    const V nz = fill(f.nz[i]);
    const V along = add(mul(fill(f.nx[i]), x), mul(fill(f.ny[i]), y));
    const V side = mul(way, add(along, mul(nz, z)));
    const V ab = sub(mul(fill(f.abx[i]), y), mul(fill(f.aby[i]), x));
    const V ca = sub(mul(fill(f.cax[i]), y), mul(fill(f.cay[i]), x));
    const TBounds8 b = {fill(f.edge[i]), fill(f.side[i]), fill(f.clear[i])};
    const TFinding8 finding = judge(side, ab, sub(sub(nz, ab), ca), ca, b);
    out[found].at = i;
    out[found].hit = finding.hit & alive;
    out[found].unclear = alive & ~(finding.hit | finding.missed);
    found += (alive & ~finding.missed) != 0;
  }
  return found;
}

}  // namespace
UNDERCUT_END_AVX2

namespace {

constexpr TSweepLanes kWideLanes = {flatten_Wide, span_Wide,   place_Wide,
                                    fetch_Wide,   select_Wide, sift_Wide};

}  // namespace

const TSweepLanes* avx2_Lanes() { return has_Avx2() ? &kWideLanes : nullptr; }

}  // namespace undercut

#else

namespace undercut {

const TSweepLanes* avx2_Lanes() { return nullptr; }

}  // namespace undercut

#endif
