#include "host/rim_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <numbers>

#include "curves.h"
#include "host/errors.h"
#include "plates_command.h"

namespace undercut::host {
namespace {

struct Rim : PlatesCommand {
  Rim() : PlatesCommand("rim") {}

  Mesh lower = weld_Corners(make_Lower());

  Curve placed(size_t i = 0) const { return read_Curves(folder.path / "rim/rim.pol").at(i); }
  // A file with the triangles of a mesh whose centre passes a test.
  template <typename Test>
  void write_List(const char* file, const Mesh& of, const Test& test) const {
    folder.write(file, list_Centres(of, test));
  }
  uint32_t find_First(const Mesh& of, double z, double low_y) const {
    for (uint32_t i = 0; i < of.triangles.size(); ++i) {
      const T3DVEC c = centre_Tri(of, i);
      if (c.z == z && c.y > low_y) return i;
    }
    return 0;
  }
};

TEST_F(Rim, OfAPlateFromAbove_IsItsOutlineOnItsUpperFace) {
  const Json json = answer("lower.stl --axis 0,0,3");
  ASSERT_EQ(json["curves"].size(), 1u);
  const Json& curve = json["curves"][0];
  EXPECT_NEAR(curve["area"], 100.0, 0.5);
  EXPECT_NEAR(curve["length"], 40.0, 0.2);
  EXPECT_EQ(curve["hole"], false);
  EXPECT_EQ(curve["count"], curve["points"].size());
  EXPECT_EQ(json["enclosed"], curve["area"]);
  EXPECT_EQ(json["axis"], Json({0.0, 0.0, 1.0}));
  EXPECT_EQ(json["frame"]["x"], Json({1.0, 0.0, 0.0}));
  EXPECT_EQ(json["frame"]["y"], Json({0.0, 1.0, 0.0}));
  EXPECT_EQ(json["frame"]["origin"], Json({0.0, 0.0, 0.0}));
  EXPECT_EQ(json["area"]["count"], 200);
  EXPECT_NEAR(json["area"]["area"], 100.0, 1e-9);
  EXPECT_EQ(centre_Tri(lower, json["start"].get<uint32_t>()).z, 1.0);
  const Curve border{{0, 0, 1}, {10, 0, 1}, {10, 10, 1}, {0, 10, 1}};
  for (const T3DVEC& p : placed()) {
    EXPECT_EQ(p.z, 1.0) << "on the upper face";
    EXPECT_LT(dist_Curve(border, p), 0.05);
  }
}

// The tool's eye: curves run counter-clockwise from either side.
TEST_F(Rim, FromEachSide_TheOuterCurveHasTheAreaToItsLeft) {
  for (const char* axis : {"0,0,1", "0,0,-1", "1,0,0", "0,-1,0", "1,2,3"}) {
    const Json json = answer(std::string("lower.stl --axis ") + axis);
    Curve flat;
    for (const Json& p : json["curves"][0]["points"]) flat.push_back({p[0], p[1], 0.0});
    EXPECT_GT(measure_Area(flat), 0.0) << axis;
    EXPECT_NEAR(measure_Area(flat), json["curves"][0]["area"].get<double>(), 1e-9) << axis;
    EXPECT_NEAR(measure_Length(flat), json["curves"][0]["length"].get<double>(), 1e-9) << axis;
  }
}

TEST_F(Rim, TheMethodsEdgesAndGrid_AgreeOnAFineMesh) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(40)));
  const double grid = answer("dome.stl --axis 0,0,1")["enclosed"];
  const double edges = answer("dome.stl --axis 0,0,1 --method edges")["enclosed"];
  EXPECT_NEAR(grid, 100.0, 0.6);
  EXPECT_NEAR(edges, 100.0, 0.6);
}

TEST_F(Rim, WhatIsHidden_IsOutsideTheRim) {
  const uint32_t start = find_First(mesh, 1.0, 5.0);
  const Json json = answer("part.stl --axis 0,0,1 --start " + std::to_string(start));
  EXPECT_EQ(json["start"], start);
  EXPECT_NEAR(json["enclosed"], 50.0, 0.5) << "half of the lower plate lies under the upper one";
  for (const T3DVEC& p : placed()) {
    EXPECT_GT(p.y, 4.9);
    EXPECT_EQ(p.z, 1.0);
  }
}

