// Runs the built command as a user does.
#include <nlohmann/json.hpp>

#include <sstream>

#include "host/command.h"
#include "host/library_call.h"
#include "host/part.h"
#include "support.h"

namespace undercut::host {
namespace {

using Json = nlohmann::ordered_json;

struct Command : testing::Test {
  Folder folder;

  void SetUp() override { folder.write("part.stl", make_BinaryStl(make_Dome(12))); }
  Ran run(const std::string& arguments) const { return run_Built(folder, arguments); }
  bool has_Results(const std::string& name = "regions") const {
    return fs::exists(folder.path / name / "regions.ply") ||
           fs::exists(folder.path / name / "regions.json");
  }
};

TEST_F(Command, Decompose_WritesResultsAndATable) {
  const Ran ran = run("decompose part.stl --whole");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "part.stl: 288 triangles, 169 vertices")) << ran.out;
  EXPECT_TRUE(has_Text(ran.out, "Region of interest 0 (whole mesh): done"));
  EXPECT_TRUE(
      has_Text(ran.out, "Written: regions/regions.ply, regions/regions.json, regions/rims.pol"));
  EXPECT_EQ(ran.err, "");
  const Json json = Json::parse(load_File(folder.path / "regions/regions.json"));
  EXPECT_EQ(json["input"]["triangles"], 288);
  EXPECT_TRUE(fs::exists(folder.path / "regions/regions.ply"));
}

TEST_F(Command, Decompose_LeavesNoTemporaryFiles) {
  run("decompose part.stl --whole -o out/deep");
  EXPECT_EQ(
      std::distance(fs::directory_iterator(folder.path / "out/deep"), fs::directory_iterator()), 3);
}

TEST_F(Command, Decompose_ADomeIsCoveredByRegionsReachedFromAbove) {
  const Ran ran = run("decompose part.stl --whole --json --set F_quo=0");
  const Json json = Json::parse(ran.out);
  EXPECT_EQ(json["status"], "done");
  EXPECT_GT(json["covered"].get<double>(), 0.5);
  for (const Json& region : json["regions_of_interest"][0]["regions"]) {
    EXPECT_GT(region["axis"][2].get<double>(), 0.5);
  }
}

