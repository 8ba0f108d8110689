// Undercuts along a corridor: a tool follows a band of given width through a series of poses, and
// the triangles of the registered mesh that reach into the band are tested against an obstacle.
// Lengths in mm.
//
// Both computations leave their lists and marks in the state of the registered mesh, and both are
// sequential for that reason.
#include <cstring>

#include "foundation/band.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "interface/registered_mesh.h"

namespace undercut {

namespace {

// The views that both computations read of a request, and the parameters.
struct TCorridor {
  TArr<T3DRAY> axi;  // a pose for each; only the directions are read
  T3DRAY ray;        // lies in the middle plane of every band
  T3DMSH msh_c;      // the obstacle
  double width;
  double lift;
};

TCorridor read_Corridor(const TUcReq* req, const TUcRes* res) {
  TCorridor in = {};
  if (req && res) in = {req->axi, req->ray, req->msh_c, 0.0, 0.0};
  in.width = g_Con.f_wid;
  in.lift = g_UCs.f_tol;
  return in;
}

// The checks that both share: -1 to -11.
void need_Corridor(CallFrame& frame, const TCorridor& in) {
  need_Msh(frame, g_Msh);
  need_Msh(frame, in.msh_c, 4);
  frame.need(in.axi.data && in.axi.count != 0, -9);
  frame.need(in.ray.dir != T3DVEC{0, 0, 0}, -10);
  frame.need(g_Hit.data, -11);
}

// Lists and marks the triangles that reach into the band of a pose. No triangle is listed twice, so
// the lists have room for all.
void list_Band(const TCorridor& in, const T3DVEC& pose) {
  g_Hit.count = 0;
  g_Aux.count = 0;
  g_Tre.QuerySlab(make_Band(in.ray, pose, in.width), g_Hit);
  for (uint32_t i = 0; i < g_Hit.count; ++i) g_Mrk.set(g_Hit.data[i]);
}

// Lists the band of a pose, then tells of each triangle in it whether the obstacle blocks it:
// visit(triangle, blocked). Triangles with two equal corners are passed over.
template <typename Visit>
void test_Band(const TCorridor& in, const C3DTriAABBTree& obstacle, const T3DVEC& pose,
               Visit visit) {
  list_Band(in, pose);
  for (uint32_t i = 0; i < g_Hit.count; ++i) {
    const uint32_t t = g_Hit.data[i];
    const T3DFAC f = get_Fac(g_Msh, t);
    if (is_Flat(f)) continue;
    const T3DVEC start = cen_Tri(f) + in.lift * nml_Tri(f);
    visit(t, obstacle.AnyHit({start, -pose}));
  }
}

void append(TLst<uint32_t>& lst, uint32_t t) { lst.data[lst.count++] = t; }

}  // namespace

}  // namespace undercut

// What is blocked at some pose.
int32_t get_UCd(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TCorridor in = read_Corridor(req, res);
    need_Corridor(frame, in);
    frame.need(g_Hit.capacity == g_Msh.n_tri, -12);
    frame.need(g_Mrk.size() == g_Msh.n_tri, -13);
    frame.need(g_Ucs.size() == g_Msh.n_tri, -14);
    frame.need(ok_Vertices(in.msh_c), UNDERCUT_BAD_VERTEX);

    g_Mrk.clear_All();
    g_Ucs.set_All();
    C3DTriAABBTree obstacle;
    frame.need(obstacle.BuildRays(in.msh_c), -16);
    for (uint32_t k = 0; k < in.axi.count; ++k) {
      test_Band(in, obstacle, in.axi.data[k].dir, [](uint32_t t, bool blocked) {
        if (blocked) g_Ucs.clear(t);
      });
    }
    g_Ucs.flip_All();

    TArr<uint8_t> undercut = {};
    frame.need(g_Ucs.to_Bytes(undercut), -17);
    res->ucs = undercut.data;
  });
}

// What is blocked at every pose, of the triangles in the band of the last one: a triangle that is
// blocked in an earlier band and not in the last one's is not listed. A triangle with two equal
// corners is never seen, so it is listed.
int32_t get_UCc(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TCorridor in = read_Corridor(req, res);
    need_Corridor(frame, in);
    frame.need(g_Aux.data, -12);
    frame.need(g_Hit.capacity == g_Msh.n_tri, -13);
    frame.need(g_Aux.capacity == g_Msh.n_tri, -14);
    frame.need(g_Mrk.size() == g_Msh.n_tri, -15);
    frame.need(g_Ucs.size() == g_Msh.n_tri, -16);
    frame.need(g_Sel.data, -17);
    frame.need(g_Sel.capacity == g_Msh.n_tri, -18);
    frame.need(ok_Vertices(in.msh_c), UNDERCUT_BAD_VERTEX);

    g_Sel.count = 0;
    g_Mrk.clear_All();
    g_Ucs.clear_All();
    C3DTriAABBTree obstacle;
    frame.need(obstacle.BuildRays(in.msh_c), -19);
    for (uint32_t k = 0; k < in.axi.count; ++k) {
      test_Band(in, obstacle, in.axi.data[k].dir, [](uint32_t t, bool blocked) {
        if (!blocked) append(g_Aux, t);
      });
      for (uint32_t i = 0; i < g_Aux.count; ++i) g_Ucs.set(g_Aux.data[i]);
    }
    for (uint32_t i = 0; i < g_Hit.count; ++i)
      if (!g_Ucs.test(g_Hit.data[i])) append(g_Sel, g_Hit.data[i]);

    // A view of the list, not a frame; the rest of frm_a stays as it was.
    std::memcpy(static_cast<void*>(&res->frm_a), &g_Sel, sizeof g_Sel);
  });
}
