// Parts whose undercuts and depths follow from their drawings. Lengths in mm, areas in mm2.
//
// Each part knows for each triangle how deep it lies under an overhang: seen from above (along Z
// from the +Z side), and seen from above and from below. 0 is seen. A depth is the distance across
// Z from the centroid of the triangle to the rim of its undercut patch; all rims here are outlines
// of the drawing.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "foundation/values.h"
#include "tests/support/cell_mesh.h"

namespace undercut::tests {

struct TPart {
  std::string name;
  TSoup soup;
  std::vector<double> up = {}, both = {};  // by triangle: depth from above, and from both sides
  double area_up = 0, area_both = 0;       // undercut area by the drawing
  double volume = 0;
  // Where the shadow's boundary runs through triangles: the area of the row that it crosses, and
  // how far the rim of the mesh strays from that of the drawing. 0 where the mesh conforms.
  double row = 0, stray = 0;
  T3DFRM frame = kIdentity;  // the drawing's axes in the mesh's coordinates
};

struct TDepths {
  double up, both;
};

// Fills the depths: depth(centroid, unit normal) gives them.
template <typename Depth>
void measure_Depths(TPart& part, Depth depth) {
  for (uint32_t t = 0; t < part.soup.tri.size(); ++t) {
    const T3DFAC f = get_Fac(part.soup.msh(), t);
    const TDepths d = depth(cen_Tri(f), nml_Tri(f));
    part.up.push_back(d.up);
    part.both.push_back(d.both);
  }
}

// Distance from a point inside a rectangle to its outline, and from outside to the rectangle.
inline double inside_Rectangle(const T3DVEC& p, double x0, double y0, double x1, double y1) {
  return std::min({p.x - x0, x1 - p.x, p.y - y0, y1 - p.y});
}
inline double outside_Rectangle(const T3DVEC& p, double x0, double y0, double x1, double y1) {
  const double dx = std::max({x0 - p.x, 0.0, p.x - x1}), dy = std::max({y0 - p.y, 0.0, p.y - y1});
  return std::hypot(dx, dy);
}

// A point against a regular polygon round the Z axis with a corner on the X axis.
struct TPolygon {
  double radius;
  uint32_t corners;

  double half() const { return 3.141592653589793 / corners; }
  double area() const { return corners * radius * radius * std::sin(2 * half()) / 2; }
  // Against the side that the point lies before: along it from its middle, and beyond it.
  T2DVEC fold(const T3DVEC& p) const {
    const double angle =
        std::fmod(std::atan2(p.y, p.x) + 4 * half() * corners, 2 * half()) - half();
    const double r = std::hypot(p.x, p.y);
    return {r * std::sin(angle), r * std::cos(angle) - radius * std::cos(half())};
  }
  bool holds(const T3DVEC& p) const { return fold(p).y < 1e-9; }
  double distance(const T3DVEC& p) const {
    const T2DVEC q = fold(p);
    return std::hypot(std::max(0.0, std::fabs(q.x) - radius * std::sin(half())), q.y);
  }
};

// The underside of a part faces down: from above it is a patch of its own whose rim is the outline.
inline bool is_Underside(const T3DVEC& p, const T3DVEC& n) { return n.z < -0.999 && p.z < 1e-9; }

inline TPart make_BoxPart(int density) {
  TPart part = {"box", CCellMesh(6, 4, 3, density).build([](int, int, int) { return true; })};
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    return TDepths{is_Underside(p, n) ? inside_Rectangle(p, 0, 0, 6, 4) : 0.0, 0.0};
  });
  part.area_up = 24, part.volume = 72;
  return part;
}

// A blind pocket with upright walls: from above all of it is seen.
inline TPart make_Cup(int density) {
  TPart part = {"cup", CCellMesh(6, 6, 4, density).build([](int x, int y, int z) {
                  return z < 1 || x < 2 || x > 3 || y < 2 || y > 3;
                })};
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    return TDepths{is_Underside(p, n) ? inside_Rectangle(p, 0, 0, 6, 6) : 0.0, 0.0};
  });
  part.area_up = 36, part.volume = 144 - 12;
  return part;
}

// A pocket that is wider than its mouth: walls, the lip's underside and the floor beside the mouth
// are one patch, whose rims, at the lip and on the floor, both lie below the mouth's outline.
inline TPart make_Flask(int density) {
  TPart part = {"flask", CCellMesh(8, 8, 5, density).build([](int x, int y, int z) {
                  const bool mouth = x >= 3 && x < 5 && y >= 3 && y < 5 && z >= 1;
                  const bool body = x >= 1 && x < 7 && y >= 1 && y < 7 && z >= 1 && z < 4;
                  return !mouth && !body;
                })};
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{inside_Rectangle(p, 0, 0, 8, 8), 0.0};
    const bool body = p.x > 0.5 && p.x < 7.5 && p.y > 0.5 && p.y < 7.5 && p.z > 0.5 && p.z < 4.25;
    const double depth = body ? outside_Rectangle(p, 3, 3, 5, 5) : 0.0;
    // The wall of the mouth lies on the outline itself and is seen.
    return TDepths{depth, depth};
  });
  part.area_both = (36 - 4) * 2 + 4 * 6 * 3;
  part.area_up = part.area_both + 64, part.volume = 320 - 108 - 4;
  return part;
}

