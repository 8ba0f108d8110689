// The box tree over the triangles of a mesh, and its queries by line, cylinder, slab and ray.
#include <new>

#include "mesh/trees.h"

namespace undercut {

namespace {

void append(TLst<uint32_t>& lst, uint32_t id) { lst.data[lst.count++] = id; }

// False, and an empty tree, without memory.
template <typename Make>
bool make_OrClear(C3DTriAABBTree& tree, Make make) {
  try {
    make();
  } catch (const std::bad_alloc&) {
    tree.Clear();
    return false;
  }
  return true;
}

// Appends all of a node inside the volume, and elsewhere each triangle that reaches into it.
template <typename Judge, typename Test>
void collect(const TBoxTree<C3DAABB>& tree, TLst<uint32_t>& lst, Judge judge, Test test) {
  walk_Tree(tree, judge, [&](const TBoxNode<C3DAABB>& node, Verdict verdict) {
    for (uint32_t i = node.first; i <= node.last; ++i)
      if (verdict == Verdict::kInside || test(tree.items[i])) append(lst, tree.items[i].id);
    return false;
  });
}

}  // namespace

bool C3DTriAABBTree::Prepare(const T3DMSH& msh) {
  Clear();
  if (!is_Usable(msh) || !ok_Vertices(msh)) return false;
  try {
    tree_.items.reserve(msh.n_tri);
  } catch (const std::bad_alloc&) {
    return false;
  }
  msh_ = msh;
  return true;
}

bool C3DTriAABBTree::Build(const T3DMSH& msh) {
  return Prepare(msh) && make_OrClear(*this, [&] { tree(); });
}

bool C3DTriAABBTree::BuildRays(const T3DMSH& msh) {
  return Prepare(msh) && make_OrClear(*this, [&] { BuildRays(); });
}

void C3DTriAABBTree::BuildRays() const {
  rays_made_.ensure([&] { rays_.build(msh_); });
}

const TBoxTree<C3DAABB>& C3DTriAABBTree::tree() const {
  tree_made_.ensure([&] { make_Tree(); });
  return tree_;
}

void C3DTriAABBTree::make_Tree() const {
  tree_.items.clear();
  for (uint32_t t = 0; t < msh_.n_tri; ++t) {
    C3DAABB box;
    box.from_Tri(get_Fac(msh_, t));
    tree_.items.push_back({t, box});
  }
  tree_.build();
}

void C3DTriAABBTree::Clear() {
  tree_.clear();
  tree_made_.forget();
  rays_.clear();
  rays_made_.forget();
  msh_ = {};
  excluded_ = 0;
  excludes_ = false;
}

// Only org's half of the line is held against the boxes, the whole line against the triangle. So a
// triangle round org is reported though its crossing lies behind; callers that care test the sign.
void C3DTriAABBTree::QueryLine(const T3DRAY& ray, TLst<uint32_t>& lst) const {
  const T3DRAY back = {ray.org, -ray.dir};
  collect(
      tree(), lst,
      [&](const C3DAABB& box) { return hit_Box(ray, box) ? Verdict::kReached : Verdict::kMissed; },
      [&](const TBoxItem<C3DAABB>& item) {
        if (!hit_Box(ray, item.box)) return false;
        const T3DFAC f = get_Fac(msh_, item.id);
        return hit_Tri(ray, f) || hit_Tri(back, f);
      });
}

void C3DTriAABBTree::QueryCylinder(const T3DCYL& cylinder, TLst<uint32_t>& lst) const {
  collect(
      tree(), lst,
      [&](const C3DAABB& box) {
        if (!hit_CylBox(cylinder, box)) return Verdict::kMissed;
        return in_Cyl(cylinder, box) ? Verdict::kInside : Verdict::kReached;
      },
      [&](const TBoxItem<C3DAABB>& item) { return hit_CylTri(cylinder, get_Fac(msh_, item.id)); });
}

void C3DTriAABBTree::QuerySlab(const T3DSLB& slab, TLst<uint32_t>& lst) const {
  collect(
      tree(), lst,
      [&](const C3DAABB& box) {
        if (!hit_SlabBox(slab, box)) return Verdict::kMissed;
        return in_Slab(slab, box) ? Verdict::kInside : Verdict::kReached;
      },
      [&](const TBoxItem<C3DAABB>& item) { return hit_SlabTri(slab, get_Fac(msh_, item.id)); });
}

bool C3DTriAABBTree::AnyHit(const T3DRAY& ray) const {
  if (excludes_) return any_Plain(ray);
  BuildRays();
  if (!rays_.takes(ray)) return any_Plain(ray);
  return rays_.any_Hit(ray, msh_);
}

bool C3DTriAABBTree::any_Plain(const T3DRAY& ray) const {
  const TBoxTree<C3DAABB>& box_tree = tree();
  bool hit = false;
  walk_Tree(
      box_tree,
      [&](const C3DAABB& box) { return hit_Box(ray, box) ? Verdict::kReached : Verdict::kMissed; },
      [&](const TBoxNode<C3DAABB>& node, Verdict) {
        for (uint32_t i = node.first; i <= node.last && !hit; ++i) {
          const TBoxItem<C3DAABB>& item = box_tree.items[i];
          if (excludes_ && item.id == excluded_) continue;
          // hit_Box and hit_Tri would take a triangle without numbers for one that lies everywhere,
          // and it would block every ray that comes to its leaf.
          if (item.box.is_Inverted()) continue;
          hit = hit_Box(ray, item.box) && hit_Tri(ray, get_Fac(msh_, item.id));
        }
        return hit;
      });
  return hit;
}

}  // namespace undercut
