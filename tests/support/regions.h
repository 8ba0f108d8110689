// Regions set up by hand over flat meshes that are seen from +Z, where every triangle is acceptable
// to every region that touches it.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/stages.h"

namespace undercut::tests {

inline CDcmPar open_Par() {
  CDcmPar par;
  par.n_con = 0;
  par.b_ini = 1;
  par.T_win = 80;
  return par;
}

// Puts the triangles into a new region whose axis is +Z, with all measures.
inline CUcA* settle_Open(TRig& rig, int32_t id, const std::vector<uint32_t>& triangles) {
  CUcA* region = rig.world.settle(id, triangles);
  region->band = 0;
  region->polar0 = region->azimuth0 = 0;
  region->measures.polar_low = 0;
  region->measures.polar_high = 180;
  region->measures.axis = {0, 0, 1};
  rcalc_Uca(rig.map(), *region);
  return region;
}

inline std::vector<uint32_t> list_Cnd(const CUcA& region) {
  std::vector<uint32_t> list;
  for (const auto& [triangle, cost] : region.candidates) list.push_back(triangle);
  return list;
}

// What a candidate costs; not a number for one that is none.
inline double cost_Cnd(const CUcA& region, uint32_t triangle) {
  const TUcPrice* price = region.candidates.find({triangle, 0});
  return price ? price->cost : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace undercut::tests
