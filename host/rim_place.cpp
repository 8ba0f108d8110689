#include "rim_place.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "edges.h"

namespace undercut::host {
namespace {

// Some cells of the grid that the curve was traced on, as a share of the area's width.
constexpr double kSlackShare = 3e-3;

struct Segment {
  T3DVEC a, b;  // in the frame
};

// Cosine of the angle to Z beyond which a triangle is a wall: seen from above it is a line, so it
// bounds nothing, and rounding alone tells whether the area has it.
constexpr double kGrazing = 1e-3;

// Edges with one triangle of those that are marked.
std::vector<Segment> list_Border(const Mesh& mesh, const std::vector<bool>& marked,
                                 const T3DFRM& frame) {
  const std::vector<EdgeUse> uses = list_Edges(mesh);
  std::vector<Segment> border;
  for_Edges(uses, [&](size_t start, size_t end) {
    size_t members = 0;
    for (size_t i = start; i < end; ++i) members += marked[uses[i].triangle()] ? 1 : 0;
    if (members != 1) return;
    border.push_back({to_Frame(frame, mesh.vertices[uses[start].low]),
                      to_Frame(frame, mesh.vertices[uses[start].high])});
  });
  return border;
}

// The border of what of the area faces Z, or of all of it where nothing does.
std::vector<Segment> list_Upper(const Mesh& mesh, const std::vector<uint32_t>& area,
                                const T3DFRM& frame) {
  std::vector<bool> facing(mesh.triangles.size(), false);
  bool any = false;
  for (const uint32_t triangle : area) {
    facing[triangle] = dot_Vec(normal_Tri(mesh, triangle), frame.z) > kGrazing;
    any = any || facing[triangle];
  }
  for (const uint32_t triangle : area) facing[triangle] = facing[triangle] || !any;
  return list_Border(mesh, facing, frame);
}

// Where a segment comes nearest to a point across Z.
struct Place {
  double distance, height;
};

Place find_Place(const Segment& segment, const T3DVEC& p) {
  const T3DVEC along = segment.b - segment.a;
  const double length = along.x * along.x + along.y * along.y;
  const double dot = (p.x - segment.a.x) * along.x + (p.y - segment.a.y) * along.y;
  // Of one that stands upright the upper end.
  const double upright = along.z > 0.0 ? 1.0 : 0.0;
  const double t = length > 0.0 ? std::clamp(dot / length, 0.0, 1.0) : upright;
  const T3DVEC at = segment.a + t * along;
  return {std::hypot(at.x - p.x, at.y - p.y), at.z};
}

// The heights of the border at a point, from above: of the places that are at most `slack` farther
// than the nearest one. Above the foot of a wall is its upper edge.
std::vector<double> list_Heights(const std::vector<Segment>& border, const T3DVEC& p,
                                 double slack) {
  double nearest = std::numeric_limits<double>::infinity();
  std::vector<Place> places;
  for (const Segment& segment : border) {
    const Place place = find_Place(segment, p);
    if (!(place.distance <= nearest + slack)) continue;
    nearest = std::fmin(nearest, place.distance);
    places.push_back(place);
  }
  std::vector<double> heights;
  for (const Place& place : places) {
    if (place.distance <= nearest + slack) heights.push_back(place.height);
  }
  std::sort(heights.begin(), heights.end(), std::greater<>());
  heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
  if (heights.empty()) heights.push_back(0.0);
  return heights;
}

// Takes one of the heights of each point of a closed curve so that the curve climbs the least (by
// dynamic programming, R. Bellman 1957), of equal ways the highest. It is gone round twice, so that
// the end knows of the start.
std::vector<double> choose_Heights(const std::vector<std::vector<double>>& heights) {
  const size_t count = heights.size();
  std::vector<std::vector<size_t>> from(2 * count);
  std::vector<double> climb(heights[0].size(), 0.0);
  for (size_t i = 1; i < 2 * count; ++i) {
    const std::vector<double>&before = heights[(i - 1) % count], &here = heights[i % count];
    std::vector<double> next(here.size(), std::numeric_limits<double>::infinity());
    from[i].assign(here.size(), 0);
    for (size_t k = 0; k < here.size(); ++k) {
      for (size_t m = 0; m < before.size(); ++m) {
        const double cost = climb[m] + std::fabs(here[k] - before[m]);
        if (!(cost < next[k])) continue;
        next[k] = cost;
        from[i][k] = m;
      }
    }
    climb = std::move(next);
  }
  auto k = static_cast<size_t>(std::min_element(climb.begin(), climb.end()) - climb.begin());
  std::vector<double> chosen(count, 0.0);
  for (size_t i = 2 * count; i-- > count;) {
    chosen[i - count] = heights[i - count][k];
    k = from[i][k];
  }
  return chosen;
}

}  // namespace

T3DFRM make_AxisFrame(const T3DVEC& axis) {
  const T3DVEC z = unit_Vec(axis);
  const T3DVEC side = std::fabs(z.x) < 0.9 ? T3DVEC{1, 0, 0} : T3DVEC{0, 1, 0};
  const T3DVEC x = unit_Vec(side - dot_Vec(side, z) * z);
  return {x, cross_Vec(z, x), z, {0, 0, 0}};
}

T3DVEC normal_Tri(const Mesh& mesh, uint32_t triangle) {
  const T3DTRI& t = mesh.triangles[triangle];
  const T3DVEC& a = mesh.vertices[t.a];
  return unit_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a));
}

T3DVEC to_Frame(const T3DFRM& frame, const T3DVEC& point) {
  const T3DVEC p = point - frame.org;
  return {dot_Vec(p, frame.x), dot_Vec(p, frame.y), dot_Vec(p, frame.z)};
}

double find_Width(const Mesh& mesh, const std::vector<uint32_t>& triangles, const T3DFRM& frame) {
  constexpr double kFar = std::numeric_limits<double>::infinity();
  double low_x = kFar, low_y = kFar, high_x = -kFar, high_y = -kFar;
  for (const uint32_t triangle : triangles) {
    const T3DTRI& t = mesh.triangles[triangle];
    for (const uint32_t corner : {t.a, t.b, t.c}) {
      const T3DVEC p = to_Frame(frame, mesh.vertices[corner]);
      low_x = std::fmin(low_x, p.x), high_x = std::fmax(high_x, p.x);
      low_y = std::fmin(low_y, p.y), high_y = std::fmax(high_y, p.y);
    }
  }
  return std::fmax(high_x - low_x, high_y - low_y);
}

std::vector<RimCurve> place_Curves(const Mesh& mesh, const std::vector<uint32_t>& area,
                                   const T3DFRM& frame, std::vector<Curve> curves) {
  const std::vector<Segment> border = list_Upper(mesh, area, frame);
  const double slack = kSlackShare * find_Width(mesh, area, frame);
  std::vector<RimCurve> placed;
  for (Curve& flat : curves) {
    RimCurve rim;
    std::vector<std::vector<double>> heights;
    for (const T3DVEC& p : flat) heights.push_back(list_Heights(border, p, slack));
    const std::vector<double> chosen = choose_Heights(heights);
    for (size_t i = 0; i < flat.size(); ++i) {
      rim.placed.push_back(place_Point(frame, {flat[i].x, flat[i].y, chosen[i]}));
    }
    rim.length = measure_Length(flat);
    const double area_signed = measure_Area(flat);
    rim.area = std::fabs(area_signed);
    rim.hole = area_signed < 0.0;
    rim.flat = std::move(flat);
    placed.push_back(std::move(rim));
  }
  return placed;
}

}  // namespace undercut::host
