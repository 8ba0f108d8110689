// Merging of vertices: by distance over the point tree, greedy in vertex order, and by equal
// coordinates over a search tree whose nodes come from one allocation.
#include "mesh/weld.h"

#include <algorithm>

#include "foundation/avl_tree.h"
#include "mesh/trees.h"

namespace undercut {

namespace {

// Numbers points by their coordinates, in the order of their first use.
class PointIndex {
 public:
  bool init(uint64_t points) {
    if (points > INT32_MAX || !pool_.init(static_cast<int32_t>(points))) return false;
    tree_.SetPool(&pool_);
    return true;
  }

  // The number of a point, new or known; false if there is no room.
  bool find_Or_Add(const T3DVEC& point, uint32_t& index) {
    Pair pair = {{point.x, point.y, point.z}, static_cast<int32_t>(tree_.count())};
    if (!tree_.Find(pair) && !tree_.Insert(pair)) return false;
    index = static_cast<uint32_t>(pair.value);
    return true;
  }

  uint32_t count() const { return tree_.count(); }

  // Each point at its number: what is in use of the pool needs no walk over the tree.
  void store(T3DVEC* points) const {
    for (int32_t i = 0; const Tree::Node* node = pool_.used(i); ++i) {
      const Pair& pair = node->pair;
      points[pair.value] = {pair.key.x, pair.key.y, pair.key.z};
    }
  }

 private:
  using Pair = CPair<T3DVECF, int32_t>;
  using Tree = AVLTree<Pair>;
  TNodePool<Tree::Node> pool_;  // before the tree, which gives its nodes back
  Tree tree_;
};

bool fill_None(TArr<uint32_t>& arr, uint32_t count) {
  if (!alloc(arr, count)) return false;
  std::fill_n(arr.data, count, kNone);
  return true;
}

// Gives each vertex its merged index: a centre takes all that the sphere around it finds and no
// earlier centre took.
bool map_Vertices(const T3DMSH& msh, double tolerance, uint32_t* map, uint32_t& merged) {
  C3DPntAABBTree tree;
  Scoped<TLst<uint32_t>> found;
  if (!tree.Build(msh) || !alloc(*found, msh.n_vtx)) return false;
  merged = 0;
  for (uint32_t v = 0; v < msh.n_vtx; ++v) {
    if (map[v] != kNone) continue;
    found->count = 0;
    tree.QuerySphere({msh.vtx[v], tolerance}, *found);
    for (uint32_t i = 0; i < found->count; ++i)
      if (map[found->data[i]] == kNone) map[found->data[i]] = merged;
    if (map[v] == kNone) return false;
    ++merged;
  }
  return true;
}

// Chains the members of each cluster, the last vertex first.
void chain_Clusters(TWeld& weld) {
  std::fill_n(weld.clusters, weld.merged.n_vtx, TCluster{kNone, 0, kNone});
  for (uint32_t v = 0; v < weld.source.n_vtx; ++v) {
    TCluster& cluster = weld.clusters[weld.map[v]];
    if (cluster.count == 0) cluster.id = weld.map[v];
    weld.next[v] = cluster.head;
    cluster.head = v;
    ++cluster.count;
  }
}

// The mean of the members, summed along the chain: the bits of the sum hang on this order.
T3DVEC mean_Cluster(const TWeld& weld, const TCluster& cluster) {
  T3DVEC sum = {0.0, 0.0, 0.0};
  for (uint32_t v = cluster.head; v != kNone; v = weld.next[v]) sum += weld.source.vtx[v];
  return sum / cluster.count;
}

bool merge_Mesh(const T3DMSH& msh, double tolerance, TWeld& weld) {
  Scoped<TArr<uint32_t>> map, next;
  uint32_t merged = 0;
  if (!fill_None(*map, msh.n_vtx) || !map_Vertices(msh, tolerance, map->data, merged) ||
      !fill_None(*next, msh.n_vtx))
    return false;
  weld.source = msh;
  weld.map = map.take().data;
  weld.next = next.take().data;
  weld.clusters = new_Array<TCluster>(merged);
  if (!weld.clusters || !alloc_Msh(weld.merged, merged, msh.n_tri)) return false;
  chain_Clusters(weld);
  for (uint32_t i = 0; i < merged; ++i) weld.merged.vtx[i] = mean_Cluster(weld, weld.clusters[i]);
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DTRI& tri = msh.tri[t];
    weld.merged.tri[t] = {weld.map[tri.a], weld.map[tri.b], weld.map[tri.c]};
  }
  return true;
}

bool check_List(const T3DMSH& msh, const TLst<uint32_t>& lst) {
  if (!is_Usable(msh) || !lst.data || lst.count == 0) return false;
  return std::all_of(lst.data, lst.data + lst.count, [&](uint32_t t) { return t < msh.n_tri; });
}

}  // namespace

