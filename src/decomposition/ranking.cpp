// Ranking: each region that is not fixed gets as candidates every triangle of its frontier, whoever
// holds it, and a rank. Locks are not asked here; balancing heeds them when it takes.
#include <cmath>

#include "decomposition/stage.h"

namespace undercut {

namespace {

constexpr double kPi = 3.141592653589793;

}  // namespace

bool cost_Uca(const TUcRank& context, double& rank) {
  if (!context.region || !context.map) return false;
  const TUcMeasures& m = context.region->measures;
  const double size = 1 - m.area / context.map->roi_area;
  const double radius = std::sqrt(m.area / kPi);
  const double shape = 1 - 6.283185307179586 * radius / m.perimeter;
  rank = -(context.area_weight * size + context.shape_weight * shape);
  return true;
}

bool rank_Regions(TUcStage& stage) {
  CMap& map = stage.map;
  map.turns.clear();
  map.ranks.clear();
  std::vector<TUcRef> regions;
  if (!map.get_Ucs(regions, false)) return false;
  for (const TUcRef& ref : regions) {
    CUcA* region = ref.region;
    region->clr_Sets();
    if (ref.id == 0 || region->fixed) continue;
    map.fill_Frontier(*region);
    for (const uint32_t triangle : region->boundary)
      if (!want_Tri(stage.cnd, region, triangle)) return false;
    stage.rnk.region = region;
    double rank;
    if (!cost_Uca(stage.rnk, rank)) return false;
    if (!map.add_Rnk(ref.id, rank) || !map.add_Rnq(rank, ref.id, region)) return false;
    region->rank = rank;
  }
  return true;
}

}  // namespace undercut
