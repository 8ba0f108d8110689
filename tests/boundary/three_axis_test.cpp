// get_3ax and get_Amo, called as a host calls them.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/support/allocations.h"
#include "tests/support/meshes.h"
#include "tests/support/patterns.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Export = int32_t (*)(const TUcReq*, TUcRes*);
constexpr Export kBoth[] = {get_3ax, get_Amo};

struct TAxisRequest {
  TSoup soup;
  TUcReq req;
  TUcRes res;

  explicit TAxisRequest(TSoup mesh) : soup(std::move(mesh)) {
    ini_Req(&req);
    ini_Res(&res);
    std::memset(static_cast<void*>(&res.frm_a), 0, sizeof res.frm_a);
    req.msh = soup.msh();
  }
  ~TAxisRequest() { clr_Res(&res); }
  TAxisRequest(const TAxisRequest&) = delete;
  TAxisRequest& operator=(const TAxisRequest&) = delete;

  int32_t call(Export computation) { return computation(&req, &res); }
  // From a start given in degrees.
  int32_t call_From(double theta, double phi) {
    req.f_a = theta;
    req.f_b = phi;
    return get_Amo(&req, &res);
  }
  T3DFRM frame() const { return res.frm_a; }
};

class ThreeAxis : public testing::Test {
 protected:
  void SetUp() override { defaults::restore(); }
  ~ThreeAxis() override { defaults::restore(); }

  // The search stays at its start.
  static void stand_Still() { defaults::set(amo_Dxy, 0.0); }
  static std::string show(TAxisRequest& r, Export computation) {
    defaults::set(ucs_Sta, uint8_t{1});
    testing::internal::CaptureStdout();
    EXPECT_EQ(r.call(computation), 0);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
  }
  struct TLine {
    std::string name;
    unsigned ratings;
    double rating, theta, phi;
  };
  static TLine read(const std::string& text) {
    const std::string number = "([-+.0-9a-z]+)";
    Groups parts;
    EXPECT_TRUE(Pattern("(get_[a-zA-Z0-9]+) :: ratings ([0-9]+), rating " + number + ", theta " +
                        number + ", phi " + number + "\n")
                    .match(text, parts))
        << text;
    if (parts.size() < 6) return {};
    return {parts[1], static_cast<unsigned>(std::stoul(parts[2])), std::stod(parts[3]),
            std::stod(parts[4]), std::stod(parts[5])};
  }
};

