#include "host/report.h"

#include <nlohmann/json.hpp>

#include <cmath>

#include <set>
#include <sstream>

#include "host/capture.h"
#include "host/errors.h"
#include "host/output.h"
#include "support.h"

namespace undercut::host {
namespace {

// A strip of six triangles: 0 to 2 in one region, 3 in another, 4 free, 5 not asked for.
struct Example {
  Part part;
  Prepared prepared;
  Climb climb;
  Answer answer;

  Example() {
    part.path = "strip.stl";
    for (uint32_t i = 0; i < 8; ++i) part.mesh.vertices.push_back({1.0 * i, i % 2 ? 1.0 : 0.0, 0});
    for (uint32_t i = 0; i < 6; ++i) part.mesh.triangles.push_back({i, i + 1, i + 2});
    prepared = keep_Plain(part.mesh);
    const T3DRAY down{{1, 2, 3}, {0, 0, -2}};
    const T3DRAY side{{4, 5, 6}, {-1, 0, 0}};
    const T3DFRM frame{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}};
    Settled settled;
    settled.patch.halvings = 1;
    settled.patch.triangles = {0, 1, 2, 3, 4};
    settled.aperture = 40.0;
    settled.regions.push_back({{2, 0, 1}, down, frame});
    settled.regions.push_back({{3}, side, frame});
    climb.settled.push_back(settled);
    climb.notes.push_back({1, 0, 55.0, 2, Tilt::kBand, false, 1, 1, 5, 11, 11});
    climb.notes.push_back({2, 0, 40.0, 0, Tilt::kBand, true, 1, 0, 5, 0, 0});
    climb.calls = 2;
    answer = assemble_Answer(part, prepared, {{"list.txt", {4, 3, 2, 1, 0}, 1}}, climb);
    answer.times = {{"01. Load", 5, 2}};
    answer.status = 1;
  }
};

TEST(Answer, TellsRegionsInTheFilesTrianglesWithTheAxisTowardsTheTool) {
  const Example e;
  ASSERT_EQ(e.answer.rois.size(), 1u);
  const RoiAnswer& roi = e.answer.rois[0];
  ASSERT_EQ(roi.regions.size(), 2u);
  EXPECT_EQ(roi.regions[0].triangles, std::vector<uint32_t>({0, 1, 2}));
  EXPECT_EQ(roi.regions[0].axis.z, 1.0);
  EXPECT_EQ(roi.regions[1].axis.x, 1.0);
  EXPECT_EQ(roi.regions[1].number, 2u);
  EXPECT_EQ(roi.free, std::vector<uint32_t>({4}));
  EXPECT_DOUBLE_EQ(roi.area, 5.0);
  EXPECT_DOUBLE_EQ(roi.covered, 4.0);
  EXPECT_EQ(roi.first, 11);
  EXPECT_FALSE(roi.failed());
  EXPECT_EQ(e.answer.region_of, std::vector<int32_t>({1, 1, 1, 2, 0, -1}));
}

TEST(Answer, TurnsAxisCentreAndFrameBackIntoTheFilesCoordinates) {
  Example e;
  e.prepared.rotation = rotate_Up({0, 1, 0});
  e.answer = assemble_Answer(e.part, e.prepared, {{"list.txt", {0, 1, 2, 3}, 0}}, e.climb);
  const Region& region = e.answer.rois[0].regions[0];
  EXPECT_EQ(region.axis.y, 1.0);
  EXPECT_EQ(region.frame.z.y, 1.0);
  EXPECT_EQ(region.centre.y, 3.0);
}

TEST(Answer, OfARefinedTriangleTheLargestShareWins_AndARegionLeftEmptyIsDropped) {
  Example e;
  // Triangle 0 in three pieces of areas 1, 2, 4 of seven; the others whole.
  Mesh& mesh = e.prepared.mesh;
  e.prepared.origin = {0, 0, 0, 1, 2};
  mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 2, 0}, {0, 4, 0}};
  mesh.triangles = {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}, {0, 1, 2}, {0, 1, 2}};
  e.prepared.apart.assign(5, false);
  e.part.mesh.triangles.resize(3);
  e.climb.settled[0].regions[0].triangles = {0, 1};
  e.climb.settled[0].regions[1].triangles = {2, 3};
  const Answer answer = assemble_Answer(e.part, e.prepared, {{"r", {0, 1, 2}, 0}}, e.climb);
  ASSERT_EQ(answer.rois[0].regions.size(), 1u);
  EXPECT_EQ(answer.rois[0].regions[0].triangles, std::vector<uint32_t>({0, 1}));
  EXPECT_EQ(answer.rois[0].regions[0].number, 1u);
  EXPECT_EQ(answer.region_of, std::vector<int32_t>({1, 1, 0}));
}

