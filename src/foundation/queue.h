// A queue of indices: first in, first out.
#pragma once

#include "foundation/links.h"

namespace undercut {

class CQueue : public CLinks {
 public:
  // False if no node is to be had; the queue is then unchanged.
  bool push(uint32_t value) {
    Node* node = take_Node(pool_);
    if (!node) return false;
    *node = {value, nullptr};
    (head_ ? tail_->next : head_) = node;
    tail_ = node;
    ++count_;
    return true;
  }

 private:
  Node* tail_ = nullptr;  // of an emptied queue, a node that is gone
};

}  // namespace undercut
