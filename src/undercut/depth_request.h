// What the depth fields read of a request, and the steps that both begin with.
#pragma once

#include "foundation/arrays.h"
#include "foundation/bit_vector.h"
#include "interface/call_frame.h"

namespace undercut {

struct TDepthInput {
  T3DMSH msh;  // empty where one of its arrays or counts is missing
  TArr<T3DRAY> axi;
  TLst<uint32_t> roi;    // null array: none
  TArrArrVec arg;        // null array or a count of 0: none
  TArr<T3DMSH> shadows;  // further meshes
};

// A missing record reads as one with nothing in it.
TDepthInput read_Depth(const TUcReq* req, const TUcRes* res);

// Raises UNDERCUT_BAD_VERTEX or UNDERCUT_BAD_TRIANGLE for an index out of range. An empty mesh has
// no triangle that a list may name.
void need_Indices(CallFrame& frame, const TDepthInput& in);

// A matrix for each axis; raises -5 or -6.
void need_Axes(CallFrame& frame, const TDepthInput& in, TArr<T3DMAT>& axes);

// The bits of roi and of the inside of the curves, see sel_Bits; raises -7 or -8.
void need_Selection(CallFrame& frame, const TDepthInput& in, CBitVector& sel);

}  // namespace undercut
