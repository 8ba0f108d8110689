#include "decomposition/region.h"

namespace undercut {

bool CUcA::pop_Cnd(uint32_t triangle, double& cost) {
  const TUcPrice* entry = candidates.find({triangle, 0});
  if (!entry) return false;
  cost = entry->cost;
  candidates.erase({triangle, 0});
  return true;
}

bool CUcA::pop_Que(double& cost, uint32_t& triangle) {
  if (queue.empty()) return false;
  cost = queue.front().cost;
  triangle = static_cast<uint32_t>(queue.front().triangle);
  queue.pop_Front();
  return true;
}

void CUcA::clr_Sets() {
  boundary.clear();
  queue.clear();
  candidates.clear();
}

}  // namespace undercut
