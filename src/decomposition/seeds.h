// How well each triangle of a region of interest can start a region.
#pragma once

#include <vector>

#include "decomposition/map.h"
#include "mesh/trees.h"

namespace undercut {

// One for each entry of the list. The key is the negated score, so that the best sorts first; a
// score of 0 is the key -0.0, and such a triangle never starts a region.
struct TUcSeed {
  double key = 0;
  uint32_t index = 0;  // position in the list
  int32_t band = -1;   // the band that gave the score; -1 for none
};

// Scores every triangle of the list and sorts, best first. The score is the share of its area that
// a triangle shows along the best axis from which its lifted centroid is seen, 0 to 1; each band is
// judged at its polar angle nearest to 90 degrees, in the azimuth of the triangle's normal. One ray
// for each triangle and band. `lift` in mm. Triangles with two equal corners keep the key 0.
void calc_Seeds(const CMap& map, const TArr<uint32_t>& roi, const C3DTriAABBTree& tree, double lift,
                std::vector<TUcSeed>& seeds);

}  // namespace undercut
