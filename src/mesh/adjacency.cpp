// Incidence tables by two passes: the first counts, the second fills.
#include "mesh/adjacency.h"

#include <omp.h>

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/parallel.h"
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

// In how many parts items are listed: they take a word a point each.
constexpr uint32_t kMostParts = 4, kPerPart = 16384;
constexpr uint32_t kFewParts = 2;  // of so much work that even two pay for threads
uint32_t find_Parts(uint32_t items, uint32_t points) {
  if (points > UINT32_MAX / kMostParts) return 1;
  return std::min({kMostParts, 1 + items / kPerPart, static_cast<uint32_t>(omp_get_max_threads())});
}

// Per point the items that have it as an end.
template <typename Item>
int32_t list_Items(const Item* items, uint32_t n_items, uint32_t n_points, TAdj& out) {
  out = {};
  if (!items) return -1;
  Scoped<TAdj> adj;
  if (!alloc_Lists(*adj, n_points)) return -2;
  adj->counts = new_Array<uint32_t>(n_points);
  if (!adj->counts) return -3;

  // Parts of the items go beside one another: first each counts its own at every point; then it
  // puts them behind those of the parts before it.
  const uint32_t parts = find_Parts(n_items, n_points);
  Scoped<TArr<uint32_t>> next;  // all zero
  if (!alloc(*next, parts * n_points)) return -3;
  const auto each_End = [&](uint32_t part, auto visit) {
    const uint64_t end = uint64_t{n_items} * (part + 1) / parts;
    uint32_t* const own = next->data + size_t{part} * n_points;
    for (uint64_t i = uint64_t{n_items} * part / parts; i < end; ++i)
      for (const uint32_t p : get_Ends(items[i])) visit(own[p], p, static_cast<uint32_t>(i));
  };
  each_Index(
      parts,
      [&](uint32_t part) { each_End(part, [](uint32_t& count, uint32_t, uint32_t) { ++count; }); },
      kFewParts);
  each_Index(
      n_points,
      [&](uint32_t p) {
        uint32_t sum = 0;
        for (uint32_t part = 0; part < parts; ++part)
          sum += std::exchange(next->data[size_t{part} * n_points + p], sum);
        adj->counts[p] = sum;
      },
      kWorthIfLight);
  if (!alloc_Block(*adj, n_points, get_Ends(Item{}).size() * uint64_t{n_items})) return -4;
  each_Index(
      parts,
      [&](uint32_t part) {
        each_End(part,
                 [&](uint32_t& place, uint32_t p, uint32_t i) { adj->lists[p][place++] = i; });
      },
      kFewParts);
  out = adj.take();
  return 0;
}

// Where more triangles than these meet at a vertex, they are chained by their corners; at the
// others each edge asks them one by one, which takes less and lets triangles go in parallel.
constexpr uint32_t kMostAsked = 32;

// What the search for neighbours needs beside its result.
struct TScratch {
  Scoped<TArr<uint32_t>> others;  // of edge k of triangle t, at 3 t + k: how many neighbours
  Scoped<TArr<uint32_t>> only;    // likewise the last of them
  Scoped<TArr<uint32_t>> vertex;  // a word for each vertex
  Scoped<TArr<uint32_t>> next;    // three for each entry of the longest list of a vertex
};

bool is_Crowded(const TAdj& vtx_tri, uint32_t v) { return vtx_tri.counts[v] > kMostAsked; }

bool init_Scratch(const T3DMSH& msh, const TAdj& vtx_tri, TScratch& scratch) {
  uint32_t most = 0;
  for (uint32_t v = 0; v < msh.n_vtx; ++v) most = std::max(most, vtx_tri.counts[v]);
  if (std::max(msh.n_tri, most) > UINT32_MAX / 3 || !alloc(*scratch.others, 3 * msh.n_tri) ||
      !alloc(*scratch.only, 3 * msh.n_tri))
    return false;
  return most <= kMostAsked ||
         (alloc(*scratch.vertex, msh.n_vtx) && alloc(*scratch.next, 3 * most));
}

