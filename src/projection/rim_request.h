// What the three computations of rims have in common.
#pragma once

#include "foundation/bit_vector.h"
#include "interface/call_frame.h"
#include "projection/rim_curve.h"

namespace undercut {

// The views that they read of a request, and the parameters.
struct TRimInput {
  T3DMSH msh;
  TLst<uint32_t> roi;
  T3DFRM frm;
  uint32_t start;  // n_cnt
  double radius;   // mm, p_a: of the closing disk
  double lift;     // mm
  TRimCurve curve;
};

// Empty where the host handed in no request or no result.
TRimInput load_Rim(const TUcReq* req, const TUcRes* res);

// Raises -1 to -6.
void need_Rim(CallFrame& frame, const TRimInput& in);
// Raises the two codes of indices out of range.
void need_RimIndices(CallFrame& frame, const TRimInput& in);

// The area: flooded from the start triangle along minus the Z axis of in.frm, and cleaned. Raises
// -9 to -28, with the codes of indices between -9 and -10.
void flood_Area(CallFrame& frame, const TRimInput& in, CBitVector& area);

}  // namespace undercut
