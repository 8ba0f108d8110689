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

  bool out = false;
  for (size_t k = 0; k < 3; ++k) {
    if (slot[k] == -1) continue;
    if (region_of[slot[k]] == to)
      out = true;
    else
      move.to_flags[k + 1] = touches(slot[k], triangle, to) ? 'u' : '+';
  }
  // What a slot holds is a neighbour; where there are more, the slots don't tell all.
  if (!out) out = is_Out(triangle, to);
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
  pass_Tri(triangle, source, target);
  if (source->count != 0) return true;
  if (from != 0) kill_Uca(source);
  moved.source = 'r';
  return true;
}

}  // namespace undercut
