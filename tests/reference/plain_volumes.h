// A cylinder against a box, by all its tests: the faces, then the edges.
#pragma once

#include "foundation/primitives.h"

namespace reference {

inline bool hit_CylBox(const undercut::T3DCYL& cylinder, const undercut::C3DAABB& box) {
  const T3DVEC &org = cylinder.frm.org, &z = cylinder.frm.z;
  if (undercut::hit_BoxX({org, z}, box) || undercut::hit_BoxX({org, -z}, box)) return true;
  T3DVEC corners[8];
  box.corners(corners);
  // Corners of an edge differ along one axis.
  for (int i = 0; i < 8; ++i)
    for (int k = i + 1; k < 8; ++k) {
      const T3DVEC &a = corners[i], &b = corners[k];
      const int level = i / 4 == k / 4 ? (k - i == 2 ? 2 : 1) : (k - i == 4 ? 1 : 2);
      if (level == 1 && undercut::dst_LineSeg({org, z}, a, b) <= cylinder.radius) return true;
    }
  return false;
}

}  // namespace reference
