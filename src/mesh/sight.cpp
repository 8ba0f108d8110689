#include "mesh/sight.h"

#include "foundation/parallel.h"

namespace undercut {

namespace {

// What the ways to ask take on one thread, in ns, about: they decide which is taken, no more.
constexpr double kSweep = 1e5, kSweepByTriangle = 40.0, kSweepByRay = 50.0;
constexpr double kStartByTriangle = 50.0;
constexpr double kTreeByTriangle = 200.0, kTreeByRay = 200.0;
constexpr uint32_t kManyRays = 512;

}  // namespace

void CSight::ini_Sight(const C3DTriAABBTree& obstacle, const TRayStarts& starts) {
  obstacle_ = &obstacle;
  starts_ = starts;
  has_Starts_ = false;
  can_Sweep_ = true;
  lost_ = 0;
}

void CSight::clear() { *this = {}; }

void CSight::make_Starts() {
  const uint32_t n_tri = starts_.msh.n_tri;
  orgs_.resize(n_tri);
  no_ray_.resize(n_tri);
  const TPointRange range = range_Blocks(n_tri, [&](uint32_t first, uint32_t end) {
    return start_Rays(starts_, first, end, orgs_.data(), no_ray_.data());
  });
  box_ = range.box;
  can_Sweep_ = sweep_.ini_Msh(*obstacle_) && n_tri < kMostIndex && range.is_finite;
  has_Starts_ = true;
}

// Few rays would be quicker in the tree, if only it were there: it is made when the sweeps have
// lost as much time as its making takes. So whatever is asked takes at most about twice the time of
// the better choice.
bool CSight::prefers_Sweep(uint32_t rays) {
  if (!can_Sweep_) return false;
  const double n = obstacle_->mesh().n_tri;
  const double sweep = kSweep + kSweepByTriangle * n + kSweepByRay * rays +
                       (has_Starts_ ? 0.0 : kStartByTriangle * starts_.msh.n_tri);
  const double tree = kTreeByRay * rays;
  if (sweep <= tree) return true;
  if (obstacle_->has_Rays()) return false;
  lost_ += sweep - tree;
  return lost_ < kTreeByTriangle * n;
}

uint8_t CSight::ask_Tree(const T3DVEC& org, const T3DVEC& direction, uint8_t open) const {
  if ((open & kSeesAhead) && obstacle_->AnyHit({org, direction}))
    open &= static_cast<uint8_t>(~kSeesAhead);
  if ((open & kSeesBehind) && obstacle_->AnyHit({org, -direction}))
    open &= static_cast<uint8_t>(~kSeesBehind);
  return open;
}

void CSight::see_Along(const T3DVEC& direction, Ways ways, const uint32_t* list, uint32_t count,
                       uint8_t* sight) {
  if (count == 0) return;  // and perhaps no mesh
  const uint8_t open = ways == Ways::kBoth ? kSeesAhead | kSeesBehind : kSeesAhead;
  if (prefers_Sweep(ways == Ways::kBoth ? 2 * count : count)) {
    if (!has_Starts_) make_Starts();
    each_Index(
        count,
        [&](uint32_t i) {
          const uint8_t none = no_ray_[list ? list[i] : i];
          sight[i] = none ? none : open;
        },
        kWorthIfLight);
    if (can_Sweep_ && sweep_.clear_Hit(direction, {orgs_.data(), box_, list, count, sight})) return;
  }
  if (count >= kManyRays) obstacle_->BuildRays();
  each_Index(count, [&](uint32_t i) {
    T3DVEC org;
    sight[i] =
        start_Ray(starts_, list ? list[i] : i, org) ? ask_Tree(org, direction, open) : kNoRay;
  });
}

}  // namespace undercut
