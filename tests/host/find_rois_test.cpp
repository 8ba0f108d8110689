// The search for the axis and the undercuts, on bodies of cubes whose hidden faces are known.
#include "host/find_rois.h"

#include <nlohmann/json.hpp>

#include <set>

#include "host/errors.h"
#include "host/flat_faces.h"
#include "host/prepare.h"
#include "overhang.h"
#include "support.h"

namespace undercut::host {
namespace {

using Json = nlohmann::ordered_json;
using Triangles = std::vector<uint32_t>;

// A block of 10 by 10 by 10 cubes of 2 mm of which some are cut out.
template <typename Cut>
Soup make_Block(const Cut& is_Cut) {
  constexpr int kSize = 10;
  const auto is_Solid = [&](const int(&c)[3]) {
    for (const int k : c) {
      if (k < 0 || k >= kSize) return false;
    }
    return !is_Cut(c[0], c[1], c[2]);
  };
  Soup corners;
  for (int i = 0; i < kSize * kSize * kSize * 6; ++i) {
    const int cube = i / 6, axis = i % 6 / 2, side = i % 2;
    const int c[3] = {cube % kSize, cube / kSize % kSize, cube / kSize / kSize};
    int next[3] = {c[0], c[1], c[2]};
    next[axis] += side == 1 ? 1 : -1;
    if (!is_Solid(c) || is_Solid(next)) continue;
    // The face's corner and its edges u and v, which turn to the outer side.
    double p[3] = {2.0 * c[0], 2.0 * c[1], 2.0 * c[2]}, u[3] = {}, v[3] = {};
    p[axis] += 2.0 * side;
    u[(axis + (side == 1 ? 1 : 2)) % 3] = 2.0;
    v[(axis + (side == 1 ? 2 : 1)) % 3] = 2.0;
    const T3DVEC a{p[0], p[1], p[2]}, du{u[0], u[1], u[2]}, dv{v[0], v[1], v[2]};
    corners.insert(corners.end(), {a, a + du, a + du + dv, a, a + du + dv, a + dv});
  }
  return corners;
}

bool is_Within(int value, int low, int high) { return value >= low && value < high; }

// A wide pocket under a narrow mouth: the T of a slot that is closed at both ends.
bool is_Slot(int x, int y, int z) {
  if (z >= 6) return is_Within(x, 4, 6) && is_Within(y, 2, 8);
  return is_Within(z, 3, 6) && is_Within(x, 2, 8) && is_Within(y, 1, 9);
}
// A deep pocket in the side towards -Y, and two small ones in the side towards -X.
bool is_Deep(int x, int y, int z) {
  return is_Within(x, 3, 7) && is_Within(z, 3, 7) && is_Within(y, 0, 5);
}
bool is_Shallow(int x, int y, int z) {
  return is_Within(x, 0, 2) && is_Within(y, 6, 8) && is_Within(z, 5, 8);
}
bool is_Shallower(int x, int y, int z) { return x == 0 && y == 6 && z == 1; }
bool is_SidePocket(int x, int y, int z) {
  return is_Deep(x, y, z) || is_Shallow(x, y, z) || is_Shallower(x, y, z);
}

// The triangles inside the block whose centre, a little lifted, lies in a cube that is cut out.
template <typename Cut>
Triangles list_Walls(const Mesh& mesh, const Cut& is_Cut) {
  Triangles list;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI& t = mesh.triangles[i];
    const T3DVEC a = mesh.vertices[t.a];
    const T3DVEC n = unit_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a));
    const T3DVEC p = 0.5 * (centre_Tri(mesh, i) + 0.1 * n);
    const T3DVEC cube{std::floor(p.x), std::floor(p.y), std::floor(p.z)};
    if (cube.x < 0 || cube.y < 0 || cube.z < 0 || cube.x > 9 || cube.y > 9 || cube.z > 9) continue;
    if (is_Cut(int(cube.x), int(cube.y), int(cube.z))) list.push_back(i);
  }
  return list;
}

double sum_Area(const Mesh& mesh, const Triangles& triangles) {
  double area = 0.0;
  for (const uint32_t triangle : triangles) area += area_Tri(mesh, triangle);
  return area;
}

