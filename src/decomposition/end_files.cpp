// The end files that show axes, frames and the angular position of each region.
#include <string>

#include "decomposition/output.h"
#include "decomposition/stage_files.h"
#include "files/file.h"
#include "files/writers.h"

namespace undercut {

// Each axis is drawn from where its own line meets the region, or from the centre if it misses.
bool CStageFiles::write_Axes(const std::string& stem, const std::vector<TUcRef>& regions) const {
  File file((stem + "11-Axi.pol").c_str());
  Scoped<TLst<uint32_t>> scratch;
  if (!file || !alloc(*scratch, map_.msh.n_tri)) return false;
  for (const TUcRef& ref : regions) {
    if (ref.id == 0 || ref.region->count == 0) continue;
    const TUcMeasures& m = ref.region->measures;
    const T3DVEC axis = unit(m.axis);
    T3DVEC p = m.centroid;
    hit_Uca(map_, tree_, ref.id, {m.centroid, axis}, *scratch, p);
    file.printf("<axi-%d>\n", ref.id);
    file.point(p);
    file.point(p + par_.l_len * axis);
    file.printf("</axi-%d>\n", ref.id);
  }
  return true;
}

bool CStageFiles::write_Frames(const std::string& stem, const std::vector<TUcRef>& regions) const {
  for (const TUcRef& ref : regions) {
    if (ref.id == 0) continue;
    const std::string name = stem + "12-Lcs-" + std::to_string(ref.id) + ".txt";
    if (!trf_Frm(name.c_str(), ref.region->measures.axis_frame)) return false;
  }
  return true;
}

// The angle of each axis from the nearer pole; an axis on the equator counts as southern.
bool CStageFiles::write_Latitudes(const std::string& stem,
                                  const std::vector<TUcRef>& regions) const {
  File file((stem + "13-Win.txt").c_str());
  if (!file) return false;
  for (const TUcRef& ref : regions) {
    if (ref.id == 0) continue;
    const T3DVEC axis = unit(ref.region->measures.axis);
    const double north = ang_Vec(axis, {0, 0, 1}), south = ang_Vec(axis, {0, 0, -1});
    if (south > north)
      file.printf("north latitude (%04d) := %+5.2lf [deg]\n", ref.id, north);
    else
      file.printf("south latitude (%04d) := %+5.2lf [deg]\n", ref.id, south);
  }
  return true;
}

}  // namespace undercut
