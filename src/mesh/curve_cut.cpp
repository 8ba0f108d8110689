// Triangles on the left of loops of vertices: seeds beside the loops, then a flood that no loop
// lets pass.
#include "mesh/curve_cut.h"

#include "mesh/components.h"
#include "mesh/index_lists.h"

namespace undercut {

namespace {

constexpr int32_t kNoMesh = -1, kNoLoop = -2, kNoLabels = -3, kNoTable = -13;
constexpr int32_t kNoSearch = -11, kBowTie = -15, kEmpty = -19, kAll = -20;

using TLoop = TArr<uint32_t>;
using TLoopSets = TArr<TArr<TLoop>>;

// The path of each curve.
int32_t walk_Sets(const T3DMSH& msh, const TAdj& vtx_tri, const TArrCrv& sets, TLoopSets& out) {
  if (!alloc(out, sets.count)) return kNoTable;
  for (uint32_t k = 0; k < sets.count; ++k)
    if (const int32_t code = crv_Path(msh, vtx_tri, sets.data[k], out.data[k])) return code;
  return 0;
}

// Calls action(loop, k) for each loop of each set k, until one answers with a code.
template <typename Action>
int32_t each_Loop(const TLoopSets& sets, Action action) {
  for (uint32_t k = 0; k < sets.count; ++k)
    for (uint32_t i = 0; i < sets.data[k].count; ++i)
      if (const int32_t code = action(sets.data[k].data[i], k)) return code;
  return 0;
}

// Makes a path a loop without repeated vertices, as far as lst_BigLoop does.
int32_t clean_Loop(TLoop& loop) {
  if (loop.count == 0) return kEmpty;
  const bool clean = lst_DropDup(loop) == 0 && lst_BigLoop(loop) == 0 && lst_DropLast(loop) == 0;
  return clean ? 0 : kNoLoop;
}

// A label for each triangle: 0, or k + 1 on the left of the loops of set k.
class Labels {
 public:
  Labels(const T3DMSH& msh, const TAdj& vtx_tri, const TLoopSets& sets)
      : msh_(msh), vtx_tri_(vtx_tri), sets_(sets) {}

  int32_t init();
  void seed_Edges();
  void seed_Corners();
  bool flood();
  int32_t store(TLst<TLst<uint32_t>>& out);

 private:
  bool comes_First(const T3DTRI& tri, uint32_t steps);
  bool lets_Pass(const T3DTRI& tri, const T3DTRI& next) const;
  // Calls action(t) for the triangles without a label at a vertex.
  template <typename Action>
  void each_Free(uint32_t v, Action action) {
    for (uint32_t i = 0; i < vtx_tri_.counts[v]; ++i)
      if (label_->data[vtx_tri_.lists[v][i]] == 0) action(vtx_tri_.lists[v][i]);
  }