TEST_F(Rim, WithoutAStart_TheLargestConnectedSeenAreaIsTaken) {
  const uint32_t most = find_First(mesh, 1.0, 5.0);
  write_List("roi.txt", mesh,
             [](const T3DVEC& c) { return c.z == 1.0 || (c.z == 5.0 && c.x < 4.0); });
  const Json json = answer("part.stl --axis 0,0,1 --roi roi.txt");
  EXPECT_EQ(centre_Tri(mesh, json["start"].get<uint32_t>()).z, centre_Tri(mesh, most).z);
  EXPECT_NEAR(json["area"]["area"], 50.0, 1e-9);
  EXPECT_NEAR(json["area"]["share"], 50.0 / 120.0, 1e-9);
}

TEST_F(Rim, GridRoi_IsTheOutlineOfTheListWhateverHidesIt) {
  write_List("under.txt", mesh, [](const T3DVEC& c) { return c.z == 1.0 && c.y < 5.0; });
  const Json json = answer("part.stl --axis 0,0,1 --method grid-roi --roi under.txt");
  EXPECT_NEAR(json["enclosed"], 50.0, 0.5);
  EXPECT_TRUE(json["start"].is_null());
  EXPECT_EQ(json["method"], "grid-roi");
  EXPECT_EQ(json["area"]["count"], 100);
  EXPECT_NEAR(answer("part.stl --axis 0,-1,0 --method grid-roi")["enclosed"], 10.0 * (1.0 + 1.0),
              0.5)
      << "the silhouette of both plates from the front";
}

TEST_F(Rim, AHole_HasACurveOfItsOwnThatRunsTheOtherWay) {
  write_List("ring.txt", lower, [](const T3DVEC& c) {
    return c.z == 1.0 && !(c.x > 3.0 && c.x < 7.0 && c.y > 3.0 && c.y < 7.0);
  });
  const Json json = answer("lower.stl --axis 0,0,1 --method grid-roi --roi ring.txt");
  ASSERT_EQ(json["curves"].size(), 2u);
  EXPECT_EQ(json["curves"][0]["hole"], false);
  EXPECT_EQ(json["curves"][1]["hole"], true);
  EXPECT_NEAR(json["curves"][1]["area"], 16.0, 0.3);
  EXPECT_NEAR(json["enclosed"], 84.0, 0.5);
  EXPECT_LT(measure_Area(placed(1)), 0.0);
}

TEST_F(Rim, AGapNarrowerThanTwiceTheRadius_IsClosed) {
  write_List("slit.txt", lower,
             [](const T3DVEC& c) { return c.z == 1.0 && !(c.x > 4.0 && c.x < 5.0 && c.y > 2.0); });
  const std::string roi = "lower.stl --axis 0,0,1 --method grid-roi --roi slit.txt --radius ";
  const Json open = answer(roi + "0.4"), closed = answer(roi + "0.6");
  EXPECT_NEAR(open["enclosed"], 92.0, 0.5);
  EXPECT_EQ(open["radius"], 0.4);
  EXPECT_NEAR(closed["enclosed"], 100.0, 0.7);
}

TEST_F(Rim, TheGrid_IsToldByCellsOrByTheirNumber) {
  const Json cell = answer("lower.stl --axis 0,0,1 --cell 0.2");
  EXPECT_EQ(cell["parameters"]["gri.f_dxx"], 0.2);
  EXPECT_EQ(cell["parameters"]["gri.f_dyy"], 0.2);
  EXPECT_EQ(cell["parameters"]["gri.b_res"], 1);
  const Json rows = answer("lower.stl --axis 0,0,1 --rows 50");
  EXPECT_EQ(rows["parameters"]["gri.n_row"], 50);
  EXPECT_EQ(rows["parameters"]["gri.n_col"], 50) << "one tells the other";
  EXPECT_NEAR(cell["enclosed"], 100.0, 4.0);
  EXPECT_NEAR(rows["enclosed"], 100.0, 4.0);
  EXPECT_EQ(cell["radius"], 1.5 * 0.2) << "a cell and a half at least";
  const Json coarse = answer("lower.stl --axis 0,0,1 --cell 0.7");
  EXPECT_GT(std::fabs(coarse["enclosed"].get<double>() - 100.0), 1.0);
}

