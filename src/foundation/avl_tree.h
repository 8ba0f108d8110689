// A height-balanced search tree of key and value pairs (G. M. Adelson-Velsky and E. M. Landis, An
// algorithm for the organization of information, 1962).
//
// The shape of the tree, and with it the order in which regions are walked, hangs on every
// insertion and removal so far: the rotations and the choice of what replaces a removed node are
// fixed here. Recursion is as deep as the tree: at most 1.44 times the binary logarithm of the
// count.
#pragma once

#include <cstdint>

#include "foundation/node_pool.h"

namespace undercut {

// Packed to 4 bytes, so that the value follows the key at once and nodes stay small. Read members
// by value: a reference to one may be misaligned.
#pragma pack(push, 4)
template <typename Key, typename Value>
struct CPair {
  using KeyType = Key;
  Key key;
  Value value;
};
#pragma pack(pop)

template <typename Pair>
class AVLTree {
 public:
  struct Node {
    Pair pair = {};
    int32_t state = 1;  // 0: the left subtree is one higher, 1: both equal, 2: the right one
    Node* left = nullptr;
    Node* right = nullptr;
  };
  using Key = typename Pair::KeyType;

  AVLTree() = default;
  AVLTree(const AVLTree&) = delete;
  AVLTree& operator=(const AVLTree&) = delete;
  virtual ~AVLTree() { Clear(); }

  // To be set while empty: nodes go back to where the present pool says.
  void SetPool(TNodePool<Node>* pool) { pool_ = pool; }

  // False, and no change, if the key is present or no node is to be had. Two keys are the same if
  // neither is less.
  bool Insert(const Pair& pair) {
    bool grew = false;
    return insert_At(root_, pair, grew);
  }
  // Looks up the key of `io` and copies the stored pair there; false if absent.
  bool Find(Pair& io) const;
  // False if absent.
  bool Remove(const Key& key) {
    bool shrank = false;
    return remove_At(root_, key, shrank);
  }
  void Clear() {
    clear_At(root_);
    root_ = nullptr;
    count_ = 0;
  }

  uint32_t count() const { return count_; }
  const Node* root() const { return root_; }

  // Calls visit(const Node&) for each node: the node, its left subtree, its right subtree.
  template <typename Visit>
  void pre_Order(Visit visit) const {
    walk_At(root_, visit);
  }

 private:
  // A side has the number of the state that leans to it.
  static constexpr int32_t kLeft = 0, kEven = 1, kRight = 2;
  static int32_t get_Other(int32_t side) { return kRight - side; }
  static Node*& get_Child(Node* node, int32_t side) {
    return side == kLeft ? node->left : node->right;
  }

  bool insert_At(Node*& at, const Pair& pair, bool& grew);
  bool remove_At(Node*& at, const Key& key, bool& shrank);
  Node* take_Largest(Node*& at, bool& shrank);
  void replace(Node*& at, bool& shrank);
  void give_Back(Node* node);
  void clear_At(Node* at);
  template <typename Visit>
  static void walk_At(const Node* at, Visit& visit);

  static bool grow(Node*& at, int32_t side);
  static bool shrink(Node*& at, int32_t side);
  static bool rotate(Node*& at, int32_t side);

