// The box tree over the vertices of a mesh, and its query by sphere.
#include <new>

#include "mesh/trees.h"

namespace undercut {

bool C3DPntAABBTree::Build(const T3DMSH& msh) {
  Clear();
  if (!is_Usable(msh)) return false;
  try {
    tree_.items.reserve(msh.n_vtx);
    for (uint32_t v = 0; v < msh.n_vtx; ++v) {
      C3DAABB box;
      box.add(msh.vtx[v]);
      tree_.items.push_back({v, box});
    }
    tree_.build();
  } catch (const std::bad_alloc&) {
    Clear();
    return false;
  }
  points_ = msh.vtx;
  count_ = msh.n_vtx;
  return true;
}

void C3DPntAABBTree::Clear() {
  tree_.clear();
  points_ = nullptr;
  count_ = 0;
}

void C3DPntAABBTree::QuerySphere(const T3DSPH& sphere, TLst<uint32_t>& lst) const {
  walk_Tree(
      tree_,
      [&](const C3DAABB& box) {
        if (!hit_SphBox(sphere, box)) return Verdict::kMissed;
        // cls_Sph is wider than the sphere: what it takes whole may reach beyond the radius.
        // Merging of vertices lives with that; but with no radius its four points are one, and it
        // would take every box.
        const bool inside = sphere.radius != 0.0 && in_Sph(sphere, box);
        return inside ? Verdict::kInside : Verdict::kReached;
      },
      [&](const TBoxNode<C3DAABB>& node, Verdict verdict) {
        for (uint32_t i = node.first; i <= node.last; ++i) {
          const uint32_t id = tree_.items[i].id;
          if (verdict == Verdict::kInside || cls_Sphere(sphere, points_[id]) != '0')
            lst.data[lst.count++] = id;
        }
        return false;
      });
}

}  // namespace undercut
