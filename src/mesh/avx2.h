// Where the library may choose AVX2 at run time, and how functions are compiled for it.
//
// The sanitizers run the portable forms: UNDERCUT_AVX2 is not defined for them. Functions between
// UNDERCUT_BEGIN_AVX2 and UNDERCUT_END_AVX2 may use AVX2 and FMA, and may be called only where
// has_Avx2() is true. Nothing there may call an inline function that is compiled elsewhere too and
// isn't sure to be inlined.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define UNDERCUT_AVX2 1
#endif
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#undef UNDERCUT_AVX2
#endif
#endif

#ifdef UNDERCUT_AVX2

#include <immintrin.h>

#if defined(__clang__)
// clang-format off
#define UNDERCUT_BEGIN_AVX2 \
  _Pragma("clang attribute push(__attribute__((target(\"avx2,fma,popcnt\"))), apply_to = function)")
// clang-format on
#define UNDERCUT_END_AVX2 _Pragma("clang attribute pop")
#else
#define UNDERCUT_BEGIN_AVX2 _Pragma("GCC push_options") _Pragma("GCC target(\"avx2,fma,popcnt\")")
#define UNDERCUT_END_AVX2 _Pragma("GCC pop_options")
#endif

namespace undercut {

inline bool has_Avx2() {
  static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  return has;
}

}  // namespace undercut

#endif
