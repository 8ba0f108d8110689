// What the regions of earlier growths became, so that a later growth need not ask again.
//
// Passes start from the same seeds, and most of a pass is grown a second time and a third, region
// for region, for deletion leaves few. How a region grows hangs on its seed, on the mesh and on
// which triangles round it are free, and on nothing else: not on its id, and not on who holds what
// is not free. So it grows to the very same end, to the last bit, where
//
// - every triangle that it took then is free now, and
// - every triangle beside them that was held then is held now.
//
// A triangle beside them that was free then may be held by now. It was refused each time that it
// was asked for, or taken for a candidate and refused later, which leaves no trace: it would only
// not be asked now. Which triangles lie outside the region of interest must not have changed at
// all.
#pragma once

#include <vector>

#include "decomposition/map.h"

namespace undercut {

class CGrowthNotes {
 public:
  // Everything: for another region of interest.
  void forget();
  // A growth begins: notes of the last one may be replayed, and this one writes its own.
  void begin();
  // Notes a region that has grown to its end from the seed. Small ones are grown again as fast.
  void note(CMap& map, const CUcA& region, uint32_t seed);
  // Makes the region, a new one without triangles, what the seed's region was. False where there is
  // no note that holds; nothing is changed then.
  bool replay(CMap& map, CUcA& free_region, CUcA& region, uint32_t seed);

  // How many regions were noted as grown, and how many made from notes, over all.
  uint32_t grown() const { return grown_; }
  uint32_t replayed() const { return replayed_; }

 private:
  struct TNote {
    uint32_t seed;
    std::vector<uint32_t> triangles;  // in the order in which they joined
    std::vector<uint32_t> walls;      // beside them and held by other regions
    uint32_t band;
    double polar, azimuth;  // of the seed
    TUcMeasures measures;
  };

  TNote* find(uint32_t seed);

  std::vector<TNote> last_;  // in rising order of seeds
  std::vector<TNote> own_;
  uint32_t grown_ = 0, replayed_ = 0;
};

}  // namespace undercut
