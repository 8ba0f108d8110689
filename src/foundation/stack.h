// A stack of indices: last in, first out.
#pragma once

#include "foundation/links.h"

namespace undercut {

class CStack : public CLinks {
 public:
  // False if no node is to be had; the stack is then unchanged.
  bool push(uint32_t value) {
    Node* node = take_Node(pool_);
    if (!node) return false;
    *node = {value, head_};
    head_ = node;
    ++count_;
    return true;
  }
};

}  // namespace undercut
