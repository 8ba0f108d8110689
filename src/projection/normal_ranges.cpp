// Directions held to the polar ranges of a machine. Angles in degrees.
#include <algorithm>

#include "foundation/arrays.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"

namespace undercut {

namespace {

constexpr uint32_t kMostRanges = 3;

// The lower limit of a polar range in x, the upper one in y.
using TRanges = TArr<T2DVEC>;

void load_Ranges(CallFrame& frame, const CDcmPar& par, TRanges& ranges) {
  frame.need(par.n_con, -3);
  frame.need(alloc(ranges, std::min(par.n_con, kMostRanges)), -4);
  frame.need(par.n_con <= kMostRanges, -5);
  const T2DVEC all[kMostRanges] = {
      {par.a_th0, par.b_th0}, {par.a_th1, par.b_th1}, {par.a_th2, par.b_th2}};
  std::copy_n(all, ranges.count, ranges.data);
}

// The polar angle is not set back between ranges: each starts from where the one before left it.
// Scaling by -1.0 turns a 0.0 into -0.0, so an axis along Z gets the azimuth 180.
void hold_Ray(const T3DRAY& ray, const TRanges& ranges, TLstRay& held) {
  const T3DVEC angles = car_ToSph(-1.0 * unit(ray.dir));
  double polar = angles.x;
  for (uint32_t k = 0; k < ranges.count; ++k) {
    if (polar < ranges.data[k].x) polar = ranges.data[k].x;
    if (polar > ranges.data[k].y) polar = ranges.data[k].y;
    held.data[held.count++] = {ray.org, -1.0 * sph_ToCar(polar, angles.y)};
  }
}

}  // namespace

}  // namespace undercut

int32_t err_Nml(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CDcmPar par = g_Dcm;
    const TArrRay axi = req && res ? req->axi : TArrRay{};
    frame.need(axi.data, -1);
    frame.need(axi.count, -2);
    Scoped<TRanges> ranges;
    load_Ranges(frame, par, *ranges);

    Scoped<TLstLstRay> held;
    frame.need(alloc(*held, axi.count), -6);
    held->count = axi.count;
    for (uint32_t i = 0; i < axi.count; ++i) {
      frame.need(alloc(held->data[i], ranges->count), -7);
      hold_Ray(axi.data[i], *ranges, held->data[i]);
    }
    res->nml = held.take();
  });
}
