// The downhill simplex.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "tests/reference/plain_search.h"
#include "tests/support/intensity.h"
#include "tests/support/landscape.h"
#include "undercut/search.h"

namespace undercut::tests {

namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();

TAmoPar make_Par(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, double eps, uint32_t limit) {
  TAmoPar par;
  par.box_a = a;
  par.box_b = b;
  par.box_c = c;
  par.f_eps = eps;
  par.n_max = limit;
  return par;
}

using Points = std::vector<T2DVEC>;

void expect_Points(const Points& found, const Points& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_EQ(found[i].x, expected[i].x) << i;
    EXPECT_EQ(found[i].y, expected[i].y) << i;
  }
}

// A landscape that answers with these ratings, one after the other.
CLandscape recite(std::vector<double> ratings) {
  return CLandscape([ratings, i = size_t{0}](double, double) mutable {
    EXPECT_LT(i, ratings.size());
    return i < ratings.size() ? ratings[i++] : 0.0;
  });
}

// One iteration from the vertices (0, 0), (4, 0), (0, 8), which rate 1, 2, 3, on these further
// ratings: where it asked, and the vertices that it left.
struct TStep {
  Points asked, left;
  TAmoRes result;
};
TStep step_Once(std::vector<double> further) {
  further.insert(further.begin(), {1.0, 2.0, 3.0});
  const size_t count = further.size();
  CLandscape landscape = recite(std::move(further));
  TAmoPar par = make_Par({0, 0}, {4, 0}, {0, 8}, 0.5, 1);
  TStep step;
  step.result = run_Amo(landscape, par);
  EXPECT_EQ(landscape.asked.size(), count);
  EXPECT_EQ(par.n_itr, 1u);
  step.asked.assign(landscape.asked.begin() + 3, landscape.asked.end());
  step.left = {par.box_a, par.box_b, par.box_c};
  return step;
}

// The centre of the two better vertices is (2, 0), the reflected point (4, -8).
const T2DVEC kBest = {0, 0}, kGood = {4, 0}, kReflected = {4, -8}, kExpanded = {6, -16},
             kContracted = {1, 4};

}  // namespace

TEST(Simplex, StartsAtTheRadius_RoundTheStart) {
  TAmoPar par;
  ini_Simplex(par, {10, 20}, 5);
  const double side = 5 * (1 / std::sqrt(2.0));
  EXPECT_NEAR(par.box_a.x, 10 - side, 1e-14);
  EXPECT_NEAR(par.box_a.y, 20 - side, 1e-14);
  EXPECT_NEAR(par.box_b.x, 10 + side, 1e-14);
  EXPECT_NEAR(par.box_b.y, 20 - side, 1e-14);
  EXPECT_EQ(par.box_c.x, 10);
  EXPECT_EQ(par.box_c.y, 25);
}

TEST(Simplex, DividesItsOffsetsByTheRoot_BeforeTheyTakeTheRadius) {
  TAmoPar par;
  ini_Simplex(par, {0.1, 0.2}, 0.3);
  const double root = std::sqrt(2.0);
  EXPECT_EQ(par.box_a.x, 0.1 + 0.3 * (-1.0 / root));
  EXPECT_EQ(par.box_b.x, 0.1 + 0.3 * (1.0 / root));
  EXPECT_EQ(par.box_b.y, 0.2 + 0.3 * (-1.0 / root));
}

TEST(Simplex, WithALimitOf0_ReturnsItsFirstVertex) {
  CLandscape landscape = recite({3, 2, 1});
  TAmoPar par = make_Par({1, 2}, {3, 4}, {5, 6}, 0.5, 0);
  par.n_itr = 77;
  const TAmoRes found = run_Amo(landscape, par);
  expect_Points(landscape.asked, {{1, 2}, {3, 4}, {5, 6}});
  EXPECT_EQ(found.theta, 1);
  EXPECT_EQ(found.phi, 2);
  EXPECT_EQ(found.rating, 3);
  EXPECT_EQ(par.n_itr, 0u);
  expect_Points({par.box_a, par.box_b, par.box_c}, {{1, 2}, {3, 4}, {5, 6}});
}

