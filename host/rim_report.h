// How a rim curve is told in JSON, by all that tell one.
#pragma once

#include "json_parts.h"
#include "rim_place.h"

namespace undercut::host {

// `closed`, `hole`, `count`, `length`, `area`, `points`: x and y in the frame.
Json show_Curve(const RimCurve& curve);

}  // namespace undercut::host
