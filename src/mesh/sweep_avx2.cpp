// The arithmetic of the sweep, eight triangles or rays at a time.
#include <bit>

#include "mesh/avx2.h"
#include "mesh/sweep_bounds.h"
#include "mesh/sweep_lanes.h"

namespace undercut {

#ifdef UNDERCUT_AVX2

UNDERCUT_BEGIN_AVX2
namespace {

constexpr uint32_t kWide = 8;

using V = __m256;
using M = __m256;  // all bits of the lanes that are meant
using I = __m256i;

[[gnu::always_inline]] inline V fill(float x) { return _mm256_set1_ps(x); }
[[gnu::always_inline]] inline V load(const float* p) { return _mm256_load_ps(p); }
[[gnu::always_inline]] inline void store(float* p, V a) { _mm256_storeu_ps(p, a); }
[[gnu::always_inline]] inline void store(uint32_t* p, I a) {
  _mm256_storeu_si256(reinterpret_cast<I*>(p), a);
}
[[gnu::always_inline]] inline V add(V a, V b) { return _mm256_add_ps(a, b); }
[[gnu::always_inline]] inline V sub(V a, V b) { return _mm256_sub_ps(a, b); }
[[gnu::always_inline]] inline V mul(V a, V b) { return _mm256_mul_ps(a, b); }
[[gnu::always_inline]] inline V div(V a, V b) { return _mm256_div_ps(a, b); }
[[gnu::always_inline]] inline V mul_Add(V a, V b, V c) { return _mm256_fmadd_ps(a, b, c); }
[[gnu::always_inline]] inline V sub_Mul(V a, V b, V c) { return _mm256_fnmadd_ps(b, c, a); }
[[gnu::always_inline]] inline V lesser(V a, V b) { return _mm256_min_ps(a, b); }
[[gnu::always_inline]] inline V greater(V a, V b) { return _mm256_max_ps(a, b); }
[[gnu::always_inline]] inline V flip(V a, V sign) { return _mm256_xor_ps(a, sign); }
[[gnu::always_inline]] inline V minus(V a) { return flip(a, fill(-0.0f)); }
[[gnu::always_inline]] inline V size(V a) { return _mm256_andnot_ps(fill(-0.0f), a); }
[[gnu::always_inline]] inline V with_Sign(V a, V of) {
  return _mm256_or_ps(a, _mm256_and_ps(fill(-0.0f), of));
}
[[gnu::always_inline]] inline M above(V a, V b) { return _mm256_cmp_ps(a, b, _CMP_GT_OQ); }
[[gnu::always_inline]] inline M both(M a, M b) { return _mm256_and_ps(a, b); }
[[gnu::always_inline]] inline M either(M a, M b) { return _mm256_or_ps(a, b); }
[[gnu::always_inline]] inline V choose(M m, V set, V unset) {
  return _mm256_blendv_ps(unset, set, m);
}
[[gnu::always_inline]] inline uint32_t bits(M m) {
  return static_cast<uint32_t>(_mm256_movemask_ps(m));
}
[[gnu::always_inline]] inline I truncate(V a) { return _mm256_cvttps_epi32(a); }
[[gnu::always_inline]] inline I fill_Int(uint32_t x) {
  return _mm256_set1_epi32(static_cast<int>(x));
}
[[gnu::always_inline]] inline I add(I a, I b) { return _mm256_add_epi32(a, b); }
[[gnu::always_inline]] inline I mul(I a, I b) { return _mm256_mullo_epi32(a, b); }
template <int kBits>
[[gnu::always_inline]] inline I shift_Up(I a) {
  return _mm256_slli_epi32(a, kBits);
}
template <int kBits>
[[gnu::always_inline]] inline I shift_Down(I a) {
  return _mm256_srli_epi32(a, kBits);
}
template <int kBits>
[[gnu::always_inline]] inline I low_Bits(I a) {
  return _mm256_and_si256(a, fill_Int((1u << kBits) - 1));
}
[[gnu::always_inline]] inline I look_Up(const int32_t* table, I at) {
  return _mm256_i32gather_epi32(table, at, 4);
}

[[gnu::always_inline]] inline V least_Lane(V a) {
  a = lesser(a, _mm256_permute2f128_ps(a, a, 1));
  a = lesser(a, _mm256_permute_ps(a, 0x4e));
  return lesser(a, _mm256_permute_ps(a, 0xb1));
}

// For each set of lanes their numbers, in rising order.
struct TOrders {
  alignas(64) uint8_t of[256][kWide];