TEST(Simplex, SmallerThanTheBound_StopsInTheFirstIteration_AtItsBestVertex) {
  CLandscape landscape = recite({3, 2, 1});
  TAmoPar par = make_Par({1, 2}, {3, 4}, {5, 6}, 4.1, 50);
  const TAmoRes found = run_Amo(landscape, par);
  EXPECT_EQ(landscape.asked.size(), 3u);
  EXPECT_EQ(found.theta, 5);
  EXPECT_EQ(found.phi, 6);
  EXPECT_EQ(found.rating, 1);
  EXPECT_EQ(par.n_itr, 0u);
  expect_Points({par.box_a, par.box_b, par.box_c}, {{5, 6}, {3, 4}, {1, 2}});
}

TEST(Simplex, IsMeasuredFromItsBestToItsWorst_InTheLargerCoordinate_StrictlyBelowTheBound) {
  struct TCase {
    T2DVEC worst;
    bool stops;
  };
  // The vertex between them may lie anywhere.
  for (const TCase& c : {TCase{{0.9, 0}, true}, TCase{{0, -0.9}, true}, TCase{{1, 0}, false},
                         TCase{{0.2, -1}, false}, TCase{{0.9, 0.9}, true}}) {
    CLandscape landscape([n = 0](double, double) mutable { return n < 3 ? ++n : 9; });
    TAmoPar par = make_Par({0, 0}, {100, 100}, c.worst, 1, 1);
    run_Amo(landscape, par);
    EXPECT_EQ(par.n_itr, c.stops ? 0u : 1u) << c.worst.x << " " << c.worst.y;
  }
}

TEST(Simplex, Expands_WhereTheReflectedPointIsTheBestYet) {
  const TStep step = step_Once({0.5, 0.4});
  expect_Points(step.asked, {kReflected, kExpanded});
  expect_Points(step.left, {kBest, kGood, kExpanded});
}

TEST(Simplex, TakesTheExpandedPoint_ForBeingBelowTheBest_ThoughTheReflectedOneIsBelowIt) {
  expect_Points(step_Once({0.5, 0.9}).left, {kBest, kGood, kExpanded});
}

TEST(Simplex, TakesTheReflectedPoint_WhereTheExpandedOneIsNotBelowTheBest) {
  expect_Points(step_Once({0.5, 1.0}).left, {kBest, kGood, kReflected});
  expect_Points(step_Once({0.5, kNan}).left, {kBest, kGood, kReflected});
}

TEST(Simplex, TakesTheReflectedPoint_BelowTheMiddleVertex) {
  for (const double rating : {1.0, 1.5}) {
    const TStep step = step_Once({rating});
    expect_Points(step.asked, {kReflected});
    expect_Points(step.left, {kBest, kGood, kReflected});
  }
}

TEST(Simplex, Contracts_FromTheOldWorst_AlsoWhereTheReflectedPointTookItsPlace) {
  for (const double rating : {2.0, 2.5, 3.0, 9.0, kNan}) {
    const TStep step = step_Once({rating, 2.9});
    expect_Points(step.asked, {kReflected, kContracted});
    expect_Points(step.left, {kBest, kGood, kContracted});
  }
}

TEST(Simplex, HoldsTheContractedPointAgainstTheOldWorst_NotAgainstTheReflectedOne) {
  // 2.9 is above the reflected point's 2.1 and below the old worst's 3, so it takes its place.
  expect_Points(step_Once({2.1, 2.9}).left, {kBest, kGood, kContracted});
}

TEST(Simplex, Shrinks_TowardsTheBest_WithTheReflectedPointWhereItTookTheWorstsPlace) {
  TStep step = step_Once({2.5, 3.0, 7, 8});
  expect_Points(step.asked, {kReflected, kContracted, {2, 0}, {2, -4}});
  expect_Points(step.left, {kBest, {2, 0}, {2, -4}});
  step = step_Once({3.0, 3.0, 7, 8});
  expect_Points(step.left, {kBest, {2, 0}, {2, -4}});
  step = step_Once({3.1, 3.0, 7, 8});
  expect_Points(step.asked, {kReflected, kContracted, {2, 0}, {0, 4}});
  expect_Points(step.left, {kBest, {2, 0}, {0, 4}});
  step = step_Once({kNan, kNan, 7, 8});
  expect_Points(step.left, {kBest, {2, 0}, {0, 4}});
}

