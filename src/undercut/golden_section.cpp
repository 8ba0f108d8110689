// The golden section over the tilt (J. Kiefer, Sequential Minimax Search for a Maximum, 1953), with
// the bracket narrowed by differences of the points at hand. Angles in degrees.
#include <cmath>

#include "undercut/search.h"

namespace undercut {

void fold_Tilt(double tilt, double phi, double& theta, double& phi_out) {
  fold_Ang(tilt, phi, theta, phi_out);
}

double rate_Tilt(CXaxUcErr& err, double tilt, double phi) {
  double theta, azimuth;
  fold_Tilt(tilt, phi, theta, azimuth);
  return err.Err(theta, azimuth);
}

TGldRes run_Gld(CXaxUcErr& err, TGcuPar& par, uint32_t& n_itr) {
  constexpr double kGolden = 0.6180339887498949;
  double& lo = par.f_th0_s;
  double& hi = par.f_th1_s;
  double x2 = (hi - lo) * kGolden + lo;
  double x1 = (hi - x2) + lo;
  double f1 = rate_Tilt(err, x1, par.f_phi);
  double f2 = rate_Tilt(err, x2, par.f_phi);
  uint32_t i = 0;
  for (; i < par.n_max; ++i) {
    if (f2 <= f1) {
      const double next = 2 * x1 - lo;
      lo = x1;
      x1 = x2;
      f1 = f2;
      x2 = next;
      f2 = rate_Tilt(err, x2, par.f_phi);
    } else {
      const double next = (x2 - x1) + lo;
      hi = x2;
      x2 = x1;
      f2 = f1;
      x1 = next;
      f1 = rate_Tilt(err, x1, par.f_phi);
    }
    // The differences round, and below a few last digits the four points change places.
    const bool in_order = lo < x1 && x1 < x2 && x2 < hi;
    if (std::fabs(hi - lo) < par.f_eps || !in_order) break;
  }
  n_itr = i;
  return f2 <= f1 ? TGldRes{x2, f2} : TGldRes{x1, f1};
}

}  // namespace undercut