  const T3DMSH& msh_;
  const TAdj& vtx_tri_;
  const TLoopSets& sets_;
  Scoped<TArr<uint32_t>> label_;   // by triangle
  Scoped<TArr<uint32_t>> follow_;  // by vertex on a curve: the next of its loop
  CBitVector on_curve_;            // by vertex
};

int32_t Labels::init() {
  if (!alloc(*label_, msh_.n_tri) || !alloc(*follow_, msh_.n_vtx)) return kNoLabels;
  if (!vtx_Bow(msh_, on_curve_, vtx_tri_)) return kNoSearch;
  const int32_t code = each_Loop(sets_, [&](const TLoop& loop, uint32_t) {
    for (uint32_t i = 0; i < loop.count; ++i) {
      if (on_curve_.test(loop.data[i])) return kBowTie;
      follow_->data[loop.data[i]] = loop.data[i + 1 < loop.count ? i + 1 : 0];
    }
    return 0;
  });
  if (code != 0) return code;
  on_curve_.clear_All();
  return each_Loop(sets_, [&](const TLoop& loop, uint32_t) {
    for (uint32_t i = 0; i < loop.count; ++i) on_curve_.set(loop.data[i]);
    return 0;
  });
}

// The triangles that run along an edge of a loop in its direction.
void Labels::seed_Edges() {
  each_Loop(sets_, [&](const TLoop& loop, uint32_t set) {
    for (uint32_t i = 0; i < loop.count; ++i) {
      const uint32_t p = loop.data[i], q = loop.data[i + 1 < loop.count ? i + 1 : 0];
      each_Free(p, [&](uint32_t t) {
        for (uint32_t k = 0; k < 3; ++k)
          if (corner(msh_.tri[t], k) == p && corner(msh_.tri[t], k + 1) == q)
            label_->data[t] = set + 1;
      });
    }
    return 0;
  });
}

// Whether the second corner comes before the third, along the loop from the first.
bool Labels::comes_First(const T3DTRI& tri, uint32_t steps) {
  uint32_t v = tri.a;
  for (uint32_t i = 0; i < steps; ++i) {
    v = follow_->data[v];
    if (v == tri.b) return true;
    if (v == tri.c) return false;
  }
  return false;
}

// The triangles with all corners on a curve, which no flood reaches.
void Labels::seed_Corners() {
  each_Loop(sets_, [&](const TLoop& loop, uint32_t set) {
    for (uint32_t i = 0; i < loop.count; ++i)
      each_Free(loop.data[i], [&](uint32_t t) {
        const T3DTRI& tri = msh_.tri[t];
        if (on_curve_.test(tri.a) && on_curve_.test(tri.b) && on_curve_.test(tri.c) &&
            comes_First(tri, loop.count))
          label_->data[t] = set + 1;
      });
    return 0;
  });
}

// Whether two neighbours share an edge with an end away from the curves.
bool Labels::lets_Pass(const T3DTRI& tri, const T3DTRI& next) const {
  for (uint32_t k = 0; k < 3; ++k) {
    const uint32_t p = corner(tri, k), q = corner(tri, k + 1);
    if (has_Vtx(next, p) && has_Vtx(next, q) && !(on_curve_.test(p) && on_curve_.test(q)))
      return true;
  }
  return false;
}

bool Labels::flood() {
  Scoped<TAdj> tri_tri;
  Scoped<TArr<uint32_t>> queue;
  if (adj_TriTri(msh_, vtx_tri_, *tri_tri) < 0 || !alloc(*queue, msh_.n_tri)) return false;
  uint32_t end = 0;
  for (uint32_t t = 0; t < msh_.n_tri; ++t)
    if (label_->data[t] != 0) queue->data[end++] = t;
  for (uint32_t front = 0; front < end; ++front) {
    const uint32_t t = queue->data[front];
    for (uint32_t i = 0; i < tri_tri->counts[t]; ++i) {
      const uint32_t u = tri_tri->lists[t][i];
      if (label_->data[u] != 0 || !lets_Pass(msh_.tri[t], msh_.tri[u])) continue;
      label_->data[u] = label_->data[t];
      queue->data[end++] = u;
    }
  }
  return true;
}

int32_t Labels::store(TLst<TLst<uint32_t>>& out) {
  const uint32_t lists = sets_.count + 1;
  Scoped<TArr<uint32_t>> counts;
  Scoped<TLst<TLst<uint32_t>>> sides;
  if (!alloc(*counts, lists) || !alloc(*sides, lists)) return kNoLabels;
  sides->count = lists;
  const uint32_t* label = label_->data;
  for (uint32_t t = 0; t < msh_.n_tri; ++t)
    if (!is_Flat(msh_.tri[t])) ++counts->data[label[t]];
  for (uint32_t k = 0; k < lists; ++k) {
    if (counts->data[k] == 0) return kEmpty;
    if (counts->data[k] == msh_.n_tri) return kAll;
    if (!alloc(sides->data[k], counts->data[k])) return kNoLabels;
  }
  for (uint32_t t = 0; t < msh_.n_tri; ++t) {
    if (is_Flat(msh_.tri[t])) continue;
    TLst<uint32_t>& side = sides->data[label[t]];
    side.data[side.count++] = t;
  }
  out = sides.take();
  return 0;
}

int32_t label_Sides(const T3DMSH& msh, const TAdj& vtx_tri, const TLoopSets& sets,
                    TLst<TLst<uint32_t>>& out) {
  Labels labels(msh, vtx_tri, sets);
  if (const int32_t code = labels.init()) return code;
  labels.seed_Edges();
  labels.seed_Corners();
  if (!labels.flood()) return kNoLabels;
  return labels.store(out);
}

}  // namespace

int32_t crv_Cut(const T3DMSH& msh, const TArrArrVec& curves, TLst<TLst<uint32_t>>& out) {
  TArrArrVec set = curves;
  return crv_CutLst(msh, {&set, 1}, out);
}

int32_t crv_CutLst(const T3DMSH& msh, const TArrCrv& sets, TLst<TLst<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh)) return kNoMesh;
  if (!sets.data || sets.count == 0) return kEmpty;
  Scoped<TAdj> vtx_tri;
  Scoped<TLoopSets> loops;
  if (adj_VtxTri(msh, *vtx_tri) < 0) return kNoTable;
  if (const int32_t code = walk_Sets(msh, *vtx_tri, sets, *loops)) return code;
  const int32_t code = each_Loop(*loops, [](TLoop& loop, uint32_t) { return clean_Loop(loop); });
  if (code != 0) return code;
  return label_Sides(msh, *vtx_tri, *loops, out);
}

}  // namespace undercut
