// The binary tree of axis-aligned boxes that the trees over triangles, points and segments share.
//
// Built top-down: a range of more than 10 items is split at the middle of its box along its longest
// axis; where that would leave fewer than 5 items on a side, the range is sorted by min + max and
// its 5 lowest items are cut off. The order of items, and with it the order of every answer, is
// fixed by that procedure. Boxes are tight round their items, not halves of the parent's.
//
// Walks go left before right on a stack of their own: a mesh of many identical boxes makes the tree
// as deep as a fifth of its triangles.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/box.h"

namespace undercut {

inline constexpr uint32_t kLeafSize = 5;

template <typename Box>
struct TBoxItem {
  uint32_t id;
  Box box;
};

// Children are indices of nodes, 0 for none: a leaf has none, an inner node both.
template <typename Box>
struct TBoxNode {
  uint32_t left = 0, right = 0;
  uint32_t first = 1, last = 0;  // inclusive range of items
  Box box;

  bool is_Leaf() const { return left == 0; }
};

// Nodes in the order of their making, the root first; items in the order that the splits left.
template <typename Box>
struct TBoxTree {
  std::vector<TBoxNode<Box>> nodes;
  std::vector<TBoxItem<Box>> items;

  // Splits the items, which are given in the order of their ids. Throws std::bad_alloc.
  void build();
  // Empties the tree and gives its memory back.
  void clear();
};

extern template struct TBoxTree<C3DAABB>;
extern template struct TBoxTree<C2DAABB>;

// The nodes that a walk has still to visit: a fixed array, which no ordinary tree fills, and a
// vector for the rest.
class TPending {
 public:
  bool empty() const { return count_ == 0; }
  void push(uint32_t node) {
    if (count_ < kFixed)
      fixed_[count_] = node;
    else
      spill_.push_back(node);
    ++count_;
  }
  uint32_t pop() {
    if (--count_ < kFixed) return fixed_[count_];
    const uint32_t node = spill_.back();
    spill_.pop_back();
    return node;
  }

 private:
  static constexpr uint32_t kFixed = 128;
  uint32_t count_ = 0;
  uint32_t fixed_[kFixed];
  std::vector<uint32_t> spill_;
};

// What a query makes of a node's box.
enum class Verdict { kMissed, kReached, kInside };

// Visits the leaves that a query reaches and the nodes that lie wholly inside it, left before
// right. judge(box) gives the verdict; visit(node, verdict) is true to end the walk.
template <typename Box, typename Judge, typename Visit>
void walk_Tree(const TBoxTree<Box>& tree, Judge judge, Visit visit) {
  if (tree.nodes.empty()) return;
  TPending pending;
  pending.push(0);
  while (!pending.empty()) {
    const TBoxNode<Box>& node = tree.nodes[pending.pop()];
    const Verdict verdict = judge(node.box);
    if (verdict == Verdict::kMissed) continue;
    if (verdict == Verdict::kReached && !node.is_Leaf()) {
      pending.push(node.right);
      pending.push(node.left);
    } else if (visit(node, verdict)) {
      return;
    }
  }
}

}  // namespace undercut
