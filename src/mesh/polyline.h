// Operations on closed polylines.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// Removes points, the flattest first, for as long as one stands no higher than the limit (mm, in x
// and y) over the chord of its neighbours and more than 3 points are left. The rest keep their
// order. The last point is joined to the first, which must differ from it. 0; -1 no array, -2 no
// points, -3 first and last point equal, -4 no memory (more than 2^31 - 1 points count as such);
// `out` is then empty.
int32_t pol_Simplify(const TArr<T3DVEC>& line, double limit, TArr<T3DVEC>& out);

}  // namespace undercut
