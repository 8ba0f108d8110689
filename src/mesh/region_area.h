// The area of a list of triangles.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// In the square of the mesh's unit, summed up in the order of the list. The indices must be in
// range. A triangle that is listed twice counts twice.
inline double reg_Area(const T3DMSH& msh, const TLst<uint32_t>& lst) {
  double area = 0.0;
  for (uint32_t i = 0; lst.data && i < lst.count; ++i) area += area_Tri(get_Fac(msh, lst.data[i]));
  return area;
}

}  // namespace undercut
