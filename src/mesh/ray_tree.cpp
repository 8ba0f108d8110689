// Why no node is passed over that holds a triangle whose box passes hit_Box.
//
// Let M be the largest coordinate of the tree and of org, D the largest component of dir and
// u = 2^-24, and measure along the ray in units of 1 / D. On one axis the ray meets a bound n of a
// box at (n - org) q with q = D / dir. Here n, org and q are rounded to single precision; to make
// up for that org is moved by 16 u M: towards the bound where a box is entered, away from it where
// it is left.
// - Rounding moves n and org by less than 3 u M together, so n - org errs by at least 13 u M to the
//   safe side. It is 2 M at most; rounding q, the difference and the product adds less than
//   7 u M q. So the ray enters a box here earlier than in truth by at least 6 u M q, and leaves it
//   later by as much: far more than the 2^-51 of themselves by which the numbers of hit_Box err.
//   A box that begins behind org is taken to begin at org.
// - Above 2^40, or infinite, q is cut off there. A box beyond org is entered still earlier; one
//   that passes is left no sooner than at 13 u M 2^40, which lies beyond 2 M, where the ray has
//   left it along its longest component. So such an axis does not decide.
// M from 2^-60 to 2^60 and D from 2^-100 to 2^100 keep all this clear of overflow and underflow;
// other rays and trees are not taken.
#include "mesh/ray_tree.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "foundation/primitives.h"
#include "foundation/sort_key.h"
#include "mesh/lanes.h"

