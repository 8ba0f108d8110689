// A mesh of some of the triangles of another, by index: one pass numbers the vertices, a second
// copies, so that memory is taken once and at its final size.
#include "mesh/sub_mesh.h"

#include <initializer_list>

namespace undercut {

namespace {

// Calls visit(triangle) for each entry of the list that keeps its place in the sub-mesh.
template <typename Visit>
void each_Kept(const T3DMSH& msh, const TLst<uint32_t>& lst, Visit visit) {
  for (uint32_t i = 0; lst.data && i < lst.count; ++i) {
    const T3DTRI& tri = msh.tri[lst.data[i]];
    if (!is_Flat(tri)) visit(tri);
  }
}

}  // namespace

bool sub_Msh(const T3DMSH& msh, const TLst<uint32_t>& lst, T3DMSH& out) {
  out = {};
  Scoped<TArr<uint32_t>> number;  // of each vertex in the sub-mesh, from 1; 0 for one without use
  if (!alloc(*number, msh.n_vtx)) return false;
  uint32_t vertices = 0, triangles = 0;
  each_Kept(msh, lst, [&](const T3DTRI& tri) {
    ++triangles;
    for (const uint32_t v : {tri.a, tri.b, tri.c})
      if (number->data[v] == 0) number->data[v] = ++vertices;
  });

  Scoped<T3DMSH> sub;
  if (!alloc_Msh(*sub, vertices, triangles)) return false;
  uint32_t next = 0;
  each_Kept(msh, lst, [&](const T3DTRI& tri) {
    const auto place = [&](uint32_t v) {
      const uint32_t at = number->data[v] - 1;
      sub->vtx[at] = msh.vtx[v];
      return at;
    };
    sub->tri[next++] = {place(tri.a), place(tri.b), place(tri.c)};
  });
  out = sub.take();
  return true;
}

}  // namespace undercut