  constexpr TOrders() : of() {
    for (uint32_t set = 0; set < 256; ++set)
      for (uint32_t k = 0, next = 0; k < kWide; ++k)
        if (set >> k & 1u) of[set][next++] = static_cast<uint8_t>(k);
  }
};
constexpr TOrders kOrders;

// Lists i and its followers, but for those in the mask; their number.
[[gnu::always_inline]] inline uint32_t store_Unset(uint32_t* list, uint32_t i, M mask) {
  const uint32_t in = ~bits(mask) & 0xffu;
  const I order =
      _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(kOrders.of[in])));
  store(list, add(fill_Int(i), order));
  return static_cast<uint32_t>(__builtin_popcount(in));
}

// One corner of each of eight triangles.
template <uint32_t T3DTRI::*kCorner>
[[gnu::always_inline]] inline void get_Corner(const TFlatMesh& mesh, const uint32_t* ids, V& x,
                                              V& y, V& z) {
  V pair[4];  // of triangles k and k + 4
  for (uint32_t k = 0; k < 4; ++k) {
    const __m128 low = _mm_load_ps(&mesh.vtx[mesh.tri[ids[k]].*kCorner].x);
    const __m128 high = _mm_load_ps(&mesh.vtx[mesh.tri[ids[k + 4]].*kCorner].x);
    pair[k] = _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
  }
  const V xy = _mm256_unpacklo_ps(pair[0], pair[1]), xy_next = _mm256_unpacklo_ps(pair[2], pair[3]);
  const V z_on = _mm256_unpackhi_ps(pair[0], pair[1]),
          z_next = _mm256_unpackhi_ps(pair[2], pair[3]);
  x = _mm256_shuffle_ps(xy, xy_next, 0x44);
  y = _mm256_shuffle_ps(xy, xy_next, 0xee);
  z = _mm256_shuffle_ps(z_on, z_next, 0x44);
}

// Into zeros, lest the compiler warn of lanes that are never left as they were.
[[gnu::always_inline]] inline __m256d gather(const double* from, __m128i at) {
  const __m256d all = _mm256_castsi256_pd(_mm256_set1_epi32(-1));
  return _mm256_mask_i32gather_pd(_mm256_setzero_pd(), from, at, all, 8);
}

struct TPoints4 {
  __m256d x, y, z;
};

[[gnu::always_inline]] inline TPoints4 get_Points(const T3DVEC* from, const uint32_t* ids,
                                                  const T3DVEC& centre) {
  const auto* numbers = reinterpret_cast<const double*>(from);
  const __m128i id = _mm_loadu_si128(reinterpret_cast<const __m128i*>(ids));
  const __m128i at = _mm_add_epi32(id, _mm_add_epi32(id, id));
  return {_mm256_sub_pd(gather(numbers, at), _mm256_set1_pd(centre.x)),
          _mm256_sub_pd(gather(numbers + 1, at), _mm256_set1_pd(centre.y)),
          _mm256_sub_pd(gather(numbers + 2, at), _mm256_set1_pd(centre.z))};
}

[[gnu::always_inline]] inline __m128 along(const TPoints4& p, const T3DVEC& axis) {
  return _mm256_cvtpd_ps(_mm256_add_pd(_mm256_add_pd(_mm256_mul_pd(p.x, _mm256_set1_pd(axis.x)),
                                                     _mm256_mul_pd(p.y, _mm256_set1_pd(axis.y))),
                                       _mm256_mul_pd(p.z, _mm256_set1_pd(axis.z))));
}

// Eight listed points in the coordinates of a sweep.
[[gnu::always_inline]] inline void turn(const TAcross& across, const T3DVEC* from,
                                        const uint32_t* ids, V& x, V& y, V& z) {
  const TPoints4 low = get_Points(from, ids, across.centre);
  const TPoints4 high = get_Points(from, ids + 4, across.centre);
  x = _mm256_set_m128(along(high, across.x), along(low, across.x));
  y = _mm256_set_m128(along(high, across.y), along(low, across.y));
  z = _mm256_set_m128(along(high, across.z), along(low, across.z));
}

#include "mesh/sweep_wide.inc"

}  // namespace
UNDERCUT_END_AVX2

const TSweepLanes* avx2_Lanes() { return has_Avx2() ? &kWideLanes : nullptr; }

#else

const TSweepLanes* avx2_Lanes() { return nullptr; }

#endif

}  // namespace undercut
