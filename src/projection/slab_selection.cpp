// The triangles of the registered mesh that reach into the bands of a set of axes. Lengths in mm.
//
// The selection is kept in the state of the registered mesh, where get_Roi reads it.
#include "foundation/band.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "interface/registered_mesh.h"

namespace undercut {

namespace {

// Appends what the last query found, each triangle once: a selection has room for all.
void select_Hits() {
  for (uint32_t i = 0; i < g_Hit.count; ++i) {
    const uint32_t t = g_Hit.data[i];
    if (g_Mrk.test(t)) continue;
    g_Mrk.set(t);
    g_Sel.data[g_Sel.count++] = t;
  }
}

}  // namespace

}  // namespace undercut

int32_t det_Roi(const TUcReq* req) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TArr<T3DRAY> axi = req ? req->axi : TArr<T3DRAY>{};
    const T3DRAY ray = req ? req->ray : T3DRAY{};
    const double width = g_Con.f_wid;
    need_Msh(frame, g_Msh);
    frame.need(axi.data && axi.count != 0, -5);
    frame.need(ray.dir != T3DVEC{0, 0, 0}, -6);
    frame.need(g_Hit.data, -7);
    frame.need(g_Hit.capacity == g_Msh.n_tri, -8);
    frame.need(g_Sel.capacity == g_Msh.n_tri, -9);
    frame.need(g_Mrk.size() == g_Msh.n_tri, -10);

    g_Sel.count = 0;
    g_Mrk.clear_All();
    for (uint32_t k = 0; k < axi.count; ++k) {
      g_Hit.count = 0;
      g_Tre.QuerySlab(make_Band(ray, axi.data[k].dir, width), g_Hit);
      select_Hits();
    }
  });
}