TEST_F(Rim, TheTolerance_GoesByTheWidthUnlessItIsSet) {
  EXPECT_NEAR(answer("lower.stl --axis 0,0,1")["parameters"]["ucs.f_err"], 10.0 / 2000.0, 1e-12);
  const Json json = answer("lower.stl --axis 0,0,1 --set f_err=0.5");
  EXPECT_EQ(json["parameters"]["ucs.f_err"], 0.5);
  EXPECT_LT(json["curves"][0]["count"], 10);
}

TEST_F(Rim, AFrameFile_GivesTheCurvesInThatFrame) {
  const Json by_axis = answer("lower.stl --axis 1,1,1");
  fs::copy(folder.path / "rim/rim.json", folder.path / "old.json");
  EXPECT_EQ(answer("lower.stl --frame old.json")["curves"], by_axis["curves"]);
  folder.write("moved.trf", "1 0 0 100\n0 1 0 20\n0 0 1 7\n0 0 0 1\n");
  const Json moved = answer("lower.stl --frame moved.trf");
  EXPECT_EQ(moved["frame"]["origin"], Json({100.0, 20.0, 7.0}));
  for (const Json& p : moved["curves"][0]["points"]) {
    EXPECT_LT(p[0], -89.9);
    EXPECT_LT(p[1], -9.9);
  }
  for (const T3DVEC& p : placed()) EXPECT_NEAR(p.z, 1.0, 1e-6) << "in the file's coordinates";
}

TEST_F(Rim, AFileWithoutAFrame_IsBadInput) {
  folder.write("a.json", "{\"x\":[1,0,0],\"y\":[0,1,0],\"z\":[0,0,-1],\"origin\":[0,0,0]}");
  folder.write("b.json", "{\"frame\":{\"x\":[1,0,0]}}");
  folder.write("c.trf", "1 0 0\n");
  for (const char* file : {"a.json", "b.json", "c.trf", "none.json"}) {
    const Ran ran = run(std::string("lower.stl --frame ") + file);
    EXPECT_EQ(ran.status, 3) << file;
    EXPECT_TRUE(has_Text(ran.err, file)) << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "rim"));
  }
}

TEST_F(Rim, Ply_MarksTheAreaAndItsStart) {
  write_List("top.txt", lower, [](const T3DVEC& c) { return c.z > 0.0; });
  const Json json = answer("lower.stl --axis 0,0,1 --roi top.txt");
  const std::string ply = load_File(folder.path / "rim/rim.ply");
  ASSERT_TRUE(has_Text(ply, "property int area\n"));
  for (uint32_t i = 0; i < lower.triangles.size(); ++i) {
    int32_t value = 9;
    std::memcpy(&value, load_Value(ply, lower, i, 4).data(), 4);
    const double z = centre_Tri(lower, i).z;
    EXPECT_EQ(value, i == json["start"] ? 2 : z == 1.0 ? 1 : z > 0.0 ? 0 : -1) << i;
  }
}

TEST_F(Rim, PrintsATableAndWritesThreeFiles) {
  const Ran ran = run("lower.stl --axis 0,0,1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece :
       {"frame, its z from the part towards the tool",
        "method grid, closed by a disk of radius 0.050 mm",
        ", the largest of the largest area that is seen", "area: 200 triangles, 100.000 mm2",
        "1 curve bounds", "Written: rim/rim.ply, rim/rim.json, rim/rim.pol"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
  EXPECT_TRUE(load_File(folder.path / "rim/rim.pol").starts_with("<000>\n"));
}

TEST_F(Rim, AStartThatIsNoStart_IsBadInputWithoutResults) {
  write_List("top.txt", mesh, [](const T3DVEC& c) { return c.z == 1.0; });
  std::string hidden;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DVEC c = centre_Tri(mesh, i);
    if (c.z == 1.0 && c.y < 4.0) hidden = std::to_string(i);
  }
  const std::pair<std::string, const char*> cases[] = {
      {"--start 740", "out of range. The part has triangles 0 to 739"},
      {"--start 0 --roi top.txt", "not in the region of interest (top.txt)"},
      {"--start " + hidden, "not seen along the axis"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run("part.stl --axis 0,0,1 " + arguments);
    EXPECT_EQ(ran.status, 3) << arguments;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "rim")) << arguments;
  }
}

