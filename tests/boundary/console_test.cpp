// What get_Dcm prints: a line for each stage on standard output, progress on standard error.
#include <cmath>

#include "tests/boundary/dcm_request.h"
#include "tests/support/patterns.h"

using undercut::tests::Pattern;

namespace {

class Console : public Decomposition {
 protected:
  struct TShown {
    std::string out, err;
    int32_t status;
  };
  static TShown call_With(TDcmRequest& r, uint8_t times, uint8_t progress) {
    defaults::set(dcm_rti, times);
    defaults::set(dcm_prg, progress);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    TShown shown;
    shown.status = r.call();
    std::fflush(stdout);
    shown.err = testing::internal::GetCapturedStderr();
    shown.out = testing::internal::GetCapturedStdout();
    return shown;
  }
  static std::vector<std::string> split(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  // The label of each line, without its padding.
  static std::vector<std::string> labels_Of(const std::string& text) {
    std::vector<std::string> labels;
    for (const std::string& line : split(text)) {
      const std::string label = line.substr(0, 50);
      labels.push_back(label.substr(0, label.find_last_not_of(' ') + 1));
    }
    return labels;
  }
};

const std::vector<std::string> kStart = {"01. Load  :: [files [msh, roi]]",
                                         "02. Build :: AABB-Tree",
                                         "03. Ini.  :: dynamic UcA map with msh"};
const std::vector<std::string> kRoi = {"04. Calc. :: and sort UcA seeds",
                                       "05. Ini.  :: dynamic UcA map with roi"};
const std::vector<std::string> kPass = {"07. Fwd.  :: greedy Bfs UcA growing",
                                        "08. Del.  :: delete small UcA regions",
                                        "09. Rnk.  :: ranking of trgl.s and UcA regions",
                                        "10. Bwd.  :: balancing UcA regions",
                                        "11. Fil.  :: filter/fill/smooth of UcA regions",
                                        "12. Fil.  :: small/non significant UcA regions"};

std::vector<std::string> join(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// A shallow dome that one region takes whole, in one pass.
bodies::TBody make_Dome() {
  constexpr uint32_t kSide = 12;
  bodies::TBody body;
  for (uint32_t y = 0; y <= kSide; ++y)
    for (uint32_t x = 0; x <= kSide; ++x) {
      const double u = x - 5.7, v = y - 6.1;
      body.points.push_back({u, v, -0.02 * (u * u + 1.1 * v * v) + 0.01 * std::sin(u * v)});
    }
  for (uint32_t y = 0; y < kSide; ++y)
    for (uint32_t x = 0; x < kSide; ++x) {
      const uint32_t a = y * (kSide + 1) + x, d = a + kSide + 1;
      body.triangles.push_back({a, a + 1, d + 1});
      body.triangles.push_back({a, d + 1, d});
    }
  return body;
}

TEST_F(Console, ShowsEachStageOfOnePass_InOrder) {
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 0);
  ASSERT_EQ(shown.status, 0);
  ASSERT_EQ(r.rois[0].count, 0u);
  EXPECT_EQ(labels_Of(shown.out), join({kStart, kRoi, kPass}));
  EXPECT_EQ(shown.err, "");
}

TEST_F(Console, ShowsTheStagesOfEachPassAndRegionOfInterest) {
  defaults::set(dcm_max, 1);
  defaults::set(dcm_Cnt, 1);
  TDcmRequest r(small_Body());
  r.add_Halves();
  r.lists.insert(r.lists.begin() + 1, std::vector<uint32_t>());  // no stage runs for it
  const TShown shown = call_With(r, 1, 0);
  ASSERT_EQ(shown.status, 0);
  EXPECT_EQ(labels_Of(shown.out), join({kStart, kRoi, kPass, kPass, kRoi, kPass, kPass}));
}

TEST_F(Console, PadsLabelsTo50Columns_AndTellsMinutesSecondsMilliseconds) {
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 0);
  const Pattern form(
      ".{50}\\.\\.\\. done ! :: \\[[ 0-9][0-9] min : [ 0-9][0-9] sec : [ 0-9]{2}[0-9] mil\\] ");
  const auto lines = split(shown.out);
  ASSERT_EQ(lines.size(), 11u);
  for (const std::string& line : lines) {
    EXPECT_TRUE(form.match(line)) << "'" << line << "'";
    EXPECT_EQ(line.find("... done"), 50u);
  }
  EXPECT_EQ(shown.out.back(), '\n');
}

TEST_F(Console, ShowsNothing_UnlessItIsOn) {
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 0, 0);
  EXPECT_EQ(shown.out, "");
  EXPECT_EQ(shown.err, "");
}