// Stores the parameters as a run of the command does.
Search search_Part(const Part& part, double min_area = -1.0) {
  for (const Setting& setting : add_SearchSettings({})) setting.parameter->store(setting.value);
  return search_Rois(part, min_area);
}

TEST(FindRois, ASlotUnderANarrowMouth_IsOnePatchOfExactlyTheHiddenFaces) {
  const Part part = make_Part(make_Block(is_Slot));
  const Search search = search_Part(part);
  EXPECT_EQ(std::fabs(search.axis.z), 1.0);
  EXPECT_FALSE(search.from_face);
  ASSERT_EQ(search.patches.size(), 1u);
  Triangles hidden;
  for (const uint32_t i : list_Walls(part.mesh, is_Slot)) {
    const T3DVEC centre = centre_Tri(part.mesh, i);
    const bool under_mouth =
        is_Within(int(centre.x / 2), 4, 6) && is_Within(int(centre.y / 2), 2, 8);
    if (centre.z < 12.1 && !under_mouth) hidden.push_back(i);
  }
  EXPECT_EQ(search.patches[0].triangles, hidden);
  // Floor and ceiling without the mouth, and the walls all round.
  const double area = 4.0 * (2 * (6 * 8 - 2 * 6) + 3 * 2 * (6 + 8));
  EXPECT_DOUBLE_EQ(search.undercut, area);
  EXPECT_EQ(search.triangles, hidden.size());
  EXPECT_EQ(search.dropped, 0u);
  EXPECT_NEAR(search.seen(), 1.0 - area / search.area, 1e-12);
  EXPECT_DOUBLE_EQ(search.min_area, kSmallestShare * search.area);
}

TEST(FindRois, OfPocketsInTwoSides_TheAxisTakesTheLargerAndThePatchesAreTheOthers) {
  const Part part = make_Part(make_Block(is_SidePocket));
  const Search search = search_Part(part);
  // The end that looks into the deep pocket is up. Its way is a normal of the block's faces,
  // between the directions that the search scans.
  EXPECT_EQ(search.axis.x, 0.0);
  EXPECT_EQ(search.axis.y, -1.0);
  EXPECT_EQ(search.axis.z, 0.0);
  EXPECT_TRUE(search.from_face);
  ASSERT_EQ(search.patches.size(), 2u);
  EXPECT_EQ(search.patches[0].triangles, list_Walls(part.mesh, is_Shallow));
  EXPECT_EQ(search.patches[1].triangles, list_Walls(part.mesh, is_Shallower));
  EXPECT_EQ(search.patches[0].source, "undercut patch");
}

TEST(FindRois, PatchesBelowTheLeastAreaAreDropped_ThoseOfJustThatAreaAreNot) {
  const Part part = make_Part(make_Block(is_SidePocket));
  const Triangles small = list_Walls(part.mesh, is_Shallower);
  const double area = sum_Area(part.mesh, small);
  EXPECT_EQ(search_Part(part, area).patches.size(), 2u);
  const Search search = search_Part(part, area * 1.001);
  ASSERT_EQ(search.patches.size(), 1u);
  EXPECT_EQ(search.dropped, 1u);
  EXPECT_EQ(search.dropped_triangles, small);
  EXPECT_DOUBLE_EQ(search.dropped_area, area);
  EXPECT_EQ(search.triangles, small.size() + search.patches[0].triangles.size());

  const Search none = search_Part(part, 1e6);
  EXPECT_TRUE(none.patches.empty());
  Triangles all = list_Walls(part.mesh, is_Shallow);
  all.insert(all.end(), small.begin(), small.end());
  std::sort(all.begin(), all.end());
  EXPECT_EQ(none.dropped_triangles, all);
  EXPECT_DOUBLE_EQ(none.undercut, sum_Area(part.mesh, all));
  EXPECT_DOUBLE_EQ(none.dropped_area, none.undercut);
}

