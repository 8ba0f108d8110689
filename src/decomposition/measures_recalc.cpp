// All measures of a region from its list, after the component split has made it.
//
// Triangles with two equal corners are left out of every sum; means divide by the whole count.
#include "decomposition/measures.h"

namespace undercut {

namespace {

// Calls visit(p, q) for each edge across which another region lies. An edge at the border of the
// mesh has no neighbour and does not count.
template <typename Visit>
void each_Rim(const CMap& map, uint32_t t, Visit visit) {
  const T3DTRI& tri = map.msh.tri[t];
  const uint32_t* list;
  const uint32_t n = map.nbr_Tri(t, list);
  for (uint32_t j = 0; j < n; ++j) {
    if (list[j] == t || map.region_of[list[j]] == map.region_of[t]) continue;
    const T3DTRI& other = map.msh.tri[list[j]];
    for (uint32_t k = 0; k < 3; ++k) {
      const uint32_t p = corner(other, k), q = corner(other, k + 1);
      if (has_Vtx(tri, p) && has_Vtx(tri, q)) visit(map.msh.vtx[p], map.msh.vtx[q]);
    }
  }
}

template <typename Visit>
void each_Tri(const CMap& map, const CUcA& region, Visit visit) {
  for (int32_t t = region.head; t != -1; t = map.next_Tri(t)) {
    const T3DFAC f = get_Fac(map.msh, static_cast<uint32_t>(t));
    if (!is_Flat(f)) visit(static_cast<uint32_t>(t), f);
  }
}

double sum_Area(const CMap& map, const CUcA& region, const T3DVEC& along) {
  double sum = 0;
  each_Tri(map, region,
           [&](uint32_t, const T3DFAC& f) { sum += area_Tri(prj_Tri(f, along, cen_Tri(f))); });
  return sum;
}

double sum_Rim(const CMap& map, const CUcA& region, const T3DVEC& along) {
  double sum = 0;
  each_Tri(map, region, [&](uint32_t t, const T3DFAC&) {
    each_Rim(map, t, [&](const T3DVEC& p, const T3DVEC& q) {
      const T3DVEC middle = 0.5 * (p + q);
      sum += dst(prj_Pnt(p, along, middle), prj_Pnt(q, along, middle));
    });
  });
  return sum;
}

void rcalc_Sums(const CMap& map, CUcA& region) {
  TUcMeasures& m = region.measures;
  m.area = m.perimeter = 0;
  m.centroid = {0, 0, 0};
  each_Tri(map, region, [&](uint32_t t, const T3DFAC& f) {
    m.area += area_Tri(f);
    each_Rim(map, t, [&](const T3DVEC& p, const T3DVEC& q) { m.perimeter += dst(p, q); });
    m.centroid += cen_Tri(f);
  });
  m.centroid /= region.count;
}

// The frame's origin is the centroid of the whole region of interest, unlike that of the normal
// frame, which is the region's own. On purpose: it is what a host gets for a region that was split.
void rcalc_Axis(const CMap& map, CUcA& region) {
  TUcMeasures& m = region.measures;
  const T3DVEC before = unit(m.axis);
  m.axis_area = sum_Area(map, region, before);
  m.axis_perimeter = sum_Rim(map, region, before);
  m.axis = {0, 0, 0};
  each_Tri(map, region,
           [&](uint32_t, const T3DFAC& f) { m.axis += axis_Tri(map, region, nml_Tri(f)); });
  m.axis /= region.count;
  m.axis_frame = frm_Ray({map.roi_centroid, unit(m.axis)});
}

void rcalc_Plane(const CMap& map, CUcA& region) {
  TUcMeasures& m = region.measures;
  double sum_x = 0, sum_y = 0, sum = 0;
  double sxx = 0, syy = 0, sxy = 0;
  each_Tri(map, region, [&](uint32_t, const T3DFAC& f) {
    const T3DFAC l = to_Local(m.normal_frame, f);
    const double s2 = l.a.x * (l.b.y - l.c.y) + l.b.x * (l.c.y - l.a.y) + l.c.x * (l.a.y - l.b.y);
    sum_x += (l.a.x + l.b.x + l.c.x) * s2;
    sum_y += (l.a.y + l.b.y + l.c.y) * s2;
    sum += s2;
    TUcPlane own;
    mom_Tri(l, own);
    sxx += own.sxx;
    syy += own.syy;
    sxy += own.sxy;
  });
  TUcPlane& plane = m.plane;
  if (sum != 0.0) plane.centre = {sum_x / (3 * sum), sum_y / (3 * sum)};
  plane.sxx = sxx;
  plane.syy = syy;
  plane.sxy = sxy;
}

}  // namespace

void rcalc_Uca(const CMap& map, CUcA& region) {
  TUcMeasures& m = region.measures;
  rcalc_Sums(map, region);
  rcalc_Axis(map, region);
  m.normal = {0, 0, 0};
  each_Tri(map, region, [&](uint32_t, const T3DFAC& f) { m.normal += nml_Tri(f); });
  m.normal /= region.count;
  const T3DVEC along = unit(m.normal);
  m.normal_frame = frm_Ray({m.centroid, along});
  rcalc_Plane(map, region);
  m.normal_area = sum_Area(map, region, along);
  central_Moments(m.plane, m.normal_area);
  m.normal_perimeter = sum_Rim(map, region, along);
}

}  // namespace undercut
