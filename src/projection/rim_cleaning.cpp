// Morphology of a set of triangles over their adjacency.
#include "mesh/flood.h"
#include "projection/rim_area.h"

namespace undercut {

namespace {

bool has_Neighbour(const TAdj& tri_tri, const CBitVector& bits, uint32_t t, bool value) {
  for (uint32_t i = 0; i < tri_tri.counts[t]; ++i)
    if (bits.test(tri_tri.lists[t][i]) == value) return true;
  return false;
}

// The triangles beside those of a value take it too, in place. All is read from the old state.
bool spread_Bits(const TAdj& tri_tri, bool value, CBitVector& bits) {
  const CBitVector old = bits;
  if (!old.is_Valid()) return false;
  const auto count = static_cast<uint32_t>(old.size());
  for (uint32_t t = 0; t < count; ++t) {
    if (old.test(t) == value || !has_Neighbour(tri_tri, old, t, value)) continue;
    if (value)
      bits.set(t);
    else
      bits.clear(t);
  }
  return true;
}

// What the search for clear components needs.
struct THoles {
  Scoped<TArr<uint8_t>> clear;   // of each triangle: clear and not yet found
  Scoped<TArr<uint32_t>> order;  // the triangles of the components that touch the area, in turn
};

// Finds the component of a seed and appends it, if it touches the area. Returns the new end.
uint32_t find_Hole(const TAdj& tri_tri, const CBitVector& bits, uint32_t seed, uint32_t first,
                   THoles& holes) {
  uint32_t* order = holes.order->data;
  const uint32_t end = flood_Patch(tri_tri, seed, holes.clear->data, order, first);
  for (uint32_t i = first; i < end; ++i)
    if (has_Neighbour(tri_tri, bits, order[i], true)) return end;
  return first;
}

}  // namespace

bool dil_Bits(const TAdj& tri_tri, CBitVector& bits) { return spread_Bits(tri_tri, true, bits); }

bool ero_Bits(const TAdj& tri_tri, CBitVector& bits) { return spread_Bits(tri_tri, false, bits); }

bool fix_Notch(const TAdj& tri_tri, uint32_t count, bool /*flag*/, CBitVector& bits) {
  if (!bits.is_Valid()) return false;
  const auto size = static_cast<uint32_t>(bits.size());
  for (uint32_t t = 0; t < size; ++t) {
    if (bits.test(t)) continue;
    uint32_t neighbours = 0;
    for (uint32_t i = 0; i < tri_tri.counts[t]; ++i) neighbours += bits.test(tri_tri.lists[t][i]);
    if (neighbours == count) bits.set(t);
  }
  return true;
}

int32_t fill_Holes(const TAdj& tri_tri, CBitVector& bits) {
  if (!tri_tri.lists) return -1;
  if (!tri_tri.counts) return -2;
  if (!bits.is_Valid()) return -3;
  const auto count = static_cast<uint32_t>(bits.size());
  THoles holes;
  if (!alloc(*holes.clear, count) || !alloc(*holes.order, count)) return -4;
  for (uint32_t t = 0; t < count; ++t) holes.clear->data[t] = !bits.test(t);

  uint32_t end = 0, open_first = 0, open_size = 0;
  for (uint32_t t = 0; t < count; ++t) {
    if (!holes.clear->data[t]) continue;
    const uint32_t first = end;
    end = find_Hole(tri_tri, bits, t, first, holes);
    if (end - first <= open_size) continue;
    open_first = first;
    open_size = end - first;
  }
  for (uint32_t i = 0; i < end; ++i)
    if (i < open_first || i >= open_first + open_size) bits.set(holes.order->data[i]);
  return 0;
}

}  // namespace undercut
