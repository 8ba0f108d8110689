#include "host/axis_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>

#include "overhang.h"
#include "support.h"

namespace undercut::host {
namespace {

T3DVEC get_Vec(const Json& json) { return {json[0], json[1], json[2]}; }

struct AxisCommand : testing::Test {
  Folder folder;
  Mesh mesh = weld_Corners(make_Plates());

  void SetUp() override { folder.write("part.stl", make_BinaryStl(make_Plates())); }
  Ran run(const std::string& arguments) const { return run_Built(folder, "axis " + arguments); }
  Json answer(const std::string& arguments) const {
    const Ran ran = run("part.stl --json " + arguments);
    EXPECT_EQ(ran.status, 0) << ran.err;
    return Json::parse(ran.out);
  }
  // The area of the part that a plain computation sees from any of some axes.
  double see(const std::vector<T3DVEC>& axes) const {
    double area = 0.0;
    for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
      const bool seen = std::any_of(axes.begin(), axes.end(),
                                    [&](const T3DVEC& axis) { return sees_Axis(mesh, i, axis); });
      area += seen ? area_Tri(mesh, i) : 0.0;
    }
    return area;
  }
};

TEST_F(AxisCommand, ThreeAxes_SharesAreThoseOfAPlainComputation) {
  const Json json = answer("--machine 3");
  const Json& axis = json["axes"][0];
  const T3DVEC towards = get_Vec(axis["axis"]);
  EXPECT_NEAR(len_Vec(towards), 1.0, 1e-15);
  const Json& seen = axis["seen"];
  EXPECT_NEAR(seen["axis"]["part"]["area"], see({towards}), 1e-9);
  EXPECT_NEAR(seen["opposite"]["part"]["area"], see({-1.0 * towards}), 1e-9);
  EXPECT_NEAR(seen["either"]["part"]["area"], see({towards, -1.0 * towards}), 1e-9);
  EXPECT_NEAR(seen["either"]["part"]["share"], see({towards, -1.0 * towards}) / area_Mesh(mesh),
              1e-12);
  EXPECT_EQ(seen["either"]["part"], seen["either"]["region"]);
  EXPECT_EQ(axis["search"], "get_3ax");
  EXPECT_GT(axis["ratings"], 20);
  EXPECT_LT(axis["rating"], 0.0);
}

TEST_F(AxisCommand, ThreeAxes_TheAxisIsTheFramesZ) {
  const Json axis = answer("--machine 3")["axes"][0];
  EXPECT_EQ(axis["axis"], axis["frame"]["z"]);
  T3DVEC mean{};
  for (const T3DVEC& v : mesh.vertices) {
    mean = mean + 1.0 / static_cast<double>(mesh.vertices.size()) * v;
  }
  EXPECT_LT(len_Vec(get_Vec(axis["frame"]["origin"]) - mean), 1e-9) << "the mean of the vertices";
}

TEST_F(AxisCommand, FourAndFiveAxes_TheAxisIsTheOppositeOfTheFramesZ) {
  for (const char* machine : {"4", "5"}) {
    const Json axis = answer(std::string("--machine ") + machine)["axes"][0];
    const T3DVEC z = get_Vec(axis["frame"]["z"]), towards = get_Vec(axis["axis"]);
    EXPECT_LT(len_Vec(towards + z), 1e-15) << machine;
    EXPECT_NEAR(axis["seen"]["axis"]["part"]["area"], see({towards}), 1e-9) << machine;
    EXPECT_TRUE(axis["seen"]["opposite"].is_null());
    EXPECT_TRUE(axis["seen"]["either"].is_null());
  }
}

TEST_F(AxisCommand, TheDirectionThatIsToldIsTheAxis_OrForThreeAxesOneOfItsEnds) {
  for (const char* machine : {"3", "4", "5"}) {
    const Json axis = answer(std::string("--machine ") + machine)["axes"][0];
    const double theta = axis["theta"].get<double>() * M_PI / 180.0;
    const double phi = axis["phi"].get<double>() * M_PI / 180.0;
    const T3DVEC rated{std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi),
                       std::cos(theta)};
    const double along = dot_Vec(rated, get_Vec(axis["axis"]));
    EXPECT_NEAR(*machine == '3' ? std::fabs(along) : along, 1.0, 1e-9) << machine;
  }
}