TEST(Answer, TrianglesSetApartAreNotOfferedAndJoinTheRegionAround) {
  Example e;
  e.prepared.apart[1] = true;
  const std::vector<Roi> rois = {{"r", {0, 1, 2, 3, 4}, 0}};
  const std::vector<Patch> patches = make_Patches(e.part, e.prepared, rois);
  EXPECT_EQ(patches[0].triangles, std::vector<uint32_t>({0, 2, 3, 4}));
  e.climb.settled[0].regions[0].triangles = {0, 2};
  const Answer answer = assemble_Answer(e.part, e.prepared, rois, e.climb);
  EXPECT_EQ(answer.rois[0].regions[0].triangles, std::vector<uint32_t>({0, 1, 2}));
  EXPECT_EQ(answer.rois[0].set_apart, 1u);
}

TEST(Answer, APatchGivenUp_IsAFailureWithItsTrianglesFree) {
  Example e;
  e.climb.given_up.push_back({0, 12, {4}});
  const Answer answer = assemble_Answer(e.part, e.prepared, {{"r", {0, 1, 2, 3, 4}, 0}}, e.climb);
  EXPECT_TRUE(answer.failed());
  EXPECT_EQ(answer.rois[0].given_up, 1u);
  EXPECT_EQ(answer.rois[0].halvings, 12u);
}

TEST(Answer, ATriangleInTwoRegionsOfInterest_ShowsTheFirstRegion) {
  Example e;
  Settled second = e.climb.settled[0];
  second.patch.roi = 1;
  e.climb.settled.push_back(second);
  const Answer answer =
      assemble_Answer(e.part, e.prepared, {{"a", {3, 4}, 0}, {"b", {0, 1, 2, 3, 5}, 0}}, e.climb);
  EXPECT_EQ(answer.region_of, std::vector<int32_t>({2, 2, 2, 1, 0, 0}));
  EXPECT_EQ(answer.regions, 3u);
}

std::vector<std::string> list_Keys(const Json& json) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : json.items()) keys.push_back(key);
  return keys;
}

TEST(JsonReport, KeysAndTheirOrderAreFixed) {
  const Example e;
  const Json json = make_Json(e.part, {}, e.answer);
  using Keys = std::vector<std::string>;
  EXPECT_EQ(list_Keys(json), Keys({"schema", "program", "units", "input", "search", "preparation",
                                   "parameters", "status", "library_status", "calls", "regions",
                                   "area", "covered", "regions_of_interest", "elapsed", "stages"}));
  EXPECT_EQ(list_Keys(json["input"]),
            Keys({"path", "triangles", "vertices", "welded", "area", "degenerate"}));
  EXPECT_EQ(list_Keys(json["preparation"]),
            Keys({"plain", "up", "displacement", "needle", "cut", "max_edge"}));
  const Json& roi = json["regions_of_interest"][0];
  EXPECT_EQ(list_Keys(roi), Keys({"index", "source", "status", "codes", "count", "repeated", "area",
                                  "covered", "needed", "regions", "free"}));
  EXPECT_EQ(list_Keys(roi["needed"]),
            Keys({"calls", "narrowest_aperture", "halvings", "set_apart", "given_up", "attempts"}));
  EXPECT_EQ(list_Keys(roi["needed"]["attempts"][0]),
            Keys({"call", "aperture", "position", "tilt", "keep_small", "patches", "triangles",
                  "failed", "first", "second"}));
  EXPECT_EQ(list_Keys(roi["regions"][0]),
            Keys({"number", "count", "area", "axis", "centre", "frame", "aperture", "seen", "rim",
                  "no_rim", "triangles"}));
  EXPECT_EQ(list_Keys(roi["free"]), Keys({"count", "area", "triangles"}));
}

