// Boundary edges by counting shared edges, and the chains that edges form.
#include "mesh/boundary.h"

#include <algorithm>
#include <cstring>

#include "foundation/parallel.h"
#include "mesh/edge_counts.h"

namespace undercut {

namespace {

// kNoLists: no table, or a list of triangles that is missing or names one beyond the mesh.
constexpr int32_t kNoTriangles = -1, kNoCount = -2, kNoLists = -3, kNoMemory = -4;

bool has_Lists(const TAdj& adj) { return adj.lists && adj.counts; }

// The edges whose bits are set, by triangle, then corner.
bool store_Open(const T3DMSH& msh, const uint8_t* open, TArr<T3DSGM>& out) {
  uint64_t count = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) count += count_Open(open[t]);
  if (count > UINT32_MAX || !alloc(out, static_cast<uint32_t>(count))) return false;
  T3DSGM* end = out.data;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    if (open[t] == 0) continue;
    for (uint32_t k = 0; k < 3; ++k)
      if (open[t] & 1u << k) *end++ = {corner(msh.tri[t], k), corner(msh.tri[t], k + 1)};
  }
  return true;
}

// The edges of accepted triangles that no other accepted triangle shares, by triangle, then corner.
template <typename Accept>
int32_t list_Open(const T3DMSH& msh, const TAdj& vtx_tri, Accept accept, TArr<T3DSGM>& out) {
  Scoped<TArr<uint32_t>> shared;
  Scoped<TArr<uint8_t>> open;  // bit k of a triangle: its edge k is on the boundary
  if (!alloc(*shared, msh.n_vtx) || !alloc(*open, msh.n_tri)) return kNoMemory;
  visit_Edges(msh, vtx_tri, shared->data, accept, [&](uint32_t t, uint32_t k, uint32_t others) {
    if (others == 0) open->data[t] = static_cast<uint8_t>(open->data[t] | 1u << k);
  });
  return store_Open(msh, open->data, out) ? 0 : kNoMemory;
}

int32_t check_Mesh(const T3DMSH& msh) {
  if (!msh.tri) return kNoTriangles;
  return msh.n_tri == 0 ? kNoCount : 0;
}

// Listed triangles in rising order, their vertices numbered among themselves.
struct TPatch {
  Scoped<TArr<T3DTRI>> tri;
  Scoped<TArr<uint32_t>> vertices;  // of the mesh, by own number
};

bool init_Patch(TPatch& patch, const T3DMSH& msh, const TLst<uint32_t>& lst, uint32_t* number) {
  Scoped<TArr<uint32_t>> order;
  const uint64_t most = std::min(uint64_t{3} * lst.count, uint64_t{msh.n_vtx});
  if (!alloc(*order, lst.count) || !alloc(*patch.tri, lst.count) ||
      !alloc(*patch.vertices, static_cast<uint32_t>(most)))
    return false;
  std::copy(lst.data, lst.data + lst.count, order->data);
  std::sort(order->data, order->data + order->count);
  uint32_t used = 0;
  const auto get_Number = [&](uint32_t v) {
    if (number[v] == 0) {
      patch.vertices->data[used] = v;
      number[v] = ++used;
    }
    return number[v] - 1;
  };
  for (uint32_t i = 0; i < lst.count; ++i) {
    const T3DTRI& tri = msh.tri[order->data[i]];
    patch.tri->data[i] = {get_Number(tri.a), get_Number(tri.b), get_Number(tri.c)};
  }
  patch.vertices->count = used;
  for (uint32_t i = 0; i < used; ++i) number[patch.vertices->data[i]] = 0;
  return true;
}

// The first edge of a triangle whose ends are both corners of another; false if there is none.
bool find_Common(const T3DTRI& tri, const T3DTRI& other, T3DSGM& edge) {
  for (uint32_t k = 0; k < 3; ++k) {
    edge = {corner(tri, k), corner(tri, k + 1)};
    if (has_Vtx(other, edge.a) && has_Vtx(other, edge.b)) return true;
  }
  return false;
}

// The search for chains: each vertex is in `order` once, chain after chain, as it is walked.
struct TWalk {
  Scoped<TAdj> at;             // the edges at each vertex
  Scoped<TArr<uint8_t>> seen;  // by vertex
  Scoped<TArr<uint32_t>> stack, order, starts;
};

bool init_Walk(TWalk& walk, const T3DMSH& msh, const TArr<T3DSGM>& edges) {
  const T3DPOL pol = {msh.vtx, msh.n_vtx, edges.data, edges.count};
  if (adj_PntSgm(pol, *walk.at) < 0 || !alloc(*walk.seen, msh.n_vtx) ||
      !alloc(*walk.stack, msh.n_vtx) || !alloc(*walk.order, msh.n_vtx) ||
      !alloc(*walk.starts, msh.n_vtx))
    return false;
  walk.order->count = walk.starts->count = 0;
  return true;
}

// Walks from a vertex along the direction of the edges, as far as they lead to vertices not seen.
void walk_Chain(TWalk& walk, const TArr<T3DSGM>& edges, uint32_t start) {
  uint32_t top = 0;
  walk.starts->data[walk.starts->count++] = walk.order->count;
  walk.stack->data[top++] = start;
  walk.seen->data[start] = 1;
  while (top > 0) {
    const uint32_t v = walk.stack->data[--top];
    walk.order->data[walk.order->count++] = v;
    for (uint32_t i = 0; i < walk.at->counts[v]; ++i) {
      const uint32_t w = edges.data[walk.at->lists[v][i]].b;
      if (walk.seen->data[w]) continue;
      walk.seen->data[w] = 1;
      walk.stack->data[top++] = w;
    }
  }
}

