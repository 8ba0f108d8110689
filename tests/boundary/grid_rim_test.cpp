// The curves of get_Rmb and get_Rmc, called as a host calls them.
#include <cmath>
#include <cstring>

#include "tests/boundary/grid_rim_request.h"

using namespace undercut::tests;

namespace {

using GridRim = GridRimTest;

// Of a sphere round the origin, a fan at each pole and squares in halves between.
TSoup make_Ball(uint32_t rings, uint32_t sectors, double radius) {
  TSoup soup;
  const auto add = [&](double polar, double azimuth) {
    soup.vtx.push_back({radius * std::sin(polar) * std::cos(azimuth),
                        radius * std::sin(polar) * std::sin(azimuth), radius * std::cos(polar)});
  };
  constexpr double half = 3.141592653589793;
  for (uint32_t i = 0; i <= rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k) add(half * i / rings, 2 * half * k / sectors);
  for (uint32_t i = 0; i < rings; ++i)
    for (uint32_t k = 0; k < sectors; ++k) {
      const uint32_t a = i * sectors + k, b = i * sectors + (k + 1) % sectors;
      if (i > 0) soup.tri.push_back({a, b + sectors, b});
      if (i + 1 < rings) soup.tri.push_back({a, a + sectors, b + sectors});
    }
  return soup;
}

double get_Area(const Points& curve) {
  double area = 0.0;
  for (size_t i = 0; i < curve.size(); ++i) {
    const T3DVEC &a = curve[i], &b = curve[(i + 1) % curve.size()];
    area += (a.x * b.y - b.x * a.y) / 2;
  }
  return area;
}

struct TBox {
  double x0 = kInfinite, y0 = kInfinite, x1 = -kInfinite, y1 = -kInfinite;
};
TBox box_Of(const Points& curve) {
  TBox box;
  for (const T3DVEC& p : curve) {
    box.x0 = std::min(box.x0, p.x), box.x1 = std::max(box.x1, p.x);
    box.y0 = std::min(box.y0, p.y), box.y1 = std::max(box.y1, p.y);
  }
  return box;
}
void expect_Box(const Points& curve, const TBox& expected, double error) {
  const TBox box = box_Of(curve);
  EXPECT_NEAR(box.x0, expected.x0, error);
  EXPECT_NEAR(box.y0, expected.y0, error);
  EXPECT_NEAR(box.x1, expected.x1, error);
  EXPECT_NEAR(box.y1, expected.y1, error);
}

// ---- What they answer --------------------------------------------------------------------------

TEST_F(GridRim, RunsThroughTheCentresOfTheOutermostCells) {
  set_Raw();
  set_Sizes(1.0, 1.0);
  for (const auto computation : kBoth) {
    // The box is the plate with 1 for the disk and a cell on each side; half of a cell is left over
    // and goes to both sides. So the lines between cells stand at quarters.
    TRimRequest r(computation, make_Plate(0, 0, 5.5, 3), 0.5);
    const auto curves = r.curves();
    ASSERT_EQ(curves.size(), 1u);
    expect_Box(curves[0], {0.25, 0.25, 5.25, 3.25}, 0.0);
    EXPECT_EQ(curves[0].size(), 16u);
    EXPECT_EQ(curves[0][0], (T3DVEC{0.25, 0.25, 0}));
    EXPECT_EQ(curves[0][1], (T3DVEC{1.25, 0.25, 0}));
  }
}

TEST_F(GridRim, IsACircleWithinACell_OfTheCapOfASphere) {
  const TSoup sphere = make_Ball(60, 120, 5.0);
  Indices cap;
  for (uint32_t t = 0; t < sphere.tri.size(); ++t) {
    const T3DTRI& tri = sphere.tri[t];
    // Down to 60 degrees from the pole.
    if (std::min({sphere.vtx[tri.a].z, sphere.vtx[tri.b].z, sphere.vtx[tri.c].z}) > 2.4999)
      cap.push_back(t);
  }
  const double radius = 5.0 * std::sin(60.0 * undercut::kRadians);
  for (const bool raw : {true, false}) {
    defaults::restore();
    if (raw) set_Raw();
    set_Numbers(200, 200);
    const double cell = (2 * radius + 4 * 0.3) / 200;
    for (const auto computation : kBoth) {
      TRimRequest r(computation, sphere, 0.3);
      r.set_Roi(cap);
      const auto curves = r.curves();
      ASSERT_EQ(curves.size(), 1u);
      EXPECT_GT(curves[0].size(), raw ? 490u : 30u);
      for (const T3DVEC& p : curves[0]) EXPECT_NEAR(undercut::len(p), radius, cell);
      EXPECT_NEAR(get_Area(curves[0]), 3.14159265 * radius * radius, 0.02 * radius * radius);
    }
  }
}

TEST_F(GridRim, IsTheEquator_OfAWholeSphereSeenFromAbove) {
  set_Numbers(150, 150);
  TRimRequest r(get_Rmb, make_Ball(40, 80, 3.0), 0.2);
  const double cell = (6.0 + 4 * 0.2) / 150;
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 1u);
  for (const T3DVEC& p : curves[0]) EXPECT_NEAR(undercut::len(p), 3.0, 1.5 * cell);
}

