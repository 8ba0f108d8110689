// The starts of rays one at a time, and four at a time with the same operations in the same order.
#include "mesh/ray_starts.h"

#include "mesh/avx2.h"

namespace undercut {

bool start_Ray(const TRayStarts& starts, uint32_t t, T3DVEC& org) {
  const T3DFAC f = get_Fac(starts.msh, t);
  if (is_Flat(f)) {
    org = {};
    return false;
  }
  const T3DVEC n = starts.nml ? starts.nml[t] : nml_Tri(f);
  org = cen_Tri(f) + starts.lift * n;
  return true;
}

TPointRange start_Each(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                       uint8_t* no_ray) {
  TPointRange all;
  for (uint32_t t = first; t < end; ++t) {
    T3DVEC& org = orgs[t];
    const bool is_ray = start_Ray(starts, t, org);
    no_ray[t] = is_ray ? 0 : kNoRay;
    if (is_ray) all.add(org);
  }
  return all;
}

#ifdef UNDERCUT_AVX2

UNDERCUT_BEGIN_AVX2
namespace {

constexpr uint32_t kFour = 4;

using V = __m256d;

[[gnu::always_inline]] inline V fill(double x) { return _mm256_set1_pd(x); }
[[gnu::always_inline]] inline V add(V a, V b) { return _mm256_add_pd(a, b); }
[[gnu::always_inline]] inline V sub(V a, V b) { return _mm256_sub_pd(a, b); }
[[gnu::always_inline]] inline V mul(V a, V b) { return _mm256_mul_pd(a, b); }
[[gnu::always_inline]] inline V div(V a, V b) { return _mm256_div_pd(a, b); }
[[gnu::always_inline]] inline V equal(V a, V b) { return _mm256_cmp_pd(a, b, _CMP_EQ_OQ); }
[[gnu::always_inline]] inline V both(V a, V b) { return _mm256_and_pd(a, b); }
[[gnu::always_inline]] inline V either(V a, V b) { return _mm256_or_pd(a, b); }
[[gnu::always_inline]] inline V choose(V m, V set, V unset) {
  return _mm256_blendv_pd(unset, set, m);
}

// Four vectors.
struct TVec4 {
  V x, y, z;
};

[[gnu::always_inline]] inline TVec4 add(const TVec4& a, const TVec4& b) {
  return {add(a.x, b.x), add(a.y, b.y), add(a.z, b.z)};
}
[[gnu::always_inline]] inline TVec4 sub(const TVec4& a, const TVec4& b) {
  return {sub(a.x, b.x), sub(a.y, b.y), sub(a.z, b.z)};
}
[[gnu::always_inline]] inline TVec4 div(const TVec4& a, V s) {
  return {div(a.x, s), div(a.y, s), div(a.z, s)};
}
[[gnu::always_inline]] inline V equal(const TVec4& a, const TVec4& b) {
  return both(both(equal(a.x, b.x), equal(a.y, b.y)), equal(a.z, b.z));
}

[[gnu::always_inline]] inline TVec4 load(const T3DVEC* const* from) {
  return {_mm256_setr_pd(from[0]->x, from[1]->x, from[2]->x, from[3]->x),
          _mm256_setr_pd(from[0]->y, from[1]->y, from[2]->y, from[3]->y),
          _mm256_setr_pd(from[0]->z, from[1]->z, from[2]->z, from[3]->z)};
}

template <uint32_t T3DTRI::*kCorner>
[[gnu::always_inline]] inline TVec4 get_Corner(const T3DMSH& msh, uint32_t first) {
  const T3DVEC* corners[kFour];
  for (uint32_t k = 0; k < kFour; ++k) corners[k] = &msh.vtx[msh.tri[first + k].*kCorner];
  return load(corners);
}

// A zero vector stays zero.
[[gnu::always_inline]] inline TVec4 unit(const TVec4& a) {
  const V length = _mm256_sqrt_pd(add(add(mul(a.x, a.x), mul(a.y, a.y)), mul(a.z, a.z)));
  const V none = equal(length, fill(0.0));
  const TVec4 n = div(a, length);
  return {choose(none, a.x, n.x), choose(none, a.y, n.y), choose(none, a.z, n.z)};
}

[[gnu::always_inline]] inline TVec4 get_Normal(const TVec4& a, const TVec4& b, const TVec4& c) {
  const TVec4 u = sub(b, a), v = sub(c, a);
  return unit({sub(mul(u.y, v.z), mul(u.z, v.y)), sub(mul(u.z, v.x), mul(u.x, v.z)),
               sub(mul(u.x, v.y), mul(u.y, v.x))});
}

[[gnu::always_inline]] inline void store(const TVec4& a, T3DVEC* out) {
  alignas(32) double x[kFour], y[kFour], z[kFour];
  _mm256_store_pd(x, a.x);
  _mm256_store_pd(y, a.y);
  _mm256_store_pd(z, a.z);
  for (uint32_t k = 0; k < kFour; ++k) out[k] = {x[k], y[k], z[k]};
}

// The least and the greatest of what was added; what is left out is told by a mask.
struct TRanges4 {
  V low, high;
  V off;  // not finite: a number less itself is 0, but for these
};

[[gnu::always_inline]] inline void add_But(V out, V a, TRanges4& to) {
  to.low = _mm256_min_pd(choose(out, to.low, a), to.low);
  to.high = _mm256_max_pd(choose(out, to.high, a), to.high);
  const V is_off = _mm256_cmp_pd(sub(a, a), fill(0.0), _CMP_NEQ_UQ);
  to.off = either(to.off, is_off);
}

[[gnu::always_inline]] inline double least(V a) {
  const __m128d two = _mm_min_pd(_mm256_castpd256_pd128(a), _mm256_extractf128_pd(a, 1));
  return _mm_cvtsd_f64(_mm_min_sd(two, _mm_unpackhi_pd(two, two)));
}

// Plain numbers: nothing that is compiled elsewhere too may be compiled here.
struct TRanges {
  double low[3], high[3];
  bool is_finite;
  uint32_t end;  // the first triangle that is left
};

TRanges start_Four(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                   uint8_t* no_ray) {
  TRanges4 x = {fill(kAbsent), fill(-kAbsent), fill(0.0)}, y = x, z = x;
  uint32_t t = first;
  for (; t + kFour <= end; t += kFour) {
    const TVec4 a = get_Corner<&T3DTRI::a>(starts.msh, t),
                b = get_Corner<&T3DTRI::b>(starts.msh, t);
    const TVec4 c = get_Corner<&T3DTRI::c>(starts.msh, t);
    const V flat = either(either(equal(a, b), equal(b, c)), equal(c, a));
    TVec4 n;
    if (starts.nml) {
      const T3DVEC* normals[kFour];
      for (uint32_t k = 0; k < kFour; ++k) normals[k] = &starts.nml[t + k];
      n = load(normals);
    } else {
      n = get_Normal(a, b, c);
    }
    const V lift = fill(starts.lift);
    TVec4 org = add(div(add(add(a, b), c), fill(3.0)),
                    TVec4{mul(lift, n.x), mul(lift, n.y), mul(lift, n.z)});
    org = {_mm256_andnot_pd(flat, org.x), _mm256_andnot_pd(flat, org.y),
           _mm256_andnot_pd(flat, org.z)};
    add_But(flat, org.x, x);
    add_But(flat, org.y, y);
    add_But(flat, org.z, z);
    store(org, orgs + t);
    const auto none = static_cast<uint32_t>(_mm256_movemask_pd(flat));
    for (uint32_t k = 0; k < kFour; ++k)
      no_ray[t + k] = static_cast<uint8_t>((none >> k & 1u) * kNoRay);
  }
  const V minus = fill(-0.0);
  return {{least(x.low), least(y.low), least(z.low)},
          {-least(_mm256_xor_pd(x.high, minus)), -least(_mm256_xor_pd(y.high, minus)),
           -least(_mm256_xor_pd(z.high, minus))},
          _mm256_movemask_pd(either(either(x.off, y.off), z.off)) == 0,
          t};
}

}  // namespace
UNDERCUT_END_AVX2

TPointRange start_Rays(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                       uint8_t* no_ray) {
  if (!has_Avx2()) return start_Each(starts, first, end, orgs, no_ray);
  const TRanges four = start_Four(starts, first, end, orgs, no_ray);
  TPointRange all = start_Each(starts, four.end, end, orgs, no_ray);
  TPointRange range;
  range.is_finite = four.is_finite;
  range.box.min = {four.low[0], four.low[1], four.low[2]};
  range.box.max = {four.high[0], four.high[1], four.high[2]};
  all.merge(range);
  return all;
}

#else

TPointRange start_Rays(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                       uint8_t* no_ray) {
  return start_Each(starts, first, end, orgs, no_ray);
}

#endif

}  // namespace undercut
