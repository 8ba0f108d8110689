// Forward growth: a greedy best-first flood over the edge adjacency, region after region.
//
// The seed list is walked from the best seed down. A seed that is still free becomes a region,
// which takes free neighbours, cheapest candidate first, for as long as any passes the acceptance
// test. A later region can only have what earlier ones left.
#include <memory>

#include "decomposition/stage.h"
#include "decomposition/stage_files.h"
#include "files/progress.h"

namespace undercut {

namespace {

// The measures of a region that is its seed alone.
void seed_Measures(const CMap& map, CUcA& region, const T3DFAC& f, int32_t band) {
  TUcMeasures& m = region.measures;
  const T3DVEC c = cen_Tri(f);
  m.area = m.normal_area = area_Tri(f);
  m.centroid = c;
  m.normal = nml_Tri(f);
  m.normal_frame = frm_Ray({c, m.normal});

  region.band = static_cast<uint32_t>(band);
  m.polar_low = map.bands[region.band].low;
  m.polar_high = map.bands[region.band].high;
  const T3DVEC s = car_ToSph(m.normal);
  double polar = s.x;
  if (polar < m.polar_low) polar = m.polar_low;
  if (polar > m.polar_high) polar = m.polar_high;
  region.polar0 = polar;
  region.azimuth0 = map.b_5ax ? s.y : snap_Azimuth(map, s.y);

  m.axis = sph_ToCar(region.polar0, region.azimuth0);
  m.axis_frame = frm_Ray({c, m.axis});
  const T3DFAC along = prj_Tri(f, m.axis, c);
  m.axis_area = area_Tri(along);
  m.axis_perimeter = rim_Tri(along);
  m.perimeter = m.normal_perimeter = rim_Tri(f);
  m.axis_ratio = m.axis_area / m.area;
  mom_Tri(to_Local(m.normal_frame, f), m.plane);
}

// The neighbours of a seed become candidates. None can be one yet, and none can touch the region by
// another edge: a neighbour that stands in two slots of the seed fails the stage.
bool seed_Candidates(TUcStage& stage, CUcA* region, const TUcMove& move) {
  for (size_t k = 1; k < 4; ++k) {
    if (move.triangles[k] == -1) continue;
    const auto nb = static_cast<uint32_t>(move.triangles[k]);
    const char flag = move.to_flags[k];
    if (flag == '-' || flag == 'u') return false;
    if (flag != '+') continue;
    if (region->has_Cnd(nb) || !want_Tri(stage.cnd, region, nb)) return false;
  }
  return true;
}

// One triangle joins; its neighbours gain, lose or renew their candidacy.
bool take_Tri(TUcStage& stage, CUcA* region, uint32_t triangle) {
  TUcMove move;
  TUcMoved moved;
  if (!stage.map.classify_Move(triangle, region->id, move)) return false;
  if (!stage.map.apply_Move(triangle, region->id, moved)) return false;
  for (size_t k = 1; k < 4; ++k) {
    if (move.triangles[k] == -1) continue;
    const auto nb = static_cast<uint32_t>(move.triangles[k]);
    const bool open = stage.map.region_of[nb] == 0;
    if (!heed_Flag(stage.cnd, region, nb, move.to_flags[k], open)) return false;
  }
  stage.rnk.region = region;
  if (!upd_Add(stage.rnk, triangle)) return false;
  stage.files.step_Fwd(stage.step, *region, triangle);
  ++stage.step;
  pgr_Stp(stage.step);
  return true;
}

bool flood_Region(TUcStage& stage, CUcA* region) {
  double cost, same;
  uint32_t triangle;
  while (region->pop_Que(cost, triangle)) {
    if (!region->pop_Cnd(triangle, same) || same != cost) return false;
    if (stage.map.region_of[triangle] != 0) continue;
    stage.cnd.region = region;
    stage.cnd.triangle = triangle;
    // The axis may have moved since the triangle became a candidate.
    if (!test_Cand(stage.cnd)) continue;
    if (!take_Tri(stage, region, triangle)) return false;
  }
  return true;
}

// `full` tells that the seed was the last free triangle.
bool grow_One(TUcStage& stage, int32_t id, uint32_t triangle, int32_t band, bool& full) {
  auto fresh = std::make_unique<CUcA>(id);
  CUcA* region = fresh.get();
  if (!stage.map.add_Uca(region)) return false;
  fresh.release();
  seed_Measures(stage.map, *region, get_Fac(stage.map.msh, triangle), band);
  TUcMove move;
  TUcMoved moved;
  if (!stage.map.classify_Move(triangle, id, move)) return false;
  if (!stage.map.apply_Move(triangle, id, moved)) return false;
  full = moved.source == 'r';
  if (full) return true;
  return seed_Candidates(stage, region, move) && flood_Region(stage, region);
}

}  // namespace

bool grow_Regions(TUcStage& stage) {
  stage.step = 0;
  if (stage.map.cnt_Uca() == 0 || !stage.map.get_Uca(0)) return false;
  int32_t id = stage.map.max_Id() + 1;
  for (const TUcSeed& seed : stage.seeds) {
    if (seed.key == 0.0) break;
    const uint32_t triangle = stage.roi.data[seed.index];
    if (stage.map.region_of[triangle] != 0) continue;
    bool full = false;
    if (!grow_One(stage, id, triangle, seed.band, full)) return false;
    if (full) break;
    ++id;
  }
  return true;
}

}  // namespace undercut
