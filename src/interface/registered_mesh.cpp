// The registered mesh: made by ini_Adt, released by clr_Dll.
#include "interface/registered_mesh.h"

#include <cstring>

#include "interface/call_frame.h"

namespace undercut {

T3DMSH g_Msh = {};
C3DTriAABBTree g_Tre;
TLst<uint32_t> g_Sel = {};
TLst<uint32_t> g_Hit = {};
TLst<uint32_t> g_Aux = {};
CBitVector g_Mrk;
CBitVector g_Ucs;
CBitVector g_Shd;

namespace {

bool copy_Msh(const T3DMSH& from, T3DMSH& to) {
  if (!alloc_Msh(to, from.n_vtx, from.n_tri)) return false;
  std::memcpy(to.vtx, from.vtx, from.n_vtx * sizeof(T3DVEC));
  std::memcpy(to.tri, from.tri, from.n_tri * sizeof(T3DTRI));
  return true;
}

}  // namespace

}  // namespace undercut

// The four records are emptied, not freed: a host may still read through the view that get_Roi gave
// it. The tree and the bit vectors are never handed out and release what they held.
int32_t ini_Adt(const T3DMSH* msh) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    g_Msh = {};
    reset(g_Sel);
    reset(g_Hit);
    reset(g_Aux);
    const T3DMSH host = msh ? *msh : T3DMSH{};
    need_Msh(frame, host);
    frame.need(ok_Vertices(host), UNDERCUT_BAD_VERTEX);
    frame.need(copy_Msh(host, g_Msh), -5);
    frame.need(g_Tre.Build(g_Msh), -6);
    frame.need(alloc(g_Sel, g_Msh.n_tri), -7);
    frame.need(alloc(g_Hit, g_Msh.n_tri), -8);
    frame.need(alloc(g_Aux, g_Msh.n_tri), -9);
    frame.need(g_Mrk.init(g_Msh.n_tri), -10);
    frame.need(g_Ucs.init(g_Msh.n_tri), -11);
    frame.need(g_Shd.init(g_Msh.n_tri), -12);
  });
}

int32_t clr_Dll(void) {
  using namespace undercut;
  g_Tre.Clear();
  release(g_Msh);
  release(g_Sel);
  release(g_Hit);
  release(g_Aux);
  g_Mrk.release();
  g_Ucs.release();
  g_Shd.release();
  return 0;
}

int32_t cnt_Tri(uint32_t* count) {
  if (count) *count = undercut::g_Msh.n_tri;
  return 0;
}

int32_t get_Roi(TLstU32* lst) {
  if (lst) *lst = undercut::g_Sel;
  return 0;
}

// Without a registered mesh no triangle is shaded, which is an answer and no failure.
int32_t get_Shd(TLstU32* lst) {
  using namespace undercut;
  if (!lst) return 0;
  reset(*lst);
  return !g_Shd.is_Valid() || g_Shd.to_Lst(*lst) ? 0 : -1;
}
