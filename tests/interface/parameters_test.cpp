// Defaults, copies and dumps of the parameter blocks.
#include "interface/parameters.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/values.h"
#include "tests/interface/blocks.h"
#include "tests/interface/dumps.h"
#include "tests/support/comma_locale.h"

using namespace undercut;

namespace {

struct TRow {
  std::string setter, key, type, value;
  bool operator==(const TRow&) const = default;
};
void PrintTo(const TRow& row, std::ostream* out) {
  *out << row.setter << " " << row.key << " " << row.type << " " << row.value;
}

// Every parameter with a setter, written out apart from the table.
const std::vector<TRow> kRows = {
    {"dcm_max", "n_max", "I32", "-1"},
    {"dcm_ini", "b_ini", "U8", "1"},
    {"dcm_5ax", "b_5ax", "U8", "1"},
    {"dcm_4ax", "w_4ax", "F64", "90.0"},
    {"dcm_Con", "n_con", "U32", "2"},
    {"dcm_aT0", "a_th0", "F64", "0.0"},
    {"dcm_bT0", "b_th0", "F64", "20.0"},
    {"dcm_aT1", "a_th1", "F64", "160.0"},
    {"dcm_bT1", "b_th1", "F64", "180.0"},
    {"dcm_aT2", "a_th2", "F64", "80.0"},
    {"dcm_bT2", "b_th2", "F64", "100.0"},
    {"dcm_nul", "w_nul", "F64", "0.5"},
    {"dcm_fuz", "f_fuz", "F64", "0.15"},
    {"dcm_srt", "F_srt", "TXT", "\"len\""},
    {"dcm_srf", "F_srf", "F64", "0.8"},
    {"dcm_fae", "F_fae", "F64", "0.095"},
    {"dcm_quo", "F_quo", "F64", "5.0"},
    {"dcm_Cnt", "F_cnt", "I32", "3"},
    {"dcm_Lg0", "L_gw0", "F64", "1.0"},
    {"dcm_Lg1", "L_gw1", "F64", "0.0"},
    {"dcm_win", "T_win", "F64", "55.0"},
    {"dcm_Tg0", "T_gw0", "F64", "0.1"},
    {"dcm_Tg1", "T_gw1", "F64", "0.1"},
    {"dcm_Tg2", "T_gw2", "F64", "0.5"},
    {"dcm_Tg3", "T_gw3", "F64", "0.3"},
    {"dcm_Tg4", "T_gw4", "F64", "0.2"},
    {"dcm_chk", "b_chk", "U8", "0"},
    {"dcm_log", "l_log", "U8", "0"},
    {"dcm_wrk", "l_wrk", "TXT", "\"\""},
    {"dcm_fwd", "l_fwd", "TXT", "\"\""},
    {"dcm_bwd", "l_bwd", "TXT", "\"\""},
    {"dcm_end", "l_end", "TXT", "\"\""},
    {"dcm_uda", "l_uda", "TXT", "\"\""},
    {"dcm_mod", "l_mod", "U32", "100"},
    {"dcm_geo", "l_geo", "TXT", "\"\""},
    {"dcm_lcs", "l_lcs", "TXT", "\"\""},
    {"dcm_len", "l_len", "F64", "10.0"},
    {"dcm_pth", "l_pth", "TXT", "\"\""},
    {"dcm_rti", "b_rti", "U8", "0"},
    {"dcm_prg", "b_prg", "U8", "0"},
    {"ucs_Tol", "f_tol", "F64", "0.001"},
    {"ucs_Dil", "f_dil", "F64", "0.0"},
    {"ucs_Eps", "f_eps", "F64", "0.0"},
    {"ucs_Srf", "f_srf", "F64", "0.0"},
    {"ucs_Off", "f_off", "F64", "0.05"},
    {"ucs_Rad", "f_rad", "F64", "0.02"},
    {"ucs_Lef", "l_ivl", "F64", "0.0"},
    {"ucs_Rig", "r_ivl", "F64", "0.5"},
    {"ucs_Gew", "f_gew", "F64", "0.5"},
    {"ucs_Res", "f_res", "F64", "0.04"},
    {"ucs_Err", "f_err", "F64", "0.03"},
    {"ucs_Pgr", "b_pgr", "B32", "0"},
    {"ucs_Dbg", "b_dbg", "U32", "0"},
    {"ucs_Log", "i_log", "U32", "0"},
    {"ucs_lFi", "l_dFi", "TXT", "\"\""},
    {"ucs_iCl", "i_col", "U32", "1"},
    {"ucs_pCl", "p_col", "U32", "1"},
    {"ucs_Rti", "b_rti", "U8", "0"},
    {"ucs_Sta", "b_sta", "U8", "0"},
    {"amo_Eps", "f_eps", "F64", "0.5"},
    {"amo_Max", "n_max", "U32", "50"},
    {"amo_Dxy", "f_dxy", "F64", "5.0"},
    {"gcu_Th0", "f_th0", "F64", "-25.0"},
    {"gcu_Th1", "f_th1", "F64", "25.0"},
    {"gcu_Phi", "f_phi", "F64", "90.0"},
    {"gcu_Eps", "f_eps", "F64", "0.1"},
    {"gcu_Max", "n_max", "U32", "50"},
    {"gcu_Win", "f_win", "F64", "5.0"},
    {"gcu_Dim", "n_dim", "U32", "20"},
    {"gcu_Flg", "n_flg", "B32", "0"},
    {"nxn_Box", "box", "BOX", "UNDERCUT_BOX(0.0, 0.0, 180.0, 360.0)"},
    {"nxn_Dxx", "f_dxx", "F64", "40.0"},
    {"nxn_Dyy", "f_dyy", "F64", "40.0"},
    {"gri_Dxx", "f_dxx", "F64", "0.1"},
    {"gri_Dyy", "f_dyy", "F64", "0.1"},
    {"gri_Row", "n_row", "U32", "1000"},
    {"gri_Col", "n_col", "U32", "1000"},
    {"gri_Res", "b_res", "U8", "0"},
    {"flt_Srf", "f_srf", "F64", "0.01"},
    {"flt_Dep", "f_dep", "F64", "0.005"},
    {"flt_Vis", "f_vis", "F64", "0.95"},
    {"con_Wid", "f_wid", "F64", "3.8"},
    {"prj_off", "f_off", "F64", "0.1"},
    {"prj_inc", "f_inc", "F64", "0.05"},
    {"prj_lim", "f_lim", "F64", "2.5"},
    {"prj_tol", "f_tol", "F64", "0.75"},
    {"err_Gew", "f_gew", "F64", "0.01"},
};

const std::vector<TRow> kTable = {
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  {#setter, #key, #type, #value},
#include "interface/setters.def"
#undef UNDERCUT_SETTER
};

void expect_Defaults(const CDcmPar& par) {
  EXPECT_EQ(text_Dump(dmp_Dcm, par), kDcmDump);
  // What six decimals could hide.
  EXPECT_EQ(par.F_fae, 0.095);
  EXPECT_EQ(par.f_fuz, 0.15);
  EXPECT_EQ(par.F_srf, 0.8);
  EXPECT_EQ(par.T_gw0, 0.1);
  EXPECT_EQ(par.T_gw1, 0.1);
  EXPECT_EQ(par.T_gw2, 0.5);
  EXPECT_EQ(par.T_gw3, 0.3);
  EXPECT_EQ(par.T_gw4, 0.2);
  EXPECT_STREQ(par.F_srt, "len");
}

void expect_Defaults(const CUCsPar& par) {
  EXPECT_EQ(text_Dump(dmp_UCs, par), kUCsDump);
  EXPECT_EQ(par.f_tol, 0.001);
  EXPECT_EQ(par.f_off, 0.05);
  EXPECT_EQ(par.f_rad, 0.02);
  EXPECT_EQ(par.f_res, 0.04);
  EXPECT_EQ(par.f_err, 0.03);
}

void expect_Defaults(const TAmoPar& par) {
  EXPECT_TRUE((par.box_a == T2DVEC{0.0, 0.0}));
  EXPECT_TRUE((par.box_b == T2DVEC{90.0, 0.0}));
  EXPECT_TRUE((par.box_c == T2DVEC{90.0, 90.0}));
  EXPECT_EQ(par.f_eps, 0.5);
  EXPECT_EQ(par.n_max, 50u);
  EXPECT_EQ(par.f_dxy, 5.0);
  EXPECT_EQ(par.n_itr, 0u);
}

void expect_Defaults(const TGcuPar& par) {
  EXPECT_EQ(par.f_th0, -25.0);
  EXPECT_EQ(par.f_th1, 25.0);
  EXPECT_EQ(par.f_th0_s, -25.0);
  EXPECT_EQ(par.f_th1_s, 25.0);
  EXPECT_EQ(par.f_phi, 90.0);
  EXPECT_EQ(par.f_eps, 0.1);
  EXPECT_EQ(par.n_max, 50u);
  EXPECT_EQ(par.f_win, 5.0);
  EXPECT_EQ(par.n_dim, 20u);
  EXPECT_EQ(par.n_flg, 0u);
}

void expect_Defaults(const TNxnPar& par) {
  const double box[4] = {0.0, 0.0, 180.0, 360.0};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(par.box[i], box[i]) << i;
  EXPECT_EQ(par.f_dxx, 40.0);
  EXPECT_EQ(par.f_dyy, 40.0);
}

void expect_Defaults(const TGriPar& par) {
  EXPECT_TRUE(par.msh.vtx == nullptr);
  EXPECT_TRUE(par.msh.tri == nullptr);
  EXPECT_EQ(par.msh.n_vtx, 0u);
  EXPECT_EQ(par.msh.n_tri, 0u);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(par.row_a[i], i == 0 ? 1.0 : 0.0) << i;
    EXPECT_EQ(par.row_b[i], i == 0 ? 1.0 : 0.0) << i;
  }
  EXPECT_EQ(par.row_c, 1.0);
  for (double offset : par.org_z) EXPECT_EQ(offset, 0.0);
  EXPECT_TRUE((par.org_xy == T2DVEC{0.0, 0.0}));
  EXPECT_TRUE((par.ext_xy == T2DVEC{100.0, 100.0}));
  EXPECT_EQ(par.f_dxx, 0.1);
  EXPECT_EQ(par.f_dyy, 0.1);
  EXPECT_EQ(par.n_row, 1000u);
  EXPECT_EQ(par.n_col, 1000u);
  EXPECT_EQ(par.b_res, 0);
}

void expect_Defaults(const TFltPar& par) {
  EXPECT_EQ(par.b_on, 1);
  EXPECT_EQ(par.f_srf, 0.01);
  EXPECT_EQ(par.f_dep, 0.005);
  EXPECT_EQ(par.f_vis, 0.95);
}

void expect_Defaults(const TConPar& par) {
  EXPECT_EQ(par.f_a, 0.15);
  EXPECT_EQ(par.n_a, 3u);
  EXPECT_EQ(par.f_b, 0.1);
  EXPECT_EQ(par.n_b, 20u);
  EXPECT_EQ(par.f_wid, 3.8);
  EXPECT_EQ(par.f_c, 2.8);
  EXPECT_EQ(par.f_d, 10.0);
  for (double kept : par.rest) EXPECT_EQ(kept, 0.0);
}

void expect_Defaults(const TPrjPar& par) {
  EXPECT_EQ(par.f_off, 0.1);
  EXPECT_EQ(par.f_inc, 0.05);
  EXPECT_EQ(par.f_lim, 2.5);
  EXPECT_EQ(par.f_tol, 0.75);
}

TEST(Parameters, TheTable_HoldsEveryParameterWithItsTypeAndDefaultInOrder) {
  EXPECT_EQ(kRows.size(), 87u);
  EXPECT_EQ(kTable, kRows);
}

TEST(Parameters, AFreshLoad_GivesTheDefaults) {
  expect_Defaults(g_Dcm);
  expect_Defaults(g_UCs);
  expect_Defaults(g_Amo);
  expect_Defaults(g_Gcu);
  expect_Defaults(g_Nxn);
  expect_Defaults(g_Gri);
  expect_Defaults(g_Flt);
  expect_Defaults(g_Con);
  expect_Defaults(g_Prj);
  EXPECT_EQ(g_ErrGew, 0.01);
}

TEST(Parameters, ANewBlock_HoldsTheDefaults) {
  expect_Defaults(CDcmPar());
  expect_Defaults(CUCsPar());
  expect_Defaults(TAmoPar());
  expect_Defaults(TGcuPar());
  expect_Defaults(TNxnPar());
  expect_Defaults(TGriPar());
  expect_Defaults(TFltPar());
  expect_Defaults(TConPar());
  expect_Defaults(TPrjPar());
}

TEST(Parameters, TheFirstTwoGrowthWeights_AreBothATenth) {
  EXPECT_EQ(g_Dcm.T_gw0, 0.1);
  EXPECT_EQ(g_Dcm.T_gw1, 0.1);
}

TEST(Parameters, TheScoreOfSmallRegions_IsLenAtLoad) { EXPECT_STREQ(g_Dcm.F_srt, "len"); }

using ParametersCopy = BlocksTest;

TEST_F(ParametersCopy, ACopy_KeepsItsValuesWhenTheBlockIsSetAfterwards) {
  const CDcmPar dcm = g_Dcm;
  const CUCsPar ucs = g_UCs;
  const TGcuPar gcu = g_Gcu;
  const double value = 7.25;
  dcm_Tg0(&value);
  dcm_srt("srf");
  ucs_Tol(&value);
  gcu_Th0(&value);
  expect_Defaults(dcm);
  expect_Defaults(ucs);
  expect_Defaults(gcu);
  EXPECT_EQ(g_Dcm.T_gw0, 7.25);
}

TEST_F(ParametersCopy, ProgressWithoutTimes_StaysSetInTheBlock) {
  const uint8_t on = 1;
  dcm_prg(&on);
  EXPECT_EQ(g_Dcm.b_prg, 1);
  EXPECT_EQ(g_Dcm.b_rti, 0);
}

TEST(ParametersDump, WritesWholeNumbersAsSigned32Bits) {
  CDcmPar par;
  par.n_con = 0xFFFFFFFFu;
  par.b_ini = 255;
  par.F_cnt = -7;
  const std::string text = text_Dump(dmp_Dcm, par);
  EXPECT_NE(text.find("\nn_con=-1 \n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nb_ini=255 \n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nF_cnt=-7 \n"), std::string::npos) << text;
}

TEST(ParametersDump, WritesAllFourBytesOfTheProgressFlag) {
  CUCsPar par;
  par.b_pgr = 0x01020304;
  EXPECT_NE(text_Dump(dmp_UCs, par).find("\nb_pgr=16909060 \n"), std::string::npos);
}

TEST_F(CommaLocale, DoesNotReachTheDumps_AndStaysTheHosts) {
  EXPECT_EQ(text_Dump(dmp_Dcm, CDcmPar()), kDcmDump);
  EXPECT_EQ(text_Dump(dmp_UCs, CUCsPar()), kUCsDump);
  EXPECT_EQ(half(), "0,5");
}

TEST(ParametersDump, IsFalse_WithoutAName) {
  EXPECT_FALSE(dmp_Dcm(g_Dcm, nullptr));
  EXPECT_FALSE(dmp_UCs(g_UCs, nullptr));
  EXPECT_FALSE(dmp_Dcm(g_Dcm, ""));
  EXPECT_FALSE(dmp_UCs(g_UCs, ""));
}

TEST(ParametersDump, IsFalse_IfTheFileCanNotBeOpened) {
  EXPECT_FALSE(dmp_Dcm(g_Dcm, "/no/such/folder/dcm.txt"));
  EXPECT_FALSE(dmp_UCs(g_UCs, "/no/such/folder/ucs.txt"));
}

TEST(ParametersDump, IsFalse_IfTheFileCanNotBeWrittenToItsEnd) {
  EXPECT_FALSE(dmp_Dcm(g_Dcm, "/dev/full"));
  EXPECT_FALSE(dmp_UCs(g_UCs, "/dev/full"));
}

}  // namespace
