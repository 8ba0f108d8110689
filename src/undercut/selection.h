// The triangles that a depth field is asked for.
#pragma once

#include "foundation/arrays.h"
#include "foundation/bit_vector.h"

namespace undercut {

// Sets the bits of the listed triangles and of those inside the closed curves (list 1 of crv_Cut).
// Without an array of triangles and without curves the selection has no bits at all, which is not
// the same as bits that are all clear: an array of triangles with a count of 0 selects nothing. An
// array of curves with a count of 0 is none. The indices must be in range. 0; -7 for roi, -8 for
// the curves.
int32_t sel_Bits(const T3DMSH& msh, const TLst<uint32_t>& roi, const TArrArrVec& curves,
                 CBitVector& sel);

// Gives the value 0 to every triangle outside the selection, if there is one.
void clear_Outside(const CBitVector& sel, TArr<double>& values);

}  // namespace undercut
