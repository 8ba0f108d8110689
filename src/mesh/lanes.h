// Four single-precision numbers at once. Only where the arithmetic of all four lanes is independent
// and its rounding cannot show in a result.
#pragma once

#include <cmath>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace undercut {

#if defined(__SSE2__)

struct TLanes {
  __m128 v;
};

inline TLanes load_Lanes(const float* p) { return {_mm_load_ps(p)}; }
inline void store_Lanes(float* p, TLanes a) { _mm_store_ps(p, a.v); }
inline TLanes fill_Lanes(float x) { return {_mm_set1_ps(x)}; }
inline TLanes operator-(TLanes a, TLanes b) { return {_mm_sub_ps(a.v, b.v)}; }
inline TLanes operator*(TLanes a, TLanes b) { return {_mm_mul_ps(a.v, b.v)}; }
inline TLanes operator+(TLanes a, TLanes b) { return {_mm_add_ps(a.v, b.v)}; }
inline TLanes greater(TLanes a, TLanes b) { return {_mm_max_ps(a.v, b.v)}; }
inline TLanes lesser(TLanes a, TLanes b) { return {_mm_min_ps(a.v, b.v)}; }
// Bit k tells about lane k: whether a is above b, whether a has a sign.
inline uint32_t above(TLanes a, TLanes b) {
  return static_cast<uint32_t>(_mm_movemask_ps(_mm_cmpgt_ps(a.v, b.v)));
}
inline uint32_t negative(TLanes a) { return static_cast<uint32_t>(_mm_movemask_ps(a.v)); }
inline TLanes sign_Of(TLanes a) { return {_mm_and_ps(a.v, _mm_set1_ps(-0.0f))}; }
// Turned round where the other is negative.
inline TLanes flip(TLanes a, TLanes sign) { return {_mm_xor_ps(a.v, sign.v)}; }

#else

struct TLanes {
  float v[4];
};

template <typename Op>
TLanes each_Lane(const TLanes& a, const TLanes& b, Op op) {
  TLanes out;
  for (int k = 0; k < 4; ++k) out.v[k] = op(a.v[k], b.v[k]);
  return out;
}
inline TLanes load_Lanes(const float* p) { return {{p[0], p[1], p[2], p[3]}}; }
inline void store_Lanes(float* p, const TLanes& a) {
  for (int k = 0; k < 4; ++k) p[k] = a.v[k];
}
inline TLanes fill_Lanes(float x) { return {{x, x, x, x}}; }
inline TLanes operator-(const TLanes& a, const TLanes& b) {
  return each_Lane(a, b, [](float x, float y) { return x - y; });
}
inline TLanes operator+(const TLanes& a, const TLanes& b) {
  return each_Lane(a, b, [](float x, float y) { return x + y; });
}
inline TLanes operator*(const TLanes& a, const TLanes& b) {
  return each_Lane(a, b, [](float x, float y) { return x * y; });
}
inline TLanes greater(const TLanes& a, const TLanes& b) {
  return each_Lane(a, b, [](float x, float y) { return x > y ? x : y; });
}
inline TLanes lesser(const TLanes& a, const TLanes& b) {
  return each_Lane(a, b, [](float x, float y) { return x < y ? x : y; });
}
inline uint32_t above(const TLanes& a, const TLanes& b) {
  uint32_t bits = 0;
  for (int k = 0; k < 4; ++k) bits |= (a.v[k] > b.v[k] ? 1u : 0u) << k;
  return bits;
}
inline uint32_t negative(const TLanes& a) {
  uint32_t bits = 0;
  for (int k = 0; k < 4; ++k) bits |= (std::signbit(a.v[k]) ? 1u : 0u) << k;
  return bits;
}
inline TLanes sign_Of(const TLanes& a) {
  return each_Lane(a, a, [](float x, float) { return std::copysign(0.0f, x); });
}
inline TLanes flip(const TLanes& a, const TLanes& sign) {
  return each_Lane(a, sign, [](float x, float s) { return std::signbit(s) ? -x : x; });
}

#endif

}  // namespace undercut
