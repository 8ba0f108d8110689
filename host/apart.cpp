#include "apart.h"

#include "edges.h"

namespace undercut::host {
namespace {

constexpr int32_t kUnknown = -2;
constexpr int32_t kSeveral = -3;

// What is known of the regions around a group, from what two parts of it know.
int32_t merge_Regions(int32_t a, int32_t b) {
  if (a == kUnknown || b == kUnknown) return a == kUnknown ? b : a;
  return a == b ? a : kSeveral;
}

}  // namespace

void join_Apart(const Mesh& mesh, const std::vector<uint32_t>& apart,
                std::vector<int32_t>& region_of) {
  if (apart.empty()) return;
  std::vector<bool> is_Apart(mesh.triangles.size(), false);
  for (const uint32_t triangle : apart) is_Apart[triangle] = true;

  const std::vector<EdgeUse> uses = list_Edges(mesh);
  Groups groups = join_Marked(uses, is_Apart);
  std::vector<int32_t> around(mesh.triangles.size(), kUnknown);
  for_Edges(uses, [&](size_t start, size_t end) {
    int32_t group = -1;
    int32_t seen = kUnknown;
    for (size_t i = start; i < end; ++i) {
      const uint32_t triangle = uses[i].triangle();
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