TEST_F(Console, ShowsNoProgress_WhileTimesAreOff) {
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 0, 1);
  EXPECT_EQ(shown.out, "");
  EXPECT_EQ(shown.err, "");
}

TEST_F(Console, ShowsProgressOfGrowthAndBalancing_OnStandardError) {
  TDcmRequest plain(make_Dome()), r(make_Dome());
  plain.add(0, plain.triangles());
  r.add(0, r.triangles());
  const auto labels = labels_Of(call_With(plain, 1, 0).out);
  const TShown shown = call_With(r, 1, 1);
  EXPECT_EQ(labels_Of(shown.out), labels) << "the same lines, in the same order";
  // The line is erased when each of the two stages begins and when it ends.
  const std::string erased = "\r" + std::string(132, ' ') + "\r";
  EXPECT_EQ(count(shown.err, erased), 4);
  EXPECT_EQ(shown.err.find(erased), 0u);
  EXPECT_EQ(shown.err.rfind(erased), shown.err.size() - erased.size());
  // Growth takes each triangle but the seed, so it reaches the last hundredth but one at least.
  EXPECT_NE(shown.err.find("\r[0] [/]  99 %"), std::string::npos);
  std::string rest = shown.err;
  for (size_t at; (at = rest.find(erased)) != std::string::npos;) rest.erase(at, erased.size());
  EXPECT_TRUE(Pattern("(\r\\[0\\] \\[[-\\\\|/]\\] [ 0-9]{2}[0-9] %)+").match(rest));
}

TEST_F(Console, ShowsProgressAfterTheLine_OnlyInItsTwoStages) {
  // With progress the label of the two stages is printed at their end, in one piece with the time.
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 1);
  const auto lines = split(shown.out);
  ASSERT_EQ(lines.size(), 11u);
  for (const std::string& line : lines) EXPECT_EQ(count(line, "... done !"), 1);
}

TEST_F(Console, ClosesTheLineOfAFailedStage_InBothAttempts) {
  dcm_srt("area");  // no score of deletion
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 0);
  EXPECT_EQ(shown.status, 1);
  const std::vector<std::string> begun = {kPass[0], kPass[1]};
  EXPECT_EQ(labels_Of(shown.out), join({kStart, kRoi, begun, kRoi, begun}));
  for (const std::string& line : split(shown.out)) EXPECT_EQ(count(line, "... done !"), 1) << line;
}

TEST_F(Console, ClosesTheLineOfAFailedStage_WithProgressToo) {
  defaults::set(dcm_win, 200.0);  // no aperture: growth fails
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 1);
  EXPECT_EQ(shown.status, 1);
  const std::vector<std::string> begun = {kPass[0]};
  EXPECT_EQ(labels_Of(shown.out), join({kStart, kRoi, begun, kRoi, begun}));
  for (const std::string& line : split(shown.out)) EXPECT_EQ(count(line, "... done !"), 1) << line;
  const std::string erased = "\r" + std::string(132, ' ') + "\r";
  EXPECT_EQ(shown.err.rfind(erased), shown.err.size() - erased.size());
}

TEST_F(Console, ClosesTheLineOfAFailedStage_ThatEndsTheCall) {
  defaults::set(dcm_Con, 4);
  TDcmRequest r(make_Dome());
  r.add(0, r.triangles());
  const TShown shown = call_With(r, 1, 0);
  EXPECT_EQ(shown.status, 8);
  EXPECT_EQ(labels_Of(shown.out), (std::vector<std::string>{kStart[0], kStart[1]}));
  EXPECT_EQ(count(shown.out, "... done !"), 2);
}

TEST_F(Console, ShowsTheRepairBetweenTheAttempts) {
  dcm_srt("area");
  defaults::set(dcm_chk, 1);
  for (const bool bad_index : {false, true}) {
    TDcmRequest r(make_Dome());
    r.add(0, r.triangles());
    if (bad_index) r.lists[0].push_back(r.triangles());
    const TShown shown = call_With(r, 1, 0);
    const std::vector<std::string> check = {"0x. Check :: and repair UcA region"};
    const std::vector<std::string> begun = {kPass[0], kPass[1]};
    // A list that names no triangle of the mesh fails before the first stage.
    EXPECT_EQ(labels_Of(shown.out),
              bad_index ? join({kStart, check}) : join({kStart, kRoi, begun, check, kRoi, begun}));
  }
}

}  // namespace
