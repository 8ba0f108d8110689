#include "host/project_answer.h"

#include <nlohmann/json.hpp>

#include <random>
#include <sstream>

#include "host/number_file.h"
#include "plates_command.h"

namespace undercut::host {
namespace {

struct Project : PlatesCommand {
  Project() : PlatesCommand("project") {}

  void SetUp() override {
    PlatesCommand::SetUp();
    folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 5.0; }));
    folder.write("floor.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
  }
};

T3DVEC read_Vec(const Json& json) { return {json[0], json[1], json[2]}; }

// Where a line meets the mesh, nearest to its origin, by a loop over all triangles (T. Moeller,
// B. Trumbore, 1997); the distance along the line, not a number where it misses.
double meet_Plainly(const Mesh& mesh, const T3DRAY& line) {
  double best = std::numeric_limits<double>::quiet_NaN();
  for (const T3DTRI& t : mesh.triangles) {
    const T3DVEC a = mesh.vertices[t.a], u = mesh.vertices[t.b] - a, v = mesh.vertices[t.c] - a;
    const T3DVEC p = cross_Vec(line.dir, v);
    const double volume = dot_Vec(u, p);
    if (volume == 0.0) continue;
    const T3DVEC s = line.org - a, q = cross_Vec(s, u);
    const double k = dot_Vec(s, p) / volume, m = dot_Vec(line.dir, q) / volume;
    if (k < 0.0 || m < 0.0 || k + m > 1.0) continue;
    const double distance = dot_Vec(v, q) / volume;
    if (!(std::fabs(distance) >= std::fabs(best))) best = distance;
  }
  return best;
}

TEST_F(Project, PointsMoveAlongTheAxisOntoTheirArea) {
  folder.write("a.asc", "# over the upper plate\n3.2 2.2 7.1\n\n4.1,1.1,5.5\n2.6\t3.3\t5 9 9 9\n");
  const Json json = answer("part.stl --points a.asc --roi top.txt --axis 0,0,1");
  ASSERT_EQ(json["areas"].size(), 1u);
  const Json& area = json["areas"][0];
  EXPECT_EQ(area["source"], "a.asc");
  EXPECT_EQ(area["region"]["source"], "top.txt");
  EXPECT_EQ(area["axis"], Json({0.0, 0.0, 1.0}));
  EXPECT_TRUE(area["frame"].is_null());
  EXPECT_EQ(area["count"], 3);
  EXPECT_EQ(area["stayed"], 1);
  EXPECT_EQ(area["off_part"], 0);
  EXPECT_NEAR(area["largest"], 2.1, 1e-12);
  EXPECT_NEAR(area["mean"], (2.1 + 0.5) / 3.0, 1e-12);
  EXPECT_EQ(area["points"][0]["before"], Json({3.2, 2.2, 7.1}));
  for (const Json& point : area["points"]) {
    const T3DVEC before = read_Vec(point["before"]), after = read_Vec(point["after"]);
    EXPECT_EQ(after.z, 5.0);
    EXPECT_EQ(after.x, before.x);
    EXPECT_EQ(after.y, before.y);
    EXPECT_EQ(point["distance"], before.z - 5.0);
    EXPECT_EQ(point["on_part"], true);
  }
  EXPECT_EQ(load_File(folder.path / "project/points-1.asc"), "3.2 2.2 5\n4.1 1.1 5\n2.6 3.3 5\n");
}

