// The flood over what a direction sees, breadth first.
#include "projection/rim_area.h"

namespace undercut {

namespace {

constexpr double kQuarterTurn = 1.5707963267948966;

// The ray of a triangle without equal corners, and its unit normal.
struct TSightRay {
  T3DRAY ray;
  T3DVEC normal;
};

TSightRay lift_Ray(const TRimFlood& flood, const T3DFAC& f) {
  const T3DVEC n = nml_Tri(f);
  return {{cen_Tri(f) + flood.lift * n, flood.direction}, n};
}

bool joins(const TRimFlood& flood, const C3DTriAABBTree& tree, uint32_t t) {
  const T3DFAC f = get_Fac(flood.msh, t);
  if (is_Flat(f)) return true;
  const TSightRay sight = lift_Ray(flood, f);
  if (tree.AnyHit(sight.ray)) return false;
  // The cosine of a quarter turn is not 0 but 6e-17: a wall that is upright to the last bit faces
  // away.
  return !(dot(sight.normal, flood.direction) < std::cos(kQuarterTurn));
}

bool push(TLst<uint32_t>& queue, uint32_t t) {
  if (queue.count >= queue.capacity) return false;
  queue.data[queue.count++] = t;
  return true;
}

}  // namespace

int32_t flood_Rim(const TRimFlood& flood, const C3DTriAABBTree& tree, const TAdj& tri_tri,
                  CBitVector& open, CBitVector& area, TLst<uint32_t>& queue) {
  const T3DFAC start = get_Fac(flood.msh, flood.start);
  if (is_Flat(start)) return -16;
  // Of the start only the ray is asked: it may face away.
  if (tree.AnyHit(lift_Ray(flood, start).ray)) return -17;
  if (!area.set(flood.start)) return -18;
  if (!open.clear(flood.start)) return -19;
  queue.count = 0;
  if (!push(queue, flood.start)) return -20;
  for (uint32_t front = 0; front < queue.count; ++front) {
    const uint32_t t = queue.data[front];
    for (uint32_t i = 0; i < tri_tri.counts[t]; ++i) {
      const uint32_t u = tri_tri.lists[t][i];
      if (!open.test(u)) continue;
      // Before its ray, so that a blocked one is not tried again from another side.
      open.clear(u);
      if (!joins(flood, tree, u)) continue;
      if (!area.set(u)) return -23;
      if (!push(queue, u)) return -24;
    }
  }
  return 0;
}

}  // namespace undercut
