#include "decomposition/measures.h"

#include <cmath>
#include <cstring>

namespace undercut {

namespace {

// Below this angle a new mean normal leaves the normal frame as it is.
constexpr double kTurn = 0.5;
// The cosine of a smaller angle, by far more than rounding can take from a cosine.
constexpr double kSurelyNoTurn = 0.99996193;

// A triangle on its way in or out.
struct TStep {
  TUcMeasures& m;
  const T3DFAC f;
  const TUcFace face;
  TUcEdge shared[3];
  uint32_t n_shared;

  TStep(const TUcRank& context, uint32_t triangle, const T3DFAC& corners)
      : m(context.region->measures), f(corners), face(corners), shared() {
    n_shared = context.map->lst_Edg(triangle, context.region->id, shared);
  }

  // What the triangle adds to the length of the region's rim: its edges less twice the shared ones.
  double rim_Gain(const T3DFAC& t) const {
    const double edges[3] = {dst(t.a, t.b), dst(t.b, t.c), dst(t.c, t.a)};
    double common = 0;
    for (uint32_t i = 0; i < n_shared; ++i) common += edges[shared[i].a];
    return edges[0] + edges[1] + edges[2] - 2.0 * common;
  }
};

// Two corners coincide in the plane of the frame: the triangle stands on end there.
bool is_Flat2(const T3DFAC& f) {
  const T2DVEC a = {f.a.x, f.a.y}, b = {f.b.x, f.b.y}, c = {f.c.x, f.c.y};
  return a == b || b == c || c == a;
}

T3DVEC turn_Vec(const T3DVEC& v, const T3DVEC& k, double cosine, double sine) {
  const T3DVEC along = dot(v, k) * k;
  const T3DVEC across = v - along;
  return along + cosine * across + sine * cross(k, across);
}

// Turns the normal frame after the mean normal has gone from `before` to `after`. A zero vector
// gives a negative angle, which leaves the frame too.
void turn_Frame(T3DFRM& frm, const T3DVEC& before, const T3DVEC& after) {
  if (cos_Vec(before, after) > kSurelyNoTurn) return;
  const double angle = ang_Vec(before, after);
  if (angle < kTurn) return;
  const T3DVEC k = unit(cross(after, before));
  const double t = -(angle * kRadians);
  const double cosine = std::cos(t), sine = std::sin(t);
  frm.x = turn_Vec(frm.x, k, cosine, sine);
  frm.y = turn_Vec(frm.y, k, cosine, sine);
  frm.z = turn_Vec(frm.z, k, cosine, sine);
}

// The order of the steps is fixed: projections use axis and normal as they were before the
// triangle.
void add_Steps(const CMap& map, CUcA& region, TStep& step) {
  TUcMeasures& m = step.m;
  const double count = region.count;
  const double w0 = count / (count + 1), w1 = 1 / (count + 1);
  m.area += step.face.area;
  m.perimeter += step.rim_Gain(step.f);
  m.centroid = w1 * step.face.centre + w0 * m.centroid;

  const T3DFAC along_axis = prj_Tri(step.f, unit(m.axis), step.face.centre);
  m.axis_area += area_Tri(along_axis);
  m.axis_perimeter += step.rim_Gain(along_axis);
  m.axis = w1 * axis_Tri(map, region, step.face.normal) + w0 * m.axis;
  m.axis_frame = frm_Ray({m.axis_frame.org, m.axis});

  const T3DFAC local = to_Local(m.normal_frame, step.f);
  if (!is_Flat2(local)) fold_Plane(m.plane, m.normal_area, local);
  const T3DFAC along_normal = prj_Tri(step.f, unit(m.normal), step.face.centre);
  m.normal_area += area_Tri(along_normal);
  m.normal_perimeter += step.rim_Gain(along_normal);
  const T3DVEC normal = w1 * step.face.normal + w0 * m.normal;
  turn_Frame(m.normal_frame, m.normal, normal);
  m.normal = normal;
}

void del_Steps(const CMap& map, CUcA& region, TStep& step) {
  TUcMeasures& m = step.m;
  const double count = region.count;
  const bool means = region.count >= 2;  // fewer leave no mean to correct
  const double w0 = means ? count / (count - 1) : 1, w1 = means ? 1 / (count - 1) : 0;
  m.area -= step.face.area;
  m.perimeter -= step.rim_Gain(step.f);
  if (means) m.centroid = w0 * m.centroid - w1 * step.face.centre;

  const T3DFAC along_axis = prj_Tri(step.f, unit(m.axis), step.face.centre);
  m.axis_area -= area_Tri(along_axis);
  m.axis_perimeter -= step.rim_Gain(along_axis);
  if (means) {
    m.axis = w0 * m.axis - w1 * axis_Tri(map, region, step.face.normal);
    m.axis_frame = frm_Ray({m.axis_frame.org, m.axis});
  }

  const T3DFAC local = to_Local(m.normal_frame, step.f);
  if (!is_Flat2(local)) unfold_Plane(m.plane, m.normal_area, local);
  const T3DFAC along_normal = prj_Tri(step.f, unit(m.normal), step.face.centre);
  m.normal_area -= area_Tri(along_normal);
  m.normal_perimeter -= step.rim_Gain(along_normal);
  if (!means) return;
  const T3DVEC normal = w0 * m.normal - w1 * step.face.normal;
  turn_Frame(m.normal_frame, m.normal, normal);
  m.normal = normal;
}

template <typename Steps>
bool upd_Tri(const TUcRank& context, uint32_t triangle, Steps steps) {
  if (!context.region || !context.map || triangle >= context.map->msh.n_tri) return false;
  const T3DFAC f = get_Fac(context.map->msh, triangle);
  if (is_Flat(f)) return false;
  TStep step(context, triangle, f);
  steps(*context.map, *context.region, step);
  return true;
}

template <typename Value>
bool is_SameBits(const Value& a, const Value& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

double snap_Azimuth(const CMap& map, double azimuth) {
  double w1 = map.w_4ax - 90;
  double w2 = map.w_4ax - 270;
  if (w1 < 0) w1 += 360;
  if (w2 < 0) w2 += 360;
  return std::fabs(azimuth - w1) > std::fabs(azimuth - w2) ? w2 : w1;
}

T3DVEC axis_Tri(const CMap& map, const CUcA& region, const T3DVEC& normal) {
  double polar = region.polar0, azimuth = region.azimuth0;
  if (!map.b_ini) {
    const T3DVEC s = car_ToSph(normal);
    polar = s.x;
    azimuth = map.b_5ax ? s.y : snap_Azimuth(map, s.y);
  }
  if (region.measures.polar_low > polar) polar = region.measures.polar_low;
  if (polar > region.measures.polar_high) polar = region.measures.polar_high;
  TUcAim& aim = map.aim;
  if (!is_SameBits(aim.polar, polar) || !is_SameBits(aim.azimuth, azimuth)) {
    aim.wanted = sph_ToCar(polar, azimuth);
    aim.polar = polar;
    aim.azimuth = azimuth;
  }
  return aim.wanted;
}

T3DVEC would_Axis(const CMap& map, const CUcA& region, const T3DVEC& normal) {
  const double count = region.count;
  const T3DVEC wanted = axis_Tri(map, region, normal);
  TUcAim& aim = map.aim;
  if (aim.count != count || !is_SameBits(aim.asked, wanted) ||
      !is_SameBits(aim.axis, region.measures.axis)) {
    aim.would = unit((1 / (count + 1)) * wanted + (count / (count + 1)) * region.measures.axis);
    aim.count = count;
    aim.asked = wanted;
    aim.axis = region.measures.axis;
  }
  return aim.would;
}

bool upd_Add(const TUcRank& context, uint32_t triangle) {
  return upd_Tri(context, triangle, add_Steps);
}

bool upd_Del(const TUcRank& context, uint32_t triangle) {
  return upd_Tri(context, triangle, del_Steps);
}

}  // namespace undercut
