#include "decomposition/growth_notes.h"

#include <algorithm>

namespace undercut {

namespace {

// A note takes some 500 bytes beside its lists; with fewer triangles it would outweigh them.
constexpr uint32_t kWorthNote = 16;

bool holds(const CMap& map, const std::vector<uint32_t>& free, const std::vector<uint32_t>& held) {
  const auto is_Free = [&](uint32_t t) { return map.region_of[t] == 0; };
  return std::all_of(free.begin(), free.end(), is_Free) &&
         std::none_of(held.begin(), held.end(), is_Free);
}

// Gathers in scratch B the triangles of other regions beside the region, each once.
void list_Walls(CMap& map, const CUcA& region) {
  TLst<uint32_t>& walls = map.scratch_b;
  walls.count = 0;
  map.mark.clear_All();
  for (int32_t t = region.head; t != -1; t = map.next_Tri(t))
    for (const int32_t nb : map.slots[static_cast<size_t>(t)]) {
      if (nb == -1 || map.region_of[nb] <= 0 || map.region_of[nb] == region.id) continue;
      const auto wall = static_cast<uint32_t>(nb);
      if (map.mark.test(wall)) continue;
      map.mark.set(wall);
      walls.data[walls.count++] = wall;
    }
}

}  // namespace

void CGrowthNotes::forget() {
  last_.clear();
  own_.clear();
}

void CGrowthNotes::begin() {
  last_ = std::move(own_);
  own_.clear();
  std::sort(last_.begin(), last_.end(),
            [](const TNote& a, const TNote& b) { return a.seed < b.seed; });
}

void CGrowthNotes::note(CMap& map, const CUcA& region, uint32_t seed) {
  if (region.count < kWorthNote) return;
  TNote note = {seed, {}, {}, region.band, region.polar0, region.azimuth0, region.measures};
  note.triangles.resize(region.count);
  size_t place = region.count;
  for (int32_t t = region.head; t != -1; t = map.next_Tri(t))
    note.triangles[--place] = static_cast<uint32_t>(t);
  list_Walls(map, region);
  note.walls.assign(map.scratch_b.data, map.scratch_b.data + map.scratch_b.count);
  own_.push_back(std::move(note));
  ++grown_;
}

CGrowthNotes::TNote* CGrowthNotes::find(uint32_t seed) {
  const auto found =
      std::lower_bound(last_.begin(), last_.end(), seed,
                       [](const TNote& note, uint32_t wanted) { return note.seed < wanted; });
  return found == last_.end() || found->seed != seed ? nullptr : &*found;
}

bool CGrowthNotes::replay(CMap& map, CUcA& free_region, CUcA& region, uint32_t seed) {
  TNote* found = find(seed);
  if (!found) return false;
  TNote& note = own_.emplace_back(std::move(*found));
  if (!holds(map, note.triangles, note.walls)) {
    own_.pop_back();
    return false;
  }
  for (const uint32_t t : note.triangles) map.pass_Tri(t, &free_region, &region);
  region.band = note.band;
  region.polar0 = note.polar;
  region.azimuth0 = note.azimuth;
  region.measures = note.measures;
  ++replayed_;
  return true;
}

}  // namespace undercut
