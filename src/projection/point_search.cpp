// The two phases of a point's way onto a mesh.
#include "projection/point_search.h"

#include <algorithm>

#include "mesh/line_hits.h"

namespace undercut {

namespace {

constexpr uint32_t kMostRadii = 1000000;  // bounds the time for any parameters

template <typename Visit>
void each_Radius(const TPrjPar& par, Visit visit) {
  double radius = par.f_off;
  for (uint32_t k = 0; k < kMostRadii && radius < par.f_lim; ++k) {
    visit(k, radius);
    const double next = radius + par.f_inc;
    if (!(next > radius)) return;
    radius = next;
  }
}

// Lists what the first radius finds that finds anything; nothing if none does.
//
// A query compares with the radius alone, so a larger radius finds all that a smaller one finds.
// That lets the first one be bracketed by doubling its place and then halved in: the same answer as
// from trying all in turn, in two or three queries for most points and in some 40 at the most.
// Without a radius to try there is none for any point of a call: nothing is found, and what an
// earlier query left in the list, of another mesh perhaps, is never read.
void list_Nearest(const C3DTriAABBTree& area, const T3DRAY& line, const TArr<double>& radii,
                  TLst<uint32_t>& hits) {
  const auto finds = [&](uint32_t k) {
    hits.count = 0;
    area.QueryCylinder({{{}, {}, line.dir, line.org}, radii.data[k]}, hits);
    return hits.count != 0;
  };
  hits.count = 0;
  uint32_t first = 0, found = radii.count;  // no radius before `first` finds anything, `found` does
  for (uint32_t next = 0; first < found;) {
    if (finds(next))
      found = next;
    else
      first = next + 1;
    next =
        found < radii.count ? first + (found - first) / 2 : std::min(2 * next + 1, radii.count - 1);
  }
  if (found < radii.count) finds(found);
}

// What a ray meets; its own org at the distance kAbsent where it meets nothing.
struct TCrossing {
  T3DVEC point;
  double distance;
};

TCrossing cross_Mesh(const C3DTriAABBTree& mesh, const T3DRAY& ray, TLst<uint32_t>& hits) {
  TCrossing crossing = {ray.org, kAbsent};
  near_Hit(
      mesh, ray, hits, [](uint32_t) { return true; }, crossing.point, crossing.distance);
  return crossing;
}

}  // namespace

bool list_Radii(const TPrjPar& par, TArr<double>& radii) {
  uint32_t count = 0;
  each_Radius(par, [&](uint32_t, double) { ++count; });
  if (!alloc(radii, count)) return false;
  each_Radius(par, [&](uint32_t k, double radius) { radii.data[k] = radius; });
  return true;
}

T3DVEC to_Area(const C3DTriAABBTree& area, const T3DRAY& line, const TArr<double>& radii,
               TLst<uint32_t>& hits) {
  list_Nearest(area, line, radii, hits);
  T3DVEC moved = line.org;
  double best = kAbsent;
  for (uint32_t i = 0; i < hits.count; ++i) {
    const T3DVEC centroid = cen_Tri(get_Fac(area.mesh(), hits.data[i]));
    const double distance = dst_LineSeg(line, centroid, centroid);
    if (!(distance < best)) continue;
    best = distance;
    moved = dot(centroid - line.org, line.dir) * line.dir + line.org;
  }
  return moved;
}

T3DVEC onto_Mesh(const C3DTriAABBTree& mesh, const T3DRAY& line, double tolerance,
                 TLst<uint32_t>& hits) {
  const T3DVEC &p = line.org, &z = line.dir;
  const TCrossing behind = cross_Mesh(mesh, {p, -z}, hits);
  const TCrossing ahead = cross_Mesh(mesh, {p, z}, hits);
  // What the ray back finds may lie ahead, since a triangle round the point is found both ways. So
  // of equally near crossings that behind wins where it does lie behind.
  const bool tie = behind.distance == ahead.distance;
  const bool back = tie ? dot(behind.point - p, z) < 0.0 : behind.distance < ahead.distance;
  const T3DVEC result = back ? behind.point : ahead.point;
  return dst(p, result) > tolerance ? p : result;
}

}  // namespace undercut
