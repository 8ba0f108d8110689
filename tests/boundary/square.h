// A small request: four triangles over a unit square and a point beside it.
//
// Triangles 0 and 1 are the halves of the square, each of area 0.5; triangle 2 has two equal corner
// indices; triangle 3 has two different corners at one place.
#pragma once

#include <undercut/exports.h>

#include <cstring>
#include <vector>

struct TSquareRequest {
  std::vector<T3DVEC> vtx = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {1, 1, 0}};
  std::vector<T3DTRI> tri = {{0, 1, 2}, {0, 2, 3}, {1, 1, 3}, {2, 4, 0}};
  std::vector<std::vector<uint32_t>> regions = {{0, 1}, {1}};
  std::vector<double> add = {1.5, -2.0, 100.0, 200.0};
  std::vector<TLstU32> cav;
  TUcReq req;
  TUcRes res;

  TSquareRequest() {
    ini_Req(&req);
    ini_Res(&res);
  }
  ~TSquareRequest() { clr_Res(&res); }
  TSquareRequest(const TSquareRequest&) = delete;
  TSquareRequest& operator=(const TSquareRequest&) = delete;

  // Writes the views of the vectors as they now are.
  void fill() {
    cav.clear();
    for (auto& region : regions) {
      const uint32_t count = uint32_t(region.size());
      cav.push_back({region.data(), count, count});
    }
    req.msh = {vtx.data(), uint32_t(vtx.size()), tri.data(), uint32_t(tri.size())};
    req.cav = {cav.data(), uint32_t(cav.size()), uint32_t(cav.size())};
    req.add = add.data();
  }
  int32_t call() {
    clr_Res(&res);
    return get_Stc(&req, &res);
  }
  int32_t fill_AndCall() {
    fill();
    return call();
  }
};
