// The build of the box trees: midpoint splits with a fallback.
//
// Indices of items are permuted and the items laid out at the end. The key of an item on an axis is
// min + max of its box there: half of it is its centre, by which a range is parted, and the whole
// is what the fallback sorts by.
//
// Departures that change no result, for meshes that fall back time and again, 5 items after 5: a
// range that ascends or descends strictly needs no sort, which is what a fan round one vertex
// leaves behind after its first; where all keys of a range are equal, the sort moves the items in
// one pass by its known permutation; and where all boxes are equal, every further split is such a
// sort, and the chain of nodes is laid down at once. Without these a mesh of 100,000 coincident
// triangles would take 20,000 full sorts.
#include "mesh/box_tree.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <numeric>

#include "foundation/sort_key.h"

namespace undercut {

namespace {

struct TKeyed {
  double key;
  uint32_t item;
};

// What the sort makes of equal keys, from `in` to `out`. Its partition swaps every pair, so it
// turns the upper half over and puts it first, the middle item behind it, then the lower half
// turned over; but the last item of each half stays last. So a part of any depth is a run of
// consecutive items, up or down, with one other item at its end: items from + k step for k < count
// - 1, then `end`.
void move_Equal(const uint32_t* in, uint32_t* out, int64_t from, int64_t step, int64_t count,
                int64_t end) {
  if (count <= sort_detail::kInsertion) {
    for (int64_t k = 0; k < count - 1; ++k) out[k] = in[from + step * k];
    out[count - 1] = in[end];
    return;
  }
  const int64_t mid = count / 2, upper = count - 1 - mid;
  move_Equal(in, out, from + step * (count - 2), -step, upper, end);
  out[upper] = in[from + step * mid];
  move_Equal(in, out + upper + 1, from + step * (mid - 2), -step, mid, from + step * (mid - 1));
}

bool is_Same(double a, double b) { return a == b || (a != a && b != b); }

void add_Keys(const C3DAABB& box, std::vector<double>* keys) {
  keys[0].push_back(box.min.x + box.max.x);
  keys[1].push_back(box.min.y + box.max.y);
  keys[2].push_back(box.min.z + box.max.z);
}
void add_Keys(const C2DAABB& box, std::vector<double>* keys) {
  keys[0].push_back(box.min.x + box.max.x);
  keys[1].push_back(box.min.y + box.max.y);
}

double split_Value(const C3DAABB& box, int axis) {
  const T3DVEC c = box.centre();
  return axis == 0 ? c.x : axis == 1 ? c.y : c.z;
}
double split_Value(const C2DAABB& box, int axis) {
  const T2DVEC c = box.centre();
  return axis == 0 ? c.x : c.y;
}

template <typename Box>
class TBuilder {
 public:
  explicit TBuilder(TBoxTree<Box>& tree) : tree_(tree), items_(tree.items) {
    const size_t count = items_.size();
    order_.resize(count);
    std::iota(order_.begin(), order_.end(), 0u);
    for (auto& keys : keys_) keys.reserve(count);
    for (const auto& item : items_) add_Keys(item.box, keys_);
    tree_.nodes.clear();
    // No leaf of a split range holds fewer than 5 items.
    tree_.nodes.reserve(2 * (count / kLeafSize) + 1);
  }

  void run() {
    const auto count = static_cast<int64_t>(items_.size());
    std::vector<uint32_t> pending = {add_Node(0, count - 1, unite(0, count - 1))};
    while (!pending.empty()) {
      const uint32_t node = pending.back();
      pending.pop_back();
      const int64_t first = tree_.nodes[node].first, last = tree_.nodes[node].last;
      if (last < first + 2 * kLeafSize) continue;
      if (is_Coincident(first, last)) {
        chain(node);
        continue;
      }
      const int64_t split = part(tree_.nodes[node].box, first, last);
      link(node, split, unite(first, split - 1), unite(split, last));
      pending.push_back(tree_.nodes[node].left);
      pending.push_back(tree_.nodes[node].right);
    }
    lay_Out();
  }

 private:
  uint32_t add_Node(int64_t first, int64_t last, const Box& box) {
    TBoxNode<Box> node;
    node.first = static_cast<uint32_t>(first);
    node.last = static_cast<uint32_t>(last);
    node.box = box;
    tree_.nodes.push_back(node);
    return static_cast<uint32_t>(tree_.nodes.size() - 1);
  }

