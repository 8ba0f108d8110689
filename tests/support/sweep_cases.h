// Meshes with rays for a sweep, and what a loop over all triangles leaves of the ways.
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/reference/plain_rays.h"
#include "tests/support/sweep_forms.h"

namespace undercut::tests {

inline constexpr uint8_t kBoth = kSeesAhead | kSeesBehind;

// The bits that a loop over all triangles leaves.
inline uint8_t leave_Plain(const T3DMSH& msh, const T3DVEC& org, const T3DVEC& direction,
                           uint8_t open) {
  if ((open & kSeesAhead) && reference::any_Hit(msh, {org, direction})) open &= ~kSeesAhead & 0xff;
  if ((open & kSeesBehind) && reference::any_Hit(msh, {org, -direction}))
    open &= ~kSeesBehind & 0xff;
  return open;
}

inline std::vector<uint8_t> leave_Plain(THostile& hostile) {
  std::vector<uint8_t> left;
  for (size_t i = 0; i < hostile.sight.size(); ++i)
    left.push_back(
        leave_Plain(hostile.soup.msh(), hostile.orgs[i], hostile.direction, hostile.sight[i]));
  return left;
}

inline TSweepRays take_Rays(const THostile& hostile, std::vector<uint8_t>& sight) {
  return {hostile.orgs.data(), hostile.box, nullptr, static_cast<uint32_t>(sight.size()),
          sight.data()};
}

// A mesh with a ray from each triangle, lifted along the direction.
inline THostile make_Case(TSoup soup, const T3DVEC& direction, double lift = 0.25) {
  THostile out;
  out.soup = std::move(soup);
  out.direction = direction;
  for (uint32_t t = 0; t < out.soup.tri.size(); ++t) {
    out.orgs.push_back(cen_Tri(get_Fac(out.soup.msh(), t)) + lift * direction);
    out.box.add(out.orgs.back());
    out.sight.push_back(kBoth);
  }
  return out;
}

// Whether a sweep takes it; where it does, the answers are those of the loop, and else untouched.
inline bool sweeps(THostile& hostile) {
  C3DTriAABBTree tree;
  EXPECT_TRUE(tree.Prepare(hostile.soup.msh()));
  std::vector<std::vector<uint8_t>> answers;
  bool taken = false;
  for (const TForm& form : list_Forms()) {
    std::vector<uint8_t> sight = hostile.sight;
    CSweep sweep;
    taken = sweep.ini_Msh(tree, form.lanes) &&
            sweep.clear_Hit(hostile.direction, take_Rays(hostile, sight));
    answers.push_back(sight);
  }
  const std::vector<uint8_t> want = taken ? leave_Plain(hostile) : hostile.sight;
  for (const std::vector<uint8_t>& answer : answers) EXPECT_EQ(answer, want);
  return taken;
}

}  // namespace undercut::tests
