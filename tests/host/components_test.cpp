#include "host/components_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <map>

#include "host/edges.h"
#include "plates_command.h"

namespace undercut::host {
namespace {

using Sets = std::vector<std::vector<uint32_t>>;

struct Components : PlatesCommand {
  Components() : PlatesCommand("components") {}

  // All that stands in z of 1 and 5: a square of 10 by 10, and one of 10 by 5.
  void write_Tops() const {
    folder.write("tops.txt",
                 list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0 || c.z == 5.0; }));
  }
};

Sets list_Pieces(const Json& json) {
  Sets pieces;
  for (const Json& piece : json["pieces"]) {
    pieces.push_back(piece["triangles"].get<std::vector<uint32_t>>());
  }
  return pieces;
}

// Pieces of the marked triangles that share edges, by their lowest triangle.
Sets join_Plainly(const Mesh& mesh, const std::vector<bool>& marked) {
  Groups groups = join_Marked(list_Edges(mesh), marked);
  std::map<uint32_t, std::vector<uint32_t>> found;
  for (uint32_t i = 0; i < marked.size(); ++i) {
    if (marked[i]) found[groups.find(i)].push_back(i);
  }
  Sets pieces;
  for (auto& [leader, list] : found) pieces.push_back(list);
  return pieces;
}

TEST_F(Components, ThePlatesAreTwoPieces) {
  const Json json = answer("part.stl");
  const Sets pieces = list_Pieces(json);
  ASSERT_EQ(pieces.size(), 2u);
  for (uint32_t i = 0; i < 740; ++i) EXPECT_EQ(pieces[i < 480 ? 0 : 1][i < 480 ? i : i - 480], i);
  EXPECT_EQ(json["pieces"][0]["number"], 1);
  EXPECT_NEAR(json["pieces"][0]["area"], 240.0, 1e-9);
  EXPECT_NEAR(json["pieces"][0]["share"], 240.0 / 370.0, 1e-12);
  EXPECT_EQ(json["pieces"][0]["kept"], true);
  EXPECT_TRUE(json["pieces"][0]["largest"].is_null());
  EXPECT_TRUE(json["filter"].is_null());
  EXPECT_TRUE(json["corridor"].is_null());
  EXPECT_EQ(json["kept"]["count"], 740);
  EXPECT_EQ(json["dropped"]["count"], 0);
}

TEST_F(Components, Roi_OnlyItsTrianglesAreSplit) {
  // Stripes of the lower plate's top, one cell wide, with one cell between them.
  const auto test = [](const T3DVEC& c) {
    return c.z == 1.0 && static_cast<int>(std::floor(c.x)) % 2 == 0;
  };
  folder.write("stripes.txt", list_Centres(mesh, test));
  const Json json = answer("part.stl --roi stripes.txt");
  std::vector<bool> marked(mesh.triangles.size());
  for (uint32_t i = 0; i < marked.size(); ++i) marked[i] = test(centre_Tri(mesh, i));
  EXPECT_EQ(list_Pieces(json), join_Plainly(mesh, marked));
  EXPECT_EQ(json["pieces"].size(), 5u);
  EXPECT_EQ(json["region"]["area"], 50.0);
}

TEST_F(Components, Merge_JoinsPiecesWhoseCornersLieTogether) {
  folder.write("two.stl", make_BinaryStl(join_Soups(make_Box({0, 0, 0}, {2, 2, 2}),
                                                    make_Box({2.0625, 0, 0}, {4.0625, 2, 2}))));
  EXPECT_EQ(answer("two.stl")["pieces"].size(), 2u);
  const Json json = answer("two.stl --merge 0.07");
  EXPECT_EQ(json["pieces"].size(), 1u);
  EXPECT_EQ(json["parameters"]["ucs.f_eps"], 0.07);
  EXPECT_EQ(answer("two.stl --merge 0.06")["pieces"].size(), 2u);
}

TEST_F(Components, Lists_AreWhatRoiReads) {
  write_Tops();
  const Ran ran = run("part.stl --roi tops.txt");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out,
                       "components/components.json, components/piece-1.txt to "
                       "piece-2.txt"))
      << ran.out;
  const Json json = Json::parse(load_File(folder.path / "components/components.json"));
  const Json again = answer("part.stl --roi components/piece-2.txt -o again");
  EXPECT_EQ(again["pieces"][0]["triangles"], json["pieces"][1]["triangles"]);
}

