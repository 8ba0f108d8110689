// Points moved onto a mesh, list by list. Each list belongs to an area of the mesh and moves along
// the Z axis of the area's frame: first to the height of its own area, which keeps it from a wall
// that stands before or behind, then onto the surface of the whole mesh. Lengths in mm.
#include <algorithm>

#include "interface/call_frame.h"
#include "mesh/sub_mesh.h"
#include "projection/point_search.h"

namespace undercut {

namespace {

// The views that this computation reads of a request, and the parameters.
struct TPrjInput {
  T3DMSH msh;
  TLst<TLst<uint32_t>> areas;
  TArr<TArr<T3DVEC>> points;
  TLst<T3DFRM> frames;
  TPrjPar par;
};

TPrjInput read_Request(const TUcReq* req, const TUcRes* res) {
  TPrjInput in = {};
  if (req && res) in = {req->msh, req->prj_l, req->prj_p, req->prj_f, {}};
  in.par = g_Prj;
  return in;
}

// The checks that need no mesh: -3 to -7.
void need_Areas(CallFrame& frame, const TPrjInput& in) {
  frame.need(in.areas.data, -3);
  frame.need(in.points.data, -4);
  frame.need(in.frames.data, -5);
  frame.need(in.areas.count == in.points.count, -6);
  frame.need(in.points.count == in.frames.count, -7);
}

void need_Indices(CallFrame& frame, const TPrjInput& in) {
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  const bool ok = ok_Regions({in.areas.data, in.areas.count, in.areas.count}, in.msh.n_tri);
  frame.need(ok, UNDERCUT_BAD_TRIANGLE);
}

// A mesh of each area.
bool cut_Areas(const TPrjInput& in, TArr<T3DMSH>& subs) {
  if (!alloc(subs, in.areas.count)) return false;
  for (uint32_t k = 0; k < subs.count; ++k)
    if (!sub_Msh(in.msh, in.areas.data[k], subs.data[k])) return false;
  return true;
}

// What the search for a point needs beside a tree.
struct TScratch {
  Scoped<TArr<double>> radii;
  Scoped<TLst<uint32_t>> hits;
};

// An area that lists triangles more than once has more of them than the mesh.
bool make_Scratch(const TPrjInput& in, const TArr<T3DMSH>& subs, TScratch& scratch) {
  uint32_t largest = in.msh.n_tri;
  for (uint32_t k = 0; k < subs.count; ++k) largest = std::max(largest, subs.data[k].n_tri);
  return alloc(*scratch.hits, largest) && list_Radii(in.par, *scratch.radii);
}

// The direction of an area; zero where its frame has none, which moves no point.
T3DVEC direction_Of(const TPrjInput& in, uint32_t k) { return unit(in.frames.data[k].z); }

// Area k has points and triangles.
bool has_Work(const TPrjInput& in, const TArr<T3DMSH>& subs, uint32_t k) {
  return in.points.data[k].data && in.points.data[k].count != 0 && is_Usable(subs.data[k]);
}

}  // namespace

}  // namespace undercut

int32_t get_Prj(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TPrjInput in = read_Request(req, res);
    need_Areas(frame, in);
    Scoped<TArr<TArr<T3DVEC>>> lists;
    frame.need(alloc(*lists, in.areas.count), -11);
    need_Msh(frame, in.msh, 15);
    need_Indices(frame, in);
    Scoped<TArr<T3DMSH>> subs;
    frame.need(cut_Areas(in, *subs), -20);
    frame.need(subs->count, -21);
    TScratch scratch;
    frame.need(make_Scratch(in, *subs, scratch), -24);

    C3DTriAABBTree tree;
    for (uint32_t k = 0; k < lists->count; ++k) {
      if (!has_Work(in, *subs, k)) continue;
      const TArr<T3DVEC> from = in.points.data[k];
      TArr<T3DVEC>& to = lists->data[k];
      frame.need(tree.Build(subs->data[k]), -25);
      frame.need(alloc(to, from.count), -26);
      const T3DVEC z = direction_Of(in, k);
      for (uint32_t i = 0; i < from.count; ++i)
        to.data[i] = to_Area(tree, {from.data[i], z}, *scratch.radii, *scratch.hits);
    }

    frame.need(tree.Build(in.msh), -27);
    for (uint32_t k = 0; k < lists->count; ++k) {
      const TArr<T3DVEC> list = lists->data[k];
      const T3DVEC z = direction_Of(in, k);
      for (uint32_t i = 0; i < list.count; ++i)
        list.data[i] = onto_Mesh(tree, {list.data[i], z}, in.par.f_tol, *scratch.hits);
    }
    res->prj = lists.take();
  });
}