// The entries at the first end of an edge whose triangle is another one and contains the second.
template <typename Visit>
void each_Other(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t t, uint32_t k, Visit visit) {
  const uint32_t p = corner(msh.tri[t], k), q = corner(msh.tri[t], k + 1);
  const uint32_t* list = vtx_tri.lists[p];
  for (uint32_t i = 0; i < vtx_tri.counts[p]; ++i)
    if (list[i] != t && has_Vtx(msh.tri[list[i]], q)) visit(list[i]);
}

// Counts the neighbours over each edge of each triangle; false if there are more than a table
// holds.
bool count_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, TScratch& scratch, uint32_t* counts,
                      uint64_t& total) {
  uint32_t* others = scratch.others->data;
  uint32_t* only = scratch.only->data;
  each_Index(msh.n_tri, [&](uint32_t t) {
    for (uint32_t k = 0; k < 3; ++k) {
      if (is_Crowded(vtx_tri, corner(msh.tri[t], k))) continue;
      uint32_t count = 0, last = kNone;
      each_Other(msh, vtx_tri, t, k, [&](uint32_t other) {
        ++count;
        last = other;
      });
      others[3 * t + k] = count;
      only[3 * t + k] = last;
    }
  });
  if (scratch.vertex->data)
    visit_Edges(
        msh, vtx_tri, scratch.vertex->data, [&](uint32_t p) { return is_Crowded(vtx_tri, p); },
        [](uint32_t) { return true; },
        [&](uint32_t t, uint32_t k, uint32_t count) { others[3 * t + k] = count; });
  total = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    uint64_t sum = 0;
    for (uint32_t k = 0; k < 3; ++k) sum += others[3 * t + k];
    counts[t] = static_cast<uint32_t>(sum);
    total += sum;
  }
  return total <= UINT32_MAX;
}

// Where the neighbours over edge k of a triangle begin.
uint32_t* place_Of(const TAdj& tri_tri, TScratch& scratch, uint32_t t, uint32_t k) {
  uint32_t* place = tri_tri.lists[t];
  for (uint32_t i = 0; i < k; ++i) place += scratch.others->data[3 * t + i];
  return place;
}

void store_Asked(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t t, TScratch& scratch,
                 TAdj& tri_tri) {
  uint32_t* end = tri_tri.lists[t];
  for (uint32_t k = 0; k < 3; ++k) {
    const uint32_t count = scratch.others->data[3 * t + k];
    if (is_Crowded(vtx_tri, corner(msh.tri[t], k)))
      end += count;
    else if (count == 1)
      *end++ = scratch.only->data[3 * t + k];
    else if (count > 1)
      each_Other(msh, vtx_tri, t, k, [&](uint32_t other) { *end++ = other; });
  }
}

// Stores the neighbours over the edges that begin at p. The entries at p are chained by each corner
// of their triangle, so that the search costs no more than its result: `head` holds kNone for each
// vertex, before and after.
void store_Chained(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t p, TScratch& scratch,
                   TAdj& tri_tri) {
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
      uint32_t* out = place_Of(tri_tri, scratch, t, k);
      for (uint32_t e = head[corner(msh.tri[t], k + 1)]; e != kNone; e = next[e])
        if (list[e / 3] != t) *out++ = list[e / 3];
    }
  }
  for (uint32_t i = 0; i < count; ++i)
    each_Corner(msh.tri[list[i]], [&](uint32_t q) { head[q] = kNone; });
}

void store_Neighbours(const T3DMSH& msh, const TAdj& vtx_tri, TScratch& scratch, TAdj& tri_tri) {
  each_Index(msh.n_tri, [&](uint32_t t) { store_Asked(msh, vtx_tri, t, scratch, tri_tri); });
  if (!scratch.vertex->data) return;
  std::fill_n(scratch.vertex->data, msh.n_vtx, kNone);
  for (uint32_t p = 0; p < msh.n_vtx; ++p)
    if (is_Crowded(vtx_tri, p)) store_Chained(msh, vtx_tri, p, scratch, tri_tri);
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
  store_Neighbours(msh, vtx_tri, scratch, *adj);
  out = adj.take();
  return 0;
}

}  // namespace undercut
