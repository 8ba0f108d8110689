#include "rim_calls.h"

#include <algorithm>

#include "capture.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {
namespace {

// The library looks along minus Z of its frame, which is the way towards the tool: its frame is
// ours, turned round X by half a turn.
T3DFRM turn_Over(const T3DFRM& frame) {
  return {frame.x, -1.0 * frame.y, -1.0 * frame.z, frame.org};
}

int32_t call_Library(RimMethod method, const TUcReq& request, TUcRes& result) {
  const Capture capture;
  switch (method) {
    case RimMethod::kEdges:
      return get_Rma(&request, &result);
    case RimMethod::kGrid:
      return get_Rmb(&request, &result);
    default:
      return get_Rmc(&request, &result);
  }
}

// The contours of a grid and the borders of a mesh run in different ways round the area.
void turn_Outward(std::vector<Curve>& curves) {
  double area = 0.0;
  for (const Curve& curve : curves) area += measure_Area(curve);
  if (area >= 0.0) return;
  for (Curve& curve : curves) std::reverse(curve.begin(), curve.end());
}

}  // namespace

int32_t trace_Rim(const Mesh& mesh, const std::vector<uint32_t>& triangles,
                  const RimQuestion& question, std::vector<Curve>& curves) {
  TUcReq request = make_Request(mesh);
  request.roi = view_List(triangles);
  request.frm = turn_Over(question.frame);
  request.n_cnt = question.start;
  request.p_a = question.radius;
  LibraryResult result;
  const int32_t status = call_Library(question.method, request, result.record);
  if (status != 0) return status;
  const TArrArrVec rims = result.record.rma;
  for (uint32_t i = 0; i < rims.count; ++i) {
    if (rims.data[i].count == 0) continue;
    Curve curve;
    for (uint32_t k = 0; k < rims.data[i].count; ++k) {
      const T3DVEC& p = rims.data[i].data[k];
      curve.push_back({p.x + 0.0, 0.0 - p.y, 0.0});
    }
    curves.push_back(std::move(curve));
  }
  turn_Outward(curves);
  return 0;
}

RimTrouble explain_Rim(RimMethod method, int32_t status) {
  if (status == -1000 || (status >= -15 && status <= -10) || status == -31 ||
      (status >= -35 && status <= -33) || (status >= -39 && status <= -37) || status == -45) {
    return {"there is not enough memory", "Take larger cells, or reduce the mesh."};
  }
  switch (status) {
    case -16:
      return {"the start triangle has two equal corners", "Name another one."};
    case -17:
      return {"the start triangle is not seen along the axis", "Name another one."};
    case -29:
      return {"the area has no extent across the axis, or is too large for a grid",
              "Look from another axis."};
    case -30:
      return {"the grid has no cells, or too many", "Take cells of another size."};
    case -32:
      return {"a corner of the area lies outside the grid", "Check the part's coordinates."};
    case -36:
      return {"the area has no border", method == RimMethod::kEdges
                                            ? "--method grid follows its outline instead."
                                            : "Look from another axis."};
    case -40:
      return {"a curve has fewer than 7 points",
              method == RimMethod::kEdges
                  ? "The mesh is too coarse: --method grid follows the outline on cells instead."
                  : "Take smaller cells with --cell, or close small gaps with a larger --radius."};
    case -44:
      return {"there are too many points on a curve", "Raise ucs.f_res."};
    default:
      return {"an inner step failed", "Try another method, or other cells."};
  }
}

}  // namespace undercut::host
