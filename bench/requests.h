// One request over a body, filled for every computation on regions, rims, points and pieces.
#pragma once

#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include "bench/bodies.h"
#include "interface/exports.h"

namespace bodies {

// Regions are the body's octants, each with the axis that looks at its middle, or runs of triangles
// that follow one another, each with the axis along a normal. Curves run along a row of vertices, a
// third of the way down and half-way. Pieces are eight of ten rows of triangles. Areas for
// projection are the octants, along the axis of each; their points float 0.4 mm off the surface,
// one over every tenth triangle. Rims are those of what is seen from above and connected with
// triangle 0.
class TRequest {
 public:
  explicit TRequest(TBody body, uint32_t run = 0) : body_(std::move(body)) {
    ini_Req(&req);
    req.msh = body_.view();
    set_Regions(run);
    set_Rims();
    set_Pieces();
    set_Areas();
    req.ray = {{0, 0, 0}, {0, 0.25, 1}};
  }
  TRequest(const TRequest&) = delete;
  TRequest& operator=(const TRequest&) = delete;

  TUcReq req;

  uint32_t regions() const { return static_cast<uint32_t>(cav_.size()); }
  size_t points() const {
    return std::accumulate(prj_p_.begin(), prj_p_.end(), size_t{0},
                           [](size_t sum, const auto& list) { return sum + list.count; });
  }

 private:
  using Indices = std::vector<uint32_t>;

  static TLst<uint32_t> view(Indices& list) {
    const auto count = static_cast<uint32_t>(list.size());
    return {list.data(), count, count};
  }
  template <typename T>
  static uint32_t size(const std::vector<T>& list) {
    return static_cast<uint32_t>(list.size());
  }

  undercut::T3DFAC fac(uint32_t t) { return undercut::get_Fac(req.msh, t); }
  std::vector<Indices> cut_Octants() {
    std::vector<Indices> octants(8);
    for (uint32_t t = 0; t < req.msh.n_tri; ++t) {
      const T3DVEC c = undercut::cen_Tri(fac(t));
      octants[(c.x > 0) + 2 * (c.y > 0) + 4 * (c.z > 0)].push_back(t);
    }
    return octants;
  }
  // The direction of a tool that comes from outside to octant k.
  static T3DVEC tool_Of(uint32_t k) {
    return undercut::unit({k & 1 ? -1.0 : 1.0, k & 2 ? -1.0 : 1.0, k & 4 ? -1.0 : 1.0});
  }

  void set_Regions(uint32_t run) {
    if (run == 0) {
      regions_ = cut_Octants();
      for (uint32_t k = 0; k < 8; ++k) axi_.push_back({{0, 0, 0}, tool_Of(k)});
    } else {
      for (uint32_t t = 0; t < req.msh.n_tri; t += run) {
        axi_.push_back({{0, 0, 0}, -undercut::nml_Tri(fac(t))});
        regions_.emplace_back();
        for (uint32_t k = t; k < t + run && k < req.msh.n_tri; ++k) regions_.back().push_back(k);
      }
    }
    for (Indices& region : regions_) cav_.push_back(view(region));
    add_.resize(req.msh.n_tri);
    for (uint32_t t = 0; t < req.msh.n_tri; ++t) add_[t] = 1e-4 * (t % 97);
    req.cav = {cav_.data(), regions(), regions()};
    req.axi = {axi_.data(), size(axi_)};
    req.add = add_.data();
  }

  void set_Rims() {
    roi_.resize(req.msh.n_tri);
    std::iota(roi_.begin(), roi_.end(), 0u);
    req.roi = view(roi_);
    req.frm = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 0}};
    req.n_cnt = 0;
    req.p_a = 0.5;
    req.p_b = 0.0;
  }

  void set_Pieces() {
    const uint32_t width = body_.triangles[0].b;  // vertices of a row: see bodies.h
    const uint32_t rows = size(body_.points) / width;
    for (const uint32_t row : {rows / 3, rows / 2}) {
      const auto first = body_.points.begin() + static_cast<std::ptrdiff_t>(row) * width;
      curves_.emplace_back(first, first + width);
    }
    for (auto& curve : curves_) arg_.push_back({curve.data(), width});
    req.arg = {arg_.data(), 1};
    bit_.resize(req.msh.n_tri);
    for (uint32_t t = 0; t < req.msh.n_tri; ++t) bit_[t] = t / (2 * width) % 10 < 8;
    req.bit = {bit_.data(), size(bit_)};
  }

  void set_Areas() {
    areas_ = cut_Octants();
    points_.resize(areas_.size());
    for (uint32_t k = 0; k < size(areas_); ++k) {
      const T3DVEC tool = tool_Of(k);
      for (size_t i = 0; i < areas_[k].size(); i += 10)
        points_[k].push_back(undercut::cen_Tri(fac(areas_[k][i])) + 0.4 * -tool);
      prj_l_.push_back(view(areas_[k]));
      prj_p_.push_back({points_[k].data(), size(points_[k])});
      prj_f_.push_back(undercut::kIdentity);
      prj_f_.back().z = tool;
    }
    req.prj_l = {prj_l_.data(), size(prj_l_), size(prj_l_)};
    req.prj_p = {prj_p_.data(), size(prj_p_)};
    req.prj_f = {prj_f_.data(), size(prj_f_), size(prj_f_)};
  }

  TBody body_;
  std::vector<Indices> regions_, areas_;
  Indices roi_;
  std::vector<TLstU32> cav_, prj_l_;
  std::vector<T3DRAY> axi_;
  std::vector<double> add_;
  std::vector<uint8_t> bit_;
  std::vector<std::vector<T3DVEC>> curves_, points_;
  std::vector<TArr<T3DVEC>> arg_, prj_p_;
  std::vector<T3DFRM> prj_f_;
};

}  // namespace bodies