TEST_F(GridRim, OfAListAsItStands_NeedsNoStart_NoSightAndNoNeighbours) {
  set_Numbers(100, 100);
  // Two plates that share nothing, one hidden below a roof that is not listed, one facing down.
  TSoup soup = make_Plate(0, 0, 4, 4);
  add_Plate(soup, 9, 1, 6, 4);
  add_Plate(soup, -10, -10, 20, 20, 5.0);
  TRimRequest c(get_Rmc, soup, 0.3);
  c.set_Roi({0, 1, 2, 3});
  c.req.n_cnt = 0xFFFFFFFFu;
  const auto curves = c.curves();
  ASSERT_EQ(curves.size(), 2u);
  expect_Box(curves[0], {0, 0, 4, 4}, 0.2);
  expect_Box(curves[1], {6, 1, 9, 4}, 0.2);
  TRimRequest b(get_Rmb, soup, 0.3);
  b.set_Roi(c.roi);
  EXPECT_EQ(b.call(), -17);
}

TEST_F(GridRim, OfAStart_IsThatOfItsConnectedPart) {
  set_Numbers(100, 100);
  TSoup soup = make_Plate(0, 0, 4, 4);
  add_Plate(soup, 6, 1, 9, 4);
  TRimRequest r(get_Rmb, soup, 0.3);
  r.req.n_cnt = 2;
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 1u);
  expect_Box(curves[0], {6, 1, 9, 4}, 0.1);
}

TEST_F(GridRim, CountsATriangleOnce_ThatIsListedTwice_AndTakesTheListInAnyOrder) {
  TRimRequest r(get_Rmc, make_Bumpy(5, 5), 0.3);
  set_Numbers(90, 90);
  const auto curves = r.curves();
  Indices list(r.roi.rbegin(), r.roi.rend());
  list.insert(list.end(), r.roi.begin(), r.roi.end());
  r.set_Roi(list);
  EXPECT_EQ(r.curves(), curves);
}

TEST_F(GridRim, DrawsTrianglesWithoutArea) {
  set_Raw();
  set_Sizes(1.0, 1.0);
  // A line of cells, one wide: there and back.
  TSoup soup = {{{0.5, 0.5, 0}, {6.75, 0.5, 0}}, {{0, 1, 1}}};
  TRimRequest r(get_Rmc, soup, 0.5);
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_EQ(curves[0].size(), 12u);  // of 7 cells
  EXPECT_EQ(get_Area(curves[0]), 0.0);
}

