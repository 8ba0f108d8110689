#include "apart.h"

#include <algorithm>
#include <numeric>

namespace undercut::host {
namespace {

struct EdgeUse {
  uint32_t low, high, triangle;
};

// The edges of the mesh, uses of one edge in a row.
std::vector<EdgeUse> list_Edges(const Mesh& mesh) {
  std::vector<EdgeUse> uses;
  uses.reserve(3 * mesh.triangles.size());
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI& t = mesh.triangles[i];
    const uint32_t ring[4] = {t.a, t.b, t.c, t.a};
    for (int k = 0; k < 3; ++k) {
      if (ring[k] == ring[k + 1]) continue;
      uses.push_back({std::min(ring[k], ring[k + 1]), std::max(ring[k], ring[k + 1]), i});
    }
  }
  std::sort(uses.begin(), uses.end(), [](const EdgeUse& a, const EdgeUse& b) {
    return a.low != b.low     ? a.low < b.low
           : a.high != b.high ? a.high < b.high
                              : a.triangle < b.triangle;
  });
  return uses;
}

// Groups by union and find with halving of paths (Tarjan 1975); the lowest triangle leads.
class Groups {
 public:
  explicit Groups(size_t count) : leader_(count) { std::iota(leader_.begin(), leader_.end(), 0u); }

  uint32_t find(uint32_t item) {
    while (leader_[item] != item) item = leader_[item] = leader_[leader_[item]];
    return item;
  }

  void join(uint32_t a, uint32_t b) {
    a = find(a);
    b = find(b);
    leader_[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<uint32_t> leader_;
};

constexpr int32_t kUnknown = -2;
constexpr int32_t kSeveral = -3;

// What is known of the regions around a group, from what two parts of it know.
int32_t merge_Regions(int32_t a, int32_t b) {
  if (a == kUnknown || b == kUnknown) return a == kUnknown ? b : a;
  return a == b ? a : kSeveral;
}

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

}  // namespace

void join_Apart(const Mesh& mesh, const std::vector<uint32_t>& apart,
                std::vector<int32_t>& region_of) {
  if (apart.empty()) return;
  std::vector<bool> is_Apart(mesh.triangles.size(), false);
  for (const uint32_t triangle : apart) is_Apart[triangle] = true;

  const std::vector<EdgeUse> uses = list_Edges(mesh);
  Groups groups(mesh.triangles.size());
  for_Edges(uses, [&](size_t start, size_t end) {
    const EdgeUse* first = nullptr;
    for (size_t i = start; i < end; ++i) {
      if (!is_Apart[uses[i].triangle]) continue;
      if (first != nullptr) groups.join(first->triangle, uses[i].triangle);
      first = &uses[i];
    }
  });
  std::vector<int32_t> around(mesh.triangles.size(), kUnknown);
  for_Edges(uses, [&](size_t start, size_t end) {
    int32_t group = -1;
    int32_t seen = kUnknown;
    for (size_t i = start; i < end; ++i) {
      const uint32_t triangle = uses[i].triangle;
      if (is_Apart[triangle]) {
        group = static_cast<int32_t>(groups.find(triangle));
      } else {
        seen = merge_Regions(seen, region_of[triangle]);
      }
    }
    if (group >= 0) around[group] = merge_Regions(around[group], seen);
  });
  for (const uint32_t triangle : apart) {
    const int32_t region = around[groups.find(triangle)];
    if (region > 0) region_of[triangle] = region;
  }
}

}  // namespace undercut::host
