#include "decomposition/filter.h"

#include <memory>

#include "decomposition/measures.h"

namespace undercut {

namespace {

// Breadth-first search over the triangles of one region; holds its arrays between searches.
class CPieces {
 public:
  explicit CPieces(const CMap& map) : map_(map) { seen_.init(map.msh.n_tri); }

  void find(const CUcA& region, std::vector<TUcComp>& pieces) {
    pieces.clear();
    seen_.clear_All();
    for (int32_t t = region.head; t != -1; t = map_.next_Tri(t)) {
      if (seen_.test(static_cast<uint32_t>(t))) continue;
      TUcComp piece;
      piece.index = static_cast<uint32_t>(pieces.size());
      flood(static_cast<uint32_t>(t), region.id, piece);
      pieces.push_back(std::move(piece));
    }
  }

 private:
  void flood(uint32_t start, int32_t id, TUcComp& piece) {
    order_.assign(1, start);
    seen_.set(start);
    for (size_t i = 0; i < order_.size(); ++i) {
      const uint32_t* list;
      const uint32_t n = map_.nbr_Tri(order_[i], list);
      for (uint32_t j = 0; j < n; ++j) visit(list[j], id, piece);
    }
    piece.chain.assign(order_.rbegin(), order_.rend());
  }

  void visit(uint32_t nb, int32_t id, TUcComp& piece) {
    const int32_t held = map_.region_of[nb];
    if (held != id) {
      if (piece.other == -2) piece.other = held;
      if (piece.other != held) piece.single = false;
    } else if (!seen_.test(nb)) {
      seen_.set(nb);
      order_.push_back(nb);
    }
  }

