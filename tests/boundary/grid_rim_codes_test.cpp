// The statuses of get_Rmb and get_Rmc.
#include <cstddef>
#include <cstdio>

#include "tests/boundary/grid_rim_request.h"
#include "tests/support/intensity.h"

using namespace undercut::tests;

namespace {

using GridRimCodes = GridRimTest;

// One fault for each code, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TRimRequest&);
};
const TFault kStartFaults[] = {
    {-9, [](TRimRequest& r) { r.req.n_cnt = 32; }},
};
const TFault kFloodFaults[] = {
    {-12, [](TRimRequest& r) { r.roi[0] = 1; }},
    {-16, [](TRimRequest& r) { r.soup.vtx[1] = r.soup.vtx[0]; }},
    {-17,
     [](TRimRequest& r) {
       r.req.frm.z = {0, 0, 1};
     }},
};
const TFault kMeshFaults[] = {
    {-1, [](TRimRequest& r) { r.req.msh.vtx = nullptr; }},
    {-2, [](TRimRequest& r) { r.req.msh.tri = nullptr; }},
    {-3, [](TRimRequest& r) { r.req.msh.n_vtx = 0; }},
    {-4, [](TRimRequest& r) { r.req.msh.n_tri = 0; }},
    {-5, [](TRimRequest& r) { r.req.roi.data = nullptr; }},
    {-6, [](TRimRequest& r) { r.req.roi.count = 0; }},
};
const TFault kIndexFaults[] = {
    {UNDERCUT_BAD_VERTEX, [](TRimRequest& r) { r.soup.tri[31].b = 25; }},
    {UNDERCUT_BAD_TRIANGLE, [](TRimRequest& r) { r.roi[31] = 32; }},
};
const TFault kGridFaults[] = {
    {-29, [](TRimRequest&) { defaults::set(gri_Res, 1), defaults::set(gri_Dyy, 0.0); }},
    {-30, [](TRimRequest&) { defaults::set(gri_Col, 0); }},
    {-32, [](TRimRequest& r) { r.soup.vtx[24].y = kNoNumber; }},
    {-33, [](TRimRequest& r) { r.req.p_a = -0.1; }},
    {-40, [](TRimRequest&) { defaults::set(ucs_Gew, -9.0); }},
    {-44, [](TRimRequest&) { defaults::set(ucs_Res, 0.0); }},
};

std::vector<TFault> list_Faults(TRimRequest::Computation computation) {
  std::vector<TFault> faults(std::begin(kMeshFaults), std::end(kMeshFaults));
  const auto add = [&faults](const auto& more) {
    faults.insert(faults.end(), std::begin(more), std::end(more));
  };
  if (computation == get_Rmb) add(kStartFaults);
  add(kIndexFaults);
  if (computation == get_Rmb) add(kFloodFaults);
  add(kGridFaults);
  return faults;
}

TEST_F(GridRimCodes, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const auto computation : kBoth)
    for (const TFault& fault : list_Faults(computation)) {
      TSheetRequest r(computation);
      fault.make(r);
      expect_Refusal(computation, r.req, fault.code);
    }
}

TEST_F(GridRimCodes, TellsTheFirstOfTwoFaults) {
  for (const auto computation : kBoth) {
    const std::vector<TFault> faults = list_Faults(computation);
    for (size_t i = 0; i < faults.size(); ++i)
      for (size_t k = i + 1; k < faults.size(); ++k) {
        TSheetRequest r(computation);
        faults[k].make(r);
        faults[i].make(r);
        EXPECT_EQ(r.call(), faults[i].code) << "beside " << faults[k].code;
      }
  }
}

TEST_F(GridRimCodes, RefusesIndicesFarOutOfRange_BeforeReadingThroughThem) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    r.roi[3] = 0xFFFFFFFFu;
    EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
    r.soup.tri[2].a = 0xFFFFFFFFu;
    EXPECT_EQ(r.call(), UNDERCUT_BAD_VERTEX);
    r.req.n_cnt = 0xFFFFFFFFu;
    EXPECT_EQ(r.call(), computation == get_Rmb ? -9 : UNDERCUT_BAD_VERTEX);
  }
}

