// A fixed number of nodes allocated at once, for trees, queues and stacks.
#pragma once

#include <cstdint>
#include <memory>
#include <new>

namespace undercut {

// take pops the pointer at free - 1, give stores at free. Since take pops from the top, the nodes
// in use stand behind the free ones, the newest first: `used(i)` walks them without walking any
// tree, as long as none was given back but the newest. A pool outlives what it serves and is
// cleared after it.
template <typename Node>
class TNodePool {
 public:
  // False for fewer than 1 node or no memory.
  bool init(int32_t nodes);
  void clear();
  bool take(Node*& node);       // false if none is free
  bool give(Node* node);        // false if all are free
  Node* used(int32_t i) const;  // null beyond the last

  int32_t capacity() const { return capacity_; }
  int32_t free() const { return free_; }

 private:
  std::unique_ptr<Node[]> block_;
  std::unique_ptr<Node*[]> pointers_;
  int32_t capacity_ = 0;
  int32_t free_ = 0;
};

template <typename Node>
bool TNodePool<Node>::init(int32_t nodes) {
  clear();
  if (nodes < 1) return false;
  block_.reset(new (std::nothrow) Node[static_cast<size_t>(nodes)]);
  pointers_.reset(new (std::nothrow) Node*[static_cast<size_t>(nodes)]);
  if (!block_ || !pointers_) {
    clear();
    return false;
  }
  for (int32_t i = 0; i < nodes; ++i) pointers_[i] = &block_[i];
  capacity_ = free_ = nodes;
  return true;
}

template <typename Node>
void TNodePool<Node>::clear() {
  block_.reset();
  pointers_.reset();
  capacity_ = free_ = 0;
}

template <typename Node>
bool TNodePool<Node>::take(Node*& node) {
  if (free_ == 0) return false;
  node = pointers_[--free_];
  return true;
}

template <typename Node>
bool TNodePool<Node>::give(Node* node) {
  if (free_ == capacity_) return false;
  pointers_[free_++] = node;
  return true;
}

template <typename Node>
Node* TNodePool<Node>::used(int32_t i) const {
  return i < 0 || i >= capacity_ - free_ ? nullptr : pointers_[free_ + i];
}

// A node for a container: from its pool, or from the heap if it has none. Null if none is to be
// had.
template <typename Node>
Node* take_Node(TNodePool<Node>* pool) {
  if (!pool) return new (std::nothrow) Node;
  Node* node = nullptr;
  return pool->take(node) ? node : nullptr;
}

// The reverse; false if the pool refuses the node.
template <typename Node>
bool give_Node(TNodePool<Node>* pool, Node* node) {
  if (pool) return pool->give(node);
  delete node;
  return true;
}

}  // namespace undercut
