// The end of a pass: survivors are fixed, and what stayed free is made ready for the next pass.
#include "decomposition/stage.h"

namespace undercut {

bool fix_Regions(CMap& map) {
  std::vector<TUcRef> regions;
  if (!map.get_Ucs(regions, false)) return false;
  for (const TUcRef& ref : regions) {
    for (int32_t t = ref.region->head; t != -1; t = map.next_Tri(t)) {
      const auto triangle = static_cast<uint32_t>(t);
      if (!(ref.id == 0 ? map.clr_Lck(triangle) : map.set_Lck(triangle))) return false;
    }
    ref.region->fixed = ref.id != 0;
  }
  return true;
}

void keep_Seeds(const CMap& map, TLst<uint32_t>& roi, std::vector<TUcSeed>& seeds) {
  uint32_t kept = 0;
  for (const TUcSeed& seed : seeds) {
    const uint32_t t = roi.data[seed.index];
    if (map.region_of[t] != 0 || map.get_Lck(t) || seed.key == 0.0) continue;
    seeds[kept] = seed;
    seeds[kept].index = t;  // its triangle, until the list is rewritten below
    ++kept;
  }
  seeds.resize(kept);
  for (uint32_t j = 0; j < kept; ++j) {
    roi.data[j] = seeds[j].index;
    seeds[j].index = j;
  }
  roi.count = kept;
}

bool renew_Free(CMap& map) {
  CUcA* free_region = map.get_Uca(0);
  if (!free_region) return false;
  free_region->clr_Sets();
  map.fill_Frontier(*free_region);
  double area = 0;
  for (int32_t t = free_region->head; t != -1; t = map.next_Tri(t))
    area += area_Tri(get_Fac(map.msh, static_cast<uint32_t>(t)));
  free_region->measures.area = area;
  return true;
}

}  // namespace undercut
