// The scan of the sphere on rings of constant theta, with points at a constant step of arc: a
// near-uniform, coarse covering, with fewer points near the poles. Degrees.
#include <cmath>

#include "undercut/search.h"

namespace undercut {

namespace {

constexpr double kTooMany = 4294967296.0;  // steps of one loop

void rate(CXaxUcErr& err, double theta, double phi, TAmoRes& best) {
  const double rating = err.Err(theta, phi);
  if (rating < best.rating) best = {theta, phi, rating};
}

// Calls visit(angle) from the start on, while strictly below the end. Steps are added up. A step
// that leads nowhere ends the loop after its first angle, and so do too many steps. An infinite one
// leads beyond every end.
template <typename Visit>
void step_Angle(double start, double end, double step, Visit visit) {
  const bool moves = step > 0.0 && (end - start) / step < kTooMany;
  for (double angle = start; angle < end;) {
    visit(angle);
    const double next = angle + step;
    if (!moves || next == angle) return;
    angle = next;
  }
}

// The step of phi on a ring: of the two counts of points next to the wanted step of arc the one
// that fits the range better. It is infinite for a count of 0, and below 0 where the sine is.
double step_OfRing(const TNxnPar& par, double theta) {
  const double arc = par.f_dyy / std::sin(theta * kRadians);
  const double range = std::fabs(par.box[3] - par.box[1]);
  const double n = std::floor(range / arc), m = std::ceil(range / arc);
  const double low = range - n * arc, high = m * arc - range;
  return range / (high <= low ? m : n);
}

}  // namespace

TAmoRes scan_Nxn(CXaxUcErr& err, const TNxnPar& par) {
  TAmoRes best = {kAbsent, kAbsent, kAbsent};
  step_Angle(par.box[0], par.box[2], par.f_dxx, [&](double theta) {
    if (theta == 0.0 || theta == 180.0) {
      rate(err, theta, 0.0, best);
      return;
    }
    step_Angle(par.box[1], par.box[3], step_OfRing(par, theta),
               [&](double phi) { rate(err, theta, phi, best); });
  });
  return best;
}

}  // namespace undercut
