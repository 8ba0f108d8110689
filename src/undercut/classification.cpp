// Undercut classification: the triangles of a mesh that are seen along none of a set of axes.
// Lengths in mm.
//
// Most triangles are seen along the first axes. So each axis casts rays from those alone that no
// axis before it has seen; the others cost nothing any more.
#include "foundation/axis_frames.h"
#include "foundation/bit_vector.h"
#include "foundation/list_filter.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "mesh/sight.h"
#include "undercut/test_mesh.h"

namespace undercut {

namespace {

// The views that this computation reads of a request.
struct TUcsInput {
  T3DMSH msh;
  TLst<uint32_t> roi;  // null array: the whole mesh
  TArr<T3DRAY> axi;
};

void need_Indices(CallFrame& frame, const TUcsInput& in) {
  // A mesh without arrays is told by its tree.
  frame.need(!is_Usable(in.msh) || ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  frame.need(ok_Triangles(in.roi, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);
}

// What roi does not list counts as seen from the start. It is told by the length of the list alone:
// one that is as long as the mesh excludes nothing, though an entry that it repeats may stand in
// place of a triangle that it leaves out. That one is then never tested and ends as undercut.
void set_Outside(const TUcsInput& in, CBitVector& seen) {
  if (!in.roi.data || in.roi.count == in.msh.n_tri) return;
  seen.set_All();
  for (uint32_t i = 0; i < in.roi.count; ++i) seen.clear(in.roi.data[i]);
}

// An empty mesh is told by the code of a tree, with growth as without.
void build_Test(CallFrame& frame, const T3DMSH& msh, double dilation, CTestMesh& test) {
  const TestMesh made = test.Build(msh, dilation);
  frame.need(made != TestMesh::kNoSoup, is_Usable(msh) ? -15 : -16);
  frame.need(made != TestMesh::kNoSoupTree, -16);
  frame.need(made != TestMesh::kNoTree, -17);
}

// The triangles that have still to be seen, in the order of roi, and what an axis finds for each.
struct TOpen {
  Scoped<TArr<uint32_t>> list;
  Scoped<TArr<uint8_t>> sight;
  CScratch<uint32_t> kept;
};

bool list_Open(const TUcsInput& in, TOpen& open) {
  const uint32_t active = in.roi.data ? in.roi.count : in.msh.n_tri;
  if (!alloc(*open.list, active) || !alloc(*open.sight, active)) return false;
  each_Index(
      active, [&](uint32_t i) { open.list->data[i] = in.roi.data ? in.roi.data[i] : i; },
      kWorthIfLight);
  return true;
}

// Sets the bits of what the axis saw and keeps what was blocked in the list. A triangle with two
// equal corners is neither: its bit stays clear, and so it ends as undercut.
void close_Seen(TOpen& open, CBitVector& seen) {
  filter_List(*open.list, open.kept, [&](uint32_t i, uint32_t t) {
    const uint8_t sight = open.sight->data[i];
    if (sight == kSeesAhead) seen.set(t);
    return sight == 0;
  });
}

void see_Axes(const TArr<T3DMAT>& axes, const CTestMesh& test, double lift, TOpen& open,
              CBitVector& seen) {
  CSight eye(test.tree(), {test.mesh(), lift});
  for (uint32_t k = 0; k < axes.count && open.list->count != 0; ++k) {
    T3DFRM frm;
    mat_ToFrm(axes.data[k], frm);
    eye.see_Along(-frm.z, Ways::kAhead, open.list->data, open.list->count, open.sight->data);
    close_Seen(open, seen);
  }
}

}  // namespace

}  // namespace undercut

int32_t get_UCs(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar par = g_UCs;
    const TUcsInput in = req && res ? TUcsInput{req->msh, req->roi, req->axi} : TUcsInput{};
    need_Indices(frame, in);

    Scoped<TArr<T3DMAT>> axes;
    const int32_t framed = mat_Axes(in.axi, *axes);
    frame.need(framed == 0, framed);
    // An empty mesh has no bits, and is told by its tree.
    CBitVector seen;
    frame.need(in.msh.n_tri == 0 || seen.init(in.msh.n_tri), -13);
    set_Outside(in, seen);
    CTestMesh test;
    build_Test(frame, in.msh, par.f_dil, test);
    TOpen open;
    frame.need(list_Open(in, open), UNDERCUT_NO_MEMORY);
    see_Axes(*axes, test, par.f_tol, open, seen);

    seen.flip_All();
    TArr<uint8_t> undercut = {};
    frame.need(seen.to_Bytes(undercut), -18);
    res->ucs = undercut.data;
  });
}
