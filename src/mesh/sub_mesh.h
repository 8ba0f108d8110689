// A mesh of some of the triangles of another.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// The listed triangles in their order, with their vertices numbered as the list first uses them;
// those with two equal corner indices are left out. Unlike wld_Sub it goes by index: vertices that
// coincide stay apart. Where nothing is left, `out` is empty, which is no failure. The indices must
// be in range. False for no memory.
bool sub_Msh(const T3DMSH& msh, const TLst<uint32_t>& lst, T3DMSH& out);

}  // namespace undercut
