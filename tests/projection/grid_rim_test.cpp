// The rims by a grid, from the triangles to the curves, against plain forms; and what they leave in
// the parameter block of the grid.
#include <cmath>
#include <cstdio>

#include "interface/parameters.h"
#include "projection/rim_raster.h"
#include "tests/reference/plain_grid.h"
#include "tests/reference/plain_rim_area.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"
#include "tests/support/rim_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// Parameters are the defaults at the start of each test and again at its end.
class RimByGrid : public testing::Test {
 protected:
  void SetUp() override { restore(); }
  void TearDown() override { restore(); }

  static void restore() {
    g_UCs = CUCsPar();
    g_Gri = TGriPar();
  }
  // No smoothing, a point for each cell, nothing thinned out.
  static void set_Raw() {
    g_UCs.f_gew = kInfinite;
    g_UCs.f_res = 1.0;
    g_UCs.f_err = -1.0;
  }
  static void set_Cells(double size) {
    g_Gri.b_res = 1;
    g_Gri.f_dxx = g_Gri.f_dyy = size;
  }
  static void set_Numbers(uint32_t rows, uint32_t columns) {
    g_Gri.b_res = 0;
    g_Gri.n_row = rows;
    g_Gri.n_col = columns;
  }
};

// ---- Against the plain form --------------------------------------------------------------------

// Triangles with corners at whole numbers, of which kPart make a cell.
constexpr int64_t kPart = 16;
using PlainTriangles = std::vector<reference::PlainTriangle<int64_t>>;

struct TPlainRim {
  int32_t code;
  std::vector<Points> curves;
};

reference::PlainDisk plain_Disk(int64_t k) {
  reference::PlainDisk disk;
  for (int64_t i = -k; i <= k; ++i) {
    int64_t half = 0;
    while (i * i + (half + 1) * (half + 1) <= k * k) ++half;
    disk.row.push_back(static_cast<int32_t>(i));
    disk.half.push_back(static_cast<uint32_t>(half));
  }
  return disk;
}

// With cells of 1, in whole parts throughout.
TPlainRim find_Plainly(const PlainTriangles& triangles, int64_t radius) {
  int64_t low[2] = {INT64_MAX, INT64_MAX}, high[2] = {INT64_MIN, INT64_MIN};
  for (const auto& tri : triangles)
    for (const auto& p : tri) {
      low[0] = std::min(low[0], p.x), high[0] = std::max(high[0], p.x);
      low[1] = std::min(low[1], p.y), high[1] = std::max(high[1], p.y);
    }
  // The margins, and a cell on each side.
  const int64_t width = std::max(high[0] - low[0], high[1] - low[1]) + 4 * radius + 2 * kPart;
  const int64_t cells = (width + kPart - 1) / kPart, surplus = cells * kPart - width;
  const int64_t x = low[0] - 2 * radius - kPart - surplus / 2;
  const int64_t y = low[1] - 2 * radius - kPart - surplus / 2;
  reference::PlainGrid grid(static_cast<int>(cells), static_cast<int>(cells));
  for (auto tri : triangles) {
    for (auto& p : tri) p = {p.x - x, p.y - y};
    reference::draw(grid, tri, kPart);
  }
  const reference::PlainDisk disk = plain_Disk(radius / kPart);
  grid = reference::erode(reference::dilate(grid, disk), disk);
  TPlainRim rim = {0, {}};
  const auto at = [](int cell, int64_t org) { return cell + 0.5 + double(org) / double(kPart); };
  for (const auto& contour : reference::trace_Sides(grid)) {
    if (contour.cells.size() < 7) rim.code = -40;
    rim.curves.emplace_back();
    for (const auto& cell : contour.cells)
      rim.curves.back().push_back({at(cell.column, x), at(cell.row, y), 0.0});
  }
  if (rim.curves.empty()) rim.code = -36;
  return rim;
}