TEST(JsonReport, EveryKeyIsToldInTheManual) {
  const Example e;
  const std::string manual = load_File(fs::path(UNDERCUT_SOURCE) / "docs/json.md");
  const Json json = make_Json(e.part, {}, e.answer);
  const auto check = [&](const auto& self, const Json& node) -> void {
    for (const auto& [key, value] : node.items()) {
      if (node.is_object()) {
        EXPECT_TRUE(has_Text(manual, "`" + key + "`")) << key;
      }
      if (value.is_structured()) self(self, value);
    }
  };
  check(check, json);
}

TEST(JsonReport, TellsWhatWasFound) {
  Example e;
  DecomposeOptions options;
  options.settings = {parse_Setting("n_con=3"), parse_Setting("F_srt=srf")};
  const Json json = Json::parse(print_Json(make_Json(e.part, options, e.answer)));
  EXPECT_EQ(json["parameters"], Json({{"dcm.n_con", 3}, {"dcm.F_srt", "srf"}}));
  EXPECT_EQ(json["covered"], 0.8);
  const Json& roi = json["regions_of_interest"][0];
  EXPECT_EQ(roi["status"], "done");
  EXPECT_EQ(roi["regions"][0]["axis"], Json({0.0, 0.0, 1.0}));
  EXPECT_EQ(roi["regions"][0]["triangles"], Json({0, 1, 2}));
  EXPECT_EQ(roi["free"]["triangles"], Json({4}));
  EXPECT_EQ(roi["needed"]["attempts"], Json({{{"call", 1},
                                              {"aperture", 55.0},
                                              {"position", 2},
                                              {"tilt", "band"},
                                              {"keep_small", false},
                                              {"patches", 1},
                                              {"triangles", 5},
                                              {"failed", 1},
                                              {"first", 11},
                                              {"second", 11}},
                                             {{"call", 2},
                                              {"aperture", 40.0},
                                              {"position", 0},
                                              {"tilt", "band"},
                                              {"keep_small", true},
                                              {"patches", 1},
                                              {"triangles", 5},
                                              {"failed", 0},
                                              {"first", 0},
                                              {"second", 0}}}));
  EXPECT_EQ(json["stages"][0]["ms"], 5);
}

TEST(JsonReport, PlainTellsThatNothingWasDone) {
  const Example e;
  DecomposeOptions options;
  EXPECT_EQ(make_Json(e.part, options, e.answer)["preparation"]["cut"], true);
  options.plain = true;
  EXPECT_EQ(make_Json(e.part, options, e.answer)["preparation"], Json({{"plain", true},
                                                                       {"up", {0.0, 0.0, 1.0}},
                                                                       {"displacement", 0.0},
                                                                       {"needle", 0.0},
                                                                       {"cut", false},
                                                                       {"max_edge", nullptr}}));
}

TEST(JsonReport, PutsListsOfNumbersOnOneLine) {
  EXPECT_EQ(print_Json({{"a", {1, 2}}, {"b", {{"c", Json::array()}, {"d", {{{"e", 1}}}}}}}),
            "{\n  \"a\": [1,2],\n  \"b\": {\n    \"c\": [],\n    \"d\": [\n      {\"e\":1}\n    "
            "]\n  }\n}\n");
}

