// What the stages of one pass share: the map, the questions asked of it, and where they report.
#pragma once

#include <vector>

#include "decomposition/candidates.h"
#include "decomposition/map.h"
#include "decomposition/measures.h"
#include "decomposition/seeds.h"
#include "interface/parameters.h"

namespace undercut {

class CGrowthNotes;
class CStageFiles;

// Stages return false when a step of theirs fails: the region of interest is then abandoned.
struct TUcStage {
  CMap& map;
  const CDcmPar& par;
  TUcCand& cnd;
  TUcRank& rnk;
  TLst<uint32_t>& roi;  // triangles still to be offered, in seed order after the first pass
  std::vector<TUcSeed>& seeds;
  CStageFiles& files;
  uint32_t step = 0;              // counts accepted triangles within growth and within balancing
  CGrowthNotes* notes = nullptr;  // of the growths of this region of interest; null: all is grown
};

// "07. Fwd.": regions grow from the seeds, best seed first, best candidate first.
bool grow_Regions(TUcStage& stage);

// "08. Del." and part of "12. Fil.": gives the triangles of poor regions back to region 0.
bool del_Small(CMap& map, const CDcmPar& par);

// "09. Rnk.": fresh candidates on each frontier, and a rank for each region.
bool rank_Regions(TUcStage& stage);
// The rank of a region: negated, so that small (and, with a shape weight, ragged) ones come first.
bool cost_Uca(const TUcRank& context, double& rank);

// "10. Bwd.": regions take triangles from one another, lowest rank first, until none can gain.
bool balance_Regions(TUcStage& stage);
// Makes a region stop wanting what region `id` holds; none for a null region.
void drop_Cnd(CMap& map, int32_t id, CUcA* region);

// "12. Fil.", second half: frees region 0 and fixes every other region. False if a lock fails.
bool fix_Regions(CMap& map);
// Keeps the seeds whose triangle is free, unlocked and scored; the list becomes theirs, in their
// order.
void keep_Seeds(const CMap& map, TLst<uint32_t>& roi, std::vector<TUcSeed>& seeds);
// Frontier and area of region 0 anew. False without a region 0.
bool renew_Free(CMap& map);

}  // namespace undercut
