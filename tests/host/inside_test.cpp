#include "host/inside_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <random>

#include "curves.h"
#include "host/curve_path.h"
#include "host/errors.h"
#include "plates_command.h"

namespace undercut::host {
namespace {

struct Inside : PlatesCommand {
  Inside() : PlatesCommand("inside") {}

  Mesh lower = weld_Corners(make_Lower());

  template <typename Test>
  std::vector<uint32_t> list(const Mesh& of, const Test& test) const {
    std::vector<uint32_t> found;
    for (uint32_t i = 0; i < of.triangles.size(); ++i) {
      if (test(centre_Tri(of, i))) found.push_back(i);
    }
    return found;
  }
  void write_Rectangle(const char* file, double x0, double y0, double x1, double y1) const {
    folder.write(file, print_Curves({{{x0, y0, 1}, {x1, y0, 1}, {x1, y1, 1}, {x0, y1, 1}}}));
  }
};

bool is_Within(const T3DVEC& c, double x0, double y0, double x1, double y1) {
  return c.z == 1.0 && c.x > x0 && c.x < x1 && c.y > y0 && c.y < y1;
}

TEST_F(Inside, ARectangle_HoldsTheTrianglesToItsLeft) {
  write_Rectangle("a.pol", 2, 2, 7, 6);
  const Json json = answer("lower.stl --curve a.pol");
  EXPECT_EQ(json["inside"]["triangles"].get<std::vector<uint32_t>>(),
            list(lower, [](const T3DVEC& c) { return is_Within(c, 2, 2, 7, 6); }));
  EXPECT_NEAR(json["inside"]["area"], 20.0, 1e-9);
  EXPECT_NEAR(json["inside"]["share"], 20.0 / 240.0, 1e-12);
  EXPECT_EQ(json["outside"]["count"], 440);
  EXPECT_EQ(json["curves"][0]["count"], 4);
  EXPECT_NEAR(json["curves"][0]["length"], 18.0, 1e-9);
  EXPECT_EQ(json["curves"][0]["vertices"], 18);
  EXPECT_NEAR(json["curves"][0]["laid"], 18.0, 1e-9);
}

TEST_F(Inside, Reverse_TakesTheOtherSide) {
  write_Rectangle("a.pol", 2, 2, 7, 6);
  const Json json = answer("lower.stl --curve a.pol --reverse");
  EXPECT_EQ(json["reverse"], true);
  EXPECT_EQ(json["inside"]["triangles"].get<std::vector<uint32_t>>(),
            list(lower, [](const T3DVEC& c) { return !is_Within(c, 2, 2, 7, 6); }));
  EXPECT_TRUE(has_Text(run("lower.stl --curve a.pol --reverse").out,
                       "If the smaller part was meant, --reverse takes it."));
}

TEST_F(Inside, SeveralFiles_AreTakenTogether) {
  write_Rectangle("a.pol", 1, 1, 4, 4);
  write_Rectangle("b.pol", 6, 5, 9, 9);
  const Json json = answer("lower.stl --curve a.pol --curve b.pol");
  EXPECT_EQ(json["inside"]["triangles"].get<std::vector<uint32_t>>(),
            list(lower, [](const T3DVEC& c) {
              return is_Within(c, 1, 1, 4, 4) || is_Within(c, 6, 5, 9, 9);
            }));
  EXPECT_EQ(json["curves"][1]["source"], "b.pol");
}

TEST_F(Inside, ACurveBesideTheVertices_IsLaidAlongTheNearestOnes) {
  folder.write("a.pol",
               print_Curves({{{2.2, 1.8, 1.3}, {7.1, 2.3, 0.9}, {6.8, 6.3, 1}, {1.9, 5.8, 1}}}));
  const Json json = answer("lower.stl --curve a.pol");
  EXPECT_EQ(json["inside"]["triangles"].get<std::vector<uint32_t>>(),
            list(lower, [](const T3DVEC& c) { return is_Within(c, 2, 2, 7, 6); }));
}

TEST_F(Inside, RandomRectangles_HoldWhatAPlainTestFinds) {
  std::mt19937 random(7301);
  std::uniform_int_distribution<int> place(0, 10);
  for (int round = 0; round < 8; ++round) {
    int x0 = place(random), x1 = place(random), y0 = place(random), y1 = place(random);
    if (x0 > x1) std::swap(x0, x1);
    if (y0 > y1) std::swap(y0, y1);
    if (x0 == x1 || y0 == y1) continue;
    write_Rectangle("a.pol", x0, y0, x1, y1);
    EXPECT_EQ(answer("lower.stl --curve a.pol")["inside"]["triangles"].get<std::vector<uint32_t>>(),
              list(lower, [&](const T3DVEC& c) { return is_Within(c, x0, y0, x1, y1); }))
        << x0 << " " << y0 << " " << x1 << " " << y1;
  }
}

TEST_F(Inside, TheRimOfAnArea_GivesTheAreaBack) {
  ASSERT_EQ(run_Built(folder, "rim lower.stl --axis 0,0,1").status, 0);
  const Json json = answer("lower.stl --curve rim/rim.pol");
  EXPECT_EQ(json["inside"]["triangles"].get<std::vector<uint32_t>>(),
            list(lower, [](const T3DVEC& c) { return c.z == 1.0; }));
}

TEST_F(Inside, TheRimOfAHiddenHalf_GivesTheSeenHalfBack) {
  uint32_t start = 0;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (centre_Tri(mesh, i).z == 1.0 && centre_Tri(mesh, i).y > 5.0) start = i;
  }
  for (const char* method : {"grid", "edges"}) {
    ASSERT_EQ(run_Built(folder, std::string("rim part.stl --axis 0,0,1 --method ") + method +
                                    " --start " + std::to_string(start))
                  .status,
              0);
    EXPECT_EQ(
        answer("part.stl --curve rim/rim.pol")["inside"]["triangles"].get<std::vector<uint32_t>>(),
        list(mesh, [](const T3DVEC& c) { return c.z == 1.0 && c.y > 5.0; }))
        << method;
  }
}

TEST_F(Inside, TheRimOfARing_GivesTheRingBack) {
  const auto in_Ring = [](const T3DVEC& c) { return c.z == 1.0 && !is_Within(c, 3, 3, 7, 7); };
  folder.write("ring.txt", list_Centres(lower, in_Ring));
  ASSERT_EQ(run_Built(folder, "rim lower.stl --axis 0,0,1 --method grid-roi --roi ring.txt").status,
            0);
  EXPECT_EQ(
      answer("lower.stl --curve rim/rim.pol")["inside"]["triangles"].get<std::vector<uint32_t>>(),
      list(lower, in_Ring));
}

TEST_F(Inside, TheList_IsReadByRoi) {
  write_Rectangle("a.pol", 2, 2, 7, 6);
  ASSERT_EQ(run("lower.stl --curve a.pol").status, 0);
  const Ran ran =
      run_Built(folder, "classify lower.stl --axis 0,0,1 --roi inside/inside.txt --json");
  ASSERT_EQ(ran.status, 0) << ran.err;
  EXPECT_NEAR(Json::parse(ran.out)["region"]["area"], 20.0, 1e-9);
}

TEST_F(Inside, Ply_MarksWhatIsInside) {
  Soup corners = make_Lower();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("lower.stl", make_BinaryStl(corners));
  write_Rectangle("a.pol", 2, 2, 7, 6);
  const Json json = answer("lower.stl --curve a.pol");
  EXPECT_EQ(json["inside"]["count"], 40);
  EXPECT_EQ(json["outside"]["count"], 440) << "two equal corners are in neither";
  const Mesh with = weld_Corners(corners);
  const std::string ply = load_File(folder.path / "inside/inside.ply");
  ASSERT_TRUE(has_Text(ply, "property int inside\n"));
  for (uint32_t i = 0; i < with.triangles.size(); ++i) {
    int32_t value = 9;
    std::memcpy(&value, load_Value(ply, with, i, 4).data(), 4);
    EXPECT_EQ(value, i == 480 ? -1 : is_Within(centre_Tri(with, i), 2, 2, 7, 6) ? 1 : 0) << i;
  }
}

TEST_F(Inside, PrintsATableAndWritesThreeFiles) {
  write_Rectangle("a.pol", 2, 2, 7, 6);
  const Ran ran = run("lower.stl --curve a.pol");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece : {"       0           4        18.000          18        18.000   a.pol",
                            "  inside          40        20.000     8.3 %",
                            " outside         440       220.000    91.7 %",
                            "Written: inside/inside.ply, inside/inside.json, inside/inside.txt"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
  EXPECT_FALSE(has_Text(ran.out, "--reverse"));
}

TEST_F(Inside, ACurveFarFromItsWay_IsNoted) {
  // Through the plate: the way goes round by its sides.
  folder.write("a.pol", print_Curves({{{2, 2, 1}, {8, 2, 1}, {8, 5, 0}, {2, 5, 0}}}));
  write_Rectangle("b.pol", 2, 2, 7, 6);
  const Ran ran = run("lower.stl --curve b.pol --curve a.pol");
  EXPECT_TRUE(has_Text(ran.out, "Curve 1 is laid along a much longer way")) << ran.out << ran.err;
  EXPECT_FALSE(has_Text(ran.out, "Curve 0 is laid"));
}

TEST_F(Inside, BadCurves_AreToldWithTheirLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "bad.pol: the file holds no curve"},
      {"<a>\n1 2 3\n", "the block <a> has no end"},
      {"<a>\n<b>\n", "bad.pol:2: a block begins inside <a>"},
      {"</a>\n", "bad.pol:1: </a> closes a block that was not opened"},
      {"<a>\n</b>\n", "bad.pol:2: </b> closes a block"},
      {"1 2 3\n", "bad.pol:1: '1 2 3' stands outside a block"},
      {"<a>\n1 2\n", "bad.pol:2: a point needs three numbers"},
      {"<a>\n1 2 3 4\n", "bad.pol:2: a point needs three numbers"},
      {"<a>\n1 x 3\n", "bad.pol:2: 'x' is no coordinate"},
      {"<a>\n1 inf 3\n", "bad.pol:2: 'inf' is no coordinate"},
      {"<a\n", "bad.pol:1: '<a' is no tag"},
      {"<>\n", "is no tag"},
      {"<a>\n1 2 3\n4 5 6\n1 2 3\n</a>\n", "bad.pol:5: the curve <a> has fewer than three points"}};
  for (const auto& [text, piece] : cases) {
    folder.write("bad.pol", text);
    const Ran ran = run("lower.stl --curve bad.pol");
    EXPECT_EQ(ran.status, 3) << text;
    EXPECT_TRUE(has_Text(ran.err, piece)) << text << ": " << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "inside"));
  }
}

