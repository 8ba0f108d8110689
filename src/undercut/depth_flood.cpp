#include "undercut/depth_flood.h"

#include <cstdio>

namespace undercut {

namespace {

// No set bit is out of range and a triangle waits in the queue once, so none of these comes about
// with sets and pools of the mesh's size.
constexpr int32_t kSeedKept = -1, kSeedNotPushed = -2, kNotPopped = -3, kKept = -4, kNotPushed = -5;

double ask_Rim(CRim& rim, const C2DCIRC& circle) {
  const double distance = rim.ask_Near(circle);
  if (distance == kAbsent) std::fputs("rho==+DBL_MAX\n", stderr);
  return distance;
}

int32_t spread(const TFlood& flood, CRim& rim) {
  while (!flood.queue.is_Empty()) {
    uint32_t t = kNone;
    if (!flood.queue.pop(t)) return kNotPopped;
    const T2DVEC p = get_Place(flood.msh, flood.frm, t);
    for (uint32_t i = 0; i < flood.tri_tri.counts[t]; ++i) {
      const uint32_t n = flood.tri_tri.lists[t][i];
      if (!flood.waiting.test(n)) continue;
      const T2DVEC q = get_Place(flood.msh, flood.frm, n);
      flood.rho[n] = ask_Rim(rim, {q, flood.rho[t] + dst(p, q) + flood.slack});
      if (!flood.waiting.clear(n)) return kKept;
      if (!flood.queue.push(n)) return kNotPushed;
    }
  }
  return 0;
}

}  // namespace

T2DVEC get_Place(const T3DMSH& msh, const T3DFRM& frm, uint32_t t) {
  const T3DVEC p = to_Local(frm, cen_Tri(get_Fac(msh, t)));
  return {p.x, p.y};
}

int32_t flood_Depth(const TFlood& flood, CRim& rim, const TLst<uint32_t>& list) {
  for (uint32_t i = 0; i < list.count; ++i) {
    const uint32_t seed = list.data[i];
    if (!flood.waiting.test(seed)) continue;
    flood.rho[seed] = rim.walk_All(get_Place(flood.msh, flood.frm, seed));
    if (!flood.waiting.clear(seed)) return kSeedKept;
    if (!flood.queue.push(seed)) return kSeedNotPushed;
    if (const int32_t code = spread(flood, rim)) return code;
  }
  return 0;
}

}  // namespace undercut
