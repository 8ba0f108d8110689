// Meshes and rays that are hard to answer rightly in single precision, made from a seed: lattices,
// needles, coincident and degenerate triangles, walls along the direction, any scale and distance
// from 0; rays from corners, edges and faces, and from where errors are as large as their bounds.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "mesh/sweep.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

struct THostile {
  TSoup soup;
  T3DVEC direction;
  std::vector<T3DVEC> orgs;
  std::vector<uint32_t> aims;  // the triangle that each was made at
  std::vector<uint8_t> sight;  // the ways that are asked
  C3DAABB box;                 // of orgs
  uint32_t kind;               // of the mesh
};

inline constexpr uint32_t kHostileKinds = 17;
inline constexpr uint32_t kPlanes = 14;  // and above

// The coordinates of a sweep over a mesh in this box.
inline TAcross get_Across(const C3DAABB& box, const T3DVEC& direction) {
  const double scale = 0.999 / (0.5 * len(box.size()));
  const T3DVEC z = unit(direction);
  const T3DVEC least = std::fabs(z.x) < 0.6 ? T3DVEC{1, 0, 0} : T3DVEC{0, 1, 0};
  const T3DVEC x = unit(cross(least, z));
  return {box.centre(), scale * x, scale * cross(z, x), scale * z};
}

class CHostileMaker {
 public:
  explicit CHostileMaker(uint64_t seed) : random_(seed) {}

  // About so many triangles and rays.
  THostile make(uint32_t triangles, uint32_t rays) {
    THostile out;
    out.kind = static_cast<uint32_t>(random_.below(kHostileKinds));
    out_ = &out;
    across_ = get_Across(unit_Box(), random_.triple(-1, 1));
    make_Mesh(triangles);
    move_Mesh();
    for (const T3DVEC& v : out.soup.vtx) mesh_box_.add(v);
    aim_Direction();
    reach_ = 0.5 * len(mesh_box_.size());
    across_ = get_Across(mesh_box_, out.direction);
    T3DFAC aim = pick_Triangle();
    uint64_t way = 0;
    bool together = false;
    for (uint32_t i = 0; i < rays; ++i) {
      // Eight that are made alike stand close to one another, which makes bounds tight.
      if (i % 8 == 0) together = random_.chance(0.5);
      if (i % 8 == 0 || !together) {
        aim = pick_Triangle();
        way = random_.below(kWays);
      }
      const T3DVEC org = keep_Near(start_Ray(aim, way));
      out.orgs.push_back(org);
      out.aims.push_back(aim_);
      out.box.add(org);
      out.sight.push_back(static_cast<uint8_t>(1 + random_.below(3)));
    }
    return out;
  }

 private:
  static C3DAABB unit_Box() {
    C3DAABB box;
    box.add({-1, -1, -1});
    box.add({1, 1, 1});
    return box;
  }

