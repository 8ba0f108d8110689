#include "decomposition/seeds.h"

#include <cmath>

#include "decomposition/measures.h"
#include "foundation/sort_key.h"

namespace undercut {

namespace {

// Of two bounds the one nearer to 90 degrees, the upper on a tie: the most tilted axis of the band.
double tilted_Bound(const TUcBand& band) {
  return std::fabs(90 - band.high) <= std::fabs(90 - band.low) ? band.high : band.low;
}

void score_Seed(const CMap& map, const C3DTriAABBTree& tree, double lift, const T3DFAC& f,
                TUcSeed& seed) {
  const double area = area_Tri(f);
  const T3DVEC n = nml_Tri(f);
  const T3DVEC m = cen_Tri(f) + lift * n;
  double azimuth = car_ToSph(n).y;
  if (!map.b_5ax) azimuth = snap_Azimuth(map, azimuth);
  double best = 0;
  for (size_t k = 0; k < map.bands.size(); ++k) {
    const T3DVEC d = sph_ToCar(tilted_Bound(map.bands[k]), azimuth);
    if (tree.AnyHit({m, d})) continue;
    const double share = area_Tri(prj_Tri(f, d, m)) / area;
    if (share > best) {
      best = share;
      seed.band = static_cast<int32_t>(k);
    }
  }
  seed.key = -best;
}

}  // namespace

void calc_Seeds(const CMap& map, const TArr<uint32_t>& roi, const C3DTriAABBTree& tree, double lift,
                std::vector<TUcSeed>& seeds) {
  seeds.assign(roi.count, {});
  for (uint32_t i = 0; i < roi.count; ++i) {
    seeds[i].index = i;
    const T3DFAC f = get_Fac(map.msh, roi.data[i]);
    if (!is_Flat(f)) score_Seed(map, tree, lift, f, seeds[i]);
  }
  sort_Key(seeds.data(), 0, static_cast<int64_t>(roi.count) - 1,
           [](const TUcSeed& seed) { return seed.key; });
}

}  // namespace undercut
