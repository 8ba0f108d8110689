// Top-down, by the surface-area heuristic: a range is parted where the areas of both sides, each
// times its number of leaves, are least together. The places tried are the borders of bins along
// the longest axis of the centres (I. Wald, On fast Construction of SAH-based Bounding Volume
// Hierarchies, 2007); the other axes would double the time and save a query 4 in a hundred. A node
// gets its eight children by parting the child of the largest area time and again.
//
// A mesh may be made such that each part cuts off next to nothing. So below some depth it is the
// largest range that is parted, in halves of its number, which bounds the depth of the tree. And of
// triangles with the very same corners one is kept, since they answer alike.
//
// The upper part of the tree is made on one thread, the ranges that are left then are independent
// of one another; what is made of each is joined in their order, so the tree hangs on the mesh
// alone.
#include "mesh/ray_builder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "foundation/box.h"
#include "foundation/parallel.h"
#include "mesh/lanes.h"

namespace undercut {

namespace {

constexpr uint32_t kChildren = TRayNode::kChildren;
constexpr uint32_t kLeafTriangles = TRayLeaf::kTriangles;
constexpr uint32_t kBins = 16;
constexpr uint32_t kSteepLevels = 16;  // halved by number below: eleven levels more at most
constexpr uint32_t kFewRanges = 2;     // of so much work that even two pay for threads
constexpr uint32_t kOwnRange = 8192;   // triangles; ranges up to that are made on their own
constexpr float kLeastExtent = 0x1p-100f;
constexpr float kNowhere = 0x1p100f;
constexpr float kLeastSize = 0x1p-30f;  // of a scaled edge that is tested in single precision

// A triangle's box, scaled, with the index of the triangle in the fourth place of low. That of high
// is 1: numbers as small as an index looks like would make sums slow.
struct alignas(16) TRayItem {
  float low[4], high[4];

  uint32_t id() const { return std::bit_cast<uint32_t>(low[3]); }
};

// The fourth places are idle.
struct TLaneBox {
  TLanes low = fill_Lanes(kNowhere), high = fill_Lanes(-kNowhere);

  void merge(TLanes other_low, TLanes other_high) {
    low = lesser(other_low, low);
    high = greater(other_high, high);
  }
  void merge(const TLaneBox& other) { merge(other.low, other.high); }
  void extents(float* out) const { store_Lanes(out, high - low); }
  float area() const {
    alignas(16) float e[4];
    extents(e);
    return e[0] * e[1] + e[1] * e[2] + e[2] * e[0];
  }
};

struct TRange {
  uint32_t first, end;
  TLaneBox box, centres;     // of the items, and of their low + high
  bool is_Distinct = false;  // no two triangles are known to be equal

  uint32_t count() const { return end - first; }
};

struct TRayTask {
  uint32_t node, level;
  TRange range;
};

struct TLeafRange {
  uint32_t first, count;
};

// A part of the tree, in indices of its own.
struct TSubtree {
  std::vector<TRayNode> nodes;
  std::vector<TLeafRange> leaves;
};

struct TBin {
  TLaneBox box;
  uint32_t count = 0;

  void merge(const TBin& other) {
    box.merge(other.box);
    count += other.count;
  }
  // Infinite where there is nothing.
  float cost() const {
    const uint32_t leaves = (count + kLeafTriangles - 1) / kLeafTriangles;
    return count > 0 ? box.area() * static_cast<float>(leaves) : INFINITY;
  }
};

// Maps centres to bins along their longest axis.
struct TBinning {
  int axis;
  float origin, scale;

  explicit TBinning(const TLaneBox& centres) {
    alignas(16) float low[4], extent[4];
    store_Lanes(low, centres.low);
    centres.extents(extent);
    axis = static_cast<int>(std::max_element(extent, extent + 3) - extent);
    origin = low[axis];
    scale = extent[axis] > kLeastExtent ? (kBins * 0.9999f) / extent[axis] : 0.0f;
  }
  bool is_Flat() const { return scale == 0.0f; }
  uint32_t bin(const TRayItem& item) const {
    return static_cast<uint32_t>(static_cast<int32_t>((key(item) - origin) * scale));
  }
  float key(const TRayItem& item) const { return item.low[axis] + item.high[axis]; }
};

class TRayBuilder {
 public:
  TRayBuilder(const T3DMSH& msh, std::vector<TRayItem>& items) : msh_(msh), items_(items) {}

