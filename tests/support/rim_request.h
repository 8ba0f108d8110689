// A request of the computations of rims, and the curves that they answer with.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "interface/exports.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

using Indices = std::vector<uint32_t>;
using Codes = std::vector<int32_t>;

struct TRimRequest {
  using Computation = int32_t (*)(const TUcReq*, TUcRes*);

  TSoup soup;
  Indices roi;
  TUcReq req;
  TUcRes res;

  // The whole mesh, seen from above, with a disk of the given radius.
  TRimRequest(Computation computation, const TSoup& mesh, double radius)
      : soup(mesh), roi(list_All(mesh)), computation_(computation) {
    ini_Req(&req);
    ini_Res(&res);
    req.frm = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 0}};  // rays run along minus z: up
    req.p_a = radius;
    req.p_b = 0.0;
    fill();
  }
  ~TRimRequest() { clr_Res(&res); }
  TRimRequest(const TRimRequest&) = delete;
  TRimRequest& operator=(const TRimRequest&) = delete;

  // Writes the views of mesh and list as they now are.
  void fill() {
    req.msh = soup.msh();
    req.roi = view_Lst(roi);
  }
  void set_Roi(const Indices& list) {
    roi = list;
    fill();
  }
  int32_t call() {
    clr_Res(&res);
    return computation_(&req, &res);
  }
  std::vector<Points> curves() {
    EXPECT_EQ(call(), 0);
    return copy_Nested(res.rma);
  }
  // Of the call with each of its allocations failing in turn.
  Codes list_Codes() {
    return list_FailureCodes([this] {
      const int32_t code = call();
      clr_Res(&res);
      return code;
    });
  }

 private:
  Computation computation_;
};

// Two triangles over a rectangle in the plane z, facing up.
inline void add_Plate(TSoup& soup, double x0, double y0, double x1, double y1, double z = 0.0) {
  const auto v = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}});
  soup.tri.push_back({v, v + 1, v + 2});
  soup.tri.push_back({v, v + 2, v + 3});
}
inline TSoup make_Plate(double x0, double y0, double x1, double y1, double z = 0.0) {
  TSoup soup;
  add_Plate(soup, x0, y0, x1, y1, z);
  return soup;
}

}  // namespace undercut::tests
