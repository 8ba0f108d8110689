// Repair of a list of triangles: rejects what is no manifold, keeps the largest patch of the rest.
//
// Bow ties are looked for in rounds, each on what the round before left. Edges carry the number of
// triangles that are left at them, so a round costs only what it rejects, however many it takes.
#include "mesh/region_repair.h"

#include <algorithm>

#include "mesh/edge_counts.h"
#include "mesh/flood.h"

namespace undercut {

namespace {

int32_t check_Input(const T3DMSH& msh, const TLst<uint32_t>& lst, const CBitVector& vertices,
                    const CBitVector& triangles, const TAdj& vtx_tri, const TAdj& tri_tri) {
  if (!msh.vtx) return -1;
  if (!msh.tri) return -2;
  if (msh.n_vtx == 0) return -3;
  if (msh.n_tri == 0) return -4;
  if (!lst.data) return -5;
  if (lst.count == 0) return -6;
  if (!vtx_tri.lists) return -7;
  if (!vtx_tri.counts) return -8;
  if (!tri_tri.lists) return -9;
  if (!tri_tri.counts) return -10;
  if (vertices.size() != msh.n_vtx) return -11;
  if (triangles.size() != msh.n_tri) return -12;
  return 0;
}

// False for an index beyond the mesh.
bool reject_Flat(const T3DMSH& msh, const TLst<uint32_t>& lst, CBitVector& rejected) {
  for (uint32_t i = 0; i < lst.count; ++i) {
    const uint32_t t = lst.data[i];
    if (t >= msh.n_tri) return false;
    if (is_Flat(msh.tri[t])) rejected.set(t);
  }
  return true;
}

// Rejects triangles with an edge that more than two share. Triangles of the mesh that are not
// listed count too; they are rejected as well, which no later step asks for.
bool reject_Edges(const T3DMSH& msh, const TAdj& vtx_tri, CBitVector& rejected) {
  const CBitVector before = rejected;  // what this pass rejects still counts in it
  Scoped<TArr<uint32_t>> shared;
  if (!before.is_Valid() || !alloc(*shared, msh.n_vtx)) return false;
  visit_Edges(
      msh, vtx_tri, shared->data, [&](uint32_t t) { return !before.test(t); },
      [&](uint32_t t, uint32_t, uint32_t others) {
        if (others > 1) rejected.set(t);
      });
  return true;
}

// The listed triangles that are left, and how their edges meet at each vertex.
class Fans {
 public:
  Fans(const T3DMSH& msh, const TAdj& vtx_tri, const CBitVector& listed, CBitVector& rejected)
      : msh_(msh), vtx_tri_(vtx_tri), listed_(listed), rejected_(rejected) {}

  // Numbers the edges and counts the triangles at each.
  bool init();

  // A vertex where fans touch has more than two open ends.
  bool is_Bow(uint32_t v) { return ends_->data[v] > 2; }

  // Rejects the triangles at a vertex; appends them to `gone`.
  void reject_At(uint32_t v, TLst<uint32_t>& gone);

 private:
  bool is_Left(uint32_t t) const { return listed_.test(t) && !rejected_.test(t); }
  void number_Edges(uint32_t p, uint32_t* number);
  // Changes the number of open ends at both ends of an edge.
  void add_Ends(uint32_t t, uint32_t k, int32_t change) {
    ends_->data[corner(msh_.tri[t], k)] += change;
    ends_->data[corner(msh_.tri[t], k + 1)] += change;
  }

