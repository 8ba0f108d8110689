// A random request for any computation: what the host's arrays hold, and views of them that may
// lack a pointer or a count.
//
// No view is longer than its array, and no array is longer than what it holds, so that an address
// sanitizer sees every read beyond.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "interface/exports.h"
#include "tests/support/curves.h"
#include "tests/support/hash.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

// A sphere, two fans at its poles.
inline TSoup make_Ball(uint32_t rings, uint32_t sectors, double radius) {
  TSoup soup = {{{0, 0, radius}}, {}};
  for (uint32_t i = 1; i < rings; ++i)
    for (T3DVEC p : make_Circle({0, 0, 0}, 1, sectors)) {
      const double turn = 3.141592653589793 * i / rings;
      p = radius * T3DVEC{std::sin(turn) * p.x, std::sin(turn) * p.y, std::cos(turn)};
      soup.vtx.push_back(p);
    }
  soup.vtx.push_back({0, 0, -radius});
  const auto last = static_cast<uint32_t>(soup.vtx.size() - 1);
  const auto at = [&](uint32_t i, uint32_t k) { return 1 + (i - 1) * sectors + k % sectors; };
  for (uint32_t k = 0; k < sectors; ++k) {
    soup.tri.push_back({0, at(1, k), at(1, k + 1)});
    for (uint32_t i = 1; i + 1 < rings; ++i) {
      soup.tri.push_back({at(i, k), at(i + 1, k), at(i + 1, k + 1)});
      soup.tri.push_back({at(i, k), at(i + 1, k + 1), at(i, k + 1)});
    }
    soup.tri.push_back({at(rings - 1, k), last, at(rings - 1, k + 1)});
  }
  return soup;
}

class CRandomRequest {
 public:
  using Indices = std::vector<uint32_t>;

  // `spoils`: with faults; otherwise all is in order and the computations have much to do.
  CRandomRequest(reference::Random& random, bool spoils) : random_(random), spoils_(spoils) {
    soup_ = pick_Mesh();
    other_ = pick_Mesh();
    for (uint64_t k = random.below(3); k-- > 0;) joined_.push_back(pick_Mesh());
    pick_Lists();
    pick_Geometry();
    fill_Views();
    if (spoils) drop_Views();
  }
  CRandomRequest(const CRandomRequest&) = delete;
  CRandomRequest& operator=(const CRandomRequest&) = delete;

  TUcReq req;

  // Coordinates, frame and radius for which a grid of cells of half a unit stays small.
  bool is_Tame() const { return tame_; }

  // Of everything that the host owns, but for the lists of rois if told so.
  uint64_t checksum(bool with_Rois) const {
    CHash sum;
    const auto add = [&sum](const auto& list) { sum.add_Array(list.data(), list.size()); };
    const auto add_All = [&](const auto& lists) {
      for (const auto& list : lists) add(list);
    };
    const auto add_Mesh = [&](const TSoup& soup) {
      add(soup.vtx);
      add(soup.tri);
    };
    add_Mesh(soup_);
    add_Mesh(other_);
    for (const TSoup& soup : joined_) add_Mesh(soup);
    add(roi_);
    add_All(cav_);
    add_All(areas_);
    if (with_Rois) add_All(rois_);
    add_All(points_);
    for (const TCurves& set : sets_) add_All(set.curves);
    add_All(arg_.curves);
    add(bit_);
    add(add_);
    add(axi_);
    add(frames_);
    add(joined_views_);
    add(cav_views_);
    add(area_views_);
    if (with_Rois) add(roi_views_);
    add(point_views_);
    add(set_views_);
    return sum.value();
  }