TEST_F(Inside, ACurveWithoutAWayRound_IsBadInput) {
  folder.write("small.pol", print_Curves({{{2, 2, 1}, {2.1, 2, 1}, {2.1, 2.1, 1}}}));
  folder.write("two.pol", print_Curves({{{2, 2, 1}, {7, 2, 1}, {7, 3, 5}}}));
  for (const char* file : {"small.pol", "two.pol"}) {
    const Ran ran = run(std::string("part.stl --curve ") + file);
    EXPECT_EQ(ran.status, 3) << file;
    EXPECT_TRUE(has_Text(ran.err, ": curve 1 finds no way round")) << ran.err;
  }
}

TEST_F(Inside, ACurveThatBoundsNothing_SaysSo) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(4)));
  // The border of an open surface: all lies to its left.
  Curve border;
  const Soup corners = make_Dome(4);
  for (const auto& [x, y] : {std::pair{0.0, 0.0}, {10.0, 0.0}, {10.0, 10.0}, {0.0, 10.0}}) {
    for (const T3DVEC& c : corners) {
      if (c.x == x && c.y == y) {
        border.push_back(c);
        break;
      }
    }
  }
  folder.write("all.pol", print_Curves({border}));
  const Ran ran = run("dome.stl --curve all.pol");
  EXPECT_EQ(ran.status, 1);
  EXPECT_TRUE(has_Text(ran.err, "the curves bound nothing on this part")) << ran.err;
}