  const T3DMSH& msh_;
  const TAdj& vtx_tri_;
  const CBitVector& listed_;
  CBitVector& rejected_;
  uint32_t edges_ = 0;
  Scoped<TArr<uint32_t>> edge_;   // edge k of triangle t at 3 t + k
  Scoped<TArr<uint32_t>> count_;  // by edge: triangles left at it
  Scoped<TArr<int32_t>> ends_;    // by vertex: edges with one triangle left
};

bool Fans::init() {
  Scoped<TArr<uint32_t>> number;
  if (msh_.n_tri > UINT32_MAX / 3 || !alloc(*edge_, 3 * msh_.n_tri) ||
      !alloc(*count_, 3 * msh_.n_tri) || !alloc(*ends_, msh_.n_vtx) || !alloc(*number, msh_.n_vtx))
    return false;
  std::fill_n(number->data, msh_.n_vtx, kNone);
  for (uint32_t p = 0; p < msh_.n_vtx; ++p) number_Edges(p, number->data);
  for (uint32_t t = 0; t < msh_.n_tri; ++t)
    for (uint32_t k = 0; k < 3 && is_Left(t); ++k)
      if (count_->data[edge_->data[3 * t + k]] == 1) add_Ends(t, k, 1);
  return true;
}

// Numbers the edges whose lower end is p. `number` holds kNone for each vertex, before and after.
void Fans::number_Edges(uint32_t p, uint32_t* number) {
  const uint32_t* list = vtx_tri_.lists[p];
  const auto each_Edge = [&](auto action) {
    for (uint32_t i = 0; i < vtx_tri_.counts[p]; ++i) {
      if (!is_Left(list[i])) continue;
      for (uint32_t k = 0; k < 3; ++k) {
        const uint32_t a = corner(msh_.tri[list[i]], k), b = corner(msh_.tri[list[i]], k + 1);
        if (std::min(a, b) == p) action(3 * list[i] + k, std::max(a, b));
      }
    }
  };
  each_Edge([&](uint32_t slot, uint32_t q) {
    if (number[q] == kNone) number[q] = edges_++;
    edge_->data[slot] = number[q];
    ++count_->data[number[q]];
  });
  each_Edge([&](uint32_t, uint32_t q) { number[q] = kNone; });
}

void Fans::reject_At(uint32_t v, TLst<uint32_t>& gone) {
  for (uint32_t i = 0; i < vtx_tri_.counts[v]; ++i) {
    const uint32_t t = vtx_tri_.lists[v][i];
    if (!is_Left(t)) continue;
    rejected_.set(t);
    gone.data[gone.count++] = t;
    for (uint32_t k = 0; k < 3; ++k) {
      const uint32_t left = --count_->data[edge_->data[3 * t + k]];
      if (left == 1) add_Ends(t, k, 1);
      if (left == 0) add_Ends(t, k, -1);
    }
  }
}

// Rejects the triangles around vertices where fans touch, until no such vertex is left. A round
// tells its vertices before it rejects any triangle; only corners of what it rejected can be new in
// the next.
bool reject_Bows(const T3DMSH& msh, const TAdj& vtx_tri, const CBitVector& listed,
                 CBitVector& marked, CBitVector& rejected) {
  Fans fans(msh, vtx_tri, listed, rejected);
  Scoped<TLst<uint32_t>> bows, gone;  // all so far, in the order of the rounds
  if (!fans.init() || !alloc(*bows, msh.n_vtx) || !alloc(*gone, msh.n_tri)) return false;
  const auto mark = [&](uint32_t v) {
    if (marked.test(v) || !fans.is_Bow(v)) return;
    marked.set(v);
    bows->data[bows->count++] = v;
  };
  for (uint32_t v = 0; v < msh.n_vtx; ++v) mark(v);
  uint32_t bow = 0, out = 0;
  while (bow < bows->count) {
    for (; bow < bows->count; ++bow) fans.reject_At(bows->data[bow], *gone);
    for (; out < gone->count; ++out) each_Corner(msh.tri[gone->data[out]], mark);
  }
  return true;
}

// Leaves in `rejected` all but the largest patch of what is listed and not rejected; of equal ones
// the first found, in the order of the list.
bool keep_Largest(const T3DMSH& msh, const TLst<uint32_t>& lst, const TAdj& tri_tri,
                  CBitVector& rejected) {
  Scoped<TArr<uint8_t>> waiting;
  Scoped<TArr<uint32_t>> order;
  if (!alloc(*waiting, msh.n_tri) || !alloc(*order, msh.n_tri)) return false;
  for (uint32_t i = 0; i < lst.count; ++i)
    waiting->data[lst.data[i]] = rejected.test_Not(lst.data[i]);
  uint32_t end = 0, best = 0, size = 0;
  for (uint32_t i = 0; i < lst.count; ++i) {
    if (!waiting->data[lst.data[i]]) continue;
    const uint32_t first = end;
    end = flood_Patch(tri_tri, lst.data[i], waiting->data, order->data, first);
    if (end - first <= size) continue;
    best = first;
    size = end - first;
  }
  rejected.set_All();
  for (uint32_t i = best; i < best + size; ++i) rejected.clear(order->data[i]);
  return true;
}

void compact(TLst<uint32_t>& lst, const CBitVector& rejected) {
  uint32_t kept = 0;
  for (uint32_t i = 0; i < lst.count; ++i)
    if (!rejected.test(lst.data[i])) lst.data[kept++] = lst.data[i];
  lst.count = kept;
}

}  // namespace

int32_t reg_Repair(const T3DMSH& msh, TLst<uint32_t>& lst, CBitVector& vertices,
                   CBitVector& triangles, const TAdj& vtx_tri, const TAdj& tri_tri) {
  const int32_t code = check_Input(msh, lst, vertices, triangles, vtx_tri, tri_tri);
  if (code < 0) return code;
  vertices.clear_All();
  triangles.clear_All();
  if (!reject_Flat(msh, lst, triangles)) return -13;
  if (!reject_Edges(msh, vtx_tri, triangles)) return -14;
  CBitVector listed;
  if (!listed.from_Lst(lst, msh.n_tri)) return -15;
  if (!reject_Bows(msh, vtx_tri, listed, vertices, triangles)) return -16;
  vertices.clear_All();
  if (!keep_Largest(msh, lst, tri_tri, triangles)) return -17;
  compact(lst, triangles);
  return 0;
}

}  // namespace undercut