  // Makes the tree over a range, or its upper part: ranges of up to `least` items are left to
  // `rest`.
  void run(TRange range, uint32_t level, uint32_t least, TSubtree& tree,
           std::vector<TRayTask>* rest) {
    tree.nodes.emplace_back();
    std::vector<TRayTask> pending = {{0, level, range}};
    while (!pending.empty()) {
      const TRayTask task = pending.back();
      pending.pop_back();
      TRange parts[kChildren];
      const uint32_t children = divide(task.range, task.level, parts);
      for (uint32_t k = 0; k < children; ++k) {
        uint32_t child;
        if (parts[k].count() <= kLeafTriangles) {
          child = TRayChild::of_Leaf(static_cast<uint32_t>(tree.leaves.size()), parts[k].count());
          tree.leaves.push_back({parts[k].first, parts[k].count()});
        } else {
          child = static_cast<uint32_t>(tree.nodes.size());
          tree.nodes.emplace_back();
          auto& list = rest && parts[k].count() <= least ? *rest : pending;
          list.push_back({child, task.level + 1, parts[k]});
        }
        set_Child(tree.nodes[task.node], k, parts[k].box, child);
      }
      for (uint32_t k = children; k < kChildren; ++k)
        set_Child(tree.nodes[task.node], k, {}, TRayChild::kLeaf);
    }
  }

  TRange measure(uint32_t first, uint32_t end) const {
    TRange range = {first, end, {}, {}, false};
    for (uint32_t i = first; i < end; ++i) add_Item(range, items_[i]);
    return range;
  }

 private:
  static bool is_Steep(uint32_t level) { return level >= kSteepLevels; }

  static void add_Item(TRange& range, const TRayItem& item) {
    const TLanes low = load_Lanes(item.low), high = load_Lanes(item.high);
    range.centres.merge(low + high, low + high);
    range.box.merge(low, high);
  }

  uint32_t divide(const TRange& whole, uint32_t level, TRange* parts) {
    uint32_t count = 1;
    parts[0] = whole;
    while (count < kChildren) {
      uint32_t best = kChildren;
      float most = -1.0f;
      for (uint32_t k = 0; k < count; ++k) {
        if (parts[k].count() <= kLeafTriangles) continue;
        const float worth =
            is_Steep(level) ? static_cast<float>(parts[k].count()) : parts[k].box.area();
        if (worth <= most) continue;
        best = k;
        most = worth;
      }
      if (best == kChildren) break;
      if (split(parts[best], level, parts[count])) ++count;
    }
    return count;
  }

  // Leaves the left part in `range`. False if there is no right part: so many items were equal that
  // the rest fits a leaf.
  bool split(TRange& range, uint32_t level, TRange& right) {
    const TBinning binning(range.centres);
    if (binning.is_Flat() && !range.is_Distinct) {
      range = measure(range.first, drop_Equal(range));
      range.is_Distinct = true;
      if (range.count() <= kLeafTriangles) return false;
    }
    if (binning.is_Flat() || is_Steep(level) || !part(range, binning, right))
      halve(range, binning, right);
    return true;
  }

  // The bins below it go to the left.
  uint32_t find_Place(const TRange& range, const TBinning& binning) const {
    TBin bins[kBins];
    for (uint32_t i = range.first; i < range.end; ++i) {
      TBin& bin = bins[binning.bin(items_[i])];
      bin.box.merge(load_Lanes(items_[i].low), load_Lanes(items_[i].high));
      ++bin.count;
    }
    float right_cost[kBins];
    TBin side;
    for (uint32_t b = kBins - 1; b > 0; --b) {
      side.merge(bins[b]);
      right_cost[b] = side.cost();
    }
    side = {};
    uint32_t best = 0;
    float least = INFINITY;
    for (uint32_t b = 1; b < kBins; ++b) {
      side.merge(bins[b - 1]);
      const float cost = side.cost() + right_cost[b];
      if (cost >= least) continue;
      best = b;
      least = cost;
    }
    return best;
  }