TEST_F(GridRimCodes, GivesMinus29_ForACellSizeThatIsNotAbove0) {
  for (const auto computation : kBoth)
    for (const double size : {0.0, -0.0, -0.1, kInfinite, -kInfinite, kNoNumber})
      for (const bool wide : {true, false}) {
        TSheetRequest r(computation);
        set_Sizes(wide ? size : 0.1, wide ? 0.1 : size);
        expect_Refusal(computation, r.req, -29);
        // Where the numbers are given, the sizes are found anew.
        defaults::set(gri_Res, 0);
        EXPECT_EQ(r.call(), 0);
      }
}

TEST_F(GridRimCodes, GivesMinus29_ForABoxThatIsNotFinite) {
  for (const auto computation : kBoth)
    for (const uint8_t b_res : {uint8_t{0}, uint8_t{1}}) {
      TSheetRequest r(computation);
      defaults::set(gri_Res, b_res);
      r.req.p_a = kInfinite;
      expect_Refusal(computation, r.req, -29);
      r.req.p_a = 1e308;
      expect_Refusal(computation, r.req, -29);
      r.req.p_a = 0.2;
      r.req.frm.x = {kNoNumber, 0, 0};
      expect_Refusal(computation, r.req, -29);
      r.req.frm.x = {1e308, 1e308, 0};
      expect_Refusal(computation, r.req, -29);
      r.req.frm = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {kInfinite, 0, 0}};
      expect_Refusal(computation, r.req, -29);
      r.req.frm.org = {0, 0, 0};
      r.soup.vtx[24].x = kInfinite;
      expect_Refusal(computation, r.req, -29);
    }
}

TEST_F(GridRimCodes, GivesMinus30_WithoutRowsOrColumns_OrWithTooMany) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    set_Numbers(0, 40);
    expect_Refusal(computation, r.req, -30);
    set_Numbers(40, 0);
    expect_Refusal(computation, r.req, -30);
    for (const double size : {1e-10, 1e-300, 5e-324}) {
      set_Sizes(size, 1.0);
      expect_Refusal(computation, r.req, -30);
      set_Sizes(1.0, size);
      expect_Refusal(computation, r.req, -30);
    }
  }
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define UNDERCUT_ASAN  // its allocator ends the process where one asks for so much
#endif
#endif
#ifndef UNDERCUT_ASAN
TEST_F(GridRimCodes, GivesMinus31_AtOnce_ForMoreCellsThanAnyMemoryHolds) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    set_Numbers(1000000000, 1000000000);
    expect_Refusal(computation, r.req, -31);
    set_Numbers(0xFFFFFFFFu, 0xFFFFFFFFu);
    expect_Refusal(computation, r.req, -31);
    set_Sizes(5e-9, 5e-9);
    expect_Refusal(computation, r.req, -31);
  }
}
#endif

TEST_F(GridRimCodes, GivesMinus32_ForACornerThatIsNoNumber) {
  for (const auto computation : kBoth)
    for (const size_t v : {0u, 7u, 23u, 24u})
      for (const bool in_X : {true, false}) {
        TSheetRequest r(computation);
        r.req.n_cnt = 20;
        (in_X ? r.soup.vtx[v].x : r.soup.vtx[v].y) = kNoNumber;
        expect_Refusal(computation, r.req, -32);
      }
}

TEST_F(GridRimCodes, GivesMinus32_ForABoxWithoutExtent) {
  // All triangles in a point, and a disk without radius.
  TRimRequest c(get_Rmc, TSoup{{{1, 1, 1}}, {{0, 0, 0}}}, 0.0);
  expect_Refusal(get_Rmc, c.req, -32);
  // A sheet of which the frame leaves a point.
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    r.req.frm.x = r.req.frm.y = {0, 0, 1};
    r.req.p_a = 0.0;
    expect_Refusal(computation, r.req, -32);
  }
}

TEST_F(GridRimCodes, FitsItsOwnBox_WhateverTheRounding) {
  const uint64_t seed = 751;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(300); ++round) {
    const T2DVEC low = random.pair(-1000, 1000), size = random.pair(1e-6, 1);
    TRimRequest r(get_Rmc, make_Plate(low.x, low.y, low.x + size.x, low.y + size.y), 0.0);
    if (random.chance(0.5)) r.req.p_a = random.real(0, 1e-13);
    set_Numbers(20 + static_cast<uint32_t>(random.below(20)), 25);
    const int32_t code = r.call();
    // Too few cells are left where one side is far longer than the other.
    EXPECT_TRUE(code == 0 || code == -36 || code == -40) << code;
  }
}