TEST_F(AxisCommand, Start_SearchesFromThereWithoutAScan) {
  const Json scanned = answer("--machine 3"), started = answer("--machine 3 --start 12,34");
  EXPECT_EQ(started["axes"][0]["search"], "get_Amo");
  EXPECT_EQ(started["start"], Json({12.0, 34.0}));
  EXPECT_TRUE(scanned["start"].is_null());
  EXPECT_LT(started["axes"][0]["ratings"], scanned["axes"][0]["ratings"]);
  // A limit of no steps returns the first corner of the simplex round the start.
  const Json first = answer("--machine 3 --start 12,34 --set amo.n_max=0")["axes"][0];
  EXPECT_NEAR(first["theta"], 12.0 - 5.0 / std::sqrt(2.0), 1e-12);
  EXPECT_NEAR(first["phi"], 34.0 - 5.0 / std::sqrt(2.0), 1e-12);
  EXPECT_EQ(first["ratings"], 3);
}

TEST_F(AxisCommand, ThreeAxesWithARegion_TheRestIsNoObstacleToTheSearchButToTheShare) {
  // The lower plate's upper side, of which the upper plate hides one half from above.
  folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
  const Json axis = answer(
      "--machine 3 --roi top.txt --start 0,0 --set amo.n_max=0 --set "
      "amo.f_dxy=1e-9")["axes"][0];
  EXPECT_EQ(axis["region"]["count"], 200);
  EXPECT_NEAR(axis["rating"], -100.0, 1e-9) << "all of it is seen by the search";
  EXPECT_NEAR(axis["seen"]["axis"]["region"]["area"], 50.0, 1e-9);
  EXPECT_NEAR(axis["seen"]["axis"]["region"]["share"], 0.5, 1e-12);
  EXPECT_NEAR(std::fabs(axis["axis"][2].get<double>()), 1.0, 1e-9);
}

TEST_F(AxisCommand, FourAxes_TheAxisStaysInThePlaneAndTheWindow) {
  folder.write("wall.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.x == 10.0; }));
  const Json json = answer("--machine 4 --plane 0 --window -10,30 --roi wall.txt");
  const T3DVEC axis = get_Vec(json["axes"][0]["axis"]);
  EXPECT_NEAR(axis.y, 0.0, 1e-12);
  EXPECT_NEAR(std::atan2(axis.x, axis.z) * 180.0 / M_PI, 30.0, 0.2) << "the walls face +X";
  EXPECT_EQ(json["window"], Json({-10.0, 30.0}));
  EXPECT_EQ(json["parameters"],
            Json({{"gcu.f_th0", -10.0}, {"gcu.f_th1", 30.0}, {"gcu.f_phi", 0.0}}));
  EXPECT_EQ(json["axes"][0]["search"], "get_4ay");
}

TEST_F(AxisCommand, FiveAxes_WithoutRegionAndWindowTheWholeSphereIsSearched) {
  EXPECT_EQ(answer("--machine 5")["axes"][0]["search"], "get_5ax");
}

TEST_F(AxisCommand, FiveAxesWithAWindow_TheDirectionLiesInIt) {
  const Json json = answer("--machine 5 --window 10,20,50,160");
  const Json& axis = json["axes"][0];
  EXPECT_EQ(axis["search"], "get_5ay");
  EXPECT_GE(axis["theta"], 10.0);
  EXPECT_LE(axis["theta"], 50.0);
  EXPECT_GE(axis["phi"], 20.0);
  EXPECT_LE(axis["phi"], 160.0);
  EXPECT_EQ(json["window"], Json({10.0, 20.0, 50.0, 160.0}));
}

TEST_F(AxisCommand, FiveAxesWithRegions_EachIsSearchedAsIfItWereAlone) {
  // The first region's best direction lies at the rim of the window, which switches the refinement
  // off for all later regions of one call.
  folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 5.0; }));
  folder.write("wall.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.y == 10.0; }));
  const Json together = answer("--machine 5 --roi top.txt --roi wall.txt");
  const Json alone = answer("--machine 5 --roi wall.txt");
  ASSERT_EQ(together["axes"].size(), 2u);
  for (const char* key : {"axis", "frame", "rating", "ratings", "theta", "phi", "seen", "region"}) {
    EXPECT_EQ(together["axes"][1][key], alone["axes"][0][key]) << key;
  }
  EXPECT_EQ(together["axes"][0]["theta"], 0.0);
  EXPECT_EQ(together["axes"][1]["index"], 1);
  const double theta = alone["axes"][0]["theta"];
  EXPECT_NE(std::fmod(theta, 40.0), 0.0) << "a point of the scan: nothing was refined";
}

