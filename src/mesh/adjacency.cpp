// Incidence tables by two passes: the first counts, the second fills.
#include "mesh/adjacency.h"

#include <algorithm>
#include <array>
#include <utility>

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

// What the search for neighbours needs beside its result.
struct TScratch {
  Scoped<TArr<uint32_t>> place;   // of edge k of triangle t, at 3 t + k: where its neighbours begin
  Scoped<TArr<uint32_t>> vertex;  // a word for each vertex
  Scoped<TArr<uint32_t>> next;    // three for each entry of the longest list of a vertex
};

bool init_Scratch(const T3DMSH& msh, const TAdj& vtx_tri, TScratch& scratch) {
  uint32_t most = 0;
  for (uint32_t v = 0; v < msh.n_vtx; ++v) most = std::max(most, vtx_tri.counts[v]);
  return std::max(msh.n_tri, most) <= UINT32_MAX / 3 && alloc(*scratch.place, 3 * msh.n_tri) &&
         alloc(*scratch.vertex, msh.n_vtx) && alloc(*scratch.next, 3 * most);
}

// Counts the neighbours of each triangle and places those of each edge; false if there are more
// than a table holds.
bool count_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, TScratch& scratch, uint32_t* counts,
                      uint64_t& total) {
  uint32_t* place = scratch.place->data;
  total = 0;
  visit_Edges(
      msh, vtx_tri, scratch.vertex->data, [](uint32_t) { return true; },
      [&](uint32_t t, uint32_t k, uint32_t others) {
        total += others;
        place[3 * t + k] = others;
      });
  if (total > UINT32_MAX) return false;
  uint32_t sum = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const uint32_t first = sum;
    for (uint32_t k = 0; k < 3; ++k) sum += std::exchange(place[3 * t + k], sum);
    counts[t] = sum - first;
  }
  return true;
}

// Stores the neighbours over the edges that begin at p. The entries at p are chained by each corner
// of their triangle, so that the search costs no more than its result: `head` holds kNone for each
// vertex, before and after.
void store_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t p, TScratch& scratch,
                      uint32_t* block) {
  const uint32_t* list = vtx_tri.lists[p];
  const uint32_t count = vtx_tri.counts[p];
  uint32_t* head = scratch.vertex->data;
  uint32_t* next = scratch.next->data;
  for (uint32_t i = count; i-- > 0;) {
    uint32_t link = 3 * i;  // and the two behind it
    each_Corner(msh.tri[list[i]], [&](uint32_t q) {
      next[link] = head[q];
      head[q] = link++;
    });
  }
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t t = list[i];
    for (uint32_t k = 0; k < 3; ++k) {
      if (corner(msh.tri[t], k) != p) continue;
      uint32_t* out = block + scratch.place->data[3 * t + k];
      for (uint32_t e = head[corner(msh.tri[t], k + 1)]; e != kNone; e = next[e])
        if (list[e / 3] != t) *out++ = list[e / 3];
    }
  }
  for (uint32_t i = 0; i < count; ++i)
    each_Corner(msh.tri[list[i]], [&](uint32_t q) { head[q] = kNone; });
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
  TScratch scratch;
  uint64_t total = 0;
  if (!init_Scratch(msh, vtx_tri, scratch) ||
      !count_Neighbours(msh, vtx_tri, scratch, adj->counts, total) ||
      !alloc_Block(*adj, msh.n_tri, total))
    return -5;
  std::fill_n(scratch.vertex->data, msh.n_vtx, kNone);
  for (uint32_t p = 0; p < msh.n_vtx; ++p)
    store_Neighbours(msh, vtx_tri, p, scratch, adj->lists[0]);
  out = adj.take();
  return 0;
}

}  // namespace undercut