TEST_F(Inside, WrongUsage_SaysWhatToDo) {
  const std::pair<const char*, const char*> cases[] = {
      {"lower.stl", "--curve: name at least one file"},
      {"lower.stl --curve ''", "--curve: the name of the file is empty"},
      {"'' --curve a.pol", "PART: the name of the file is empty"},
      {"lower.stl --curve a.pol -o ''", "-o: the name of the folder is empty"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
  }
  EXPECT_EQ(run("lower.stl --curve none.pol").status, 3);
}

TEST(CurveFile, ReadsWhatItWrites) {
  Folder folder;
  const std::vector<Curve> curves{{{1.5, -2.25, 1e6}, {0, 0, 0}, {-0.0, 3.125, 7}},
                                  {{1, 2, 3}, {4, 5, 6}, {7, 8, 10}, {1, 0, 1}}};
  folder.write("a.pol", print_Curves(curves));
  EXPECT_TRUE(load_File(folder.path / "a.pol")
                  .starts_with("<000>\n1.500000 -2.250000 1000000.000000\n0.000000 0.000000 "));
  const std::vector<Curve> read = read_Curves(folder.path / "a.pol");
  ASSERT_EQ(read.size(), 2u);
  for (size_t i = 0; i < read.size(); ++i) {
    ASSERT_EQ(read[i].size(), curves[i].size());
    for (size_t k = 0; k < read[i].size(); ++k) EXPECT_EQ(len_Vec(read[i][k] - curves[i][k]), 0.0);
  }
}

TEST(CurveFile, PassesOverCommentsAndARepeatedFirstPoint) {
  Folder folder;
  folder.write("a.pol",
               "\xEF\xBB\xBF# a curve\r\n\r\n<lnd(012)>  # tag\r\n 1\t2 3\r\n4 5 6\r\n7 8 9\r\n"
               "1 2 3\r\n</lnd(012)>\r\n");
  const std::vector<Curve> read = read_Curves(folder.path / "a.pol");
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].size(), 3u);
}

