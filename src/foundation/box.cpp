// Boxes of point sets, and what the trees read off a box.
#include "foundation/box.h"

namespace undercut {

void C3DAABB::from_Points(const T3DVEC* points, uint32_t count) {
  reset();
  for (uint32_t i = 0; points && i < count; ++i) add(points[i]);
}

void C3DAABB::from_Points(const T3DVEC* points, uint32_t count, const T3DFRM& frm) {
  reset();
  for (uint32_t i = 0; points && i < count; ++i) add(to_Local(frm, points[i]));
}

char C3DAABB::longest() const {
  const T3DVEC e = size();
  const double ex = std::fabs(e.x), ey = std::fabs(e.y), ez = std::fabs(e.z);
  char axis = 'x';  // extents that are not numbers pass no test
  if (ex >= ey && ex >= ez) axis = 'x';
  if (ey >= ex && ey >= ez) axis = 'y';
  if (ez >= ex && ez >= ey) axis = 'z';
  return axis;
}

void C3DAABB::corners(T3DVEC out[8]) const {
  for (int top = 0; top < 2; ++top) {
    const double z = top ? max.z : min.z;
    out[4 * top] = {min.x, min.y, z};
    out[4 * top + 1] = {max.x, min.y, z};
    out[4 * top + 2] = {max.x, max.y, z};
    out[4 * top + 3] = {min.x, max.y, z};
  }
}

}  // namespace undercut
