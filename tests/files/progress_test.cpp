#include "files/progress.h"

#include <ctime>

#include "tests/files/support.h"

namespace undercut {
namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

const std::string kErased = "\r" + std::string(132, ' ') + "\r";

// Every test starts from the state of a fresh process.
class Progress : public testing::Test {
 protected:
  void SetUp() override {
    pgr_Sty = 2;
    pgr_Off = 0;
    pgr_Max = pgr_Sca = 0;
    pgr_Cur = pgr_Aux = pgr_Cnt = 0;
  }
  void TearDown() override { SetUp(); }

  static void begin(int32_t style, uint32_t steps, uint32_t units) {
    pgr_Set(style);
    CaptureStderr();
    pgr_Beg(steps, units);
    GetCapturedStderr();
  }
  static std::string step(uint32_t at) {
    CaptureStderr();
    pgr_Stp(at);
    return GetCapturedStderr();
  }
};

TEST_F(Progress, Begin_StoresTheRun_AndErasesTheLine) {
  pgr_Cur = pgr_Aux = 5;
  CaptureStderr();
  pgr_Beg(200, 100);
  EXPECT_EQ(GetCapturedStderr(), kErased);
  EXPECT_EQ(pgr_Max, 200u);
  EXPECT_EQ(pgr_Sca, 100u);
  EXPECT_EQ(pgr_Cur, 0);
  EXPECT_EQ(pgr_Aux, 0);
}

TEST_F(Progress, Style1_ShowsThePercent) {
  begin(1, 200, 100);
  EXPECT_EQ(step(2), "\r  1 %");
  EXPECT_EQ(step(100), "\r 50 %");
  EXPECT_EQ(step(200), "\r100 %");
}

TEST_F(Progress, Style2_GrowsABar) {
  begin(2, 100, 10);
  EXPECT_EQ(step(10), "\b\b\b\b\b\b=> 10 %");
  EXPECT_EQ(step(39), "\b\b\b\b\b\b==> 39 %");
  EXPECT_EQ(step(100), "\b\b\b\b\b\b=======>100 %");
}

TEST_F(Progress, Style2_DrawsNothingBackwards) {
  begin(2, 100, 10);
  step(50);
  EXPECT_EQ(step(20), "\b\b\b\b\b\b> 20 %");
  EXPECT_EQ(pgr_Cur, 2);
}

TEST_F(Progress, Style3_TurnsABar_BesideACountThatStaysZero) {
  begin(3, 100, 100);
  EXPECT_EQ(step(1), "\r[0] [\\]   1 %");
  EXPECT_EQ(step(2), "\r[0] [|]   2 %");
  EXPECT_EQ(step(3), "\r[0] [/]   3 %");
  EXPECT_EQ(step(4), "\r[0] [-]   4 %");
}

TEST_F(Progress, Style4_ShowsFaces) {
  begin(4, 100, 100);
  EXPECT_EQ(step(1), "\r:-|   1 %");
  EXPECT_EQ(step(2), "\r:-O   2 %");
  EXPECT_EQ(step(3), "\r:-(   3 %");
  EXPECT_EQ(step(4), "\r:-)   4 %");
}

TEST_F(Progress, AnyOtherStyle_IsStyle1) {
  for (const int32_t style : {0, 5, -1, 1000}) {
    begin(style, 200, 100);
    EXPECT_EQ(step(100), "\r 50 %") << style;
  }
}

TEST_F(Progress, TheFirstStyle_IsTheBar) {
  CaptureStderr();
  pgr_Beg(10, 10);
  GetCapturedStderr();
  EXPECT_EQ(step(1), "\b\b\b\b\b\b=> 10 %");
}

TEST_F(Progress, TouchesTheConsole_OnlyWhenTheUnitsChange) {
  begin(1, 1000, 100);
  EXPECT_EQ(step(0), "");
  EXPECT_EQ(step(9), "");
  EXPECT_EQ(step(10), "\r  1 %");
  EXPECT_EQ(step(19), "");
  EXPECT_EQ(pgr_Cur, 1);
}

TEST_F(Progress, Percent_IsCutToAnInteger) {
  begin(1, 3, 3);
  EXPECT_EQ(step(2), "\r 66 %");
}

TEST_F(Progress, StepsBeyondTheRun_ShowMoreThan100Percent) {
  begin(1, 100, 100);
  EXPECT_EQ(step(250), "\r250 %");
  begin(3, 100, 100);
  EXPECT_EQ(step(1003), "\r[0] [/] 1003 %");
}

TEST_F(Progress, SwitchedOff_BeginAndStepDoNothing_ButClearStillErases) {
  begin(1, 100, 100);
  pgr_Dis();
  CaptureStderr();
  pgr_Beg(7, 7);
  pgr_Stp(50);
  EXPECT_EQ(GetCapturedStderr(), "");
  EXPECT_EQ(pgr_Max, 100u);
  EXPECT_EQ(pgr_Cur, 0);
  CaptureStderr();
  pgr_Clr();
  EXPECT_EQ(GetCapturedStderr(), kErased);
  pgr_Ena();
  EXPECT_EQ(step(50), "\r 50 %");
}

TEST_F(Progress, ARunOfNoSteps_ShowsNothing) {
  for (int32_t style = 1; style <= 4; ++style) {
    begin(style, 0, 100);
    EXPECT_EQ(step(0), "");
    EXPECT_EQ(step(1), "");
    EXPECT_EQ(pgr_Cur, 0);
  }
}

TEST_F(Progress, NumbersBeyond32Bits_ShowNothing) {
  begin(1, 1, 0xFFFFFFFF);
  EXPECT_EQ(step(1), "");
  begin(1, 1, 1);
  EXPECT_EQ(step(0xFFFFFFFF), "");
  EXPECT_EQ(step(30000000), "");  // only the percent is too large
  EXPECT_EQ(step(2), "\r200 %");
}

TEST_F(Progress, ARunOfNoUnits_ShowsNothing) {
  begin(1, 100, 0);
  EXPECT_EQ(step(100), "");
}

// A timer that started the given time ago.
CTimer started(uint32_t minutes, uint32_t seconds) {
  CTimer timer;
  timer.start = clk_Mil() - (60 * minutes + seconds) * 1000 - 400;
  return timer;
}

// The text without its milliseconds, which run on while the test does.
std::string without_Mil(const std::string& text) {
  const size_t mil = text.find(" mil] \n");
  return mil == std::string::npos || mil < 3 ? text : text.substr(0, mil - 3);
}

TEST(Timer, IsOnStandardOutput_AndStartsAtZero) {
  const CTimer timer;
  EXPECT_EQ(timer.out, stdout);
  EXPECT_EQ(timer.start, 0u);
}

TEST(Timer, Begin_PrintsTheLabelAsItIs) {
  CTimer timer;
  CaptureStdout();
  tim_Beg(timer, "07. Fwd.  :: 100 %d");
  EXPECT_EQ(GetCapturedStdout(), "07. Fwd.  :: 100 %d");
  EXPECT_LT(tim_Sec(timer), 5.0);
}

TEST(Timer, Clk_Starts_InSilence) {
  CTimer timer = started(5, 0);
  CaptureStdout();
  tim_Clk(timer);
  EXPECT_EQ(GetCapturedStdout(), "");
  EXPECT_LT(tim_Sec(timer), 5.0);
}

TEST(Timer, End_PrintsMinutesSecondsAndMilliseconds) {
  const CTimer timer = started(3, 7);
  CaptureStdout();
  tim_End(timer);
  const std::string text = GetCapturedStdout();
  EXPECT_EQ(without_Mil(text), "... done ! :: [ 3 min :  7 sec : ");
  EXPECT_EQ(text.size(), std::string("... done ! :: [ 3 min :  7 sec : 400 mil] \n").size());
}

TEST(Timer, Lbl_PrintsTheLabelInFront) {
  const CTimer timer = started(0, 59);
  CaptureStdout();
  tim_Lbl(timer, "07. Fwd.");
  EXPECT_EQ(without_Mil(GetCapturedStdout()), "07. Fwd.... done ! :: [ 0 min : 59 sec : ");
}

TEST(Timer, Minutes_DoNotWrapAtAnHour) {
  const CTimer timer = started(120, 5);
  CaptureStdout();
  tim_End(timer);
  EXPECT_EQ(without_Mil(GetCapturedStdout()), "... done ! :: [120 min :  5 sec : ");
}

TEST(Timer, Sec_HoldsForTwentyDays) {
  const CTimer timer = started(20 * 24 * 60, 0);
  EXPECT_NEAR(tim_Sec(timer), 20 * 24 * 3600.0, 1.0);
}

TEST(Timer, Sec_RunsWithTheClock) {
  CTimer timer;
  tim_Clk(timer);
  const std::clock_t start = std::clock();
  while (std::clock() - start < CLOCKS_PER_SEC / 20) {
  }
  EXPECT_GE(tim_Sec(timer), 0.049);
  EXPECT_LT(tim_Sec(timer), 1.0);
}

TEST(Timer, AClockThatStepsBack_IsHarmless) {
  CTimer timer;
  timer.start = clk_Mil() + 3600000;
  EXPECT_LT(tim_Sec(timer), 0.0);
  CaptureStdout();
  tim_End(timer);
  EXPECT_EQ(GetCapturedStdout().substr(0, 15), "... done ! :: [");
}

class MakPth : public InFolder {};

TEST_F(MakPth, MakesTheFoldersOfAPath) {
  mak_Pth("./dbg/07/map/");
  EXPECT_TRUE(exists("dbg/07/map"));
  mak_Pth(nullptr);
  EXPECT_EQ(count_Files(), 1u);
}

}  // namespace
}  // namespace undercut
