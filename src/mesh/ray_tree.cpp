// Why no node is passed over that holds a triangle whose box passes hit_Box.
//
// Coordinates are scaled by a power of two, so that those of the tree lie below 1. Let M be the
// largest of 1 and the components of org, D the largest component of dir and u = 2^-24, and measure
// along the ray in units of 1 / D. On one axis the ray meets a bound n of a box at n q - org q with
// q = D / dir. Here n, q and org q are rounded to single precision; to make up for that org is
// moved by 16 u M: towards the bound where a box is entered, away from it where it is left.
// - Rounding moves n and q by u of themselves, org q by little more than u M q; the product adds
//   u M q if it is rounded, the difference little more than 2 u M q. So the ray enters a box here
//   earlier than in truth by at least 9 u M q, and leaves it later by as much: far more than the
//   2^-51 of themselves by which the numbers of hit_Box err. A box that begins behind org is taken
//   to begin at org.
// - Above 2^40, or infinite, q is cut off there. A box beyond org is entered still earlier; one
//   that passes is left no sooner than at 9 u M 2^40, which lies beyond 2 M, where the ray has
//   left it along its longest component. So such an axis does not decide.
// Trees of coordinates up to 2^60, M up to 2^59 and D from 2^-100 to 2^100 keep all this clear of
// overflow and underflow; other rays and trees are not taken.
#include "mesh/ray_tree.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "foundation/box.h"
#include "mesh/ray_walk.h"

namespace undercut {

namespace {

constexpr double kLeastReach = 0x1p-60, kMostReach = 0x1p60;
constexpr double kMostOrg = 0x1p59;  // scaled
constexpr double kLeastDir = 0x1p-100, kMostDir = 0x1p100;
constexpr double kMostInverse = 0x1p40;
constexpr double kLift = 0x1p-20;       // 16 u
constexpr double kSlack = 0x1p-22;      // 4 u
constexpr double kLeastKept = 0x1p-20;  // of a direction to org, that org + dir keeps it
constexpr double kLeastAhead = 0x1p-200;

// Not if a component is no number.
bool is_Within(const T3DVEC& v, double most) {
  return (std::fabs(v.x) <= most) & (std::fabs(v.y) <= most) & (std::fabs(v.z) <= most);
}

// Cut off to single precision, 24 bits. By its bits: gcc 12 takes a number that is rounded to it
// and widened again for the number itself, where it computes two at once.
double cut_Off(double x) {
  return std::bit_cast<double>(std::bit_cast<uint64_t>(x) & ~((uint64_t{1} << 29) - 1));
}

TRayWay make_Way(const T3DRAY& ray, double scale) {
  TRayWay way;
  way.ray = ray;
  const T3DVEC ahead = (ray.org + ray.dir) - ray.org;
  const double farthest = std::max(1.0, scale * max_Abs(ray.org));
  const double longest = max_Abs(ray.dir), longest_Ahead = max_Abs(ahead);
  const double lift = kLift * farthest, shorten = 1.0 / longest_Ahead;
  const double org[3] = {scale * ray.org.x, scale * ray.org.y, scale * ray.org.z};
  const double dir[3] = {ray.dir.x, ray.dir.y, ray.dir.z};
  const double along[3] = {ahead.x, ahead.y, ahead.z};
  for (uint32_t axis = 0; axis < 3; ++axis) {
    const double size = std::min(longest / std::fabs(dir[axis]), kMostInverse);
    const double inverse = std::copysign(size, dir[axis]);
    way.near[axis] = 2 * axis + (std::signbit(dir[axis]) ? 1 : 0);
    way.inverse[axis] = static_cast<float>(inverse);
    way.near_org[axis] = static_cast<float>(org[axis] * inverse + lift * size);
    way.far_org[axis] = static_cast<float>(org[axis] * inverse - lift * size);
    const double coarse = cut_Off(org[axis]);
    way.org[axis] = static_cast<float>(coarse);
    way.rest[axis] = static_cast<float>(org[axis] - coarse);
    way.along[axis] = static_cast<float>(along[axis] * shorten);
  }
  way.slack = longest_Ahead >= kLeastAhead ? static_cast<float>(kSlack * farthest) : INFINITY;
  way.keeps_Direction = longest >= kLeastKept * max_Abs(ray.org);
  return way;
}

}  // namespace

void TRayTree::build(const T3DMSH& msh) {
  clear();
  C3DAABB box;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    C3DAABB own;
    own.from_Tri(get_Fac(msh, t));
    if (own.is_Inverted()) return;  // such a box lies in no other
    box.merge(own);
  }
  const double reach = std::max(max_Abs(box.min), max_Abs(box.max));
  if (msh.n_tri == 0 || !(reach <= kMostReach)) return;
  int power;
  std::frexp(std::max(reach, kLeastReach), &power);
  scale_ = std::ldexp(1.0, -power);
  TRayParts parts;
  build_Rays(msh, scale_, parts);
  if (parts.leaves.size() <= TRayChild::kMostLeaves) parts_ = std::move(parts);
}

void TRayTree::clear() { *this = {}; }

bool TRayTree::takes(const T3DRAY& ray) const {
  const double longest = max_Abs(ray.dir);
  return !parts_.nodes.empty() && is_Within(ray.org, kMostOrg / scale_) &&
         is_Within(ray.dir, kMostDir) && longest >= kLeastDir;
}

bool TRayTree::any_Hit(const T3DRAY& ray, const T3DMSH& msh) const {
  return walk_Rays(parts_, msh, make_Way(ray, scale_));
}

bool TRayTree::any_HitPortable(const T3DRAY& ray, const T3DMSH& msh) const {
  return walk_Portable(parts_, msh, make_Way(ray, scale_));
}

}  // namespace undercut
