// Undercut depth field of a mesh that shadows itself: for each triangle the distance, measured
// across the tool axis, from its centroid to the rim of the undercut patch that holds it, and the
// smallest such distance over all axes. Lengths in mm.
//
// Each axis casts rays from the triangles alone that no axis before it has seen. Distances spread
// through a patch from neighbour to neighbour (depth_flood.h), so that a patch costs about as many
// small queries as it has triangles.
#include <algorithm>
#include <cstdio>

#include "interface/parameters.h"
#include "mesh/boundary.h"
#include "mesh/components.h"
#include "mesh/sight.h"
#include "mesh/weld.h"
#include "undercut/depth_flood.h"
#include "undercut/depth_request.h"
#include "undercut/selection.h"
#include "undercut/test_mesh.h"

namespace undercut {

namespace {

constexpr bool kPrintAreas = false;  // the rated areas of dropped patches, on standard error

class CDepthField {
 public:
  CDepthField(CallFrame& frame, const CUCsPar& par, const TDepthInput& in)
      : frame_(frame), par_(par), in_(in), view_(in.msh) {}

  void begin() {
    need_Axes(frame_, in_, *axes_);
    need_Selection(frame_, in_, sel_);
  }
  void size_Sets();
  void build_Test();
  void weld();
  void build_Adjacency();
  void run_Axes();
  double* finish();

 private:
  void classify(const T3DFRM& frm);
  void clear_Seen();
  void rate_Hit(uint32_t axis, const T3DFRM& frm);
  bool drop_Small(uint32_t axis, uint32_t j, const TLst<uint32_t>& patch);
  void rate_Patch(const TLst<uint32_t>& patch, const T3DFRM& frm);

