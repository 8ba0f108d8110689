// Incidence tables by two passes: the first counts, the second fills.
#include "mesh/adjacency.h"

#include <algorithm>
#include <array>

#include "mesh/edge_counts.h"

namespace undercut {

namespace {

std::array<uint32_t, 3> get_Ends(const T3DTRI& t) { return {t.a, t.b, t.c}; }
std::array<uint32_t, 2> get_Ends(const T3DSGM& s) { return {s.a, s.b}; }

// One list at least: a table of no items has a block too.
bool alloc_Lists(TAdj& adj, uint32_t items) {
  adj.lists = new_Zeroed<uint32_t*>(std::max(items, 1u));
  return adj.lists != nullptr;
}

// Allocates the block and points the lists into it by their counts. A count that passed 32 bits
// makes a smaller sum than the entries, and fails.
bool alloc_Block(TAdj& adj, uint32_t items, uint64_t entries) {
  uint64_t sum = 0;
  for (uint32_t i = 0; i < items; ++i) sum += adj.counts[i];
  if (sum != entries) return false;
  uint32_t* list = new_Array<uint32_t>(entries);
  if (!list) return false;
  adj.lists[0] = list;
  for (uint32_t i = 0; i < items; ++i) {
    adj.lists[i] = list;
    list += adj.counts[i];
  }
  return true;
}

// Per point the items that have it as an end.
template <typename Item>
int32_t list_Items(const Item* items, uint32_t n_items, uint32_t n_points, TAdj& out) {
  out = {};
  if (!items) return -1;
  Scoped<TAdj> adj;
  if (!alloc_Lists(*adj, n_points)) return -2;
  adj->counts = new_Zeroed<uint32_t>(n_points);
  if (!adj->counts) return -3;
  for (uint32_t i = 0; i < n_items; ++i)
    for (const uint32_t p : get_Ends(items[i])) ++adj->counts[p];
  if (!alloc_Block(*adj, n_points, get_Ends(Item{}).size() * uint64_t{n_items})) return -4;
  std::fill_n(adj->counts, n_points, 0u);
  for (uint32_t i = 0; i < n_items; ++i)
    for (const uint32_t p : get_Ends(items[i])) adj->lists[p][adj->counts[p]++] = i;
  out = adj.take();
  return 0;
}

// Counts the neighbours of each triangle; false as soon as there are more than a table holds.
bool count_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t* counts, uint64_t& total) {
  Scoped<TArr<uint32_t>> shared;
  if (!alloc(*shared, msh.n_vtx)) return false;
  total = 0;
  visit_Edges(
      msh, vtx_tri, shared->data, [](uint32_t) { return true; },
      [&](uint32_t t, uint32_t, uint32_t others) {
        total += others;
        counts[t] += others;  // wraps only where the total is past the limit
      });
  return total <= UINT32_MAX;
}

// Stores the other triangles at the edge from p to q of triangle t and returns the end of what it
// wrote: each as often as p occurs in it, in rising order. Walks the end where fewer meet.
uint32_t* store_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t t, uint32_t p,
                           uint32_t q, uint32_t* out) {
  const bool at_p = vtx_tri.counts[p] <= vtx_tri.counts[q];
  const uint32_t* list = vtx_tri.lists[at_p ? p : q];
  const uint32_t count = vtx_tri.counts[at_p ? p : q];
  const uint32_t opposite = at_p ? q : p;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t j = list[i];
    if (j == t || (i > 0 && j == list[i - 1]) || !has_Vtx(msh.tri[j], opposite)) continue;
    out = std::fill_n(out, count_Corner(msh.tri[j], p), j);
  }
  return out;
}

}  // namespace

void adj_Free(TAdj& adj) {
  if (adj.lists) free_Array(adj.lists[0]);
  free_Array(adj.counts);
  free_Array(adj.lists);
  adj = {};
}

int32_t adj_VtxTri(const T3DMSH& msh, TAdj& out) {
  return list_Items(msh.tri, msh.n_tri, msh.n_vtx, out);
}

int32_t adj_PntSgm(const T3DPOL& pol, TAdj& out) {
  return list_Items(pol.sgm, pol.n_sgm, pol.n_pnt, out);
}

int32_t adj_TriTri(const T3DMSH& msh, TAdj& out) {
  out = {};
  if (!msh.tri) return -1;
  Scoped<TAdj> vtx_tri;
  if (adj_VtxTri(msh, *vtx_tri) < 0) return -2;
  return adj_TriTri(msh, *vtx_tri, out);
}

int32_t adj_TriTri(const T3DMSH& msh, const TAdj& vtx_tri, TAdj& out) {
  out = {};
  if (!msh.tri) return -1;
  if (!vtx_tri.lists || !vtx_tri.counts) return -2;
  Scoped<TAdj> adj;
  if (!alloc_Lists(*adj, msh.n_tri)) return -3;
  adj->counts = new_Zeroed<uint32_t>(msh.n_tri);
  if (!adj->counts) return -4;
  uint64_t total = 0;
  if (!count_Neighbours(msh, vtx_tri, adj->counts, total) || !alloc_Block(*adj, msh.n_tri, total))
    return -5;
  uint32_t* end = adj->lists[0];
  for (uint32_t t = 0; t < msh.n_tri; ++t)
    for (uint32_t k = 0; k < 3; ++k)
      end =
          store_Neighbours(msh, vtx_tri, t, corner(msh.tri[t], k), corner(msh.tri[t], k + 1), end);
  out = adj.take();
  return 0;
}

}  // namespace undercut