TEST_F(Rim, AStartWithTwoEqualCorners_IsBadInput) {
  Soup corners = make_Lower();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("lower.stl", make_BinaryStl(corners));
  const Ran ran = run("lower.stl --axis 0,0,1 --start 480");
  EXPECT_EQ(ran.status, 3);
  EXPECT_TRUE(has_Text(ran.err, "two equal corners")) << ran.err;
  EXPECT_NEAR(answer("lower.stl --axis 0,0,1")["enclosed"], 100.0, 0.5);
}

TEST_F(Rim, WhereNothingIsSeen_SaysSo) {
  write_List("bottom.txt", lower, [](const T3DVEC& c) { return c.z == 0.0; });
  const Ran ran = run("lower.stl --axis 0,0,1 --roi bottom.txt");
  EXPECT_EQ(ran.status, 1);
  EXPECT_TRUE(has_Text(ran.err, "nothing of the region of interest is seen")) << ran.err;
  EXPECT_FALSE(fs::exists(folder.path / "rim"));
}

TEST_F(Rim, ACurveOfTooFewPoints_SaysWhatToChange) {
  const Ran grid = run("lower.stl --axis 0,0,1 --rows 5 --radius 3");
  EXPECT_EQ(grid.status, 1);
  EXPECT_TRUE(has_Text(grid.err, "fewer than 7 points (status -40). Take smaller cells"))
      << grid.err;
  folder.write("cube.stl", make_BinaryStl(make_Box({0, 0, 0}, {1, 1, 1})));
  const Ran edges = run("cube.stl --axis 0,0,1 --method edges");
  EXPECT_EQ(edges.status, 1);
  EXPECT_TRUE(has_Text(edges.err, "--method grid follows the outline")) << edges.err;
  EXPECT_NEAR(answer("cube.stl --axis 0,0,1")["enclosed"], 1.0, 0.01);
}

TEST_F(Rim, WrongUsage_SaysWhatToDo) {
  const std::pair<const char*, const char*> cases[] = {
      {"lower.stl", "--axis: name the axis to look along"},
      {"lower.stl --axis 0,0", "write a direction as three numbers"},
      {"lower.stl --axis 0,0,1 --frame f.trf", "leave --axis out, or --frame"},
      {"lower.stl --frame ''", "--frame: the name of the file is empty"},
      {"lower.stl --axis 0,0,1 --method hull", "write edges, grid or grid-roi"},
      {"lower.stl --axis 0,0,1 --start x", "write the number of a triangle"},
      {"lower.stl --axis 0,0,1 --start -1", "write the number of a triangle"},
      {"lower.stl --axis 0,0,1 --start 1 --method grid-roi", "--start belongs to"},
      {"lower.stl --axis 0,0,1 --cell 0", "write a length above 0"},
      {"lower.stl --axis 0,0,1 --cell 1e-6", "takes more than 20000 cells"},
      {"lower.stl --axis 0,0,1 --radius -1", "write a length of 0 or more"},
      {"lower.stl --axis 0,0,1 --rows 0", "write a whole number from 1 to 20000"},
      {"lower.stl --axis 0,0,1 --rows 9 --cell 1", "both tell the grid"},
      {"lower.stl --axis 0,0,1 --method edges --cell 1", "belong to the grid"},
      {"lower.stl --axis 0,0,1 --set f_res=0", "out of range"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments << ran.err;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "rim")) << arguments;
  }
}

TEST_F(Rim, ASettingWithoutEffect_IsNoted) {
  EXPECT_TRUE(has_Text(run("lower.stl --axis 0,0,1 --set ucs.f_dil=1").err,
                       "ucs.f_dil has no effect on the rim"));
  EXPECT_TRUE(has_Text(run("lower.stl --axis 0,0,1 --method grid-roi --set ucs.f_tol=1").err,
                       "ucs.f_tol has no effect on the rim"));
  EXPECT_EQ(run("lower.stl --axis 0,0,1 --set f_tol=0.01 --set f_gew=0.2").err, "");
}

