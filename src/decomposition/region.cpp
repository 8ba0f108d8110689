#include "decomposition/region.h"

namespace undercut {

bool CUcA::pop_Cnd(uint32_t triangle, double& cost) {
  const auto entry = candidates.find(triangle);
  if (entry == candidates.end()) return false;
  cost = entry->second;
  candidates.erase(entry);
  return true;
}

bool CUcA::pop_Que(double& cost, uint32_t& triangle) {
  if (queue.empty()) return false;
  const TUcWish best = *queue.begin();
  cost = best.cost;
  triangle = static_cast<uint32_t>(best.triangle);
  queue.erase(queue.begin());
  return true;
}

void CUcA::clr_Sets() {
  boundary.clear();
  queue.clear();
  candidates.clear();
}

}  // namespace undercut
