// Forward growth: a greedy best-first flood over the edge adjacency, region after region.
//
// The seed list is walked from the best seed down. A seed that is still free becomes a region,
// which takes free neighbours, cheapest candidate first, for as long as any passes the acceptance
// test. A later region can only have what earlier ones left.
//
// A region that would grow as in the pass before is not grown again, see growth_notes.h.
#include <cmath>
#include <memory>

#include "decomposition/growth_notes.h"
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

// One growth over the free triangles of the map.
class CGrowth {
 public:
  CGrowth(TUcStage& stage, CUcA& free_region) : stage_(stage), free_(free_region) {
    // A file after each step shows the map on the way. And where a weight is no finite number, a
    // held neighbour of a seed can fail the stage that a free one would not.
    if (!stage.files.writes_Fwd() && std::isfinite(stage.cnd.weights[4])) notes_ = stage.notes;
    if (notes_) notes_->begin();
  }

  // `full` tells that the seed was the last free triangle.
  bool grow_One(int32_t id, uint32_t triangle, int32_t band, bool& full);

 private:
  bool seed_Candidates(CUcA* region, const TUcMove& move);
  bool take_Tri(CUcA* region, uint32_t triangle);
  bool flood_Region(CUcA* region);
  void count_Step() {
    ++stage_.step;
    pgr_Stp(stage_.step);
  }

  TUcStage& stage_;
  CUcA& free_;
  CGrowthNotes* notes_ = nullptr;
};

// The neighbours of a seed become candidates. None can be one yet, and none can touch the region by
// another edge: a neighbour that stands in two slots of the seed fails the stage.
bool CGrowth::seed_Candidates(CUcA* region, const TUcMove& move) {
  for (size_t k = 1; k < 4; ++k) {
    if (move.triangles[k] == -1) continue;
    const auto nb = static_cast<uint32_t>(move.triangles[k]);
    const char flag = move.to_flags[k];
    if (flag == '-' || flag == 'u') return false;
    if (flag != '+') continue;
    if (region->has_Cnd(nb) || !want_Tri(stage_.cnd, region, nb)) return false;
  }
  return true;
}

// One triangle joins; its neighbours gain, lose or renew their candidacy.
bool CGrowth::take_Tri(CUcA* region, uint32_t triangle) {
  TUcMove move;
  if (!stage_.map.classify_Move(triangle, region->id, move)) return false;
  if (!stage_.map.pass_Tri(triangle, &free_, region)) return false;
  for (size_t k = 1; k < 4; ++k) {
    if (move.triangles[k] == -1) continue;
    const auto nb = static_cast<uint32_t>(move.triangles[k]);
    const bool open = stage_.map.region_of[nb] == 0;
    if (!heed_Flag(stage_.cnd, region, nb, move.to_flags[k], open)) return false;
  }
  stage_.rnk.region = region;
  if (!upd_Add(stage_.rnk, triangle)) return false;
  stage_.files.step_Fwd(stage_.step, *region, triangle);
  count_Step();
  return true;
}

bool CGrowth::flood_Region(CUcA* region) {
  double cost, same;
  uint32_t triangle;
  while (region->pop_Que(cost, triangle)) {
    if (!region->pop_Cnd(triangle, same) || same != cost) return false;
    if (stage_.map.region_of[triangle] != 0) continue;
    stage_.cnd.region = region;
    stage_.cnd.triangle = triangle;
    // The axis may have moved since the triangle became a candidate.
    if (!test_Cand(stage_.cnd)) continue;
    if (!take_Tri(region, triangle)) return false;
  }
  region->clr_Sets();
  return true;
}

bool CGrowth::grow_One(int32_t id, uint32_t triangle, int32_t band, bool& full) {
  auto fresh = std::make_unique<CUcA>(id);
  CUcA* region = fresh.get();
  if (!stage_.map.add_Uca(region)) return false;
  fresh.release();
  if (notes_ && notes_->replay(stage_.map, free_, *region, triangle)) {
    for (uint32_t i = 1; i < region->count; ++i) count_Step();
    return true;
  }
  seed_Measures(stage_.map, *region, get_Fac(stage_.map.msh, triangle), band);
  TUcMove move;
  if (!stage_.map.classify_Move(triangle, id, move)) return false;
  if (!stage_.map.pass_Tri(triangle, &free_, region)) return false;
  full = free_.count == 0;
  if (full) return true;
  if (!seed_Candidates(region, move) || !flood_Region(region)) return false;
  if (notes_) notes_->note(stage_.map, *region, triangle);
  return true;
}

}  // namespace

bool grow_Regions(TUcStage& stage) {
  stage.step = 0;
  CUcA* free_region = stage.map.get_Uca(0);
  if (!free_region) return false;
  CGrowth growth(stage, *free_region);
  int32_t id = stage.map.max_Id() + 1;
  for (const TUcSeed& seed : stage.seeds) {
    if (seed.key == 0.0) break;
    const uint32_t triangle = stage.roi.data[seed.index];
    if (stage.map.region_of[triangle] != 0) continue;
    bool full = false;
    if (!growth.grow_One(id, triangle, seed.band, full)) return false;
    if (full) break;
    ++id;
  }
  return true;
}

}  // namespace undercut
