// Which of the two ends of a three-axis tool axis is the top.
#pragma once

#include "foundation/bit_vector.h"
#include "foundation/values.h"

namespace undercut {

// Both ends of the axis rate alike, so the sign comes from where the seen surface lies between the
// ends of the part: true where more room lies above it than below it, so that the Z axis of the
// frame must be turned round. Of each seen triangle only the prism under its lowest corner counts
// as below it: the wedge between the triangle and the plane through that corner is left to the room
// above, for steep triangles too.
bool is_Reversed(const T3DMSH& msh, const T3DFRM& frm, const CBitVector& seen);

}  // namespace undercut
