// The edges of a mesh, each with all its uses, and groups of things that are joined one by one.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// One use of an edge by a triangle: its ends in rising order, and the corners that stand at them,
// corner k of triangle t told as 3 t + k.
struct EdgeUse {
  uint32_t low, high;
  uint32_t at_low, at_high;

  uint32_t triangle() const { return at_low / 3; }
};

// By edge, then by triangle; edges between equal corners are left out.
std::vector<EdgeUse> list_Edges(const Mesh& mesh);

// Calls action(start, end) for the uses of each edge.
template <typename Action>
void for_Edges(const std::vector<EdgeUse>& uses, const Action& action) {
  for (size_t start = 0, end = 0; start < uses.size(); start = end) {
    while (end < uses.size() && uses[end].low == uses[start].low &&
           uses[end].high == uses[start].high) {
      ++end;
    }
    action(start, end);
  }
}

// Groups by union and find with halving of paths (Tarjan 1975); the lowest member leads.
class Groups {
 public:
  explicit Groups(size_t count);

  uint32_t find(uint32_t item);
  void join(uint32_t a, uint32_t b);

 private:
  std::vector<uint32_t> leader_;
};

// Groups of the marked triangles: those that share an edge are together.
Groups join_Marked(const std::vector<EdgeUse>& uses, const std::vector<bool>& marked);

}  // namespace undercut::host