  void link(uint32_t node, int64_t split, const Box& left_box, const Box& right_box) {
    const int64_t first = tree_.nodes[node].first, last = tree_.nodes[node].last;
    const uint32_t left = add_Node(first, split - 1, left_box);
    const uint32_t right = add_Node(split, last, right_box);
    tree_.nodes[node].left = left;
    tree_.nodes[node].right = right;
  }

  Box unite(int64_t first, int64_t last) const {
    Box box;
    for (int64_t i = first; i <= last; ++i) box.merge(items_[order_[i]].box);
    return box;
  }

  // Orders the range for its split and returns the first item of the right side.
  int64_t part(const Box& box, int64_t first, int64_t last) {
    const int axis = box.longest() - 'x';
    const std::vector<double>& keys = keys_[axis];
    const double middle = split_Value(box, axis);
    int64_t i = first, j = last;
    for (;;) {
      while (i <= j && 0.5 * keys[order_[i]] < middle) ++i;
      while (i <= j && !(0.5 * keys[order_[j]] < middle)) --j;
      if (i >= j) break;
      std::swap(order_[i++], order_[j--]);
    }
    if (i >= first + kLeafSize && last + 1 >= i + kLeafSize) return i;
    sort_Range(keys, first, last);
    return first + kLeafSize;
  }

  void sort_Range(const std::vector<double>& keys, int64_t first, int64_t last) {
    uint32_t* order = order_.data();
    // Holds for each pair of neighbours?
    const auto holds = [&](auto relation) {
      int64_t i = first;
      while (i < last && relation(keys[order[i]], keys[order[i + 1]])) ++i;
      return i == last;
    };
    if (holds(std::less<>())) return;
    if (holds(std::greater<>())) {
      std::reverse(order + first, order + last + 1);
      return;
    }
    if (holds(is_Same)) {
      sort_Equal(first, last);
      return;
    }
    sorted_.resize(static_cast<size_t>(last - first + 1));
    for (int64_t i = first; i <= last; ++i) sorted_[i - first] = {keys[order[i]], order[i]};
    sort_Key(sorted_.data(), 0, last - first, [](const TKeyed& r) { return r.key; });
    for (int64_t i = first; i <= last; ++i) order[i] = sorted_[i - first].item;
  }

  void sort_Equal(int64_t first, int64_t last) {
    moved_.assign(order_.begin() + first, order_.begin() + last + 1);
    move_Equal(moved_.data(), order_.data() + first, 0, 1, last - first + 1, last - first);
  }

  bool is_Coincident(int64_t first, int64_t last) const {
    const Box& box = items_[order_[first]].box;
    int64_t i = last;
    while (i > first && std::memcmp(&items_[order_[i]].box, &box, sizeof(Box)) == 0) --i;
    return i == first;
  }

  // Splits a range of one and the same box to the end: no centre lies below the middle, so the
  // fallback cuts off 5 items after 5.
  void chain(uint32_t node) {
    const Box box = tree_.nodes[node].box;
    for (;;) {
      const int64_t first = tree_.nodes[node].first, last = tree_.nodes[node].last;
      if (last < first + 2 * kLeafSize) return;
      sort_Equal(first, last);
      link(node, first + kLeafSize, box, box);
      node = tree_.nodes[node].right;
    }
  }

  void lay_Out() {
    std::vector<TBoxItem<Box>> laid;
    laid.reserve(order_.size());
    for (const uint32_t item : order_) laid.push_back(items_[item]);
    items_.swap(laid);
  }

  TBoxTree<Box>& tree_;
  std::vector<TBoxItem<Box>>& items_;
  std::vector<uint32_t> order_;  // items by their place, permuted by the splits
  std::vector<double> keys_[3];  // by item, for each axis
  std::vector<TKeyed> sorted_;
  std::vector<uint32_t> moved_;
};

}  // namespace

template <typename Box>
void TBoxTree<Box>::build() {
  if (items.empty()) return;
  TBuilder<Box>(*this).run();
}

template <typename Box>
void TBoxTree<Box>::clear() {
  *this = {};
}

template struct TBoxTree<C3DAABB>;
template struct TBoxTree<C2DAABB>;

}  // namespace undercut
