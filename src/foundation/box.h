// Axis-aligned boxes in space and in the plane.
#pragma once

#include <cmath>

#include "foundation/values.h"

namespace undercut {

// An empty box is inverted, so that merging anything into it yields that thing. Coordinates that
// are not a number leave a box as it is.
class C3DAABB {
 public:
  T3DVEC min, max;

  C3DAABB() { reset(); }

  void reset() {
    min = {kAbsent, kAbsent, kAbsent};
    max = {-kAbsent, -kAbsent, -kAbsent};
  }
  void add(const T3DVEC& p) {
    if (p.x < min.x) min.x = p.x;
    if (p.y < min.y) min.y = p.y;
    if (p.z < min.z) min.z = p.z;
    if (p.x > max.x) max.x = p.x;
    if (p.y > max.y) max.y = p.y;
    if (p.z > max.z) max.z = p.z;
  }
  void from_Points(const T3DVEC* points, uint32_t count);
  void from_Points(const T3DVEC* points, uint32_t count, const T3DFRM& frm);
  void from_Tri(const T3DFAC& f) {
    reset();
    add(f.a);
    add(f.b);
    add(f.c);
  }
  void merge(const C3DAABB& other) {
    if (other.min.x < min.x) min.x = other.min.x;
    if (other.min.y < min.y) min.y = other.min.y;
    if (other.min.z < min.z) min.z = other.min.z;
    if (other.max.x > max.x) max.x = other.max.x;
    if (other.max.y > max.y) max.y = other.max.y;
    if (other.max.z > max.z) max.z = other.max.z;
  }
  // Along some axis nothing was added that is a number.
  bool is_Inverted() const { return !(min.x <= max.x && min.y <= max.y && min.z <= max.z); }
  T3DVEC centre() const { return 0.5 * (min + max); }
  T3DVEC size() const { return max - min; }
  // 'x', 'y' or 'z'; a tie goes to the later axis, so a cube gives z. The shape of every tree, and
  // with it the order of its answers, hangs on that.
  char longest() const;
  // Bottom counter-clockwise from min, then top likewise.
  void corners(T3DVEC out[8]) const;
};

class C2DAABB {
 public:
  T2DVEC min, max;

  C2DAABB() { reset(); }

  void reset() {
    min = {kAbsent, kAbsent};
    max = {-kAbsent, -kAbsent};
  }
  void add(const T2DVEC& p) {
    if (p.x < min.x) min.x = p.x;
    if (p.y < min.y) min.y = p.y;
    if (p.x > max.x) max.x = p.x;
    if (p.y > max.y) max.y = p.y;
  }
  void merge(const C2DAABB& other) {
    if (other.min.x < min.x) min.x = other.min.x;
    if (other.min.y < min.y) min.y = other.min.y;
    if (other.max.x > max.x) max.x = other.max.x;
    if (other.max.y > max.y) max.y = other.max.y;
  }
  T2DVEC centre() const { return 0.5 * (min + max); }
  T2DVEC size() const { return max - min; }
  // 'x' or 'y'; a tie goes to x, unlike in space.
  char longest() const {
    const T2DVEC e = size();
    return std::fabs(e.x) >= std::fabs(e.y) ? 'x' : 'y';
  }
};

}  // namespace undercut