TEST_F(Components, ListsOfAnEarlierRun_AreReplaced) {
  answer("part.stl");
  folder.write("components/piece-2.txt.bak", "mine");
  folder.write("components/piece-02.txt", "mine");
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-2.txt"));
  answer("lower.stl");
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-1.txt"));
  EXPECT_FALSE(fs::exists(folder.path / "components/piece-2.txt"));
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-2.txt.bak"));
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-02.txt"));
}

TEST_F(Components, MinArea_DropsSmallerPiecesAndKeepsTheirNumbers) {
  write_Tops();
  const Json json = answer("part.stl --roi tops.txt --min-area 60");
  EXPECT_EQ(json["filter"]["min_area"], 60.0);
  EXPECT_EQ(json["filter"]["min_value"], 0.0);
  EXPECT_EQ(json["pieces"][0]["kept"], true);
  EXPECT_EQ(json["pieces"][1]["kept"], false);
  EXPECT_EQ(json["kept"]["area"], 100.0);
  EXPECT_EQ(json["dropped"]["area"], 50.0);
  EXPECT_FALSE(fs::exists(folder.path / "components/piece-2.txt"));
  EXPECT_EQ(answer("part.stl --roi tops.txt --min-area 50")["pieces"][1]["kept"], true)
      << "a piece right at the limit stays";
  const Ran ran = run("part.stl --roi tops.txt --set flt.f_srf=60");
  EXPECT_TRUE(has_Text(ran.out, "33.3 %  dropped")) << ran.out;
  EXPECT_TRUE(has_Text(ran.out, "2 pieces, 1 kept")) << ran.out;
}

TEST_F(Components, MinValue_DropsPiecesWithoutALargeValue) {
  write_Tops();
  std::string values;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    values += (centre_Tri(mesh, i).z == 5.0 ? "3\n" : "1\n");
  }
  folder.write("v.txt", values);
  const Json json = answer("part.stl --roi tops.txt --values v.txt --min-value 2");
  EXPECT_EQ(json["pieces"][0]["largest"], 1.0);
  EXPECT_EQ(json["pieces"][0]["kept"], false);
  EXPECT_EQ(json["pieces"][1]["kept"], true);
  EXPECT_FALSE(fs::exists(folder.path / "components/piece-1.txt"));
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-2.txt"));
  EXPECT_TRUE(answer("part.stl --roi tops.txt --values v.txt")["filter"].is_null());
}

TEST_F(Components, Outside_DropsPiecesThatReachIntoTheCurves) {
  // Round four cells of the upper plate's top, counter-clockwise as seen from above.
  folder.write("curve.pol", "<000>\n3 1 5\n5 1 5\n5 3 5\n3 3 5\n</000>\n");
  write_Tops();
  const Json json = answer("part.stl --roi tops.txt --outside curve.pol");
  EXPECT_EQ(json["filter"]["outside"], Json({"curve.pol"}));
  EXPECT_EQ(json["pieces"][0]["kept"], true);
  EXPECT_EQ(json["pieces"][1]["kept"], false);
}

TEST_F(Components, Corridor_TakesWhatReachesIntoItsSlabs) {
  // Between y = 6.5 - 0.2 and 6.5 + 0.2 only the lower plate has cells: the row from 6 to 7.
  const Json json = answer("part.stl --corridor 0,6.5,0,2,0,0 --axis 0,0,1 --width 0.4");
  EXPECT_EQ(json["corridor"]["direction"], Json({1.0, 0.0, 0.0}));
  EXPECT_EQ(json["corridor"]["width"], 0.4);
  ASSERT_EQ(json["pieces"].size(), 1u);
  std::vector<uint32_t> expected;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    double low = 99.0, high = -99.0;
    for (const uint32_t v : {mesh.triangles[i].a, mesh.triangles[i].b, mesh.triangles[i].c}) {
      low = std::min(low, mesh.vertices[v].y);
      high = std::max(high, mesh.vertices[v].y);
    }
    if (low < 6.7 && high > 6.3) expected.push_back(i);
  }
  EXPECT_EQ(list_Pieces(json)[0], expected);
  EXPECT_EQ(expected.size(), 44u);
  write_Tops();
  const Json both =
      answer("part.stl --corridor 0,2.5,0,2,0,0 --axis 0,0,1 --width 0.4 --roi tops.txt");
  EXPECT_EQ(both["pieces"].size(), 2u) << "a row of each plate's top";
  EXPECT_EQ(both["kept"]["area"], 20.0);
}