TEST_F(AxisCommand, DegenerateTriangles_HaveNoShare) {
  Soup corners = make_Plates();
  const T3DVEC p{3, 3, 1}, q{4, 3, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("part.stl", make_BinaryStl(corners));
  folder.write("one.txt", std::to_string(mesh.triangles.size()) + "\n0\n");
  const Json json = answer("--machine 5 --roi one.txt");
  EXPECT_EQ(json["axes"][0]["region"]["count"], 2);
  EXPECT_LE(json["axes"][0]["seen"]["axis"]["region"]["count"], 1);
  EXPECT_EQ(answer("--machine 3")["axes"][0]["region"]["count"], mesh.triangles.size());
}

TEST_F(AxisCommand, PrintsATableAndWritesBothFiles) {
  const Ran ran = run("part.stl --machine 3 --set n_max=20");
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "");
  for (const char* piece :
       {"part.stl: 740 triangles", "Machine: 3 axes", "amo.n_max = 20",
        "Region of interest 0 (whole mesh): 740 triangles, 370.000 mm2",
        "from the part towards the tool", "frame x", "by get_3ax", "from its opposite",
        "from either", "Written: axis/axis.ply, axis/axis.json"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path / "axis"), fs::directory_iterator()),
            2);
}

TEST_F(AxisCommand, Json_PrintsTheFileAndNothingElse) {
  const Ran ran = run("part.stl --machine 4 --json -o out --set ucs.b_sta=1");
  EXPECT_EQ(ran.out, load_File(folder.path / "out/axis.json"));
}

TEST_F(AxisCommand, Ply_NamesTheFirstAxisThatSeesEachTriangle) {
  folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 5.0; }));
  folder.write("wall.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.x == 10.0; }));
  const Json json = answer("--machine 5 --roi top.txt --roi wall.txt");
  const std::string ply = load_File(folder.path / "axis/axis.ply");
  ASSERT_TRUE(has_Text(ply, "property int seen\n"));
  const T3DVEC first = get_Vec(json["axes"][0]["axis"]), second = get_Vec(json["axes"][1]["axis"]);
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    int32_t seen = -1;
    std::memcpy(&seen, load_Value(ply, mesh, i, 4).data(), 4);
    ASSERT_EQ(seen, sees_Axis(mesh, i, first) ? 1 : sees_Axis(mesh, i, second) ? 2 : 0) << i;
  }
}

TEST_F(AxisCommand, AKeyThatSeveralBlocksHave_IsThatOfTheMachinesSearch) {
  EXPECT_TRUE(answer("--machine 3 --set n_max=9")["parameters"].contains("amo.n_max"));
  EXPECT_TRUE(answer("--machine 4 --set n_max=9")["parameters"].contains("gcu.n_max"));
  EXPECT_TRUE(answer("--machine 5 --set f_dxx=30")["parameters"].contains("nxn.f_dxx"));
}

TEST_F(AxisCommand, ASettingWithoutEffect_IsNoted) {
  const Ran ran = run("part.stl --machine 3 --set n_con=3 --set gcu.f_win=2");
  EXPECT_TRUE(has_Text(ran.err, "dcm.n_con has no effect on the search")) << ran.err;
  EXPECT_TRUE(has_Text(ran.err, "gcu.f_win has no effect on the search"));
}

