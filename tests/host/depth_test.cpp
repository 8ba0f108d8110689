#include "host/depth_answer.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstring>
#include <limits>

#include "plates_command.h"

namespace undercut::host {
namespace {

struct Depth : PlatesCommand {
  Depth() : PlatesCommand("depth") {}
  // A box inside another: no rim anywhere, so there is no answer.
  void write_Inside() const {
    folder.write("inside.stl", make_BinaryStl(join_Soups(make_Box({0, 0, 0}, {6, 6, 6}),
                                                         make_Box({2, 2, 2}, {4, 4, 4}))));
  }
};

// How far a point in the shadow of the upper plate lies from the edge of the shadow.
double find_Depth(const T3DVEC& c) { return std::min({c.x, 10.0 - c.x, c.y, 5.0 - c.y}); }

TEST_F(Depth, UnderAPlate_IsTheDistanceToTheEdgeOfItsShadow) {
  const Json depths = answer("part.stl --axis 0,0,1")["depths"];
  ASSERT_EQ(depths.size(), 740u);
  size_t shadowed = 0;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DVEC c = centre_Tri(mesh, i);
    if (c.z != 1.0 && c.z != 5.0) continue;
    const bool shadow = c.z == 1.0 && c.y < 5.0;
    shadowed += shadow ? 1 : 0;
    EXPECT_NEAR(depths[i].get<double>(), shadow ? find_Depth(c) : 0.0, 1e-9) << i;
  }
  EXPECT_EQ(shadowed, 100u);
}

TEST_F(Depth, OfSeveralAxes_TheSmallestDepthCounts) {
  const Json up = answer("part.stl --axis 0,0,1")["depths"];
  const Json both = answer("part.stl --axis 0,0,1 --axis 0,0,-1")["depths"];
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    EXPECT_LE(both[i].get<double>(), up[i].get<double>());
    if (centre_Tri(mesh, i).z == 0.0) {
      EXPECT_EQ(both[i], 0.0) << "seen from below";
    }
  }
}

TEST_F(Depth, Against_TheOtherMeshCastsShadowToo) {
  const Json json = answer("lower.stl --axis 0,0,1 --against upper.stl");
  const Mesh lower = weld_Corners(make_Lower());
  for (uint32_t i = 0; i < lower.triangles.size(); ++i) {
    const T3DVEC c = centre_Tri(lower, i);
    if (c.z != 1.0) continue;
    EXPECT_NEAR(json["depths"][i].get<double>(), c.y < 5.0 ? find_Depth(c) : 0.0, 1e-9) << i;
  }
  EXPECT_EQ(json["against"][0]["path"], "upper.stl");
  EXPECT_EQ(answer("lower.stl --axis 0,0,1")["deep"]["area"], 100.0);
  EXPECT_EQ(json["deep"]["area"], 150.0);
}

TEST_F(Depth, NoAnswer_IsNullInJsonAndNotANumberInPly) {
  write_Inside();
  const Ran ran = run("inside.stl --axis 0,0,1 --axis 1,0,0 --json");
  const Json json = Json::parse(ran.out);
  ASSERT_EQ(json["depths"].size(), 432u + 48u);
  ASSERT_EQ(json["no_answer"]["triangles"].size(), 48u);
  EXPECT_EQ(json["no_answer"]["count"], 48);
  const std::string ply = load_File(folder.path / "depth/depth.ply");
  const Mesh inside =
      weld_Corners(join_Soups(make_Box({0, 0, 0}, {6, 6, 6}), make_Box({2, 2, 2}, {4, 4, 4})));
  for (uint32_t i = 0; i < 480; ++i) {
    double depth = 0.0;
    std::memcpy(&depth, load_Value(ply, inside, i, 8).data(), 8);
    EXPECT_EQ(std::isnan(depth), i >= 432) << i;
    EXPECT_EQ(json["depths"][i].is_null(), i >= 432) << i;
    if (i < 432) {
      EXPECT_EQ(json["depths"][i].get<double>(), depth) << i;
    }
    if (i >= 432) {
      EXPECT_EQ(json["no_answer"]["triangles"][i - 432], i);
    }
  }
  EXPECT_FALSE(has_Text(ran.out, "1.797"));
  const Ran table = run("inside.stl --axis 0,0,1");
  EXPECT_TRUE(has_Text(table.out, "no answer          48        24.000")) << table.out;
  EXPECT_TRUE(has_Text(table.out, "25.0 % is seen from no axis")) << table.out;
  EXPECT_FALSE(has_Text(table.out, "1797"));
  EXPECT_FALSE(has_Text(table.out, "nan"));
}

