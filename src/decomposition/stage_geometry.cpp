// Geometry of regions beside the step files: what the measures look like in space.
#include <cmath>
#include <cstring>

#include "decomposition/measures.h"
#include "decomposition/stage_files.h"
#include "files/writers.h"
#include "mesh/boundary.h"

namespace undercut {

namespace {

constexpr int kEllipsePoints = 64;

using Line = std::vector<T3DVEC>;

// Polylines with an id each, as the writers take them.
struct TLines {
  std::vector<Line> lines;
  std::vector<uint32_t> ids;

  void add(const CUcA& region, Line line) {
    ids.push_back(static_cast<uint32_t>(region.id));
    lines.push_back(std::move(line));
  }
  void write(const std::string& name) {
    std::vector<TArr<T3DVEC>> inner;
    for (Line& line : lines) inner.push_back({line.data(), static_cast<uint32_t>(line.size())});
    const auto n = static_cast<uint32_t>(inner.size());
    pol_Ids(name.c_str(), {inner.data(), n}, {ids.data(), n});
  }
};

void add_Frame(TLines& out, const CUcA& region, const T3DFRM& frm) {
  for (const T3DVEC& axis : {frm.x, frm.y, frm.z}) out.add(region, {frm.org, frm.org + axis});
}

void write_Frames(const CDcmPar& par, const std::string& stem,
                  const std::vector<const CUcA*>& regions, bool single,
                  T3DFRM TUcMeasures::*frame) {
  if (single) {
    const T3DFRM& frm = regions.front()->measures.*frame;
    if (std::strstr(par.l_lcs, "pol")) pol_Frm((stem + ".pol").c_str(), frm);
    if (std::strstr(par.l_lcs, "trf")) trf_Frm((stem + ".trf").c_str(), frm);
    return;
  }
  TLines out;
  for (const CUcA* region : regions) add_Frame(out, *region, region->measures.*frame);
  out.write(stem + ".pol");
}

// The mean normal, drawn from the origin of a frame.
void write_Normals(const std::string& name, const std::vector<const CUcA*>& regions,
                   T3DFRM TUcMeasures::*frame) {
  TLines out;
  for (const CUcA* region : regions) {
    const T3DVEC org = (region->measures.*frame).org;
    out.add(*region, {org, org + unit(region->measures.normal)});
  }
  out.write(name);
}

// The rim of the region, laid into the XY plane of its normal frame.
void write_Footprints(const CMap& map, const std::string& name,
                      const std::vector<const CUcA*>& regions) {
  TLines out;
  for (const CUcA* region : regions) {
    CBitVector set;
    if (!set.init(map.msh.n_tri)) return;
    for (const uint32_t t : lst_Tri(map, *region)) set.set(t);
    Scoped<TArr<T3DSGM>> edges;
    Scoped<TArr<TArr<uint32_t>>> loops;
    if (bnd_Own(map.msh, set, *edges) != 0 || !bnd_Loops(map.msh, *edges, *loops)) continue;
    const T3DFRM& frm = region->measures.normal_frame;
    for (uint32_t i = 0; i < loops->count; ++i) {
      Line line;
      for (uint32_t j = 0; j < loops->data[i].count; ++j) {
        T3DVEC p = to_Local(frm, map.msh.vtx[loops->data[i].data[j]]);
        p.z = 0;
        line.push_back(to_World(frm, p));
      }
      if (!line.empty()) line.push_back(line.front());
      out.add(*region, std::move(line));
    }
  }
  out.write(name);
}

void write_Ellipses(const std::string& name, const std::vector<const CUcA*>& regions) {
  TLines out;
  for (const CUcA* region : regions) {
    TUcElp e;
    if (!get_Elp(region, e)) continue;
    Line line;
    for (int i = 0; i <= kEllipsePoints; ++i) {
      const double t = 360.0 / kEllipsePoints * (i % kEllipsePoints) * kRadians;
      const double u = e.a * std::cos(t), v = e.b * std::sin(t);
      const double c = std::cos(e.angle), s = std::sin(e.angle);
      line.push_back(
          to_World(region->measures.normal_frame, {e.x + u * c - v * s, e.y + u * s + v * c, 0}));
    }
    out.add(*region, std::move(line));
  }
  out.write(name);
}

}  // namespace

void write_Geometry(const CMap& map, const CDcmPar& par, const std::string& stem,
                    const std::vector<const CUcA*>& regions, bool single) {
  if (regions.empty()) return;
  const auto wants = [&](const char* word) { return std::strstr(par.l_geo, word) != nullptr; };
  if (wants("cen")) {
    std::vector<T3DVEC> centres;
    centres.reserve(regions.size());
    for (const CUcA* region : regions) centres.push_back(region->measures.centroid);
    asc_Pts((stem + "-oCen.asc").c_str(), {centres.data(), static_cast<uint32_t>(centres.size())});
  }
  if (wants("pcs")) write_Frames(par, stem + "-pLcs", regions, single, &TUcMeasures::axis_frame);
  if (wants("pml")) write_Normals(stem + "-pNml.pol", regions, &TUcMeasures::axis_frame);
  if (wants("tcs")) write_Frames(par, stem + "-tLcs", regions, single, &TUcMeasures::normal_frame);
  if (wants("tml")) write_Normals(stem + "-tNml.pol", regions, &TUcMeasures::normal_frame);
  if (wants("fsp")) write_Footprints(map, stem + "-tFsp.pol", regions);
  if (wants("elp")) write_Ellipses(stem + "-tElp.pol", regions);
}

}  // namespace undercut