  // False, with the range as it was but for its order, if no place parts it.
  bool part(TRange& range, const TBinning& binning, TRange& right) {
    const uint32_t place = find_Place(range, binning);
    TRange left = {range.first, range.first, {}, {}, false};
    right = {range.end, range.end, {}, {}, false};
    while (left.end < right.first) {
      TRayItem& item = items_[left.end];
      if (binning.bin(item) < place) {
        add_Item(left, item);
        ++left.end;
      } else {
        add_Item(right, item);
        --right.first;
        std::swap(item, items_[right.first]);
      }
    }
    if (left.count() == 0 || right.count() == 0) return false;
    range = left;
    return true;
  }

  // By the centres.
  void halve(TRange& range, const TBinning& binning, TRange& right) {
    const auto begin = items_.begin();
    const uint32_t middle = range.first + range.count() / 2;
    const auto is_Before = [&](const TRayItem& a, const TRayItem& b) {
      const float key_a = binning.key(a), key_b = binning.key(b);
      return key_a < key_b || (key_a == key_b && a.id() < b.id());
    };
    std::nth_element(begin + range.first, begin + middle, begin + range.end, is_Before);
    const bool is_Distinct = range.is_Distinct;
    right = measure(middle, range.end);
    range = measure(range.first, middle);
    range.is_Distinct = right.is_Distinct = is_Distinct;
  }

  // Moves one of each kind of triangle to the front, and returns where they end.
  uint32_t drop_Equal(const TRange& range) {
    const auto compare = [&](const TRayItem& a, const TRayItem& b) {
      const T3DFAC f = get_Fac(msh_, a.id()), g = get_Fac(msh_, b.id());
      return std::memcmp(&f, &g, sizeof f);
    };
    const auto begin = items_.begin() + range.first, end = items_.begin() + range.end;
    std::sort(begin, end, [&](const TRayItem& a, const TRayItem& b) {
      const int order = compare(a, b);
      return order < 0 || (order == 0 && a.id() < b.id());
    });
    const auto kept = std::unique(
        begin, end, [&](const TRayItem& a, const TRayItem& b) { return compare(a, b) == 0; });
    return static_cast<uint32_t>(kept - items_.begin());
  }

  // Inverted without items, so that no ray reaches it.
  static void set_Child(TRayNode& node, uint32_t k, const TLaneBox& box, uint32_t child) {
    alignas(16) float low[4], high[4];
    store_Lanes(low, box.low);
    store_Lanes(high, box.high);
    for (int axis = 0; axis < 3; ++axis) {
      node.bounds[2 * axis][k] = low[axis];
      node.bounds[2 * axis + 1][k] = high[axis];
    }
    node.child[k] = child;
  }