TEST_F(Command, Json_PrintsTheFileAndNothingElse) {
  const Ran ran = run("decompose part.stl --whole --json --set b_rti=1 --set b_prg=1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.out, load_File(folder.path / "regions/regions.json"));
  EXPECT_TRUE(Json::accept(ran.out));
  EXPECT_EQ(ran.err, "");
}

TEST_F(Command, Json_TellsTheTimeOfEachStage) {
  const Json json = Json::parse(run("decompose part.stl --whole --json").out);
  ASSERT_FALSE(json["stages"].empty());
  EXPECT_TRUE(has_Text(json["stages"][0]["stage"], "01. Load"));
}

TEST_F(Command, EveryTriangleOfARegionOfInterest_IsInOneRegionOrFree) {
  folder.write("a.txt", "0\n1\n2\n3\n# more\n10\n");
  folder.write("b.txt", "20\n21\n22\n");
  const Json json = Json::parse(run("decompose part.stl --json --roi a.txt --roi b.txt").out);
  const std::vector<std::vector<uint32_t>> expected = {{0, 1, 2, 3, 10}, {20, 21, 22}};
  for (size_t i = 0; i < 2; ++i) {
    const Json& roi = json["regions_of_interest"][i];
    auto all = roi["free"]["triangles"].get<std::vector<uint32_t>>();
    for (const Json& region : roi["regions"]) {
      const auto list = region["triangles"].get<std::vector<uint32_t>>();
      EXPECT_EQ(region["count"], list.size());
      all.insert(all.end(), list.begin(), list.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(all, expected[i]);
  }
}

TEST_F(Command, UpAndMaxEdge_AnswerInTheFilesTriangles) {
  const Ran ran = run("decompose part.stl --json --up -1,0,0.5 --max-edge 0.5");
  ASSERT_EQ(ran.status, 0) << ran.err;
  const Json json = Json::parse(ran.out);
  EXPECT_EQ(json["preparation"]["up"], Json({-1.0, 0.0, 0.5}));
  EXPECT_EQ(json["regions_of_interest"][0]["count"], 288);
}

TEST_F(Command, Plain_HandsOverTheMeshUntouchedInOneCall) {
  const fs::path path = fs::path(UNDERCUT_EXAMPLES) / "molar_stub.stl";
  const Ran ran = run("decompose '" + path.string() + "' --plain --json --set n_con=3");
  const Json json = Json::parse(ran.out);
  EXPECT_EQ(json["calls"], 1);
  EXPECT_EQ(json["preparation"]["plain"], true);
  EXPECT_EQ(json["regions_of_interest"][0]["needed"]["attempts"][0]["position"], 0);

  Part part = read_Part(path);
  const CallRules rules{{parse_Setting("n_con=3")}, {}, false};
  LibraryCall call(part.mesh, rules);
  const std::vector<Outcome> outcomes =
      call.run({{0, 0, whole_Roi(part).triangles}}, {find_Aperture(rules.settings)});
  const Json& regions = json["regions_of_interest"][0]["regions"];
  ASSERT_FALSE(regions.empty());
  ASSERT_EQ(regions.size(), outcomes[0].regions.size());
  for (size_t i = 0; i < regions.size(); ++i) {
    FoundRegion found = outcomes[0].regions[i];
    std::sort(found.triangles.begin(), found.triangles.end());
    EXPECT_EQ(regions[i]["triangles"].get<std::vector<uint32_t>>(), found.triangles);
    EXPECT_EQ(regions[i]["centre"], Json({found.axis.org.x, found.axis.org.y, found.axis.org.z}));
  }
}

TEST_F(Command, Attempts_TellThePositionAndGoOnToTheNext) {
  fs::create_directories(folder.path / "out/stages/call-001");
  folder.write("out/stages/call-001/13-end", "in the way");
  const Json json = Json::parse(run("decompose part.stl --whole --stage-files -o out --json").out);
  const Json& attempts = json["regions_of_interest"][0]["needed"]["attempts"];
  ASSERT_EQ(attempts.size(), 2u);
  EXPECT_EQ(attempts[0]["position"], 0);
  EXPECT_EQ(attempts[0]["failed"], 1);
  EXPECT_EQ(attempts[1]["position"], 1);
  EXPECT_EQ(attempts[1]["aperture"], attempts[0]["aperture"]);
  EXPECT_EQ(attempts[1]["triangles"], 288);
}

TEST_F(Command, StageFiles_LandInTheFolderAndNowhereElse) {
  const Ran ran = run("decompose part.stl --whole --stage-files");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(fs::exists(folder.path / "regions/stages/call-001/13-end"));
  for (const auto& entry : fs::directory_iterator(folder.path)) {
    const std::string name = entry.path().filename().string();
    EXPECT_TRUE(name == "regions" || name == "part.stl" || name[0] == '.') << name;
  }
}

TEST_F(Command, StageFiles_WithAPathTooLong_AreAUsageError) {
  const Ran ran = run("decompose part.stl --whole --stage-files -o " + std::string(180, 'a') + "/" +
                      std::string(100, 'b'));
  EXPECT_EQ(ran.status, 2);
  EXPECT_TRUE(has_Text(ran.err, "--stage-files")) << ran.err;
}

TEST_F(Command, AFailedRegionOfInterest_IsStatusOneWithResults) {
  // A stage file that cannot be opened fails the region of interest.
  fs::create_directories(folder.path / "out/stages/call-001");
  folder.write("out/stages/call-001/13-end", "in the way");
  const Ran ran = run("decompose part.stl --plain --stage-files -o out");
  EXPECT_EQ(ran.status, 1) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "failed")) << ran.out;
  const Json json = Json::parse(load_File(folder.path / "out/regions.json"));
  EXPECT_EQ(json["status"], "failed");
  EXPECT_EQ(json["library_status"], 1);
  EXPECT_EQ(json["regions_of_interest"][0]["codes"]["first"], 11);
  EXPECT_EQ(json["regions_of_interest"][0]["needed"]["given_up"], 288);
  EXPECT_EQ(json["regions_of_interest"][0]["free"]["count"], 288);
}

TEST_F(Command, AFailedAttempt_IsFollowedByTheNextRung) {
  fs::create_directories(folder.path / "out/stages/call-001");
  folder.write("out/stages/call-001/13-end", "in the way");
  const Ran ran = run("decompose part.stl --whole --stage-files -o out --json");
  EXPECT_EQ(ran.status, 0) << ran.err;
  const Json json = Json::parse(ran.out);
  EXPECT_EQ(json["calls"], 2);
  EXPECT_GT(json["covered"].get<double>(), 0.5);
}

TEST_F(Command, UsageErrors_AreStatusTwoWithoutResults) {
  for (const char* arguments : {"",
                                "nonsense",
                                "decompose",
                                "decompose part.stl --nonsense",
                                "decompose part.stl --set",
                                "decompose part.stl --set n_con=9",
                                "decompose part.stl --set n_cnn=1",
                                "decompose part.stl --up 0,0",
                                "decompose part.stl --up 0,0,0",
                                "decompose part.stl --up a,b,c",
                                "decompose part.stl --max-edge 0",
                                "decompose part.stl --max-edge x",
                                "decompose part.stl --max-edge 1e-6",
                                "decompose part.stl --plain --up 0,0,1",
                                "decompose part.stl --plain --max-edge 1",
                                "decompose part.stl --up ''",
                                "decompose part.stl --whole --roi part.stl",
                                "decompose part.stl --min-area x",
                                "decompose part.stl --min-area -1",
                                "decompose part.stl --min-area 1 --whole",
                                "decompose part.stl --min-area 1 --plain",
                                "decompose part.stl --min-area 1 --up 0,0,1",
                                "decompose part.stl --min-area 1 --roi part.stl",
                                "decompose part.stl --max-edge ''",
                                "decompose ''",
                                "decompose part.stl -o ''",
                                "parameters --nonsense"}) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments;
    EXPECT_NE(ran.err, "") << arguments;
    EXPECT_EQ(ran.out, "") << arguments;
    EXPECT_FALSE(fs::exists(folder.path / "regions")) << arguments;
  }
}

