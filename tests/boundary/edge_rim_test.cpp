// get_Rma, called as a host calls it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>

#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/support/intensity.h"
#include "tests/support/rim_request.h"

using namespace undercut::tests;
using undercut::to_Local;

namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct TEdgeRimRequest : TRimRequest {
  explicit TEdgeRimRequest(const TSoup& mesh) : TRimRequest(get_Rma, mesh, 0.0) {}

  // Vertices in the frame's coordinates.
  Points place(const Indices& vertices) const {
    Points points;
    for (const uint32_t v : vertices) {
      const T3DVEC p = to_Local(req.frm, soup.vtx[v]);
      points.push_back({p.x, p.y, 0});
    }
    return points;
  }
};

// The halves of the squares of a sheet whose lower corner lies in [x0, x1) by [y0, y1).
Indices list_Squares(uint32_t nx, uint32_t x0, uint32_t y0, uint32_t x1, uint32_t y1) {
  Indices list;
  for (uint32_t y = y0; y < y1; ++y)
    for (uint32_t x = x0; x < x1; ++x) {
      list.push_back(2 * (y * nx + x));
      list.push_back(2 * (y * nx + x) + 1);
    }
  return list;
}
void take_Away(Indices& list, const Indices& gone) {
  for (const uint32_t t : gone) list.erase(std::find(list.begin(), list.end(), t));
}

// The border of a sheet, counter-clockwise seen from above, from vertex 0 on.
Indices list_Border(uint32_t nx, uint32_t ny) {
  Indices border;
  for (uint32_t x = 0; x < nx; ++x) border.push_back(x);
  for (uint32_t y = 0; y < ny; ++y) border.push_back(y * (nx + 1) + nx);
  for (uint32_t x = nx; x > 0; --x) border.push_back(ny * (nx + 1) + x);
  for (uint32_t y = ny; y > 0; --y) border.push_back(y * (nx + 1));
  return border;
}

// Parameters are the defaults at the start of each test and again at its end.
class EdgeRim : public testing::Test {
 protected:
  void SetUp() override { defaults::restore(); }
  void TearDown() override { defaults::restore(); }

  // No smoothing, a point for each vertex, nothing thinned out.
  static void set_Raw() {
    defaults::set(ucs_Gew, kInfinite);
    defaults::set(ucs_Res, 1.0);
    defaults::set(ucs_Err, -1.0);
  }
};

TEST_F(EdgeRim, IsTheMeshesOwnVerticesInOrder_WithoutSmoothingResamplingAndThinning) {
  set_Raw();
  TEdgeRimRequest r(make_Bumpy(6, 4));
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(list_Border(6, 4))});
}

TEST_F(EdgeRim, IsToldInTheCoordinatesOfTheFrame) {
  set_Raw();
  TEdgeRimRequest r(make_Grid(5, 5));
  // Turned by 30 degrees, with an origin of its own; rays lean.
  const double c = std::cos(0.5), s = std::sin(0.5);
  r.req.frm = {{c, s, 0}, {s, -c, 0}, {0.1, 0.2, -1}, {3, -2, 7}};
  const Indices border = list_Border(5, 5);
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(border)});
  // The frame is used as given: axes of any length stretch.
  r.req.frm = {{2, 0, 0}, {0, 0.5, 0}, {0, 0, -40}, {1, 1, 1}};
  const std::vector<Points> curves = r.curves();
  EXPECT_EQ(curves, std::vector<Points>{r.place(border)});
  EXPECT_EQ(curves[0][5], (T3DVEC{8, -0.5, 0}));
}

TEST_F(EdgeRim, TakesTheLengthOfZAsItStands) {
  set_Raw();
  // A wall on the edge from vertex 0 to vertex 5 of a sheet, which leans by 2e-17 only.
  TSoup soup = make_Grid(4, 4);
  const double lean = 2e-17;
  soup.vtx.insert(soup.vtx.end(),
                  {{-lean, 0, 1}, {-lean, 1, 1}, {-2 * lean, 0, 2}, {-2 * lean, 1, 2}});
  soup.tri.insert(soup.tri.end(), {{0, 5, 26}, {0, 26, 25}, {25, 26, 28}, {25, 28, 27}});
  TEdgeRimRequest r(soup);
  const auto count_Points = [&r](double length) {
    r.req.frm.z = {0, 0, -length};
    return r.curves()[0].size();
  };
  EXPECT_EQ(count_Points(1.0), 16u);
  EXPECT_EQ(count_Points(100.0), 20u);
}

