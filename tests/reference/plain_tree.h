// The build of the box trees, step by step as it is told: nodes and items behind pointers, a sort
// that calls itself. Slow, and too deep for large degenerate meshes.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "foundation/box.h"
#include "tests/reference/plain_sort.h"

namespace reference {

using undercut::C2DAABB;
using undercut::C3DAABB;

inline double low(const C3DAABB& box, char axis) {
  return axis == 'x' ? box.min.x : axis == 'y' ? box.min.y : box.min.z;
}
inline double high(const C3DAABB& box, char axis) {
  return axis == 'x' ? box.max.x : axis == 'y' ? box.max.y : box.max.z;
}
inline double low(const C2DAABB& box, char axis) { return axis == 'x' ? box.min.x : box.min.y; }
inline double high(const C2DAABB& box, char axis) { return axis == 'x' ? box.max.x : box.max.y; }

template <typename Box>
double key(const Box& box, char axis) {
  return low(box, axis) + high(box, axis);
}

inline char split_Axis(const C3DAABB& box) {
  const double ex = std::fabs(box.max.x - box.min.x);
  const double ey = std::fabs(box.max.y - box.min.y);
  const double ez = std::fabs(box.max.z - box.min.z);
  char axis = 'x';
  if (ex >= ey && ex >= ez) axis = 'x';
  if (ey >= ex && ey >= ez) axis = 'y';
  if (ez >= ex && ez >= ey) axis = 'z';
  return axis;
}
inline char split_Axis(const C2DAABB& box) {
  return std::fabs(box.max.x - box.min.x) >= std::fabs(box.max.y - box.min.y) ? 'x' : 'y';
}

template <typename Box>
struct PlainItem {
  uint32_t id;
  Box box;
};

template <typename Box>
struct PlainNode {
  std::unique_ptr<PlainNode> left, right;
  Box box;
  int64_t first = 1, last = 0;
};

template <typename Box>
class PlainTree {
 public:
  std::vector<std::unique_ptr<PlainItem<Box>>> items;
  std::unique_ptr<PlainNode<Box>> root;

  explicit PlainTree(const std::vector<Box>& boxes) {
    for (const Box& box : boxes) {
      const auto id = static_cast<uint32_t>(items.size());
      items.push_back(std::make_unique<PlainItem<Box>>(PlainItem<Box>{id, box}));
    }
    root = make_Node(0, static_cast<int64_t>(items.size()) - 1);
    std::vector<PlainNode<Box>*> stack = {root.get()};
    while (!stack.empty()) {
      PlainNode<Box>* node = stack.back();
      stack.pop_back();
      if (node->last < node->first + 10) continue;
      const int64_t i = split(*node);
      node->left = make_Node(node->first, i - 1);
      node->right = make_Node(i, node->last);
      stack.push_back(node->left.get());
      stack.push_back(node->right.get());
    }
  }

  // One link at a time: a tree of coincident boxes is deep.
  ~PlainTree() {
    std::vector<std::unique_ptr<PlainNode<Box>>> stack;
    stack.push_back(std::move(root));
    while (!stack.empty()) {
      std::unique_ptr<PlainNode<Box>> node = std::move(stack.back());
      stack.pop_back();
      if (node->left) stack.push_back(std::move(node->left));
      if (node->right) stack.push_back(std::move(node->right));
    }
  }

 private:
  std::unique_ptr<PlainNode<Box>> make_Node(int64_t first, int64_t last) const {
    auto node = std::make_unique<PlainNode<Box>>();
    node->first = first;
    node->last = last;
    for (int64_t i = first; i <= last; ++i) node->box.merge(items[i]->box);
    return node;
  }

  int64_t split(const PlainNode<Box>& node) {
    const int64_t f = node.first, l = node.last;
    const char axis = split_Axis(node.box);
    const double middle = 0.5 * key(node.box, axis);
    int64_t i = f, j = l;
    for (;;) {
      while (i <= j && 0.5 * key(items[i]->box, axis) < middle) i++;
      while (i <= j && !(0.5 * key(items[j]->box, axis) < middle)) j--;
      if (i >= j) break;
      std::swap(items[i], items[j]);
      i++;
      j--;
    }
    if (i < f + 5 || l + 1 < i + 5) {
      plain_Sort(items.data(), f, l, [&](const auto& item) { return key(item->box, axis); });
      i = f + 5;
    }
    return i;
  }
};

}  // namespace reference
