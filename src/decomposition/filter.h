// Splitting, closing, filling and smoothing of regions, over the neighbour lists: pieces hang
// together through shared edges.
//
// Of the sub-steps only the component split is switched on; the others change membership and no
// measures, and are kept for regions that need them.
#pragma once

#include <vector>

#include "decomposition/map.h"

namespace undercut {

// A connected piece: a chain of triangles in breadth-first order, the last found first.
struct TUcComp {
  uint32_t index = 0;
  std::vector<uint32_t> chain;
  int32_t other = -2;  // id of the first foreign neighbour, -2 for none
  bool single = true;  // no second foreign id was seen
};

// The pieces of a region, in the order of its list.
void find_Pieces(const CMap& map, const CUcA& region, std::vector<TUcComp>& pieces);

// Splits a region of several pieces: each becomes a region of its own with a new id, band and axis
// of the parent and measures computed anew; the parent goes. A connected region keeps its id.
bool com_Uca(CMap& map, CUcA* region);

// The pieces of a region as lists; none for a region in one piece.
bool lst_Com(const CMap& map, const CUcA* region, TLst<TArr<uint32_t>>& out);

// Closing: takes each free neighbour, then gives back each triangle with a free neighbour.
bool clo_Uca(CMap& map, CUcA* region);
// Filling: takes each piece of region 0 that touches this region only.
bool fil_Uca(CMap& map, CUcA* region);
// Smoothing: gives back each triangle with two free neighbours or more.
bool smo_Uca(CMap& map, CUcA* region);

// Hands each piece of a region that touches one other region only over to that region; a border of
// the mesh touches nothing. Regions left empty go. Measures stay as they are.
bool fil_Lst(CMap& map);

}  // namespace undercut
