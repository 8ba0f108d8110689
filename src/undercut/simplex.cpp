// The downhill simplex over (theta, phi), in degrees. It departs from Nelder and Mead in what it
// returns (the best vertex before the last step, not after it) and in the contraction, which always
// starts from the worst vertex before a reflection took its place.
#include <algorithm>
#include <cmath>
#include <utility>

#include "undercut/search.h"

namespace undercut {

namespace {

constexpr double kReflection = 1.0;
constexpr double kExpansion = 2.0;
constexpr double kContraction = -0.5;

struct TVertex {
  T2DVEC at;
  double rating;
};

TVertex rate(CXaxUcErr& err, const T2DVEC& at) { return {at, err.Err(at.x, at.y)}; }

void order(TVertex& a, TVertex& b) {
  if (a.rating > b.rating) std::swap(a, b);
}

// Per coordinate, in degrees of angle, not of arc.
bool is_Small(const TVertex& a, const TVertex& b, double eps) {
  return std::max(std::fabs(a.at.x - b.at.x), std::fabs(a.at.y - b.at.y)) < eps;
}

T2DVEC middle(const T2DVEC& a, const T2DVEC& b) { return (a + b) / 2.0; }

// One step on vertices in rising order of their ratings.
void step_Simplex(CXaxUcErr& err, TVertex (&v)[3]) {
  const TVertex best = v[0], worst = v[2];
  const T2DVEC centre = middle(v[0].at, v[1].at);
  const auto try_At = [&](double factor) {
    return rate(err, centre + factor * (centre - worst.at));
  };
  const TVertex reflected = try_At(kReflection);
  if (reflected.rating < best.rating) {
    const TVertex expanded = try_At(kExpansion);
    v[2] = expanded.rating < best.rating ? expanded : reflected;
    return;
  }
  if (reflected.rating < v[1].rating) {
    v[2] = reflected;
    return;
  }
  if (reflected.rating <= worst.rating) v[2] = reflected;
  const TVertex contracted = try_At(kContraction);
  if (contracted.rating < worst.rating) {
    v[2] = contracted;
    return;
  }
  v[1] = rate(err, middle(best.at, v[1].at));
  v[2] = rate(err, middle(best.at, v[2].at));
}

}  // namespace

void ini_Simplex(TAmoPar& par, const T2DVEC& start, double radius) {
  const double root = std::sqrt(2.0);
  par.box_a = start + radius * (T2DVEC{-1.0, -1.0} / root);
  par.box_b = start + radius * (T2DVEC{1.0, -1.0} / root);
  par.box_c = start + radius * T2DVEC{0.0, 1.0};
}

TAmoRes run_Amo(CXaxUcErr& err, TAmoPar& par) {
  TVertex v[3] = {rate(err, par.box_a), rate(err, par.box_b), rate(err, par.box_c)};
  TVertex best = v[0];
  uint32_t i = 0;
  for (; i < par.n_max; ++i) {
    order(v[0], v[1]);
    order(v[0], v[2]);
    order(v[1], v[2]);
    best = v[0];
    if (is_Small(v[0], v[2], par.f_eps)) break;
    step_Simplex(err, v);
  }
  par.box_a = v[0].at;
  par.box_b = v[1].at;
  par.box_c = v[2].at;
  par.n_itr = i;
  return {best.at.x, best.at.y, best.rating};
}

}  // namespace undercut