TEST_F(Command, AnUnknownCommand_IsNamed) {
  EXPECT_TRUE(has_Text(run("part.stl").err, "'part.stl' is no command: write 'undercut decompose"));
  EXPECT_TRUE(has_Text(run("").err, "name a command"));
}

TEST_F(Command, InputErrors_AreStatusThreeWithoutResults) {
  folder.write("empty.stl", "");
  folder.write("cut.stl", make_BinaryStl(make_Dome(3)).substr(0, 500));
  folder.write("noise.stl", std::string(1000, 'x'));
  folder.write("bad.txt", "0\n288\n");
  folder.write("word.txt", "0\nall\n");
  for (const char* arguments :
       {"decompose missing.stl", "decompose .", "decompose empty.stl", "decompose cut.stl",
        "decompose noise.stl --json", "decompose part.stl --roi bad.txt",
        "decompose part.stl --roi word.txt --json", "decompose part.stl --roi missing.txt"}) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 3) << arguments;
    EXPECT_TRUE(ran.err.starts_with("undercut: ")) << ran.err;
    EXPECT_EQ(ran.out, "") << arguments;
    EXPECT_FALSE(fs::exists(folder.path / "regions")) << arguments;
  }
  EXPECT_TRUE(has_Text(run("decompose part.stl --roi bad.txt").err, "bad.txt:2: triangle 288"));
}

TEST_F(Command, AFailure_LeavesOldResultsAlone) {
  ASSERT_EQ(run("decompose part.stl --whole").status, 0);
  const std::string old = load_File(folder.path / "regions/regions.json");
  EXPECT_EQ(run("decompose missing.stl").status, 3);
  EXPECT_EQ(load_File(folder.path / "regions/regions.json"), old);
}

TEST_F(Command, AFolderThatCannotBeWritten_IsStatusOne) {
  const Ran ran = run("decompose part.stl -o part.stl/out");
  EXPECT_EQ(ran.status, 1);
  EXPECT_TRUE(has_Text(ran.err, "cannot be written")) << ran.err;
}

TEST_F(Command, DegenerateTriangles_AreReportedAndLeftOut) {
  Soup corners = make_Dome(12);
  corners.insert(corners.end(), {corners[0], corners[0], corners[1]});
  folder.write("part.stl", make_BinaryStl(corners));
  const Ran ran = run("decompose part.stl --whole");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "1 triangle has two equal corners: 288")) << ran.out;
  const Json json = Json::parse(load_File(folder.path / "regions/regions.json"));
  EXPECT_EQ(json["input"]["degenerate"], Json({288}));
  EXPECT_EQ(json["regions_of_interest"][0]["count"], 288);
}

