// A registered sheet, a plate over it as the obstacle, and the request of a corridor along it.
//
// The sheet is 4 by 4 unit squares in halves at z = 0; row y holds the triangles 8 y to 8 y + 7,
// from x = 0 on. The plate lies at z = 1 and ends at x = 2. The ray runs along X at y = 2.5 and
// z = 1, and the band is 0.5 mm wide where the test sets no other width.
#pragma once

#include <algorithm>
#include <vector>

#include "interface/exports.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

inline constexpr T3DVEC kDown = {0, 0, -1};          // reaches row 2
inline constexpr T3DVEC kTilted = {0, 0.25, -0.25};  // reaches row 3; rays run to -Y as they rise

inline std::vector<uint32_t> list_Range(uint32_t first, uint32_t end) {
  std::vector<uint32_t> list;
  for (uint32_t t = first; t < end; ++t) list.push_back(t);
  return list;
}

struct TCorridorRequest {
  TSoup sheet = make_Grid(4, 4);
  TSoup plate = {{{-10, -10, 1}, {2, -10, 1}, {2, 20, 1}, {-10, 20, 1}}, {{0, 1, 2}, {0, 2, 3}}};
  std::vector<T3DRAY> axi;
  TUcReq req;
  TUcRes res;

  TCorridorRequest() {
    ini_Req(&req);
    ini_Res(&res);
    clr_Dll();
    const double width = 0.5, lift = 0.001;
    con_Wid(&width);
    ucs_Tol(&lift);
    fill({kDown});
  }
  ~TCorridorRequest() {
    clr_Res(&res);
    clr_Dll();
  }
  TCorridorRequest(const TCorridorRequest&) = delete;
  TCorridorRequest& operator=(const TCorridorRequest&) = delete;

  // The origins of the axes lie anywhere.
  void fill(const std::vector<T3DVEC>& poses) {
    axi.clear();
    for (const T3DVEC& pose : poses) axi.push_back({{7.0 + double(axi.size()), -3, 11}, pose});
    req.axi = view_Arr(axi);
    req.ray = {{0, 2.5, 1}, {3, 0, 0}};
    req.msh_c = plate.msh();
  }
  int32_t register_Sheet() {
    clr_Dll();
    const T3DMSH msh = sheet.msh();
    return ini_Adt(&msh);
  }
  int32_t call_UCd() {
    clr_Res(&res);
    return get_UCd(&req, &res);
  }
  int32_t call_UCc() { return get_UCc(&req, &res); }
};

}  // namespace undercut::tests
