// Sets every parameter to its default through its setter.
#pragma once

#include <undercut/exports.h>

namespace defaults {

inline void set(int32_t (*setter)(const int32_t*), int32_t value) { setter(&value); }
inline void set(int32_t (*setter)(const uint32_t*), uint32_t value) { setter(&value); }
inline void set(int32_t (*setter)(const uint8_t*), uint8_t value) { setter(&value); }
inline void set(int32_t (*setter)(const double*), double value) { setter(&value); }
inline void set(int32_t (*setter)(const char*), const char* value) { setter(value); }
struct TBox {
  double values[4];
};
inline void set(int32_t (*setter)(const double*), const TBox& box) { setter(box.values); }

inline void restore() {
#define UNDERCUT_BOX(a, b, c, d) \
  TBox {                         \
    { a, b, c, d }               \
  }
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) set(setter, value);
#include <undercut/interface/setters.def>
#undef UNDERCUT_SETTER
#undef UNDERCUT_BOX
}

}  // namespace defaults