TEST(CurvePaths, WhereTheWayMeetsItself_TheLargestLoopIsKept) {
  const Part part = make_Part(make_Lower());
  CurvePaths paths(part.mesh);
  // A figure of eight: a square of side 2 and one of side 4 that touch in a corner.
  const Curve eight{{2, 2, 1}, {4, 2, 1}, {4, 4, 1}, {8, 4, 1},
                    {8, 8, 1}, {4, 8, 1}, {4, 4, 1}, {2, 4, 1}};
  const std::vector<uint32_t> loop = paths.lay(eight);
  ASSERT_EQ(loop.size(), 16u);
  for (const uint32_t vertex : loop) {
    EXPECT_GE(part.mesh.vertices[vertex].x, 4.0);
    EXPECT_GE(part.mesh.vertices[vertex].y, 4.0);
  }
}

TEST(CurvePaths, ALoopThatRunsTheOtherWay_IsNotKept) {
  const Part part = make_Part(make_Lower());
  CurvePaths paths(part.mesh);
  // A square of side 4 counter-clockwise, with a longer but flatter loop clockwise at its corner.
  const Curve eight{{2, 2, 1}, {6, 2, 1}, {6, 6, 1}, {6, 7, 1}, {1, 7, 1},
                    {1, 8, 1}, {8, 8, 1}, {8, 6, 1}, {6, 6, 1}, {2, 6, 1}};
  const std::vector<uint32_t> loop = paths.lay(eight);
  ASSERT_EQ(loop.size(), 16u);
  for (const uint32_t vertex : loop) EXPECT_LE(part.mesh.vertices[vertex].y, 6.0);
}

TEST(CurvePaths, OfManyShortWays_ThatNearTheCurveIsTaken) {
  const Part part = make_Part(make_Lower());
  CurvePaths paths(part.mesh);
  const Curve slanted{{1, 1, 1}, {9, 3, 1}, {7, 9, 1}, {2, 9, 1}};
  const std::vector<uint32_t> loop = paths.lay(slanted);
  ASSERT_FALSE(loop.empty());
  for (const uint32_t vertex : loop) {
    EXPECT_LT(dist_Curve(slanted, part.mesh.vertices[vertex]), 0.75);
  }
}

TEST(CurvePaths, ADetourAndBack_IsCutOff) {
  const Part part = make_Part(make_Lower());
  CurvePaths paths(part.mesh);
  const Curve spike{{2, 2, 1}, {7, 2, 1}, {9, 2, 1}, {7, 2, 1}, {7, 6, 1}, {2, 6, 1}};
  EXPECT_EQ(paths.lay(spike).size(), 18u);
}

}  // namespace
}  // namespace undercut::host
