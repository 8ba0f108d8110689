#include "cut.h"

#include <vector>

#include "edges.h"

namespace undercut::host {

uint32_t cut_Singular(Mesh& mesh) {
  // Corners of one fan are one group, led by the lowest of them.
  Groups fans(3 * mesh.triangles.size());
  const std::vector<EdgeUse> uses = list_Edges(mesh);
  for_Edges(uses, [&](size_t start, size_t end) {
    if (end - start != 2) return;
    fans.join(uses[start].at_low, uses[start + 1].at_low);
    fans.join(uses[start].at_high, uses[start + 1].at_high);
  });

  const auto before = static_cast<uint32_t>(mesh.vertices.size());
  const auto corners = static_cast<uint32_t>(3 * mesh.triangles.size());
  std::vector<bool> taken(before, false);
  std::vector<uint32_t> vertex_of(corners);
  for (uint32_t i = 0; i < corners; ++i) {
    T3DTRI& t = mesh.triangles[i / 3];
    uint32_t& corner = i % 3 == 0 ? t.a : i % 3 == 1 ? t.b : t.c;
    if (fans.find(i) == i) {
      vertex_of[i] = corner;
      if (taken[corner]) {
        vertex_of[i] = static_cast<uint32_t>(mesh.vertices.size());
        mesh.vertices.push_back(T3DVEC(mesh.vertices[corner]));
      } else {
        taken[corner] = true;
      }
    }
    corner = vertex_of[fans.find(i)];
  }
  return static_cast<uint32_t>(mesh.vertices.size()) - before;
}

}  // namespace undercut::host