 private:
  // ---- Meshes, of at most 60 triangles ----
  TSoup pick_Shape() {
    const auto pick = [this](uint32_t low, uint32_t high) {
      return static_cast<uint32_t>(random_.integer(low, high));
    };
    switch (random_.below(11)) {
      case 0:
        return make_Grid(pick(1, 5), pick(1, 5));
      case 1:
      case 2:
        return make_Bumpy(pick(3, 6), pick(3, 4));
      case 3:
        return make_Strip(pick(1, 40));
      case 4:
        return make_Wheel(pick(3, 20));
      case 5:
        return random_.chance(0.5) ? make_Book(pick(1, 8)) : make_Pyramid();
      case 6:
        return make_Box(random_.real(0.5, 4), random_.real(0.5, 4), random_.real(0.5, 4));
      case 7:
        return make_Tangle(random_, 3 + random_.below(20), 1 + random_.below(40));
      case 8: {
        TSoup two = make_Box(2, 2, 1);
        const TSoup roof = make_Grid(3, 3);
        const auto up = static_cast<uint32_t>(two.vtx.size());
        const T3DVEC by = {random_.real(-1, 1), random_.real(-1, 1), random_.real(1, 3)};
        for (const T3DVEC& v : roof.vtx) two.vtx.push_back(v + by);
        for (const T3DTRI& t : roof.tri) two.tri.push_back({t.a + up, t.b + up, t.c + up});
        return two;
      }
      default:
        return make_Ball(pick(3, 5), pick(5, 7), random_.real(0.5, 3));
    }
  }
  void spoil_Mesh(TSoup& soup) {
    const auto any_Tri = [&]() -> T3DTRI& { return soup.tri[random_.below(soup.tri.size())]; };
    if (random_.chance(0.15)) any_Tri().b = any_Tri().a;
    if (random_.chance(0.15)) any_Tri() = any_Tri();
    if (random_.chance(0.15)) soup.vtx.push_back(soup.vtx[random_.below(soup.vtx.size())]);
    if (random_.chance(0.05))
      any_Tri().c = static_cast<uint32_t>(soup.vtx.size() + random_.below(3) * 0x7FFFFFF0u);
    if (random_.chance(0.15)) {
      const double scales[] = {1e-160, 1e-9, 1e-3, 30.0, 1e6, 1e154, 1e300};
      const double scale = scales[random_.below(7)];
      for (T3DVEC& v : soup.vtx) v = scale * v;
    }
    if (random_.chance(0.15)) {
      for (T3DVEC& v : soup.vtx)
        if (random_.chance(0.15)) (random_.chance(0.5) ? v.x : v.z) = random_.special();
    }
  }
  TSoup pick_Mesh() {
    TSoup soup = pick_Shape();
    if (random_.chance(0.5))
      for (T3DVEC& v : soup.vtx) v += random_.triple(-0.05, 0.05);
    if (spoils_) spoil_Mesh(soup);
    for (const T3DVEC& v : soup.vtx)
      tame_ = tame_ && std::fabs(v.x) < 9 && std::fabs(v.y) < 9 && std::fabs(v.z) < 9;
    return {{soup.vtx.begin(), soup.vtx.end()}, {soup.tri.begin(), soup.tri.end()}};
  }

  // ---- Lists ----
  Indices pick_List() {
    const uint64_t count = soup_.tri.size();
    Indices list;
    if (random_.chance(0.6)) {
      uint64_t first = random_.below(count), end = first + random_.below(count - first) + 1;
      if (random_.chance(0.3)) first = 0, end = count;
      for (uint64_t t = first; t < end; ++t) list.push_back(static_cast<uint32_t>(t));
    } else {
      for (uint64_t i = random_.below(20); i-- > 0;)
        list.push_back(static_cast<uint32_t>(random_.below(count)));
    }
    if (spoils_ && !list.empty() && random_.chance(0.08))
      list[random_.below(list.size())] =
          static_cast<uint32_t>(count + random_.below(2) * 0x7FFFFFFFu);
    return {list.begin(), list.end()};
  }
  void pick_Lists() {
    roi_ = pick_List();
    cav_.resize(1 + random_.below(4));
    rois_.resize(1 + random_.below(3));
    areas_.resize(1 + random_.below(3));
    for (auto* lists : {&cav_, &rois_, &areas_})
      for (Indices& list : *lists) list = pick_List();
    bit_.resize(soup_.tri.size() + (spoils_ && random_.chance(0.1)));
    for (uint8_t& byte : bit_) byte = static_cast<uint8_t>(random_.below(3));
    for (size_t t = 0; t < soup_.tri.size(); ++t)
      add_.push_back(spoils_ && random_.chance(0.05) ? random_.special() : random_.real(-1, 2));
  }