  const CMap& map_;
  CMarks seen_;
  std::vector<uint32_t> order_;
};

bool pass_All(CMap& map, const std::vector<uint32_t>& chain, CUcA* from, CUcA* to) {
  for (const uint32_t t : chain)
    if (!map.pass_Tri(t, from, to)) return false;
  return true;
}

void clear_Marks(CMap& map) {
  map.mark.clear_All();
  map.scratch_a.count = 0;
}

void push_Marked(CMap& map, uint32_t t) {
  map.mark.set(t);
  map.scratch_a.data[map.scratch_a.count++] = t;
}

uint32_t cnt_Free(const CMap& map, uint32_t t) {
  const uint32_t* list;
  const uint32_t n = map.nbr_Tri(t, list);
  uint32_t count = 0;
  for (uint32_t j = 0; j < n; ++j) count += map.region_of[list[j]] == 0;
  return count;
}

bool dilate(CMap& map, CUcA* region, CUcA* free_region) {
  clear_Marks(map);
  for (int32_t t = region->head; t != -1; t = map.next_Tri(t)) {
    const uint32_t* list;
    const uint32_t n = map.nbr_Tri(static_cast<uint32_t>(t), list);
    for (uint32_t j = 0; j < n; ++j) {
      if (map.region_of[list[j]] != 0 || map.mark.test(list[j])) continue;
      push_Marked(map, list[j]);
    }
  }
  for (uint32_t i = 0; i < map.scratch_a.count; ++i)
    if (!map.pass_Tri(map.scratch_a.data[i], free_region, region)) return false;
  return true;
}

bool erode(CMap& map, CUcA* region, CUcA* free_region) {
  clear_Marks(map);
  for (int32_t t = region->head; t != -1; t = map.next_Tri(t)) {
    const auto triangle = static_cast<uint32_t>(t);
    if (!map.mark.test(triangle) && cnt_Free(map, triangle) > 0) push_Marked(map, triangle);
  }
  for (uint32_t i = 0; i < map.scratch_a.count; ++i)
    if (!map.pass_Tri(map.scratch_a.data[i], region, free_region)) return false;
  return true;
}

bool split_Off(CMap& map, CUcA* parent, const std::vector<uint32_t>& chain, int32_t id) {
  auto fresh = std::make_unique<CUcA>(id);
  if (!map.add_Uca(fresh.get())) return false;
  CUcA* region = fresh.release();
  if (!pass_All(map, chain, parent, region)) return false;
  region->band = parent->band;
  region->fixed = parent->fixed;
  region->polar0 = parent->polar0;
  region->azimuth0 = parent->azimuth0;
  region->measures = parent->measures;
  rcalc_Uca(map, *region);
  return true;
}

}  // namespace

void find_Pieces(const CMap& map, const CUcA& region, std::vector<TUcComp>& pieces) {
  CPieces(map).find(region, pieces);
}

bool com_Uca(CMap& map, CUcA* region) {
  if (!region || !map.neighbours.lists) return false;
  std::vector<TUcComp> pieces;
  find_Pieces(map, *region, pieces);
  if (pieces.size() < 2) return true;
  int32_t id = map.max_Id() + 1;
  for (const TUcComp& piece : pieces)
    if (!split_Off(map, region, piece.chain, id++)) return false;
  return map.kill_Uca(region);
}

bool lst_Com(const CMap& map, const CUcA* region, TLst<TArr<uint32_t>>& out) {
  reset(out);
  if (!region || !map.neighbours.lists) return false;
  std::vector<TUcComp> pieces;
  find_Pieces(map, *region, pieces);
  if (pieces.size() < 2) return true;
  if (!alloc(out, static_cast<uint32_t>(pieces.size()))) return false;
  for (const TUcComp& piece : pieces) {
    TArr<uint32_t>& list = out.data[out.count];
    if (!alloc(list, static_cast<uint32_t>(piece.chain.size()))) return false;
    for (uint32_t i = 0; i < list.count; ++i) list.data[i] = piece.chain[i];
    ++out.count;
  }
  return true;
}

bool clo_Uca(CMap& map, CUcA* region) {
  CUcA* free_region = map.get_Uca(0);
  return region && free_region && dilate(map, region, free_region) &&
         erode(map, region, free_region);
}

bool fil_Uca(CMap& map, CUcA* region) {
  CUcA* free_region = map.get_Uca(0);
  if (!free_region) return true;
  if (!region || !map.neighbours.lists) return false;
  std::vector<TUcComp> pieces;
  find_Pieces(map, *free_region, pieces);
  for (const TUcComp& piece : pieces)
    if (piece.single && piece.other == region->id &&
        !pass_All(map, piece.chain, free_region, region))
      return false;
  return true;
}

bool smo_Uca(CMap& map, CUcA* region) {
  CUcA* free_region = map.get_Uca(0);
  if (!region || !free_region) return false;
  TLst<uint32_t>& ragged = map.scratch_b;
  ragged.count = 0;
  for (int32_t t = region->head; t != -1; t = map.next_Tri(t))
    if (cnt_Free(map, static_cast<uint32_t>(t)) >= 2)
      ragged.data[ragged.count++] = static_cast<uint32_t>(t);
  for (uint32_t i = 0; i < ragged.count; ++i)
    if (!map.pass_Tri(ragged.data[i], region, free_region)) return false;
  return true;
}

bool fil_Lst(CMap& map) {
  if (!map.neighbours.lists) return false;
  std::vector<TUcRef> regions;
  if (!map.get_Ucs(regions, false)) return false;
  CPieces search(map);
  std::vector<TUcComp> pieces;
  for (const TUcRef& ref : regions) {
    if (ref.id == 0) continue;
    search.find(*ref.region, pieces);
    for (const TUcComp& piece : pieces) {
      if (!piece.single || piece.other == 0 || piece.other == -1 || piece.other == -2) continue;
      CUcA* target = map.get_Uca(piece.other);
      if (!target || !pass_All(map, piece.chain, ref.region, target)) return false;
    }
  }
  for (const TUcRef& ref : regions)
    if (ref.id != 0 && ref.region->count == 0 && !map.kill_Uca(ref.region)) return false;
  return true;
}

}  // namespace undercut