  uint32_t count_ = 0;
  Node* root_ = nullptr;
  TNodePool<Node>* pool_ = nullptr;
};

template <typename Pair>
bool AVLTree<Pair>::Find(Pair& io) const {
  const Key key = io.key;
  for (const Node* at = root_; at;) {
    const Key here = at->pair.key;
    if (key < here) {
      at = at->left;
    } else if (here < key) {
      at = at->right;
    } else {
      io = at->pair;
      return true;
    }
  }
  return false;
}

template <typename Pair>
bool AVLTree<Pair>::insert_At(Node*& at, const Pair& pair, bool& grew) {
  if (!at) {
    Node* node = take_Node(pool_);
    if (!node) return false;
    node->pair = pair;
    at = node;
    ++count_;
    grew = true;
    return true;
  }
  const Key key = pair.key, here = at->pair.key;
  const bool less = key < here;
  if (!less && !(here < key)) return false;
  const int32_t side = less ? kLeft : kRight;
  if (!insert_At(get_Child(at, side), pair, grew)) return false;
  if (grew) grew = grow(at, side);
  return true;
}

template <typename Pair>
bool AVLTree<Pair>::remove_At(Node*& at, const Key& key, bool& shrank) {
  if (!at) return false;
  const Key here = at->pair.key;
  const bool less = key < here;
  if (!less && !(here < key)) {
    Node* gone = at;
    replace(at, shrank);
    give_Back(gone);
    --count_;
    return true;
  }
  const int32_t side = less ? kLeft : kRight;
  if (!remove_At(get_Child(at, side), key, shrank)) return false;
  if (shrank) shrank = shrink(at, side);
  return true;
}

// Puts in the place of a node its only child, or with two children the largest of its left subtree.
template <typename Pair>
void AVLTree<Pair>::replace(Node*& at, bool& shrank) {
  if (!at->left || !at->right) {
    at = at->left ? at->left : at->right;
    shrank = true;
    return;
  }
  Node* heir = take_Largest(at->left, shrank);
  heir->left = at->left;
  heir->right = at->right;
  heir->state = at->state;
  at = heir;
  if (shrank) shrank = shrink(at, kLeft);
}

// Unlinks the largest node of a subtree.
template <typename Pair>
typename AVLTree<Pair>::Node* AVLTree<Pair>::take_Largest(Node*& at, bool& shrank) {
  if (!at->right) {
    Node* node = at;
    at = node->left;
    shrank = true;
    return node;
  }
  Node* node = take_Largest(at->right, shrank);
  if (shrank) shrank = shrink(at, kRight);
  return node;
}

// The subtree on one side grew by one: answers whether this one did.
template <typename Pair>
bool AVLTree<Pair>::grow(Node*& at, int32_t side) {
  if (at->state == get_Other(side)) {
    at->state = kEven;
    return false;
  }
  if (at->state == kEven) {
    at->state = side;
    return true;
  }
  rotate(at, side);
  return false;
}

// The subtree on one side shrank by one: answers whether this one did.
template <typename Pair>
bool AVLTree<Pair>::shrink(Node*& at, int32_t side) {
  if (at->state == side) {
    at->state = kEven;
    return true;
  }
  if (at->state == kEven) {
    at->state = get_Other(side);
    return false;
  }
  return rotate(at, get_Other(side));
}

// Balances a node whose subtree on `side` is two higher. Answers whether the whole is lower than
// before; it is not where the child was even, which only a removal leads to.
template <typename Pair>
bool AVLTree<Pair>::rotate(Node*& at, int32_t side) {
  const int32_t other = get_Other(side);
  Node* node = at;
  Node* child = get_Child(node, side);
  if (child->state != other) {
    const bool even = child->state == kEven;
    get_Child(node, side) = get_Child(child, other);
    get_Child(child, other) = node;
    node->state = even ? side : kEven;
    child->state = even ? other : kEven;
    at = child;
    return !even;
  }
  Node* grand = get_Child(child, other);
  get_Child(child, other) = get_Child(grand, side);
  get_Child(node, side) = get_Child(grand, other);
  get_Child(grand, side) = child;
  get_Child(grand, other) = node;
  node->state = grand->state == side ? other : kEven;
  child->state = grand->state == other ? side : kEven;
  grand->state = kEven;
  at = grand;
  return true;
}

template <typename Pair>
void AVLTree<Pair>::give_Back(Node* node) {
  *node = Node{};
  give_Node(pool_, node);
}

template <typename Pair>
void AVLTree<Pair>::clear_At(Node* at) {
  if (!at) return;
  clear_At(at->left);
  clear_At(at->right);
  give_Back(at);
}

template <typename Pair>
template <typename Visit>
void AVLTree<Pair>::walk_At(const Node* at, Visit& visit) {
  if (!at) return;
  visit(*at);
  walk_At(at->left, visit);
  walk_At(at->right, visit);
}

}  // namespace undercut
