// What the tree of rays is made of: nodes of eight boxes and leaves of eight triangles, axis by
// axis, so that eight are tested at once. Coordinates are scaled by a power of two such that the
// largest is about 1.
#pragma once

#include <cstdint>

namespace undercut {

// A child is told by a number: a node by its index, a leaf by its index, how many triangles it
// holds, and a mark.
struct TRayChild {
  static constexpr uint32_t kLeaf = 0x80000000u;
  static constexpr uint32_t kMostLeaves = (1u << 28) - 1;
  static uint32_t of_Leaf(uint32_t leaf, uint32_t count) { return kLeaf | leaf << 3 | (count - 1); }
  static bool is_Leaf(uint32_t child) { return child & kLeaf; }
  static uint32_t leaf(uint32_t child) { return (child & ~kLeaf) >> 3; }
  // A bit for each of its triangles.
  static uint32_t mask(uint32_t child) { return (2u << (child & 7u)) - 1; }
};

struct alignas(64) TRayNode {
  static constexpr uint32_t kChildren = 8;
  float bounds[6][kChildren];  // low x, high x, low y, ... of all children
  uint32_t child[kChildren];
};

// Each triangle is told by a corner, measured from `middle`, and its two edges from there.
struct alignas(32) TRayLeaf {
  static constexpr uint32_t kTriangles = 8;
  float corner[3][kTriangles], first[3][kTriangles], second[3][kTriangles];
  uint32_t triangle[kTriangles];
  float middle[3];
  float radius;  // the largest coordinate of the corners, all three
  float size;    // of first and second; infinite where all are to be tested exactly
  float unused[3];
};

}  // namespace undercut