TEST(FindRois, TurnedInSpace_TheSamePatchesAreFound) {
  const Rotation turn = rotate_Up({0.3, -0.5, 0.7});
  Part part = make_Part(make_Block(is_SidePocket));
  const Triangles shallow = list_Walls(part.mesh, is_Shallow);
  for (T3DVEC& vertex : part.mesh.vertices) vertex = turn.turn(vertex);
  const Search search = search_Part(part);
  EXPECT_LT(len_Vec(search.axis - turn.turn({0, -1, 0})), 1e-9);
  ASSERT_EQ(search.patches.size(), 2u);
  EXPECT_EQ(search.patches[0].triangles, shallow);
}

TEST(FindRois, APartWithoutUndercut_HasNoPatch) {
  const Search search = search_Part(make_Part(make_Block(is_Deep)));
  EXPECT_EQ(search.undercut, 0.0);
  EXPECT_EQ(search.triangles, 0u);
  EXPECT_TRUE(search.patches.empty());
  EXPECT_EQ(search.seen(), 1.0);
}

TEST(FindRois, APartWithoutSurface_IsAnInputError) {
  Part part = make_Part({{0, 0, 0}, {0, 0, 0}, {1, 0, 0}});
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { search_Part(part); }), "no surface"));
}

TEST(FindRois, Settings_TakeThreeBandsAndTrueAreasUnlessTheUserSaysOtherwise) {
  const auto list = [](const std::vector<Setting>& settings) {
    std::vector<std::string> all;
    for (const Setting& s : add_SearchSettings(settings)) {
      all.push_back(s.parameter->name() + "=" + show_Value(s.value));
    }
    return all;
  };
  using Texts = std::vector<std::string>;
  EXPECT_EQ(list({}), Texts({"dcm.n_con=3", "err.f_gew=1"}));
  EXPECT_EQ(list({parse_Setting("n_con=1")}), Texts({"err.f_gew=1", "dcm.n_con=1"}));
  EXPECT_EQ(list({parse_Setting("T_win=40"), parse_Setting("err.f_gew=0.5")}),
            Texts({"dcm.n_con=3", "dcm.T_win=40", "err.f_gew=0.5"}));
}

// ---- Patches -----------------------------------------------------------------------------------

// Triangles that stand on the edge from vertex 0 to vertex 1, and a last one that shares nothing
// but vertex 0 with them.
Mesh make_Fan(int pages) {
  Mesh mesh;
  mesh.vertices = {{0, 0, 0}, {0, 0, 1}};
  for (int k = 0; k < pages; ++k) {
    mesh.vertices.push_back({std::cos(1.0 * k), std::sin(1.0 * k), 0});
    mesh.triangles.push_back({0, 1, static_cast<uint32_t>(k + 2)});
  }
  const auto last = static_cast<uint32_t>(mesh.vertices.size());
  mesh.vertices.insert(mesh.vertices.end(), {{0, 0, -1}, {1, 0, -1}});
  mesh.triangles.push_back({0, last, last + 1});
  return mesh;
}

TEST(ListPatches, AnEdgeOfManyJoinsAll_ACornerJoinsNothing) {
  const Mesh mesh = make_Fan(4);
  const std::vector<MarkedPatch> patches = list_Patches(mesh, {true, true, false, true, true});
  ASSERT_EQ(patches.size(), 2u);
  EXPECT_EQ(patches[0].triangles, Triangles({0, 1, 3}));
  EXPECT_DOUBLE_EQ(patches[0].area, 1.5);
  EXPECT_EQ(patches[1].triangles, Triangles({4}));
}

// A strip of unit squares in halves along X; the widths of single squares can be changed.
Mesh make_Strip(const std::vector<double>& widths) {
  Mesh mesh;
  mesh.vertices = {{0, 0, 0}, {0, 1, 0}};
  double x = 0.0;
  for (const double width : widths) {
    const auto a = static_cast<uint32_t>(mesh.vertices.size() - 2);
    x += width;
    mesh.vertices.insert(mesh.vertices.end(), {{x, 0, 0}, {x, 1, 0}});
    mesh.triangles.insert(mesh.triangles.end(), {{a, a + 2, a + 3}, {a, a + 3, a + 1}});
  }
  return mesh;
}

