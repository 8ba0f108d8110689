#include "host/statistics_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>

#include "plates_command.h"

namespace undercut::host {
namespace {

struct Statistics : PlatesCommand {
  Statistics() : PlatesCommand("statistics") {}

  void SetUp() override {
    PlatesCommand::SetUp();
    folder.write("floor.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
    folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 5.0; }));
  }
  // A part whose last triangle has two equal corners.
  void write_Degenerate() const {
    Soup corners = make_Plates();
    const T3DVEC p{3, 8, 1}, q{4, 8, 1};
    corners.insert(corners.end(), {p, p, q});
    folder.write("part.stl", make_BinaryStl(corners));
    folder.write("flat.txt", "740\n");
  }
};

// The area of a list that an axis sees, by a loop over all triangles.
double see_Plainly(const Mesh& mesh, const std::vector<uint32_t>& list, const T3DVEC& axis) {
  double area = 0.0;
  for (const uint32_t i : list) area += sees_Axis(mesh, i, axis) ? area_Tri(mesh, i) : 0.0;
  return area;
}

TEST_F(Statistics, ARegion_IsRatedByItsAreaAndItsRim) {
  const Json json = answer("part.stl --roi floor.txt --axis 0,0,3");
  ASSERT_EQ(json["regions"].size(), 1u);
  const Json& region = json["regions"][0];
  EXPECT_EQ(region["axis"], Json({0.0, 0.0, 1.0}));
  EXPECT_EQ(region["region"]["source"], "floor.txt");
  EXPECT_EQ(region["surface"]["area"], 100.0);
  EXPECT_EQ(region["surface"]["area_seen"], 50.0);
  EXPECT_EQ(region["surface"]["share"], 0.5);
  EXPECT_EQ(region["surface"]["all"], false);
  EXPECT_EQ(region["rim"]["edges"], 40);
  EXPECT_EQ(region["rim"]["edges_seen"], 20) << "y above 5: ten edges behind, five on each side";
  EXPECT_EQ(region["rim"]["share"], 0.5);
  EXPECT_EQ(region["rim"]["all"], false);
  EXPECT_TRUE(region["largest"].is_null());
  EXPECT_EQ(region["allowed"], Json::array());
}

TEST_F(Statistics, TheAxisRunsFromThePartTowardsTheTool) {
  const Json up = answer("part.stl --roi top.txt --axis 0,0,1");
  EXPECT_EQ(up["regions"][0]["surface"]["all"], true);
  EXPECT_EQ(up["regions"][0]["rim"]["share"], 1.0);
  const Json down = answer("part.stl --roi top.txt --axis 0,0,-1");
  EXPECT_EQ(down["regions"][0]["surface"]["share"], 0.0);
}

TEST_F(Statistics, AnObliqueAxis_IsThatOfAPlainComputation) {
  const T3DVEC axis = unit_Vec({0.31, -0.52, 0.83});
  std::vector<uint32_t> all(mesh.triangles.size());
  for (uint32_t i = 0; i < all.size(); ++i) all[i] = i;
  const Json json = answer("part.stl --axis 0.31,-0.52,0.83");
  EXPECT_NEAR(json["regions"][0]["surface"]["area_seen"], see_Plainly(mesh, all, axis), 1e-9);
  EXPECT_EQ(json["regions"][0]["region"]["source"], "whole mesh");
}

TEST_F(Statistics, AxesGoToAllRegionsOrToEachOrAllToARegionAlone) {
  const Json shared = answer("part.stl --roi floor.txt --roi top.txt --axis 0,0,1");
  EXPECT_EQ(shared["regions"][0]["surface"]["share"], 0.5);
  EXPECT_EQ(shared["regions"][1]["surface"]["share"], 1.0);
  const Json each = answer("part.stl --roi floor.txt --roi top.txt --axis 0,0,1 --axis 0,0,-1");
  EXPECT_EQ(each["regions"][1]["surface"]["share"], 0.0);
  const Json alone = answer("part.stl --roi floor.txt --axis 0,0,1 --axis 0,0,-1");
  ASSERT_EQ(alone["regions"].size(), 2u);
  EXPECT_EQ(alone["regions"][1]["region"], alone["regions"][0]["region"]);
  EXPECT_EQ(alone["regions"][1]["surface"]["share"], 0.0);
  const Ran ran =
      run("part.stl --roi floor.txt --roi top.txt --axis 1,0,0 --axis 0,1,0 --axis "
          "0,0,1");
  EXPECT_EQ(ran.status, 2);
  EXPECT_TRUE(has_Text(ran.err, "--axis is given 3 times for 2 regions")) << ran.err;
}