  CallFrame& frame_;
  const CUCsPar& par_;
  const TDepthInput& in_;
  T3DMSH view_;  // the mesh, or the welded one
  Scoped<TWeld> weld_;
  Scoped<TArr<T3DMAT>> axes_;
  CTestMesh test_;
  Scoped<TAdj> vtx_tri_, tri_tri_;
  CBitVector sel_;
  CBitVector seen_, dark_;  // from some axis; hit from every axis so far
  CBitVector vis_, hit_;    // from one axis; later `hit` is the working set of one patch
  CBitVector rim_v_;        // by vertex: ends of the mesh's own open border
  Scoped<TArr<double>> dfi_, rho_;
  TNodePool<CQueue::Node> pool_;  // before the queue, which gives its nodes back
  CQueue queue_;
  Scoped<TArr<uint32_t>> todo_;    // triangles that no axis has seen yet
  Scoped<TArr<uint8_t>> sight_;    // what an axis finds for each of them
  Scoped<TArr<uint32_t>> number_;  // for bnd_Lst
};

// An empty mesh has no bits and ends here.
void CDepthField::size_Sets() {
  const uint32_t n_tri = in_.msh.n_tri;
  frame_.need(seen_.init(n_tri), -12);
  frame_.need(dark_.init(n_tri), -13);
  frame_.need(vis_.init(n_tri), -14);
  frame_.need(hit_.init(n_tri), -15);
  frame_.need(rim_v_.init(in_.msh.n_vtx), -16);
  frame_.need(alloc(*dfi_, n_tri), -17);
  frame_.need(alloc(*rho_, n_tri), -18);
  frame_.need(n_tri <= INT32_MAX && pool_.init(static_cast<int32_t>(n_tri)), -19);
  queue_.SetPool(&pool_);
}

void CDepthField::build_Test() {
  const TestMesh made = test_.Build(in_.msh, par_.f_dil);
  frame_.need(made != TestMesh::kNoSoup, -20);
  frame_.need(made != TestMesh::kNoSoupTree, -21);
  frame_.need(made != TestMesh::kNoTree, -22);
}

void CDepthField::weld() {
  if (!(par_.f_eps > 0.0)) return;
  frame_.at(-23);
  frame_.need(wld_Tol(in_.msh, *weld_, par_.f_eps), -23);
  view_ = weld_->merged;
}

void CDepthField::build_Adjacency() {
  frame_.need(adj_VtxTri(view_, *vtx_tri_) == 0, -24);
  frame_.need(adj_TriTri(view_, *vtx_tri_, *tri_tri_) == 0, -25);
  frame_.need(mark_Open(view_, *vtx_tri_, rim_v_), -26);
}

void CDepthField::run_Axes() {
  frame_.at(UNDERCUT_NO_MEMORY);
  frame_.need(
      alloc(*todo_, view_.n_tri) && alloc(*sight_, view_.n_tri) && alloc(*number_, view_.n_vtx),
      UNDERCUT_NO_MEMORY);
  std::fill_n(dfi_->data, dfi_->count, kAbsent);
  std::fill_n(rho_->data, rho_->count, kAbsent);
  dark_.set_All();
  for (uint32_t k = 0; k < axes_->count; ++k) {
    T3DFRM frm;
    mat_ToFrm(axes_->data[k], frm);
    classify(frm);
    clear_Seen();
    rate_Hit(k, frm);
    if (dark_.is_Empty()) break;
  }
}

// A triangle with two equal corners starts no ray and is neither seen nor hit.
void CDepthField::classify(const T3DFRM& frm) {
  uint32_t count = 0;
  for (uint32_t t = 0; t < view_.n_tri; ++t)
    if (!seen_.test(t)) todo_->data[count++] = t;
  // Rays start where the tree stands: on the soup where there is one, else on the welded corners,
  // which a tree over the unwelded mesh follows within the tolerance of the weld.
  const TRayStarts starts = {par_.f_dil <= 0.0 ? view_ : test_.mesh(), par_.f_tol};
  see_Along(test_.tree(), starts, -frm.z, Ways::kAhead, todo_->data, count, sight_->data);
  vis_.clear_All();
  vis_ |= seen_;
  hit_.clear_All();
  for (uint32_t i = 0; i < count; ++i) {
    if (sight_->data[i] & kSeesAhead)
      vis_.set(todo_->data[i]);
    else if (!(sight_->data[i] & kNoRay))
      hit_.set(todo_->data[i]);
  }
  seen_ |= vis_;
  dark_ &= hit_;
}

void CDepthField::clear_Seen() {
  Scoped<TLst<TLst<uint32_t>>> parts;
  frame_.need(cmp_Adj(view_, *tri_tri_, vis_, *parts), -27);
  for (uint32_t i = 0; i < parts->count; ++i) {
    const TLst<uint32_t>& part = parts->data[i];
    for (uint32_t k = 0; k < part.count; ++k) dfi_->data[part.data[k]] = 0.0;
  }
}

void CDepthField::rate_Hit(uint32_t axis, const T3DFRM& frm) {
  Scoped<TLst<TLst<uint32_t>>> patches;
  frame_.need(cmp_Adj(view_, *tri_tri_, hit_, *patches), -28);
  hit_.clear_All();
  for (uint32_t j = 0; j < patches->count; ++j) {
    const TLst<uint32_t>& patch = patches->data[j];
    if (patch.count > 0 && !drop_Small(axis, j, patch)) rate_Patch(patch, frm);
  }
}

// The rated area counts each triangle of the patch with the area of one and the same triangle: the
// mesh's triangle j, where j is the number of the patch. Results hang on that. There are no more
// patches than triangles, so j is one of them.
bool CDepthField::drop_Small(uint32_t axis, uint32_t j, const TLst<uint32_t>& patch) {
  if (!(par_.f_srf > 0.0)) return false;
  const double each = area_Tri(get_Fac(view_, j));
  double area = 0.0;
  for (uint32_t i = 0; i < patch.count; ++i) area += each;
  if (area > par_.f_srf) return false;
  for (uint32_t i = 0; i < patch.count; ++i) dfi_->data[patch.data[i]] = 0.0;
  if constexpr (kPrintAreas)
    std::fprintf(stderr, "UC(%d,%4d):=%lf qmm\n", static_cast<int>(axis), static_cast<int>(j),
                 area);
  return true;
}

void CDepthField::rate_Patch(const TLst<uint32_t>& patch, const T3DFRM& frm) {
  Scoped<TArr<T3DSGM>> border;
  frame_.need(bnd_Lst(view_, patch, number_->data, *border) == 0, -29);
  if (border->count == 0) return;
  drop_Open(*border, rim_v_);
  CRim rim;
  const int32_t built = rim.Build(view_, *border, frm);
  frame_.need(built == 0, -29 + built);
  // `hit` is all clear here, and again after the flood: a patch costs what it holds, not what the
  // mesh holds.
  for (uint32_t i = 0; i < patch.count; ++i)
    if (dark_.test(patch.data[i])) hit_.set(patch.data[i]);
  const TFlood flood = {view_, *tri_tri_, frm, par_.f_off, hit_, queue_, rho_->data};
  const int32_t flooded = flood_Depth(flood, rim, patch);
  frame_.need(flooded == 0, -32 + flooded);
  for (uint32_t i = 0; i < patch.count; ++i) {
    const uint32_t t = patch.data[i];
    if (dark_.test(t)) dfi_->data[t] = std::min(dfi_->data[t], rho_->data[t]);
  }
}

double* CDepthField::finish() {
  clear_Outside(sel_, *dfi_);
  return dfi_.take().data;
}

}  // namespace

}  // namespace undercut

int32_t get_dFi(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar par = g_UCs;
    const TDepthInput in = read_Depth(req, res);
    need_Indices(frame, in);

    CDepthField field(frame, par, in);
    field.begin();
    field.size_Sets();
    field.build_Test();
    field.weld();
    field.build_Adjacency();
    field.run_Axes();
    res->dfi = field.finish();
  });
}