  // ---- Axes, curves, points, frames ----
  T3DVEC pick_Direction() {
    if (spoils_ && random_.chance(0.1)) return {random_.special(), random_.special(), 0.5};
    const T3DVEC d = random_.triple(-1, 1);
    if (random_.chance(0.5)) return d;
    const T3DVEC axes[] = {{0, 0, 1}, {0, 0, -1}, {1, 0, 0}, {0, -1, 0}, {0, 0, 2}, {0, 1, 1}};
    return axes[random_.below(6)];
  }
  T3DVEC pick_Point() { return soup_.vtx[random_.below(soup_.vtx.size())]; }
  Points pick_Curve() {
    Points curve = make_Circle(pick_Point(), random_.real(0.4, 3),
                               static_cast<uint32_t>(3 + random_.below(8)));
    if (random_.chance(0.4)) std::reverse(curve.begin(), curve.end());
    if (spoils_ && random_.chance(0.1)) curve[0].x = random_.special();
    if (spoils_ && random_.chance(0.1)) curve.clear();
    return {curve.begin(), curve.end()};
  }
  T3DFRM pick_Frame() {
    const T3DVEC z = pick_Direction();
    if (random_.chance(0.2)) return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
    // Rays along minus its Z axis see the sheets from above.
    if (random_.chance(0.5)) return {{1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {1, 2, 3}};
    const double length = std::sqrt(z.x * z.x + z.y * z.y + z.z * z.z);
    const T3DVEC side = std::fabs(z.x) < 0.5 ? T3DVEC{1, 0, 0} : T3DVEC{0, 1, 0};
    const T3DVEC x = cross(side, z);
    const double width = std::sqrt(x.x * x.x + x.y * x.y + x.z * x.z);
    const T3DFRM frame = {x / width, cross(z / length, x / width), z / length,
                          random_.triple(-2, 2)};
    if (!spoils_ || random_.chance(0.7)) return frame;
    tame_ = false;
    return {pick_Direction(), pick_Direction(), pick_Direction(), pick_Direction()};
  }
  void pick_Geometry() {
    add_.shrink_to_fit();
    axi_.resize(random_.chance(0.8) ? cav_.size() : random_.below(5));
    for (T3DRAY& ray : axi_) ray = {pick_Point(), pick_Direction()};
    arg_.curves.resize(1 + random_.below(2));
    for (Points& curve : arg_.curves) curve = pick_Curve();
    sets_.resize(random_.below(3));
    for (TCurves& set : sets_) set.curves = {pick_Curve()};
    points_.resize(spoils_ && random_.chance(0.1) ? 1 : areas_.size());
    for (Points& list : points_)
      for (uint64_t i = random_.below(8); i-- > 0;)
        list.push_back(pick_Point() + random_.triple(-0.5, 0.5));
    for (Points& list : points_) list.shrink_to_fit();
    frames_.resize(spoils_ && random_.chance(0.1) ? 1 : areas_.size());
    for (T3DFRM& frame : frames_) frame = pick_Frame();
  }

  // ---- Views ----
  static std::vector<TLstU32> view_Lists(std::vector<Indices>& lists) {
    std::vector<TLstU32> views;
    for (Indices& list : lists) views.push_back(view_Lst(list));
    return {views.begin(), views.end()};
  }
  static std::vector<TArrVec> view_Points(std::vector<Points>& lists) {
    std::vector<TArrVec> views;
    for (Points& list : lists) views.push_back(view_Arr(list));
    return {views.begin(), views.end()};
  }
  void fill_Views() {
    std::memset(static_cast<void*>(&req), 0, sizeof req);
    ini_Req(&req);
    for (TSoup& soup : joined_) joined_views_.push_back(soup.msh());
    cav_views_ = view_Lists(cav_);
    roi_views_ = view_Lists(rois_);
    area_views_ = view_Lists(areas_);
    point_views_ = view_Points(points_);
    for (TCurves& set : sets_) set_views_.push_back(set.view());
    joined_views_.shrink_to_fit();
    set_views_.shrink_to_fit();
    req.msh = soup_.msh();
    req.msh_b = view_Arr(joined_views_);
    if (random_.chance(0.5)) req.arg = arg_.view();
    if (random_.chance(0.85)) req.roi = view_Lst(roi_);
    req.bit = view_Arr(bit_);
    req.cav = view_Lst(cav_views_);
    req.axi = view_Arr(axi_);
    req.lst = view_Arr(set_views_);
    req.add = add_.data();
    req.f_a = spoils_ && random_.chance(0.1) ? random_.special() : random_.real(0, 180);
    req.f_b = spoils_ && random_.chance(0.1) ? random_.special() : random_.real(0, 360);
    req.ray = {pick_Point(), pick_Direction()};
    req.msh_c = other_.msh();
    req.frm = pick_Frame();
    const Indices& start = roi_.empty() ? cav_[0] : roi_;
    req.n_cnt = start.empty() ? 0 : start[random_.below(start.size())];
    req.p_a = random_.real(0, 1.5);
    req.p_b = 0.0;
    req.rois = view_Lst(roi_views_);
    req.prj_l = view_Lst(area_views_);
    req.prj_p = view_Arr(point_views_);
    req.prj_f = view_Lst(frames_);
  }
  // Pointers and counts go; nothing grows.
  template <typename View>
  void drop_Data(View& view) {
    if (random_.chance(0.02)) view.data = nullptr;
  }
  template <typename T>
  void drop(TArr<T>& view) {
    drop_Data(view);
    if (view.count != 0 && random_.chance(0.03))
      view.count = static_cast<uint32_t>(random_.below(view.count));
  }
  template <typename T>
  void drop(TLst<T>& view) {
    drop_Data(view);
    if (random_.chance(0.03)) view.count = view.count / 2;
    if (random_.chance(0.03)) view.capacity = view.capacity / 2;
  }
  void drop(T3DMSH& msh) {
    if (random_.chance(0.015)) msh.vtx = nullptr;
    if (random_.chance(0.015)) msh.tri = nullptr;
    if (random_.chance(0.015)) msh.n_vtx = 0;
    if (random_.chance(0.015)) msh.n_tri = static_cast<uint32_t>(random_.below(2));
  }
  void drop_Views() {
    for (T3DMSH& msh : joined_views_) drop(msh);
    for (auto* views : {&cav_views_, &roi_views_, &area_views_})
      for (TLstU32& view : *views) drop(view);
    for (TArrVec& view : point_views_) drop(view);
    for (TArrArrVec& view : set_views_) drop(view);
    drop(req.msh);
    drop(req.msh_c);
    drop(req.msh_b);
    drop(req.arg);
    drop(req.roi);
    drop(req.bit);
    drop(req.cav);
    drop(req.axi);
    drop(req.lst);
    drop(req.rois);
    drop(req.prj_l);
    drop(req.prj_p);
    drop(req.prj_f);
    if (random_.chance(0.02)) req.add = nullptr;
    if (random_.chance(0.1)) req.n_cnt = static_cast<uint32_t>(random_.below(100));
    if (random_.chance(0.1)) {
      req.p_a = random_.special();
      tame_ = false;
    }
    if (random_.chance(0.1)) req.ray.dir = {0, 0, 0};
  }

  reference::Random& random_;
  bool spoils_;
  bool tame_ = true;
  TSoup soup_, other_;
  std::vector<TSoup> joined_;
  Indices roi_;
  std::vector<Indices> cav_, rois_, areas_;
  std::vector<uint8_t> bit_;
  std::vector<double> add_;
  std::vector<T3DRAY> axi_;
  TCurves arg_ = {{}};
  std::vector<TCurves> sets_;
  std::vector<Points> points_;
  std::vector<T3DFRM> frames_;
  std::vector<T3DMSH> joined_views_;
  std::vector<TLstU32> cav_views_, roi_views_, area_views_;
  std::vector<TArrVec> point_views_;
  std::vector<TArrArrVec> set_views_;
};

}  // namespace undercut::tests