TEST_F(Statistics, ASurfaceWithoutRim_HasNoShareOfIt) {
  const Ran ran = run("lower.stl --axis 0,0,1");
  const Json json = Json::parse(load_File(folder.path / "statistics/statistics.json"));
  EXPECT_TRUE(json["regions"][0]["rim"]["share"].is_null());
  EXPECT_EQ(json["regions"][0]["rim"]["edges"], 0);
  EXPECT_EQ(json["regions"][0]["rim"]["all"], true);
  EXPECT_TRUE(has_Text(ran.out, "58.3 %         -          0 of 0")) << ran.out;
  EXPECT_FALSE(has_Text(ran.out, "1797"));
}

TEST_F(Statistics, ARegionWithoutArea_HasNoShareAndNoLargestValue) {
  write_Degenerate();
  std::string values;
  for (int i = 0; i < 741; ++i) values += "7\n";
  folder.write("v.txt", values);
  const Ran ran = run("part.stl --roi flat.txt --axis 0,0,1 --values v.txt");
  EXPECT_EQ(ran.status, 0) << ran.err;
  const Json json = Json::parse(load_File(folder.path / "statistics/statistics.json"));
  EXPECT_TRUE(json["regions"][0]["surface"]["share"].is_null());
  EXPECT_TRUE(json["regions"][0]["largest"].is_null());
  EXPECT_EQ(json["regions"][0]["surface"]["all"], true);
  EXPECT_FALSE(has_Text(ran.out, "1797"));
}

TEST_F(Statistics, Values_TellTheLargestInEachRegion) {
  std::string values = "# one a line\n";
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    values += std::to_string(centre_Tri(mesh, i).z == 5.0 ? -2.5 : -3.0) + "  # " +
              std::to_string(i) + "\n";
  }
  folder.write("v.txt", values);
  const Ran ran = run("part.stl --roi floor.txt --roi top.txt --axis 0,0,1 --values v.txt");
  const Json json = Json::parse(load_File(folder.path / "statistics/statistics.json"));
  EXPECT_EQ(json["values"], "v.txt");
  EXPECT_EQ(json["regions"][0]["largest"], -3.0);
  EXPECT_EQ(json["regions"][1]["largest"], -2.5);
  EXPECT_TRUE(has_Text(ran.out, "20 of 40     -3.0000")) << ran.out;
}

TEST_F(Statistics, Values_MayBeADepthDocument) {
  ASSERT_EQ(run_Built(folder, "depth part.stl --axis 0,0,1 --roi floor.txt").status, 0);
  const Json depth = Json::parse(load_File(folder.path / "depth/depth.json"));
  const Json json = answer(
      "part.stl --roi floor.txt --roi top.txt --axis 0,0,1 --values "
      "depth/depth.json");
  EXPECT_EQ(json["regions"][0]["largest"], depth["largest"]);
  EXPECT_TRUE(json["regions"][1]["largest"].is_null()) << "no depth was asked for there";
}

TEST_F(Statistics, Regions_AreThoseOfADecomposition) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(12)));
  ASSERT_EQ(run_Built(folder, "decompose dome.stl --whole --set n_con=1").status, 0);
  const Json regions = Json::parse(load_File(folder.path / "regions/regions.json"));
  const Json json = answer("dome.stl --regions regions/regions.json");
  std::vector<Json> found;
  for (const Json& roi : regions["regions_of_interest"]) {
    for (const Json& region : roi["regions"]) found.push_back(region);
  }
  ASSERT_FALSE(found.empty());
  ASSERT_EQ(json["regions"].size(), found.size());
  for (size_t k = 0; k < found.size(); ++k) {
    const Json& rated = json["regions"][k];
    EXPECT_EQ(rated["region"]["source"], "region " + found[k]["number"].dump());
    EXPECT_EQ(rated["region"]["count"], found[k]["count"]);
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(rated["axis"][i].get<double>(), found[k]["axis"][i].get<double>(), 1e-15);
    }
    EXPECT_EQ(rated["surface"]["share"], 1.0) << "a region is seen along its axis";
  }
  const Json other = answer("dome.stl --regions regions/regions.json --axis 0,0,-1");
  for (const Json& rated : other["regions"]) {
    EXPECT_EQ(rated["axis"], Json({0.0, 0.0, -1.0}));
    EXPECT_EQ(rated["surface"]["share"], 0.0);
  }
}