TEST_F(Rim, TrianglesThatGrow_ChangeNothing) {
  const std::string start = std::to_string(find_First(mesh, 1.0, 5.0));
  const std::string plain = "part.stl --axis 0,0,1 --start " + start;
  const Json usual = answer(plain);
  EXPECT_EQ(answer(plain + " --set ucs.f_dil=0.9")["area"], usual["area"]);
}

TEST(RimFrame, OfAnyAxis_IsRightHandedWithItsZAlongTheAxis) {
  for (const T3DVEC axis : {T3DVEC{0, 0, 1}, T3DVEC{0, 0, -1}, T3DVEC{1, 0, 0}, T3DVEC{-1, 0, 1e-3},
                            T3DVEC{0.3, -0.2, 0.5}}) {
    const T3DFRM frame = make_AxisFrame(axis);
    EXPECT_LT(len_Vec(frame.z - unit_Vec(axis)), 1e-15);
    EXPECT_LT(len_Vec(cross_Vec(frame.x, frame.y) - frame.z), 1e-15);
    EXPECT_NEAR(len_Vec(frame.x), 1.0, 1e-15);
  }
  EXPECT_EQ(make_AxisFrame({0, 0, 1}).x.x, 1.0);
  EXPECT_EQ(make_AxisFrame({1, 0, 0}).x.y, 1.0) << "near X the file's Y stands in";
}

TEST(PlaceCurves, ACircleRoundACap_LiesOnItsRim) {
  const Part part = make_Part(make_Dome(20));
  std::vector<uint32_t> area;
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) {
    const T3DVEC c = centre_Tri(part.mesh, i);
    if (std::hypot(c.x - 5.0, c.y - 5.0) < 3.0) area.push_back(i);
  }
  Curve circle;
  for (int k = 0; k < 24; ++k) {
    const double angle = 2.0 * std::numbers::pi * k / 24.0;
    circle.push_back({5.0 + 3.0 * std::cos(angle), 5.0 + 3.0 * std::sin(angle), 0.0});
  }
  const auto rims = place_Curves(part.mesh, area, make_AxisFrame({0, 0, 1}), {circle});
  ASSERT_EQ(rims.size(), 1u);
  for (const T3DVEC& p : rims[0].placed) {
    const double z = 4.0 - 0.06 * ((p.x - 4.7) * (p.x - 4.7) + (p.y - 5.2) * (p.y - 5.2));
    EXPECT_NEAR(p.z, z, 0.3) << "the border runs up to a triangle away";
  }
}

TEST(PlaceCurves, AtAWall_TheUpperEdgeIsTaken) {
  const Part part = make_Part(make_Lower());
  std::vector<uint32_t> all(part.mesh.triangles.size());
  for (uint32_t i = 0; i < all.size(); ++i) all[i] = i;
  const Curve outline{{0.02, 0.02, 0}, {9.98, 0.02, 0}, {9.98, 9.98, 0}, {0.02, 9.98, 0}};
  for (const RimCurve& rim : place_Curves(part.mesh, all, make_AxisFrame({0, 0, 1}), {outline})) {
    for (const T3DVEC& p : rim.placed) EXPECT_EQ(p.z, 1.0);
  }
}

TEST(PlaceCurves, OfTwoBordersOneAboveTheOther_TheCurveKeepsToOne) {
  const Part part = make_Part(make_Plates());
  std::vector<uint32_t> tops;
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) {
    const double z = centre_Tri(part.mesh, i).z;
    if (z == 1.0 || z == 5.0) tops.push_back(i);
  }
  const auto place = [&](double depth) {
    const Curve outline{{0.02, 0.01, 0},  {5, 0.01, 0},  {9.98, 0.01, 0},
                        {9.98, depth, 0}, {5, depth, 0}, {0.02, depth, 0}};
    return place_Curves(part.mesh, tops, make_AxisFrame({0, 0, 1}), {outline})[0].placed;
  };
  for (const T3DVEC& p : place(9.98)) EXPECT_EQ(p.z, 1.0) << "the lower plate's, all round";
  for (const T3DVEC& p : place(4.98)) EXPECT_EQ(p.z, 5.0) << "the upper plate's, all round";
}

}  // namespace
}  // namespace undercut::host
