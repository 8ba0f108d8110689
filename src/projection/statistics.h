// What the two ratings of regions have in common: the request, its checks, the directions of rays.
#pragma once

#include "foundation/arrays.h"
#include "interface/call_frame.h"

namespace undercut {

struct TStatInput {
  T3DMSH msh;
  TLstLstU32 cav;  // its capacity is the number of regions
  TArrRay axi;     // one for each
  double lift;     // mm
};

// Empty where the host handed in no request or no result.
TStatInput load_Stats(const TUcReq* req, const TUcRes* res);

// Raises -1 to -9, the two codes of indices out of range, then -10 and -11 for the axes' matrices.
void need_Stats(CallFrame& frame, const TStatInput& in, TArr<T3DMAT>& axes);

// The triangles of a region: none for an entry without array.
TLstU32 get_Region(const TStatInput& in, uint32_t k);

// The length of the longest list of triangles, for scratch that serves all regions.
uint32_t most_Triangles(const TStatInput& in);

// The direction of the rays of a region: minus the Z axis of its frame.
T3DVEC ray_Dir(const T3DMAT& axis);

// The seen part of the whole, kAbsent where the whole is 0.
inline double share_Of(double seen, double whole) { return whole == 0.0 ? kAbsent : seen / whole; }

}  // namespace undercut
