// Each corner of a triangle moved along its own ray from the centroid.
#include "mesh/shrink.h"

#include "foundation/parallel.h"

namespace undercut {

namespace {

// Where a corner goes. One that lies on the centroid has no ray to go along, and stays.
T3DVEC move_Corner(const T3DVEC& centroid, const T3DVEC& corner, double distance) {
  const double length = len(corner - centroid);
  if (-length > distance) return centroid;
  if (length == 0.0) return corner;
  const double factor = 1.0 + distance / length;
  return (1.0 - factor) * centroid + factor * corner;
}

}  // namespace

bool tri_Shrink(const T3DMSH& msh, double distance, T3DMSH& out) {
  out = {};
  Scoped<T3DMSH> soup;
  if (!is_Usable(msh) || msh.n_tri > UINT32_MAX / 3 || !alloc_Msh(*soup, 3 * msh.n_tri, msh.n_tri))
    return false;
  each_Index(msh.n_tri, [&](uint32_t t) {
    const T3DFAC f = get_Fac(msh, t);
    const T3DVEC centroid = cen_Tri(f);
    soup->vtx[3 * t] = move_Corner(centroid, f.a, distance);
    soup->vtx[3 * t + 1] = move_Corner(centroid, f.b, distance);
    soup->vtx[3 * t + 2] = move_Corner(centroid, f.c, distance);
    soup->tri[t] = {3 * t, 3 * t + 1, 3 * t + 2};
  });
  out = soup.take();
  return true;
}

}  // namespace undercut
