// A request of get_Prj, and the state in which its tests begin.
#pragma once

#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <limits>
#include <vector>

#include "foundation/values.h"
#include "tests/boundary/defaults.h"

namespace undercut::tests {

using Points = std::vector<T3DVEC>;

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

// Triangle 0 lies in the plane z = y, with its centroid at (1, 1, 1); triangle 1 far away in the
// plane z = 2, with its centroid at (101, 1, 2). Triangle 2 has two equal corner indices. One area
// for each of the first two, each with a point.
struct TPrjRequest {
  Points vtx = {{0, 0, 0}, {3, 0, 0}, {0, 3, 3}, {100, 0, 2}, {103, 0, 2}, {100, 3, 2}};
  std::vector<T3DTRI> tri = {{0, 1, 2}, {3, 4, 5}, {0, 0, 5}};
  std::vector<std::vector<uint32_t>> areas = {{0}, {1}};
  std::vector<Points> points = {{{1, 0.5, 9}}, {{101, 1, -7}}};
  std::vector<T3DFRM> frames = {kIdentity, kIdentity};
  std::vector<TLstU32> prj_l;
  std::vector<TArrVec> prj_p;
  TUcReq req;
  TUcRes res;

  TPrjRequest() {
    ini_Req(&req);
    ini_Res(&res);
    fill();
  }
  ~TPrjRequest() { clr_Res(&res); }
  TPrjRequest(const TPrjRequest&) = delete;
  TPrjRequest& operator=(const TPrjRequest&) = delete;

  // A quadrilateral in halves; the index of the first.
  uint32_t add_Quad(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c, const T3DVEC& d) {
    const auto v = static_cast<uint32_t>(vtx.size());
    for (const T3DVEC& p : {a, b, c, d}) vtx.push_back(p);
    tri.push_back({v, v + 1, v + 2});
    tri.push_back({v, v + 2, v + 3});
    return static_cast<uint32_t>(tri.size() - 2);
  }
  // Writes the views of the vectors as they now are.
  void fill() {
    prj_l.clear();
    prj_p.clear();
    for (auto& area : areas)
      prj_l.push_back({area.data(), uint32_t(area.size()), uint32_t(area.size())});
    for (auto& list : points) prj_p.push_back({list.data(), uint32_t(list.size())});
    req.msh = {vtx.data(), uint32_t(vtx.size()), tri.data(), uint32_t(tri.size())};
    req.prj_l = {prj_l.data(), uint32_t(prj_l.size()), uint32_t(prj_l.size())};
    req.prj_p = {prj_p.data(), uint32_t(prj_p.size())};
    req.prj_f = {frames.data(), uint32_t(frames.size()), uint32_t(frames.size())};
  }
  int32_t call() {
    clr_Res(&res);
    return get_Prj(&req, &res);
  }
  // What a good call hands out.
  std::vector<Points> moved() {
    fill();
    EXPECT_EQ(call(), 0);
    std::vector<Points> lists;
    for (uint32_t k = 0; k < res.prj.count; ++k) {
      const TArrVec list = res.prj.data[k];
      EXPECT_EQ(list.data == nullptr, list.count == 0);
      lists.push_back(Points(list.data, list.data + list.count));
    }
    return lists;
  }
  // The first area alone, with one point.
  T3DVEC moved(const T3DVEC& p, const T3DVEC& z = {0, 0, 1}) {
    points[0] = {p};
    frames[0].z = z;
    const std::vector<Points> lists = moved();
    return lists.empty() || lists[0].empty() ? T3DVEC{kNan, kNan, kNan} : lists[0][0];
  }
};

class PrjTest : public testing::Test {
 protected:
  PrjTest() { defaults::restore(); }
  ~PrjTest() override { defaults::restore(); }
  // Oblique planes round.
  static void expect_Near(const T3DVEC& p, const T3DVEC& expected) {
    EXPECT_LT(dst(p, expected), 1e-14) << p.x << " " << p.y << " " << p.z;
  }
  TPrjRequest r;
};

}  // namespace undercut::tests