TEST_F(RimByGrid, OfAListOfTriangles_EqualsThePlainForm) {
  constexpr uint64_t seed = 20240616;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  uint32_t kinds[3] = {};
  for (uint32_t round = 0; round < scale_Cases(250); ++round) {
    const int64_t size = random.integer(1, 24) * kPart, reach = random.integer(1, size);
    PlainTriangles triangles;
    TSoup soup;
    for (uint64_t n = 1 + random.below(6); n > 0; --n) {
      const int64_t x = random.integer(0, size - reach), y = random.integer(0, size - reach);
      triangles.emplace_back();
      // Even, so that half a surplus is whole.
      for (auto& p : triangles.back()) p.x = (x + random.integer(0, reach)) / 2 * 2;
      for (auto& p : triangles.back()) p.y = (y + random.integer(0, reach)) / 2 * 2;
      const auto v = static_cast<uint32_t>(soup.vtx.size());
      for (const auto& p : triangles.back())
        soup.vtx.push_back({double(p.x) / kPart, double(p.y) / kPart, random.real(-9, 9)});
      soup.tri.push_back({v, v + 1, v + 2});
    }
    const int64_t radius = random.integer(0, 12) * kPart / 4;
    restore();
    set_Raw();
    set_Cells(1.0);
    TRimRequest r(get_Rmc, soup, double(radius) / kPart);
    const TPlainRim plain = find_Plainly(triangles, radius);
    ASSERT_EQ(r.call(), plain.code) << "round " << round;
    if (plain.code == 0) {
      ASSERT_EQ(copy_Nested(r.res.rma), plain.curves) << "round " << round;
    }
    ++kinds[plain.code != 0 ? 0 : plain.curves.size() == 1 ? 1 : 2];
  }
  for (const uint32_t kind : kinds) EXPECT_GT(kind, 9u);
}

// The area of get_Rmb, found plainly, is what get_Rmc is asked about.
TEST_F(RimByGrid, FromAStart_EqualsThatOfThePlainArea) {
  constexpr uint64_t seed = 20240617;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  uint32_t answered = 0;
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    TSoup soup = make_Bumpy(static_cast<uint32_t>(random.integer(4, 9)), 6);
    // A roof that hides some of it.
    if (random.chance(0.5)) {
      const T2DVEC at = random.pair(0, 4);
      add_Plate(soup, at.x, at.y, at.x + 3, at.y + 2, 2.0);
    }
    TRimRequest b(get_Rmb, soup, random.real(0, 1));
    while (random.chance(0.95) && b.roi.size() > 10)
      b.roi.erase(b.roi.begin() + static_cast<std::ptrdiff_t>(random.below(b.roi.size())));
    b.fill();
    b.req.n_cnt = b.roi[random.below(b.roi.size())];
    b.req.frm.z = random.real(0.5, 30) * b.req.frm.z;
    restore();
    set_Numbers(60, 80);
    const int32_t code = b.call();
    if (code == -17) continue;
    const auto curves = copy_Nested(b.res.rma);

    const plain::Table neighbours = plain::list_Neighbours(soup.tri);
    plain::Set open(soup.tri.size(), false);
    for (const uint32_t t : b.roi) open[t] = true;
    const plain::TPlainView view = {unit(-b.req.frm.z), g_UCs.f_tol};
    const plain::Set area =
        plain::clean(neighbours, plain::flood(soup.msh(), neighbours, view, b.req.n_cnt, open));
    Indices list;
    for (uint32_t t = 0; t < area.size(); ++t)
      if (area[t]) list.push_back(t);
    restore();
    set_Numbers(60, 80);
    TRimRequest c(get_Rmc, soup, b.req.p_a);
    c.req.frm = b.req.frm;
    c.set_Roi(list);
    ASSERT_EQ(c.call(), code) << "round " << round;
    ASSERT_EQ(curves, copy_Nested(c.res.rma)) << "round " << round;
    answered += code == 0;
  }
  EXPECT_GT(answered, 20u);
}

// ---- What stays in the block -------------------------------------------------------------------

TEST_F(RimByGrid, KeepsBoxAndCellSizesInTheBlock_WhereTheNumbersAreGiven) {
  set_Numbers(100, 50);
  g_Gri.f_val = 77.0;
  TRimRequest r(get_Rmc, make_Plate(10, 20, 14, 22), 0.25);
  ASSERT_EQ(r.call(), 0);
  // A square as wide as the longer side, with twice the radius on each side.
  EXPECT_EQ(g_Gri.org_xy, (T2DVEC{9.5, 19.5}));
  EXPECT_EQ(g_Gri.ext_xy, (T2DVEC{14.5, 24.5}));
  EXPECT_EQ(g_Gri.f_dxx, 0.1);
  EXPECT_EQ(g_Gri.f_dyy, 0.05);
  EXPECT_EQ(g_Gri.n_row, 100u);
  EXPECT_EQ(g_Gri.n_col, 50u);
  EXPECT_EQ(g_Gri.f_val, 0.0);
  EXPECT_EQ(g_Gri.b_res, 0);
}

