// The box tree over the segments of a plane polyline, and its query by circle.
#include <new>

#include "mesh/trees.h"

namespace undercut {

bool C2DSgmAABBTree::Build(const T2DPOL& pol) {
  Clear();
  if (!pol.pnt || !pol.sgm || pol.n_pnt == 0 || pol.n_sgm == 0) return false;
  try {
    tree_.items.reserve(pol.n_sgm);
    for (uint32_t s = 0; s < pol.n_sgm; ++s) {
      const T3DSGM sgm = pol.sgm[s];
      if (sgm.a >= pol.n_pnt || sgm.b >= pol.n_pnt) {
        Clear();
        return false;
      }
      C2DAABB box;
      box.add(pol.pnt[sgm.a]);
      box.add(pol.pnt[sgm.b]);
      tree_.items.push_back({s, box});
    }
    tree_.build();
  } catch (const std::bad_alloc&) {
    Clear();
    return false;
  }
  pol_ = pol;
  return true;
}

void C2DSgmAABBTree::Clear() {
  tree_.clear();
  pol_ = {};
}

void C2DSgmAABBTree::QueryCircle(const C2DCIRC& circle, TLst<uint32_t>& lst) const {
  walk_Tree(
      tree_,
      [&](const C2DAABB& box) {
        if (!hit_CircBox(circle, box)) return Verdict::kMissed;
        return in_Circ(circle, box) ? Verdict::kInside : Verdict::kReached;
      },
      // Segments of a box inside are tested all the same, unlike in space.
      [&](const TBoxNode<C2DAABB>& node, Verdict) {
        for (uint32_t i = node.first; i <= node.last; ++i) {
          const TBoxItem<C2DAABB>& item = tree_.items[i];
          if (!hit_CircBox(circle, item.box)) continue;
          const T3DSGM sgm = pol_.sgm[item.id];
          const double d = dst_Seg2(circle.centre, pol_.pnt[sgm.a], pol_.pnt[sgm.b]);
          if (d <= circle.radius) lst.data[lst.count++] = item.id;
        }
        return false;
      });
}

double C2DSgmAABBTree::Nearest(const C2DCIRC& circle, TLst<uint32_t>& scratch) const {
  scratch.count = 0;
  QueryCircle(circle, scratch);
  double nearest = kAbsent;
  for (uint32_t i = 0; i < scratch.count; ++i) {
    const T3DSGM sgm = pol_.sgm[scratch.data[i]];
    const double d = dst_Seg2(circle.centre, pol_.pnt[sgm.a], pol_.pnt[sgm.b]);
    if (d < nearest) nearest = d;
  }
  return nearest;
}

}  // namespace undercut
