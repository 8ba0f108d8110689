// Region sums: the area of each region and the largest of the host's values in it. Needs no tree
// and no parameter. Areas are in the square of the host's unit.
#include "foundation/arrays.h"
#include "interface/call_frame.h"

namespace undercut {

namespace {

// The views that this computation reads of a request.
struct TSumsInput {
  T3DMSH msh;
  TLstLstU32 cav;  // its capacity is the number of regions
  const double* add;
};

// A triangle with two equal corners counts in neither figure, and a value that is not a number is
// never the largest.
TUcStat sum_Region(const TSumsInput& in, const TLstU32& region) {
  TUcStat sums = {};
  sums.value = -kAbsent;
  for (uint32_t i = 0; region.data && i < region.count; ++i) {
    const uint32_t t = region.data[i];
    const T3DFAC fac = get_Fac(in.msh, t);
    if (is_Flat(fac)) continue;
    sums.area += area_Tri(fac);
    if (in.add[t] > sums.value) sums.value = in.add[t];
  }
  return sums;
}

}  // namespace

}  // namespace undercut

int32_t get_Stc(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TSumsInput in = req && res ? TSumsInput{req->msh, req->cav, req->add} : TSumsInput{};
    need_Msh(frame, in.msh);
    frame.need(in.cav.data, -5);
    frame.need(in.cav.capacity, -6);
    frame.need(in.add, -7);
    frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
    frame.need(ok_Regions(in.cav, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);

    TUcStat* stats = new_Zeroed<TUcStat>(in.cav.capacity);
    frame.need(stats, -8);
    for (uint32_t k = 0; k < in.cav.capacity; ++k) stats[k] = sum_Region(in, in.cav.data[k]);
    res->sta = stats;
  });
}