TEST_F(GridRimCodes, GivesMinus33_ForARadiusThatIsNone) {
  for (const auto computation : kBoth)
    for (const uint8_t b_res : {uint8_t{0}, uint8_t{1}})
      for (const double radius : {-0.1, -1e-300, -1e300, -kInfinite, kNoNumber}) {
        TSheetRequest r(computation);
        defaults::set(gri_Res, b_res);
        r.req.p_a = radius;
        expect_Refusal(computation, r.req, -33);
        r.req.p_a = -0.0;
        EXPECT_EQ(r.call(), 0);
      }
}

TEST_F(GridRimCodes, GivesMinus33_ForCellsTooSmallToMultiply) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    for (T3DVEC& v : r.soup.vtx) v = 1e-170 * v;
    r.req.frm.x = {1, 0, 0};
    r.req.p_a = 1e-171;
    // The normals of such triangles have no length: they are seen.
    expect_Refusal(computation, r.req, -33);
  }
}

TEST_F(GridRimCodes, GivesMinus36_WhereTheClosingLeavesNoCell) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    r.req.p_a = 0.0;
    set_Numbers(2, 2);
    expect_Refusal(computation, r.req, -36);
  }
}

TEST_F(GridRimCodes, GivesMinus40_ForACurveOfFewerThanSevenPoints) {
  for (const auto computation : kBoth) {
    const auto call = [computation](double width, double height) {
      TRimRequest r(computation, make_Plate(0, 0, width, height), 0.5);
      set_Sizes(1.0, 1.0);
      return r.call();
    };
    EXPECT_EQ(call(0.25, 0.25), -40);  // a single cell: one point
    EXPECT_EQ(call(2.5, 1.25), -40);   // 3 by 2 cells: 6 points
    EXPECT_EQ(call(2.5, 2.25), 0);     // 3 by 3 cells: 8 points
    TRimRequest r(computation, make_Plate(0, 0, 2.5, 1.25), 0.5);
    expect_Refusal(computation, r.req, -40);
  }
}

// One contour that is too short fails the whole call.
TEST_F(GridRimCodes, GivesMinus40_ForOneShortCurveAmongOthers) {
  TSoup soup = make_Plate(0, 0, 6, 6);
  add_Plate(soup, 8, 8, 8, 8);
  TRimRequest r(get_Rmc, soup, 0.25);
  set_Sizes(0.5, 0.5);
  EXPECT_EQ(r.call(), -40);
  r.set_Roi({0, 1});
  EXPECT_EQ(r.call(), 0);
}

TEST_F(GridRimCodes, GivesMinus44_ForAStepThatIsNotAbove0OrFarTooSmall) {
  for (const auto computation : kBoth)
    for (const double step : {0.0, -0.04, kNoNumber, -kInfinite, 1e-12, 1e-300}) {
      TSheetRequest r(computation);
      defaults::set(ucs_Res, step);
      expect_Refusal(computation, r.req, -44);
    }
}

TEST_F(GridRimCodes, GivesMinus46_ForACurveOfOnePoint) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    defaults::set(ucs_Res, 1e6);
    expect_Refusal(computation, r.req, -46);
  }
}

TEST_F(GridRimCodes, GivesTheCodeOfTheStepWithoutMemory) {
  EXPECT_EQ(TSheetRequest(get_Rmb).list_Codes(), (Codes{-10, -11, -13, -14, -15, -25, -28, -31, -33,
                                                        -34, -35, -36, -37, -40, -44, -46, 0}));
  EXPECT_EQ(TSheetRequest(get_Rmc).list_Codes(),
            (Codes{-31, -33, -34, -35, -36, -37, -40, -44, -46, 0}));
}

