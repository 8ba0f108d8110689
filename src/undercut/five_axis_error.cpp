// The rating of a direction for five axes: the share of the area that is blocked, plus a penalty
// for the tilt against the mean normal of what is seen.
#include <algorithm>
#include <cmath>

#include "undercut/evaluators.h"

namespace undercut {

namespace {

bool is_Inside(const double (&box)[4], double theta, double phi) {
  return theta >= box[0] && theta <= box[2] && phi >= box[1] && phi <= box[3];
}

// The sine of the angle between two unit vectors. Rounding can push the cosine of parallel vectors
// just above 1, and the best direction must not rate as not a number.
double sine_Between(const T3DVEC& a, const T3DVEC& b) {
  const double c = dot(a, b);
  const double rest = 1.0 - c * c;
  return std::sqrt(rest < 0.0 ? 0.0 : rest);
}

}  // namespace

void C5axUcErr::set_Off(double off) {
  off_ = off;
  mesh_.eye.ini_Sight(mesh_.tree, {mesh_.msh, off_, mesh_.nml});
}

void C5axUcErr::set_Box(const double (&box)[4]) { std::copy_n(box, 4, box_); }

bool C5axUcErr::ini_Err(const T3DMSH& mesh) {
  clr_Err();
  if (!mesh_.prepare(mesh)) return false;
  set_Off(off_);
  for (uint32_t t = 0; t < mesh.n_tri; ++t) sum_ += mesh_.area[t];
  return true;
}

void C5axUcErr::clr_Err() {
  mesh_.clear();
  sel_ = {};
  sum_ = 0.0;
}

// Normals are added as they are, not weighted by the area. A triangle without a ray counts as
// blocked, with its area of 0.
void C5axUcErr::add_Block(const T3DVEC& direction, const uint32_t* list, uint32_t count,
                          TSums& sums) {
  mesh_.eye.see_Along(direction, Ways::kAhead, list, count, mesh_.sight);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t t = list ? list[i] : i;
    if (mesh_.sight[i] & kSeesAhead) {
      sums.normal += mesh_.nml[t];
    } else {
      sums.blocked += mesh_.area[t];
    }
  }
}

double C5axUcErr::Err(const double& theta, const double& phi) {
  if (use_box_ && !is_Inside(box_, theta, phi)) return kAbsent;
  const T3DVEC d = sph_ToCar(theta, phi);
  const uint32_t n_tri = mesh_.msh.n_tri;
  TSums sums;
  if (sel_.data) {
    // A list that repeats triangles can be longer than the scratch is.
    for (uint32_t first = 0; n_tri != 0 && first < sel_.count;) {
      const uint32_t count = std::min(n_tri, sel_.count - first);
      add_Block(d, sel_.data + first, count, sums);
      first += count;
    }
  } else {
    add_Block(d, nullptr, n_tri, sums);
  }
  return sums.blocked / sum_ + gew_ * sine_Between(d, unit(sums.normal));
}

}  // namespace undercut
