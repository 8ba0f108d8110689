// What the golden calls hand over with a mesh: axes, regions, curves, points and an obstacle, all
// made from the mesh by additions, products, divisions and square roots, which round alike
// everywhere. Lengths in mm.
#pragma once

#include <undercut/exports.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "bench/bodies.h"
#include "tests/boundary/defaults.h"
#include "tests/support/curves.h"

namespace undercut::tests {

using Indices = std::vector<uint32_t>;

inline std::vector<T3DRAY> make_Axes(const std::vector<T3DVEC>& directions) {
  std::vector<T3DRAY> axes;
  for (const T3DVEC& d : directions) axes.push_back({{1, 2, 3}, d});
  return axes;
}
// The directions to the corners of an icosahedron, nearly.
inline std::vector<T3DRAY> axes_Round() {
  std::vector<T3DVEC> directions;
  for (const double a : {-1.0, 1.0})
    for (const double b : {-1.625, 1.625}) {
      directions.push_back({0, a, b});
      directions.push_back({b, 0, a});
      directions.push_back({a, b, 0});
    }
  return make_Axes(directions);
}

class CGoldenScene {
 public:
  explicit CGoldenScene(TSoup mesh) : soup(std::move(mesh)), obstacle_(bodies::make_Ring(2000)) {
    measure_Box();
    measure_Triangles();
    cut_Regions();
    draw_Curves();
    place_Points();
    place_Obstacle();
    mark_Cells();
  }
  CGoldenScene(const CGoldenScene&) = delete;
  CGoldenScene& operator=(const CGoldenScene&) = delete;

  TSoup soup;
  double size = 0;         // diagonal of the box
  Indices all, alternate;  // every triangle; every second, twice
  std::vector<Indices> octants, patches;
  std::vector<Indices> spots;  // small regions, for searches
  std::vector<T3DVEC> patch_normals;
  std::vector<TCurves> curves;
  uint32_t top = 0;  // the triangle whose centroid is highest

  uint32_t triangles() const { return static_cast<uint32_t>(soup.tri.size()); }
  bool is_Small() const { return triangles() <= 12000; }
  bool is_Large() const { return triangles() > 40000; }

  // Parameters are the defaults afterwards. Axes, roi and curves are left to the caller.
  TUcReq make_Request() {
    defaults::restore();
    TUcReq req = {};
    ini_Req(&req);
    req.msh = soup.msh();
    req.add = add_.data();
    req.bit = view_Arr(bit_);
    req.msh_c = obstacle_.view();
    obstacles_ = {req.msh_c};
    req.msh_b = view_Arr(obstacles_);
    req.ray = {middle_, {1, 0.25, 0.125}};
    req.frm = kIdentity;
    req.frm.z = {0, 0, -1};
    req.frm.y = {0, -1, 0};
    req.n_cnt = top;
    req.p_a = size / 300;
    req.p_b = 0.0;
    req.f_a = 50.0;
    req.f_b = 20.0;
    return req;
  }
  // Views that live until the next of their kind.
  TLstLstU32 view_Regions(std::vector<Indices>& lists) {
    views_.clear();
    for (Indices& list : lists) views_.push_back(view_Lst(list));
    return view_Lst(views_);
  }
  void set_Axes(TUcReq& req, const std::vector<T3DRAY>& axes) {
    axes_ = axes;
    req.axi = view_Arr(axes_);
  }
  void set_Areas(TUcReq& req) {
    req.prj_l = view_Regions(patches);
    req.prj_p = points_.view();
    req.prj_f = view_Lst(frames_);
  }

  // The triangles whose centroids are nearest to a triangle's, in rising order.
  Indices list_Nearest(uint32_t triangle, uint32_t count) const {
    std::vector<std::pair<double, uint32_t>> order;
    for (uint32_t t = 0; t < triangles(); ++t) {
      const double distance = dst_Sqr(centroids_[t], centroids_[triangle]);
      order.emplace_back(std::isfinite(distance) ? distance : kAbsent, t);
    }
    count = std::min(count, triangles());
    std::nth_element(order.begin(), order.begin() + count - 1, order.end());
    Indices list;
    for (uint32_t i = 0; i < count; ++i) list.push_back(order[i].second);
    std::sort(list.begin(), list.end());
    return list;
  }

 private:
  static constexpr double kFar = 1e6;  // beyond it nothing is measured

  static bool is_Near(const T3DVEC& v) {
    return std::fabs(v.x) < kFar && std::fabs(v.y) < kFar && std::fabs(v.z) < kFar;
  }
  T3DFAC face(uint32_t t) { return get_Fac(soup.msh(), t); }

