// The parameter blocks: plain records, one instance of each for the whole process, filled with
// their defaults at load and changed by the exported setters.
//
// A computation never reads a block while it works, but for the small ones that have no copy by
// contract: on entry it copies what it needs, so that a host may set values for the next call.
// Fields stand in the order of the blocks' dumps. Those with a setter take their default from
// setters.def, the others carry it here. Units and meanings: setters.def.
#pragma once

#include <cstdint>

#include "foundation/records.h"

namespace undercut {

inline constexpr uint32_t kTextSize = 64;  // a text of a block, with its end mark

// The decomposition.
struct CDcmPar {
  CDcmPar();
  int32_t n_max;
  uint8_t b_ini;
  uint8_t b_5ax;
  double w_4ax;
  uint32_t n_con;
  double a_th0, b_th0;
  double a_th1, b_th1;
  double a_th2, b_th2;
  double w_nul;
  double f_fuz;
  char F_srt[kTextSize];
  double F_srf;
  double F_fae;
  double F_quo;
  int32_t F_cnt;
  double L_gw0, L_gw1;
  double T_win;
  double T_gw0, T_gw1, T_gw2, T_gw3, T_gw4;
  uint8_t b_chk;
  uint8_t l_log;
  char l_wrk[kTextSize];
  char l_fwd[kTextSize];
  char l_bwd[kTextSize];
  char l_end[kTextSize];
  char l_uda[kTextSize];
  uint32_t l_mod;
  char l_geo[kTextSize];
  char l_lcs[kTextSize];
  double l_len;
  char l_pth[kTextSize];
  uint8_t b_rti;
  uint8_t b_prg;
};

// The undercut computations.
struct CUCsPar {
  CUCsPar();
  double f_tol;
  double f_dil;
  double f_eps;
  double f_srf;
  double f_off;
  double f_rad;
  double l_ivl;
  double r_ivl;
  double f_gew;
  double f_res;
  double f_err;
  uint32_t b_pgr;  // its setter stores the lowest byte only
  uint32_t b_dbg;
  uint32_t i_log;
  char l_dFi[kTextSize];
  uint32_t i_col;
  uint32_t p_col;
  uint8_t b_rti;
  uint8_t b_sta;
};

// The simplex search. Each search overwrites the three vertices and the count.
struct TAmoPar {
  TAmoPar();
  T2DVEC box_a = {0.0, 0.0};
  T2DVEC box_b = {90.0, 0.0};
  T2DVEC box_c = {90.0, 90.0};
  double f_eps;
  uint32_t n_max;
  double f_dxy;
  uint32_t n_itr = 0;
};

// The four-axis search. f_th0_s and f_th1_s are the bracket that the golden section works on: they
// start as the defaults of f_th0 and f_th1, and no setter moves them.
struct TGcuPar {
  TGcuPar();
  double f_th0;
  double f_th1;
  double f_th0_s;
  double f_th1_s;
  double f_phi;
  double f_eps;
  uint32_t n_max;
  double f_win;
  uint32_t n_dim;
  uint32_t n_flg;  // its setter stores the lowest byte only
};

// The angle grid. box: theta and phi at the start, theta and phi at the end.
struct TNxnPar {
  TNxnPar();
  double box[4];
  double f_dxx;
  double f_dyy;
};

// The rim grid. Both rows of its frame start alike, and f_val starts without a value.
struct TGriPar {
  TGriPar();
  T3DMSH msh = {};
  double row_a[4] = {1.0, 0.0, 0.0, 0.0};
  double row_b[4] = {1.0, 0.0, 0.0, 0.0};
  double row_c = 1.0;
  double org_z[3] = {0.0, 0.0, 0.0};
  T2DVEC org_xy = {0.0, 0.0};
  T2DVEC ext_xy = {100.0, 100.0};
  double f_dxx;
  double f_dyy;
  uint32_t n_row;
  uint32_t n_col;
  double f_val;
  uint8_t b_res;
};

// The component filter.
struct TFltPar {
  TFltPar();
  uint8_t b_on = 1;
  double f_srf;
  double f_dep;
  double f_vis;
};

// The corridor. Only its width is read; the rest is kept.
struct TConPar {
  TConPar();
  double f_a = 0.15;
  uint32_t n_a = 3;
  double f_b = 0.1;
  uint32_t n_b = 20;
  double f_wid;
  double f_c = 2.8;
  double f_d = 10.0;
  double rest[4] = {0.0, 0.0, 0.0, 0.0};
};

// Projection.
struct TPrjPar {
  TPrjPar();
  double f_off;
  double f_inc;
  double f_lim;
  double f_tol;
};

extern CDcmPar g_Dcm;
extern CUCsPar g_UCs;
extern TAmoPar g_Amo;
extern TGcuPar g_Gcu;
extern TNxnPar g_Nxn;
extern TGriPar g_Gri;
extern TFltPar g_Flt;
extern TConPar g_Con;
extern TPrjPar g_Prj;
extern double g_ErrGew;  // weight of the second error term, which stands alone

// Write a block as text, a line for each key. False for no name, a file that can't be opened or one
// that could not be written to its end.
bool dmp_Dcm(const CDcmPar& par, const char* name);
bool dmp_UCs(const CUCsPar& par, const char* name);

}  // namespace undercut
