// Rim statistics: how much of the border of each region is seen along its axis. From the midpoint
// of each border edge, lifted along the normal of the region's triangle there, does a ray leave the
// mesh? Lengths in mm.
//
// A region costs what its own list and the triangles at its border cost, however large the mesh is.
#include <algorithm>

#include "foundation/bit_vector.h"
#include "foundation/parallel.h"
#include "mesh/boundary.h"
#include "mesh/sight.h"
#include "projection/statistics.h"

namespace undercut {

namespace {

class CRimStats {
 public:
  CRimStats(CallFrame& frame, const TStatInput& in) : frame_(frame), in_(in) {}

  void build_Tables();
  void alloc_Scratch();
  TUcStat rate(uint32_t k, const T3DVEC& direction);

 private:
  void enter_Region(const TLstU32& region);
  void leave_Region();
  uint32_t find_Holder(const T3DSGM& edge);
  uint8_t see_Edge(const T3DSGM& edge, const T3DVEC& direction);
  TUcStat sum_Sight(const TArr<T3DSGM>& edges, const uint8_t* sight) const;

  CallFrame& frame_;
  const TStatInput& in_;
  C3DTriAABBTree tree_;
  Scoped<TAdj> vtx_tri_;
  // Of the region at hand: its bits, and its triangles, each once.
  CBitVector bits_;
  Scoped<TLst<uint32_t>> region_;
  Scoped<TArr<uint32_t>> number_;  // for bnd_Lst
};

void CRimStats::build_Tables() {
  frame_.need(tree_.BuildRays(in_.msh), -12);
  frame_.need(adj_VtxTri(in_.msh, *vtx_tri_) == 0, -14);
}

void CRimStats::alloc_Scratch() {
  const uint32_t most = std::min(most_Triangles(in_), uint32_t{in_.msh.n_tri});
  frame_.need(bits_.init(in_.msh.n_tri) && alloc(*region_, most), -16);
  frame_.need(alloc(*number_, in_.msh.n_vtx), -17);
}

void CRimStats::enter_Region(const TLstU32& region) {
  for (uint32_t i = 0; i < region.count; ++i) {
    const uint32_t t = region.data[i];
    if (bits_.test(t)) continue;
    bits_.set(t);
    region_->data[region_->count++] = t;
  }
}

void CRimStats::leave_Region() {
  for (uint32_t i = 0; i < region_->count; ++i) bits_.clear(region_->data[i]);
  region_->count = 0;
}

// The triangle of the region that has both ends of a border edge. No second one has, so the end
// where fewer triangles meet tells: the other may be the hub of a large fan.
uint32_t CRimStats::find_Holder(const T3DSGM& edge) {
  const TAdj& at = *vtx_tri_;
  const uint32_t end = at.counts[edge.a] <= at.counts[edge.b] ? edge.a : edge.b;
  for (uint32_t i = 0; i < at.counts[end]; ++i) {
    const uint32_t t = at.lists[end][i];
    const T3DTRI& tri = in_.msh.tri[t];
    if (bits_.test(t) && has_Vtx(tri, edge.a) && has_Vtx(tri, edge.b)) return t;
  }
  return kNone;
}

uint8_t CRimStats::see_Edge(const T3DSGM& edge, const T3DVEC& direction) {
  const uint32_t t = find_Holder(edge);
  if (t == kNone) return kNoRay;
  const T3DFAC f = get_Fac(in_.msh, t);
  if (is_Flat(f)) return kNoRay;
  const T3DVEC middle = (in_.msh.vtx[edge.a] + in_.msh.vtx[edge.b]) / 2.0;
  return tree_.AnyHit({middle + in_.lift * nml_Tri(f), direction}) ? 0 : kSeesAhead;
}

// An edge that is not tested stays in the number of edges and in the length of the rim.
TUcStat CRimStats::sum_Sight(const TArr<T3DSGM>& edges, const uint8_t* sight) const {
  TUcStat stat = {};
  stat.seen = 1;
  stat.rim = edges.count;
  double rim = 0.0, rim_seen = 0.0;
  for (uint32_t i = 0; i < edges.count; ++i) {
    const double length = dst(in_.msh.vtx[edges.data[i].a], in_.msh.vtx[edges.data[i].b]);
    rim += length;
    if (sight[i] == kSeesAhead) {
      ++stat.rim_seen;
      rim_seen += length;
    } else if (sight[i] == 0) {
      stat.seen = 0;
    }
  }
  stat.share = share_Of(rim_seen, rim);
  return stat;
}

TUcStat CRimStats::rate(uint32_t k, const T3DVEC& direction) {
  enter_Region(get_Region(in_, k));
  Scoped<TArr<T3DSGM>> edges;
  Scoped<TArr<uint8_t>> sight;
  const bool bordered = bnd_Lst(in_.msh, *region_, number_->data, *edges) == 0;
  frame_.need(bordered && alloc(*sight, edges->count), -17);
  each_Index(edges->count,
             [&](uint32_t i) { sight->data[i] = see_Edge(edges->data[i], direction); });
  leave_Region();
  return sum_Sight(*edges, sight->data);
}

}  // namespace

}  // namespace undercut

int32_t get_Stb(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TStatInput in = load_Stats(req, res);
    Scoped<TArr<T3DMAT>> axes;
    need_Stats(frame, in, *axes);
    CRimStats rims(frame, in);
    rims.build_Tables();
    Scoped<TArr<TUcStat>> stats;
    frame.need(alloc(*stats, in.cav.capacity), -15);
    rims.alloc_Scratch();
    for (uint32_t k = 0; k < in.cav.capacity; ++k)
      stats->data[k] = rims.rate(k, ray_Dir(axes->data[k]));
    res->sta = stats.take().data;
  });
}
