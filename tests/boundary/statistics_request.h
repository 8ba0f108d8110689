// A request of the two ratings of regions, and what holds of both.
#pragma once

#include <cstring>
#include <limits>

#include "tests/boundary/axes_request.h"
#include "tests/support/stl_mesh.h"

namespace undercut::tests {

inline constexpr double kNoShare = 1.7976931348623157e+308;
inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinite = std::numeric_limits<double>::infinity();

inline const T3DRAY kLooksUp = {{0, 0, 0}, {0, 0, -1}};  // of a tool that comes down from +Z
inline const T3DRAY kLooksDown = {{0, 0, 0}, {0, 0, 1}};

// Triangles in the planes z = 0 and z = 1. Triangles 0 and 1 lie on the floor and face up, 1 below
// the roof 2, which faces up as well. Triangle 3 faces down. Triangles 4 and 5 have two equal
// corners, by index and by place. Triangle 6 makes a square of 0. All have area 0.5 but the roof
// with 8 and those of equal corners.
struct TStatRequest : TAxesRequest {
  std::vector<T3DRAY> axi;

  TStatRequest() {
    vtx = {{0, 0, 0},  {1, 0, 0},  {0, 1, 0},   // 0
           {4, 0, 0},  {5, 0, 0},  {4, 1, 0},   // 1
           {3, -1, 1}, {7, -1, 1}, {3, 3, 1},   // 2
           {0, 9, 0},  {0, 10, 0}, {1, 9, 0},   // 3
           {20, 0, 0}, {21, 0, 0}, {21, 0, 0},  // 4 and 5
           {1, 1, 0}};                          // 6
    tri = {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}, {12, 13, 13}, {12, 13, 14}, {1, 15, 2}};
    set_Regions({{0, 1}, {2}});
  }
  explicit TStatRequest(const TSoup& soup) {
    vtx = soup.vtx;
    tri = soup.tri;
  }

  // Each with one and the same axis.
  void set_Regions(const std::vector<std::vector<uint32_t>>& lists, const T3DRAY& axis = kLooksUp) {
    regions = lists;
    axi.assign(lists.size(), axis);
    fill();
  }
  void fill() {
    TAxesRequest::fill();
    req.axi = {axi.data(), static_cast<uint32_t>(axi.size())};
  }
  const TUcStat& sta(uint32_t k) const { return res.sta[k]; }
};

// A request with one thing wrong, and the code that tells it; in the order of the checks.
struct TStatFault {
  int32_t code;
  void (*make)(TStatRequest&);
};
inline const TStatFault kStatFaults[] = {
    {-1, [](TStatRequest& r) { r.req.msh.vtx = nullptr; }},
    {-2, [](TStatRequest& r) { r.req.msh.tri = nullptr; }},
    {-3, [](TStatRequest& r) { r.req.msh.n_vtx = 0; }},
    {-4, [](TStatRequest& r) { r.req.msh.n_tri = 0; }},
    {-5, [](TStatRequest& r) { r.req.cav.data = nullptr; }},
    {-6, [](TStatRequest& r) { r.req.cav.capacity = 0; }},
    {-7, [](TStatRequest& r) { r.req.axi.data = nullptr; }},
    {-8, [](TStatRequest& r) { r.req.axi.count = 0; }},
    {-9, [](TStatRequest& r) { r.req.axi.count = 1; }},
    {UNDERCUT_BAD_VERTEX, [](TStatRequest& r) { r.tri[6].c = 16; }},
    {UNDERCUT_BAD_TRIANGLE, [](TStatRequest& r) { r.regions[1][0] = 7; }},
    {-11, [](TStatRequest& r) { r.axi[1].dir.y = kNoNumber; }},
};

// Parameters are the defaults at the start of each test and again at its end.
class StatisticsTest : public testing::Test {
 protected:
  using Computation = TAxesRequest::Computation;
  using Codes = std::vector<int32_t>;

  void SetUp() override { defaults::restore(); }
  void TearDown() override { defaults::restore(); }

