#include "ladder.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace undercut::host {
namespace {

constexpr uint32_t kMostHalvings = 12;

void note_Call(Climb& climb, const std::vector<Patch>& patches, double aperture,
               const std::vector<Outcome>& outcomes) {
  std::vector<CallNote> notes;
  for (size_t i = 0; i < patches.size(); ++i) {
    const auto same = [&](const CallNote& n) { return n.roi == patches[i].roi; };
    auto note = std::find_if(notes.begin(), notes.end(), same);
    if (note == notes.end()) {
      notes.push_back({climb.calls, patches[i].roi, aperture, 0, 0, 0, 0, 0});
      note = std::prev(notes.end());
    }
    ++note->patches;
    note->failed += outcomes[i].failed() ? 1 : 0;
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

// Tries all patches at one aperture; returns those that failed.
std::vector<Patch> try_Rung(Climb& climb, std::vector<Patch> patches, double aperture,
                            const Attempt& attempt) {
  ++climb.calls;
  std::vector<Outcome> outcomes = attempt(patches, aperture);
  note_Call(climb, patches, aperture, outcomes);
  std::vector<Patch> failed;
  for (size_t i = 0; i < patches.size(); ++i) {
    if (outcomes[i].failed()) {
      failed.push_back(std::move(patches[i]));
    } else {
      climb.settled.push_back({std::move(patches[i]), aperture, std::move(outcomes[i].regions)});
    }
  }
  return failed;
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

}  // namespace

LadderRules make_Ladder(double aperture) {
  LadderRules rules{{aperture}, kMostHalvings};
  for (const double rung : {40.0, 30.0, 25.0, 20.0, 15.0, 10.0}) {
    if (rung < aperture) rules.apertures.push_back(rung);
  }
  return rules;
}

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
  while (!patches.empty()) {
    for (const double aperture : rules.apertures) {
      if (!patches.empty()) patches = try_Rung(climb, std::move(patches), aperture, attempt);
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
  return climb;
}

}  // namespace undercut::host
