#include "edges.h"

#include <algorithm>
#include <numeric>

namespace undercut::host {

std::vector<EdgeUse> list_Edges(const Mesh& mesh) {
  std::vector<EdgeUse> uses;
  uses.reserve(3 * mesh.triangles.size());
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI& t = mesh.triangles[i];
    const uint32_t ring[4] = {t.a, t.b, t.c, t.a};
    for (uint32_t k = 0; k < 3; ++k) {
      const uint32_t p = ring[k], q = ring[k + 1];
      const uint32_t at_p = 3 * i + k, at_q = 3 * i + (k + 1) % 3;
      if (p == q) continue;
      uses.push_back(p < q ? EdgeUse{p, q, at_p, at_q} : EdgeUse{q, p, at_q, at_p});
    }
  }
  std::sort(uses.begin(), uses.end(), [](const EdgeUse& a, const EdgeUse& b) {
    return a.low != b.low     ? a.low < b.low
           : a.high != b.high ? a.high < b.high
                              : a.at_low < b.at_low;
  });
  return uses;
}

Groups::Groups(size_t count) : leader_(count) { std::iota(leader_.begin(), leader_.end(), 0u); }

uint32_t Groups::find(uint32_t item) {
  while (leader_[item] != item) item = leader_[item] = leader_[leader_[item]];
  return item;
}

void Groups::join(uint32_t a, uint32_t b) {
  a = find(a);
  b = find(b);
  leader_[std::max(a, b)] = std::min(a, b);
}

Groups join_Marked(const std::vector<EdgeUse>& uses, const std::vector<bool>& marked) {
  Groups groups(marked.size());
  for_Edges(uses, [&](size_t start, size_t end) {
    const EdgeUse* first = nullptr;
    for (size_t i = start; i < end; ++i) {
      if (!marked[uses[i].triangle()]) continue;
      if (first != nullptr) groups.join(first->triangle(), uses[i].triangle());
      first = &uses[i];
    }
  });
  return groups;
}

}  // namespace undercut::host
