// Planned and executed moves of a triangle between two regions. Both work over the edge slots, so
// an edge of more than two triangles counts with its last neighbour alone.
#include <memory>

#include "decomposition/map.h"

namespace undercut {

bool CMap::touches(int32_t triangle, uint32_t except, int32_t id) const {
  for (const int32_t other : slots[triangle])
    if (other != -1 && other != static_cast<int32_t>(except) && region_of[other] == id) return true;
  return false;
}

bool CMap::classify_Move(uint32_t triangle, int32_t to, TUcMove& move) const {
  move = {};
  const int32_t from = region_of[triangle];
  if (from == to) return true;
  if (from < 0 || to < 0) return false;
  const std::array<int32_t, 3>& slot = slots[triangle];
  move.from = from;
  move.to = to;
  move.triangles = {static_cast<int32_t>(triangle), slot[0], slot[1], slot[2]};

  bool touches_from = false, noted = false;
  for (size_t k = 0; k < 3; ++k) {
    if (slot[k] == -1) continue;
    if (region_of[slot[k]] == from) {
      touches_from = true;
    } else {
      move.from_flags[k + 1] = touches(slot[k], triangle, from) ? 'u' : '-';
      noted = true;
    }
  }
  if (touches_from || !noted) move.from_flags[0] = '+';

  const bool out = is_Out(triangle, to);
  for (size_t k = 0; k < 3; ++k) {
    if (slot[k] == -1) continue;
    if (region_of[slot[k]] == to) {
      if (!out) return false;
      continue;
    }
    move.to_flags[k + 1] = touches(slot[k], triangle, to) ? 'u' : '+';
  }
  if (out) move.to_flags[0] = '-';
  return true;
}

bool CMap::apply_Move(uint32_t triangle, int32_t to, TUcMoved& moved) {
  moved = {};
  const int32_t from = region_of[triangle];
  if (from == to) return true;
  if (from < 0 || to < 0) return false;
  CUcA* source = get_Uca(from);
  if (!source) return false;
  CUcA* target = get_Uca(to);
  if (!target) {
    auto fresh = std::make_unique<CUcA>(to);
    if (!add_Uca(fresh.get())) return false;
    target = fresh.release();
    moved.target = 'a';
  }
  leave_Boundary(triangle, from, *source);
  join_Boundary(triangle, to, *target);
  pass_Tri(triangle, source, target);
  if (source->count != 0) return true;
  if (from != 0) kill_Uca(source);
  moved.source = 'r';
  return true;
}

void CMap::leave_Boundary(uint32_t triangle, int32_t from, CUcA& source) const {
  bool touches_from = false, noted = false;
  for (const int32_t nb : slots[triangle]) {
    if (nb == -1) continue;
    if (region_of[nb] == from) {
      touches_from = true;
    } else {
      noted = true;
      if (!touches(nb, triangle, from)) source.boundary.erase(static_cast<uint32_t>(nb));
    }
  }
  if (touches_from || !noted) source.boundary.insert(triangle);
}

// A neighbour that is in the target already may come in too: nothing tests that, and ranking
// rebuilds the set before it is read.
void CMap::join_Boundary(uint32_t triangle, int32_t to, CUcA& target) const {
  const bool out = is_Out(triangle, to);
  for (const int32_t nb : slots[triangle])
    if (nb != -1 && !touches(nb, triangle, to)) target.boundary.insert(static_cast<uint32_t>(nb));
  if (out) target.boundary.erase(triangle);
}

}  // namespace undercut
