// The arithmetic of the sweep, sixteen triangles or rays at a time.
#include <bit>

#include "mesh/avx512.h"
#include "mesh/sweep_bounds.h"
#include "mesh/sweep_lanes.h"

namespace undercut {

#ifdef UNDERCUT_AVX512

UNDERCUT_BEGIN_AVX512
namespace {

constexpr uint32_t kWide = 16;

using V = __m512;
using M = __mmask16;
using I = __m512i;

// Where an operation leaves no lane as it was, it starts from zeros all the same, lest the compiler
// warn of lanes that were never set.
constexpr M kAll = 0xffff;
constexpr __mmask8 kAll8 = 0xff;

[[gnu::always_inline]] inline V fill(float x) { return _mm512_set1_ps(x); }
[[gnu::always_inline]] inline V load(const float* p) { return _mm512_load_ps(p); }
[[gnu::always_inline]] inline void store(float* p, V a) { _mm512_storeu_ps(p, a); }
[[gnu::always_inline]] inline void store(uint32_t* p, I a) { _mm512_storeu_si512(p, a); }
[[gnu::always_inline]] inline V add(V a, V b) { return _mm512_add_ps(a, b); }
[[gnu::always_inline]] inline V sub(V a, V b) { return _mm512_sub_ps(a, b); }
[[gnu::always_inline]] inline V mul(V a, V b) { return _mm512_mul_ps(a, b); }
[[gnu::always_inline]] inline V div(V a, V b) { return _mm512_div_ps(a, b); }
[[gnu::always_inline]] inline V mul_Add(V a, V b, V c) { return _mm512_fmadd_ps(a, b, c); }
[[gnu::always_inline]] inline V sub_Mul(V a, V b, V c) { return _mm512_fnmadd_ps(b, c, a); }
[[gnu::always_inline]] inline V lesser(V a, V b) { return _mm512_maskz_min_ps(kAll, a, b); }
[[gnu::always_inline]] inline V greater(V a, V b) { return _mm512_maskz_max_ps(kAll, a, b); }
[[gnu::always_inline]] inline V flip(V a, V sign) {
  return _mm512_castsi512_ps(_mm512_xor_epi32(_mm512_castps_si512(a), _mm512_castps_si512(sign)));
}
[[gnu::always_inline]] inline V minus(V a) { return flip(a, fill(-0.0f)); }
[[gnu::always_inline]] inline V size(V a) {
  return _mm512_castsi512_ps(
      _mm512_and_epi32(_mm512_castps_si512(a), _mm512_set1_epi32(0x7fffffff)));
}
[[gnu::always_inline]] inline V with_Sign(V a, V of) { return flip(a, flip(of, size(of))); }
[[gnu::always_inline]] inline M above(V a, V b) { return _mm512_cmp_ps_mask(a, b, _CMP_GT_OQ); }
[[gnu::always_inline]] inline M both(M a, M b) { return _mm512_kand(a, b); }
[[gnu::always_inline]] inline M either(M a, M b) { return _mm512_kor(a, b); }
[[gnu::always_inline]] inline V choose(M m, V set, V unset) {
  return _mm512_mask_blend_ps(m, unset, set);
}
[[gnu::always_inline]] inline uint32_t bits(M m) { return m; }
[[gnu::always_inline]] inline I truncate(V a) { return _mm512_maskz_cvttps_epi32(kAll, a); }
[[gnu::always_inline]] inline I fill_Int(uint32_t x) {
  return _mm512_set1_epi32(static_cast<int>(x));
}
[[gnu::always_inline]] inline I add(I a, I b) { return _mm512_add_epi32(a, b); }
[[gnu::always_inline]] inline I mul(I a, I b) { return _mm512_mullo_epi32(a, b); }
template <int kBits>
[[gnu::always_inline]] inline I shift_Up(I a) {
  return _mm512_maskz_slli_epi32(kAll, a, kBits);
}
template <int kBits>
[[gnu::always_inline]] inline I shift_Down(I a) {
  return _mm512_maskz_srli_epi32(kAll, a, kBits);
}
template <int kBits>
[[gnu::always_inline]] inline I low_Bits(I a) {
  return _mm512_and_epi32(a, fill_Int((1u << kBits) - 1));
}
[[gnu::always_inline]] inline I look_Up(const int32_t* table, I at) {
  return _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), kAll, at, table, 4);
}

[[gnu::always_inline]] inline V least_Lane(V a) {
  a = lesser(a, _mm512_maskz_shuffle_f32x4(kAll, a, a, 0x4e));
  a = lesser(a, _mm512_maskz_shuffle_f32x4(kAll, a, a, 0xb1));
  a = lesser(a, _mm512_maskz_permute_ps(kAll, a, 0x4e));
  return lesser(a, _mm512_maskz_permute_ps(kAll, a, 0xb1));
}