bool store_Chains(TWalk& walk, TArr<TArr<uint32_t>>& out) {
  if (!alloc(out, walk.starts->count)) return false;
  for (uint32_t i = 0; i < out.count; ++i) {
    const uint32_t first = walk.starts->data[i];
    const uint32_t end = i + 1 < out.count ? walk.starts->data[i + 1] : walk.order->count;
    if (!alloc(out.data[i], end - first)) {
      release(out);
      return false;
    }
    std::memcpy(out.data[i].data, walk.order->data + first, (end - first) * sizeof(uint32_t));
  }
  return true;
}

}  // namespace

int32_t bnd_All(const T3DMSH& msh, const TAdj& vtx_tri, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  if (!has_Lists(vtx_tri)) return kNoLists;
  return list_Open(
      msh, vtx_tri, [](uint32_t) { return true; }, out);
}

int32_t bnd_Set(const T3DMSH& msh, const TAdj& vtx_tri, const CBitVector& set, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  if (!has_Lists(vtx_tri)) return kNoLists;
  return list_Open(
      msh, vtx_tri, [&](uint32_t t) { return set.test(t); }, out);
}

int32_t bnd_Adj(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector* set, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  if (!has_Lists(tri_tri)) return kNoLists;
  Scoped<TArr<uint8_t>> open;
  if (!alloc(*open, msh.n_tri)) return kNoMemory;
  const auto accept = [&](uint32_t t) { return !set || set->test(t); };
  each_Index(msh.n_tri, [&](uint32_t t) {
    if (accept(t)) open->data[t] = find_Open(msh, tri_tri, t, accept);
  });
  return store_Open(msh, open->data, out) ? 0 : kNoMemory;
}

int32_t bnd_Lst(const T3DMSH& msh, const TLst<uint32_t>& lst, uint32_t* number, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  if (lst.count == 0) return 0;
  if (!lst.data) return kNoLists;
  TPatch patch;
  if (!init_Patch(patch, msh, lst, number)) return kNoMemory;
  const T3DMSH own = {nullptr, patch.vertices->count, patch.tri->data, patch.tri->count};
  Scoped<TAdj> vtx_tri;
  if (adj_VtxTri(own, *vtx_tri) < 0 || bnd_All(own, *vtx_tri, out) < 0) return kNoMemory;
  const uint32_t* vertices = patch.vertices->data;
  for (uint32_t i = 0; i < out.count; ++i)
    out.data[i] = {vertices[out.data[i].a], vertices[out.data[i].b]};
  return 0;
}

int32_t bnd_Own(const T3DMSH& msh, const CBitVector& set, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  Scoped<TAdj> vtx_tri;
  if (adj_VtxTri(msh, *vtx_tri) < 0) return kNoLists;
  const auto accept = [&](uint32_t t) { return set.test(t) && !is_Flat(msh.tri[t]); };
  return list_Open(msh, *vtx_tri, accept, out);
}

int32_t bnd_Out(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector& set,
                const TLst<uint32_t>& lst, TArr<T3DSGM>& out) {
  reset(out);
  if (const int32_t code = check_Mesh(msh)) return code;
  if (!has_Lists(tri_tri) || (!lst.data && lst.count > 0)) return kNoLists;
  uint64_t count = 0;
  for (uint32_t i = 0; i < lst.count; ++i) {
    const uint32_t t = lst.data[i];
    if (t >= msh.n_tri) return kNoLists;
    for (uint32_t k = 0; k < tri_tri.counts[t]; ++k) count += !set.test(tri_tri.lists[t][k]);
    if (count > UINT32_MAX) return kNoMemory;
  }
  if (!alloc(out, static_cast<uint32_t>(count))) return kNoMemory;
  uint32_t stored = 0;
  for (uint32_t i = 0; i < lst.count; ++i) {
    const uint32_t t = lst.data[i];
    for (uint32_t k = 0; k < tri_tri.counts[t]; ++k) {
      const uint32_t n = tri_tri.lists[t][k];
      if (!set.test(n) && find_Common(msh.tri[t], msh.tri[n], out.data[stored])) ++stored;
    }
  }
  out.count = stored;
  return 0;
}

bool bnd_Loops(const T3DMSH& msh, const TArr<T3DSGM>& edges, TArr<TArr<uint32_t>>& out) {
  reset(out);
  if (!edges.data || edges.count == 0 || msh.n_vtx == 0) return false;
  TWalk walk;
  if (!init_Walk(walk, msh, edges)) return false;
  // An open chain begins where a single edge begins; what these leave are the closed ones.
  for (uint32_t v = 0; v < msh.n_vtx; ++v)
    if (walk.at->counts[v] == 1 && edges.data[walk.at->lists[v][0]].a == v)
      walk_Chain(walk, edges, v);
  for (uint32_t v = 0; v < msh.n_vtx; ++v)
    if (walk.at->counts[v] > 0 && !walk.seen->data[v]) walk_Chain(walk, edges, v);
  return store_Chains(walk, out);
}

}  // namespace undercut
