#include "mesh/sight.h"

#include "foundation/parallel.h"

namespace undercut {

namespace {

uint8_t see_Tri(const C3DTriAABBTree& obstacle, const TRayStarts& starts, const T3DVEC& direction,
                Ways ways, uint32_t t) {
  const T3DFAC f = get_Fac(starts.msh, t);
  if (is_Flat(f)) return kNoRay;
  const T3DVEC n = starts.nml ? starts.nml[t] : nml_Tri(f);
  const T3DVEC start = cen_Tri(f) + starts.lift * n;
  uint8_t seen = 0;
  if (!obstacle.AnyHit({start, direction})) seen |= kSeesAhead;
  if (ways == Ways::kBoth && !obstacle.AnyHit({start, -direction})) seen |= kSeesBehind;
  return seen;
}

}  // namespace

void see_Along(const C3DTriAABBTree& obstacle, const TRayStarts& starts, const T3DVEC& direction,
               Ways ways, const uint32_t* list, uint32_t count, uint8_t* sight) {
  each_Index(count, [&](uint32_t i) {
    sight[i] = see_Tri(obstacle, starts, direction, ways, list ? list[i] : i);
  });
}

}  // namespace undercut