TEST_F(RimByGrid, KeepsBoxAndNumbersInTheBlock_WhereTheCellSizesAreGiven) {
  g_Gri.b_res = 200;
  g_Gri.f_dxx = 0.5;
  g_Gri.f_dyy = 0.75;
  TRimRequest r(get_Rmb, make_Plate(10, 20, 14, 22), 0.25);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(g_Gri.n_col, 12u);  // 5 and a cell on each side
  EXPECT_EQ(g_Gri.n_row, 9u);   // 6.5 of 0.75 each
  EXPECT_EQ(g_Gri.org_xy, (T2DVEC{9.0, 18.625}));
  EXPECT_EQ(g_Gri.ext_xy, (T2DVEC{15.0, 25.375}));
  EXPECT_EQ(g_Gri.f_dxx, 0.5);
  EXPECT_EQ(g_Gri.f_dyy, 0.75);
  EXPECT_EQ(g_Gri.f_val, 0.0);
  EXPECT_EQ(g_Gri.b_res, 200);
}

TEST_F(RimByGrid, LeavesTheOtherFieldsOfTheBlock) {
  TGriPar before;
  before.row_a[2] = 5.0;
  before.org_z[1] = 6.0;
  before.row_c = 7.0;
  g_Gri = before;
  TRimRequest r(get_Rmc, make_Plate(0, 0, 4, 2), 0.1);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(g_Gri.row_a[2], 5.0);
  EXPECT_EQ(g_Gri.org_z[1], 6.0);
  EXPECT_EQ(g_Gri.row_c, 7.0);
  EXPECT_TRUE(g_Gri.msh.vtx == nullptr);
}

TEST_F(RimByGrid, LeavesTheBlock_WhereACallFailsBeforeItsBox) {
  g_Gri.f_val = 77.0;
  g_Gri.org_xy = {1, 2};
  for (const auto computation : {get_Rmb, get_Rmc}) {
    TRimRequest r(computation, make_Plate(0, 0, 4, 2), 0.1);
    r.req.roi.count = 0;
    ASSERT_EQ(r.call(), -6);
    EXPECT_EQ(g_Gri.f_val, 77.0);
    EXPECT_EQ(g_Gri.org_xy, (T2DVEC{1, 2}));
  }
}

TEST_F(RimByGrid, KeepsTheBoxAlone_WhereTheGridIsNotFitted) {
  set_Cells(0.0);
  g_Gri.n_row = 7;
  TRimRequest r(get_Rmc, make_Plate(10, 20, 14, 22), 0.25);
  ASSERT_EQ(r.call(), -29);
  EXPECT_EQ(g_Gri.org_xy, (T2DVEC{9.5, 19.5}));
  EXPECT_EQ(g_Gri.ext_xy, (T2DVEC{14.5, 24.5}));
  EXPECT_EQ(g_Gri.n_row, 7u);
  EXPECT_EQ(g_Gri.f_dxx, 0.0);
  // The same of numbers that are too large: those of the host stay.
  set_Cells(1e-12);
  ASSERT_EQ(r.call(), -30);
  EXPECT_EQ(g_Gri.org_xy, (T2DVEC{9.5, 19.5}));
  EXPECT_EQ(g_Gri.n_row, 7u);
  EXPECT_EQ(g_Gri.n_col, 1000u);
}

TEST_F(RimByGrid, KeepsWhatItHasFitted_WhereALaterStepFails) {
  set_Numbers(100, 50);
  TRimRequest r(get_Rmc, make_Plate(10, 20, 14, 22), 0.25);
  g_UCs.f_res = 0.0;
  ASSERT_EQ(r.call(), -44);
  EXPECT_EQ(g_Gri.f_dxx, 0.1);
  EXPECT_EQ(g_Gri.f_dyy, 0.05);
}

TEST_F(RimByGrid, GivesARadiusThatIsNone_NoRoomInTheBox) {
  for (const double radius : {-1.0, -1e300, std::nan(""), -kInfinite}) {
    TRimRequest r(get_Rmc, make_Plate(10, 20, 14, 22), radius);
    ASSERT_EQ(r.call(), -33);
    EXPECT_EQ(g_Gri.org_xy, (T2DVEC{10, 20}));
    EXPECT_EQ(g_Gri.ext_xy, (T2DVEC{14, 24}));
  }
}

}  // namespace