TEST(JsonReport, BytesThatAreNoUtf8_DoNoHarm) {
  Example e;
  e.part.path = "a\xFF.stl";
  EXPECT_TRUE(Json::accept(print_Json(make_Json(e.part, {}, e.answer))));
}

TEST(JsonReport, ARegionWithoutARim_SaysWhy) {
  Example e;
  e.answer.rois[0].regions[0].sight = {2.25, 0.75, std::nan(""), 0, 0};
  e.answer.rois[0].regions[0].rim.failure = "too small";
  RimCurve curve;
  curve.flat = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}};
  curve.length = 5.0;
  curve.area = 1.0;
  e.answer.rois[0].regions[1].rim.curves = {curve};
  const Json json = Json::parse(print_Json(make_Json(e.part, {}, e.answer)));
  const Json& regions = json["regions_of_interest"][0]["regions"];
  EXPECT_TRUE(regions[0]["rim"].is_null());
  EXPECT_EQ(regions[0]["no_rim"], "too small");
  EXPECT_TRUE(regions[0]["seen"]["rim_share"].is_null());
  EXPECT_EQ(regions[0]["seen"]["share"], 0.75);
  EXPECT_TRUE(regions[1]["no_rim"].is_null());
  EXPECT_EQ(regions[1]["rim"],
            Json::parse(R"([{"closed":true,"hole":false,"count":3,"length":5.0,"area":1.0,
                            "points":[[0.0,0.0],[2.0,0.0],[2.0,1.0]]}])"));
}

TEST(TableReport, NamesRegionsSharesAndWhatWasNeeded) {
  Example e;
  e.answer.rois[0].regions[0].sight = {2.25, 0.75, 0.5, 8, 4};
  e.answer.rois[0].regions[1].sight = {1.0, 1.0, std::nan(""), 0, 0};
  std::ostringstream out;
  write_Table(out, e.part, {}, e.answer);
  const std::string text = out.str();
  EXPECT_TRUE(has_Text(text, "strip.stl: 6 triangles, 8 vertices")) << text;
  EXPECT_TRUE(has_Text(text, "(list.txt): done; 2 calls, aperture down to 40 deg, halved 1 time"));
  EXPECT_TRUE(has_Text(text,
                       "1           3         3.000    60.0 %    75.0 %    50.0 %     0.0000   "
                       "0.0000   1.0000"))
      << text;
  EXPECT_TRUE(has_Text(text, "20.0 %   100.0 %         -     1.0000")) << "no rim, no share";
  EXPECT_TRUE(has_Text(text, "1 repeated entry of the list left out"));
  EXPECT_TRUE(has_Text(text, "2 regions cover 80.0 % of 5.000 mm2"));
  EXPECT_FALSE(has_Text(text, "-0.0000"));
}

uint32_t get_U32(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (size_t k = 0; k < 4; ++k) {
    value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + k])) << (8 * k);
  }
  return value;
}

TEST(PlyReport, HoldsEveryTriangleWithColourAndRegion) {
  const Example e;
  std::ostringstream out;
  write_Ply(out, e.part, e.answer);
  const std::string bytes = out.str();
  const size_t body = bytes.find("end_header\n") + 11;
  const std::string head = bytes.substr(0, body);
  EXPECT_TRUE(has_Text(head, "format binary_little_endian 1.0"));
  EXPECT_TRUE(has_Text(head, "element vertex 8\n"));
  EXPECT_TRUE(has_Text(head, "element face 6\n"));
  EXPECT_TRUE(has_Text(head, "property int region\n"));
  ASSERT_EQ(bytes.size(), body + 8 * 24 + 6 * 20);
  for (uint32_t i = 0; i < 6; ++i) {
    const size_t at = body + 8 * 24 + 20 * i;
    EXPECT_EQ(bytes[at], 3);
    EXPECT_EQ(get_U32(bytes, at + 1), i);
    EXPECT_EQ(get_U32(bytes, at + 9), i + 2);
    EXPECT_EQ(static_cast<uint8_t>(bytes[at + 13]), pick_Colour(e.answer.region_of[i])[0]);
    EXPECT_EQ(static_cast<int32_t>(get_U32(bytes, at + 16)), e.answer.region_of[i]);
  }
}

