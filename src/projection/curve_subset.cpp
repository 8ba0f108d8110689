// The part of a mesh that lies inside closed curves.
#include "files/writers.h"
#include "interface/call_frame.h"
#include "mesh/curve_cut.h"

namespace undercut {

namespace {

// Writes the triangles inside to "roi.stl" in the current folder. No parameter switches it on.
constexpr bool kWritesFiles = false;

// The views that this computation reads of a request.
struct TSubsetInput {
  T3DMSH msh;
  TArrArrVec arg;
};

// Unlike the other computations this one checks the vertices before the triangles.
void need_Subset(CallFrame& frame, const TSubsetInput& in) {
  frame.need(in.msh.vtx, -1);
  frame.need(in.msh.n_vtx, -2);
  frame.need(in.msh.tri, -3);
  frame.need(in.msh.n_tri, -4);
  frame.need(in.arg.data, -5);
  frame.need(in.arg.count, -6);
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
}

}  // namespace

}  // namespace undercut

int32_t get_Sub(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TSubsetInput in = req && res ? TSubsetInput{req->msh, req->arg} : TSubsetInput{};
    need_Subset(frame, in);
    Scoped<TLstLstU32> sides;
    frame.need(crv_Cut(in.msh, in.arg, *sides) == 0, -7);
    TLstU32& inside = sides->data[1];
    if constexpr (kWritesFiles) stl_Ids("roi.stl", in.msh, inside);

    TLstLstU32 subset = {};
    frame.need(alloc(subset, 1), -8);
    subset.data[subset.count++] = inside;
    reset(inside);
    res->com = subset;
  });
}