TEST_F(EdgeRim, SmoothsResamplesAndThinsByItsParameters) {
  TEdgeRimRequest r(make_Grid(6, 6));
  defaults::set(ucs_Err, -1.0);
  EXPECT_EQ(r.curves()[0].size(), 601u);  // 600 steps of 0.04 add up to less than 24
  defaults::set(ucs_Res, 0.5);
  EXPECT_EQ(r.curves()[0].size(), 48u);
  const auto corner = [&r] { return undercut::len(r.curves()[0][0]); };
  defaults::set(ucs_Gew, 0.5);
  const double far = corner();
  defaults::set(ucs_Gew, 1000.0);
  const double near = corner();
  EXPECT_GT(far, 0.2);
  EXPECT_LT(near, 0.01);
  defaults::set(ucs_Gew, kInfinite);
  EXPECT_EQ(corner(), 0.0);
  defaults::set(ucs_Res, 1.0);
  defaults::set(ucs_Err, 0.0);
  EXPECT_EQ(r.curves()[0], (Points{{0, 0, 0}, {6, 0, 0}, {6, 6, 0}, {0, 6, 0}}));
}

TEST_F(EdgeRim, KeepsToTheTrianglesOfRoiThatAreConnectedWithTheStart) {
  set_Raw();
  TEdgeRimRequest r(make_Grid(9, 2));
  take_Away(r.roi, list_Squares(9, 4, 0, 7, 2));
  r.fill();
  r.req.n_cnt = 35;
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place({7, 8, 9, 19, 29, 28, 27, 17})});
  r.req.n_cnt = 0;
  EXPECT_EQ(r.curves()[0].size(), 12u);
}

TEST_F(EdgeRim, KeepsTheLargestHole_OfASheet) {
  set_Raw();
  TEdgeRimRequest r(make_Grid(20, 12));
  take_Away(r.roi, list_Squares(20, 2, 3, 7, 8));
  r.fill();
  EXPECT_EQ(r.curves().size(), 2u);
  // Of two the smaller one is filled.
  take_Away(r.roi, list_Squares(20, 10, 3, 16, 8));
  r.fill();
  const std::vector<Points> curves = r.curves();
  ASSERT_EQ(curves.size(), 2u);
  EXPECT_EQ(curves[0], r.place(list_Border(20, 12)));
  for (const T3DVEC& p : curves[1]) EXPECT_TRUE(p.x >= 10 && p.x <= 16) << p.x;
}

TEST_F(EdgeRim, FillsEveryHole_OfAClosedMesh) {
  set_Raw();
  // A plate with a bottom: what does not face up is one component, larger than the hole on top.
  TSoup top = make_Grid(16, 16), bottom = make_Grid(16, 16);
  const auto up = static_cast<uint32_t>(top.vtx.size());
  for (T3DVEC& v : bottom.vtx) v.z = -1;
  TSoup plate = top;
  plate.vtx.insert(plate.vtx.end(), bottom.vtx.begin(), bottom.vtx.end());
  for (const T3DTRI& t : bottom.tri) plate.tri.push_back({t.a + up, t.c + up, t.b + up});
  const Indices border = list_Border(16, 16);
  for (size_t i = 0; i < border.size(); ++i) {
    const uint32_t a = border[i], b = border[(i + 1) % border.size()];
    plate.tri.push_back({b, a, a + up});
    plate.tri.push_back({b, a + up, b + up});
  }
  TEdgeRimRequest r(plate);
  take_Away(r.roi, list_Squares(16, 4, 4, 12, 12));
  r.fill();
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(border)});
}

TEST_F(EdgeRim, ClosesGapsAndNotches) {
  set_Raw();
  TEdgeRimRequest r(make_Grid(9, 9));
  // A gap of one triangle inside, and one of both halves of a square.
  take_Away(r.roi, {40, 82, 83});
  r.fill();
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(list_Border(9, 9))});
}