TEST(ListPatches, TheLargestComesFirst_OfEqualOnesTheLowest) {
  const Mesh mesh = make_Strip({1, 1, 1, 1, 2});
  std::vector<bool> marked(10, true);
  marked[2] = marked[3] = marked[6] = marked[7] = false;
  const std::vector<MarkedPatch> patches = list_Patches(mesh, marked);
  ASSERT_EQ(patches.size(), 3u);
  EXPECT_EQ(patches[0].triangles, Triangles({8, 9}));
  EXPECT_EQ(patches[1].triangles, Triangles({0, 1}));
  EXPECT_EQ(patches[2].triangles, Triangles({4, 5}));
}

TEST(ListPatches, TrianglesWithoutAnAreaAreInNoPatchAndJoinNothing) {
  Mesh mesh = make_Strip({1, 0, 1});
  mesh.triangles.push_back({0, 0, 1});
  const std::vector<MarkedPatch> patches = list_Patches(mesh, std::vector<bool>(7, true));
  ASSERT_EQ(patches.size(), 2u);
  EXPECT_EQ(patches[0].triangles, Triangles({0, 1}));
  EXPECT_EQ(patches[1].triangles, Triangles({4, 5}));
}

// ---- Normals of flat faces ---------------------------------------------------------------------

TEST(FlatFaces, OppositeFacesAreOneDirection_TheLargestAreaFirst) {
  const Mesh mesh = weld_Corners(make_Box({0, 0, 0}, {2, 4, 8}));
  const std::vector<T3DVEC> normals = list_FaceNormals(mesh, 5, 0.0);
  ASSERT_EQ(normals.size(), 3u);
  EXPECT_EQ(normals[0].x, 1.0);
  EXPECT_EQ(normals[1].y, 1.0);
  EXPECT_EQ(normals[2].z, 1.0);
  EXPECT_EQ(list_FaceNormals(mesh, 2, 0.0).size(), 2u);
  // Areas of 64, 32 and 16 of 112.
  EXPECT_EQ(list_FaceNormals(mesh, 5, 0.2).size(), 2u);
  EXPECT_EQ(list_FaceNormals(mesh, 5, 0.5).size(), 1u);
}

TEST(FlatFaces, DegenerateTrianglesHaveNone) {
  Mesh mesh;
  mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
  mesh.triangles = {{0, 1, 2}, {0, 0, 1}};
  EXPECT_TRUE(list_FaceNormals(mesh, 5, 0.0).empty());
}

// ---- The command -------------------------------------------------------------------------------

struct SearchCommand : testing::Test {
  Folder folder;

  void SetUp() override {
    folder.write("part.stl", make_BinaryStl(make_Block(is_SidePocket)));
    folder.write("clear.stl", make_BinaryStl(make_Block(is_Deep)));
  }
  Ran run(const std::string& arguments) const { return run_Built(folder, arguments); }
  // The answer without what differs from run to run.
  Json answer(const std::string& arguments) const {
    const Ran ran = run(arguments + " --json");
    EXPECT_EQ(ran.status, 0) << arguments << ": " << ran.err;
    Json json = Json::parse(ran.out);
    json.erase("elapsed");
    json.erase("stages");
    return json;
  }
};

// The regions of interest but for where they come from.
Json strip_Sources(const Json& json) {
  Json rois = json["regions_of_interest"];
  for (Json& roi : rois) roi.erase("source");
  return rois;
}