TEST_F(GridRim, RunsCounterClockwiseOutside_AndClockwiseRoundHoles) {
  set_Numbers(120, 120);
  TSoup soup = make_Plate(0, 0, 10, 2);
  add_Plate(soup, 0, 8, 10, 10);
  add_Plate(soup, 0, 2, 2, 8);
  add_Plate(soup, 8, 2, 10, 8);
  TRimRequest r(get_Rmc, soup, 0.5);
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 2u);
  EXPECT_NEAR(get_Area(curves[0]), 100.0, 4.0);
  EXPECT_NEAR(get_Area(curves[1]), -36.0, 4.0);
  expect_Box(curves[1], {2, 2, 8, 8}, 0.2);
}

TEST_F(GridRim, BridgesGapsThatTheDiskDoesNotFit) {
  TSoup soup = make_Plate(0, 0, 4, 4);
  add_Plate(soup, 5, 0, 9, 4);
  TRimRequest r(get_Rmc, soup, 0.4);
  for (const double radius : {0.2, 0.4, 0.6, 1.0}) {
    set_Numbers(150, 150);
    r.req.p_a = radius;
    EXPECT_EQ(r.curves().size(), radius < 0.5 ? 2u : 1u) << radius;
  }
}

TEST_F(GridRim, IsToldInTheCoordinatesOfTheFrame) {
  set_Raw();
  set_Sizes(0.25, 0.25);
  for (const auto computation : kBoth) {
    TRimRequest r(computation, make_Plate(2, 3, 6, 5), 0.5);
    const double c = std::cos(0.7), s = std::sin(0.7);
    r.req.frm = {{c, s, 0}, {-s, c, 0}, {0, 0, -1}, {2, 3, 9}};
    const auto curves = r.curves();
    ASSERT_EQ(curves.size(), 1u);
    expect_Box(curves[0], {0, -4 * s, 4 * c + 2 * s, 2 * c}, 0.3);
    // X and Y are used as given: an axis of twice the length stretches.
    r.req.frm.x = {2, 0, 0};
    r.req.frm.y = {0, 0.5, 0};
    expect_Box(r.curves()[0], {0, 0, 8, 1}, 0.3);
  }
}

TEST_F(GridRim, MakesZAUnitVector) {
  // A wall beside a sheet that leans by 2e-17 only: along a longer Z it would not face away.
  TSoup soup = make_Grid(4, 4);
  const double lean = 2e-17;
  soup.vtx.insert(soup.vtx.end(),
                  {{-lean, -2, 1}, {-lean, -1, 1}, {-2 * lean, -4, 2}, {-2 * lean, -3, 2}});
  soup.tri.insert(soup.tri.end(), {{0, 5, 26}, {0, 26, 25}, {25, 26, 28}, {25, 28, 27}});
  set_Numbers(100, 100);
  TRimRequest r(get_Rmb, soup, 0.2);
  for (const double length : {1.0, 0.01, 100.0, 1e150}) {
    r.req.frm.z = {0, 0, -length};
    const auto curves = r.curves();
    ASSERT_EQ(curves.size(), 1u);
    EXPECT_GT(box_Of(curves[0]).y0, -0.5) << length;
  }
}

TEST_F(GridRim, OfAList_TakesNoNoticeOfZ) {
  set_Numbers(100, 100);
  TRimRequest r(get_Rmc, make_Bumpy(4, 4), 0.1);
  const auto curves = r.curves();
  for (const T3DVEC& z : {T3DVEC{0, 0, 0}, T3DVEC{1, 2, 3}, T3DVEC{kNoNumber, kInfinite, 1e300}}) {
    r.req.frm.z = z;
    EXPECT_EQ(r.curves(), curves);
  }
}

TEST_F(GridRim, OfAList_PassesOverPB) {
  set_Numbers(100, 100);
  TRimRequest r(get_Rmc, make_Bumpy(4, 4), 0.1);
  const auto curves = r.curves();
  r.req.p_b = kNoNumber;
  EXPECT_EQ(r.curves(), curves);
}