TEST_F(EdgeRim, TakesADegenerateTriangleUnseen) {
  set_Raw();
  TSoup soup = make_Grid(5, 5);
  // A sheet beside it, joined by a triangle without area, below a roof.
  const auto v = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.push_back(soup.vtx[1]);
  soup.tri.push_back({1, 0, v});
  soup.vtx.insert(soup.vtx.end(), {{-0.2, -0.4, 3}, {1.2, -0.4, 3}, {0.5, 0.2, 3}});
  soup.tri.push_back({v + 1, v + 2, v + 3});
  TEdgeRimRequest r(soup);
  Indices border = list_Border(5, 5);
  border.insert(border.begin() + 1, v);
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(border)});
}

TEST_F(EdgeRim, LiftsItsRaysByUcsTol) {
  TSoup soup = make_Grid(4, 4);
  const auto v = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{-50, -50, 0.5}, {50, -50, 0.5}, {0, 90, 0.5}});
  soup.tri.push_back({v, v + 1, v + 2});
  TEdgeRimRequest r(soup);
  EXPECT_EQ(r.call(), -17);
  defaults::set(ucs_Tol, 0.6);
  EXPECT_EQ(r.call(), 0);
}

// A triangle that stands twice leaves the border of a strip open at its end.
TEST_F(EdgeRim, TakesAnOpenChainLikeAClosedOne) {
  set_Raw();
  TSoup strip = make_Strip(10);
  strip.tri.push_back(strip.tri[0]);
  TEdgeRimRequest r(strip);
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place({2, 4, 6, 8, 10, 11, 9, 7, 5, 3, 1})});
}

TEST_F(EdgeRim, TakesAnEdgeForShared_ByATriangleWithTwoEqualCornerIndices) {
  set_Raw();
  TSoup sheet = make_Grid(4, 4);
  sheet.tri.push_back({1, 0, 0});
  TEdgeRimRequest r(sheet);
  Indices border = list_Border(4, 4);
  std::rotate(border.begin(), border.begin() + 1, border.end());
  EXPECT_EQ(r.curves(), std::vector<Points>{r.place(border)});
}

TEST_F(EdgeRim, LosesALastPointThatRepeatsTheFirst) {
  set_Raw();
  TSoup sheet = make_Grid(4, 4);
  const Indices border = list_Border(4, 4);
  sheet.vtx[border.back()] = sheet.vtx[border.front()];
  TEdgeRimRequest r(sheet);
  r.req.n_cnt = 12;
  Points expected = r.place(border);
  expected.pop_back();
  EXPECT_EQ(r.curves(), std::vector<Points>{expected});
}

// ---- Codes -----------------------------------------------------------------------------------

// One fault for each code, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TEdgeRimRequest&);
};
const TFault kFaults[] = {
    {-1, [](TEdgeRimRequest& r) { r.req.msh.vtx = nullptr; }},
    {-2, [](TEdgeRimRequest& r) { r.req.msh.tri = nullptr; }},
    {-3, [](TEdgeRimRequest& r) { r.req.msh.n_vtx = 0; }},
    {-4, [](TEdgeRimRequest& r) { r.req.msh.n_tri = 0; }},
    {-5, [](TEdgeRimRequest& r) { r.req.roi.data = nullptr; }},
    {-6, [](TEdgeRimRequest& r) { r.req.roi.count = 0; }},
    {-9, [](TEdgeRimRequest& r) { r.req.n_cnt = 32; }},
    {UNDERCUT_BAD_VERTEX, [](TEdgeRimRequest& r) { r.soup.tri[31].b = 25; }},
    {UNDERCUT_BAD_TRIANGLE, [](TEdgeRimRequest& r) { r.roi[31] = 32; }},
    {-12, [](TEdgeRimRequest& r) { r.roi[0] = 1; }},
    {-16, [](TEdgeRimRequest& r) { r.soup.vtx[1] = r.soup.vtx[0]; }},
    {-17,
     [](TEdgeRimRequest& r) {
       r.req.frm.z = {0, 0, 1};
     }},
    {-40, [](TEdgeRimRequest&) { defaults::set(ucs_Gew, -9.0); }},
    {-44, [](TEdgeRimRequest&) { defaults::set(ucs_Res, 0.0); }},
};

