// The two console switches of the decomposition, as a host meets them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "square.h"

namespace {

// What a decomposition of the unit square prints on standard error.
std::string progress_With(uint8_t progress, uint8_t times) {
  TSquareRequest r;
  r.fill();
  std::vector<uint32_t> all = {0, 1};
  TLstU32 roi = {all.data(), 2, 2};
  r.req.rois = {&roi, 1, 1};
  dcm_prg(&progress);
  dcm_rti(&times);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int32_t status = get_Dcm(&r.req, &r.res);
  const std::string shown = testing::internal::GetCapturedStderr();
  testing::internal::GetCapturedStdout();
  const uint8_t off = 0;
  dcm_prg(&off);
  dcm_rti(&off);
  EXPECT_GE(status, 0);
  EXPECT_LE(status, 1);
  return shown;
}

TEST(ProgressSwitch, ShowsNothing_WhileTimesAreOff) { EXPECT_EQ(progress_With(1, 0), ""); }

TEST(ProgressSwitch, ShowsProgress_TogetherWithTimes) { EXPECT_NE(progress_With(1, 1), ""); }

TEST(ProgressSwitch, ShowsNothing_UnlessItIsOn) { EXPECT_EQ(progress_With(0, 1), ""); }

}  // namespace