TEST_F(Depth, Roi_OthersAreNullAndNotCounted) {
  folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
  const Json json = answer("part.stl --axis 0,0,1 --roi top.txt");
  EXPECT_EQ(json["region"]["count"], 200);
  EXPECT_EQ(json["seen"]["count"], 100);
  EXPECT_EQ(json["deep"]["count"], 100);
  EXPECT_EQ(json["no_answer"]["count"], 0);
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    EXPECT_EQ(json["depths"][i].is_null(), centre_Tri(mesh, i).z != 1.0) << i;
  }
}

TEST_F(Depth, ADegenerateTriangleThatARegionNames_HasNoAnswer) {
  Soup corners = make_Plates();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("part.stl", make_BinaryStl(corners));
  folder.write("one.txt", "740\n");
  EXPECT_EQ(answer("part.stl --axis 0,0,1 --roi one.txt")["no_answer"]["triangles"], Json({740}));
  const Json whole = answer("part.stl --axis 0,0,1");
  EXPECT_EQ(whole["region"]["count"], 740);
  EXPECT_EQ(whole["no_answer"]["count"], 0);
  EXPECT_TRUE(whole["depths"][740].is_null());
}

TEST_F(Depth, Histogram_HoldsEveryDepthOnce) {
  const Json json = answer("part.stl --axis 0,0,1");
  ASSERT_EQ(json["histogram"].size(), 10u);
  const double largest = json["largest"];
  EXPECT_NEAR(largest, 7.0 / 3.0 + 2.0, 1.0);
  double area = 0.0, end = 0.0;
  for (const Json& range : json["histogram"]) {
    EXPECT_EQ(range["from"], end);
    end = range["to"];
    size_t count = 0;
    for (const Json& depth : json["depths"]) {
      count += depth.get<double>() > range["from"] && depth.get<double>() <= end ? 1 : 0;
    }
    EXPECT_EQ(range["count"], count);
    area += range["area"].get<double>();
  }
  EXPECT_EQ(end, largest);
  EXPECT_NEAR(area, json["deep"]["area"].get<double>(), 1e-9);
  EXPECT_EQ(json["deeper"]["count"], 0);
  EXPECT_EQ(json["seen"]["count"].get<int>() + json["deep"]["count"].get<int>(), 740);
}

TEST_F(Depth, Max_IsTheEndOfTheHistogramAndOfTheColours) {
  const Json json = answer("part.stl --axis 0,0,1 --max 1.5");
  EXPECT_EQ(json["histogram"][9]["to"], 1.5);
  EXPECT_GT(json["deeper"]["count"], 0);
  const std::string ply = load_File(folder.path / "depth/depth.ply");
  const size_t body = ply.find("end_header\n") + 11 + 24 * mesh.vertices.size();
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const double depth = json["depths"][i];
    const Colour expected = depth > 0.0 ? shade_Depth(depth, 1.5) : Colour{200, 200, 200};
    for (size_t k = 0; k < 3; ++k) {
      ASSERT_EQ(static_cast<uint8_t>(ply[body + 24 * i + 13 + k]), expected[k]) << i;
    }
  }
  EXPECT_TRUE(has_Text(run("part.stl --axis 0,0,1 --max 1.5").out, "above 1.50"));
}