// The same, turned.
inline TPart make_RoundFlask(int density) {
  const auto sectors = static_cast<uint32_t>(12 * density);
  const Profile profile = divide(
      {{0, 0}, {5, 0}, {5, 5}, {2, 5}, {2, 4}, {4, 4}, {4, 1}, {2, 1}, {0, 1}}, 1.0 / density);
  TPart part = {"round flask", revolve(profile, sectors)};
  const TPolygon outline = {5, sectors}, body = {4, sectors}, mouth = {2, sectors};
  measure_Depths(part, [&](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{outline.distance(p), 0.0};
    const bool hidden = p.z > 0.5 && p.z < 4.5 && body.holds(p) && !mouth.holds(p);
    const double depth = hidden ? mouth.distance(p) : 0.0;
    return TDepths{depth, depth};
  });
  part.area_both = 2 * (body.area() - mouth.area()) + area_Ring(4, 1, 4, 4, sectors);
  part.area_up = part.area_both + outline.area();
  part.volume = outline.area() * 5 - body.area() * 3 - mouth.area();
  return part;
}

// A slab over a base: its underside, the wall behind and the floor below are one patch. The slab
// reaches to x = 6, or ends between two rows of triangles of the floor.
inline TPart make_Shelf(int density, bool on_grid) {
  TPart part = {on_grid ? "shelf" : "shelf off the grid",
                CCellMesh(8, 4, 6, density).build([](int x, int, int z) {
                  return z < 2 || (z < 4 && x < 2) || (z >= 4 && x < 6);
                })};
  const double end = on_grid ? 6.0 : 5.53125;
  for (T3DVEC& v : part.soup.vtx)
    if (v.z >= 4 && v.x > 5) v.x = 5 + (v.x - 5) * (end - 5);
  measure_Depths(part, [&](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{inside_Rectangle(p, 0, 0, 8, 4), 0.0};
    const bool hidden = p.z > 1.9 && p.z < 4.1 && p.x > 1.9 && p.x < end &&
                        (n.z != 0 || p.x < 2.1) && p.y > 0 && p.y < 4;
    const double depth = hidden ? std::min({end - p.x, p.y, 4 - p.y}) : 0.0;
    return TDepths{depth, depth};
  });
  part.area_both = (end - 2) * 4 * 2 + 2 * 4;
  part.area_up = part.area_both + 32;
  part.volume = 8 * 4 * 2 + 2 * 4 * 2 + end * 4 * 2;
  if (!on_grid) part.row = 4.0 / density, part.stray = 1.0 / density;
  return part;
}

// A groove along Y that is wider below than at its mouth, with a patch on either side.
inline TPart make_TSlot(int density) {
  TPart part = {"T-slot", CCellMesh(10, 4, 5, density).build([](int x, int, int z) {
                  const bool mouth = x >= 4 && x < 6 && z >= 3;
                  const bool body = x >= 2 && x < 8 && z >= 1 && z < 3;
                  return !mouth && !body;
                })};
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{inside_Rectangle(p, 0, 0, 10, 4), 0.0};
    const double aside = std::fabs(p.x - 5) - 1;
    const bool hidden = aside > 0 && aside < 2.5 && p.z > 0.5 && p.z < 3.5 && p.y > 0 && p.y < 4;
    const double depth = hidden ? std::min({aside, p.y, 4 - p.y}) : 0.0;
    return TDepths{depth, depth};
  });
  part.area_both = 2 * 4 * (2 + 2 + 2);
  part.area_up = part.area_both + 40, part.volume = 200 - 4 * (2 * 2 + 6 * 2);
  return part;
}

// A groove along Y whose walls lean over it: half as wide at its mouth, x from -2 to 2, as on its
// floor 4 mm below.
inline TPart make_Dovetail(int density) {
  TPart part = {"dovetail", CCellMesh(12, 4, 5, density).build([](int x, int, int z) {
                  return z < 1 || x < 4 || x >= 8;
                })};
  for (T3DVEC& v : part.soup.vtx) {
    const double x = v.x - 6, wall = 4 - std::max(0.0, v.z - 1) / 2;
    const double beyond = std::fabs(x) - 2;
    v.x = beyond <= 0 ? x * wall / 2 : std::copysign(wall + beyond * (6 - wall) / 4, x);
  }
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{inside_Rectangle(p, -6, 0, 6, 4), 0.0};
    const double aside = std::fabs(p.x) - 2;
    const bool floor = p.z == 1 && n.z > 0.999 && aside > 0;
    const bool hidden = floor || (std::fabs(n.z) > 0.1 && std::fabs(n.x) > 0.1);
    const double depth = hidden ? std::min({aside, p.y, 4 - p.y}) : 0.0;
    return TDepths{depth, depth};
  });
  part.area_both = 2 * 4 * (2 + std::sqrt(20.0));
  part.area_up = part.area_both + 48, part.volume = 240 - 4 * 4 * 6;
  return part;
}

