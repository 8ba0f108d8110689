// The line that tells what a search found.
#include <gtest/gtest.h>

#include "tests/support/comma_locale.h"
#include "tests/support/landscape.h"
#include "undercut/search.h"

namespace undercut::tests {

namespace {

std::string show(uint32_t ratings, const TAmoRes& best) {
  testing::internal::CaptureStdout();
  print_Search("get_3ax", ratings, best);
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST(SearchReport, ShowsTheShortestDigitsThatGiveEachValueBack) {
  EXPECT_EQ(
      show(77, {0.1 + 0.2, -3, 1.0 / 3}),
      "get_3ax :: ratings 77, rating 0.3333333333333333, theta 0.30000000000000004, phi -3\n");
  EXPECT_EQ(show(4294967295u, {kAbsent, -kAbsent, 5e-324}),
            "get_3ax :: ratings 4294967295, rating 5e-324, theta 1.7976931348623157e+308, "
            "phi -1.7976931348623157e+308\n");
}

TEST(SearchReport, ShowsWhatIsNoNumber) {
  EXPECT_EQ(show(0, {NAN, INFINITY, -INFINITY}),
            "get_3ax :: ratings 0, rating -inf, theta nan, phi inf\n");
}

using SearchReportInACommaLocale = CommaLocale;
TEST_F(SearchReportInACommaLocale, KeepsThePoint) {
  ASSERT_EQ(half(), "0,5");
  EXPECT_EQ(show(1000, {0.5, 1234.5, -0.25}),
            "get_3ax :: ratings 1000, rating -0.25, theta 0.5, phi 1234.5\n");
}

TEST(CountedRatings, AreThoseOfWhatTheyCount) {
  CLandscape plane([](double theta, double phi) { return theta + 2 * phi; });
  CCountedErr counted(plane);
  EXPECT_EQ(counted.count(), 0u);
  EXPECT_EQ(counted.Err(3, 4), 11);
  EXPECT_EQ(counted.Err(1, 1), 3);
  EXPECT_EQ(counted.count(), 2u);
  EXPECT_EQ(plane.asked.size(), 2u);
}

}  // namespace undercut::tests