  double pick_Sign() { return random_.chance(0.5) ? 1.0 : -1.0; }
  double power(double low, double high) { return std::pow(2.0, random_.real(low, high)); }
  T3DVEC mix(const T3DFAC& f, double s, double t) {
    return f.a + s * (f.b - f.a) + t * (f.c - f.a);
  }
  T3DFAC pick_Triangle() {
    aim_ = static_cast<uint32_t>(random_.below(out_->soup.tri.size()));
    return get_Fac(out_->soup.msh(), aim_);
  }
  void add(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
    const auto first = static_cast<uint32_t>(out_->soup.vtx.size());
    out_->soup.vtx.insert(out_->soup.vtx.end(), {a, b, c});
    out_->soup.tri.push_back({first, first + 1, first + 2});
  }
  static T3DVEC snap(const T3DVEC& v, double cells) {
    return {std::round(v.x * cells) / cells, std::round(v.y * cells) / cells,
            std::round(v.z * cells) / cells};
  }
  static double& part(T3DVEC& v, uint64_t axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

  // One of the soups, of triangles that know nothing of one another.
  void add_Loose() {
    const T3DVEC middle = random_.triple(-1, 1);
    const double size = out_->kind == 1 ? 1.0 : out_->kind == 2 ? power(-22, 0) : 0.15;
    T3DVEC p[3];
    for (T3DVEC& v : p) v = middle + random_.triple(-size, size);
    switch (out_->kind) {
      case 3:  // corners on a lattice
        for (T3DVEC& v : p) v = snap(v, 8);
        break;
      case 4: {  // faces along the axes
        const uint64_t axis = random_.below(3);
        const double level = std::round(4 * part(p[0], axis)) / 4;
        for (T3DVEC& v : p) part(v, axis) = level;
        break;
      }
      case 5:  // segments, points, and all but such
        if (random_.chance(0.5)) p[2] = p[0] + random_.real(0, 1) * (p[1] - p[0]);
        if (random_.chance(0.3)) p[2] = p[2] + power(-50, -10) * random_.triple(-1, 1);
        if (random_.chance(0.1)) p[1] = p[0];
        break;
      case 6:  // needles
        p[1] = p[0] + power(-36, -4) * (p[1] - p[0]);
        break;
      case 7:  // along the direction, or so steep that the bounds tell it hardly
        p[1] = p[0] + random_.real(-0.5, 0.5) / len(across_.z) * unit(across_.z) +
               power(-24, -4) * random_.triple(-1, 1);
        p[2] = p[0] + random_.real(-0.5, 0.5) / len(across_.z) * unit(across_.z) +
               (random_.chance(0.5) ? 1.0 : power(-24, -1)) * random_.triple(-0.3, 0.3);
        break;
      case 8:  // one upon the other
        middle_ = random_.chance(0.02) ? middle : middle_;
        for (T3DVEC& v : p) v = snap(middle_ + random_.triple(-0.3, 0.3), 4);
        break;
      case 9:  // next to one point, and a few far away
        if (random_.chance(0.97))
          for (T3DVEC& v : p) v = power(-26, -8) * v;
        break;
      default:
        break;
    }
    add(p[0], p[1], p[2]);
  }

  // Pieces of tilted planes, each in its own plane exactly as long as the mesh lies near 0.
  void add_Planes(uint32_t triangles) {
    const uint32_t n = 8u << random_.below(10);
    const double cell = 2.0 / n, x = 0.25 * static_cast<double>(random_.integer(-4, 4));
    const double y = 0.25 * static_cast<double>(random_.integer(-4, 4));
    const auto at = [&](int64_t i, int64_t k) {
      const double px = cell * static_cast<double>(i) - 1, py = cell * static_cast<double>(k) - 1;
      return T3DVEC{px, py, x * px + y * py};
    };
    for (uint32_t t = 0; t < triangles; ++t) {
      const int64_t i = random_.integer(0, n - 1), k = random_.integer(0, n - 1);
      const int64_t far = random_.integer(1, 3);
      add(at(i, k), at(i + far, k), at(i + random_.integer(-1, 1), k + far));
    }
  }

  // Walls behind one another, seen end-on along x; or all of them in one plane.
  void add_Walls(uint32_t triangles) {
    const bool one = random_.chance(0.3);
    for (uint32_t t = 0; t < triangles; ++t) {
      const double x = one ? 0 : -1 + 2.0 * t / triangles, y = random_.real(-1, 0.5);
      add({x, y, -1}, {x, y + 0.5, -1}, {x, y, 1});
    }
  }

  void make_Mesh(uint32_t triangles) {
    TSoup& soup = out_->soup;
    if (out_->kind >= kPlanes) return add_Planes(triangles);
    if (out_->kind == 10) return add_Walls(triangles);
    if (out_->kind == 11) soup = make_Sphere(2 + triangles / 40, 20, 1);
    if (out_->kind == 12) {
      soup = make_Bumpy(20, triangles / 40 + 1);
      for (T3DVEC& v : soup.vtx) v = 0.1 * v;
    }
    if (out_->kind == 13) soup = make_Tangle(random_, 40 + random_.below(100), triangles);
    while (soup.tri.size() < triangles) add_Loose();
  }

  // Out of the axes, to any size, and away from 0. Some lattices stay such: what lies in a plane
  // then does so exactly.
  void move_Mesh() {
    const bool planes = out_->kind >= kPlanes, exact = random_.chance(planes ? 0.8 : 0.4);
    turned_ = !exact && random_.chance(0.3);
    double scale = 1.0;
    if (random_.chance(0.4)) scale = exact ? std::exp2(random_.integer(-40, 16)) : power(-40, 16);
    const double farthest = std::min(0x1p18, 0x1p17 / scale);
    const double away = random_.chance(planes ? 0.2 : 0.4) ? 0.0
                        : random_.chance(0.3)              ? random_.real(0, 10)
                                              : std::min(power(planes ? 8 : 0, 18), farthest);
    T3DVEC offset = away * random_.triple(-1, 1);
    if (exact) offset = snap(offset, random_.chance(0.5) ? 1 : 0x1p30);
    for (T3DVEC& v : out_->soup.vtx) {
      if (turned_) v = {dot(v, unit(across_.x)), dot(v, unit(across_.y)), dot(v, unit(across_.z))};
      v = scale * (v + offset);
    }
  }

  void aim_Direction() {
    T3DVEC& d = out_->direction;
    const T3DFAC f = pick_Triangle();
    d = random_.triple(-1, 1);
    switch (random_.below(8)) {
      case 0:
        d = {0, 0, pick_Sign()};
        break;
      case 1:
        d = snap(d, 1);
        break;
      case 2:
        part(d, random_.below(3)) *=
            random_.chance(0.3) ? 0.0 : std::pow(10.0, random_.real(-300, 0));
        break;
      case 3:
        d = f.b - f.a;
        break;
      case 4:  // all but along a face
        d = unit(f.b - f.a) + power(-40, -2) * d;
        break;
      case 5:
        d = nml_Tri(f);
        break;
      case 6:  // the way that steep triangles were made for
        d = turned_ ? T3DVEC{0, 0, 1} : across_.z;
        break;
      default:
        break;
    }
    if (len(d) == 0.0) d = {1, 0, 0};
    d = random_.chance(0.8) ? unit(d) : power(-20, 20) * unit(d);
  }

  // A sweep takes rays that start no farther from the box of the mesh than this.
  T3DVEC keep_Near(T3DVEC p) {
    for (uint64_t axis = 0; axis < 3; ++axis) {
      double& at = part(p, axis);
      at = std::clamp(at, part(mesh_box_.min, axis) - 0.049 * reach_,
                      part(mesh_box_.max, axis) + 0.049 * reach_);
    }
    return p;
  }

  // Near an edge or a corner of a triangle, or near its plane, by about as much as is rounded.
  T3DVEC aim_AtBounds(const T3DFAC& f) {
    const T3DVEC a = across_(f.a), b = across_(f.b), c = across_(f.c);
    const T3DVEC ab = b - a, ac = c - a, n = cross(ab, ac);
    const double wide = std::max(std::max(std::fabs(ab.x), std::fabs(ab.y)),
                                 std::max(std::fabs(ac.x), std::fabs(ac.y)));
    const double longest = 2 * std::max(wide, std::max(std::fabs(ab.z), std::fabs(ac.z)));
    const double g = random_.chance(0.5) ? wide : 0.1, u = 0x1p-24;
    const double edge = 8 * u * (2 * wide + g) * (1 + 4 * wide) + u * longest + 0x1p-43;
    const double tilt = 0x1p-23 * longest * (1 + longest), up = std::max(std::fabs(n.z), 0x1p-60);
    const double across = std::fabs(n.x) + std::fabs(n.y);
    const double side = 4 * u * (across + up) + g * (2 * tilt + 16 * u * across) +
                        std::min(tilt / up, 1.0) * g * across;
    static constexpr double kParts[] = {0, 0.01, 0.03, 0.06, 0.125, 0.25, 0.5, 1, 2, 4};
    const double by = pick_Sign() * kParts[random_.below(10)];
    const double s = random_.real(-0.1, 1.1);
    double t = random_.chance(0.5) ? random_.real(0, 1 - s) : 0;
    if (random_.chance(0.6)) t += by * edge / up;  // the barycentric of the edge a b
    T3DVEC p = mix(f, s, t);
    if (random_.chance(0.4)) p = mix({f.b, f.c, f.a}, s, t);
    double along = 0;
    if (random_.chance(0.6)) along = by * std::min(side / up, 1.0);
    if (random_.chance(0.3))
      along = pick_Sign() * (2.25 * longest + 0x1p-19) * random_.real(0.1, 1.1);
    if (random_.chance(0.3)) along = random_.real(-1, 1);
    const double length = len(across_.z);
    return p + along / length * (1 / length * across_.z);
  }

  // Beyond a side of the rectangle of a triangle, by about the pad.
  T3DVEC aim_AtRectangle(const T3DFAC& f) {
    const T3DVEC a = across_(f.a), ab = across_(f.b) - a, ac = across_(f.c) - a;
    const double wide = std::max(std::max(std::fabs(ab.x), std::fabs(ab.y)),
                                 std::max(std::fabs(ac.x), std::fabs(ac.y)));
    const double pad = std::max(wide / 8, 0x1p-19) * power(-10, 0.3) / len(across_.z);
    const T3DVEC& axis = random_.chance(0.5) ? across_.x : across_.y;
    const double depth = random_.chance(0.5) ? 0 : random_.real(-1, 1) * reach_;
    const T3DVEC corner = random_.chance(0.3) ? f.a : random_.chance(0.5) ? f.b : f.c;
    return corner + pick_Sign() * pad * unit(axis) + depth * unit(across_.z);
  }

  // In the plane, on the face or off it.
  T3DVEC find_InPlane(const T3DFAC& f) {
    return mix(f, 0.125 * static_cast<double>(random_.integer(-4, 12)),
               0.125 * static_cast<double>(random_.integer(-4, 12)));
  }

  static constexpr uint64_t kWays = 11;
  T3DVEC start_Ray(const T3DFAC& f, uint64_t way) {
    const T3DVEC& d = out_->direction;
    const double s = random_.real(0, 1);
    if (out_->kind >= kPlanes && random_.chance(0.5)) return find_InPlane(f);
    switch (way) {
      case 0:
        return f.a;
      case 1:
        return 0.5 * (f.a + f.b);
      case 2:
        return cen_Tri(f);
      case 3:
        return cen_Tri(f) + 1e-3 * reach_ * nml_Tri(f);
      case 4:  // through an edge
        return mix(f, s, 0) - random_.real(-0.5, 0.5) * reach_ * unit(d);
      case 5:  // through a corner
        return f.b - random_.real(-0.5, 0.5) * reach_ * unit(d);
      case 6:
        return find_InPlane(f);
      case 7:  // in the box of the mesh
        return {random_.real(mesh_box_.min.x, mesh_box_.max.x),
                random_.real(mesh_box_.min.y, mesh_box_.max.y),
                random_.real(mesh_box_.min.z, mesh_box_.max.z)};
      case 8:
        return aim_AtRectangle(f);
      default:
        return aim_AtBounds(f);
    }
  }

  reference::Random random_;
  THostile* out_ = nullptr;
  TAcross across_ = {};
  T3DVEC middle_ = {0, 0, 0};
  C3DAABB mesh_box_;
  double reach_ = 1;
  uint32_t aim_ = 0;
  bool turned_ = false;
};

inline THostile make_Hostile(uint64_t seed, uint32_t triangles, uint32_t rays) {
  return CHostileMaker(seed).make(triangles, rays);
}

}  // namespace undercut::tests