// A block with a round bore of radius 1 along X, right through: its rims are the two mouths.
inline TPart make_BoredBlock(int density) {
  TPart part = {"bored block", CCellMesh(8, 6, 6, density).build([](int, int y, int z) {
                  return y < 2 || y > 3 || z < 2 || z > 3;
                })};
  for (T3DVEC& v : part.soup.vtx) {
    // Squares become circles at the bore and stay squares outside.
    const double y = v.y - 3, z = v.z - 3;
    const double square = std::max(std::fabs(y), std::fabs(z));
    const double round = (3 - square) / 2 * (square / std::hypot(y, z)) + (square - 1) / 2;
    v.y = 3 + y * round, v.z = 3 + z * round;
  }
  measure_Depths(part, [](const T3DVEC& p, const T3DVEC& n) {
    if (is_Underside(p, n)) return TDepths{inside_Rectangle(p, 0, 0, 8, 6), 0.0};
    const bool bore = std::hypot(p.y - 3, p.z - 3) < 1.1 && p.x > 0 && p.x < 8;
    const double depth = bore ? std::min(p.x, 8 - p.x) : 0.0;
    return TDepths{depth, depth};
  });
  double perimeter = 0, section = 0;
  for (int k = 0; k < density; ++k) {
    const double angle = std::atan2(k + 1.0, density) - std::atan2(double(k), density);
    perimeter += 8 * 2 * std::sin(angle / 2);
    section += 8 * std::sin(angle) / 2;
  }
  part.area_both = 8 * perimeter;
  part.area_up = part.area_both + 48, part.volume = 8 * (36 - section);
  return part;
}

// A sphere of radius 4 on a round post. From above its lower half, the post and the underside are
// one patch with the equator as its rim; from below all of that is seen. Without a ring of corners
// at the equator an upright band stands there, and that is seen.
inline TPart make_SphereOnPost(int density, bool with_equator) {
  const auto sectors = static_cast<uint32_t>(12 * density);
  const int rings = 8 * density + (with_equator ? 0 : 1);  // from pole to pole
  const int joint = 7 * density;                           // where the post ends, from the top
  const double turn = 3.141592653589793 / rings;
  Profile profile = {{0, 0}};
  const double post = 4 * std::sin(joint * turn), centre = 7.0;
  const Profile lower =
      divide({{0, 0}, {post, 0}, {post, centre + 4 * std::cos(joint * turn)}}, 1.0 / density);
  profile.assign(lower.begin(), lower.end());
  double below =
      TPolygon{post, sectors}.area() + area_Ring(post, 0, post, profile.back().second, sectors);
  for (int i = joint - 1; i >= 0; --i) {
    const auto [r, z] = profile.back();
    profile.push_back({i == 0 ? 0 : 4 * std::sin(i * turn), centre + 4 * std::cos(i * turn)});
    const double area = area_Ring(r, z, profile.back().first, profile.back().second, sectors);
    if (2 * i >= rings) below += area;
    if (2 * i + 1 == rings) below += area / 2;
  }
  TPart part = {with_equator ? "sphere on a post" : "sphere without an equator",
                revolve(profile, sectors)};
  const TPolygon equator = {4, sectors};
  measure_Depths(part, [&](const T3DVEC& p, const T3DVEC& n) {
    const bool hidden = p.z < centre - 1e-9 && (n.z < -1e-9 || p.z < 4);
    return TDepths{hidden ? equator.distance(p) : 0.0, 0.0};
  });
  part.area_up = below;
  for (size_t i = 1; i < profile.size(); ++i) {
    const auto [r0, z0] = profile[i - 1];
    const auto [r1, z1] = profile[i];
    part.volume += TPolygon{1, sectors}.area() * (z1 - z0) * (r0 * r0 + r0 * r1 + r1 * r1) / 3;
  }
  if (!with_equator) {
    part.row = area_Ring(4 * std::cos(turn / 2), 0, 4 * std::cos(turn / 2), 8 * std::sin(turn / 2),
                         sectors);
    part.stray = 4 * (1 - std::cos(turn / 2));
  }
  return part;
}

// All of them, at 1, 2 or 4 rows of triangles for each millimetre.
inline std::vector<TPart> make_Parts(int density) {
  return {make_BoxPart(density),
          make_Cup(density),
          make_Flask(density),
          make_RoundFlask(density),
          make_Shelf(density, true),
          make_Shelf(density, false),
          make_TSlot(density),
          make_Dovetail(density),
          make_BoredBlock(density),
          make_SphereOnPost(density, true),
          make_SphereOnPost(density, false)};
}

// A part in another place and attitude; what it knows of itself stays.
inline TPart turn(TPart part, const T3DFRM& to) {
  for (T3DVEC& v : part.soup.vtx) v = to_World(to, v);
  part.frame = to;
  return part;
}
inline T3DFRM general_Frame() { return frm_Ray({{3.1, -7.3, 2.2}, {0.31, -0.52, 0.83}}); }

}  // namespace undercut::tests