TEST_F(Depth, APartThatIsSeenAltogether_HasAnEmptyHistogram) {
  const Soup dome = make_Dome(4);
  folder.write("dome.stl", make_BinaryStl(dome));
  const Json json = answer("dome.stl --axis 0,0,1");
  EXPECT_EQ(json["histogram"], Json::array());
  EXPECT_EQ(json["largest"], 0.0);
  EXPECT_EQ(json["seen"]["share"], 1.0);
  EXPECT_TRUE(has_Text(run("dome.stl --axis 0,0,1").out, "0.0 % is seen from no axis"));
}

TEST_F(Depth, PrintsAHistogramAndWritesBothFiles) {
  const Ran ran = run("part.stl --axis 0,0,1 --max 5");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece : {"part.stl: 740 triangles", "     0.0000   0.0000   1.0000",
                            "0, seen         340       170.000    45.9 %  ##############\n",
                            "0.00 to 0.50", "4.50 to 5.00", "54.1 % is seen from no axis",
                            "Written: depth/depth.ply, depth/depth.json"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
}

TEST_F(Depth, WhatTheLibrarySays_GoesToStandardError) {
  const Ran ran = run("part.stl --axis 0,0,1 --against lower.stl --set b_sta=1 --json");
  EXPECT_TRUE(has_Text(ran.err, "axis 0 :: seen")) << ran.err;
  EXPECT_EQ(ran.out, load_File(folder.path / "depth/depth.json"));
}

TEST_F(Depth, WrongUsage_SaysWhatToDo) {
  const std::pair<const char*, const char*> cases[] = {
      {"part.stl", "--axis: name at least one axis"},
      {"part.stl --axis 0,0,1 --max 0", "--max '0': write a length above 0 in mm"},
      {"part.stl --axis 0,0,1 --max x", "--max 'x'"},
      {"part.stl --axis 0,0,inf", "write a direction"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "depth")) << arguments;
  }
}

TEST_F(Depth, SettingsThatOtherMeshesSwitchOff_AreNoted) {
  EXPECT_EQ(run("lower.stl --axis 0,0,1 --set f_srf=1").err, "");
  EXPECT_TRUE(has_Text(run("lower.stl --axis 0,0,1 --set ucs.f_srf=1 --against upper.stl").err,
                       "ucs.f_srf has no effect on the depth"));
}

TEST(SortDepths, ADepthOnTheEndOfARange_BelongsToIt) {
  DepthAnswer answer;
  const Mesh mesh = weld_Corners(make_Lower());
  answer.roi.triangles = {0, 1, 2, 3, 4};
  answer.depths.assign(mesh.triangles.size(), 0.0);
  answer.depths[1] = 0.1;
  answer.depths[2] = 1.0;
  answer.depths[3] = 1.0000001;
  answer.depths[4] = std::numeric_limits<double>::quiet_NaN();
  sort_Depths(mesh, 1.0, answer);
  EXPECT_EQ(answer.ranges[0].extent.count, 1u);
  EXPECT_EQ(answer.ranges[9].extent.count, 1u);
  EXPECT_EQ(answer.deeper.count, 1u);
  EXPECT_EQ(answer.deep.count, 3u);
  EXPECT_EQ(answer.seen.count, 1u);
  EXPECT_EQ(answer.unknown_triangles, std::vector<uint32_t>({4}));
  EXPECT_EQ(answer.largest, 1.0000001);
}

TEST(ShadeDepth, RunsFromLightToDark) {
  EXPECT_EQ(shade_Depth(0.0, 2.0), (Colour{255, 237, 160}));
  EXPECT_EQ(shade_Depth(2.0, 2.0), (Colour{128, 0, 38}));
  EXPECT_EQ(shade_Depth(9.0, 2.0), (Colour{128, 0, 38}));
  double before = 1e9;
  for (int k = 0; k <= 60; ++k) {
    const Colour c = shade_Depth(k / 30.0, 2.0);
    const double light = 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
    EXPECT_LT(light, before) << k;
    before = light;
  }
}

}  // namespace
}  // namespace undercut::host
