// What holds of every computation that fails.
#pragma once

#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <cstring>

#include "tests/support/allocations.h"

namespace undercut::tests {

// The call gives the code, leaks nothing and leaves the result as it was.
inline void expect_Refusal(int32_t (*computation)(const TUcReq*, TUcRes*), const TUcReq& req,
                           int32_t code) {
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  const int64_t live = live_Allocations();
  EXPECT_EQ(computation(&req, &res), code);
  EXPECT_EQ(live_Allocations(), live) << code;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0) << code;
}

}  // namespace undercut::tests
