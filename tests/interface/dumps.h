// The texts of the two parameter dumps at load, and a reader of what a dump wrote.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

inline const std::string kDcmDump =
    "[CDcmPar]\n"
    "n_max=-1 \n"
    "b_ini=1 \n"
    "b_5ax=1 \n"
    "w_4ax=90.000000\n"
    "n_con=2 \n"
    "a_th0=0.000000\n"
    "b_th0=20.000000\n"
    "a_th1=160.000000\n"
    "b_th1=180.000000\n"
    "a_th2=80.000000\n"
    "b_th2=100.000000\n"
    "w_nul=0.500000\n"
    "f_fuz=0.150000\n"
    "F_srt=len \n"
    "F_srf=0.800000\n"
    "F_fae=0.095000\n"
    "F_quo=5.000000\n"
    "F_cnt=3 \n"
    "L_gw0=1.000000\n"
    "L_gw1=0.000000\n"
    "T_win=55.000000\n"
    "T_gw0=0.100000\n"
    "T_gw1=0.100000\n"
    "T_gw2=0.500000\n"
    "T_gw3=0.300000\n"
    "T_gw4=0.200000\n"
    "b_chk=0 \n"
    "l_log=0 \n"
    "l_wrk= \n"
    "l_fwd= \n"
    "l_bwd= \n"
    "l_end= \n"
    "l_uda= \n"
    "l_mod=100 \n"
    "l_geo= \n"
    "l_lcs= \n"
    "l_len=10.000000\n"
    "l_pth= \n"
    "b_rti=0 \n"
    "b_prg=0 \n";

inline const std::string kUCsDump =
    "[CUCsPar]\n"
    "f_tol=0.001000\n"
    "f_dil=0.000000\n"
    "f_eps=0.000000\n"
    "f_srf=0.000000\n"
    "f_off=0.050000\n"
    "f_rad=0.020000\n"
    "l_ivl=0.000000\n"
    "r_ivl=0.500000\n"
    "f_gew=0.500000\n"
    "f_res=0.040000\n"
    "f_err=0.030000\n"
    "b_pgr=0 \n"
    "b_dbg=0 \n"
    "i_log=0 \n"
    "l_dFi= \n"
    "i_col=1 \n"
    "p_col=1 \n"
    "b_rti=0 \n"
    "b_sta=0 \n";

// What a dump writes, through a file of the running test's own; empty if it reports failure.
template <typename Block>
std::string text_Dump(bool (*dump)(const Block&, const char*), const Block& block) {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = testing::TempDir() + "undercut_dump_" + test->name() + ".txt";
  if (!dump(block, name.c_str())) return "";
  std::ostringstream text;
  text << std::ifstream(name, std::ios::binary).rdbuf();
  std::remove(name.c_str());
  return text.str();
}
