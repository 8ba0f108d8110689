// Scenes for the depth fields, and calls over them as a host makes them.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/boundary/defaults.h"
#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

using Depths = std::vector<double>;
using Indices = std::vector<uint32_t>;
using Codes = std::vector<int32_t>;
using Computation = int32_t (*)(const TUcReq*, TUcRes*);

inline constexpr double kNoAnswer = 1.7976931348623157e+308;
inline const T3DRAY kDown = {{0, 0, 0}, {0, 0, -1}};  // rays go up
inline const T3DRAY kUp = {{0, 0, 0}, {0, 0, 1}};     // rays go down

inline void append(TSoup& soup, const TSoup& other) {
  const auto up = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), other.vtx.begin(), other.vtx.end());
  for (const T3DTRI& t : other.tri) soup.tri.push_back({t.a + up, t.b + up, t.c + up});
}

// Two triangles in the plane z that face up.
inline TSoup make_Roof(double x0, double y0, double x1, double y1, double z) {
  return {{{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}}, {{0, 1, 2}, {0, 2, 3}}};
}

inline TSoup moved(TSoup soup, const T3DVEC& by) {
  for (T3DVEC& v : soup.vtx) v += by;
  return soup;
}

struct TDepthRequest {
  TSoup soup;
  std::vector<TSoup> others;
  std::vector<T3DRAY> axi = {kDown};
  std::vector<std::vector<T3DVEC>> curves;
  TUcReq req;
  TUcRes res;

  explicit TDepthRequest(Computation computation) : computation_(computation) {
    ini_Req(&req);
    ini_Res(&res);
  }
  ~TDepthRequest() { clr_Res(&res); }
  TDepthRequest(const TDepthRequest&) = delete;
  TDepthRequest& operator=(const TDepthRequest&) = delete;

  // Writes the views of what stands in the fields; roi stays as it is.
  void fill() {
    req.msh = soup.msh();
    views_.clear();
    for (TSoup& other : others) views_.push_back(other.msh());
    req.msh_b = view_Arr(views_);
    req.axi = view_Arr(axi);
    lines_.clear();
    for (auto& curve : curves) lines_.push_back(view_Arr(curve));
    req.arg = view_Arr(lines_);
  }
  // Never a null list, not even for no triangle.
  void fill_Roi(const Indices& list) {
    roi_ = list;
    roi_.reserve(1);
    req.roi = view_Lst(roi_);
  }
  int32_t call() {
    clr_Res(&res);
    return computation_(&req, &res);
  }
  int32_t fill_AndCall() {
    fill();
    return call();
  }
  Depths depths() {
    EXPECT_EQ(fill_AndCall(), 0);
    return res.dfi ? Depths(res.dfi, res.dfi + soup.tri.size()) : Depths();
  }
  // Of the call with each of its allocations failing in turn.
  Codes list_Codes() {
    fill();
    clr_Res(&res);
    return list_FailureCodes([this] {
      const int32_t code = call();
      clr_Res(&res);
      return code;
    });
  }
  uint64_t count_Allocations() {
    fill();
    for (uint64_t n = 1;; ++n) {
      const FailingAllocation failing(n);
      call();
      if (!failing.has_Failed()) return n - 1;
    }
  }
  T3DVEC centre(uint32_t t) const {
    const T3DTRI& tri = soup.tri[t];
    const T3DVEC sum = soup.vtx[tri.a] + soup.vtx[tri.b] + soup.vtx[tri.c];
    return {sum.x / 3, sum.y / 3, sum.z / 3};
  }

 private:
  Computation computation_;
  std::vector<T3DMSH> views_;
  Indices roi_;
  std::vector<TArrVec> lines_;
};

}  // namespace undercut::tests
