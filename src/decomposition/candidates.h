// Whether a region may take a triangle, and how much it wants it.
#pragma once

#include "decomposition/map.h"
#include "mesh/trees.h"

namespace undercut {

// The question: may `region` have `triangle`? The rest is constant for a call of get_Dcm.
struct TUcCand {
  uint32_t triangle = 0;
  CUcA* region = nullptr;
  CMap* map = nullptr;
  const C3DTriAABBTree* tree = nullptr;
  double aperture = 55.0;                         // T_win, degrees
  double lift = 0.001;                            // f_tol, mm along the triangle's normal
  double fuzz = 0.15;                             // f_fuz, mm
  double null_angle = 0.5;                        // w_nul, degrees
  double weights[5] = {0.1, 0.1, 0.5, 0.3, 0.2};  // T_gw0 to T_gw4
};

// Acceptable: within the aperture of the region's mean normal, and seen along the axis that the
// region would have with it, at least from a point shifted by the fuzz. At most two rays.
bool test_Cand(const TUcCand& c);

// The negated score, so that the best candidate comes first. False when a measure falls out of 0 to
// 1 or is not a number.
bool cost_Cand(const TUcCand& c, double& cost);

// The five measures of the score, each in 0 to 1 or a negative code. They change nothing but the
// scratch marks of the fan.
double q_Nml(const CMap& map, const CUcA* region, const T3DFAC& f, double aperture);
double q_Prj(const CMap& map, const CUcA* region, const T3DFAC& f);
double q_Bnd(CMap& map, const CUcA* region, uint32_t triangle);
double q_Elp(const CMap& map, const CUcA* region, const T3DFAC& f);
double q_Fre(const CMap& map, const CUcA* region, uint32_t triangle);

// Gathers in scratch A the triangles that region `id` would enclose with the triangle, and marks
// them. False if the triangle is in the region, has no slot on it, or scratch A is full.
bool walk_Fan(CMap& map, uint32_t triangle, int32_t id);
// Edge lengths from the gathered triangles to the region, and to what is neither.
bool sum_Fan(const CMap& map, int32_t id, double& shared, double& other);

// Adds the triangle to the region's candidates if it is acceptable. False only when its cost fails.
bool want_Tri(TUcCand& c, CUcA* region, uint32_t triangle);
// The answer to a flag of a move: '-' and 'u' withdraw the candidate, '+' (of one that is none yet)
// and 'u' want it anew where `open` says that it can be had.
bool heed_Flag(TUcCand& c, CUcA* region, uint32_t triangle, char flag, bool open);

}  // namespace undercut
