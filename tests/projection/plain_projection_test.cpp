// det_Prj and get_Prj against loops over all triangles, on random bodies and on real parts.
#include <gtest/gtest.h>

#include <string>

#include "interface/exports.h"
#include "interface/parameters.h"
#include "tests/reference/plain_projection.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"
#include "tests/support/stl_mesh.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Points = std::vector<T3DVEC>;
using Indices = std::vector<uint32_t>;

// Areas of a mesh, each with its points and its frame.
struct TScene {
  TSoup soup;
  std::vector<Indices> areas;
  std::vector<Points> points;
  std::vector<T3DFRM> frames;

  std::vector<Points> call() {
    std::vector<TLstU32> prj_l;
    std::vector<TArrVec> prj_p;
    for (Indices& area : areas) prj_l.push_back(view_Lst(area));
    for (Points& list : points) prj_p.push_back(view_Arr(list));
    TUcReq req;
    TUcRes res;
    ini_Req(&req);
    ini_Res(&res);
    req.msh = soup.msh();
    req.prj_l = view_Lst(prj_l);
    req.prj_p = view_Arr(prj_p);
    req.prj_f = view_Lst(frames);
    EXPECT_EQ(get_Prj(&req, &res), 0);
    const std::vector<Points> moved = copy_Nested(res.prj);
    clr_Res(&res);
    return moved;
  }
  // The area as a mesh that shares the vertices of the whole.
  TSoup cut(uint32_t k) const {
    TSoup area = {soup.vtx, {}};
    for (const uint32_t t : areas[k])
      if (!is_Flat(soup.tri[t])) area.tri.push_back(soup.tri[t]);
    return area;
  }
};

// None of these bodies has a triangle with two equal corners: whether such a one is found hangs on
// the leaf that it lies in.
TSoup any_Body(reference::Random& random) {
  const uint64_t kind = random.below(4);
  const double share = random.real(0, 1);
  if (kind == 0) return any_Ball(random, 9, 11, 1.5 * share);
  if (kind == 1) return any_Heap(random, 3);
  if (kind == 2) return any_Soup(random, 80, 0.0);
  return any_Patch(random, 8, 7, 0.1 * share);
}

// A few areas of neighbouring indices, with points near them and elsewhere.
TScene any_Scene(reference::Random& random, TSoup soup, uint32_t points) {
  TScene scene;
  scene.soup = std::move(soup);
  const uint64_t triangles = scene.soup.tri.size();
  for (uint32_t k = 0; k < 3; ++k) {
    Indices area;
    const uint64_t first = random.below(triangles), count = 1 + random.below(triangles / 2);
    for (uint64_t i = 0; i < count; ++i) area.push_back(uint32_t((first + i) % triangles));
    Points list;
    for (uint32_t i = 0; i < points; ++i) {
      const T3DFAC f = get_Fac(scene.soup.msh(), area[random.below(area.size())]);
      list.push_back(cen_Tri(f) + random.triple(-2, 2));
    }
    T3DFRM frame = any_Frame(random);
    frame.z *= random.real(0.1, 5);
    scene.areas.push_back(area);
    scene.points.push_back(list);
    scene.frames.push_back(frame);
  }
  return scene;
}

class PlainProjection : public testing::Test {
 protected:
  PlainProjection() { g_Prj = TPrjPar(); }
  ~PlainProjection() override {
    g_Prj = TPrjPar();
    clr_Dll();
  }
  // Counts of points that the phases moved.
  uint32_t raised = 0, dropped = 0;

  void expect_Plain(TScene& scene) {
    const std::vector<Points> moved = scene.call();
    ASSERT_EQ(moved.size(), scene.points.size());
    for (uint32_t k = 0; k < moved.size(); ++k) {
      ASSERT_EQ(moved[k].size(), scene.points[k].size());
      TSoup area = scene.cut(k);
      const T3DVEC z = unit(scene.frames[k].z);
      for (size_t i = 0; i < moved[k].size(); ++i) {
        const T3DVEC p = scene.points[k][i];
        const T3DVEC first =
            reference::to_Area(area.msh(), {p, z}, {g_Prj.f_off, g_Prj.f_inc, g_Prj.f_lim});
        const T3DVEC second = reference::onto_Mesh(scene.soup.msh(), {first, z}, g_Prj.f_tol);
        ASSERT_EQ(moved[k][i], second) << "area " << k << ", point " << i;
        ASSERT_LE(dst(moved[k][i], first), g_Prj.f_tol);
        raised += first != p;
        dropped += second != first;
      }
    }
  }
};

