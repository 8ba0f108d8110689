// get_Rma against a program of plain parts, and against circles.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/reference/plain_rim_area.h"
#include "tests/reference/plain_rim_curve.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"
#include "tests/support/undercut_calls.h"

using namespace undercut;
using namespace undercut::tests;
using reference::Random;

namespace {

using Points = std::vector<T3DVEC>;
using Indices = std::vector<uint32_t>;

struct TView {
  T3DFRM frm;
  uint32_t start;
  Indices roi;
};

struct TAnswer {
  int32_t code;
  std::vector<Points> curves;
};

TAnswer call_Rma(const TSoup& soup, const TView& view) {
  TUcCall call(soup);
  call.set_Roi(view.roi);
  call.req.frm = view.frm;
  call.req.n_cnt = view.start;
  const int32_t code = get_Rma(&call.req, &call.res);
  return {code, copy_Nested(call.res.rma)};
}

plain::Set find_Area(TSoup& soup, const TView& view) {
  const plain::Table neighbours = plain::list_Neighbours(soup.tri);
  plain::Set open(soup.tri.size(), false);
  for (const uint32_t t : view.roi) open[t] = true;
  return plain::clean(neighbours, plain::flood(soup.msh(), neighbours, {-view.frm.z, g_UCs.f_tol},
                                               view.start, open));
}

// The border of the area, chain by chain, in the frame.
std::vector<Points> find_Border(TSoup& soup, const TView& view) {
  const std::vector<plain::Edge> edges = plain::list_Boundary(soup.tri, find_Area(soup, view));
  std::vector<Points> lines;
  for (const auto& chain : plain::list_Chains(edges, static_cast<uint32_t>(soup.vtx.size()))) {
    lines.emplace_back();
    for (const uint32_t v : chain) lines.back().push_back(to_Local(view.frm, soup.vtx[v]));
  }
  return lines;
}

// Parameters are the defaults at the start of each test and again at its end.
class PlainEdgeRim : public testing::Test {
 protected:
  void expect_Plain(TSoup& soup, const TView& view) {
    g_UCs.f_err = -1.0;
    const TAnswer raw = call_Rma(soup, view);
    if (raw.code == -16 || raw.code == -17) return;
    const std::vector<Points> lines = find_Border(soup, view);
    bool small = false;
    for (const Points& line : lines) small |= line.size() < 7;
    ASSERT_EQ(raw.code, lines.empty() ? -36 : small ? -40 : 0);
    if (raw.code != 0) return;
    ASSERT_EQ(raw.curves.size(), lines.size());
    for (size_t k = 0; k < lines.size(); ++k) expect_Fit(raw.curves[k], lines[k]);
    g_UCs.f_err = 0.03;
    const TAnswer thin = call_Rma(soup, view);
    ASSERT_EQ(thin.code, 0);
    for (size_t k = 0; k < lines.size(); ++k)
      ASSERT_EQ(thin.curves[k], plain::simplify(raw.curves[k], 0.03));
    ++compared_;
  }
  uint32_t compared_ = 0;

 private:
  static void expect_Fit(const Points& found, const Points& line) {
    const Points expected = plain::fit_Rim(line, g_UCs.f_gew, g_UCs.f_res);
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i)
      ASSERT_LT(len(found[i] - expected[i]), 1e-8) << "point " << i;
  }
  TDefaultParameters parameters_;
};

}  // namespace

TEST_F(PlainEdgeRim, EqualsThePlainProgram_OnRandomMeshes) {
  const uint64_t seed = 760;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(150); ++round) {
    SCOPED_TRACE(round);
    const uint64_t kind = random.below(3);
    TSoup soup = kind == 0   ? any_Ball(random, 10, 12, 0.5)
                 : kind == 1 ? any_Heap(random, 3)
                             : tilt(make_Bumpy(9, 8));
    TView view = {any_Frame(random), static_cast<uint32_t>(random.below(soup.tri.size())), {}};
    const double share = random.chance(0.5) ? 1.0 : 0.9;
    for (uint32_t t = 0; t < soup.tri.size(); ++t)
      if (t == view.start || random.chance(share)) view.roi.push_back(t);
    g_UCs.f_gew = std::pow(10.0, random.real(-1.5, 2));
    g_UCs.f_res = random.real(0.04, 1.3);
    expect_Plain(soup, view);
  }
  EXPECT_GT(compared_, scale_Cases(20));
}

// The rim of the half of a ball that is seen, from anywhere: each point of its outline is within
// a triangle's size of the circle, on its inside.
TEST_F(PlainEdgeRim, OfABallIsACircle_WithinATrianglesSize) {
  const double radius = 10.0;
  const uint32_t rings = 60;
  const double size = 1.5 * radius * 3.141592653589793 / rings;
  TSoup ball = make_Sphere(rings, 2 * rings, radius);
  Random random(761);
  for (int round = 0; round < 5; ++round) {
    TView view = {frm_Ray({{1, 2, 3}, random.triple(-1, 1)}), 0, list_All(ball)};
    // The triangle that looks most against Z.
    const auto look = [&](uint32_t t) { return dot(cen_Tri(get_Fac(ball.msh(), t)), view.frm.z); };
    for (uint32_t t = 0; t < ball.tri.size(); ++t)
      if (look(t) < look(view.start)) view.start = t;
    const TAnswer answer = call_Rma(ball, view);
    ASSERT_EQ(answer.code, 0);
    ASSERT_EQ(answer.curves.size(), 1u);
    const T3DVEC c = to_Local(view.frm, T3DVEC{0, 0, 0});
    double turn = 0.0;
    const Points& curve = answer.curves[0];
    for (size_t i = 0; i < curve.size(); ++i) {
      const T2DVEC a = {curve[i].x - c.x, curve[i].y - c.y};
      const T3DVEC& next = curve[(i + 1) % curve.size()];
      const T2DVEC b = {next.x - c.x, next.y - c.y};
      EXPECT_LT(len(a), radius + 0.01);
      EXPECT_GT(len(a), radius - size);
      turn += std::atan2(a.x * b.y - a.y * b.x, dot(a, b));
    }
    EXPECT_NEAR(std::fabs(turn), 6.283185307179586, 1e-9);
  }
}

// A cap that roi cuts out along a ring of vertices.
TEST_F(PlainEdgeRim, OfACapIsTheRingThatBoundsIt) {
  const double radius = 10.0;
  TSoup ball = make_Sphere(90, 180, radius);
  for (T3DVEC& v : ball.vtx) v.z = -v.z;
  for (T3DTRI& t : ball.tri) std::swap(t.b, t.c);
  const double ring = radius * std::sin(40 * kRadians), depth = radius * std::cos(40 * kRadians);
  TView view = {kIdentity, 0, {}};
  for (uint32_t t = 0; t < ball.tri.size(); ++t)
    if (cen_Tri(get_Fac(ball.msh(), t)).z < -depth) view.roi.push_back(t);
  g_UCs.f_err = 1e-4;
  const TAnswer answer = call_Rma(ball, view);
  ASSERT_EQ(answer.code, 0);
  ASSERT_EQ(answer.curves.size(), 1u);
  EXPECT_GT(answer.curves[0].size(), 50u);
  for (const T3DVEC& p : answer.curves[0]) EXPECT_NEAR(std::hypot(p.x, p.y), ring, 0.01);
}
