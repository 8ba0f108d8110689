// A request of get_Dcm over a generated body, with as many regions of interest as a test likes, and
// a folder of its own for whatever is written.
#pragma once

#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "bench/bodies.h"
#include "tests/boundary/defaults.h"
#include "tests/files/support.h"

struct TDcmRequest {
  bodies::TBody body;
  std::vector<std::vector<uint32_t>> lists;
  std::vector<TLstU32> rois;
  TUcReq req;
  TUcRes res;

  explicit TDcmRequest(bodies::TBody mesh) : body(std::move(mesh)) {
    ini_Req(&req);
    ini_Res(&res);
    req.msh = body.view();
  }
  ~TDcmRequest() { clr_Res(&res); }
  TDcmRequest(const TDcmRequest&) = delete;
  TDcmRequest& operator=(const TDcmRequest&) = delete;

  uint32_t triangles() const { return static_cast<uint32_t>(body.triangles.size()); }
  // The first and the second half of the mesh.
  void add_Halves() {
    add(0, triangles() / 2);
    add(triangles() / 2, triangles());
  }
  void add(uint32_t first, uint32_t end) {
    std::vector<uint32_t> list(end - first);
    std::iota(list.begin(), list.end(), first);
    lists.push_back(std::move(list));
  }
  int32_t call() {
    clr_Res(&res);
    rois.clear();
    for (auto& list : lists) {
      const auto n = static_cast<uint32_t>(list.size());
      rois.push_back({list.data(), n, n});
    }
    req.rois = {rois.data(), static_cast<uint32_t>(rois.size()),
                static_cast<uint32_t>(rois.size())};
    return get_Dcm(&req, &res);
  }
  TUcSts sts(uint32_t k) const { return res.sts.data[k]; }
};

// Parameters are the defaults at the start of each test, with three bands, and again at its end.
class Decomposition : public undercut::InFolder {
 protected:
  void SetUp() override {
    InFolder::SetUp();
    defaults::restore();
    defaults::set(dcm_Con, 3);
  }
  void TearDown() override {
    defaults::restore();
    InFolder::TearDown();
  }
  // Switches stage files on, into the current folder.
  static void log(const char* stages, const char* types) {
    defaults::set(dcm_log, 1);
    dcm_wrk(stages);
    dcm_uda(types);
    dcm_pth("run");
  }
  // The lines of standard output that a call prints.
  static std::string console_Of(TDcmRequest& r) {
    defaults::set(dcm_rti, 1);
    testing::internal::CaptureStdout();
    r.call();
    std::fflush(stdout);
    defaults::set(dcm_rti, 0);
    return testing::internal::GetCapturedStdout();
  }
  static int count(const std::string& text, const std::string& part) {
    int n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
  }
};

// Angles of a direction in degrees: from +Z, and round it from +X, 0 to 360.
inline double polar_Of(const T3DVEC& d) {
  return std::acos(std::clamp(d.z / undercut::len(d), -1.0, 1.0)) * undercut::kDegrees;
}
inline double azimuth_Of(const T3DVEC& d) {
  const double angle = std::atan2(d.y, d.x) * undercut::kDegrees;
  return angle < 0 ? angle + 360 : angle;
}

inline bodies::TBody small_Body() { return bodies::make_Ring(1800); }
