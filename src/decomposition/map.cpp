// Setup, regions and triangle lists of the map; moves are in map_moves.cpp.
#include "decomposition/map.h"

#include <algorithm>
#include <new>

namespace undercut {

bool CMap::ini_Msh(const T3DMSH& mesh) {
  free_Map();
  if (!is_Usable(mesh)) return false;
  msh = mesh;
  if (build()) return true;
  msh = {};  // what was built goes with free_Map
  return false;
}

bool CMap::build() try {
  if (adj_VtxTri(msh, vtx_tri) != 0 || adj_TriTri(msh, vtx_tri, neighbours) != 0) return false;
  fill_Slots();
  if (!locked.init(msh.n_tri)) return false;
  mark.init(msh.n_tri);
  if (!alloc(scratch_a, msh.n_tri) || !alloc(scratch_b, msh.n_tri)) return false;
  region_of.assign(msh.n_tri, -1);
  prev.assign(msh.n_tri, -1);
  next.assign(msh.n_tri, -1);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

// On an edge of more than two triangles the slot keeps the last neighbour.
void CMap::fill_Slots() {
  slots.assign(msh.n_tri, {-1, -1, -1});
  for (uint32_t i = 0; i < msh.n_tri; ++i) {
    const uint32_t* list;
    const uint32_t n = nbr_Tri(i, list);
    for (uint32_t j = 0; j < n; ++j) {
      if (list[j] == i) continue;
      for (uint32_t k = 0; k < 3; ++k)
        if (has_Vtx(msh.tri[list[j]], corner(msh.tri[i], k)) &&
            has_Vtx(msh.tri[list[j]], corner(msh.tri[i], k + 1)))
          slots[i][k] = static_cast<int32_t>(list[j]);
    }
  }
}

bool CMap::set_Win(const TUcBand* windows, uint32_t count) {
  if (!windows || count == 0) return false;
  bands.assign(windows, windows + count);
  return true;
}

bool CMap::ini_Roi(const TArr<uint32_t>& roi) {
  reset_Map();
  auto fresh = std::make_unique<CUcA>(0);
  CUcA* free_region = fresh.get();
  if (!add_Uca(free_region)) return false;
  fresh.release();
  double area = 0;
  T3DVEC centroid = {0, 0, 0};
  for (uint32_t i = 0; i < roi.count; ++i) {
    const uint32_t t = roi.data[i];
    if (t >= msh.n_tri) return false;
    if (!add_Tri(t, free_region)) return false;
    region_of[t] = 0;
    const T3DFAC f = get_Fac(msh, t);
    if (is_Flat(f)) continue;
    area += area_Tri(f);
    const double weight = i;  // of the list index: triangles passed over count in it
    centroid = (weight / (weight + 1)) * centroid + (1 / (weight + 1)) * cen_Tri(f);
  }
  fill_Frontier(*free_region);
  free_region->measures = {};
  free_region->measures.area = area;
  roi_area = area;
  roi_centroid = centroid;
  return true;
}

void CMap::fill_Frontier(CUcA& region) const {
  for (int32_t t = region.head; t != -1; t = next_Tri(t)) {
    const auto triangle = static_cast<uint32_t>(t);
    if (!is_Bnd(triangle, region.id)) continue;
    const uint32_t* list;
    const uint32_t n = nbr_Tri(triangle, list);
    for (uint32_t j = 0; j < n; ++j)
      if (region_of[list[j]] != region.id) region.boundary.insert(list[j]);
  }
}

void CMap::reset_Map() {
  if (!msh.tri) return;
  std::fill(region_of.begin(), region_of.end(), -1);
  std::fill(prev.begin(), prev.end(), -1);
  std::fill(next.begin(), next.end(), -1);
  drop_Regions();
  locked.clear_All();
  mark.clear_All();
  scratch_a.count = scratch_b.count = 0;
  ranks.clear();
  turns.clear();
  roi_area = 0;
}

void CMap::drop_Regions() {
  regions_.pre_Order([](const Tree::Node& node) { delete node.pair.value; });
  regions_.Clear();
}

void CMap::free_Map() {
  reset_Map();
  drop_Regions();  // those that were added before there was a mesh
  msh = {};
  adj_Free(vtx_tri);
  adj_Free(neighbours);
  slots.clear();
  release(scratch_a);
  release(scratch_b);
  prev.clear();
  next.clear();
  region_of.clear();
  locked.release();
  mark.release();
}

// ---- Regions -----------------------------------------------------------------------------------

bool CMap::add_Uca(CUcA* region) { return region && regions_.Insert({region->id, region}); }

bool CMap::del_Uca(CUcA* region) {
  if (!region || !regions_.Remove(region->id)) return false;
  region->id = -2;
  region->count = 0;
  region->fixed = false;
  region->clr_Sets();
  return true;
}

bool CMap::kill_Uca(CUcA* region) {
  if (!del_Uca(region)) return false;
  delete region;
  return true;
}

CUcA* CMap::get_Uca(int32_t id) const {
  CPair<int32_t, CUcA*> pair = {id, nullptr};
  return regions_.Find(pair) ? pair.value : nullptr;
}

int32_t CMap::max_Id() const {
  int32_t largest = -1;
  for (const Tree::Node* node = regions_.root(); node; node = node->right) largest = node->pair.key;
  return largest;
}

bool CMap::get_Ucs(std::vector<TUcRef>& out, bool sorted) const {
  out.clear();
  out.reserve(regions_.count());
  regions_.pre_Order([&](const Tree::Node& node) {
    out.push_back({node.pair.key, node.pair.value});
  });
  if (sorted)
    std::stable_sort(out.begin(), out.end(), [](const TUcRef& a, const TUcRef& b) {
      return a.region->band < b.region->band;
    });
  return true;
}

// ---- Triangles ---------------------------------------------------------------------------------

bool CMap::add_Tri(uint32_t triangle, CUcA* region) {
  if (!region) return false;
  if (region_of[triangle] == region->id) return true;
  prev[triangle] = -1;
  next[triangle] = region->head;
  if (region->head != -1) prev[region->head] = static_cast<int32_t>(triangle);
  region->head = static_cast<int32_t>(triangle);
  ++region->count;
  return true;
}

bool CMap::del_Tri(uint32_t triangle, CUcA* region) {
  if (!region) return false;
  if (region_of[triangle] != region->id) return true;
  const int32_t before = prev[triangle], after = next[triangle];
  if (before != -1) next[before] = after;
  if (after != -1) prev[after] = before;
  if (region->head == static_cast<int32_t>(triangle)) region->head = after;
  prev[triangle] = next[triangle] = -1;
  --region->count;
  return true;
}

bool CMap::pass_Tri(uint32_t triangle, CUcA* from, CUcA* to) {
  if (!del_Tri(triangle, from) || !add_Tri(triangle, to)) return false;
  region_of[triangle] = to->id;
  return true;
}

uint32_t CMap::lst_Edg(uint32_t triangle, int32_t id, TUcEdge edges[3]) const {
  uint32_t n = 0;
  for (uint32_t k = 0; k < 3; ++k) {
    const int32_t nb = slots[triangle][k];
    if (nb != -1 && region_of[nb] == id) edges[n++] = {k, (k + 1) % 3};
  }
  return n;
}

bool CMap::is_Bnd(uint32_t triangle, int32_t id) const {
  bool inside = region_of[triangle] == id;
  bool outside = !inside;
  const uint32_t* list;
  const uint32_t n = nbr_Tri(triangle, list);
  for (uint32_t j = 0; j < n && !(inside && outside); ++j)
    (region_of[list[j]] == id ? inside : outside) = true;
  return inside && outside;
}

// ---- Ranks -------------------------------------------------------------------------------------

bool CMap::pop_Rnk(int32_t id, double& rank) {
  const auto entry = ranks.find(id);
  if (entry == ranks.end()) return false;
  rank = entry->second;
  ranks.erase(entry);
  return true;
}

bool CMap::pop_Rnq(double& rank, CUcA*& region, int32_t& id) {
  if (turns.empty()) return false;
  const TUcTurn turn = *turns.begin();
  turns.erase(turns.begin());
  rank = turn.rank;
  region = turn.region;
  id = turn.id;
  return true;
}

bool CMap::del_Rnq(double rank, int32_t id, CUcA*& region) {
  const auto entry = turns.find({rank, id, nullptr});
  if (entry == turns.end()) return false;
  region = entry->region;
  turns.erase(entry);
  return true;
}

}  // namespace undercut