void release(TWeld& weld) {
  release(weld.merged);
  free_Array(weld.map);
  free_Array(weld.clusters);
  free_Array(weld.next);
  weld = {};
}

bool wld_Tol(const T3DMSH& msh, TWeld& out, double tolerance) {
  out = {};
  if (!is_Usable(msh)) return false;
  Scoped<TWeld> weld;
  if (!merge_Mesh(msh, tolerance, *weld)) return false;
  out = weld.take();
  return true;
}

bool wld_Pol(T3DPOL& pol) {
  if (!pol.pnt || !pol.sgm || pol.n_pnt == 0 || pol.n_sgm == 0) return false;
  PointIndex points;
  Scoped<TArr<uint32_t>> map;  // old point to merged point
  if (!points.init(pol.n_pnt) || !fill_None(*map, pol.n_pnt)) return false;
  for (uint32_t s = 0; s < pol.n_sgm; ++s)
    for (const uint32_t p : {pol.sgm[s].a, pol.sgm[s].b})
      if (map->data[p] == kNone && !points.find_Or_Add(pol.pnt[p], map->data[p])) return false;
  T3DVEC* merged = new_Array<T3DVEC>(points.count());
  if (!merged) return false;
  points.store(merged);
  for (uint32_t s = 0; s < pol.n_sgm; ++s)
    pol.sgm[s] = {map->data[pol.sgm[s].a], map->data[pol.sgm[s].b]};
  free_Array(pol.pnt);
  pol.pnt = merged;
  pol.n_pnt = points.count();
  return true;
}

bool wld_Sub(const T3DMSH& msh, const TLst<uint32_t>& lst, T3DMSH& out) {
  out = {};
  if (!check_List(msh, lst)) return false;
  PointIndex points;
  Scoped<T3DMSH> sub;
  sub->tri = new_Zeroed<T3DTRI>(lst.count);
  if (!sub->tri || !points.init(std::min(uint64_t{3} * lst.count, uint64_t{msh.n_vtx})))
    return false;
  sub->n_tri = lst.count;
  for (uint32_t i = 0; i < lst.count; ++i) {
    const T3DTRI& tri = msh.tri[lst.data[i]];
    if (is_Flat(tri)) continue;
    T3DTRI& to = sub->tri[i];
    if (!points.find_Or_Add(msh.vtx[tri.a], to.a) || !points.find_Or_Add(msh.vtx[tri.b], to.b) ||
        !points.find_Or_Add(msh.vtx[tri.c], to.c))
      return false;
  }
  if (points.count() == 0) return false;
  sub->vtx = new_Array<T3DVEC>(points.count());
  if (!sub->vtx) return false;
  sub->n_vtx = points.count();
  points.store(sub->vtx);
  out = sub.take();
  return true;
}

bool wld_SubLst(const T3DMSH& msh, const TLst<TArr<uint32_t>>& lists, TArr<T3DMSH>& out) {
  reset(out);
  if (!lists.data || lists.count == 0) return false;
  Scoped<TArr<T3DMSH>> subs;
  if (!alloc(*subs, lists.count)) return false;
  for (uint32_t i = 0; i < lists.count; ++i) {
    const TArr<uint32_t>& ids = lists.data[i];
    if (!wld_Sub(msh, {ids.data, ids.count, ids.count}, subs->data[i])) return false;
  }
  out = subs.take();
  return true;
}

}  // namespace undercut