TEST_F(EdgeRim, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const TFault& fault : kFaults) {
    defaults::restore();
    TEdgeRimRequest r(make_Grid(4, 4));
    fault.make(r);
    expect_Refusal(get_Rma, r.req, fault.code);
  }
}

TEST_F(EdgeRim, TellsTheFirstOfTwoFaults) {
  for (size_t i = 0; i < std::size(kFaults); ++i)
    for (size_t k = i + 1; k < std::size(kFaults); ++k) {
      defaults::restore();
      TEdgeRimRequest r(make_Grid(4, 4));
      kFaults[k].make(r);
      kFaults[i].make(r);
      EXPECT_EQ(r.call(), kFaults[i].code) << "beside " << kFaults[k].code;
    }
}

TEST_F(EdgeRim, RefusesIndicesFarOutOfRange_BeforeReadingThroughThem) {
  TEdgeRimRequest r(make_Grid(4, 4));
  r.roi[3] = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
  r.soup.tri[2].a = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_VERTEX);
  r.req.n_cnt = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), -9);
}

// Triangles that stand twice, each beside its like over all three edges.
TEST_F(EdgeRim, GivesMinus36_ForAnAreaWithoutBorder) {
  TSoup sheet = make_Grid(4, 4);
  const std::vector<T3DTRI> once = sheet.tri;
  sheet.tri.insert(sheet.tri.end(), once.begin(), once.end());
  TEdgeRimRequest r(sheet);
  expect_Refusal(get_Rma, r.req, -36);
}

// Seen along a direction without a number every triangle joins.
TEST_F(EdgeRim, GivesMinus36_ForAClosedMeshThatIsAllSeen) {
  TEdgeRimRequest r(make_Box(1, 2, 3));
  r.req.frm.z = {kNoNumber, 0, -1};
  r.req.n_cnt = 2;
  expect_Refusal(get_Rma, r.req, -36);
}

TEST_F(EdgeRim, GivesMinus40_ForACurveOfFewerThanSevenPoints) {
  for (const uint32_t n : {1u, 2u}) {
    TEdgeRimRequest small(make_Grid(n, 1));
    expect_Refusal(get_Rma, small.req, -40);
  }
  EXPECT_EQ(TEdgeRimRequest(make_Grid(3, 1)).call(), 0);
}

TEST_F(EdgeRim, GivesMinus44_ForAStepThatIsNotAbove0OrFarTooSmall) {
  for (const double step : {0.0, -0.04, kNoNumber, -kInfinite, 1e-12, 1e-300}) {
    defaults::set(ucs_Res, step);
    TEdgeRimRequest r(make_Grid(4, 4));
    expect_Refusal(get_Rma, r.req, -44);
  }
}

TEST_F(EdgeRim, GivesMinus46_ForACurveOfOnePoint) {
  defaults::set(ucs_Res, 1000.0);
  TEdgeRimRequest r(make_Grid(4, 4));
  expect_Refusal(get_Rma, r.req, -46);
}

TEST_F(EdgeRim, GivesTheCodeOfTheStepWithoutMemory) {
  TEdgeRimRequest r(make_Grid(4, 4));
  EXPECT_EQ(r.list_Codes(), (Codes{-10, -11, -13, -14, -15, -25, -28, -36, -37, -40, -44, -46, 0}));
}

TEST_F(EdgeRim, TellsAFaultBeforeALaterStepAsksForMemory) {
  const Codes steps = {-10, -11, -13, -14, -15, -25, -28, -36, -37, -40, -44};
  for (const TFault& fault : kFaults) {
    defaults::restore();
    TEdgeRimRequest r(make_Grid(4, 4));
    fault.make(r);
    Codes expected;
    for (const int32_t step : steps)
      if (step > fault.code) expected.push_back(step);
    if (fault.code <= UNDERCUT_BAD_VERTEX) expected.clear();  // indices come before the bits
    expected.push_back(fault.code);
    EXPECT_EQ(r.list_Codes(), expected) << fault.code;
  }
}

// A ray through a tree as deep as this one needs memory of its own.
TEST_F(EdgeRim, GivesTheGeneralCode_WithoutMemoryForARay) {
  TEdgeRimRequest r(make_Uneven());
  r.req.frm.z = {-1, 0, 0};
  const Codes codes = r.list_Codes();
  EXPECT_NE(std::find(codes.begin(), codes.end(), UNDERCUT_NO_MEMORY), codes.end());
}