  void measure_Box() {
    T3DVEC low = {kFar, kFar, kFar}, high = -low;
    for (const T3DVEC& v : soup.vtx) {
      if (!is_Near(v)) continue;
      low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
      high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
    }
    size = dst(low, high);
    middle_ = 0.5 * (low + high);
  }
  void measure_Triangles() {
    for (uint32_t t = 0; t < triangles(); ++t) {
      centroids_.push_back(cen_Tri(face(t)));
      if (is_Near(centroids_[t]) && centroids_[t].z > centroids_[top].z) top = t;
      alternate.push_back(t / 2 * 2);
    }
    all.resize(triangles());
    std::iota(all.begin(), all.end(), 0u);
  }
  void cut_Regions() {
    octants.resize(8);
    for (uint32_t t = 0; t < triangles(); ++t) {
      const T3DVEC c = centroids_[t] - middle_;
      octants[(c.x > 0) + 2 * (c.y > 0) + 4 * (c.z > 0)].push_back(t);
    }
    const uint32_t count = std::min(triangles() / 5, 2500u);
    for (uint32_t k = 0; k < 4; ++k) {
      const uint32_t middle = (2 * k + 1) * (triangles() / 8);
      patches.push_back(list_Nearest(middle, count));
      if (k < 3) spots.push_back(list_Nearest(middle, 400));
      T3DVEC normal = {0, 0, 0};
      for (const uint32_t t : patches[k]) {
        const T3DFAC f = face(t);
        if (is_Near(f.a) && is_Near(f.b) && is_Near(f.c)) normal += cross(f.b - f.a, f.c - f.a);
      }
      patch_normals.push_back(unit(normal));
    }
  }
  // Rings of twelve points round a vertex within the surface, counterclockwise seen from outside.
  void draw_Curves() {
    static constexpr double kRing[12][2] = {{5, 0},  {4, 3},   {3, 4},   {0, 5},  {-3, 4}, {-4, 3},
                                            {-5, 0}, {-4, -3}, {-3, -4}, {0, -5}, {3, -4}, {4, -3}};
    for (uint32_t k = 0; k < 4; ++k) {
      const uint32_t t = (2 * k + 1) * (triangles() / 8);
      const T3DVEC normal = patch_normals[k];
      const T3DVEC side = std::fabs(normal.x) < 0.5 ? T3DVEC{1, 0, 0} : T3DVEC{0, 1, 0};
      const T3DVEC x = unit(cross(side, normal)), y = cross(normal, x);
      Points ring;
      for (const auto& at : kRing)
        ring.push_back(centroids_[t] + size / 125 * (at[0] * x + at[1] * y));
      curves.push_back({{ring}});
    }
  }
  // Points float off each tenth triangle of each patch.
  void place_Points() {
    const double height = std::min(0.4, size / 250);
    for (uint32_t k = 0; k < 4; ++k) {
      points_.curves.emplace_back();
      for (uint32_t i = 0; i < patches[k].size(); i += 10)
        points_.curves[k].push_back(centroids_[patches[k][i]] + height * patch_normals[k]);
      frames_.push_back(kIdentity);
      frames_[k].z = -patch_normals[k];
    }
  }
  // A ring of about half of the mesh, above its middle.
  void place_Obstacle() {
    const T3DVEC to = middle_ + size * T3DVEC{0.0625, 0.03125, 0.5};
    for (T3DVEC& v : obstacle_.points) v = to + size / 200 * v;
  }
  // Every second cell of a grid of cubes is a piece.
  void mark_Cells() {
    for (uint32_t t = 0; t < triangles(); ++t) {
      const T3DVEC c = 12 / size * (centroids_[t] - middle_);
      const bool near = is_Near(centroids_[t]);
      const double cell = near ? std::floor(c.x) + std::floor(c.y) + std::floor(c.z) : 0;
      bit_.push_back(cell == 2 * std::floor(cell / 2));
      add_.push_back(1e-4 * (t / 200 % 97));
    }
  }

  T3DVEC middle_ = {0, 0, 0};
  std::vector<T3DVEC> centroids_;
  std::vector<uint8_t> bit_;
  std::vector<double> add_;
  TCurves points_ = {{}};
  std::vector<T3DFRM> frames_;
  bodies::TBody obstacle_;
  std::vector<T3DMSH> obstacles_;
  std::vector<TLstU32> views_;
  std::vector<T3DRAY> axes_;
};

}  // namespace undercut::tests