TEST_F(Statistics, Allowed_IsTheNearestAxisInEachBand) {
  const Json json = answer("part.stl --roi floor.txt --axis 1,0,1 --allowed");
  const Json& allowed = json["regions"][0]["allowed"];
  ASSERT_EQ(allowed.size(), 2u);
  EXPECT_EQ(allowed[0]["from"], 0.0);
  EXPECT_EQ(allowed[0]["to"], 20.0);
  EXPECT_NEAR(allowed[0]["tilt"], 25.0, 1e-9);
  const double turn = 20.0 * 3.14159265358979323846 / 180.0;
  EXPECT_NEAR(allowed[0]["axis"][0], std::sin(turn), 1e-12);
  EXPECT_NEAR(allowed[0]["axis"][1], 0.0, 1e-12);
  EXPECT_NEAR(allowed[0]["axis"][2], std::cos(turn), 1e-12);
  const T3DVEC axis{std::sin(turn), 0.0, std::cos(turn)};
  std::vector<uint32_t> floor;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (centre_Tri(mesh, i).z == 1.0) floor.push_back(i);
  }
  EXPECT_NEAR(allowed[0]["surface"]["area_seen"], see_Plainly(mesh, floor, axis), 1e-9);
  EXPECT_NEAR(allowed[1]["tilt"], 115.0, 1e-9);
  EXPECT_EQ(allowed[1]["surface"]["share"], 0.0);
}

// The library starts each band from what the one before left, which the command does not.
TEST_F(Statistics, Allowed_AnAxisInsideALaterBandKeepsItsTilt) {
  const Json json = answer("part.stl --axis 0.05,0,-1 --allowed");
  const Json& allowed = json["regions"][0]["allowed"];
  EXPECT_NEAR(allowed[1]["tilt"], 0.0, 1e-9);
  EXPECT_NEAR(allowed[0]["tilt"], 180.0 - std::atan(0.05) * 180.0 / 3.14159265358979323846 - 20.0,
              1e-9);
}

TEST_F(Statistics, Allowed_BandsAreToldFromUp) {
  const Json json =
      answer("part.stl --axis 0,1,1 --allowed --up 0,5,0 --set n_con=1 --set b_th0=30");
  const Json& allowed = json["regions"][0]["allowed"];
  ASSERT_EQ(allowed.size(), 1u);
  EXPECT_EQ(allowed[0]["to"], 30.0);
  EXPECT_NEAR(allowed[0]["tilt"], 15.0, 1e-9);
  EXPECT_NEAR(allowed[0]["axis"][1], std::sqrt(0.75), 1e-12);
  EXPECT_NEAR(allowed[0]["axis"][2], 0.5, 1e-12);
}

TEST_F(Statistics, Allowed_TakesTheBandsAndUpOfTheRegions) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(12)));
  const std::string machine = "--up 0,1,0 --set n_con=3 --set b_th0=35";
  ASSERT_EQ(run_Built(folder, "decompose dome.stl " + machine).status, 0);
  const Json json = answer("dome.stl --regions regions/regions.json --allowed");
  EXPECT_EQ(json["parameters"], Json({{"dcm.n_con", 3}, {"dcm.b_th0", 35.0}}));
  ASSERT_FALSE(json["regions"].empty());
  for (const Json& region : json["regions"]) {
    ASSERT_EQ(region["allowed"].size(), 3u);
    double least = 180.0;
    for (const Json& allowed : region["allowed"]) least = std::min<double>(least, allowed["tilt"]);
    EXPECT_NEAR(least, 0.0, 1e-5) << "the region's own axis lies in a band";
  }
  const Json other = answer("dome.stl --regions regions/regions.json --allowed --set n_con=1");
  EXPECT_EQ(other["regions"][0]["allowed"].size(), 1u);
}

