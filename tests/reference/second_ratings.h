// Ratings of a direction by looking at the mesh from there: all triangles are drawn on a plane
// across the direction, which a grid divides, and a triangle is seen if nothing that covers its
// middle lies farther along. Fast enough to rate thousands of directions, and another method than
// casting rays. For meshes without triangles with two equal corners.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "foundation/values.h"

namespace reference::second {

using undercut::dot;
using undercut::len;

struct TRatings {
  double three;              // as minus the area that is seen along d and against it
  double five, five_Behind;  // along d and against it
};

class CView {
 public:
  CView(const T3DMSH& msh, double lift) : msh_(msh) {
    for (uint32_t t = 0; t < msh.n_tri; ++t) {
      const undercut::T3DFAC f = undercut::get_Fac(msh, t);
      normal_.push_back(undercut::nml_Tri(f));
      area_.push_back(undercut::area_Tri(f));
      start_.push_back(undercut::cen_Tri(f) + lift * normal_.back());
      total_ += area_.back();
    }
    size_ = std::max(1, static_cast<int>(std::sqrt(msh.n_tri / 2.0)));
  }

  // Afterwards ahead() and behind() tell by triangle whether it sees out along d and against it.
  void look(const T3DVEC& d) {
    draw(d);
    enter_All();
    ahead_.assign(msh_.n_tri, true);
    behind_.assign(msh_.n_tri, true);
    for (uint32_t t = 0; t < msh_.n_tri; ++t) find_Covers(t);
  }
  const std::vector<bool>& ahead() const { return ahead_; }
  const std::vector<bool>& behind() const { return behind_; }

  TRatings rate(const T3DVEC& d, double weight) {
    look(d);
    double seen = 0;
    for (uint32_t t = 0; t < msh_.n_tri; ++t) {
      const double once = area_[t] * (weight + (1 - weight) * std::fabs(dot(normal_[t], d_)));
      seen += once * (int(ahead_[t]) + int(behind_[t]));
    }
    return {-seen, rate_Five(ahead_, d_, weight), rate_Five(behind_, -d_, weight)};
  }

 private:
  // The part of the area that is blocked, and how far d leans from what is seen.
  double rate_Five(const std::vector<bool>& seen, const T3DVEC& d, double weight) const {
    T3DVEC mean = {0, 0, 0};
    double blocked = 0;
    for (uint32_t t = 0; t < msh_.n_tri; ++t) {
      if (seen[t])
        mean += normal_[t];
      else
        blocked += area_[t];
    }
    const double cosine = len(mean) > 0 ? dot(d, mean) / len(mean) : 0;
    return blocked / total_ + weight * std::sqrt(std::max(0.0, 1 - cosine * cosine));
  }

  T3DVEC project(const T3DVEC& p) const { return {dot(p, u_), dot(p, v_), dot(p, d_)}; }
  int column(double x) const { return hold((x - low_.x) * scale_.x); }
  int row(double y) const { return hold((y - low_.y) * scale_.y); }
  int hold(double cell) const { return std::clamp(static_cast<int>(cell), 0, size_ - 1); }

  void draw(const T3DVEC& d) {
    d_ = undercut::unit(d);
    const T3DVEC aside = std::fabs(d_.x) < 0.6 ? T3DVEC{1, 0, 0} : T3DVEC{0, 1, 0};
    u_ = undercut::unit(undercut::cross(d_, aside));
    v_ = undercut::cross(d_, u_);
    drawn_.clear();
    low_ = {HUGE_VAL, HUGE_VAL, 0};
    T3DVEC high = {-HUGE_VAL, -HUGE_VAL, 0};
    for (uint32_t v = 0; v < msh_.n_vtx; ++v) {
      const T3DVEC p = project(msh_.vtx[v]);
      drawn_.push_back(p);
      low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), 0};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), 0};
    }
    scale_ = {size_ / (high.x - low_.x), size_ / (high.y - low_.y), 0};
  }

  // Calls visit(cell) for each cell that the box of a drawn triangle covers.
  template <typename Visit>
  void each_Cell(uint32_t t, Visit visit) const {
    const T3DTRI& tri = msh_.tri[t];
    const T3DVEC &a = drawn_[tri.a], &b = drawn_[tri.b], &c = drawn_[tri.c];
    const int x0 = column(std::min({a.x, b.x, c.x})), x1 = column(std::max({a.x, b.x, c.x}));
    const int y0 = row(std::min({a.y, b.y, c.y})), y1 = row(std::max({a.y, b.y, c.y}));
    for (int y = y0; y <= y1; ++y)
      for (int x = x0; x <= x1; ++x) visit(static_cast<size_t>(y) * size_ + x);
  }
  // The triangles of cell k are those from first_[k] to first_[k + 1] of list_.
  void enter_All() {
    first_.assign(static_cast<size_t>(size_) * size_ + 1, 0);
    for (uint32_t t = 0; t < msh_.n_tri; ++t) each_Cell(t, [&](size_t cell) { ++first_[cell]; });
    uint32_t sum = 0;
    for (uint32_t& first : first_) first = sum += first;
    list_.resize(sum);
    for (uint32_t t = 0; t < msh_.n_tri; ++t)
      each_Cell(t, [&](size_t cell) { list_[--first_[cell]] = t; });
  }

  void find_Covers(uint32_t s) {
    const T3DVEC p = project(start_[s]);
    const size_t cell = static_cast<size_t>(row(p.y)) * size_ + column(p.x);
    for (uint32_t i = first_[cell]; i < first_[cell + 1] && (ahead_[s] || behind_[s]); ++i) {
      const T3DTRI& tri = msh_.tri[list_[i]];
      const T3DVEC &a = drawn_[tri.a], &b = drawn_[tri.b], &c = drawn_[tri.c];
      const double wa = turn(b, c, p), wb = turn(c, a, p), wc = turn(a, b, p);
      const double whole = wa + wb + wc;
      const bool covers = (wa >= 0 && wb >= 0 && wc >= 0) || (wa <= 0 && wb <= 0 && wc <= 0);
      if (!covers || whole == 0) continue;
      const double height = (wa * a.z + wb * b.z + wc * c.z) / whole;
      if (height > p.z) ahead_[s] = false;
      if (height < p.z) behind_[s] = false;
    }
  }
  static double turn(const T3DVEC& a, const T3DVEC& b, const T3DVEC& p) {
    return (a.x - p.x) * (b.y - p.y) - (a.y - p.y) * (b.x - p.x);
  }

  T3DMSH msh_;
  std::vector<T3DVEC> normal_, start_;
  std::vector<double> area_;
  double total_ = 0;
  int size_;  // of the grid, along each side
  // The drawing: its axes, its corner and cells, the vertices in it.
  T3DVEC u_ = {}, v_ = {}, d_ = {}, low_ = {}, scale_ = {};
  std::vector<T3DVEC> drawn_;
  std::vector<uint32_t> first_, list_;
  std::vector<bool> ahead_, behind_;
};

// Directions spread evenly over the sphere: a Fibonacci spiral (R. Swinbank, R. Purser, Fibonacci
// Grids, 2006).
inline std::vector<T3DVEC> spread_Directions(uint32_t count) {
  std::vector<T3DVEC> directions;
  for (uint32_t i = 0; i < count; ++i) {
    const double z = 1 - (2.0 * i + 1) / count;
    const double turn = 2.399963229728653 * i, r = std::sqrt(1 - z * z);
    directions.push_back({r * std::cos(turn), r * std::sin(turn), z});
  }
  return directions;
}

}  // namespace reference::second
