// The filter of components: which pieces are large and deep enough to be machined, and lie outside
// all given curves. Areas in mm2, values as the host gave them.
#include <cstring>

#include "files/writers.h"
#include "foundation/bit_vector.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "mesh/curve_cut.h"

namespace undercut {

namespace {

// Writes the triangles inside the curves to "cav.ply" in the current folder. No parameter switches
// it on.
constexpr bool kWritesFiles = false;

// The views that this computation reads of a request.
struct TFilterInput {
  T3DMSH msh;
  TLstLstU32 cav;  // its count is the number of pieces, whatever its capacity
  TArrCrv lst;
  const double* add;
  double least_area, least_value;
};

TFilterInput load_Filter(const TUcReq* req, const TUcRes* res) {
  if (!req || !res) return {};
  return {req->msh, req->cav, req->lst, req->add, g_Flt.f_srf, g_Flt.f_dep};
}

bool has_Curves(const TFilterInput& in) { return in.lst.data && in.lst.count != 0; }

void need_Filter(CallFrame& frame, const TFilterInput& in) {
  need_Msh(frame, in.msh);
  frame.need(in.cav.data, -5);
  frame.need(in.cav.count, -6);
  frame.need(in.add, -9);
  frame.need(in.cav.capacity, -10);
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
}

// Marks what lies inside some set of curves: all lists but the first, which is the outside.
void mark_Inside(CallFrame& frame, const TFilterInput& in, CBitVector& inside) {
  Scoped<TLstLstU32> sides;
  frame.need(crv_CutLst(in.msh, in.lst, *sides) == 0, -12);
  for (uint32_t k = 1; k < sides->count; ++k) {
    const TLstU32& side = sides->data[k];
    for (uint32_t i = 0; i < side.count; ++i) frame.need(inside.set(side.data[i]), -13);
  }
  if constexpr (kWritesFiles) ply_Bit("cav.ply", in.msh, inside);
}

// Indices are checked on the way, so those behind a triangle inside the curves are never looked at.
// Figures exactly at their limit pass, and so does an area that is not a number.
bool is_Rejected(CallFrame& frame, const TFilterInput& in, const TLstU32& piece,
                 const CBitVector& inside) {
  double largest = 0.0, area = 0.0;
  for (uint32_t i = 0; piece.data && i < piece.count; ++i) {
    const uint32_t t = piece.data[i];
    frame.need(t < in.msh.n_tri, -15);
    if (inside.test(t)) return true;
    if (in.add[t] > largest) largest = in.add[t];
    area += area_Tri(get_Fac(in.msh, t));
  }
  return area < in.least_area || largest < in.least_value;
}

bool copy_Piece(const TLstU32& from, TLstU32& to) {
  const uint32_t count = from.data ? from.count : 0;
  if (!alloc(to, count)) return false;
  if (count != 0) std::memcpy(to.data, from.data, count * sizeof(uint32_t));
  to.count = count;
  return true;
}

void copy_Kept(CallFrame& frame, const TLstLstU32& pieces, const TArrU8& rejected,
               TLstLstU32& kept) {
  uint32_t count = 0;
  for (uint32_t k = 0; k < rejected.count; ++k) count += !rejected.data[k];
  frame.need(alloc(kept, count), -16);
  for (uint32_t k = 0; k < rejected.count; ++k)
    if (!rejected.data[k]) frame.need(copy_Piece(pieces.data[k], kept.data[kept.count++]), -17);
}

}  // namespace

}  // namespace undercut

int32_t flt_Com(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TFilterInput in = load_Filter(req, res);
    need_Filter(frame, in);
    CBitVector inside;
    frame.need(inside.init(in.msh.n_tri), -11);
    if (has_Curves(in)) mark_Inside(frame, in, inside);

    Scoped<TArrU8> rejected;
    frame.need(alloc(*rejected, in.cav.count), -14);
    for (uint32_t k = 0; k < in.cav.count; ++k)
      rejected->data[k] = is_Rejected(frame, in, in.cav.data[k], inside);
    Scoped<TLstLstU32> kept;
    copy_Kept(frame, in.cav, *rejected, *kept);
    // A host may have handed in the result's own pieces, so they are freed only now.
    release(res->com);
    res->com = kept.take();
  });
}