TEST_F(Components, ACorridorBesideThePart_HasNoPiece) {
  const Ran ran = run("part.stl --corridor 0,60,0,1,0,0 --axis 0,0,1 --min-area 1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "0 pieces")) << ran.out;
  EXPECT_FALSE(fs::exists(folder.path / "components/piece-1.txt"));
}

TEST_F(Components, Ply_HoldsTheNumberOfEachPiece) {
  write_Tops();
  answer("part.stl --roi tops.txt --min-area 60");
  const std::string ply = load_File(folder.path / "components/components.ply");
  ASSERT_TRUE(has_Text(ply, "property int piece\n"));
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    int32_t number = 9;
    std::memcpy(&number, load_Value(ply, mesh, i, 4).data(), 4);
    const double z = centre_Tri(mesh, i).z;
    EXPECT_EQ(number, z == 1.0 ? 1 : z == 5.0 ? 0 : -1);
  }
}

TEST_F(Components, MoreThanAThousandPieces_AreNotWrittenAsLists) {
  Soup corners;
  for (int i = 0; i < 1001; ++i) {
    const T3DVEC at{2.0 * i, 0, 0};
    corners.insert(corners.end(), {at, at + T3DVEC{1, 0, 0}, at + T3DVEC{0, 1, 0}});
  }
  folder.write("many.stl", make_BinaryStl(corners));
  const Ran ran = run("many.stl");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.err, "no lists are written for more than 1000 pieces")) << ran.err;
  EXPECT_FALSE(fs::exists(folder.path / "components/piece-1.txt"));
  corners.resize(3000);
  folder.write("many.stl", make_BinaryStl(corners));
  EXPECT_EQ(run("many.stl").err, "");
  EXPECT_TRUE(fs::exists(folder.path / "components/piece-1000.txt"));
}

TEST_F(Components, WrongUsage_SaysWhatToDo) {
  expect_Refused(
      2,
      {{"part.stl --axis 0,0,1", "--axis and --width are for --corridor"},
       {"part.stl --width 2", "--axis and --width are for --corridor"},
       {"part.stl --corridor 0,0,0,1,0,0", "--corridor: name at least one --axis"},
       {"part.stl --corridor 0,0,0 --axis 0,0,1", "write a point and a direction as six numbers"},
       {"part.stl --corridor 0,0,0,1,0,0 --axis 2,0,0", "runs along the corridor's line"},
       {"part.stl --corridor 0,0,0,1,0,0 --axis 0,0,1 --width 0", "--width '0': write a length"},
       {"part.stl --merge -1", "--merge '-1': write a length above 0"},
       {"part.stl --min-area x", "--min-area 'x': write an area of 0 or more"},
       {"part.stl --values v.txt --min-value -2", "--min-value '-2': write a value of 0 or more"},
       {"part.stl --min-value 2", "--min-value: give a value for each triangle with --values"},
       {"part.stl --outside ''", "--outside: the name of the file is empty"}});
}

TEST_F(Components, CurvesThatBoundNothing_AreBadInput) {
  folder.write("dot.pol", "<000>\n3 1 5\n3 1 5.01\n3 1.01 5\n</000>\n");
  const Ran ran = run("part.stl --outside dot.pol");
  EXPECT_EQ(ran.status, 3);
  EXPECT_TRUE(has_Text(ran.err, "--outside: the curves bound nothing of the part")) << ran.err;
  EXPECT_EQ(run("part.stl --outside missing.pol").status, 3);
}

TEST_F(Components, ASettingWithoutEffect_IsNoted) {
  EXPECT_TRUE(
      has_Text(run("part.stl --set con.f_wid=1").err, "con.f_wid has no effect on the components"));
  EXPECT_EQ(run("part.stl --set ucs.f_eps=0.01").err, "");
}

}  // namespace
}  // namespace undercut::host
