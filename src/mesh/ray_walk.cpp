// The two forms of the walk through the tree of rays.
#include "mesh/ray_walk.h"

#include <bit>

#include "foundation/primitives.h"
#include "mesh/wide_lanes.h"

namespace undercut {

bool hit_Own(const T3DRAY& ray, const T3DMSH& msh, uint32_t triangle) {
  const T3DFAC f = get_Fac(msh, triangle);
  if (!hit_Tri(ray, f)) return false;
  C3DAABB box;
  box.from_Tri(f);
  return hit_Box(ray, box);
}

namespace {

// A node leaves all children but one behind; eight are written at a time.
constexpr uint32_t kMostPending = (kMostRayLevels + 1) * TRayNode::kChildren;

}  // namespace

namespace portable {
namespace {
#include "mesh/ray_walk.inc"
}  // namespace
}  // namespace portable

bool walk_Portable(const TRayParts& parts, const T3DMSH& msh, const TRayWay& way) {
  return portable::walk_Wide(parts, msh, way);
}

#ifdef UNDERCUT_AVX2

UNDERCUT_BEGIN_AVX2
namespace avx2 {
namespace {
#include "mesh/ray_walk.inc"  // NOLINT(readability-duplicate-include)
}  // namespace
}  // namespace avx2
UNDERCUT_END_AVX2

bool walk_Rays(const TRayParts& parts, const T3DMSH& msh, const TRayWay& way) {
  return has_Avx2() ? avx2::walk_Wide(parts, msh, way) : portable::walk_Wide(parts, msh, way);
}

#else

bool walk_Rays(const TRayParts& parts, const T3DMSH& msh, const TRayWay& way) {
  return walk_Portable(parts, msh, way);
}

#endif

}  // namespace undercut
