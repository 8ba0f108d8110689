// What a queue and a stack of indices share: a chain of nodes that is emptied from its head, with
// nodes from a pool or from the heap.
#pragma once

#include <cstdint>

#include "foundation/node_pool.h"

namespace undercut {

struct TLinkNode {
  uint32_t value = 0;
  TLinkNode* next = nullptr;
};

class CLinks {
 public:
  using Node = TLinkNode;

  CLinks() = default;
  CLinks(const CLinks&) = delete;
  CLinks& operator=(const CLinks&) = delete;
  virtual ~CLinks() { release(); }

  // To be set while empty: nodes go back to where the present pool says.
  void SetPool(TNodePool<Node>* pool) { pool_ = pool; }

  // Takes the value at the head; false if empty, or if the pool refuses the node.
  bool pop(uint32_t& value) {
    if (!head_) return false;
    Node* node = head_;
    value = node->value;
    head_ = node->next;
    --count_;
    return give_Node(pool_, node);
  }

  // Empties; stops with false where the pool refuses a node.
  bool release() {
    uint32_t value;
    while (head_)
      if (!pop(value)) return false;
    return true;
  }

  bool is_Empty() const { return !head_; }
  uint32_t count() const { return count_; }

 protected:
  Node* head_ = nullptr;
  uint32_t count_ = 0;
  TNodePool<Node>* pool_ = nullptr;
};

}  // namespace undercut
