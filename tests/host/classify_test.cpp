#include "host/classify_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>

#include "plates_command.h"

namespace undercut::host {
namespace {

constexpr T3DVEC kUp{0, 0, 1}, kDown{0, 0, -1}, kFront{0, -1, 0};

struct Classify : PlatesCommand {
  Classify() : PlatesCommand("classify") {}
};

std::vector<uint32_t> find_Hidden(const Mesh& mesh, const std::vector<T3DVEC>& axes) {
  std::vector<uint32_t> hidden;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (std::none_of(axes.begin(), axes.end(),
                     [&](const T3DVEC& axis) { return sees_Axis(mesh, i, axis); })) {
      hidden.push_back(i);
    }
  }
  return hidden;
}

TEST_F(Classify, OneAxis_WhatLiesUnderTheOverhangAndWhatFacesAwayIsUndercut) {
  const Json json = answer("part.stl --axis 0,0,1");
  EXPECT_EQ(json["undercut"]["triangles"].get<std::vector<uint32_t>>(), find_Hidden(mesh, {kUp}));
  EXPECT_NEAR(json["undercut"]["area"], 50.0 + 100.0 + 50.0, 1e-9);
  EXPECT_EQ(json["undercut"]["count"], 400);
  EXPECT_NEAR(json["undercut"]["share"], 200.0 / 370.0, 1e-12);
  EXPECT_EQ(json["axes"][0]["axis"], Json({0.0, 0.0, 1.0}));
  EXPECT_NEAR(json["axes"][0]["seen"]["area"], 170.0, 1e-9);
  EXPECT_TRUE(json["from_others"].is_null());
  EXPECT_EQ(json["against"], Json::array());
}

TEST_F(Classify, SeveralAxes_OnlyWhatNoneSeesIsUndercut) {
  const Json json = answer("part.stl --axis 0,0,2 --axis 0,0,-1 --axis 0,-1e-3,0");
  EXPECT_EQ(json["undercut"]["triangles"].get<std::vector<uint32_t>>(),
            find_Hidden(mesh, {kUp, kDown, kFront}));
  EXPECT_EQ(json["undercut"]["count"], 0);
  EXPECT_EQ(answer("part.stl --axis 0,0,1 --axis 0,0,-1")["undercut"]["area"], 100.0);
  EXPECT_EQ(json["axes"].size(), 3u);
  EXPECT_EQ(json["axes"][0]["axis"], Json({0.0, 0.0, 1.0})) << "made a unit vector";
}

TEST_F(Classify, AnObliqueAxis_IsThatOfAPlainComputation) {
  const T3DVEC axis = unit_Vec({0.31, -0.52, 0.83});
  const Json json = answer("part.stl --axis 0.31,-0.52,0.83");
  EXPECT_EQ(json["undercut"]["triangles"].get<std::vector<uint32_t>>(), find_Hidden(mesh, {axis}));
}

TEST_F(Classify, Against_TellsHowMuchOfTheUndercutIsTheOthers) {
  const Json json = answer("lower.stl --axis 0,0,1 --against upper.stl");
  EXPECT_EQ(json["input"]["triangles"], 480);
  EXPECT_EQ(json["against"][0]["path"], "upper.stl");
  EXPECT_EQ(json["against"][0]["triangles"], 260);
  EXPECT_NEAR(json["undercut"]["area"], 150.0, 1e-9);
  EXPECT_NEAR(json["from_others"]["area"], 50.0, 1e-9);
  EXPECT_NEAR(json["from_others"]["share"], 50.0 / 240.0, 1e-12);
  const Mesh lower = weld_Corners(make_Lower());
  for (const uint32_t i : json["from_others"]["triangles"].get<std::vector<uint32_t>>()) {
    EXPECT_EQ(centre_Tri(lower, i).z, 1.0);
    EXPECT_LT(centre_Tri(lower, i).y, 5.0);
  }
}

TEST_F(Classify, Against_SeveralMeshesAllCastShadow) {
  folder.write("other.stl", make_BinaryStl(make_Box({0, 5, 6}, {10, 10, 7})));
  const Json json = answer("lower.stl --axis 0,0,1 --against upper.stl --against other.stl");
  EXPECT_NEAR(json["from_others"]["area"], 100.0, 1e-9);
  EXPECT_EQ(json["against"].size(), 2u);
}

TEST_F(Classify, Roi_OnlyItsTrianglesAreAsked) {
  folder.write("a.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
  folder.write("b.txt",
               list_Centres(mesh, [](const T3DVEC& c) { return c.z >= 1.0 && c.z < 4.0; }));
  const Json json = answer("part.stl --axis 0,0,1 --roi a.txt");
  EXPECT_NEAR(json["region"]["area"], 100.0, 1e-9);
  EXPECT_NEAR(json["undercut"]["share"], 0.5, 1e-12);
  const Json both = answer("part.stl --axis 0,0,1 --roi a.txt --roi b.txt");
  EXPECT_EQ(both["region"]["count"], 200) << "taken together";
  EXPECT_EQ(both["region"]["repeated"], 200);
  EXPECT_EQ(both["region"]["source"], "a.txt, b.txt");
}

TEST_F(Classify, DegenerateTriangles_AreLeftOutUnlessARegionNamesThem) {
  Soup corners = make_Plates();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("part.stl", make_BinaryStl(corners));
  folder.write("one.txt", "740\n");
  EXPECT_EQ(answer("part.stl --axis 0,0,1")["undercut"]["count"], 400);
  const Json json = answer("part.stl --axis 0,0,1 --roi one.txt");
  EXPECT_EQ(json["undercut"]["triangles"], Json({740}));
  EXPECT_EQ(json["undercut"]["area"], 0.0);
  EXPECT_EQ(json["undercut"]["share"], 0.0);
}

TEST_F(Classify, Ply_HoldsWhatEachTriangleIs) {
  folder.write("top.txt",
               list_Centres(weld_Corners(make_Lower()), [](const T3DVEC& c) { return c.z > 0.0; }));
  const Json json = answer("lower.stl --axis 0,0,1 --axis 1,0,1 --against upper.stl --roi top.txt");
  const Mesh lower = weld_Corners(make_Lower());
  const std::string ply = load_File(folder.path / "classify/undercut.ply");
  ASSERT_TRUE(has_Text(ply, "property int undercut\n"));
  ASSERT_TRUE(has_Text(ply, "element face 480\n"));
  size_t others = 0;
  for (uint32_t i = 0; i < lower.triangles.size(); ++i) {
    int32_t value = 9;
    std::memcpy(&value, load_Value(ply, lower, i, 4).data(), 4);
    if (centre_Tri(lower, i).z == 0.0) {
      EXPECT_EQ(value, -1);
    } else {
      EXPECT_TRUE(value == 0 || value == 2) << value;
    }
    others += value == 2 ? 1 : 0;
  }
  EXPECT_EQ(json["from_others"]["count"], others);
  EXPECT_GT(others, 0u);
}

TEST_F(Classify, Ply_MarksTheUndercutOfThePartAlone) {
  const Json json = answer("part.stl --axis 0,0,1");
  const std::string ply = load_File(folder.path / "classify/undercut.ply");
  std::vector<uint32_t> marked;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (load_Value(ply, mesh, i, 4) == std::string("\1\0\0\0", 4)) marked.push_back(i);
  }
  EXPECT_EQ(json["undercut"]["triangles"].get<std::vector<uint32_t>>(), marked);
}

TEST_F(Classify, PrintsATableAndWritesBothFiles) {
  const Ran ran = run("lower.stl --axis 0,0,1 --axis 0,0,-1 --against upper.stl");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece :
       {"lower.stl: 480 triangles", "against upper.stl: 260 triangles",
        "axis 1                     180        90.000    37.5 %     0.0000   0.0000   1.0000",
        "any axis                   380       190.000    79.2 %",
        "no axis: undercut          100        50.000    20.8 %",
        "  from the others          100        50.000    20.8 %",
        "Written: classify/undercut.ply, classify/undercut.json"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
}

TEST_F(Classify, WrongUsage_SaysWhatToDo) {
  const std::pair<const char*, const char*> cases[] = {
      {"part.stl", "--axis: name at least one axis"},
      {"part.stl --axis 0,0", "--axis '0,0': write a direction as three numbers"},
      {"part.stl --axis 0,0,0", "write a direction"},
      {"part.stl --axis 0,0,1 --axis x,0,1", "--axis 'x,0,1'"},
      {"part.stl --axis 0,0,1 --against ''", "--against: the name of the file is empty"},
      {"part.stl --axis 0,0,1 --max 2", "--max"},
      {"part.stl --axis 0,0,1 --set f_tol=-1", "out of range"}};
  for (const auto& [arguments, piece] : cases) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.status, 2) << arguments;
    EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
    EXPECT_FALSE(fs::exists(folder.path / "classify")) << arguments;
  }
}

