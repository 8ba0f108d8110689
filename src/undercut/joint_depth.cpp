// Undercut depth field of a mesh that shadows itself and that further meshes, joined into one,
// shadow too. Lengths in mm.
//
// All axes are classified first; they are independent of one another, unlike those of a mesh alone.
// On each axis every triangle has up to two distances: from the rim of its own patch, and from the
// rim of what the joined mesh hides of itself. Where both shadow it, the deeper one decides; the
// smallest value over all axes stays.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "files/stage_line.h"
#include "files/writers.h"
#include "foundation/parallel.h"
#include "interface/parameters.h"
#include "mesh/boundary.h"
#include "mesh/sight.h"
#include "undercut/depth_request.h"
#include "undercut/joined_mesh.h"
#include "undercut/patch_rims.h"
#include "undercut/selection.h"

namespace undercut {

namespace {

// What rays along one axis find. A triangle with two equal corners is in no set.
struct TShadows {
  CBitVector own_hit, own_vis;  // over the mesh, by itself
  CBitVector add_hit, add_vis;  // over the mesh, by the joined mesh
  CBitVector sum_hit, sum_vis;  // over the joined mesh, by itself
};

class CJointDepth {
 public:
  CJointDepth(CallFrame& frame, const CUCsPar& par, const TDepthInput& in)
      : frame_(frame), par_(par), in_(in), msh_(in.msh) {}

  void begin() {
    need_Axes(frame_, in_, *axes_);
    need_Selection(frame_, in_, sel_);
  }
  void join();
  void choose_Way();
  void build_Trees();
  void size_Sets();
  void build_Adjacency();
  void classify_Axes();
  void rate_Axes();
  double* finish();

 private:
  void cast(CSight& eye, uint32_t n_tri, const T3DFRM& frm, CBitVector& hit, CBitVector& vis);
  void print_Counts(uint32_t axis) const;
  void flood_Added(const TShadows& shadows, const T3DFRM& frm);
  void flood_Own(const TShadows& shadows, const T3DFRM& frm);
  TFlood get_Flood(const T3DFRM& frm, double* rho);
  void combine(const TShadows& shadows);