void expect_Near(const T3DVEC& a, const T3DVEC& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

// Turns a mesh out of the axes, its Z to (2, -1, 2).
TSoup lean(TSoup soup) {
  for (T3DVEC& v : soup.vtx)
    v = (1.0 / 3.0) *
        T3DVEC{2 * v.x - v.y + 2 * v.z, 2 * v.x + 2 * v.y - v.z, -v.x + 2 * v.y + 2 * v.z};
  return soup;
}

// A large triangle at z = 0 and a small one at z = 3, apart, both facing up.
TSoup make_Steps() {
  return {{{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {9, 9, 3}, {10, 9, 3}, {9, 10, 3}},
          {{0, 1, 2}, {3, 4, 5}}};
}

}  // namespace

TEST_F(ThreeAxis, OfASheet_IsAcrossIt) {
  for (const Export computation : kBoth) {
    TAxisRequest r(make_Grid(5, 5));
    ASSERT_EQ(r.call(computation), 0);
    // The start is the pole, and the simplex ends within its bound.
    EXPECT_NEAR(std::fabs(r.frame().z.z), 1, 1e-3);
    expect_Near(r.frame().org, {2.5, 2.5, 0}, 1e-12);
  }
}

TEST_F(ThreeAxis, FillsAnOrthonormalFrame_RoundTheMeanOfTheVertices) {
  TAxisRequest r(lean(make_Bumpy(8, 8)));
  ASSERT_EQ(r.call(get_3ax), 0);
  const T3DFRM f = r.frame();
  for (const T3DVEC& axis : {f.x, f.y, f.z}) EXPECT_NEAR(dot(axis, axis), 1, 1e-12);
  expect_Near(cross(f.x, f.y), f.z, 1e-12);
  T3DVEC mean = {};
  for (const T3DVEC& v : r.soup.vtx) mean = mean + (1.0 / double(r.soup.vtx.size())) * v;
  expect_Near(f.org, mean, 1e-9);
  EXPECT_GT(std::fabs(dot(f.z, unit(T3DVEC{2, -1, 2}))), std::cos(10 * kRadians));
}

TEST_F(ThreeAxis, TurnsZToTheEnd_WhereTheSeenSurfaceLies) {
  stand_Still();
  for (const double theta : {0.0, 180.0}) {
    TAxisRequest low(make_Steps());
    ASSERT_EQ(low.call_From(theta, 0), 0);
    expect_Near(low.frame().z, {0, 0, -1}, 1e-12);
    TAxisRequest high(make_Steps());
    for (T3DVEC& v : high.soup.vtx) v.z = -v.z;
    ASSERT_EQ(high.call_From(theta, 0), 0);
    expect_Near(high.frame().z, {0, 0, 1}, 1e-12);
  }
}

TEST_F(ThreeAxis, OnATie_KeepsMinusTheDirection) {
  stand_Still();
  TAxisRequest r({{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}, {{0, 1, 2}}});
  ASSERT_EQ(r.call_From(0, 0), 0);
  expect_Near(r.frame().z, {0, 0, -1}, 0);
}

TEST_F(ThreeAxis, OfAFlatTriangle_KeepsTheFirstBestOfTheScan) {
  stand_Still();
  defaults::set(nxn_Dxx, 90.0);
  defaults::set(nxn_Box, defaults::TBox{{0, 0, 181, 360}});
  TAxisRequest r({{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}, {{0, 1, 2}}});
  const TLine line = read(show(r, get_3ax));
  // Theta 0 and 180 rate alike.
  EXPECT_EQ(line.theta, 0);
  EXPECT_EQ(line.phi, 0);
  EXPECT_EQ(line.rating, -2);
  expect_Near(r.frame().z, {0, 0, -1}, 0);
}

TEST_F(ThreeAxis, AtABoundAboveTheStartSimplex_TakesItsBestVertex_ThoughTheScansBestIsBetter) {
  // A triangle of area 2 that faces along (30, 100), where the scan finds it.
  const double th = 30 * kRadians, ph = 100 * kRadians;
  const T3DVEC u = {std::cos(th) * std::cos(ph), std::cos(th) * std::sin(ph), -std::sin(th)};
  const T3DVEC v = {-std::sin(ph), std::cos(ph), 0};
  TAxisRequest r({{{0, 0, 0}, 2.0 * u, 2.0 * v}, {{0, 1, 2}}});
  defaults::set(nxn_Box, defaults::TBox{{30, 100, 31, 101}});
  defaults::set(amo_Eps, 20.0);
  const TLine line = read(show(r, get_3ax));
  EXPECT_EQ(line.ratings, 4u);
  EXPECT_EQ(line.theta, 30);
  EXPECT_EQ(line.phi, 105);
  EXPECT_GT(line.rating, -1.9999);
  stand_Still();
  EXPECT_NEAR(read(show(r, get_3ax)).rating, -2, 1e-12);
}

TEST_F(ThreeAxis, ScansOnlyTheWindow) {
  stand_Still();
  defaults::set(nxn_Box, defaults::TBox{{50, 100, 51, 101}});
  TAxisRequest r(make_Grid(4, 4));
  const TLine line = read(show(r, get_3ax));
  EXPECT_EQ(line.theta, 50);
  EXPECT_EQ(line.phi, 100);
}

TEST_F(ThreeAxis, WithoutAnyRating_AnswersAllTheSame) {
  defaults::set(nxn_Box, defaults::TBox{{50, 100, 50, 100}});
  TAxisRequest r(make_Grid(4, 4));
  ASSERT_EQ(r.call(get_3ax), 0);
  EXPECT_NEAR(dot(r.frame().z, r.frame().z), 1, 1e-12);
}

TEST_F(ThreeAxis, CountsItsRatings) {
  stand_Still();
  TAxisRequest r(make_Grid(4, 4));
  const TLine scan = read(show(r, get_3ax));
  EXPECT_EQ(scan.name, "get_3ax");
  EXPECT_EQ(scan.ratings, 1u + 6 + 9 + 8 + 3 + 3);
  const TLine given = read(show(r, get_Amo));
  EXPECT_EQ(given.name, "get_Amo");
  EXPECT_EQ(given.ratings, 3u);
}

TEST_F(ThreeAxis, PrintsNothing_UnlessAsked) {
  for (const Export computation : kBoth) {
    TAxisRequest r(make_Grid(4, 4));
    testing::internal::CaptureStdout();
    EXPECT_EQ(r.call(computation), 0);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  }
}

TEST_F(ThreeAxis, WeighsTheAreasByErrGew) {
  stand_Still();
  TAxisRequest r(make_Grid(4, 4));
  r.req.f_a = 60;
  for (const double weight : {0.0, 0.25, 1.0}) {
    defaults::set(err_Gew, weight);
    EXPECT_NEAR(read(show(r, get_Amo)).rating, -16 * (weight + (1 - weight) * 0.5), 1e-9);
  }
}

TEST_F(ThreeAxis, LiftsItsRaysByAThousandth_WhateverTheTolerance) {
  stand_Still();
  defaults::set(ucs_Tol, 10.0);
  TSoup soup = make_Grid(1, 1);
  for (uint32_t v = 0; v < 4; ++v) soup.vtx.push_back(soup.vtx[v] + T3DVEC{0, 0, 0.002});
  soup.tri.push_back({4, 6, 5});
  soup.tri.push_back({5, 6, 7});
  TAxisRequest r(std::move(soup));
  EXPECT_EQ(read(show(r, get_Amo)).rating, 0);
}

TEST_F(ThreeAxis, FromAStart_ReadsNoScan) {
  defaults::set(nxn_Box, defaults::TBox{{50, 100, 51, 101}});
  defaults::set(nxn_Dxx, 0.0);
  TAxisRequest r(make_Grid(4, 4));
  ASSERT_EQ(r.call_From(3, 40), 0);
  EXPECT_NEAR(std::fabs(r.frame().z.z), 1, 1e-3);
}

TEST_F(ThreeAxis, StopsAtTheLimit) {
  TAxisRequest r(make_Grid(4, 4));
  r.req.f_a = 60;
  defaults::set(amo_Max, uint32_t{0});
  const TLine none = read(show(r, get_Amo));
  EXPECT_EQ(none.ratings, 3u);
  EXPECT_NEAR(none.theta, 60 - 5 / std::sqrt(2.0), 1e-12);  // the first vertex
  defaults::set(amo_Max, uint32_t{1});
  EXPECT_GE(read(show(r, get_Amo)).ratings, 4u);
}

TEST_F(ThreeAxis, WritesNothingOfTheResultButFrmA) {
  for (const Export computation : kBoth) {
    TAxisRequest r(lean(make_Bumpy(4, 4)));
    TUcRes res, before;
    std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
    std::memcpy(&before, &res, sizeof res);
    ASSERT_EQ(computation(&r.req, &res), 0);
    EXPECT_NE(std::memcmp(&res, &before, sizeof(T3DFRM)), 0);
    std::memcpy(&before, &res, sizeof(T3DFRM));
    EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
  }
}

TEST_F(ThreeAxis, LeavesTheRequestAndTheMeshAsTheyWere) {
  for (const Export computation : kBoth) {
    TAxisRequest r(lean(make_Bumpy(4, 4)));
    const TSoup soup = r.soup;
    TUcReq before;
    std::memcpy(&before, &r.req, sizeof before);
    ASSERT_EQ(r.call(computation), 0);
    EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
    EXPECT_EQ(std::memcmp(soup.vtx.data(), r.soup.vtx.data(), soup.vtx.size() * 24), 0);
    EXPECT_EQ(std::memcmp(soup.tri.data(), r.soup.tri.data(), soup.tri.size() * 12), 0);
  }
}

TEST_F(ThreeAxis, LeavesTheParametersAsTheyWere_SoThatACallCanBeRepeated) {
  TAxisRequest r(lean(make_Bumpy(5, 5)));
  for (const Export computation : kBoth) {
    const std::string first = show(r, computation);
    EXPECT_EQ(show(r, computation), first);
  }
}

TEST_F(ThreeAxis, WorksOnRecordsAtAMultipleOf4Bytes) {
  TAxisRequest r(make_Grid(4, 4));
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  ini_Req(req);
  ini_Res(res);
  req->msh = r.req.msh;
  for (const Export computation : kBoth) {
    ASSERT_EQ(computation(req, res), 0);
    ASSERT_EQ(r.call(computation), 0);
    EXPECT_EQ(std::memcmp(res, &r.res, sizeof(T3DFRM)), 0);
  }
}

// One fault for each code of the checks, in their order.
struct TFault {
  int32_t code;
  void (*make)(TAxisRequest&);
};
const TFault kFaults[] = {
    {-4, [](TAxisRequest& r) { r.req.msh.vtx = nullptr; }},
    {-5, [](TAxisRequest& r) { r.req.msh.tri = nullptr; }},
    {-6, [](TAxisRequest& r) { r.req.msh.n_vtx = 0; }},
    {-7, [](TAxisRequest& r) { r.req.msh.n_tri = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TAxisRequest& r) { r.soup.tri[3].b = 25; }},
};

TEST_F(ThreeAxis, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const Export computation : kBoth)
    for (const TFault& fault : kFaults) {
      TAxisRequest r(make_Grid(4, 4));
      fault.make(r);
      expect_Refusal(computation, r.req, fault.code);
    }
}

