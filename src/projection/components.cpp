// Connected pieces of a set of triangles, over shared edges, with or without merging the vertices
// that lie close together. Lengths in mm.
#include "mesh/components.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "mesh/weld.h"

namespace undercut {

namespace {

// The views that this computation reads of a request.
struct TPiecesInput {
  T3DMSH msh;
  TArrU8 bit;
};

}  // namespace

}  // namespace undercut

int32_t get_Com(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const double tolerance = g_UCs.f_eps;
    const TPiecesInput in = req && res ? TPiecesInput{req->msh, req->bit} : TPiecesInput{};
    // A mask without bytes, or without memory for its bits, makes a set that fits no mesh.
    CBitVector set;
    set.from_Bytes(in.bit.data, in.bit.count);
    need_Msh(frame, in.msh);
    frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);

    Scoped<TWeld> weld;
    Scoped<TLstLstU32> pieces;
    if (tolerance > 0) {
      frame.at(-5);  // what a query of the merging throws
      frame.need(wld_Tol(in.msh, *weld, tolerance), -5);
      // The merged mesh has the same triangles by number, so the set stands for it too.
      frame.need(cmp_Own(weld->merged, set, *pieces), -6);
    } else {
      frame.need(cmp_Own(in.msh, set, *pieces), -7);
    }
    res->com = pieces.take();
  });
}
