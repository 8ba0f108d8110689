// The installed header, used from C. The layout itself is checked when header_c.c is compiled.
#include "header_c.h"

#include <gtest/gtest.h>
#include <undercut/exports.h>

namespace {

TEST(HeaderInC, AHostInC_RunsACallFromRequestToResult) {
  const TCAnswer answer = call_FromC();
  for (const int status : answer.status) EXPECT_EQ(status, 0);
  EXPECT_EQ(answer.area[0], 1.0);
  EXPECT_EQ(answer.area[1], 0.5);
  EXPECT_EQ(answer.value[0], 4.0);
  EXPECT_EQ(answer.value[1], 3.0);
}

TEST(HeaderInC, AHostInC_SetsAParameterOfEachType) { EXPECT_EQ(set_FromC(), 0); }

TEST(Header, NamesTheCodesThatEveryComputationShares) {
  EXPECT_EQ(UNDERCUT_NO_MEMORY, -1000);
  EXPECT_EQ(UNDERCUT_BAD_VERTEX, -1001);
  EXPECT_EQ(UNDERCUT_BAD_TRIANGLE, -1002);
}

}  // namespace