TEST(PlyReport, ColoursOfTheFirstRegionsDiffer) {
  std::set<std::array<uint8_t, 3>> colours;
  for (int32_t region = -1; region < 60; ++region) colours.insert(pick_Colour(region));
  EXPECT_EQ(colours.size(), 61u);
}

TEST(StageTimes, AreReadFromTheLibrarysLinesAndAddedUp) {
  std::vector<StageTime> times;
  add_StageTimes(
      "01. Load                                          ... done ! :: [ 0 min :  0 sec :  12 mil] "
      "\n"
      "noise\n\r   \r07. Fwd.  :: x  ... done ! :: [ 2 min :  3 sec : 400 mil] \n"
      "01. Load ... done ! :: [ 0 min :  1 sec :   5 mil] \n... done ! :: [broken\n",
      times);
  ASSERT_EQ(times.size(), 2u);
  EXPECT_EQ(times[0].stage, "01. Load");
  EXPECT_EQ(times[0].ms, 1017u);
  EXPECT_EQ(times[0].runs, 2u);
  EXPECT_EQ(times[1].stage, "07. Fwd.  :: x");
  EXPECT_EQ(times[1].ms, 123400u);
}

TEST(Capture, HoldsBackWhatIsPrintedAndGivesStandardOutputBack) {
  testing::internal::CaptureStdout();
  std::printf("before ");
  {
    Capture capture;
    std::printf("inside");
    EXPECT_EQ(capture.finish(), "inside");
  }
  try {
    Capture capture;
    std::printf("lost");
    throw 1;
  } catch (int) {
  }
  std::printf("after");
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "before after");
}

TEST(Output, FilesAppearAtTheCommitOnly) {
  Folder folder;
  const fs::path path = folder.path / "a/b";
  {
    OutputFolder output(path, {"x.txt", "y.txt"});
    EXPECT_TRUE(fs::is_empty(path));
    output.file(0) << "one";
    EXPECT_FALSE(fs::exists(path / "x.txt"));
    output.commit();
  }
  EXPECT_EQ(load_File(path / "x.txt"), "one");
  EXPECT_TRUE(fs::exists(path / "y.txt"));
  EXPECT_EQ(std::distance(fs::directory_iterator(path), fs::directory_iterator()), 2);
}

TEST(Output, WithoutACommit_NothingIsLeft) {
  Folder folder;
  { OutputFolder output(folder.path / "a/b", {"x.txt"}); }
  EXPECT_TRUE(fs::is_empty(folder.path));
}

TEST(Output, WithoutACommit_OldResultsStay) {
  Folder folder;
  folder.write("x.txt", "old");
  { OutputFolder output(folder.path, {"x.txt"}); }
  EXPECT_EQ(load_File(folder.path / "x.txt"), "old");
}

TEST(Output, AFileInTheWay_IsToldAtOnce) {
  Folder folder;
  folder.write("a", "");
  EXPECT_TRUE(has_Text(catch_Text<RunError>([&] { OutputFolder(folder.path / "a/b", {"x"}); }),
                       "cannot be written"));
}

TEST(Output, AFolderInTheWayOfAFile_LeavesNothingRenamed) {
  Folder folder;
  fs::create_directory(folder.path / "y");
  EXPECT_TRUE(has_Text(catch_Text<RunError>([&] {
                         OutputFolder output(folder.path, {"x", "y"});
                         output.commit();
                       }),
                       "in the way"));
  EXPECT_FALSE(fs::exists(folder.path / "x"));
}

}  // namespace
}  // namespace undercut::host
