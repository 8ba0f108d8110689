// Where one line meets the registered mesh.
#include "interface/call_frame.h"
#include "interface/registered_mesh.h"
#include "mesh/line_hits.h"

// The one computation that stores an answer beside a code: the point is there also for a line that
// misses, so that a caller may go on from where it stands.
int32_t det_Prj(const T3DRAY* ray, T3DVEC* point) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    frame.need(ray && point, -1);
    need_Msh(frame, g_Msh);
    frame.need(g_Hit.data, -5);
    frame.need(g_Hit.capacity == g_Msh.n_tri, -6);

    const T3DRAY line = *ray;  // a host may have the point stored in the ray itself
    T3DVEC nearest = line.org;
    double away;
    const bool met = near_Hit(
        g_Tre, line, g_Hit, [](uint32_t) { return true; }, nearest, away);
    *point = nearest;
    frame.need(met, -7);
  });
}
