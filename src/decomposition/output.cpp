#include "decomposition/output.h"

#include "mesh/line_hits.h"

namespace undercut {

namespace {

// Room for one entry a region, then one entry for each region that has triangles.
template <typename Entry, typename Fill>
bool wrt_Each(const CMap& map, TLst<Entry>& slot, const std::vector<TUcRef>* regions, Fill fill) {
  release(slot);
  std::vector<TUcRef> own;
  if (!regions) {
    if (!map.get_Ucs(own, false)) return false;
    regions = &own;
  }
  if (regions->empty() || !alloc(slot, static_cast<uint32_t>(regions->size()))) return false;
  for (const TUcRef& ref : *regions) {
    if (!ref.region || ref.id == 0 || ref.region->count == 0) continue;
    if (!fill(*ref.region, slot.data[slot.count])) return false;
    ++slot.count;
  }
  return true;
}

}  // namespace

bool wrt_Tri(const CMap& map, TLst<TLst<uint32_t>>& slot, const std::vector<TUcRef>* regions) {
  return wrt_Each(map, slot, regions, [&](const CUcA& region, TLst<uint32_t>& list) {
    if (!alloc(list, region.count)) return false;
    for (int32_t t = region.head; t != -1; t = map.next_Tri(t)) {
      if (list.count == list.capacity) return false;
      list.data[list.count++] = static_cast<uint32_t>(t);
    }
    return true;
  });
}

bool wrt_Axi(const CMap& map, TLst<T3DRAY>& slot, const std::vector<TUcRef>* regions) {
  return wrt_Each(map, slot, regions, [](const CUcA& region, T3DRAY& ray) {
    ray = {region.measures.centroid, -1.0 * unit(region.measures.axis)};
    return true;
  });
}

bool wrt_Frm(const CMap& map, TLst<T3DFRM>& slot, const std::vector<TUcRef>* regions) {
  return wrt_Each(map, slot, regions, [](const CUcA& region, T3DFRM& frm) {
    frm = region.measures.axis_frame;
    return true;
  });
}

bool hit_Uca(const CMap& map, const C3DTriAABBTree& tree, int32_t id, const T3DRAY& ray,
             TLst<uint32_t>& scratch, T3DVEC& point) {
  if (!is_Usable(map.msh)) return false;
  point = ray.org;
  double away;
  near_Hit(
      tree, ray, scratch, [&](uint32_t t) { return map.region_of[t] == id; }, point, away);
  return true;
}

}  // namespace undercut
