// Frames of tool axes.
#pragma once

#include "foundation/arrays.h"
#include "foundation/values.h"

namespace undercut {

// The frame of an axis, see frm_Ray; false where its direction is not finite.
bool frm_Axis(const T3DRAY& axis, T3DFRM& frm);

// A matrix for each axis. 0; -5 no memory, -6 an axis without a frame.
int32_t mat_Axes(const TArr<T3DRAY>& axi, TArr<T3DMAT>& out);

}  // namespace undercut