TEST_F(GridRim, LiftsItsRaysByUcsTol) {
  TRimRequest r(get_Rmb, make_Grid(4, 4), 0.1);
  add_Plate(r.soup, -9, -9, 9, 9, 0.5);
  r.set_Roi(list_All(make_Grid(4, 4)));
  EXPECT_EQ(r.call(), -17);
  defaults::set(ucs_Tol, 0.6);
  EXPECT_EQ(r.call(), 0);
}

TEST_F(GridRim, TakesADegenerateTriangleUnseen) {
  // Below a roof that hides it, a triangle without area hangs on to the sheet and reaches out.
  TSoup soup = make_Grid(4, 4);
  soup.vtx.insert(soup.vtx.end(), {{0, 0, 0}, {-3, -1, 0}});
  soup.tri.push_back({0, 25, 1});
  soup.tri.push_back({25, 26, 0});
  add_Plate(soup, -4, -4, 2, 0.05, 3.0);
  TRimRequest r(get_Rmb, soup, 0.1);
  set_Numbers(100, 100);
  r.req.n_cnt = 20;
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 1u);
  EXPECT_LT(box_Of(curves[0]).x0, -2.5);
}

TEST_F(GridRim, FillsAHoleThatTouchesTheArea_UnlessItIsTheLargestClearPart) {
  set_Numbers(150, 150);
  TRimRequest r(get_Rmb, make_Grid(20, 12), 0.1);
  const auto take_Away = [&r](uint32_t x0, uint32_t x1, uint32_t y0, uint32_t y1) {
    for (uint32_t y = y0; y < y1; ++y)
      for (uint32_t x = x0; x < x1; ++x)
        for (const uint32_t t : {2 * (20 * y + x), 2 * (20 * y + x) + 1})
          r.roi.erase(std::find(r.roi.begin(), r.roi.end(), t));
    r.fill();
  };
  take_Away(2, 7, 3, 8);
  EXPECT_EQ(r.curves().size(), 2u);
  take_Away(10, 16, 3, 8);
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 2u);
  expect_Box(curves[1], {10, 3, 16, 8}, 0.3);
  // The list as it stands has both.
  TRimRequest c(get_Rmc, r.soup, 0.1);
  c.set_Roi(r.roi);
  EXPECT_EQ(c.curves().size(), 3u);
}

TEST_F(GridRim, SmoothsResamplesAndThinsByItsParameters) {
  set_Sizes(1.0, 1.0);
  TRimRequest r(get_Rmc, make_Plate(0, 0, 9.5, 9.5), 0.5);
  defaults::set(ucs_Err, -1.0);
  // 10 by 10 cells have 36 on their border.
  defaults::set(ucs_Res, 0.25);
  EXPECT_EQ(r.curves()[0].size(), 144u);
  defaults::set(ucs_Res, 0.5);
  EXPECT_EQ(r.curves()[0].size(), 72u);
  const double smooth = undercut::len(r.curves()[0][0] - T3DVEC{0.25, 0.25, 0});
  EXPECT_GT(smooth, 0.1);
  defaults::set(ucs_Gew, kInfinite);
  EXPECT_EQ(r.curves()[0][0], (T3DVEC{0.25, 0.25, 0}));
  defaults::set(ucs_Res, 1.0);
  defaults::set(ucs_Err, 0.0);
  EXPECT_EQ(r.curves()[0].size(), 4u);
}

// Erosion works on the grid's edge too, dilation doesn't: with no room for the disk an area loses
// the cells that stand there. A margin of twice a radius below a cell can be such.
TEST_F(GridRim, WearsOffTheEdgeOfTheGrid_WhereTheBoxLeavesNoRoom) {
  set_Raw();
  set_Numbers(10, 10);
  TRimRequest r(get_Rmc, make_Plate(0, 0, 10, 10), 0.0);
  const auto curves = r.curves();
  ASSERT_EQ(curves.size(), 1u);
  expect_Box(curves[0], {1.5, 1.5, 8.5, 8.5}, 0.0);
}

