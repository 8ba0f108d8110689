// What the tests of get_Rmb and get_Rmc share.
#pragma once

#include <cmath>

#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/support/rim_request.h"

namespace undercut::tests {

inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinite = std::numeric_limits<double>::infinity();
inline constexpr TRimRequest::Computation kBoth[] = {get_Rmb, get_Rmc};

inline void set_Numbers(uint32_t rows, uint32_t columns) {
  defaults::set(gri_Res, 0);
  defaults::set(gri_Row, rows);
  defaults::set(gri_Col, columns);
}
inline void set_Sizes(double dxx, double dyy) {
  defaults::set(gri_Res, 1);
  defaults::set(gri_Dxx, dxx);
  defaults::set(gri_Dyy, dyy);
}

// No smoothing, a point for each cell, nothing thinned out.
inline void set_Raw() {
  defaults::set(ucs_Gew, kInfinite);
  defaults::set(ucs_Res, 1.0);
  defaults::set(ucs_Err, -1.0);
}

// Parameters are the defaults at the start of each test and again at its end.
class GridRimTest : public testing::Test {
 protected:
  void SetUp() override { defaults::restore(); }
  void TearDown() override { defaults::restore(); }
};

// A sheet on a coarse grid.
struct TSheetRequest : TRimRequest {
  explicit TSheetRequest(Computation computation) : TRimRequest(computation, make_Grid(4, 4), 0.2) {
    defaults::restore();
    set_Numbers(40, 40);
  }
};

}  // namespace undercut::tests
