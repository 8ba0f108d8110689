// Eight single-precision numbers at once, as the walk through the tree of rays needs them: in pairs
// of four, and with AVX2. The two round apart, so only where rounding cannot show in a result.
#pragma once

#include <bit>

#include "foundation/values.h"
#include "mesh/avx2.h"
#include "mesh/lanes.h"

namespace undercut {

namespace portable {

struct TWide {
  TLanes low, high;
};

inline TWide load_Wide(const float* p) { return {load_Lanes(p), load_Lanes(p + 4)}; }
inline TWide fill_Wide(float x) { return {fill_Lanes(x), fill_Lanes(x)}; }
inline TWide operator+(const TWide& a, const TWide& b) { return {a.low + b.low, a.high + b.high}; }
inline TWide operator-(const TWide& a, const TWide& b) { return {a.low - b.low, a.high - b.high}; }
inline TWide operator*(const TWide& a, const TWide& b) { return {a.low * b.low, a.high * b.high}; }
inline TWide mul_Add(const TWide& a, const TWide& b, const TWide& c) { return a * b + c; }
inline TWide mul_Sub(const TWide& a, const TWide& b, const TWide& c) { return a * b - c; }
inline TWide greater(const TWide& a, const TWide& b) {
  return {undercut::greater(a.low, b.low), undercut::greater(a.high, b.high)};
}
// The greater, if that is not negative; something negative if both are.
inline TWide later(const TWide& a, const TWide& b) { return greater(a, b); }
// The lesser, if that is not negative; something negative otherwise.
inline TWide sooner(const TWide& a, const TWide& b) {
  return {undercut::lesser(a.low, b.low), undercut::lesser(a.high, b.high)};
}
inline TWide sign_Of(const TWide& a) {
  return {undercut::sign_Of(a.low), undercut::sign_Of(a.high)};
}
// With its sign turned where `sign` has one.
inline TWide flip(const TWide& a, const TWide& sign) {
  return {undercut::flip(a.low, sign.low), undercut::flip(a.high, sign.high)};
}
inline TWide size_Of(const TWide& a) { return flip(a, sign_Of(a)); }
// Masks, a bit for each of the eight.
inline uint32_t above(const TWide& a, const TWide& b) {
  return undercut::above(a.low, b.low) | undercut::above(a.high, b.high) << 4;
}
inline uint32_t negative(const TWide& a) {
  return undercut::negative(a.low) | undercut::negative(a.high) << 4;
}
inline uint32_t any_Negative(const TWide& a, const TWide& b, const TWide& c) {
  return negative(a) | negative(b) | negative(c);
}

// Of those of eight children that begin, at 0 or later, no later than they end: returns the one
// that begins first and puts the others at the end of `pending`. kNone if there are none.
inline uint32_t take_Nearest(const TWide& begin, const TWide& end, const uint32_t* child,
                             uint32_t* pending, uint32_t& count) {
  alignas(32) float near[8];
  store_Lanes(near, begin.low);
  store_Lanes(near + 4, begin.high);
  uint32_t next = kNone, nearest = 0;
  for (uint32_t bits = ~above(begin, end) & 0xFFu; bits != 0; bits &= bits - 1) {
    const auto k = static_cast<uint32_t>(std::countr_zero(bits));
    const bool is_First = next == kNone || near[k] < near[nearest];
    if (next != kNone) pending[count++] = is_First ? next : child[k];
    if (!is_First) continue;
    next = child[k];
    nearest = k;
  }
  return next;
}

}  // namespace portable

#ifdef UNDERCUT_AVX2

// For each mask the numbers of its bits, a byte each.
struct TBitPlaces {
  uint64_t of[256] = {};
};
inline constexpr TBitPlaces kBitPlaces = [] {
  TBitPlaces places;
  for (uint32_t mask = 0; mask < 256; ++mask)
    for (uint32_t k = 0, found = 0; k < 8; ++k)
      if (mask >> k & 1u) places.of[mask] |= uint64_t{k} << 8 * found++;
  return places;
}();

UNDERCUT_BEGIN_AVX2
namespace avx2 {

struct TWide {
  __m256 v;
};

inline TWide load_Wide(const float* p) { return {_mm256_load_ps(p)}; }
inline TWide fill_Wide(float x) { return {_mm256_set1_ps(x)}; }
inline TWide operator+(TWide a, TWide b) { return {_mm256_add_ps(a.v, b.v)}; }
inline TWide operator-(TWide a, TWide b) { return {_mm256_sub_ps(a.v, b.v)}; }
inline TWide operator*(TWide a, TWide b) { return {_mm256_mul_ps(a.v, b.v)}; }
inline TWide mul_Add(TWide a, TWide b, TWide c) { return {_mm256_fmadd_ps(a.v, b.v, c.v)}; }
inline TWide mul_Sub(TWide a, TWide b, TWide c) { return {_mm256_fmsub_ps(a.v, b.v, c.v)}; }
inline TWide greater(TWide a, TWide b) { return {_mm256_max_ps(a.v, b.v)}; }

// Numbers that are not negative are ordered as their bits are, taken for whole numbers; that is
// compared in a quarter of the time.
inline __m256i bits_Of(TWide a) { return _mm256_castps_si256(a.v); }
inline TWide of_Bits(__m256i bits) { return {_mm256_castsi256_ps(bits)}; }
inline TWide later(TWide a, TWide b) { return of_Bits(_mm256_max_epi32(bits_Of(a), bits_Of(b))); }
inline TWide sooner(TWide a, TWide b) { return of_Bits(_mm256_min_epi32(bits_Of(a), bits_Of(b))); }

inline TWide sign_Of(TWide a) { return {_mm256_and_ps(a.v, _mm256_set1_ps(-0.0f))}; }
inline TWide flip(TWide a, TWide sign) { return {_mm256_xor_ps(a.v, sign.v)}; }
inline TWide size_Of(TWide a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }
inline uint32_t mask_Of(__m256 v) { return static_cast<uint32_t>(_mm256_movemask_ps(v)); }
inline uint32_t above(TWide a, TWide b) { return mask_Of(_mm256_cmp_ps(a.v, b.v, _CMP_GT_OQ)); }
inline uint32_t any_Negative(TWide a, TWide b, TWide c) {
  return mask_Of(_mm256_or_ps(_mm256_or_ps(a.v, b.v), c.v));
}

// Without a branch on how many they are, which would be guessed wrongly time and again. The number
// of a child takes the place of the last three bits of where it begins. Writes eight entries behind
// those of `pending`, whatever their number.
inline uint32_t take_Nearest(TWide begin, TWide end, const uint32_t* child, uint32_t* pending,
                             uint32_t& count) {
  const __m256i out = _mm256_cmpgt_epi32(bits_Of(begin), bits_Of(end));
  const uint32_t reached = mask_Of(of_Bits(out).v) ^ 0xFFu;
  if (reached == 0) return kNone;
  const __m256i place = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
  const __m256i coarse = _mm256_andnot_si256(_mm256_set1_epi32(7), bits_Of(begin));
  const __m256i key = _mm256_or_si256(_mm256_or_si256(coarse, place), out);
  __m128i least = _mm_min_epu32(_mm256_castsi256_si128(key), _mm256_extracti128_si256(key, 1));
  least = _mm_min_epu32(least, _mm_shuffle_epi32(least, 0x4E));
  least = _mm_min_epu32(least, _mm_shuffle_epi32(least, 0xB1));
  const uint32_t first = static_cast<uint32_t>(_mm_cvtsi128_si32(least)) & 7u;
  const uint32_t rest = reached & ~(1u << first);
  const __m256i order =
      _mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<int64_t>(kBitPlaces.of[rest])));
  const __m256i children = _mm256_load_si256(reinterpret_cast<const __m256i*>(child));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(pending + count),
                      _mm256_permutevar8x32_epi32(children, order));
  count += static_cast<uint32_t>(std::popcount(rest));
  return child[first];
}

}  // namespace avx2
UNDERCUT_END_AVX2

#endif

}  // namespace undercut