TEST_F(SearchCommand, Decompose_FindsTheAxisAndDividesThePatches) {
  const Json json = answer("decompose part.stl --set F_quo=0");
  const Part part = make_Part(make_Block(is_SidePocket));
  EXPECT_EQ(json["schema"], 3);
  EXPECT_EQ(json["search"]["axis"], Json({0.0, -1.0, 0.0}));
  EXPECT_EQ(json["search"]["found_by"], "flat faces");
  EXPECT_EQ(json["search"]["patches"], 2);
  EXPECT_EQ(json["preparation"]["up"], Json({0.0, -1.0, 0.0}));
  EXPECT_EQ(json["parameters"], Json({{"dcm.n_con", 3}, {"err.f_gew", 1.0}, {"dcm.F_quo", 0.0}}));
  ASSERT_EQ(json["regions_of_interest"].size(), 2u);
  const Json& roi = json["regions_of_interest"][0];
  EXPECT_EQ(roi["source"], "undercut patch");
  EXPECT_EQ(roi["status"], "done");
  Triangles all = roi["free"]["triangles"].get<Triangles>();
  for (const Json& region : roi["regions"]) {
    const auto list = region["triangles"].get<Triangles>();
    all.insert(all.end(), list.begin(), list.end());
  }
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all, list_Walls(part.mesh, is_Shallow));
  // The floor of the pocket faces its mouth: a tool from -X reaches it.
  EXPECT_TRUE(std::any_of(roi["regions"].begin(), roi["regions"].end(), [](const Json& region) {
    return region["axis"][0].get<double>() < -0.9;
  })) << roi["regions"];
  EXPECT_NEAR(json["search"]["undercut"]["covered"].get<double>(),
              json["covered"].get<double>() * json["area"].get<double>() /
                  json["search"]["undercut"]["area"].get<double>(),
              1e-12);
}

TEST_F(SearchCommand, TheAnswerIsThatOfItsAxisAndPatchesGivenByHand) {
  const Json found = answer("decompose part.stl");
  std::string lists;
  for (size_t i = 0; i < 2; ++i) {
    const Json& roi = found["regions_of_interest"][i];
    std::set<uint32_t> triangles(roi["free"]["triangles"].begin(), roi["free"]["triangles"].end());
    for (const Json& region : roi["regions"]) {
      triangles.insert(region["triangles"].begin(), region["triangles"].end());
    }
    std::string text;
    for (const uint32_t triangle : triangles) text += std::to_string(triangle) + "\n";
    folder.write(std::to_string(i) + ".txt", text);
    lists += " --roi " + std::to_string(i) + ".txt";
  }
  const std::string user = " --set F_quo=0 --set n_con=3";
  const Json given = answer("decompose part.stl --up 0,-1,0" + lists + user);
  EXPECT_EQ(given["search"], nullptr);
  EXPECT_EQ(strip_Sources(given), strip_Sources(answer("decompose part.stl" + user)));
}

TEST_F(SearchCommand, MinArea_LeavesSmallPatchesOut) {
  const Json json = answer("decompose part.stl --min-area 50");
  EXPECT_EQ(json["search"]["min_area"], 50.0);
  EXPECT_EQ(json["search"]["patches"], 1);
  EXPECT_EQ(json["search"]["dropped"]["patches"], 1);
  EXPECT_EQ(json["search"]["dropped"]["area"], 20.0);
  EXPECT_EQ(json["regions_of_interest"].size(), 1u);
  const std::string table = run("decompose part.stl --min-area 50").out;
  EXPECT_TRUE(has_Text(table, "1 patch of 50.000 mm2 and more")) << table;
  EXPECT_TRUE(has_Text(table, "1 smaller patch left out: 20.000 mm2"));
  const Ran none = run("decompose part.stl --min-area 500");
  EXPECT_EQ(none.status, 0);
  EXPECT_TRUE(has_Text(none.out, "2 smaller patches left out"));
  EXPECT_TRUE(has_Text(none.out, "There is nothing to divide."));
}

TEST_F(SearchCommand, APatchNarrowerThanTheToolPaths_IsDividedUnlessTheUserSaysWhatIsSmall) {
  Soup corners = make_Block(is_SidePocket);
  for (T3DVEC& corner : corners) corner = 0.03 * corner;
  folder.write("tiny.stl", make_BinaryStl(corners));
  const Json json = answer("decompose tiny.stl");
  ASSERT_EQ(json["search"]["patches"], 2);
  EXPECT_FALSE(json["regions_of_interest"][0]["regions"].empty());
  for (const Json& roi : json["regions_of_interest"]) {
    const Json& attempts = roi["needed"]["attempts"];
    EXPECT_TRUE(attempts.back()["keep_small"]);
    EXPECT_FALSE(attempts[0]["keep_small"]);
  }
  const Json own = answer("decompose tiny.stl --set F_quo=5");
  for (const Json& roi : own["regions_of_interest"]) {
    EXPECT_TRUE(roi["regions"].empty());
    EXPECT_FALSE(roi["needed"]["attempts"].back()["keep_small"]);
  }
}