TEST_F(ThreeAxis, TellsTheFirstOfTwoFaults) {
  for (const Export computation : kBoth)
    for (size_t i = 0; i < std::size(kFaults); ++i)
      for (size_t k = i + 1; k < std::size(kFaults); ++k) {
        TAxisRequest r(make_Grid(4, 4));
        kFaults[k].make(r);
        kFaults[i].make(r);
        EXPECT_EQ(r.call(computation), kFaults[i].code) << "beside " << kFaults[k].code;
      }
}

TEST_F(ThreeAxis, TakesAMissingRecordAsOneWithoutAMesh) {
  for (const Export computation : kBoth) {
    TAxisRequest r(make_Grid(4, 4));
    EXPECT_EQ(computation(nullptr, &r.res), -4);
    EXPECT_EQ(computation(&r.req, nullptr), -4);
    EXPECT_EQ(computation(nullptr, nullptr), -4);
  }
}

TEST_F(ThreeAxis, WithoutMemory_GivesMinus8ForTheMesh_AndMinus12ForTheBits) {
  for (const Export computation : kBoth) {
    TAxisRequest r(make_Grid(4, 4));
    EXPECT_EQ(list_FailureCodes([&] { return r.call(computation); }),
              (std::vector<int32_t>{-8, -1000, -12, 0}));
  }
}

