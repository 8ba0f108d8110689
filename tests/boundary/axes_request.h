// A request of the searches that find an axis for each region, and the facets that its meshes are
// made of: single triangles far from one another, each of which is best seen along its normal.
#pragma once

#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/values.h"
#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/support/allocations.h"

namespace undercut::tests {

inline T3DVEC direction_Of(double theta, double phi) {
  const double p = theta * kRadians, a = phi * kRadians;
  return {std::sin(p) * std::cos(a), std::sin(p) * std::sin(a), std::cos(p)};
}

// The angle between two unit vectors, in degrees; precise for small ones.
inline double angle_Between(const T3DVEC& a, const T3DVEC& b) {
  return 2.0 * std::asin(std::min(1.0, 0.5 * len(a - b))) * kDegrees;
}

struct TAxesRequest {
  using Computation = int32_t (*)(const TUcReq*, TUcRes*);

  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  std::vector<std::vector<uint32_t>> regions;
  std::vector<TLstU32> cav;
  TUcReq req;
  TUcRes res;

  TAxesRequest() {
    ini_Req(&req);
    ini_Res(&res);
  }
  ~TAxesRequest() { clr_Res(&res); }
  TAxesRequest(const TAxesRequest&) = delete;
  TAxesRequest& operator=(const TAxesRequest&) = delete;

  uint32_t add_Tri(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
    const auto first = static_cast<uint32_t>(vtx.size());
    for (const T3DVEC& p : {a, b, c}) vtx.push_back(p);
    tri.push_back({first, first + 1, first + 2});
    return static_cast<uint32_t>(tri.size() - 1);
  }
  // An equilateral triangle round a centre, counterclockwise as the direction of the angles sees
  // it from its end.
  uint32_t add_Facet(const T3DVEC& centre, double theta, double phi, double size = 1.0) {
    const T3DVEC u = direction_Of(theta + 90, phi), v = direction_Of(90, phi + 90);
    const auto at = [&](double turn) {
      return centre + size * (std::cos(turn * kRadians) * u + std::sin(turn * kRadians) * v);
    };
    return add_Tri(at(0), at(120), at(240));
  }
  uint32_t add_Quad(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c, const T3DVEC& d) {
    add_Tri(a, b, c);
    return add_Tri(a, c, d) - 1;
  }

  // Writes the views of the vectors as they now are. No entry has a null pointer.
  void fill() {
    cav.clear();
    for (auto& region : regions) {
      region.reserve(1);
      const auto count = static_cast<uint32_t>(region.size());
      cav.push_back({region.data(), count, count});
    }
    const auto count = static_cast<uint32_t>(cav.size());
    req.msh = {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
               static_cast<uint32_t>(tri.size())};
    req.cav = {cav.data(), count, count};
  }
  int32_t call(Computation computation) {
    clr_Res(&res);
    return computation(&req, &res);
  }
  // What a call prints on standard output.
  std::string console_Of(Computation computation) {
    defaults::set(ucs_Sta, 1);
    testing::internal::CaptureStdout();
    EXPECT_EQ(call(computation), 0);
    std::fflush(stdout);
    defaults::set(ucs_Sta, 0);
    return testing::internal::GetCapturedStdout();
  }
  T3DVEC z(uint32_t k) const { return res.lst[k].z; }
  T3DVEC org(uint32_t k) const { return res.lst[k].org; }
};

// The figures of the lines that a search prints: ratings, rating, theta, phi.
struct TPrinted {
  std::string name;
  double ratings, rating, theta, phi;
};
inline std::vector<TPrinted> read_Lines(const std::string& console) {
  std::vector<TPrinted> lines;
  std::istringstream text(console);
  for (std::string line; std::getline(text, line);) {
    char name[16];
    TPrinted p = {};
    EXPECT_EQ(std::sscanf(line.c_str(), "%15s :: ratings %lf, rating %lf, theta %lf, phi %lf", name,
                          &p.ratings, &p.rating, &p.theta, &p.phi),
              5)
        << line;
    p.name = name;
    lines.push_back(p);
  }
  return lines;
}

// A request with one thing wrong, and the code that tells it.
struct TFault {
  int32_t code;
  void (*make)(TAxesRequest&);
};

// Parameters are the defaults at the start of each test and again at its end.
class AxisSearch : public testing::Test {
 protected:
  void SetUp() override { defaults::restore(); }
  void TearDown() override { defaults::restore(); }

  // Each fault gives its code, leaks nothing and leaves the result as it was.
  template <size_t N>
  static void expect_Codes(const TFault (&faults)[N], TAxesRequest::Computation computation,
                           void (*make)(TAxesRequest&)) {
    for (const TFault& fault : faults) {
      defaults::restore();
      TAxesRequest r;
      make(r);
      fault.make(r);
      expect_Refusal(computation, r.req, fault.code);
    }
  }
  // A hundred calls hold no more than the frames of the last one.
  static void expect_NoLeak(TAxesRequest& r, TAxesRequest::Computation computation) {
    const int64_t live = live_Allocations();
    for (int cycle = 0; cycle < 100; ++cycle) {
      ASSERT_EQ(r.call(computation), 0);
      ASSERT_EQ(live_Allocations(), live + 1);
    }
    clr_Res(&r.res);
    EXPECT_EQ(live_Allocations(), live);
  }
  // Of two faults the one that stands first in the list is told.
  template <size_t N>
  static void expect_Order(const TFault (&faults)[N], TAxesRequest::Computation computation,
                           void (*make)(TAxesRequest&)) {
    for (size_t i = 0; i < N; ++i) {
      for (size_t k = i + 1; k < N; ++k) {
        defaults::restore();
        TAxesRequest r;
        make(r);
        faults[k].make(r);
        faults[i].make(r);
        EXPECT_EQ(r.call(computation), faults[i].code) << "beside " << faults[k].code;
      }
    }
  }
  // The codes of a call whose allocations fail one after the other.
  static std::vector<int32_t> list_Codes(TAxesRequest& r, TAxesRequest::Computation computation) {
    return list_FailureCodes([&] {
      const int32_t code = r.call(computation);
      clr_Res(&r.res);
      return code;
    });
  }
  // A call writes the bytes of the result from the first to before the end, and no other.
  static void expect_Written(TAxesRequest& r, TAxesRequest::Computation computation, size_t first,
                             size_t end) {
    for (const int before : {0x00, 0xFF}) {
      TUcRes res;
      std::memset(static_cast<void*>(&res), before, sizeof res);
      ASSERT_EQ(computation(&r.req, &res), 0);
      unsigned char bytes[sizeof res];
      std::memcpy(bytes, &res, sizeof res);
      for (size_t i = 0; i < sizeof res; ++i) {
        const bool written = i >= first && i < end;
        EXPECT_TRUE(written || bytes[i] == before) << i;
      }
      clr_Res(&r.res);
      if (first == offsetof(TUcRes, lst)) r.res.lst = res.lst;
    }
  }
};

}  // namespace undercut::tests