TEST_F(Command, ASettingWithoutEffect_IsNoted) {
  const Ran ran = run("decompose part.stl --whole --json --set f_wid=2");
  EXPECT_EQ(ran.status, 0);
  EXPECT_TRUE(has_Text(ran.err, "con.f_wid has no effect"));
  EXPECT_TRUE(Json::accept(ran.out));
}

TEST_F(Command, ListOptions_DoNotSwallowThePart) {
  folder.write("a.txt", "0\n1\n");
  EXPECT_EQ(run("decompose --set n_con=3 --roi a.txt --roi a.txt part.stl").status, 0);
}

TEST_F(Command, OfAnOptionGivenTwice_TheLastCounts) {
  const Ran ran = run("decompose part.stl -o a -o b --up 1,0,0 --up 0,1,0 --json");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_FALSE(fs::exists(folder.path / "a"));
  EXPECT_TRUE(has_Results("b"));
  EXPECT_EQ(Json::parse(ran.out)["preparation"]["up"], Json({0.0, 1.0, 0.0}));
}

TEST_F(Command, AStandardOutputThatFails_IsStatusOneWithResults) {
  const std::string part = (folder.path / "part.stl").string(), out = (folder.path / "o").string();
  const char* const arguments[] = {"undercut", "decompose", part.c_str(), "-o", out.c_str()};
  std::ostringstream broken, err;
  broken.setstate(std::ios::badbit);
  EXPECT_EQ(run_Command(5, arguments, broken, err), 1);
  EXPECT_TRUE(has_Text(err.str(), "standard output could not be written"));
  EXPECT_TRUE(has_Results("o"));
}

TEST_F(Command, HelpAndVersion_AreStatusZero) {
  EXPECT_EQ(run("--help").status, 0);
  EXPECT_TRUE(has_Text(run("--help").out, "Examples:"));
  EXPECT_TRUE(has_Text(run("decompose --help").out, "--max-edge"));
  EXPECT_EQ(run("--version").out, "undercut " UNDERCUT_VERSION "\n");
}

TEST_F(Command, Parameters_ListsAllForPeopleAndPrograms) {
  const Ran text = run("parameters");
  EXPECT_EQ(text.status, 0);
  for (const char* piece :
       {"dcm.n_max", "dcm_max", "default -1", "passes", "below 1: no limit", "err.f_gew"}) {
    EXPECT_TRUE(has_Text(text.out, piece)) << piece;
  }
  const Json json = Json::parse(run("parameters --json").out);
  ASSERT_EQ(json.size(), 87u);
  EXPECT_EQ(json[0], Json({{"name", "dcm.n_max"},
                           {"block", "dcm"},
                           {"key", "n_max"},
                           {"setter", "dcm_max"},
                           {"type", "whole number"},
                           {"default", -1},
                           {"unit", "passes"},
                           {"range", "below 1: no limit"},
                           {"sentence",
                            "Highest pass number of a region of interest, counted from "
                            "0: 2 allows three passes."}}));
}

TEST_F(Command, ARunIsTheSameEveryTimeButForTheTimes) {
  const auto answer = [&] {
    Json json = Json::parse(run("decompose part.stl --whole --json --set n_con=3").out);
    json.erase("elapsed");
    json.erase("stages");
    return json;
  };
  EXPECT_EQ(answer(), answer());
}

TEST(Parts, RealPartsEndWithoutAFailedRegionOfInterest) {
  const fs::path meshes = UNDERCUT_MESHES;
  if (!fs::exists(meshes)) GTEST_SKIP() << "no folder " << meshes;
  Folder folder;
  for (const char* name :
       {"molar_stub.stl", "x_end_motor.stl", "grille_case.stl", "molar_open.stl"}) {
    const Ran ran = run_Built(
        folder, "decompose '" + (meshes / name).string() + "' --whole --json --set n_con=3");
    EXPECT_EQ(ran.status, 0) << name << ": " << ran.err;
  }
}

}  // namespace
}  // namespace undercut::host
