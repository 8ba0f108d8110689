#include "host/parameters.h"

#include <set>

#include "host/errors.h"
#include "support.h"

namespace undercut::host {
namespace {

std::string fail_Set(const std::string& text) {
  return catch_Text<UsageError>([&] { parse_Setting(text); });
}

TEST(Parameters, TableHoldsEverySetterOnce) {
  std::set<std::string> setters, names;
  for (const Parameter& p : all_Parameters()) {
    setters.insert(p.setter);
    names.insert(p.name());
  }
  EXPECT_EQ(all_Parameters().size(), 87u);
  EXPECT_EQ(setters.size(), 87u);
  EXPECT_EQ(names.size(), 87u);
}

TEST(Parameters, EveryDefaultPassesItsOwnCheck) {
  for (const Parameter& p : all_Parameters()) {
    std::string text = show_Value(p.standard);
    if (p.kind == Kind::TXT) text = std::get<std::string>(p.standard);
    EXPECT_NO_THROW({ EXPECT_EQ(parse_Value(p, text), p.standard) << p.name(); }) << p.name();
  }
}

TEST(Parameters, EverySetterTakesItsDefault) {
  for (const Parameter& p : all_Parameters()) EXPECT_EQ(p.store(p.standard), 0) << p.name();
}

TEST(Parameters, AreFoundByKeyByNameAndBySetter) {
  EXPECT_STREQ(find_Parameter("n_max").setter, "dcm_max");
  EXPECT_STREQ(find_Parameter("amo.n_max").setter, "amo_Max");
  EXPECT_STREQ(find_Parameter("gcu_Max").setter, "gcu_Max");
  EXPECT_STREQ(find_Parameter("F_srt").setter, "dcm_srt");
}

TEST(Parameters, AKeyOfSeveralBlocksMeansTheOneThatTheDecompositionReads) {
  EXPECT_STREQ(find_Parameter("f_tol").setter, "ucs_Tol");
  EXPECT_STREQ(find_Parameter("b_rti").setter, "dcm_rti");
}

TEST(Parameters, AUniqueKeyOfAnotherBlockNeedsNoBlock) {
  EXPECT_STREQ(find_Parameter("f_wid").setter, "con_Wid");
}

TEST(Parameters, AKeyThatIsNotUnique_ListsItsNames) {
  const std::string text = catch_Text<UsageError>([] { find_Parameter("f_dxx"); });
  EXPECT_TRUE(has_Text(text, "Write one of nxn.f_dxx, gri.f_dxx")) << text;
}

TEST(Parameters, UnknownKey_SuggestsNearNames) {
  EXPECT_TRUE(has_Text(fail_Set("n_mx=1"), "Did you mean dcm.n_max"));
  EXPECT_TRUE(has_Text(fail_Set("t_win=1"), "dcm.T_win"));
  const std::string far = fail_Set("completely_unknown=1");
  EXPECT_TRUE(has_Text(far, "there is no parameter 'completely_unknown'"));
  EXPECT_FALSE(has_Text(far, "Did you mean"));
}

TEST(Parameters, WithoutKeyOrEqualsSign_AreUsageErrors) {
  EXPECT_TRUE(has_Text(fail_Set("n_max"), "KEY=VALUE"));
  EXPECT_TRUE(has_Text(fail_Set("=3"), "KEY=VALUE"));
  EXPECT_TRUE(has_Text(fail_Set(""), "KEY=VALUE"));
}

TEST(Parameters, WholeNumbersMustBeWholeAndFit) {
  EXPECT_EQ(std::get<int64_t>(parse_Setting("n_max=-5").value), -5);
  EXPECT_EQ(std::get<int64_t>(parse_Setting("l_mod=4294967295").value), 4294967295);
  for (const char* text : {"n_max=1.5", "n_max=", "n_max=x", "n_max=1 2"}) {
    EXPECT_TRUE(has_Text(fail_Set(text), "a whole number is needed")) << text;
  }
  for (const char* text : {"n_max=2147483648", "l_mod=-1", "l_mod=4294967296"}) {
    EXPECT_TRUE(has_Text(fail_Set(text), "out of range")) << text;
  }
}

TEST(Parameters, FlagsAreZeroOrOne) {
  EXPECT_EQ(std::get<int64_t>(parse_Setting("b_ini=0").value), 0);
  EXPECT_EQ(std::get<int64_t>(parse_Setting("gcu.n_flg=1").value), 1);
  for (const char* text : {"b_ini=2", "b_ini=-1", "gcu.n_flg=2"}) {
    EXPECT_TRUE(has_Text(fail_Set(text), "out of range")) << text;
  }
  EXPECT_TRUE(has_Text(fail_Set("b_ini=true"), "a whole number"));
}

TEST(Parameters, NumbersMustBeFinite) {
  EXPECT_EQ(std::get<double>(parse_Setting("T_gw0=+1e-3").value), 1e-3);
  for (const char* text : {"T_gw0=nan", "T_gw0=inf", "T_gw0=1e999", "T_gw0=1,5", "T_gw0="}) {
    EXPECT_TRUE(has_Text(fail_Set(text), "a finite number is needed")) << text;
  }
}

TEST(Parameters, RangesHoldAsTheyAreWritten) {
  for (const char* text :
       {"n_con=3", "n_con=0", "a_th0=180", "a_th0=0", "f_fuz=0", "T_win=179.9", "w_4ax=360",
        "gcu.f_th0=-360", "gcu.f_phi=180", "gcu.n_dim=5", "F_cnt=-1", "i_col=4", "p_col=0"}) {
    EXPECT_NO_THROW(parse_Setting(text)) << text;
  }
  for (const char* text :
       {"n_con=4", "a_th0=180.1", "a_th0=-1", "f_fuz=-0.1", "T_win=180", "T_win=0", "F_fae=0",
        "w_nul=91", "gcu.f_th0=-361", "gcu.f_phi=181", "gcu.n_dim=4", "i_col=0"}) {
    EXPECT_TRUE(has_Text(fail_Set(text), "out of range")) << text;
  }
}

TEST(Parameters, TextsHaveAtMost63Characters) {
  EXPECT_NO_THROW(parse_Setting("l_wrk=" + std::string(63, 'a')));
  EXPECT_TRUE(has_Text(fail_Set("l_wrk=" + std::string(64, 'a')), "at most 63"));
  EXPECT_EQ(std::get<std::string>(parse_Setting("l_pth=a=b").value), "a=b");
}

TEST(Parameters, ATextWithAChoiceMustBeOneOfItsWords) {
  EXPECT_EQ(std::get<std::string>(parse_Setting("F_srt=srf").value), "srf");
  EXPECT_TRUE(has_Text(fail_Set("F_srt=area"), "none of the words"));
  EXPECT_TRUE(has_Text(fail_Set("F_srt="), "none of the words"));
}

TEST(Parameters, ABoxIsFourNumbers) {
  const Setting setting = parse_Setting("nxn.box=0, 1,2.5,-3");
  EXPECT_EQ((std::get<std::array<double, 4>>(setting.value)),
            (std::array<double, 4>{0, 1, 2.5, -3}));
  EXPECT_TRUE(has_Text(fail_Set("nxn.box=1,2,3"), "four numbers"));
  EXPECT_TRUE(has_Text(fail_Set("nxn.box=1,2,3,x"), "finite"));
}

}  // namespace
}  // namespace undercut::host