TEST_F(PlainProjection, OfPoints_EqualsLoopsOverAllTriangles) {
  for (uint32_t seed = 0; seed < scale_Cases(80); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TScene scene = any_Scene(random, any_Body(random), 20);
    if (seed % 2 == 1) {
      g_Prj.f_off = random.real(0, 0.5);
      g_Prj.f_inc = random.real(0.02, 0.5);
      g_Prj.f_lim = random.real(0.2, 4);
      g_Prj.f_tol = random.real(0, 3);
    }
    expect_Plain(scene);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(raised, 2000u);
  EXPECT_GT(dropped, 1000u);
}

TEST_F(PlainProjection, OfALine_EqualsALoopOverAllTriangles) {
  uint32_t met = 0;
  for (uint32_t seed = 0; seed < scale_Cases(100); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TSoup soup = any_Mesh(random);
    const T3DMSH msh = soup.msh();
    clr_Dll();
    ASSERT_EQ(ini_Adt(&msh), 0);
    for (int i = 0; i < 50; ++i) {
      T3DRAY ray = {random.triple(-8, 8), {}};
      ray.dir = random.triple(-1, 1);
      const reference::TCross plain = reference::cross_Line(msh, ray);
      T3DVEC point;
      const bool misses = plain.distance == kAbsent;
      ASSERT_EQ(det_Prj(&ray, &point), misses ? -7 : 0);
      ASSERT_EQ(point, plain.point);
      met += !misses;
    }
  }
  EXPECT_GT(met, 500u);
}

// By another method: from wherever a point stands it ends on the nearest crossing of its whole
// line, or stays where that lies farther than the tolerance.
TEST_F(PlainProjection, OfPoints_EndsOnTheNearestCrossing_AsASecondMethodSeesIt) {
  g_Prj.f_off = g_Prj.f_lim;  // the second phase alone
  uint32_t on = 0, stayed = 0;
  for (uint32_t seed = 0; seed < scale_Cases(80); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TScene scene = any_Scene(random, any_Body(random), 30);
    const std::vector<reference::second::TFacet> facets =
        reference::second::facets(scene.soup.msh());
    const std::vector<Points> moved = scene.call();
    for (uint32_t k = 0; k < moved.size(); ++k)
      for (size_t i = 0; i < moved[k].size(); ++i) {
        const T3DVEC p = scene.points[k][i];
        const T3DVEC z = unit(scene.frames[k].z);
        const double away = double(reference::second_Distance(facets, {p, z}));
        if (away < 0 || away > g_Prj.f_tol) {
          ASSERT_EQ(moved[k][i], p);
          ++stayed;
          continue;
        }
        const T3DVEC step = moved[k][i] - p;
        ASSERT_NEAR(len(step), away, 1e-9);
        ASSERT_LT(len(cross(step, z)), 1e-9);
        ASSERT_LT(double(reference::second_Distance(facets, {moved[k][i], z})), 1e-9);
        ++on;
      }
  }
  EXPECT_GT(on, 500u);
  EXPECT_GT(stayed, 500u);
}

TEST_F(PlainProjection, OnRealParts_EqualsLoopsOverAllTriangles) {
  const std::string folders[] = {UNDERCUT_EXAMPLES, UNDERCUT_MESHES};
  const std::string names[] = {"/molar_stub.stl", "/x_end_motor.stl"};
  uint32_t parts = 0;
  for (int k = 0; k < 2; ++k) {
    SCOPED_TRACE(names[k]);
    TSoup soup = read_Stl(folders[k] + names[k]);
    if (soup.tri.empty()) continue;
    ++parts;
    reference::Random random(7);
    TScene scene = any_Scene(random, soup, 15);
    expect_Plain(scene);
    if (HasFatalFailure()) return;
  }
  EXPECT_GE(parts, 1u);
  EXPECT_GT(raised, 20u);
}

}  // namespace
