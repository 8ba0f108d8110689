// Undercut depth field of a mesh that shadows itself: for each triangle the distance, measured
// across the tool axis, from its centroid to the rim of the undercut patch that holds it, and the
// smallest such distance over all axes. Lengths in mm.
//
// Each axis casts rays from the triangles alone that no axis before it has seen. So what it does
// not see is what no axis so far has seen, and a triangle has the smallest of its distances.
#include <algorithm>
#include <cstdio>

#include "foundation/list_filter.h"
#include "interface/parameters.h"
#include "mesh/sight.h"
#include "mesh/weld.h"
#include "undercut/depth_request.h"
#include "undercut/patch_rims.h"
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
  void choose_Way();
  void size_Sets();
  void build_Test();
  void weld();
  void build_Adjacency();
  void run_Axes();
  double* finish();

 private:
  void classify(const T3DFRM& frm);
  void rate_Hidden(uint32_t axis, const T3DFRM& frm);
  bool drop_Small(uint32_t axis, uint32_t j);
  void flood(const T3DFRM& frm);

  CallFrame& frame_;
  const CUCsPar& par_;
  const TDepthInput& in_;
  T3DMSH view_;  // the mesh, or the welded one
  Scoped<TWeld> weld_;
  Scoped<TArr<T3DMAT>> axes_;
  bool floods_ = false;  // the slack is not ample: distances spread from triangle to triangle
  CTestMesh test_;
  Scoped<TAdj> vtx_tri_, tri_tri_;
  CPatchRims patches_{view_, *tri_tri_};
  CBitVector sel_;
  CSight eye_;
  Scoped<TArr<uint8_t>> sight_;    // what an axis finds for each triangle of the list
  Scoped<TArr<uint32_t>> hidden_;  // what no axis has seen yet, in rising order
  CScratch<uint32_t> kept_;        // of the list
  CBitVector waiting_;             // the same as a set; of the flood, the working set of one patch
  CBitVector rim_v_;               // by vertex: ends of the mesh's own open border
  Scoped<TArr<double>> dfi_, rho_;
  TNodePool<CQueue::Node> pool_;  // before the queue, which gives its nodes back
  CQueue queue_;
};

T3DFRM get_Frame(const T3DMAT& mat) {
  T3DFRM frm;
  mat_ToFrm(mat, frm);
  return frm;
}

// A weld leaves no vertex outside the extent of the mesh.
void CDepthField::choose_Way() {
  const double extent = find_Extent(in_.msh);
  for (uint32_t k = 0; k < axes_->count; ++k)
    floods_ = floods_ || !is_Ample(par_.f_off, extent, get_Frame(axes_->data[k]));
}

// An empty mesh has nothing to see and ends here.
void CDepthField::size_Sets() {
  const uint32_t n_tri = in_.msh.n_tri;
  frame_.need(n_tri > 0 && alloc(*sight_, n_tri), -12);
  frame_.need(alloc(*hidden_, n_tri), -13);
  frame_.need(patches_.reserve(n_tri), -14);
  frame_.need(waiting_.init(n_tri), -15);
  frame_.need(rim_v_.init(in_.msh.n_vtx), -16);
  frame_.need(alloc(*dfi_, n_tri), -17);
  if (!floods_) return;
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
  frame_.need(mark_Open(view_, *tri_tri_, rim_v_), -26);
}

void CDepthField::run_Axes() {
  frame_.at(UNDERCUT_NO_MEMORY);
  std::fill_n(dfi_->data, dfi_->count, kAbsent);
  each_Index(
      view_.n_tri, [&](uint32_t t) { hidden_->data[t] = t; }, kWorthIfLight);
  // Rays start where the tree stands: on the soup where there is one, else on the welded corners,
  // which a tree over the unwelded mesh follows within the tolerance of the weld.
  eye_.ini_Sight(test_.tree(), {par_.f_dil <= 0.0 ? view_ : test_.mesh(), par_.f_tol});
  for (uint32_t k = 0; k < axes_->count && hidden_->count > 0; ++k) {
    const T3DFRM frm = get_Frame(axes_->data[k]);
    classify(frm);
    rate_Hidden(k, frm);
  }
}

// Keeps in the list what is still hidden. A triangle with two equal corners starts no ray and is
// neither seen nor hidden.
void CDepthField::classify(const T3DFRM& frm) {
  eye_.see_Along(-frm.z, Ways::kAhead, hidden_->data, hidden_->count, sight_->data);
  filter_List(*hidden_, kept_, [&](uint32_t i, uint32_t t) {
    if (sight_->data[i] & kSeesAhead) dfi_->data[t] = 0.0;
    return sight_->data[i] == 0;
  });
}

void CDepthField::rate_Hidden(uint32_t axis, const T3DFRM& frm) {
  waiting_.clear_All();
  each_Index(
      hidden_->count, [&](uint32_t i) { waiting_.set(hidden_->data[i]); }, kWorthIfLight);
  frame_.need(patches_.find(waiting_), -27);
  frame_.need(patches_.make_Rims(), -28);
  frame_.need(patches_.list_Borders(waiting_), -29);
  for (uint32_t j = 0; j < patches_.count(); ++j) {
    if (drop_Small(axis, j)) continue;
    const int32_t built = patches_.build_Rim(j, rim_v_, frm);
    frame_.need(built == 0, -29 + built);
  }
  if (floods_)
    flood(frm);
  else
    patches_.measure(frm, dfi_->data);
}

// The rated area counts each triangle of the patch with the area of one and the same triangle: the
// mesh's triangle j, where j is the number of the patch. Results hang on that. There are no more
// patches than triangles, so j is one of them.
bool CDepthField::drop_Small(uint32_t axis, uint32_t j) {
  if (!(par_.f_srf > 0.0)) return false;
  const double each = area_Tri(get_Fac(view_, j));
  const uint32_t size = patches_.size(j);
  double area = 0.0;
  for (uint32_t i = 0; i < size; ++i) area += each;
  if (area > par_.f_srf) return false;
  for (uint32_t i = 0; i < size; ++i) dfi_->data[patches_.triangles(j)[i]] = 0.0;
  if constexpr (kPrintAreas)
    std::fprintf(stderr, "UC(%d,%4d):=%lf qmm\n", static_cast<int>(axis), static_cast<int>(j),
                 area);
  return true;
}

void CDepthField::flood(const T3DFRM& frm) {
  waiting_.clear_All();
  const int32_t flooded = patches_.measure_ByFlood(
      {view_, *tri_tri_, frm, par_.f_off, waiting_, queue_, rho_->data}, dfi_->data);
  frame_.need(flooded == 0, -31 + flooded);
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
    field.choose_Way();
    field.size_Sets();
    field.build_Test();
    field.weld();
    field.build_Adjacency();
    field.run_Axes();
    res->dfi = field.finish();
  });
}