TEST_F(ThreeAxis, WithoutMemoryForRays_GivesTheGeneralCode_AndMinus13ForTheLastSight) {
  defaults::set(amo_Max, uint32_t{0});
  TAxisRequest r(make_Uneven());
  r.req.f_a = 90;
  // The number of allocations of a whole call, by halving.
  const auto fails = [&r](uint64_t n, int32_t& code) {
    const FailingAllocation failing(n);
    code = r.call(get_Amo);
    return failing.has_Failed();
  };
  int32_t code = 0;
  uint64_t low = 1, high = 1;
  while (fails(high, code)) high *= 2;
  EXPECT_EQ(code, 0);
  while (high - low > 1) {
    const uint64_t middle = low + (high - low) / 2;
    (fails(middle, code) ? low : high) = middle;
  }
  EXPECT_GT(low, 100u);
  const int64_t live = live_Allocations();
  EXPECT_TRUE(fails(low, code));
  EXPECT_EQ(code, -13);
  EXPECT_TRUE(fails(low / 2, code));
  EXPECT_EQ(code, UNDERCUT_NO_MEMORY);
  EXPECT_TRUE(fails(1, code));
  EXPECT_EQ(code, -8);
  EXPECT_EQ(live_Allocations(), live);
}

TEST_F(ThreeAxis, WithoutAFiniteDirection_GivesMinus14) {
  const double starts[][2] = {{NAN, 0}, {0, NAN}, {INFINITY, 0}, {10, -INFINITY}};
  for (const auto& start : starts) {
    TAxisRequest r(make_Grid(4, 4));
    TUcRes before;
    std::memcpy(&before, &r.res, sizeof before);
    const int64_t live = live_Allocations();
    EXPECT_EQ(r.call_From(start[0], start[1]), -14);
    EXPECT_EQ(live_Allocations(), live);
    EXPECT_EQ(std::memcmp(&before, &r.res, sizeof before), 0);
  }
}

TEST_F(ThreeAxis, WithARadiusThatIsNoNumber_GivesMinus14) {
  defaults::set(amo_Dxy, double(NAN));
  for (const Export computation : kBoth) {
    TAxisRequest r(make_Grid(4, 4));
    expect_Refusal(computation, r.req, -14);
  }
}

TEST_F(ThreeAxis, OfCoordinatesThatAreNoNumbers_Ends) {
  for (const double value : {double(NAN), double(INFINITY), 1e300, -1.7e308}) {
    TAxisRequest r(make_Grid(4, 4));
    r.soup.vtx[7] = {value, 1, value};
    for (const Export computation : kBoth) {
      const int32_t status = r.call(computation);
      EXPECT_TRUE(status == 0 || status == -14) << status;
    }
  }
}

TEST_F(ThreeAxis, OfParametersOutOfTheirRanges_Ends) {
  for (const double value : {0.0, -1.0, double(NAN), double(INFINITY), 1e-300, 1e300}) {
    const auto call = [value] {
      TAxisRequest r(make_Grid(2, 2));
      for (const Export computation : kBoth) {
        const int32_t status = r.call(computation);
        EXPECT_TRUE(status == 0 || status == -14) << value << ": " << status;
      }
      defaults::restore();
    };
    for (const auto setter : {nxn_Dxx, nxn_Dyy, amo_Dxy, amo_Eps, err_Gew}) {
      defaults::set(setter, value);
      call();
    }
    for (size_t k = 0; k < 4; ++k) {
      defaults::TBox box = {{0, 0, 180, 360}};
      box.values[k] = value;
      defaults::set(nxn_Box, box);
      call();
    }
  }
}

TEST_F(ThreeAxis, LeaksNothing) {
  TAxisRequest r(make_Grid(4, 4));
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 100; ++cycle) {
    ASSERT_EQ(r.call(get_Amo), 0);
    ASSERT_EQ(live_Allocations(), live);
  }
  ASSERT_EQ(r.call(get_3ax), 0);
  ASSERT_EQ(live_Allocations(), live);
}