TEST_F(AxisCommand, WrongUsage_SaysWhatToDo) {
  const std::pair<const char*, const char*> cases[] = {
      {"part.stl", "--machine: say how many axes the machine has"},
      {"part.stl --machine 6", "--machine '6': write 3, 4 or 5"},
      {"--machine 3", "PART is required"},
      {"part.stl --machine 4 --start 1,2", "with --window TILT0,TILT1"},
      {"part.stl --machine 5 --start 1,2", "with --window TH0,PH0,TH1,PH1"},
      {"part.stl --machine 3 --start 1", "--start '1': write THETA,PHI"},
      {"part.stl --machine 3 --start 1,x", "write THETA,PHI"},
      {"part.stl --machine 3 --start 1,1e9", "write THETA,PHI"},
      {"part.stl --machine 3 --start 1,2 --window 0,0,9,9", "leave one of the two out"},
      {"part.stl --machine 4 --window 0,0,10,10", "with --machine 4 write TILT0,TILT1"},
      {"part.stl --machine 4 --window 10,-10", "the lower one first"},
      {"part.stl --machine 4 --window -361,0", "from -360 to 360"},
      {"part.stl --machine 5 --window 0,10", "write TH0,PH0,TH1,PH1"},
      {"part.stl --machine 5 --window 0,0,0,360", "the low ends first"},
      {"part.stl --machine 3 --window 0,0,180,nan", "write TH0,PH0,TH1,PH1"},
      {"part.stl --machine 5 --window 0,0,180,721", "from -720 to 720"},
      {"part.stl --machine 3 --plane 0", "--plane belongs to --machine 4"},
      {"part.stl --machine 4 --plane 181", "0 to 180 degrees"},
      {"part.stl --machine 4 --set gcu.f_th0=30", "gcu.f_th1 must be above gcu.f_th0"},
      {"part.stl --machine 4 --set n_flg=1 --set f_win=30", "the scan needs 5 intervals"},
      {"part.stl --machine 5 --window 0,0,9,9 --set n_maxx=1", "amo.n_max"},
      {"part.stl --machine 3 -o ''", "-o: the name of the folder is empty"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
    EXPECT_EQ(ran.out, "");
    EXPECT_FALSE(fs::exists(folder.path / "axis")) << arguments;
  }
}

TEST_F(AxisCommand, BadInput_IsStatusThreeWithoutResults) {
  folder.write("bad.txt", "99999\n");
  EXPECT_EQ(run("missing.stl --machine 3").status, 3);
  EXPECT_EQ(run("part.stl --machine 3 --roi bad.txt").status, 3);
  EXPECT_FALSE(fs::exists(folder.path / "axis"));
}

TEST(SearchLine, TheLastOfTheNamedSearchIsRead) {
  FoundAxis found;
  EXPECT_TRUE(
      read_Search("noise\nget_3ax :: ratings 5, rating 1, theta 2, phi 3\n"
                  "get_3ax :: ratings 71, rating -123.4, theta 1e-07, phi 30\n"
                  "get_4ay :: ratings 9, rating 9, theta 9, phi 9\n",
                  "get_3ax", found));
  EXPECT_EQ(found.ratings, 71u);
  EXPECT_EQ(found.rating, -123.4);
  EXPECT_EQ(found.theta, 1e-07);
  EXPECT_EQ(found.phi, 30.0);
}

TEST(SearchLine, WhatIsNoSuchLine_IsPassedOver) {
  for (const char* text : {"", "get_3ax", "get_3ax :: ratings 5", "get_3ax :: ratings 5, rating 1",
                           "get_3ax :: ratings x, rating 1, theta 2, phi 3",
                           "get_3ax :: ratings 5, theta 1, rating 2, phi 3",
                           "get_3ax :: ratings 5, rating 1, theta 2, phi 3, more 4"}) {
    FoundAxis found;
    EXPECT_FALSE(read_Search(text, "get_3ax", found)) << text;
    EXPECT_EQ(found.ratings, 0u);
  }
}

TEST(CutOut, KeepsTheTrianglesAndTheirOwnVerticesOnly) {
  const Mesh mesh = weld_Corners(make_Lower());
  const Mesh cut = cut_Out(mesh, {7, 2});
  ASSERT_EQ(cut.triangles.size(), 2u);
  EXPECT_LE(cut.vertices.size(), 6u);
  for (uint32_t k = 0; k < 2; ++k) {
    const T3DVEC here = centre_Tri(cut, k), there = centre_Tri(mesh, k == 0 ? 7 : 2);
    EXPECT_EQ(len_Vec(here - there), 0.0);
  }
}

}  // namespace
}  // namespace undercut::host