TEST(Simplex, DoesNotReturnAVertexThatItsLastIterationFound) {
  const TStep step = step_Once({0.5, 0.4});
  EXPECT_EQ(step.result.theta, kBest.x);
  EXPECT_EQ(step.result.phi, kBest.y);
  EXPECT_EQ(step.result.rating, 1);
  // One more iteration sorts it to the front.
  CLandscape landscape = recite({1, 2, 3, 0.5, 0.4, 0.7});
  TAmoPar par = make_Par({0, 0}, {4, 0}, {0, 8}, 0.5, 2);
  const TAmoRes found = run_Amo(landscape, par);
  EXPECT_EQ(found.theta, kExpanded.x);
  EXPECT_EQ(found.rating, 0.4);
}

TEST(Simplex, SortsOnlyWhatIsStrictlyGreater) {
  CLandscape landscape = recite({1, 1, 1});
  TAmoPar par = make_Par({0, 0}, {1, 1}, {2, 2}, 3, 5);
  const TAmoRes found = run_Amo(landscape, par);
  expect_Points({par.box_a, par.box_b, par.box_c}, {{0, 0}, {1, 1}, {2, 2}});
  EXPECT_EQ(found.theta, 0);
}

TEST(Simplex, FindsTheBottomOfABowl_BeyondTheOrdinaryRangeOfAngles) {
  CLandscape bowl([](double theta, double phi) {
    return (theta + 30) * (theta + 30) + 0.1 * (phi - 410) * (phi - 410);
  });
  TAmoPar par;
  ini_Simplex(par, {0, 350}, 5);
  par.f_eps = 1e-6;
  par.n_max = 500;
  const TAmoRes found = run_Amo(bowl, par);
  EXPECT_NEAR(found.theta, -30, 1e-4);
  EXPECT_NEAR(found.phi, 410, 1e-4);
  EXPECT_LT(par.n_itr, 500u);
}

TEST(Simplex, OfRatingsThatAreNoNumbers_EndsAtItsLimit) {
  CLandscape torn([](double, double) { return kNan; });
  TAmoPar par = make_Par({0, 0}, {4, 0}, {0, 8}, 0, 30);
  const TAmoRes found = run_Amo(torn, par);
  EXPECT_EQ(found.theta, 0);
  EXPECT_TRUE(std::isnan(found.rating));
  EXPECT_EQ(par.n_itr, 30u);
}

TEST(Simplex, EqualsThePlainForm_InEveryRatingAndVertex) {
  constexpr uint64_t seed = 815;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(5000); ++round) {
    const CLandscape::Height height = make_Waves(random);
    CLandscape ours(height), theirs(height);
    TAmoPar par;
    if (random.chance(0.5)) {
      ini_Simplex(par, {random.real(0, 180), random.real(0, 360)}, random.real(0, 9));
    } else {
      par = make_Par(random.pair(-50, 200), random.pair(0, 360), random.pair(0, 360), 0, 0);
    }
    par.f_eps = random.chance(0.1) ? 0.0 : random.real(0, 2);
    par.n_max = static_cast<uint32_t>(random.below(60));
    reference::TSimplex s = {};
    const T2DVEC start[3] = {par.box_a, par.box_b, par.box_c};
    for (int k = 0; k < 3; ++k) s.x[k] = start[k].x, s.y[k] = start[k].y;

    const TAmoRes found = run_Amo(ours, par);
    const reference::TFound plain = reference::walk_Downhill(
        s, par.f_eps, par.n_max, [&](double theta, double phi) { return theirs.Err(theta, phi); });
    ASSERT_EQ(ours.asked.size(), theirs.asked.size()) << "round " << round;
    for (size_t i = 0; i < ours.asked.size(); ++i)
      ASSERT_TRUE(ours.asked[i] == theirs.asked[i]) << "round " << round;
    ASSERT_EQ(found.theta, plain.theta) << "round " << round;
    ASSERT_EQ(found.phi, plain.phi) << "round " << round;
    ASSERT_TRUE(is_Alike(found.rating, plain.rating)) << "round " << round;
    ASSERT_EQ(par.n_itr, s.iterations) << "round " << round;
    const T2DVEC end[3] = {par.box_a, par.box_b, par.box_c};
    for (int k = 0; k < 3; ++k)
      ASSERT_TRUE(end[k].x == s.x[k] && end[k].y == s.y[k]) << "round " << round;
  }
}

}  // namespace undercut::tests