TEST_F(Classify, AMissingOtherMesh_IsBadInputWithoutResults) {
  const Ran ran = run("part.stl --axis 0,0,1 --against missing.stl");
  EXPECT_EQ(ran.status, 3);
  EXPECT_TRUE(has_Text(ran.err, "missing.stl: cannot be opened")) << ran.err;
  EXPECT_FALSE(fs::exists(folder.path / "classify"));
}

TEST_F(Classify, ASettingWithoutEffect_IsNoted) {
  EXPECT_TRUE(has_Text(run("part.stl --axis 0,0,1 --set ucs.f_off=1").err,
                       "ucs.f_off has no effect on the classification"));
  EXPECT_EQ(run("part.stl --axis 0,0,1 --set f_tol=0.01").err, "");
}

TEST(JoinMeshes, KeepsTheTrianglesOfEachInTheirOrder) {
  const Part lower = make_Part(make_Lower()), upper = make_Part(make_Upper());
  const Mesh joined = join_Meshes(lower.mesh, {upper, lower});
  ASSERT_EQ(joined.triangles.size(), 480u + 260u + 480u);
  for (uint32_t i = 0; i < joined.triangles.size(); ++i) {
    const T3DVEC there = i < 480   ? centre_Tri(lower.mesh, i)
                         : i < 740 ? centre_Tri(upper.mesh, i - 480)
                                   : centre_Tri(lower.mesh, i - 740);
    ASSERT_EQ(len_Vec(centre_Tri(joined, i) - there), 0.0) << i;
  }
}

}  // namespace
}  // namespace undercut::host
