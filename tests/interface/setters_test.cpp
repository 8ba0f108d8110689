// The exported setters: each one's field, and what it must leave alone.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/interface/blocks.h"
#include "tests/interface/dumps.h"

using namespace undercut;

namespace {

using Setters = BlocksTest;

// A value that no default equals, with a pattern in every byte that a cut value would lose.
template <typename Value>
Value odd_Value() {
  if constexpr (std::is_same_v<Value, double>)
    return -1234.0625;
  else
    return static_cast<Value>(0x7B6A5948u);
}

// Stores the value in a field of the expected blocks as the setter of its type should.
template <typename Value>
void expect_Value(Value& field, const Value* value) {
  field = *value;
}
void expect_Value(uint32_t& flag, const uint8_t* value) { flag = (flag & 0xFFFFFF00u) | *value; }
void expect_Value(double (&box)[4], const double* value) {
  for (int i = 0; i < 4; ++i) box[i] = value[i];
}
void expect_Value(char (&field)[64], const char* text) {
  const std::string cut = std::string(text).substr(0, 63);
  std::memset(field, 0, sizeof field);
  std::memcpy(field, cut.data(), cut.size());
}

// Room for any value, at an odd address.
struct TMisaligned {
  template <typename Value>
  const Value* put(const Value* value, size_t size) {
    std::memcpy(bytes + 1, static_cast<const void*>(value), size);
    return reinterpret_cast<const Value*>(bytes + 1);
  }
  alignas(8) char bytes[41];
};

// Calls visit(setter, field of `blocks`, an odd value) for each row; texts get `text`.
template <typename Visit>
void visit_Setters(TBlocks& blocks, const char* text, Visit visit) {
  const int32_t i32 = odd_Value<int32_t>();
  const uint32_t u32 = odd_Value<uint32_t>();
  const uint8_t u8 = odd_Value<uint8_t>();
  const double box[4] = {-1234.0625, 2.5, 3.5, 4.5};
#define VALUE_I32 &i32
#define VALUE_U32 &u32
#define VALUE_U8 &u8
#define VALUE_B32 &u8
#define VALUE_F64 &box[0]
#define VALUE_BOX &box[0]
#define VALUE_TXT text
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  {                                                                             \
    SCOPED_TRACE(#setter);                                                      \
    visit(&setter, blocks.block.key, VALUE_##type);                             \
  }
#include "interface/setters.def"
#undef UNDERCUT_SETTER
}

TEST_F(Setters, Each_ChangesItsFieldAndNothingElse) {
  int seen = 0;
  TBlocks expected;
  save_Blocks(expected);
  visit_Setters(expected, "a text", [&](auto* setter, auto& field, const auto* value) {
    expect_Value(field, value);
    EXPECT_FALSE(are_AsSaved(expected)) << "the value is the default: the test shows nothing";
    EXPECT_EQ(setter(value), 0);
    EXPECT_TRUE(are_AsSaved(expected));
    ++seen;
  });
  EXPECT_EQ(seen, 87);
}

TEST_F(Setters, ANullPointer_ChangesNothingAndReturns0) {
  TBlocks blocks;
  save_Blocks(blocks);
  visit_Setters(blocks, "", [&](auto* setter, auto&, const auto*) {
    EXPECT_EQ(setter(nullptr), 0);
    EXPECT_TRUE(are_AsSaved(blocks));
  });
}

TEST_F(Setters, AValueAtAnOddAddress_IsRead) {
  TBlocks expected;
  save_Blocks(expected);
  visit_Setters(expected, "odd", [&](auto* setter, auto& field, const auto* value) {
    using Value = std::remove_const_t<std::remove_pointer_t<decltype(value)>>;
    size_t size = sizeof(Value);
    if (std::is_same_v<Value, char>) size = std::strlen("odd") + 1;
    if (std::is_array_v<std::remove_reference_t<decltype(field)>> && size == 8) size = 32;
    TMisaligned odd;
    expect_Value(field, value);
    EXPECT_EQ(setter(odd.put(value, size)), 0);
    EXPECT_TRUE(are_AsSaved(expected));
  });
}

// Lengths around the end of the field.
class SettersOfTexts : public BlocksTest, public testing::WithParamInterface<size_t> {};

TEST_P(SettersOfTexts, KeepAtMost63CharactersAndLeaveTheNextFieldAlone) {
  const std::string text(GetParam(), 'w');
  TBlocks expected;
  save_Blocks(expected);
  int texts = 0;
  visit_Setters(expected, text.c_str(), [&](auto* setter, auto& field, const auto* value) {
    using Value = std::remove_const_t<std::remove_pointer_t<decltype(value)>>;
    if constexpr (std::is_same_v<Value, char>) {
      expect_Value(field, value);
      EXPECT_EQ(setter(value), 0);
      EXPECT_EQ(std::strlen(field), std::min<size_t>(GetParam(), 63));
      EXPECT_TRUE(are_AsSaved(expected));
      ++texts;
    }
  });
  EXPECT_EQ(texts, 10);
}
INSTANTIATE_TEST_SUITE_P(Lengths, SettersOfTexts, testing::Values(0, 1, 62, 63, 64, 65, 200));

TEST_F(Setters, AShorterText_ReplacesALongerOne) {
  dcm_wrk("cri ini fwd del rnk bwd");
  dcm_wrk("end");
  EXPECT_STREQ(g_Dcm.l_wrk, "end");
  dcm_wrk("");
  EXPECT_STREQ(g_Dcm.l_wrk, "");
}

TEST_F(Setters, ATextOfTheFieldItself_IsHarmless) {
  dcm_wrk("abcdef");
  dcm_wrk(g_Dcm.l_wrk + 2);
  EXPECT_STREQ(g_Dcm.l_wrk, "cdef");
}

TEST_F(Setters, TheTiltLimits_LeaveTheWorkingBracketAlone) {
  const double low = -40.0, high = 41.0;
  gcu_Th0(&low);
  gcu_Th1(&high);
  EXPECT_EQ(g_Gcu.f_th0, -40.0);
  EXPECT_EQ(g_Gcu.f_th1, 41.0);
  EXPECT_EQ(g_Gcu.f_th0_s, -25.0);
  EXPECT_EQ(g_Gcu.f_th1_s, 25.0);
}

TEST_F(Setters, TwoFlagsOf32Bits_TakeOneByteAndKeepTheOtherThree) {
  const uint8_t value = 5;
  ucs_Pgr(&value);
  gcu_Flg(&value);
  EXPECT_EQ(g_UCs.b_pgr, 5u);
  EXPECT_EQ(g_Gcu.n_flg, 5u);
  g_UCs.b_pgr = 0x01020300;
  g_Gcu.n_flg = 0x01020300;
  ucs_Pgr(&value);
  gcu_Flg(&value);
  EXPECT_EQ(g_UCs.b_pgr, 0x01020305u);
  EXPECT_EQ(g_Gcu.n_flg, 0x01020305u);
}

TEST_F(Setters, TheScanBox_IsSetWithAll32BytesAtOnce) {
  const double box[5] = {1.0, 2.0, 3.0, 4.0, 5.0};
  nxn_Box(box);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(g_Nxn.box[i], i + 1.0) << i;
  EXPECT_EQ(g_Nxn.f_dxx, 40.0);
}

TEST_F(Setters, OfTheDecomposition_ShowInItsDumpUnderTheirKeys) {
  int32_t whole = 10;
  uint32_t count = 20;
  uint8_t flag = 30;
  double real = 40.5;
  auto set = [&](int32_t (*setter)(const int32_t*)) {
    ++whole;
    setter(&whole);
  };
  auto set_Count = [&](int32_t (*setter)(const uint32_t*)) {
    ++count;
    setter(&count);
  };
  auto set_Flag = [&](int32_t (*setter)(const uint8_t*)) {
    ++flag;
    setter(&flag);
  };
  auto set_Real = [&](int32_t (*setter)(const double*)) {
    ++real;
    setter(&real);
  };
  for (auto* setter : {dcm_max, dcm_Cnt}) set(setter);
  for (auto* setter : {dcm_Con, dcm_mod}) set_Count(setter);
  for (auto* setter : {dcm_ini, dcm_5ax, dcm_chk, dcm_log, dcm_rti, dcm_prg}) set_Flag(setter);
  for (auto* setter : {dcm_4ax, dcm_aT0, dcm_bT0, dcm_aT1, dcm_bT1, dcm_aT2, dcm_bT2,
                       dcm_nul, dcm_fuz, dcm_srf, dcm_fae, dcm_quo, dcm_Lg0, dcm_Lg1,
                       dcm_win, dcm_Tg0, dcm_Tg1, dcm_Tg2, dcm_Tg3, dcm_Tg4, dcm_len}) {
    set_Real(setter);
  }
  dcm_srt("t0"), dcm_wrk("t1"), dcm_fwd("t2"), dcm_bwd("t3"), dcm_end("t4");
  dcm_uda("t5"), dcm_geo("t6"), dcm_lcs("t7"), dcm_pth("t8");
  EXPECT_EQ(text_Dump(dmp_Dcm, g_Dcm),
            "[CDcmPar]\nn_max=11 \nb_ini=31 \nb_5ax=32 \nw_4ax=41.500000\nn_con=21 \n"
            "a_th0=42.500000\nb_th0=43.500000\na_th1=44.500000\nb_th1=45.500000\n"
            "a_th2=46.500000\nb_th2=47.500000\nw_nul=48.500000\nf_fuz=49.500000\nF_srt=t0 \n"
            "F_srf=50.500000\nF_fae=51.500000\nF_quo=52.500000\nF_cnt=12 \nL_gw0=53.500000\n"
            "L_gw1=54.500000\nT_win=55.500000\nT_gw0=56.500000\nT_gw1=57.500000\n"
            "T_gw2=58.500000\nT_gw3=59.500000\nT_gw4=60.500000\nb_chk=33 \nl_log=34 \nl_wrk=t1 \n"
            "l_fwd=t2 \nl_bwd=t3 \nl_end=t4 \nl_uda=t5 \nl_mod=22 \nl_geo=t6 \nl_lcs=t7 \n"
            "l_len=61.500000\nl_pth=t8 \nb_rti=35 \nb_prg=36 \n");
}

TEST_F(Setters, OfTheUndercutComputations_ShowInTheirDumpUnderTheirKeys) {
  double real = 40.5;
  for (auto* setter : {ucs_Tol, ucs_Dil, ucs_Eps, ucs_Srf, ucs_Off, ucs_Rad, ucs_Lef, ucs_Rig,
                       ucs_Gew, ucs_Res, ucs_Err}) {
    ++real;
    setter(&real);
  }
  uint32_t count = 20;
  for (auto* setter : {ucs_Dbg, ucs_Log, ucs_iCl, ucs_pCl}) {
    ++count;
    setter(&count);
  }
  uint8_t flag = 30;
  for (auto* setter : {ucs_Pgr, ucs_Rti, ucs_Sta}) {
    ++flag;
    setter(&flag);
  }
  ucs_lFi("field");
  EXPECT_EQ(text_Dump(dmp_UCs, g_UCs),
            "[CUCsPar]\nf_tol=41.500000\nf_dil=42.500000\nf_eps=43.500000\nf_srf=44.500000\n"
            "f_off=45.500000\nf_rad=46.500000\nl_ivl=47.500000\nr_ivl=48.500000\n"
            "f_gew=49.500000\nf_res=50.500000\nf_err=51.500000\nb_pgr=31 \nb_dbg=21 \n"
            "i_log=22 \nl_dFi=field \ni_col=23 \np_col=24 \nb_rti=32 \nb_sta=33 \n");
}

TEST_F(Setters, OfTheBlocksWithoutADump_ReachTheirFields) {
  double real = 100.5;
  for (auto* setter :
       {amo_Eps, amo_Dxy, gcu_Phi, gcu_Eps, gcu_Win, nxn_Dxx, nxn_Dyy, gri_Dxx, gri_Dyy, flt_Srf,
        flt_Dep, flt_Vis, con_Wid, prj_off, prj_inc, prj_lim, prj_tol, err_Gew}) {
    setter(&real);
    ++real;
  }
  double expected = 100.5;
  for (double field : {g_Amo.f_eps, g_Amo.f_dxy, g_Gcu.f_phi, g_Gcu.f_eps, g_Gcu.f_win, g_Nxn.f_dxx,
                       g_Nxn.f_dyy, g_Gri.f_dxx, g_Gri.f_dyy, g_Flt.f_srf, g_Flt.f_dep, g_Flt.f_vis,
                       g_Con.f_wid, g_Prj.f_off, g_Prj.f_inc, g_Prj.f_lim, g_Prj.f_tol, g_ErrGew}) {
    EXPECT_EQ(field, expected++);
  }
  uint32_t count = 70;
  for (auto* setter : {amo_Max, gcu_Max, gcu_Dim, gri_Row, gri_Col}) {
    setter(&count);
    ++count;
  }
  count = 70;
  for (uint32_t field : {g_Amo.n_max, g_Gcu.n_max, g_Gcu.n_dim, g_Gri.n_row, g_Gri.n_col}) {
    EXPECT_EQ(field, count++);
  }
  const uint8_t flag = 9;
  gri_Res(&flag);
  EXPECT_EQ(g_Gri.b_res, 9);
}

}  // namespace
