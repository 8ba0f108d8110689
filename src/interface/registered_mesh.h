// The one mesh that a host registers, and what goes with it: empty after load and after clr_Dll,
// ready after a successful ini_Adt, and whatever was built so far after a failed one.
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/trees.h"

namespace undercut {

extern T3DMSH g_Msh;          // deep copy of the host's mesh
extern C3DTriAABBTree g_Tre;  // over g_Msh
extern TLst<uint32_t> g_Sel;  // selected triangles, in room for all
extern TLst<uint32_t> g_Hit;  // scratch list of tree queries, likewise
extern TLst<uint32_t> g_Aux;  // further scratch list, likewise
extern CBitVector g_Mrk;      // triangles already selected
extern CBitVector g_Ucs;      // undercut triangles
extern CBitVector g_Shd;      // shaded triangles; no computation sets a bit of it

}  // namespace undercut