  const T3DMSH& msh_;
  std::vector<TRayItem>& items_;
};

// ---- Leaves ------------------------------------------------------------------------------------

// In single precision from the start: gcc 12 takes a number that is rounded to it and widened again
// for the number itself, where it computes two at once.
void set_Middle(const TRayItem* items, uint32_t count, TRayLeaf& leaf) {
  for (int axis = 0; axis < 3; ++axis) {
    float low = items[0].low[axis], high = items[0].high[axis];
    for (uint32_t k = 1; k < count; ++k) {
      low = std::min(low, items[k].low[axis]);
      high = std::max(high, items[k].high[axis]);
    }
    leaf.middle[axis] = 0.5f * (low + high);
  }
}

void put_Vec(float (*rows)[kLeafTriangles], uint32_t k, const T3DVEC& v, float& largest) {
  const double parts[3] = {v.x, v.y, v.z};
  for (int axis = 0; axis < 3; ++axis) {
    rows[axis][k] = static_cast<float>(parts[axis]);
    largest = std::max(largest, std::fabs(rows[axis][k]));
  }
}

void fill_Leaf(const T3DMSH& msh, const TRayItem* items, uint32_t count, double scale,
               TRayLeaf& leaf) {
  set_Middle(items, count, leaf);
  const T3DVEC middle = {leaf.middle[0], leaf.middle[1], leaf.middle[2]};
  for (uint32_t k = 0; k < kLeafTriangles; ++k) {
    const uint32_t id = items[k < count ? k : 0].id();
    const T3DFAC f = get_Fac(msh, id);
    leaf.triangle[k] = id;
    put_Vec(leaf.corner, k, scale * f.a - middle, leaf.radius);
    for (const T3DVEC& corner : {f.b, f.c})
      leaf.radius = std::max(leaf.radius, static_cast<float>(max_Abs(scale * corner - middle)));
    put_Vec(leaf.first, k, scale * (f.b - f.a), leaf.size);
    put_Vec(leaf.second, k, scale * (f.c - f.a), leaf.size);
  }
  if (leaf.size < kLeastSize) leaf.size = INFINITY;
}

void take_Items(const T3DMSH& msh, double scale, std::vector<TRayItem>& items) {
  items.resize(msh.n_tri);
  each_Index(msh.n_tri, [&](uint32_t t) {
    C3DAABB box;
    box.from_Tri(get_Fac(msh, t));
    const T3DVEC low = scale * box.min, high = scale * box.max;
    items[t] = {
        {static_cast<float>(low.x), static_cast<float>(low.y), static_cast<float>(low.z),
         std::bit_cast<float>(t)},
        {static_cast<float>(high.x), static_cast<float>(high.y), static_cast<float>(high.z), 1.0f}};
  });
}

// Puts a subtree in place of a node of the tree. Its root takes that place, its other nodes follow.
void join(TSubtree& tree, uint32_t place, const TSubtree& own) {
  const auto nodes = static_cast<uint32_t>(tree.nodes.size()) - 1;
  const auto leaves = static_cast<uint32_t>(tree.leaves.size());
  const auto move_Child = [&](uint32_t child) {
    return TRayChild::is_Leaf(child) ? child + (leaves << 3) : child + nodes;
  };
  tree.nodes.insert(tree.nodes.end(), own.nodes.begin() + 1, own.nodes.end());
  tree.leaves.insert(tree.leaves.end(), own.leaves.begin(), own.leaves.end());
  TRayNode& root = tree.nodes[place];
  root = own.nodes[0];
  for (uint32_t& child : root.child) child = move_Child(child);
  for (size_t n = nodes + 1; n < tree.nodes.size(); ++n)
    for (uint32_t& child : tree.nodes[n].child) child = move_Child(child);
}

}  // namespace

void build_Rays(const T3DMSH& msh, double scale, TRayParts& parts) {
  std::vector<TRayItem> items;
  take_Items(msh, scale, items);
  TRayBuilder builder(msh, items);
  TSubtree tree;
  std::vector<TRayTask> rest;
  builder.run(builder.measure(0, msh.n_tri), 0, kOwnRange, tree, &rest);
  std::vector<TSubtree> own(rest.size());
  each_Index(
      static_cast<uint32_t>(rest.size()),
      [&](uint32_t i) { builder.run(rest[i].range, rest[i].level, 0, own[i], nullptr); },
      kFewRanges);
  for (size_t i = 0; i < own.size(); ++i) {
    join(tree, rest[i].node, own[i]);
    own[i] = {};
  }
  parts.nodes.swap(tree.nodes);
  parts.leaves.resize(tree.leaves.size());
  each_Index(static_cast<uint32_t>(tree.leaves.size()), [&](uint32_t i) {
    fill_Leaf(msh, &items[tree.leaves[i].first], tree.leaves[i].count, scale, parts.leaves[i]);
  });
}

}  // namespace undercut
