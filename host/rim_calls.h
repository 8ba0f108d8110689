// The library's rims as a function of plain values.
#pragma once

#include <cstdint>
#include <vector>

#include "curve_file.h"

namespace undercut::host {

enum class RimMethod {
  kEdges,   // what is connected with the start and seen, along the mesh's edges (get_Rma)
  kGrid,    // the same area, its outline on a grid (get_Rmb)
  kGridRoi  // the triangles as they stand, their outline on a grid (get_Rmc)
};

struct RimQuestion {
  RimMethod method = RimMethod::kGrid;
  // Z along the axis, from the part towards the tool.
  T3DFRM frame{};
  uint32_t start = 0;   // not for kGridRoi
  double radius = 0.0;  // mm, of the closing disk; not for kEdges
};

// What the curve is asked for, in the plane of the frame, z = 0: outer curves run counter-clockwise
// as the tool sees them, inner ones clockwise. Reads the parameters that are set. Returns the
// library's status; on one that is not 0 there are no curves.
int32_t trace_Rim(const Mesh& mesh, const std::vector<uint32_t>& triangles,
                  const RimQuestion& question, std::vector<Curve>& curves);

// Why a status is not 0, and what to do about it on the command line.
struct RimTrouble {
  const char *reason, *advice;
};
RimTrouble explain_Rim(RimMethod method, int32_t status);

}  // namespace undercut::host