TEST_F(GridRimCodes, TellsAFaultBeforeALaterStepAsksForMemory) {
  const Codes flood = {-10, -11, -13, -14, -15, -25, -28};
  const Codes grid = {-31, -33, -34, -35, -36, -37, -40, -44};
  for (const auto computation : kBoth) {
    Codes steps = computation == get_Rmb ? flood : Codes();
    steps.insert(steps.end(), grid.begin(), grid.end());
    for (const TFault& fault : list_Faults(computation)) {
      TSheetRequest r(computation);
      fault.make(r);
      Codes expected;
      for (const int32_t step : steps)
        if (step > fault.code) expected.push_back(step);
      if (fault.code <= UNDERCUT_BAD_VERTEX) expected.clear();  // indices come before the bits
      expected.push_back(fault.code);
      Codes codes = r.list_Codes();
      // Rays that are not finite ask a tree that is made only then.
      std::erase(codes, UNDERCUT_NO_MEMORY);
      EXPECT_EQ(codes, expected) << fault.code;
    }
  }
}

// A ray through a tree as deep as this one needs memory of its own.
TEST_F(GridRimCodes, GivesTheGeneralCode_WithoutMemoryForARay) {
  TRimRequest r(get_Rmb, make_Uneven(), 0.1);
  r.req.frm.z = {-1, 0, 0};
  set_Numbers(20, 20);
  const Codes codes = r.list_Codes();
  EXPECT_NE(std::find(codes.begin(), codes.end(), UNDERCUT_NO_MEMORY), codes.end());
}

TEST_F(GridRimCodes, TakesAMissingRecordAsOneWithoutAMesh) {
  for (const auto computation : kBoth) {
    TSheetRequest r(computation);
    EXPECT_EQ(computation(nullptr, &r.res), -1);
    EXPECT_EQ(computation(&r.req, nullptr), -1);
    EXPECT_EQ(computation(nullptr, nullptr), -1);
  }
}

TEST_F(GridRimCodes, AnswersHarmlessly_ToCoordinatesAndParametersOfAnyKind) {
  const uint64_t seed = 752;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  const Codes known = {0, -12, -16, -17, -29, -30, -32, -33, -36, -40, -44, -46};
  const double steps[] = {1.0, 0.04, 0.5, 3.0, 100.0, 0.0, -1.0, 1e-300, kInfinite, kNoNumber};
  const double sizes[] = {0.1, 0.5, 3.0, 1e300, 0.0, -1.0, 5e-324, kInfinite, kNoNumber};
  std::vector<bool> seen(47, false);
  for (uint32_t round = 0; round < scale_Cases(1500); ++round) {
    const auto any = [&random](double share, double other) {
      return random.chance(share) ? random.special() : other;
    };
    TRimRequest r(kBoth[random.below(2)],
                  random.chance(0.5) ? make_Tangle(random, 20, 60) : make_Bumpy(5, 4),
                  any(0.3, random.real(0, 2)));
    const double share = random.chance(0.6) ? 0.0 : random.real(0, 0.3);
    for (T3DVEC& v : r.soup.vtx)
      if (random.chance(share)) v = {random.special(), random.special(), random.special()};
    for (T3DVEC* axis : {&r.req.frm.x, &r.req.frm.y, &r.req.frm.z, &r.req.frm.org})
      if (random.chance(0.05)) *axis = {random.special(), random.special(), random.special()};
    r.req.n_cnt = static_cast<uint32_t>(random.below(r.roi.size()));
    while (r.roi.size() > 1 && random.chance(0.8))
      r.roi.erase(r.roi.begin() + static_cast<std::ptrdiff_t>(random.below(r.roi.size())));
    r.fill();
    defaults::restore();
    set_Numbers(static_cast<uint32_t>(random.below(60)),
                1 + static_cast<uint32_t>(random.below(60)));
    if (random.chance(0.4)) set_Sizes(sizes[random.below(std::size(sizes))], 0.25);
    defaults::set(ucs_Tol, any(0.2, 0.001));
    defaults::set(ucs_Gew, any(0.2, 0.5));
    defaults::set(ucs_Err, any(0.2, 0.03));
    defaults::set(ucs_Res, steps[random.below(std::size(steps))]);
    const int32_t code = r.call();
    ASSERT_NE(std::find(known.begin(), known.end(), code), known.end()) << code;
    seen[static_cast<size_t>(-code)] = true;
    for (const Points& curve : copy_Nested(r.res.rma))
      for (const T3DVEC& p : curve) EXPECT_EQ(p.z, 0.0);
  }
  for (const int32_t code : known) EXPECT_TRUE(seen[static_cast<size_t>(-code)]) << code;
}

}  // namespace