TEST_F(SearchCommand, WithoutUndercut_ItSaysSoAndWritesAGreyPartAndAnEmptyList) {
  const Ran ran = run("decompose clear.stl");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.out, "No undercut: there is nothing to divide.")) << ran.out;
  EXPECT_TRUE(has_Text(ran.out, "It and its opposite see 100.0 % of the surface."));
  const Json json = Json::parse(load_File(folder.path / "regions/regions.json"));
  EXPECT_EQ(json["regions_of_interest"], Json::array());
  EXPECT_EQ(json["status"], "done");
  EXPECT_EQ(json["calls"], 0);
  EXPECT_EQ(json["search"]["seen"], 1.0);
  const Mesh mesh = weld_Corners(make_Block(is_Deep));
  const std::string ply = load_File(folder.path / "regions/regions.ply");
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    ASSERT_EQ(load_Value(ply, mesh, i, 4), "\xFF\xFF\xFF\xFF") << i;
  }
}

TEST_F(SearchCommand, Whole_IsTheWholeMeshWithTheFilesOwnZ) {
  const Json json = answer("decompose part.stl --whole");
  EXPECT_EQ(json["search"], nullptr);
  EXPECT_EQ(json["parameters"], Json::object());
  EXPECT_EQ(json["preparation"]["up"], Json({0.0, 0.0, 1.0}));
  ASSERT_EQ(json["regions_of_interest"].size(), 1u);
  EXPECT_EQ(json["regions_of_interest"][0]["source"], "whole mesh");
  std::string all;
  for (int i = 0; i < json["input"]["triangles"]; ++i) all += std::to_string(i) + "\n";
  folder.write("all.txt", all);
  EXPECT_EQ(strip_Sources(json), strip_Sources(answer("decompose part.stl --roi all.txt")));
}

TEST_F(SearchCommand, WithUp_TheWholeMeshIsTakenAndNothingIsSearched) {
  const Json json = answer("decompose part.stl --up 0,0,1");
  EXPECT_EQ(json, answer("decompose part.stl --up 0,0,1 --whole"));
  EXPECT_EQ(json, answer("decompose part.stl --whole"));
}

TEST_F(SearchCommand, Plain_TakesTheWholeMesh) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(12)));
  EXPECT_EQ(answer("decompose dome.stl --plain"), answer("decompose dome.stl --plain --whole"));
}

TEST_F(SearchCommand, ParametersOfTheSearch_HaveAnEffectInASearchOnly) {
  const std::string settings = " --json --set amo.f_eps=0.1 --set nxn.f_dxx=30 --set err.f_gew=0.5";
  EXPECT_EQ(run("decompose clear.stl" + settings).err, "");
  EXPECT_TRUE(has_Text(run("decompose clear.stl --whole" + settings).err,
                       "amo.f_eps has no effect on the decomposition"));
}

TEST_F(SearchCommand, ARunIsTheSameEveryTime) {
  EXPECT_EQ(answer("decompose part.stl"), answer("decompose part.stl"));
}

TEST(Parts, PatchesOfRealPartsEndWithoutAFailure) {
  const fs::path meshes = UNDERCUT_MESHES;
  if (!fs::exists(meshes)) GTEST_SKIP() << "no folder " << meshes;
  Folder folder;
  for (const char* name : {"x_end_motor.stl", "grille_case.stl", "molar_open.stl", "spot.stl"}) {
    const Ran ran = run_Built(folder, "decompose '" + (meshes / name).string() + "' --json");
    EXPECT_EQ(ran.status, 0) << name << ": " << ran.err;
    const Json json = Json::parse(ran.out);
    EXPECT_GT(json["search"]["undercut"]["covered"].get<double>(), 0.3) << name;
  }
}

}  // namespace
}  // namespace undercut::host
