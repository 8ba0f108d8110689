// What decompose tells of each region beside its triangles: how much of it is seen, and its rim.
#include <nlohmann/json.hpp>

#include <map>

#include "curves.h"
#include "host/answer.h"
#include "host/json_parts.h"
#include "host/region_sight.h"
#include "overhang.h"
#include "support.h"

namespace undercut::host {
namespace {

Region make_Region(std::vector<uint32_t> triangles, const T3DVEC& axis) {
  Region region;
  region.number = 1;
  region.triangles = std::move(triangles);
  region.axis = axis;
  region.frame = make_AxisFrame(axis);
  return region;
}

Region measure_One(const Part& part, const Region& region) {
  Answer answer;
  answer.rois.emplace_back();
  answer.rois[0].regions.push_back(region);
  measure_Regions(part, answer);
  return answer.rois[0].regions[0];
}

template <typename Test>
std::vector<uint32_t> list(const Mesh& mesh, const Test& test) {
  std::vector<uint32_t> found;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (test(centre_Tri(mesh, i))) found.push_back(i);
  }
  return found;
}

TEST(RegionSight, OfAHalfHiddenFace_IsTheShareThatTheAxisSees) {
  const Part part = make_Part(make_Plates());
  const auto face = list(part.mesh, [](const T3DVEC& c) { return c.z == 1.0; });
  const Region up = measure_One(part, make_Region(face, {0, 0, 1}));
  EXPECT_NEAR(up.sight.share, 0.5, 1e-12) << "the other plate hides half of it";
  EXPECT_NEAR(up.sight.area, 50.0, 1e-9);
  EXPECT_EQ(up.sight.edges, 40u);
  EXPECT_EQ(up.sight.edges_seen, 20u);
  EXPECT_NEAR(up.sight.rim_share, 0.5, 1e-12);
  const Region down = measure_One(part, make_Region(face, {0, 0, -1}));
  EXPECT_EQ(down.sight.area, 0.0);
}

TEST(RegionSight, OfAClosedSurface_HasNoShareOfARim) {
  const Part part = make_Part(make_Lower());
  const Region all = measure_One(
      part, make_Region(list(part.mesh, [](const T3DVEC&) { return true; }), {0, 0, 1}));
  EXPECT_EQ(all.sight.edges, 0u);
  EXPECT_TRUE(std::isnan(all.sight.rim_share));
}

TEST(RegionSight, OfSeveralRegions_EachIsRatedAlongItsOwnAxis) {
  const Part part = make_Part(make_Plates());
  Answer answer;
  answer.rois.resize(2);
  const auto under = list(part.mesh, [](const T3DVEC& c) { return c.z == 4.0; });
  const auto top = list(part.mesh, [](const T3DVEC& c) { return c.z == 5.0; });
  answer.rois[0].regions = {make_Region(under, {0, 0, -1}), make_Region(top, {0, 0, 1})};
  answer.rois[1].regions = {make_Region(top, unit_Vec({1, 0, 1}))};
  measure_Regions(part, answer);
  EXPECT_EQ(answer.rois[0].regions[0].sight.share, 0.0);
  EXPECT_EQ(answer.rois[0].regions[1].sight.share, 1.0);
  EXPECT_EQ(answer.rois[1].regions[0].sight.share, 1.0);
}

TEST(RegionRim, OfASmallFace_IsItsOutlineInTheRegionsFrame) {
  const Part part = make_Part(make_Lower());
  Region region =
      make_Region(list(part.mesh,
                       [](const T3DVEC& c) {
                         return c.z == 1.0 && c.x > 2.0 && c.x < 5.0 && c.y > 3.0 && c.y < 4.0;
                       }),
                  {0, 0, 1});
  region.frame = {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {2, 3, 9}};
  const Region found = measure_One(part, region);
  ASSERT_EQ(found.rim.curves.size(), 1u);
  EXPECT_EQ(found.rim.failure, "");
  EXPECT_NEAR(found.rim.curves[0].area, 3.0, 0.1);
  const Curve flat{{0, 0, 0}, {1, 0, 0}, {1, -3, 0}, {0, -3, 0}};
  for (const T3DVEC& p : found.rim.curves[0].flat) EXPECT_LT(dist_Curve(flat, p), 0.1);
  const Curve border{{2, 3, 1}, {5, 3, 1}, {5, 4, 1}, {2, 4, 1}};
  for (const T3DVEC& p : found.rim.curves[0].placed) EXPECT_LT(dist_Curve(border, p), 0.1);
}

TEST(RegionRim, OfASingleTriangle_IsMade) {
  const Part part = make_Part(make_Lower());
  const auto top = list(part.mesh, [](const T3DVEC& c) { return c.z == 1.0; });
  const Region found = measure_One(part, make_Region({top[0]}, {0, 0, 1}));
  ASSERT_EQ(found.rim.curves.size(), 1u);
  EXPECT_NEAR(found.rim.curves[0].area, 0.5, 0.03);
}

TEST(RegionRim, WhereAPieceIsSmallerThanACell_ThereIsNoneAndTheReasonIsTold) {
  Soup corners = make_Lower();
  corners.insert(corners.end(), {{0, 20, 1}, {1e-3, 20, 1}, {0, 20.001, 1}});
  const Part part = make_Part(corners);
  auto triangles = list(part.mesh, [](const T3DVEC& c) { return c.z == 1.0 && c.y < 10.0; });
  triangles.push_back(480);
  const Region found = measure_One(part, make_Region(triangles, {0, 0, 1}));
  EXPECT_TRUE(found.rim.curves.empty());
  EXPECT_EQ(found.rim.failure, "a curve has fewer than 7 points (status -40)");
}

struct RegionsOfADome : testing::Test {
  Folder folder;
  Mesh mesh = weld_Corners(make_Dome(12));
  Json json;

