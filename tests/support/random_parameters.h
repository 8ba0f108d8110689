// Random values of the parameters, through their setters, in and out of their documented ranges.
//
// No value makes a call on a small mesh long: steps of scans are 20 degrees or more, limits of
// iterations and cells of a grid are bounded. What writes files or prints is left alone.
#pragma once

#include <iterator>
#include <limits>

#include "interface/exports.h"
#include "tests/reference/random_geometry.h"

namespace undercut::tests {

// Values mostly from low to high. A wild one takes any double, the others also 0, -1 and what is
// not a number.
struct TRealChoice {
  int32_t (*setter)(const double*);
  double low, high;
  bool wild;
};
inline constexpr TRealChoice kRealChoices[] = {
    {dcm_4ax, 0, 360, true},    {dcm_aT0, 0, 90, true},    {dcm_bT0, 0, 180, true},
    {dcm_aT1, 90, 180, true},   {dcm_bT1, 90, 180, true},  {dcm_aT2, 0, 180, true},
    {dcm_bT2, 0, 180, true},    {dcm_nul, 0, 90, true},    {dcm_fuz, 0, 0.5, true},
    {dcm_srf, 0, 2, true},      {dcm_fae, 0.01, 1, true},  {dcm_quo, 0, 6, true},
    {dcm_Lg0, -1, 1, true},     {dcm_Lg1, -1, 1, true},    {dcm_win, 5, 90, true},
    {dcm_Tg0, 0, 0.5, true},    {dcm_Tg1, 0, 0.5, true},   {dcm_Tg2, 0, 0.5, true},
    {dcm_Tg3, 0, 0.5, true},    {dcm_Tg4, 0, 0.5, true},   {dcm_len, 0, 10, true},
    {ucs_Tol, 0, 0.01, true},   {ucs_Dil, 0, 0.3, true},   {ucs_Eps, 0, 0.5, true},
    {ucs_Srf, 0, 2, true},      {ucs_Off, 0, 0.5, false},  {ucs_Rad, 0, 1, true},
    {ucs_Lef, -1, 1, true},     {ucs_Rig, -1, 1, true},    {ucs_Gew, 0.05, 1, true},
    {ucs_Res, 0.25, 2, false},  {ucs_Err, 0, 0.3, true},   {amo_Eps, 0.1, 5, true},
    {amo_Dxy, 0.1, 20, true},   {gcu_Th0, -90, 30, true},  {gcu_Th1, -30, 90, true},
    {gcu_Phi, 0, 180, true},    {gcu_Eps, 0.1, 5, true},   {gcu_Win, 4, 40, false},
    {nxn_Dxx, 20, 120, false},  {nxn_Dyy, 20, 120, false}, {gri_Dxx, 0.5, 2, false},
    {gri_Dyy, 0.5, 2, false},   {flt_Srf, 0, 2, true},     {flt_Dep, 0, 1, true},
    {flt_Vis, 0, 1, true},      {con_Wid, 0, 4, true},     {prj_off, 0.01, 0.5, true},
    {prj_inc, 0.05, 0.5, true}, {prj_lim, 0.1, 4, false},  {prj_tol, 0, 2, true},
    {err_Gew, 0, 1, true},
};

// Whole numbers from 0 to `most`.
struct TCountChoice {
  int32_t (*setter)(const uint32_t*);
  uint32_t most;
};
inline constexpr TCountChoice kCountChoices[] = {
    {dcm_Con, 4},   {dcm_mod, 5},   {amo_Max, 60}, {gcu_Max, 60}, {gcu_Dim, 30},
    {gri_Row, 200}, {gri_Col, 200}, {ucs_Log, 3},  {ucs_iCl, 6},  {ucs_pCl, 2},
};

inline constexpr int32_t (*kFlags[])(const uint8_t*) = {dcm_ini, dcm_5ax, dcm_chk,
                                                        gri_Res, gcu_Flg, ucs_Pgr};

inline void set_Real(reference::Random& random) {
  const TRealChoice& choice = kRealChoices[random.below(std::size(kRealChoices))];
  double value = random.real(choice.low, choice.high);
  if (random.chance(0.12)) {
    const double others[] = {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()};
    value = choice.wild ? random.special() : others[random.below(3)];
  }
  choice.setter(&value);
}

inline void set_Count(reference::Random& random) {
  const TCountChoice& choice = kCountChoices[random.below(std::size(kCountChoices))];
  const auto value = static_cast<uint32_t>(random.below(uint64_t{choice.most} + 1));
  choice.setter(&value);
}

// The window of the scan: mostly of a proper extent.
inline void set_Window(reference::Random& random) {
  double box[4] = {random.real(-10, 90), random.real(-30, 180), random.real(60, 180),
                   random.real(90, 360)};
  if (random.chance(0.1)) box[random.below(4)] = random.special();
  nxn_Box(box);
}

// A grid and steps along rims that are coarser than the defaults, which take most of the time of a
// random test.
inline void set_Coarse(reference::Random& random) {
  const auto rows = static_cast<uint32_t>(random.integer(5, 120));
  const auto columns = static_cast<uint32_t>(random.integer(5, 120));
  const double step = random.real(0.25, 1), size = random.real(0.5, 2);
  gri_Row(&rows);
  gri_Col(&columns);
  gri_Dxx(&size);
  gri_Dyy(&size);
  ucs_Res(&step);
}

inline void set_Parameter(reference::Random& random) {
  const uint64_t kind = random.below(20);
  if (kind < 11) {
    set_Real(random);
  } else if (kind < 14) {
    set_Count(random);
  } else if (kind < 17) {
    const auto flag = static_cast<uint8_t>(random.below(2));
    kFlags[random.below(std::size(kFlags))](&flag);
  } else if (kind == 17) {
    const auto limit = static_cast<int32_t>(random.integer(-2, 6));
    (random.chance(0.5) ? dcm_max : dcm_Cnt)(&limit);
  } else if (kind == 18) {
    const char* words[] = {"len", "srf", "srf", "", "other"};
    dcm_srt(words[random.below(5)]);
  } else {
    set_Window(random);
  }
}

}  // namespace undercut::tests