  static void expect_Codes(Computation computation) {
    for (const TStatFault& fault : kStatFaults) {
      TStatRequest faulty;
      fault.make(faulty);
      expect_Refusal(computation, faulty.req, fault.code);
    }
  }
  // Of two faults the one that is checked first is told.
  static void expect_Order(Computation computation) {
    for (size_t i = 0; i < std::size(kStatFaults); ++i)
      for (size_t k = i + 1; k < std::size(kStatFaults); ++k) {
        TStatRequest faulty;
        kStatFaults[k].make(faulty);
        kStatFaults[i].make(faulty);
        EXPECT_EQ(faulty.call(computation), kStatFaults[i].code)
            << "beside " << kStatFaults[k].code;
      }
  }
  // Not even one more than needed is taken.
  static void expect_AnAxisForEachRegion(Computation computation) {
    for (const size_t axes : {size_t{1}, size_t{3}}) {
      TStatRequest r;
      r.axi.resize(axes, kLooksUp);
      r.fill();
      expect_Refusal(computation, r.req, -9);
    }
  }
  static void expect_NoReadBeyond(Computation computation) {
    TStatRequest r;
    r.regions[0][1] = 0xFFFFFFFFu;
    EXPECT_EQ(r.call(computation), UNDERCUT_BAD_TRIANGLE);
    r.tri[0].a = 0xFFFFFFFFu;
    EXPECT_EQ(r.call(computation), UNDERCUT_BAD_VERTEX);
  }
  static void expect_NoFrame(Computation computation) {
    for (const T3DVEC& dir :
         {T3DVEC{kNoNumber, 0, 1}, {0, kInfinite, 0}, {1, 0, -kInfinite}, {0, 0, kNoNumber}}) {
      TStatRequest r;
      r.axi[0].dir = dir;
      expect_Refusal(computation, r.req, -11);
    }
  }
  static void expect_MissingRecords(Computation computation) {
    TStatRequest r;
    EXPECT_EQ(computation(nullptr, &r.res), -1);
    EXPECT_EQ(computation(&r.req, nullptr), -1);
    EXPECT_EQ(computation(nullptr, nullptr), -1);
  }
  // The number of regions is the capacity.
  static void expect_Capacity(Computation computation) {
    TStatRequest r;
    ASSERT_EQ(r.call(computation), 0);
    const TUcStat second = r.sta(1);
    r.req.cav.count = 0;
    ASSERT_EQ(r.call(computation), 0);
    EXPECT_EQ(std::memcmp(&r.sta(1), &second, sizeof second), 0);
  }
  static void expect_OnlySta(Computation computation) {
    TStatRequest r;
    TUcRes res, before;
    std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
    std::memcpy(static_cast<void*>(&before), &res, sizeof res);
    ASSERT_EQ(computation(&r.req, &res), 0);
    EXPECT_TRUE(res.sta != before.sta);
    r.res.sta = res.sta;
    before.sta = res.sta;
    EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
  }
  static void expect_RequestAsItWas(Computation computation) {
    TStatRequest r;
    r.set_Regions({{5, 0, 1, 0}, {}, {6}});
    const auto vtx = r.vtx;
    const auto tri = r.tri;
    const auto axi = r.axi;
    const auto regions = r.regions;
    const auto cav = r.cav;
    TUcReq before;
    std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
    ASSERT_EQ(r.call(computation), 0);
    EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
    EXPECT_EQ(std::memcmp(vtx.data(), r.vtx.data(), vtx.size() * sizeof(T3DVEC)), 0);
    EXPECT_EQ(std::memcmp(tri.data(), r.tri.data(), tri.size() * sizeof(T3DTRI)), 0);
    EXPECT_EQ(std::memcmp(axi.data(), r.axi.data(), axi.size() * sizeof(T3DRAY)), 0);
    EXPECT_EQ(std::memcmp(cav.data(), r.cav.data(), cav.size() * sizeof(TLstU32)), 0);
    EXPECT_EQ(regions, r.regions);
  }
  static void expect_PackedRecords(Computation computation) {
    TStatRequest r;
    ASSERT_EQ(r.call(computation), 0);
    alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
    auto* req = reinterpret_cast<TUcReq*>(memory + 4);
    auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
    ini_Req(req);
    ini_Res(res);
    req->msh = r.req.msh;
    req->cav = r.req.cav;
    req->axi = r.req.axi;
    ASSERT_EQ(computation(req, res), 0);
    EXPECT_EQ(std::memcmp(res->sta, r.res.sta, 2 * sizeof(TUcStat)), 0);
    EXPECT_EQ(clr_Res(res), 0);
  }
  static void expect_NoLeak(Computation computation) {
    TStatRequest r;
    r.set_Regions({{0, 1, 4}, {2}, {}, {3, 3, 6}});
    const int64_t live = live_Allocations();
    for (int cycle = 0; cycle < 1000; ++cycle) {
      ASSERT_EQ(ini_Res(&r.res), 0);
      ASSERT_EQ(computation(&r.req, &r.res), 0);
      ASSERT_EQ(live_Allocations(), live + 1);
      ASSERT_EQ(clr_Res(&r.res), 0);
    }
    EXPECT_EQ(live_Allocations(), live);
  }
  // The records have nothing but the given values.
  static void expect_Bytes(const TUcStat& stat, uint8_t seen, double share, double area_seen,
                           double area, uint32_t rim_seen, uint32_t rim) {
    TUcStat expected;
    std::memset(&expected, 0, sizeof expected);
    expected.seen = seen;
    expected.share = share;
    expected.area_seen = area_seen;
    expected.area = area;
    expected.rim_seen = rim_seen;
    expected.rim = rim;
    EXPECT_EQ(std::memcmp(&stat, &expected, sizeof expected), 0)
        << int(stat.seen) << " " << stat.share << " " << stat.area_seen << " " << stat.area << " "
        << stat.rim_seen << " " << stat.rim;
  }
  // Of the call with each of its allocations failing in turn.
  static Codes list_Codes(TStatRequest& r, Computation computation) {
    clr_Res(&r.res);
    return list_FailureCodes([&] {
      const int32_t code = r.call(computation);
      clr_Res(&r.res);
      return code;
    });
  }
};

// The regions that get_Dcm finds on a real part in three bands, with the axes that it tells.
struct TPartRequest : TStatRequest {
  TPartRequest() : TStatRequest(read_Stl(UNDERCUT_EXAMPLES "/molar_stub.stl")) {
    defaults::set(dcm_Con, 3);
    std::vector<uint32_t> all(tri.size());
    for (uint32_t t = 0; t < all.size(); ++t) all[t] = t;
    const auto n = static_cast<uint32_t>(all.size());
    TLstU32 roi = {all.data(), n, n};
    fill();
    req.rois = {&roi, 1, 1};
    EXPECT_EQ(call(get_Dcm), 0);
    for (uint32_t k = 0; res.uca_t.count == 1 && k < res.uca_t.data[0].count; ++k) {
      const TLstU32 region = res.uca_t.data[0].data[k];
      regions.emplace_back(region.data, region.data + region.count);
      axi.push_back(res.uca_a.data[0].data[k]);
    }
    req.rois = {nullptr, 0, 0};
    fill();
  }
};

}  // namespace undercut::tests