TEST_F(Project, EachFileHasItsTrianglesAndItsAxis) {
  folder.write("a.asc", "3.2 2.2 4.4\n");
  folder.write("b.asc", "3.2 2.2 4.4\n");
  folder.write("side.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.x == 10.0; }));
  const Json json = answer(
      "part.stl --points a.asc --points b.asc --roi floor.txt --roi side.txt --axis 0,0,1 "
      "--axis -2,0,0");
  EXPECT_EQ(read_Vec(json["areas"][0]["points"][0]["after"]).z, 1.0) << "through the upper plate";
  EXPECT_EQ(json["areas"][1]["points"][0]["after"], Json({10.0, 2.2, 4.4}));
  EXPECT_EQ(json["areas"][1]["axis"], Json({-1.0, 0.0, 0.0}));
  EXPECT_EQ(load_File(folder.path / "project/points-2.asc"), "10 2.2 4.4\n");
  const Json shared = answer("part.stl --points a.asc --points b.asc --axis 0,0,1 --roi floor.txt");
  EXPECT_EQ(shared["areas"][0]["points"], shared["areas"][1]["points"]);
}

TEST_F(Project, APointFarFromItsAreaStaysAndIsToldToBeOffThePart) {
  folder.write("a.asc", "20 20 3\n");
  const Ran ran = run("part.stl --points a.asc --axis 0,0,1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "1 point is not on the part afterwards")) << ran.out;
  const Json json = answer("part.stl --points a.asc --axis 0,0,1");
  EXPECT_EQ(json["areas"][0]["stayed"], 1);
  EXPECT_EQ(json["areas"][0]["off_part"], 1);
  EXPECT_EQ(json["areas"][0]["points"][0]["on_part"], false);
  EXPECT_EQ(json["areas"][0]["points"][0]["after"], Json({20.0, 20.0, 3.0}));
}

// The library's second step alone would go on to the underside.
TEST_F(Project, OnAFaceAcrossTheAxis_APointStaysThoughAWallIsNearBehindIt) {
  folder.write("thin.stl", make_BinaryStl(make_Box({0, 0, 0}, {6, 6, 1})));
  folder.write("a.asc", "2.2 2.3 1.3\n2.2 2.3 1\n");
  folder.write("top.txt", list_Centres(weld_Corners(make_Box({0, 0, 0}, {6, 6, 1})),
                                       [](const T3DVEC& c) { return c.z == 1.0; }));
  const Json json = answer("thin.stl --points a.asc --roi top.txt --axis 0,0,1 --set prj.f_tol=2");
  for (const Json& point : json["areas"][0]["points"]) {
    EXPECT_EQ(point["after"], Json({2.2, 2.3, 1.0}));
  }
  EXPECT_EQ(answer("thin.stl --line 2.2,2.3,1,0,0,1")["lines"][0]["distance"].get<double>(), 0.0);
}

TEST_F(Project, SettingsBoundHowFarAPointMoves) {
  // The first step is skipped, so that the second one alone moves the point.
  folder.write("a.asc", "3.2 2.2 5.5\n");
  const std::string skip = "part.stl --points a.asc --axis 0,0,1 --set prj.f_off=9 ";
  EXPECT_EQ(answer(skip)["areas"][0]["largest"], 0.5);
  const Json held = answer(skip + "--set prj.f_tol=0.4");
  EXPECT_EQ(held["areas"][0]["largest"], 0.0);
  EXPECT_EQ(held["parameters"]["prj.f_tol"], 0.4);
}

TEST_F(Project, Curves_ComeBackAsCurvesToo) {
  folder.write("rim.pol",
               "<000>\n2 2 6\n4 2 6\n3 4 6\n</000>\n<001>\n5 1 7\n6 1 7\n6 2 7\n5 2 7\n</001>\n");
  const Json json = answer("part.stl --points rim.pol --axis 0,0,1 --roi top.txt");
  EXPECT_EQ(json["areas"][0]["curves"], Json({3, 4}));
  EXPECT_EQ(json["areas"][0]["count"], 7);
  EXPECT_EQ(load_File(folder.path / "project/points-1.pol"),
            "<000>\n2.000000 2.000000 5.000000\n4.000000 2.000000 5.000000\n"
            "3.000000 4.000000 5.000000\n</000>\n<001>\n5.000000 1.000000 5.000000\n"
            "6.000000 1.000000 5.000000\n6.000000 2.000000 5.000000\n"
            "5.000000 2.000000 5.000000\n</001>\n");
  folder.write("a.asc", "2 2 6\n");
  EXPECT_EQ(answer("part.stl --points a.asc --axis 0,0,1")["areas"][0]["curves"], Json::array());
  EXPECT_FALSE(fs::exists(folder.path / "project/points-1.pol")) << "left by the earlier run";
}

TEST_F(Project, Frame_IsWhatThePointsAreToldIn) {
  // X, Y and Z of the frame are the part's Y, Z and X; its origin is 12, 1, 2.
  folder.write("side.trf", "0 0 1 12\n1 0 0 1\n0 1 0 2\n0 0 0 1\n");
  folder.write("a.asc", "1.2 2.3 0\n");
  folder.write("side.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.x == 10.0; }));
  const Json json = answer("part.stl --points a.asc --frame side.trf --roi side.txt");
  EXPECT_EQ(json["areas"][0]["points"][0]["before"], Json({12.0, 2.2, 4.3}));
  EXPECT_EQ(json["areas"][0]["points"][0]["after"], Json({10.0, 2.2, 4.3}));
  EXPECT_EQ(json["areas"][0]["axis"], Json({1.0, 0.0, 0.0}));
  EXPECT_EQ(json["areas"][0]["frame"]["origin"], Json({12.0, 1.0, 2.0}));
}

TEST_F(Project, Line_MeetsThePartWhereAPlainLoopDoes) {
  std::string arguments = "part.stl";
  std::vector<T3DRAY> lines;
  std::mt19937 random(20240611);
  std::uniform_real_distribution<double> place(-2.0, 12.0), way(-1.0, 1.0);
  for (int i = 0; i < 60; ++i) {
    const T3DRAY line{{place(random), place(random), place(random)},
                      {way(random), way(random), way(random)}};
    std::ostringstream text;
    text.precision(17);
    text << " --line=" << line.org.x << "," << line.org.y << "," << line.org.z << "," << line.dir.x
         << "," << line.dir.y << "," << line.dir.z;
    arguments += text.str();
    lines.push_back({line.org, unit_Vec(line.dir)});
  }
  const Json json = answer(arguments);
  ASSERT_EQ(json["lines"].size(), lines.size());
  size_t missed = 0;
  for (size_t i = 0; i < lines.size(); ++i) {
    const double expected = meet_Plainly(mesh, lines[i]);
    const Json& line = json["lines"][i];
    ASSERT_EQ(line["point"].is_null(), std::isnan(expected)) << i;
    missed += line["point"].is_null() ? 1 : 0;
    if (line["point"].is_null()) continue;
    EXPECT_NEAR(line["distance"], expected, 1e-9) << i;
    EXPECT_NEAR(len_Vec(read_Vec(line["point"]) - (lines[i].org + expected * lines[i].dir)), 0.0,
                1e-9);
  }
  EXPECT_GT(missed, 5u);
  EXPECT_LT(missed, 55u);
}

TEST_F(Project, Line_MayMeetThePartBehindItsOrigin) {
  const Ran ran = run("part.stl --line 3.2,2.2,7,0,0,4 --line 30,2,7,0,0,1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "3.2000     2.2000     5.0000       -2.0000")) << ran.out;
  EXPECT_TRUE(has_Text(ran.out, "misses the part")) << ran.out;
  EXPECT_EQ(load_File(folder.path / "project/lines.asc"), "3.2 2.2 5\n");
  const Json json = Json::parse(load_File(folder.path / "project/projection.json"));
  EXPECT_EQ(json["lines"][0]["distance"], -2.0);
  EXPECT_EQ(json["lines"][0]["direction"], Json({0.0, 0.0, 1.0}));
  EXPECT_EQ(json["areas"], Json::array());
}

TEST_F(Project, PrintsATableAndNamesItsFiles) {
  folder.write("a.asc", "3.2 2.2 7.1\n4.1 1.1 5\n");
  folder.write("b.asc", "3.2 2.2 7.1\n");
  const Ran ran = run("part.stl --points a.asc --points b.asc --axis 0,0,1 --roi top.txt");
  EXPECT_EQ(ran.status, 0) << ran.err;
  for (const char* piece :
       {"part.stl: 740 triangles",
        "   1           2         1         1         0      1.0500      2.1000    0.0000   0.0000 "
        "  1.0000 "
        " a.asc on top.txt",
        "Written: project/points-1.asc, project/projection.json, project/points-2.asc"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
}

TEST_F(Project, WrongUsage_SaysWhatToDo) {
  folder.write("a.asc", "3.2 2.2 7.1\n");
  expect_Refused(
      2,
      {{"part.stl", "--points: name a file of points to move"},
       {"part.stl --points a.asc", "--axis: name the direction in which points move"},
       {"part.stl --points a.asc --axis 0,0,1 --frame f.trf", "leave one of them out"},
       {"part.stl --points a.asc --axis 0,0,0", "--axis '0,0,0': write a direction"},
       {"part.stl --points a.asc --axis 0,0,1 --axis 1,0,0", "--axis is given 2 times for 1 file"},
       {"part.stl --points a.asc --points a.asc --axis 0,0,1 --roi a --roi b --roi c",
        "--roi is given 3 times for 2 files"},
       {"part.stl --points '' --axis 0,0,1", "--points: the name of the file is empty"},
       {"part.stl --line 1,2,3", "--line '1,2,3': write a point and a direction as six numbers"},
       {"part.stl --line 1,2,3,0,0,0", "write a point and a direction"},
       {"part.stl --line 1,2,3,0,0,1 --points a.asc", "leave --points"},
       {"part.stl --points a.asc --axis 0,0,1 --set prj.f_inc=0", "out of range"}});
}

TEST_F(Project, BadInput_IsToldWithFileAndLine) {
  Soup corners = make_Plates();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("part.stl", make_BinaryStl(corners));
  folder.write("flat.txt", "740\n");
  folder.write("good.asc", "1 2 3\n");
  folder.write("empty.asc", "# nothing\n\n");
  folder.write("short.asc", "1 2 3\n1 2\n");
  folder.write("word.asc", "1 2 x\n");
  folder.write("far.asc", "1 2 inf\n");
  folder.write("bad.trf", "1 0 0 0\n0 1 0 0\n0 1 0 0\n0 0 0 1\n");
  folder.write("three.trf", "1 0 0 0\n0 1 0 0\n0 0 1 0\n");
  expect_Refused(
      3,
      {{"part.stl --points missing.asc --axis 0,0,1", "missing.asc: cannot be opened"},
       {"part.stl --points empty.asc --axis 0,0,1", "empty.asc: the file has no point"},
       {"part.stl --points short.asc --axis 0,0,1",
        "short.asc:2: there are 2 numbers. Write the three"},
       {"part.stl --points word.asc --axis 0,0,1", "word.asc:1: 'x' is no finite number"},
       {"part.stl --points far.asc --axis 0,0,1", "far.asc:1: 'inf' is no finite number"},
       {"part.stl --points good.asc --frame bad.trf", "bad.trf: the axes are not at right angles"},
       {"part.stl --points good.asc --frame three.trf", "three.trf: there are 3 lines of numbers"},
       {"part.stl --points good.asc --axis 0,0,1 --roi flat.txt",
        "flat.txt: every triangle that it names"}});
}

TEST_F(Project, ASettingWithoutEffect_IsNoted) {
  folder.write("a.asc", "3.2 2.2 7.1\n");
  EXPECT_TRUE(has_Text(run("part.stl --points a.asc --axis 0,0,1 --set ucs.f_off=1").err,
                       "ucs.f_off has no effect on the projection"));
  EXPECT_TRUE(has_Text(run("part.stl --line 0,0,0,0,0,1 --set prj.f_tol=1").err,
                       "prj.f_tol has no effect on the projection"));
}

TEST(WritePoints, ReadBackTheSame) {
  const Folder folder;
  const std::vector<T3DVEC> points{{0.1, -1e-300, 1e300}, {1.0 / 3.0, -0.0, 5e-324}};
  std::ostringstream text;
  write_Points(text, points);
  const std::vector<T3DVEC> back = read_Points(folder.write("p.asc", text.str()));
  ASSERT_EQ(back.size(), 2u);
  for (size_t i = 0; i < 2; ++i) EXPECT_EQ(len_Vec(back[i] - points[i]), 0.0);
  EXPECT_FALSE(has_Text(text.str(), "-0 "));
}

}  // namespace
}  // namespace undercut::host
