// Surface statistics: how much of each region is seen along its axis. From the centroid of each
// triangle, lifted along its normal, does a ray leave the mesh? Areas in mm2.
#include "projection/statistics.h"

#include <algorithm>

#include "foundation/axis_frames.h"
#include "interface/parameters.h"
#include "mesh/sight.h"

namespace undercut {

TStatInput load_Stats(const TUcReq* req, const TUcRes* res) {
  if (!req || !res) return {};
  return {req->msh, req->cav, req->axi, g_UCs.f_tol};
}

void need_Stats(CallFrame& frame, const TStatInput& in, TArr<T3DMAT>& axes) {
  need_Msh(frame, in.msh);
  frame.need(in.cav.data, -5);
  frame.need(in.cav.capacity, -6);
  frame.need(in.axi.data, -7);
  frame.need(in.axi.count, -8);
  frame.need(in.axi.count == in.cav.capacity, -9);
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  frame.need(ok_Regions(in.cav, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);
  const int32_t framed = mat_Axes(in.axi, axes);  // -5 no memory, -6 no frame
  frame.need(framed == 0, framed - 5);
}

TLstU32 get_Region(const TStatInput& in, uint32_t k) {
  const TLstU32 region = in.cav.data[k];
  return region.data ? region : TLstU32{};
}

uint32_t most_Triangles(const TStatInput& in) {
  uint32_t most = 0;
  for (uint32_t k = 0; k < in.cav.capacity; ++k)
    most = std::max(most, uint32_t{get_Region(in, k).count});
  return most;
}

T3DVEC ray_Dir(const T3DMAT& axis) {
  T3DFRM frm;
  mat_ToFrm(axis, frm);
  return -frm.z;
}

namespace {

// The rays of a region, cast in parallel, are summed up in the order of its list: the sums are the
// same bits for any number of threads. A triangle with two equal corners is not tested, so it
// neither clears the flag nor counts, its area being 0; one that is listed twice counts twice.
TUcStat sum_Sight(const T3DMSH& msh, const TLstU32& region, const uint8_t* sight) {
  TUcStat stat = {};
  stat.seen = 1;
  for (uint32_t i = 0; i < region.count; ++i) {
    if (sight[i] == kNoRay) continue;
    const double area = area_Tri(get_Fac(msh, region.data[i]));
    stat.area += area;
    if (sight[i] == kSeesAhead)
      stat.area_seen += area;
    else
      stat.seen = 0;
  }
  stat.share = share_Of(stat.area_seen, stat.area);
  return stat;
}

}  // namespace

}  // namespace undercut

int32_t get_Sta(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TStatInput in = load_Stats(req, res);
    Scoped<TArr<T3DMAT>> axes;
    need_Stats(frame, in, *axes);
    C3DTriAABBTree tree;
    frame.need(tree.Prepare(in.msh), -12);
    Scoped<TArr<uint8_t>> sight;
    frame.need(alloc(*sight, most_Triangles(in)), -13);
    Scoped<TArr<TUcStat>> stats;
    frame.need(alloc(*stats, in.cav.capacity), -14);

    frame.at(-13);
    CSight eye(tree, {in.msh, in.lift});
    for (uint32_t k = 0; k < in.cav.capacity; ++k) {
      const TLstU32 region = get_Region(in, k);
      eye.see_Along(ray_Dir(axes->data[k]), Ways::kAhead, region.data, region.count, sight->data);
      stats->data[k] = sum_Sight(in.msh, region, sight->data);
    }
    res->sta = stats.take().data;
  });
}
