// The undercut computations as functions of meshes and axes. A refused call gives an empty answer
// and fails the test.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "interface/exports.h"
#include "interface/parameters.h"
#include "tests/mesh/soups.h"

namespace undercut::tests {

struct TUcCall {
  TUcReq req;
  TUcRes res;

  explicit TUcCall(const TSoup& soup) {
    ini_Req(&req);
    ini_Res(&res);
    req.msh = view(soup);
  }
  ~TUcCall() { clr_Res(&res); }
  TUcCall(const TUcCall&) = delete;
  TUcCall& operator=(const TUcCall&) = delete;

  // The library writes nothing through the views of a request.
  static T3DMSH view(const TSoup& soup) { return const_cast<TSoup&>(soup).msh(); }
  void set_Axes(const std::vector<T3DRAY>& axes) {
    req.axi = {const_cast<T3DRAY*>(axes.data()), static_cast<uint32_t>(axes.size())};
  }
  void set_Roi(const std::vector<uint32_t>& roi) {
    const auto count = static_cast<uint32_t>(roi.size());
    req.roi = {const_cast<uint32_t*>(roi.data()), count, count};
  }
};

// An axis is the direction of the tool: rays run against it.
inline std::vector<T3DRAY> axes_Against(const std::vector<T3DVEC>& views) {
  std::vector<T3DRAY> axes;
  axes.reserve(views.size());
  for (const T3DVEC& d : views) axes.push_back({{0, 0, 0}, -d});
  return axes;
}

inline std::vector<uint8_t> call_UCs(const TSoup& soup, const std::vector<T3DRAY>& axes,
                                     const std::vector<uint32_t>& roi = {}) {
  TUcCall call(soup);
  call.set_Axes(axes);
  if (!roi.empty()) call.set_Roi(roi);
  const int32_t status = get_UCs(&call.req, &call.res);
  EXPECT_EQ(status, 0);
  if (status != 0) return {};
  return std::vector<uint8_t>(call.res.ucs, call.res.ucs + soup.tri.size());
}

inline std::vector<double> call_DFi(const TSoup& soup, const std::vector<T3DRAY>& axes,
                                    const std::vector<uint32_t>& roi = {}) {
  TUcCall call(soup);
  call.set_Axes(axes);
  if (!roi.empty()) call.set_Roi(roi);
  const int32_t status = get_dFi(&call.req, &call.res);
  EXPECT_EQ(status, 0);
  if (status != 0) return {};
  return std::vector<double>(call.res.dfi, call.res.dfi + soup.tri.size());
}

inline std::vector<double> call_DFb(const TSoup& soup, const std::vector<TSoup>& others,
                                    const std::vector<T3DRAY>& axes,
                                    const std::vector<uint32_t>& roi = {}) {
  TUcCall call(soup);
  call.set_Axes(axes);
  if (!roi.empty()) call.set_Roi(roi);
  std::vector<T3DMSH> views;
  views.reserve(others.size());
  for (const TSoup& other : others) views.push_back(TUcCall::view(other));
  call.req.msh_b = {views.data(), static_cast<uint32_t>(views.size())};
  const int32_t status = get_dFb(&call.req, &call.res);
  EXPECT_EQ(status, 0);
  if (status != 0) return {};
  return std::vector<double>(call.res.dfi, call.res.dfi + soup.tri.size());
}

// Every parameter of these computations at its default, for the life of the object and after.
struct TDefaultParameters {
  TDefaultParameters() { restore(); }
  ~TDefaultParameters() { restore(); }
  TDefaultParameters(const TDefaultParameters&) = delete;
  TDefaultParameters& operator=(const TDefaultParameters&) = delete;

  static void restore() {
    g_UCs = CUCsPar();
    g_Amo = TAmoPar();
    g_Gcu = TGcuPar();
    g_Nxn = TNxnPar();
    g_ErrGew = 0.01;
  }
};

}  // namespace undercut::tests