  CallFrame& frame_;
  const CUCsPar& par_;
  const TDepthInput& in_;
  const T3DMSH msh_;
  Scoped<T3DMSH> sum_;
  Scoped<TArr<T3DMAT>> axes_;
  bool floods_ = false;  // the slack is not ample: distances spread from triangle to triangle
  C3DTriAABBTree msh_tree_, sum_tree_;
  CBitVector sel_;
  std::unique_ptr<TShadows[]> shadows_;  // by axis
  CBitVector clear_;                     // free of both shadows along some axis
  CBitVector waiting_;                   // the working set of one patch of a flood
  CBitVector msh_ends_, sum_ends_;       // by vertex: ends of the open borders
  Scoped<TArr<double>> dfi_, rho_add_, rho_own_, rho_;
  TNodePool<CQueue::Node> pool_;  // before the queue, which gives its nodes back
  CQueue queue_;
  Scoped<TAdj> vtx_tri_, tri_tri_, sum_tri_tri_;
  CPatchRims patches_{msh_, *tri_tri_};
  CSight own_eye_, add_eye_, sum_eye_;  // the mesh at itself, at the sum, and the sum at itself
  Scoped<TArr<uint8_t>> sight_;
};

T3DFRM get_Frame(const T3DMAT& mat) {
  T3DFRM frm;
  mat_ToFrm(mat, frm);
  return frm;
}

void CJointDepth::join() {
  frame_.need(join_Meshes(in_.shadows, *sum_), -9);
  if (!par_.b_dbg) return;
  stl_Msh("D:/msh.stl", msh_);
  stl_Msh("D:/sum.stl", *sum_);
}

void CJointDepth::choose_Way() {
  const double extent = std::max(find_Extent(msh_), find_Extent(*sum_));
  for (uint32_t k = 0; k < axes_->count; ++k)
    floods_ = floods_ || !is_Ample(par_.f_off, extent, get_Frame(axes_->data[k]));
}

// An empty mesh ends here.
void CJointDepth::build_Trees() {
  frame_.need(msh_tree_.Prepare(msh_), -10);
  frame_.need(sum_tree_.Prepare(*sum_), -11);
  own_eye_.ini_Sight(msh_tree_, {msh_, par_.f_tol});
  add_eye_.ini_Sight(sum_tree_, {msh_, par_.f_tol});
  sum_eye_.ini_Sight(sum_tree_, {*sum_, par_.f_tol});
}

void CJointDepth::size_Sets() {
  const uint32_t n_tri = msh_.n_tri, n_sum = sum_->n_tri;
  shadows_.reset(new (std::nothrow) TShadows[axes_->count]);
  frame_.need(shadows_ != nullptr, -12);
  for (uint32_t k = 0; k < axes_->count; ++k) {
    TShadows& shadows = shadows_[k];
    frame_.need(shadows.own_hit.init(n_tri), -12);
    frame_.need(shadows.own_vis.init(n_tri), -13);
    frame_.need(shadows.add_hit.init(n_tri), -14);
    frame_.need(shadows.add_vis.init(n_tri), -15);
    frame_.need(shadows.sum_hit.init(n_sum), -16);
    frame_.need(shadows.sum_vis.init(n_sum), -17);
  }
  frame_.need(clear_.init(n_tri), -18);
  frame_.need(waiting_.init(n_tri) && patches_.reserve(n_tri), -19);
  frame_.need(msh_ends_.init(msh_.n_vtx), -20);
  frame_.need(sum_ends_.init(sum_->n_vtx), -21);
  frame_.need(alloc(*dfi_, n_tri), -22);
  frame_.need(alloc(*rho_add_, n_tri), -23);
  frame_.need(alloc(*rho_own_, n_tri), -24);
  if (!floods_) return;
  frame_.need(alloc(*rho_, n_tri), -24);
  frame_.need(n_tri <= INT32_MAX && pool_.init(static_cast<int32_t>(n_tri)), -25);
  queue_.SetPool(&pool_);
}

void CJointDepth::build_Adjacency() {
  frame_.need(adj_VtxTri(msh_, *vtx_tri_) == 0, -26);
  frame_.need(adj_TriTri(msh_, *vtx_tri_, *tri_tri_) == 0, -27);
  frame_.need(mark_Open(msh_, *tri_tri_, msh_ends_), -28);
  frame_.need(adj_TriTri(*sum_, *sum_tri_tri_) == 0, -29);
  frame_.need(mark_Open(*sum_, *sum_tri_tri_, sum_ends_), -30);
}

// The first n_tri triangles, along minus Z.
void CJointDepth::cast(CSight& eye, uint32_t n_tri, const T3DFRM& frm, CBitVector& hit,
                       CBitVector& vis) {
  eye.see_Along(-frm.z, Ways::kAhead, nullptr, n_tri, sight_->data);
  hit.assign([&](uint64_t t) { return sight_->data[t] == 0; });
  vis.assign([&](uint64_t t) { return (sight_->data[t] & kSeesAhead) != 0; });
}

void CJointDepth::print_Counts(uint32_t axis) const {
  const TShadows& shadows = shadows_[axis];
  uint32_t seen = 0, own = 0, add = 0;
  for (uint32_t t = 0; t < msh_.n_tri; ++t) {
    seen += shadows.own_vis.test(t) && shadows.add_vis.test(t);
    own += shadows.own_hit.test(t);
    add += shadows.add_hit.test(t);
  }
  std::printf("axis %u :: seen %u, hit by own %u, hit by added %u\n", axis, seen, own, add);
}

void CJointDepth::classify_Axes() {
  frame_.at(UNDERCUT_NO_MEMORY);
  frame_.need(alloc(*sight_, std::max(msh_.n_tri, sum_->n_tri)), UNDERCUT_NO_MEMORY);
  for (uint32_t k = 0; k < axes_->count; ++k) {
    const T3DFRM frm = get_Frame(axes_->data[k]);
    TShadows& shadows = shadows_[k];
    cast(own_eye_, msh_.n_tri, frm, shadows.own_hit, shadows.own_vis);
    cast(add_eye_, msh_.n_tri, frm, shadows.add_hit, shadows.add_vis);
    cast(sum_eye_, sum_->n_tri, frm, shadows.sum_hit, shadows.sum_vis);
    if (par_.b_sta) print_Counts(k);
  }
}

void CJointDepth::rate_Axes() {
  std::fill_n(dfi_->data, dfi_->count, kAbsent);
  for (uint32_t k = 0; k < axes_->count; ++k) {
    const T3DFRM frm = get_Frame(axes_->data[k]);
    std::fill_n(rho_add_->data, rho_add_->count, kAbsent);
    std::fill_n(rho_own_->data, rho_own_->count, kAbsent);
    flood_Added(shadows_[k], frm);
    flood_Own(shadows_[k], frm);
    combine(shadows_[k]);
  }
}

TFlood CJointDepth::get_Flood(const T3DFRM& frm, double* rho) {
  return {msh_, *tri_tri_, frm, par_.f_off, waiting_, queue_, rho};
}

// One rim for all that the joined mesh hides of itself.
void CJointDepth::flood_Added(const TShadows& shadows, const T3DFRM& frm) {
  Scoped<TArr<T3DSGM>> border;
  frame_.need(bnd_Adj(*sum_, *sum_tri_tri_, &shadows.sum_hit, *border) == 0, -31);
  if (border->count == 0) return;
  drop_Open(*border, sum_ends_);
  CRim rim;
  const int32_t built = rim.Build(*sum_, *border, frm);
  frame_.need(built == 0, -31 + built);
  if (!floods_) {
    measure_Set(msh_, frm, rim, shadows.add_hit, rho_add_->data);
    return;
  }
  frame_.need(rim.build_Tree(), -34);
  Scoped<TLst<TLst<uint32_t>>> patches;
  frame_.need(cmp_Adj(msh_, *tri_tri_, shadows.add_hit, *patches), -35);
  for (uint32_t j = 0; j < patches->count; ++j) {
    const TLst<uint32_t>& patch = patches->data[j];
    for (uint32_t i = 0; i < patch.count; ++i) waiting_.set(patch.data[i]);
    const int32_t flooded = flood_Depth(get_Flood(frm, rho_add_->data), rim, patch);
    frame_.need(flooded == 0, -35 + flooded);
  }
}

void CJointDepth::flood_Own(const TShadows& shadows, const T3DFRM& frm) {
  frame_.need(patches_.find(shadows.own_hit) && patches_.make_Rims(), -41);
  frame_.need(patches_.list_Borders(shadows.own_hit), -42);
  for (uint32_t j = 0; j < patches_.count(); ++j) {
    const int32_t built = patches_.build_Rim(j, msh_ends_, frm);
    frame_.need(built == 0, -42 + built);
  }
  if (!floods_) {
    patches_.measure(frm, rho_own_->data);
    return;
  }
  const int32_t flooded = patches_.measure_ByFlood(get_Flood(frm, rho_->data), rho_own_->data);
  frame_.need(flooded == 0, -44 + flooded);
}

void CJointDepth::combine(const TShadows& shadows) {
  each_Index(msh_.n_tri, [&](uint32_t t) {
    const bool own = shadows.own_hit.test(t), add = shadows.add_hit.test(t);
    double& depth = dfi_->data[t];
    if (own && add)
      depth = std::min(depth, std::max(rho_add_->data[t], rho_own_->data[t]));
    else if (own)
      depth = std::min(depth, rho_own_->data[t]);
    else if (add)
      depth = std::min(depth, rho_add_->data[t]);
    else if (shadows.own_vis.test(t) && shadows.add_vis.test(t))
      clear_.set(t);
  });
}

double* CJointDepth::finish() {
  for (uint32_t t = 0; t < msh_.n_tri; ++t)
    if (clear_.test(t)) dfi_->data[t] = 0.0;
  clear_Outside(sel_, *dfi_);
  if (par_.b_dbg) {
    const T2DVEC range = {par_.l_ivl, par_.r_ivl};
    const auto mode = static_cast<int32_t>(par_.i_col);
    if (par_.p_col == 0)
      ply_Rng("D:/dFi.ply", msh_, range.x, range.y, dfi_->data, mode);
    else
      ply_Vtx("D:/dFi.ply", msh_, *vtx_tri_, range, dfi_->data, mode);
  }
  return dfi_.take().data;
}

}  // namespace

}  // namespace undercut

int32_t get_dFb(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar par = g_UCs;
    const TDepthInput in = read_Depth(req, res);
    need_Indices(frame, in);

    const CStageLine line(par.b_rti, "calculate :: dFi of UC(msh,add)");
    CJointDepth field(frame, par, in);
    field.begin();
    field.join();
    field.choose_Way();
    field.build_Trees();
    field.size_Sets();
    field.build_Adjacency();
    field.classify_Axes();
    field.rate_Axes();
    res->dfi = field.finish();
  });
}
