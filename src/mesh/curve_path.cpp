// The walk of a closed curve over the vertices of a mesh: from each vertex to that of its
// neighbours which comes nearer to the end of the present segment and lies nearest to the segment.
// Every move brings the walk nearer to that end, so a segment takes no more moves than the mesh has
// vertices.
#include <limits>

#include "foundation/primitives.h"
#include "mesh/curve_cut.h"

namespace undercut {

namespace {

struct TGround {
  const T3DMSH& msh;
  const TAdj& vtx_tri;
};

struct TSegment {
  T3DVEC from, target;
};

// The first of equals; a vertex whose place is not a number is none of them.
uint32_t find_Nearest(const T3DMSH& msh, const T3DVEC& p) {
  uint32_t nearest = 0;
  double best = std::numeric_limits<double>::infinity();
  for (uint32_t v = 0; v < msh.n_vtx; ++v) {
    const double square = dst_Sqr(msh.vtx[v], p);
    if (!(square < best)) continue;
    best = square;
    nearest = v;
  }
  return nearest;
}

// The neighbour to go on to; kNone if none is nearer to the target. `closing` has precedence over
// the others.
uint32_t find_Next(const TGround& ground, uint32_t here, const TSegment& segment,
                   uint32_t closing) {
  const T3DVEC* vtx = ground.msh.vtx;
  const double left = dst_Sqr(vtx[here], segment.target);
  double best = std::numeric_limits<double>::infinity();
  uint32_t next = kNone;
  for (uint32_t i = 0; i < ground.vtx_tri.counts[here]; ++i) {
    const T3DTRI& tri = ground.msh.tri[ground.vtx_tri.lists[here][i]];
    for (uint32_t k = 0; k < 3; ++k) {
      const uint32_t w = corner(tri, k);
      if (w == here || !(dst_Sqr(vtx[w], segment.target) < left)) continue;
      if (w == closing) return w;
      const double distance = dst_Seg3(vtx[w], segment.from, segment.target);
      if (!(distance < best)) continue;
      best = distance;
      next = w;
    }
  }
  return next;
}

// Calls visit(v) for each vertex after the start. False if the walk does not end at its start. It
// may come across the start early on and go on; from half of the segments on it ends there.
template <typename Visit>
bool walk_Curve(const TGround& ground, const TArrVec& curve, Visit visit) {
  const uint32_t start = find_Nearest(ground.msh, curve.data[0]);
  uint32_t here = start;
  for (uint32_t i = 0; i < curve.count; ++i) {
    const TSegment segment = {curve.data[i], curve.data[i + 1 < curve.count ? i + 1 : 0]};
    const uint32_t closing = i >= curve.count / 2 ? start : kNone;
    for (;;) {
      const uint32_t next = find_Next(ground, here, segment, closing);
      if (next == kNone) break;
      visit(next);
      here = next;
      if (here == closing) return true;
    }
  }
  return here == start;
}

int32_t list_Path(const TGround& ground, const TArrVec& curve, TArr<uint32_t>& out) {
  if (!curve.data || curve.count == 0) return 0;
  uint64_t count = 0;
  if (!walk_Curve(ground, curve, [&](uint32_t) { ++count; })) return -17;
  if (count > UINT32_MAX || !alloc(out, static_cast<uint32_t>(count))) return -16;
  uint32_t* end = out.data;
  walk_Curve(ground, curve, [&](uint32_t v) { *end++ = v; });
  return 0;
}

}  // namespace

int32_t crv_Path(const T3DMSH& msh, const TArrArrVec& curves, TArr<TArr<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh)) return -1;
  Scoped<TAdj> vtx_tri;
  if (adj_VtxTri(msh, *vtx_tri) < 0) return -13;
  return crv_Path(msh, *vtx_tri, curves, out);
}

int32_t crv_Path(const T3DMSH& msh, const TAdj& vtx_tri, const TArrArrVec& curves,
                 TArr<TArr<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh) || !vtx_tri.lists || !vtx_tri.counts) return -1;
  if (!curves.data) return 0;
  Scoped<TArr<TArr<uint32_t>>> paths;
  if (!alloc(*paths, curves.count)) return -13;
  for (uint32_t i = 0; i < curves.count; ++i)
    if (const int32_t code = list_Path({msh, vtx_tri}, curves.data[i], paths->data[i])) return code;
  out = paths.take();
  return 0;
}

}  // namespace undercut
