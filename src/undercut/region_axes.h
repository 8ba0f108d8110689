// What the searches have in common that find an axis for each region of a request.
#pragma once

#include "interface/call_frame.h"

namespace undercut {

struct TRegionsInput {
  T3DMSH msh;
  TLstLstU32 cav;  // its capacity is the number of regions
};

// Empty where the host handed in no request or no result.
TRegionsInput load_Regions(const TUcReq* req, const TUcRes* res);

// Raises -4 to -7 for the mesh, -8 for no regions, -9 for none in number.
void need_Regions(CallFrame& frame, const TRegionsInput& in);

// Raises the two codes of indices out of range.
void need_Indices(CallFrame& frame, const TRegionsInput& in);

// The frame at a centre whose Z axis is minus the direction of the angles, in degrees; the identity
// for angles that are not finite.
T3DFRM frm_Found(const T3DVEC& centre, double theta, double phi);

}  // namespace undercut
