#include "ladder.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

namespace undercut::host {
namespace {

// Enough to come down to single triangles on parts of a million.
constexpr uint32_t kMostHalvings = 20;

// Tries of whole patches at each aperture, the user's first; meshes of more triangles than this get
// fewer.
constexpr uint32_t kTriesAtFirst = 10, kTriesLater = 4;
constexpr size_t kFullTries = 200000;

void note_Call(Climb& climb, const std::vector<Patch>& patches, const Rung& rung,
               const std::vector<Outcome>& outcomes) {
  std::vector<CallNote> notes;
  for (size_t i = 0; i < patches.size(); ++i) {
    const auto same = [&](const CallNote& n) { return n.roi == patches[i].roi; };
    auto note = std::find_if(notes.begin(), notes.end(), same);
    if (note == notes.end()) {
      notes.push_back({climb.calls, patches[i].roi, rung.aperture, rung.position, rung.tilt,
                       rung.keep_small, 0, 0, 0, 0, 0});
      note = std::prev(notes.end());
    }
    ++note->patches;
    note->failed += outcomes[i].first != 0 ? 1 : 0;
    note->triangles += patches[i].triangles.size();
    if (note->first == 0) {
      note->first = outcomes[i].first;
      note->second = outcomes[i].second;
    }
  }
  std::stable_sort(notes.begin(), notes.end(),
                   [](const CallNote& a, const CallNote& b) { return a.roi < b.roi; });
  climb.notes.insert(climb.notes.end(), notes.begin(), notes.end());
}

// A failed patch, taken to pieces.
struct Pieces {
  std::vector<uint32_t> settled;  // offered in the attempt that went through
  std::vector<uint32_t> let_go;   // dealt with in passes whose regions are lost
  std::vector<uint32_t> failed;
};

Pieces split_Failed(const Patch& patch, const Outcome& outcome) {
  std::vector<uint32_t> kept = outcome.rest;
  for (const FoundRegion& region : outcome.regions) {
    kept.insert(kept.end(), region.triangles.begin(), region.triangles.end());
  }
  std::sort(kept.begin(), kept.end());
  Pieces pieces;
  std::vector<uint32_t>& known = outcome.second == 0 ? pieces.settled : pieces.failed;
  for (const uint32_t triangle : patch.triangles) {
    const bool is_kept = std::binary_search(kept.begin(), kept.end(), triangle);
    (is_kept ? known : pieces.let_go).push_back(triangle);
  }
  return pieces;
}

// What is left to do on a rung, and what has to go on to the next one.
struct Trial {
  Rung rung;
  bool whole = false;  // a patch that fails goes on as it is
  std::vector<Patch> pending, failed;
};

void add_Patch(std::vector<Patch>& patches, const Patch& like, std::vector<uint32_t> triangles) {
  if (!triangles.empty()) patches.push_back({like.roi, like.halvings, std::move(triangles)});
}

void sort_Failed(Climb& climb, Trial& trial, const Patch& patch, Outcome& outcome) {
  if (trial.whole) {
    trial.failed.push_back(patch);
    return;
  }
  Pieces pieces = split_Failed(patch, outcome);
  const bool again = trial.rung.again && pieces.let_go.size() < patch.triangles.size();
  add_Patch(again ? trial.pending : trial.failed, patch, std::move(pieces.let_go));
  add_Patch(trial.failed, patch, std::move(pieces.failed));
  if (pieces.settled.empty()) return;
  climb.settled.push_back({{patch.roi, patch.halvings, std::move(pieces.settled)},
                           trial.rung.aperture,
                           std::move(outcome.regions)});
}

// Tries all patches on one rung; returns those that failed. What is offered again is fewer
// triangles each time, so this ends.
std::vector<Patch> try_Rung(Climb& climb, std::vector<Patch> patches, const Rung& rung, bool whole,
                            const Attempt& attempt) {
  Trial trial{rung, whole, std::move(patches), {}};
  while (!trial.pending.empty()) {
    const std::vector<Patch> offered = std::exchange(trial.pending, {});
    ++climb.calls;
    std::vector<Outcome> outcomes = attempt(offered, rung);
    note_Call(climb, offered, rung, outcomes);
    for (size_t i = 0; i < offered.size(); ++i) {
      if (outcomes[i].first == 0) {
        climb.settled.push_back({offered[i], rung.aperture, std::move(outcomes[i].regions)});
      } else {
        sort_Failed(climb, trial, offered[i], outcomes[i]);
      }
    }
  }
  return trial.failed;
}

double pick_Axis(const T3DVEC& v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

int find_LongestAxis(const Patch& patch, const std::vector<T3DVEC>& centres) {
  int longest = 0;
  double extent = -1.0;
  for (int axis = 0; axis < 3; ++axis) {
    double low = std::numeric_limits<double>::max();
    double high = -low;
    for (const uint32_t triangle : patch.triangles) {
      low = std::min(low, pick_Axis(centres[triangle], axis));
      high = std::max(high, pick_Axis(centres[triangle], axis));
    }
    if (high - low > extent) {
      extent = high - low;
      longest = axis;
    }
  }
  return longest;
}

// One patch for each region of interest: the triangles of settled patches that no region holds.
std::vector<Patch> list_Free(const Climb& climb) {
  std::map<uint32_t, std::set<uint32_t>> free;
  for (const Settled& settled : climb.settled) {
    free[settled.patch.roi].insert(settled.patch.triangles.begin(), settled.patch.triangles.end());
  }
  for (const Settled& settled : climb.settled) {
    for (const FoundRegion& region : settled.regions) {
      for (const uint32_t triangle : region.triangles) free[settled.patch.roi].erase(triangle);
    }
  }
  std::vector<Patch> patches;
  for (const auto& [roi, triangles] : free) {
    if (triangles.empty()) continue;
    patches.push_back({roi, 0, {triangles.begin(), triangles.end()}});
  }
  return patches;
}

// Of these patches those whose region of interest has no region.
std::vector<Patch> list_Bare(const Climb& climb, std::vector<Patch> patches) {
  std::set<uint32_t> found;
  for (const Settled& settled : climb.settled) {
    if (!settled.regions.empty()) found.insert(settled.patch.roi);
  }
  std::erase_if(patches, [&](const Patch& patch) { return found.contains(patch.roi); });
  return patches;
}

}  // namespace

LadderRules make_Ladder(double aperture, size_t triangles, bool bare) {
  LadderRules rules{{}, {{aperture, 0, true}}, {}, {}, kMostHalvings};
  const auto fewer = static_cast<uint32_t>(triangles / kFullTries + 1);
  const auto add_Tries = [&](double rung, uint32_t tries) {
    for (uint32_t position = 0; position < (tries + fewer - 1) / fewer; ++position)
      rules.whole.push_back({rung, position, false});
  };
  add_Tries(aperture, kTriesAtFirst);
  for (const double rung : {45.0, 40.0, 30.0})
    if (rung < aperture) add_Tries(rung, kTriesLater);
  for (const double rung : {40.0, 30.0, 25.0, 20.0, 15.0, 10.0})
    if (rung < aperture) rules.rungs.push_back({rung, 0, true});
  for (const Tilt tilt : {Tilt::kLow, Tilt::kHigh, Tilt::kMiddle})
    rules.rest.push_back({aperture, 0, true, tilt});
  if (bare) rules.bare.push_back({aperture, 0, true, Tilt::kBand, true});
  return rules;
}

LadderRules make_Plain(double aperture) { return {{}, {{aperture, 0, false}}, {}, {}, 0}; }

std::vector<Patch> halve_Patch(const Patch& patch, const std::vector<T3DVEC>& centres) {
  const int axis = find_LongestAxis(patch, centres);
  std::vector<std::pair<double, uint32_t>> order;
  for (const uint32_t triangle : patch.triangles) {
    order.emplace_back(pick_Axis(centres[triangle], axis), triangle);
  }
  std::sort(order.begin(), order.end());
  const size_t middle = order.size() / 2;
  Patch low{patch.roi, patch.halvings + 1, {}};
  Patch high = low;
  for (size_t i = 0; i < order.size(); ++i) {
    (i < middle ? low : high).triangles.push_back(order[i].second);
  }
  // The order of a list decides ties in the library; the file's order is the natural one.
  std::sort(low.triangles.begin(), low.triangles.end());
  std::sort(high.triangles.begin(), high.triangles.end());
  return {low, high};
}

Climb climb_Ladder(std::vector<Patch> patches, const LadderRules& rules,
                   const std::vector<T3DVEC>& centres, const Attempt& attempt) {
  Climb climb;
  std::erase_if(patches, [](const Patch& patch) { return patch.triangles.empty(); });
  for (const Rung& rung : rules.whole) {
    patches = try_Rung(climb, std::move(patches), rung, true, attempt);
  }
  while (!patches.empty()) {
    for (const Rung& rung : rules.rungs) {
      patches = try_Rung(climb, std::move(patches), rung, false, attempt);
    }
    std::vector<Patch> halves;
    for (Patch& patch : patches) {
      if (patch.halvings >= rules.most_halvings || patch.triangles.size() < 2) {
        climb.given_up.push_back(std::move(patch));
        continue;
      }
      for (Patch& half : halve_Patch(patch, centres)) halves.push_back(std::move(half));
    }
    patches = std::move(halves);
  }
  for (const Rung& rung : rules.rest) {
    std::vector<Patch> free = list_Free(climb);
    if (!free.empty()) try_Rung(climb, std::move(free), rung, false, attempt);
  }
  for (const Rung& rung : rules.bare) {
    std::vector<Patch> free = list_Bare(climb, list_Free(climb));
    if (!free.empty()) try_Rung(climb, std::move(free), rung, false, attempt);
  }
  return climb;
}

}  // namespace undercut::host
