// Where the library may choose AVX-512 at run time; see avx2.h for the rules.
#pragma once

#include "mesh/avx2.h"

#ifdef UNDERCUT_AVX2

#define UNDERCUT_AVX512 1

#if defined(__clang__)
// clang-format off
#define UNDERCUT_BEGIN_AVX512 \
  _Pragma("clang attribute push(__attribute__((target(\"avx512f,avx512vl,avx2,fma,popcnt\"))), apply_to = function)")
// clang-format on
#define UNDERCUT_END_AVX512 _Pragma("clang attribute pop")
#else
#define UNDERCUT_BEGIN_AVX512 \
  _Pragma("GCC push_options") _Pragma("GCC target(\"avx512f,avx512vl,avx2,fma,popcnt\")")
#define UNDERCUT_END_AVX512 _Pragma("GCC pop_options")
#endif

namespace undercut {

inline bool has_Avx512() {
  static const bool has =
      has_Avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl");
  return has;
}

}  // namespace undercut

#endif