namespace undercut {

namespace {

constexpr int kChildren = TRayNode::kChildren;
constexpr int kLanes = 4;
constexpr double kLeastReach = 0x1p-60, kMostReach = 0x1p60;
constexpr double kLeastDir = 0x1p-100, kMostDir = 0x1p100;
constexpr double kMostInverse = 0x1p40;
constexpr double kLift = 0x1p-20;  // 16 u

double max_Abs(const T3DVEC& v) {
  return std::max(std::max(std::fabs(v.x), std::fabs(v.y)), std::fabs(v.z));
}
bool is_Finite(const T3DVEC& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

// ---- Build -------------------------------------------------------------------------------------

// A node of the box tree, or a bare range of items, that is to become a child. first and end count
// in the list of kept items.
struct TPart {
  uint32_t node;  // kNone for a bare range
  uint32_t first, end;
  C3DAABB box;

  uint32_t count() const { return end - first; }
};

struct TTask {
  uint32_t node;
  TPart part;
};

double area(const C3DAABB& box) {
  const T3DVEC e = box.size();
  return e.x * e.y + e.y * e.z + e.z * e.x;
}

class TRayBuilder {
 public:
  TRayBuilder(const TBoxTree<C3DAABB>& tree, const T3DMSH& msh, std::vector<TRayNode>& nodes)
      : tree_(tree), nodes_(nodes) {
    keep_Items(msh);
    nodes_.reserve(kept_.size() / 2 + 1);
  }

  void run() {
    const auto count = static_cast<uint32_t>(kept_.size());
    nodes_.emplace_back();
    std::vector<TTask> pending = {{0, {0, 0, count, tree_.nodes[0].box}}};
    while (!pending.empty()) {
      const TTask task = pending.back();
      pending.pop_back();
      TPart parts[kChildren];
      const int children = divide(task.part, parts);
      for (int k = 0; k < children; ++k) {
        uint32_t child = tree_.items[kept_[parts[k].first]].id;
        if (parts[k].count() > 1) {
          child = static_cast<uint32_t>(nodes_.size());
          nodes_.emplace_back();
          pending.push_back({child, parts[k]});
        } else {
          nodes_[task.node].triangles |= 1u << k;
        }
        set_Child(nodes_[task.node], k, parts[k].box, child);
      }
      for (int k = children; k < kChildren; ++k) set_Child(nodes_[task.node], k, empty_Box(), 0);
    }
  }

 private:
  // Of items in a row with the very same corners one is kept: they answer alike.
  void keep_Items(const T3DMSH& msh) {
    kept_before_.reserve(tree_.items.size() + 1);
    T3DFAC last;
    for (uint32_t i = 0; i < tree_.items.size(); ++i) {
      const T3DFAC f = get_Fac(msh, tree_.items[i].id);
      kept_before_.push_back(static_cast<uint32_t>(kept_.size()));
      if (i > 0 && std::memcmp(&f, &last, sizeof f) == 0) continue;
      kept_.push_back(i);
      last = f;
    }
    kept_before_.push_back(static_cast<uint32_t>(kept_.size()));
  }

  // Divides a part among the children of its node, the largest box first.
  int divide(const TPart& part, TPart* parts) {
    int count = 0;
    if (part.count() <= kChildren) {
      for (uint32_t i = part.first; i < part.end; ++i) parts[count++] = part_OfItems(i, i + 1);
      return count;
    }
    parts[count++] = part;
    while (count < kChildren) {
      int best = -1;
      for (int k = 0; k < count; ++k)
        if (parts[k].count() > kChildren &&
            (best < 0 || area(parts[k].box) > area(parts[best].box)))
          best = k;
      if (best < 0) break;
      const TPart whole = parts[best];
      if (halve(whole, parts[best], parts[count])) ++count;
    }
    return count;
  }

  // As the box tree did, but where that cut off a few items from many, again and again, the tree of
  // rays would be as deep. False if all kept items lie in one half, which is then the left.
  bool halve(const TPart& whole, TPart& left, TPart& right) {
    if (whole.node == kNone || tree_.nodes[whole.node].is_Leaf()) {
      halve_Items(whole, left, right);
      return true;
    }
    const TBoxNode<C3DAABB>& node = tree_.nodes[whole.node];
    left = part_OfNode(node.left);
    right = part_OfNode(node.right);
    if (left.count() == 0) {
      left = right;
      return false;
    }
    if (right.count() == 0) return false;
    if (16 * std::min(left.count(), right.count()) < whole.count()) halve_Items(whole, left, right);
    return true;
  }

  // By the centres along the longest axis.
  void halve_Items(const TPart& whole, TPart& left, TPart& right) {
    const char axis = whole.box.longest();
    const auto key = [&](uint32_t item) {
      const T3DVEC c = tree_.items[item].box.centre();
      return axis == 'x' ? c.x : axis == 'y' ? c.y : c.z;
    };
    sort_Key(kept_.data(), whole.first, whole.end - 1, key);
    const uint32_t middle = whole.first + whole.count() / 2;
    left = part_OfItems(whole.first, middle);
    right = part_OfItems(middle, whole.end);
  }

  TPart part_OfNode(uint32_t index) const {
    const TBoxNode<C3DAABB>& node = tree_.nodes[index];
    return {index, kept_before_[node.first], kept_before_[node.last + 1], node.box};
  }

  TPart part_OfItems(uint32_t first, uint32_t end) const {
    TPart part = {kNone, first, end, {}};
    for (uint32_t i = first; i < end; ++i) part.box.merge(tree_.items[kept_[i]].box);
    return part;
  }

  // Inverted, so that no ray reaches it.
  static C3DAABB empty_Box() {
    C3DAABB box;
    box.min = {0x1p100, 0x1p100, 0x1p100};
    box.max = -box.min;
    return box;
  }

  static void set_Child(TRayNode& node, int k, const C3DAABB& box, uint32_t child) {
    const double low[3] = {box.min.x, box.min.y, box.min.z};
    const double high[3] = {box.max.x, box.max.y, box.max.z};
    for (int axis = 0; axis < 3; ++axis) {
      node.bounds[2 * axis][k] = static_cast<float>(low[axis]);
      node.bounds[2 * axis + 1][k] = static_cast<float>(high[axis]);
    }
    node.child[k] = child;
  }

  const TBoxTree<C3DAABB>& tree_;
  std::vector<TRayNode>& nodes_;
  std::vector<uint32_t> kept_;         // items, one of each run of equal ones
  std::vector<uint32_t> kept_before_;  // how many are kept of the items before each
};

// ---- Query -------------------------------------------------------------------------------------

// What a ray needs for the test of a node. `near` is the row of bounds where the ray enters a slab,
// near ^ 1 the one where it leaves.
struct TSlabs {
  uint32_t near[3];
  float near_org[3], far_org[3], inverse[3];
};

TSlabs make_Slabs(const T3DRAY& ray, double reach) {
  const double lift = std::max(reach, max_Abs(ray.org)) * kLift;
  const double longest = max_Abs(ray.dir);
  const double org[3] = {ray.org.x, ray.org.y, ray.org.z};
  const double dir[3] = {ray.dir.x, ray.dir.y, ray.dir.z};
  TSlabs slabs;
  for (uint32_t axis = 0; axis < 3; ++axis) {
    const bool down = dir[axis] < 0.0;
    const double inverse = std::min(longest / std::fabs(dir[axis]), kMostInverse);
    const auto raised = static_cast<float>(org[axis] + lift);
    const auto lowered = static_cast<float>(org[axis] - lift);
    slabs.near[axis] = 2 * axis + (down ? 1 : 0);
    slabs.near_org[axis] = down ? lowered : raised;
    slabs.far_org[axis] = down ? raised : lowered;
    slabs.inverse[axis] = static_cast<float>(down ? -inverse : inverse);
  }
  return slabs;
}

class TReach {
 public:
  explicit TReach(const TSlabs& slabs) {
    for (int axis = 0; axis < 3; ++axis) {
      row_[axis] = slabs.near[axis];
      near_org_[axis] = fill_Lanes(slabs.near_org[axis]);
      far_org_[axis] = fill_Lanes(slabs.far_org[axis]);
      inverse_[axis] = fill_Lanes(slabs.inverse[axis]);
    }
  }

  // Bit k tells whether the ray may reach child k; near[k] is where.
  uint32_t operator()(const TRayNode& node, float* near) const {
    static_assert(kChildren == 2 * kLanes);
    return test(node, 0, near) | test(node, kLanes, near) << kLanes;
  }

 private:
  uint32_t test(const TRayNode& node, int k, float* near) const {
    const TLanes begin = greater(greater(enter(node, k, 0), enter(node, k, 1)),
                                 greater(enter(node, k, 2), fill_Lanes(0.0f)));
    const TLanes end = lesser(lesser(leave(node, k, 0), leave(node, k, 1)), leave(node, k, 2));
    store_Lanes(near + k, begin);
    return not_Above(begin, end);
  }
  TLanes enter(const TRayNode& node, int k, int axis) const {
    return (load_Lanes(node.bounds[row_[axis]] + k) - near_org_[axis]) * inverse_[axis];
  }
  TLanes leave(const TRayNode& node, int k, int axis) const {
    return (load_Lanes(node.bounds[row_[axis] ^ 1u] + k) - far_org_[axis]) * inverse_[axis];
  }

  uint32_t row_[3];
  TLanes near_org_[3], far_org_[3], inverse_[3];
};

// The triangle first: nearly every box that comes this far would pass.
bool hit_Own(const T3DRAY& ray, const T3DFAC& f) {
  if (!hit_Tri(ray, f)) return false;
  C3DAABB box;
  box.from_Tri(f);
  return hit_Box(ray, box);
}

}  // namespace

void TRayTree::build(const TBoxTree<C3DAABB>& tree, const T3DMSH& msh) {
  clear();
  if (tree.nodes.empty()) return;
  for (const auto& item : tree.items)
    if (item.box.is_Inverted()) return;  // such a box lies in no other
  const C3DAABB& box = tree.nodes[0].box;
  const double reach = std::max(max_Abs(box.min), max_Abs(box.max));
  if (!(reach <= kMostReach)) return;
  reach_ = std::max(reach, kLeastReach);
  TRayBuilder(tree, msh, nodes_).run();
}

void TRayTree::clear() { *this = {}; }

bool TRayTree::takes(const T3DRAY& ray) const {
  if (nodes_.empty() || !is_Finite(ray.org) || !is_Finite(ray.dir)) return false;
  const double longest = max_Abs(ray.dir);
  return max_Abs(ray.org) <= kMostReach && longest >= kLeastDir && longest <= kMostDir;
}

// Nearest child first: most rays that hit anything hit it close to org.
bool TRayTree::any_Hit(const T3DRAY& ray, const T3DMSH& msh) const {
  const TReach reach(make_Slabs(ray, reach_));
  TPending pending;
  pending.push(0);
  while (!pending.empty()) {
    uint32_t next = pending.pop();
    while (next != kNone) {
      const TRayNode& node = nodes_[next];
      alignas(64) float near[kChildren];
      const uint32_t reached = reach(node, near);
      for (uint32_t bits = reached & node.triangles; bits != 0; bits &= bits - 1)
        if (hit_Own(ray, get_Fac(msh, node.child[std::countr_zero(bits)]))) return true;

      next = kNone;
      float nearest = 0;
      for (uint32_t bits = reached & ~node.triangles; bits != 0; bits &= bits - 1) {
        const int k = std::countr_zero(bits);
        uint32_t other = node.child[k];
        if (next == kNone || near[k] < nearest) {
          nearest = near[k];
          std::swap(next, other);
        }
        if (other != kNone) pending.push(other);
      }
    }
  }
  return false;
}

}  // namespace undercut
