#include "cut.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace undercut::host {
namespace {

// One use of an edge by a triangle: its ends in rising order, and the corners 3 t + k that stand at
// them.
struct EdgeUse {
  uint32_t low, high;
  uint32_t at_low, at_high;
};

std::vector<EdgeUse> list_Uses(const Mesh& mesh) {
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

uint32_t find_Leader(std::vector<uint32_t>& leader, uint32_t item) {
  while (leader[item] != item) item = leader[item] = leader[leader[item]];
  return item;
}

void join(std::vector<uint32_t>& leader, uint32_t a, uint32_t b) {
  a = find_Leader(leader, a);
  b = find_Leader(leader, b);
  leader[std::max(a, b)] = std::min(a, b);
}

// Corners of one fan have one leader, the lowest of them.
std::vector<uint32_t> join_Fans(const Mesh& mesh) {
  std::vector<uint32_t> leader(3 * mesh.triangles.size());
  std::iota(leader.begin(), leader.end(), 0u);
  const std::vector<EdgeUse> uses = list_Uses(mesh);
  for (size_t start = 0, end = 0; start < uses.size(); start = end) {
    while (end < uses.size() && uses[end].low == uses[start].low &&
           uses[end].high == uses[start].high)
      ++end;
    if (end - start != 2) continue;
    join(leader, uses[start].at_low, uses[start + 1].at_low);
    join(leader, uses[start].at_high, uses[start + 1].at_high);
  }
  return leader;
}

}  // namespace

uint32_t cut_Singular(Mesh& mesh) {
  std::vector<uint32_t> leader = join_Fans(mesh);
  const auto before = static_cast<uint32_t>(mesh.vertices.size());
  std::vector<bool> taken(before, false);
  std::vector<uint32_t> vertex_of(leader.size());
  for (uint32_t i = 0; i < leader.size(); ++i) {
    T3DTRI& t = mesh.triangles[i / 3];
    uint32_t& corner = i % 3 == 0 ? t.a : i % 3 == 1 ? t.b : t.c;
    if (find_Leader(leader, i) == i) {
      vertex_of[i] = corner;
      if (taken[corner]) {
        vertex_of[i] = static_cast<uint32_t>(mesh.vertices.size());
        mesh.vertices.push_back(T3DVEC(mesh.vertices[corner]));
      } else {
        taken[corner] = true;
      }
    }
    corner = vertex_of[find_Leader(leader, i)];
  }
  return static_cast<uint32_t>(mesh.vertices.size()) - before;
}

}  // namespace undercut::host