  void SetUp() override {
    folder.write("dome.stl", make_BinaryStl(make_Dome(12)));
    const Ran ran = run_Built(folder, "decompose dome.stl --whole --json");
    ASSERT_EQ(ran.status, 0) << ran.err;
    json = Json::parse(ran.out);
    ASSERT_GT(json["regions"], 0);
  }
};

T3DVEC to_Vec(const Json& json) { return {json[0], json[1], json[2]}; }

TEST_F(RegionsOfADome, TheShareSeen_IsThatOfAPlainComputation) {
  for (const Json& region : json["regions_of_interest"][0]["regions"]) {
    double seen = 0.0;
    const T3DVEC axis = to_Vec(region["axis"]);
    for (const uint32_t i : region["triangles"].get<std::vector<uint32_t>>()) {
      if (sees_Axis(mesh, i, axis)) seen += area_Tri(mesh, i);
    }
    EXPECT_NEAR(region["seen"]["area"], seen, 1e-4);
    EXPECT_NEAR(region["seen"]["share"].get<double>(), seen / region["area"].get<double>(), 1e-6);
    EXPECT_LE(region["seen"]["edges_seen"], region["seen"]["edges"]);
  }
}

TEST_F(RegionsOfADome, ARim_EnclosesTheRegionAsItsFrameSeesIt) {
  for (const Json& region : json["regions_of_interest"][0]["regions"]) {
    ASSERT_TRUE(region["no_rim"].is_null()) << region["no_rim"];
    const T3DVEC z = to_Vec(region["frame"]["z"]);
    double projected = 0.0, enclosed = 0.0;
    for (const uint32_t i : region["triangles"].get<std::vector<uint32_t>>()) {
      const T3DTRI& t = mesh.triangles[i];
      const T3DVEC& a = mesh.vertices[t.a];
      projected += 0.5 * dot_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a), z);
    }
    for (const Json& curve : region["rim"]) {
      enclosed += (curve["hole"] ? -1.0 : 1.0) * curve["area"].get<double>();
    }
    EXPECT_NEAR(enclosed, projected, 0.05 * projected);
  }
}

TEST_F(RegionsOfADome, ThePolFile_HoldsTheCurvesOfEachRegionOnThePart) {
  const std::vector<Curve> curves = read_Curves(folder.path / "regions/rims.pol");
  const std::string text = load_File(folder.path / "regions/rims.pol");
  size_t count = 0;
  for (const Json& region : json["regions_of_interest"][0]["regions"]) {
    const std::string tag = "<lnd(" + pad_Number(region["number"]) + ")>";
    EXPECT_TRUE(has_Text(text, tag)) << tag;
    for (const Json& curve : region["rim"]) {
      ASSERT_LT(count, curves.size());
      EXPECT_EQ(curves[count].size(), curve["points"].size());
      for (const T3DVEC& p : curves[count]) {
        const double z = 4.0 - 0.06 * ((p.x - 4.7) * (p.x - 4.7) + (p.y - 5.2) * (p.y - 5.2));
        EXPECT_NEAR(p.z, z, 0.3);
      }
      ++count;
    }
  }
  EXPECT_EQ(count, curves.size());
}

TEST_F(RegionsOfADome, TheTable_TellsBothShares) {
  const Ran ran = run_Built(folder, "decompose dome.stl --whole");
  EXPECT_TRUE(
      has_Text(ran.out,
               "  region   triangles      area mm2     share      seen  rim seen   axis, from "
               "the part towards the tool"))
      << ran.out;
  EXPECT_TRUE(
      has_Text(ran.out, "Written: regions/regions.ply, regions/regions.json, regions/rims.pol"))
      << ran.out;
}

}  // namespace
}  // namespace undercut::host