TEST_F(EdgeRim, TakesAMissingRecordAsOneWithoutAMesh) {
  TEdgeRimRequest r(make_Grid(4, 4));
  EXPECT_EQ(get_Rma(nullptr, &r.res), -1);
  EXPECT_EQ(get_Rma(&r.req, nullptr), -1);
  EXPECT_EQ(get_Rma(nullptr, nullptr), -1);
}

// ---- What a call leaves behind ---------------------------------------------------------------

TEST_F(EdgeRim, WritesNothingOfTheResultButRma) {
  TEdgeRimRequest r(make_Grid(4, 4));
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  ASSERT_EQ(get_Rma(&r.req, &res), 0);
  EXPECT_EQ(res.rma.count, 1u);
  r.res.rma = res.rma;
  before.rma = res.rma;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(EdgeRim, LeavesTheRequestAsItWas) {
  TEdgeRimRequest r(make_Grid(4, 4));
  const TSoup soup = r.soup;
  const Indices roi = r.roi;
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(soup.vtx, r.soup.vtx);
  EXPECT_EQ(std::memcmp(soup.tri.data(), r.soup.tri.data(), soup.tri.size() * sizeof(T3DTRI)), 0);
  EXPECT_EQ(roi, r.roi);
}

TEST_F(EdgeRim, WorksOnRecordsAtAMultipleOf4Bytes) {
  TEdgeRimRequest r(make_Grid(4, 4));
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  std::memcpy(static_cast<void*>(req), &r.req, sizeof(TUcReq));
  ini_Res(res);
  ASSERT_EQ(get_Rma(req, res), 0);
  EXPECT_EQ(res->rma.count, 1u);
  EXPECT_EQ(clr_Res(res), 0);
}

TEST_F(EdgeRim, LeaksNothingInAHundredCycles) {
  TEdgeRimRequest r(make_Grid(12, 12));
  take_Away(r.roi, list_Squares(12, 3, 3, 8, 8));
  r.fill();
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 100; ++cycle) {
    ASSERT_EQ(r.call(), 0);
    ASSERT_EQ(live_Allocations(), live + 3);
  }
  clr_Res(&r.res);
  EXPECT_EQ(live_Allocations(), live);
}

TEST_F(EdgeRim, AnswersHarmlessly_ToCoordinatesAndParametersOfAnyKind) {
  const uint64_t seed = 750;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  const Codes known = {0, -12, -16, -17, -36, -40, -44, -46};
  const double steps[] = {1.0, 0.04, 0.5, 3.0, 100.0, 0.0, -1.0, 1e-300, kInfinite, kNoNumber};
  for (uint32_t round = 0; round < scale_Cases(1000); ++round) {
    TEdgeRimRequest r(round % 2 ? make_Tangle(random, 20, 60) : make_Bumpy(5, 4));
    const double share = random.chance(0.5) ? 0.0 : random.real(0, 0.3);
    for (T3DVEC& v : r.soup.vtx)
      if (random.chance(share)) v = {random.special(), random.special(), random.special()};
    for (T3DVEC* axis : {&r.req.frm.x, &r.req.frm.y, &r.req.frm.z, &r.req.frm.org})
      if (random.chance(0.1)) *axis = {random.special(), random.special(), random.special()};
    r.req.n_cnt = static_cast<uint32_t>(random.below(r.roi.size()));
    while (r.roi.size() > 1 && random.chance(0.8))
      r.roi.erase(r.roi.begin() + static_cast<std::ptrdiff_t>(random.below(r.roi.size())));
    r.fill();
    defaults::set(ucs_Tol, random.chance(0.2) ? random.special() : 0.001);
    defaults::set(ucs_Gew, random.chance(0.2) ? random.special() : 0.5);
    defaults::set(ucs_Err, random.chance(0.2) ? random.special() : 0.03);
    defaults::set(ucs_Res, steps[random.below(std::size(steps))]);
    const int32_t code = r.call();
    EXPECT_NE(std::find(known.begin(), known.end(), code), known.end()) << code;
    for (const Points& curve : copy_Nested(r.res.rma))
      for (const T3DVEC& p : curve) EXPECT_EQ(p.z, 0.0);
  }
}

}  // namespace
