// The rating of a direction for three axes: minus the area that is seen from both ends of it, mm2.
#include <cmath>

#include "undercut/evaluators.h"

namespace undercut {

namespace {

constexpr double kLift = 0.001;  // of a ray's start off the surface, in mm

}  // namespace

bool C3axUcErr::ini_Err(const T3DMSH& mesh) {
  if (!mesh_.prepare(mesh)) return false;
  mesh_.eye.ini_Sight(mesh_.tree, {mesh_.msh, kLift, mesh_.nml});
  return true;
}

void C3axUcErr::clr_Err() { mesh_.clear(); }

void C3axUcErr::see_Both(const T3DVEC& direction) {
  mesh_.eye.see_Along(direction, Ways::kBoth, nullptr, mesh_.msh.n_tri, mesh_.sight);
}

double C3axUcErr::Err(const double& theta, const double& phi) {
  const T3DVEC d = sph_ToCar(theta, phi);
  see_Both(d);
  double sum = 0.0;
  for (uint32_t t = 0; t < mesh_.msh.n_tri; ++t) {
    const uint8_t seen = mesh_.sight[t];
    if ((seen & (kSeesAhead | kSeesBehind)) == 0) continue;
    // Both rays give the same term: it takes the normal's part along the axis without its sign.
    const double area = mesh_.area[t];
    const double term = gew_ * area + (1.0 - gew_) * std::fabs(dot(mesh_.nml[t], d)) * area;
    if (seen & kSeesAhead) sum += term;
    if (seen & kSeesBehind) sum += term;
  }
  return -sum;
}

int32_t C3axUcErr::get_Vis(const double& theta, const double& phi, CBitVector& vis) {
  const uint32_t n_tri = mesh_.msh.n_tri;
  if (vis.size() != n_tri) return -5;
  see_Both(sph_ToCar(theta, phi));
  vis.clear_All();
  for (uint32_t t = 0; t < n_tri; ++t)
    if (mesh_.sight[t] & (kSeesAhead | kSeesBehind)) vis.set(t);
  return 0;
}

}  // namespace undercut