// Lists i and its followers, but for those in the mask; their number.
[[gnu::always_inline]] inline uint32_t store_Unset(uint32_t* list, uint32_t i, M mask) {
  const I lanes = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const M in = _mm512_knot(mask);
  store(list, _mm512_maskz_compress_epi32(in, add(fill_Int(i), lanes)));
  return static_cast<uint32_t>(__builtin_popcount(in));
}

// One corner of each of sixteen triangles.
template <uint32_t T3DTRI::*kCorner>
[[gnu::always_inline]] inline void get_Corner(const TFlatMesh& mesh, const uint32_t* ids, V& x,
                                              V& y, V& z) {
  V four[4];  // of triangles k, k + 4, k + 8 and k + 12
  for (uint32_t k = 0; k < 4; ++k) {
    __m128 at[4];
    for (uint32_t n = 0; n < 4; ++n)
      at[n] = _mm_load_ps(&mesh.vtx[mesh.tri[ids[k + 4 * n]].*kCorner].x);
    four[k] = _mm512_castps128_ps512(at[0]);
    four[k] = _mm512_maskz_insertf32x4(kAll, four[k], at[1], 1);
    four[k] = _mm512_maskz_insertf32x4(kAll, four[k], at[2], 2);
    four[k] = _mm512_maskz_insertf32x4(kAll, four[k], at[3], 3);
  }
  const V xy = _mm512_maskz_unpacklo_ps(kAll, four[0], four[1]);
  const V xy_next = _mm512_maskz_unpacklo_ps(kAll, four[2], four[3]);
  const V z_on = _mm512_maskz_unpackhi_ps(kAll, four[0], four[1]);
  const V z_next = _mm512_maskz_unpackhi_ps(kAll, four[2], four[3]);
  x = _mm512_maskz_shuffle_ps(kAll, xy, xy_next, 0x44);
  y = _mm512_maskz_shuffle_ps(kAll, xy, xy_next, 0xee);
  z = _mm512_maskz_shuffle_ps(kAll, z_on, z_next, 0x44);
}

[[gnu::always_inline]] inline __m512d gather(const double* from, __m256i at) {
  return _mm512_mask_i32gather_pd(_mm512_setzero_pd(), kAll8, at, from, 8);
}

struct TPoints8 {
  __m512d x, y, z;
};

[[gnu::always_inline]] inline TPoints8 get_Points(const T3DVEC* from, const uint32_t* ids,
                                                  const T3DVEC& centre) {
  const auto* numbers = reinterpret_cast<const double*>(from);
  const __m256i id = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(ids));
  const __m256i at = _mm256_add_epi32(id, _mm256_add_epi32(id, id));
  return {_mm512_sub_pd(gather(numbers, at), _mm512_set1_pd(centre.x)),
          _mm512_sub_pd(gather(numbers + 1, at), _mm512_set1_pd(centre.y)),
          _mm512_sub_pd(gather(numbers + 2, at), _mm512_set1_pd(centre.z))};
}

[[gnu::always_inline]] inline __m256 along(const TPoints8& p, const T3DVEC& axis) {
  return _mm512_maskz_cvtpd_ps(
      kAll8, _mm512_add_pd(_mm512_add_pd(_mm512_mul_pd(p.x, _mm512_set1_pd(axis.x)),
                                         _mm512_mul_pd(p.y, _mm512_set1_pd(axis.y))),
                           _mm512_mul_pd(p.z, _mm512_set1_pd(axis.z))));
}

[[gnu::always_inline]] inline V join(__m256 low, __m256 high) {
  const __m512d half = _mm512_castpd256_pd512(_mm256_castps_pd(low));
  return _mm512_castpd_ps(_mm512_maskz_insertf64x4(kAll8, half, _mm256_castps_pd(high), 1));
}

// Sixteen listed points in the coordinates of a sweep.
[[gnu::always_inline]] inline void turn(const TAcross& across, const T3DVEC* from,
                                        const uint32_t* ids, V& x, V& y, V& z) {
  const TPoints8 low = get_Points(from, ids, across.centre);
  const TPoints8 high = get_Points(from, ids + 8, across.centre);
  x = join(along(low, across.x), along(high, across.x));
  y = join(along(low, across.y), along(high, across.y));
  z = join(along(low, across.z), along(high, across.z));
}

#include "mesh/sweep_wide.inc"

}  // namespace
UNDERCUT_END_AVX512

const TSweepLanes* avx512_Lanes() { return has_Avx512() ? &kWideLanes : nullptr; }

#else

const TSweepLanes* avx512_Lanes() { return nullptr; }

#endif

}  // namespace undercut