TEST_F(Statistics, Ply_HoldsTheShareOfTheFirstRegionOfEachTriangle) {
  answer("part.stl --roi floor.txt --roi top.txt --axis 0,0,1");
  const std::string ply = load_File(folder.path / "statistics/statistics.ply");
  ASSERT_TRUE(has_Text(ply, "property double share\n"));
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    double share = 0.0;
    std::memcpy(&share, load_Value(ply, mesh, i, 8).data(), 8);
    const double z = centre_Tri(mesh, i).z;
    if (z == 1.0 || z == 5.0) {
      EXPECT_EQ(share, z == 1.0 ? 0.5 : 1.0);
    } else {
      EXPECT_TRUE(std::isnan(share));
    }
  }
}

TEST_F(Statistics, PrintsATableAndNamesItsFiles) {
  const Ran ran = run("part.stl --roi floor.txt --axis 0,0,1 --allowed --set n_con=1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece :
       {"part.stl: 740 triangles", "dcm.n_con = 1",
        "   1        200       100.000    50.0 %    50.0 %        20 of 40    0.0000   0.0000   "
        "1.0000  floor.txt",
        "0.0 to 20.0 deg    50.0 %", "tilted by 0.00 deg",
        "Written: statistics/statistics.ply, statistics/statistics.json"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
}

TEST_F(Statistics, WrongUsage_SaysWhatToDo) {
  expect_Refused(
      2, {{"part.stl", "--axis: name at least one axis"},
          {"part.stl --roi floor.txt --regions r.json", "leave one of them out"},
          {"part.stl --axis 0,0,1 --up 0,0,1", "--up is for the polar bands of --allowed"},
          {"part.stl --axis 0,0,1 --values ''", "--values: the name of the file is empty"},
          {"part.stl --regions ''", "--regions: the name of the file is empty"},
          {"part.stl --axis 0,0,1 --allowed --set n_con=0", "--allowed: dcm.n_con is 0"},
          {"part.stl --axis 0,0,1 --allowed --set a_th0=50", "dcm.a_th0 = 50.000 lies above"}});
}

TEST_F(Statistics, BadInput_SaysWhatIsWrong) {
  folder.write("few.txt", "1\n2\n");
  folder.write("two.txt", "1 2\n");
  folder.write("other.json", "{\"depths\": [1, 2]}");
  folder.write("none.json", "{}");
  folder.write("word.json", "{\"depths\": [\"x\"]}");
  folder.write("broken.json", "{");
  const std::string form =
      R"({"input": {"triangles": 740}, "preparation": {"up": [0, 0, 1]}, "parameters": {},)"
      R"( "regions_of_interest": [{"regions": [{"number": 1, "axis": [0, 0, 1], "triangles": [)";
  folder.write("range.json", form + "740]}]}]}");
  folder.write("part.json", R"({"input": {"triangles": 12}})");
  expect_Refused(
      3,
      {{"part.stl --axis 0,0,1 --values few.txt",
        "few.txt: there are 2 values, but the part has 740"},
       {"part.stl --axis 0,0,1 --values two.txt",
        "two.txt:1: there are 2 numbers. Write one number a line"},
       {"part.stl --axis 0,0,1 --values other.json", "other.json: there are 2 values"},
       {"part.stl --axis 0,0,1 --values none.json", "none.json: there are no \"depths\""},
       {"part.stl --axis 0,0,1 --values word.json", "word.json: depth 0 is no number"},
       {"part.stl --regions broken.json", "broken.json: this is no JSON document of the command"},
       {"part.stl --regions none.json", "none.json: this is no regions.json"},
       {"part.stl --regions part.json",
        "part.json: its part has 12 triangles, but part.stl has 740"},
       {"part.stl --regions range.json", "range.json: region 1 names triangle 740"}});
}

TEST_F(Statistics, NoRegionAtAll_IsAnEmptyAnswer) {
  folder.write(
      "empty.json",
      R"({"input": {"triangles": 740}, "preparation": {"up": [0, 0, 1]}, "parameters": {},)"
      R"( "regions_of_interest": []})");
  const Ran ran = run("part.stl --regions empty.json --allowed --axis 0,0,1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "no region")) << ran.out;
}

TEST_F(Statistics, ASettingWithoutEffect_IsNoted) {
  EXPECT_TRUE(has_Text(run("part.stl --axis 0,0,1 --set dcm.n_con=1").err,
                       "dcm.n_con has no effect on the statistics"));
  EXPECT_EQ(run("part.stl --axis 0,0,1 --set f_tol=0.01").err, "");
}

}  // namespace
}  // namespace undercut::host