// ---- What the grid block keeps -----------------------------------------------------------------

TEST_F(GridRim, LeavesTheCellSizesOfTheLastCall_ForOneThatGoesByThem) {
  set_Raw();
  TRimRequest r(get_Rmc, make_Plate(0, 0, 6, 4), 0.5);
  set_Sizes(0.5, 0.25);
  const auto expected = r.curves();
  defaults::restore();
  set_Raw();
  // 6 and twice 1 in 16 columns and 32 rows.
  set_Numbers(32, 16);
  EXPECT_NE(r.curves(), expected);
  defaults::set(gri_Res, 1);
  EXPECT_EQ(r.curves(), expected);
}

TEST_F(GridRim, LeavesTheNumbersOfTheLastCall_ForOneThatGoesByThem) {
  set_Raw();
  TRimRequest r(get_Rmb, make_Plate(0, 0, 6, 4), 0.5);
  set_Numbers(34, 18);
  const auto expected = r.curves();
  defaults::restore();
  set_Raw();
  set_Sizes(0.5, 0.25);
  EXPECT_NE(r.curves(), expected);
  defaults::set(gri_Res, 0);
  EXPECT_EQ(r.curves(), expected);
}

TEST_F(GridRim, LeavesTheGridOfACallThatFailedLater) {
  set_Raw();
  TRimRequest r(get_Rmc, make_Plate(0, 0, 6, 4), 0.5);
  set_Numbers(32, 16);
  defaults::set(ucs_Res, 0.0);
  EXPECT_EQ(r.call(), -44);
  defaults::set(ucs_Res, 1.0);
  defaults::set(gri_Res, 1);
  const auto curves = r.curves();
  set_Sizes(0.5, 0.25);
  EXPECT_EQ(r.curves(), curves);
}

TEST_F(GridRim, KeepsNoTraceOfTheBoxBefore) {
  TRimRequest far(get_Rmc, make_Plate(100, 100, 900, 300), 5.0);
  TRimRequest r(get_Rmc, make_Plate(0, 0, 6, 4), 0.5);
  set_Numbers(80, 80);
  const auto curves = r.curves();
  EXPECT_EQ(far.call(), 0);
  EXPECT_EQ(r.curves(), curves);
}

// ---- What a call leaves behind -----------------------------------------------------------------

TEST_F(GridRim, WritesNothingOfTheResultButRma) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    TUcRes res, before;
    std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
    std::memcpy(static_cast<void*>(&before), &res, sizeof res);
    ASSERT_EQ(computation(&r.req, &res), 0);
    EXPECT_EQ(res.rma.count, 1u);
    r.res.rma = res.rma;
    before.rma = res.rma;
    EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
  }
}

TEST_F(GridRim, LeavesTheRequestAsItWas) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    r.req.frm.z = {0, 0, -3};
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
}

TEST_F(GridRim, WorksOnRecordsAtAMultipleOf4Bytes) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
    auto* req = reinterpret_cast<TUcReq*>(memory + 4);
    auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
    std::memcpy(static_cast<void*>(req), &r.req, sizeof(TUcReq));
    ini_Res(res);
    ASSERT_EQ(computation(req, res), 0);
    EXPECT_EQ(res->rma.count, 1u);
    EXPECT_EQ(clr_Res(res), 0);
  }
}

TEST_F(GridRim, LeaksNothingInAHundredCycles) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    const int64_t live = live_Allocations();
    for (int cycle = 0; cycle < 100; ++cycle) {
      ASSERT_EQ(r.call(), 0);
      ASSERT_EQ(live_Allocations(), live + 2);
    }
    clr_Res(&r.res);
    EXPECT_EQ(live_Allocations(), live);
  }
}

}  // namespace
