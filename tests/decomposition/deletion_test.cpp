#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/reference/plain_sort.h"
#include "tests/support/measures.h"
#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;
using Ids = std::set<int32_t>;

// Regions 1, 2, ... of one triangle each, every second of a strip, with the given areas.
struct TSmall {
  TRig rig;
  explicit TSmall(const std::vector<double>& areas)
      : rig(make_Strip(static_cast<uint32_t>(2 * areas.size() + 1)), CDcmPar()) {
    std::strcpy(rig.par.F_srt, "srf");
    rig.par.F_srf = 0;
    rig.par.F_cnt = 0;
    for (size_t i = 0; i < areas.size(); ++i)
      settle_Open(rig, static_cast<int32_t>(i + 1), {static_cast<uint32_t>(2 * i)})->measures.area =
          areas[i];
  }
  CUcA* get(int32_t id) { return rig.map().get_Uca(id); }
  bool run() { return del_Small(rig.map(), rig.par); }
  Ids left() {
    EXPECT_TRUE(run());
    const std::vector<int32_t> ids = list_Ids(rig.map());
    return Ids(ids.begin(), ids.end());
  }
};

TEST(Deletion, ByArea_AScoreEqualToTheLimitGoes) {
  TSmall small({2, 1, std::nextafter(1, 2), 0.5});
  small.rig.par.F_srf = 1;
  EXPECT_EQ(small.left(), (Ids{0, 1, 3}));
}

TEST(Deletion, KeepsAtMostTheCountedNumber_TheHighestScores) {
  TSmall small({5, 9, 3, 7, 4});
  small.rig.par.F_cnt = 3;
  EXPECT_EQ(small.left(), (Ids{0, 1, 2, 4}));
}

TEST(Deletion, TheCountKeepsNothingThatIsBelowTheLimit) {
  TSmall small({5, 9, 3, 7, 4});
  small.rig.par.F_cnt = 3;
  small.rig.par.F_srf = 8;
  EXPECT_EQ(small.left(), (Ids{0, 2}));
}

TEST(Deletion, WithACountBelowOneKeepsAnyNumber) {
  for (const int32_t count : {0, -1, -2147483647}) {
    TSmall small({5, 9, 3, 7, 4});
    small.rig.par.F_cnt = count;
    EXPECT_EQ(small.left(), (Ids{0, 1, 2, 3, 4, 5}));
  }
}

TEST(Deletion, FixedRegionsAreNotCountedAndNotDeleted) {
  TSmall small({5, 9, 3, 0, 4});
  small.get(2)->fixed = small.get(4)->fixed = true;
  small.rig.par.F_cnt = 2;
  small.rig.par.F_srf = 1;
  EXPECT_EQ(small.left(), (Ids{0, 1, 2, 4, 5}));
}

TEST(Deletion, GivesTrianglesBackAtTheHeadOfTheFreeList_Unlocked_MeasuresUntouched) {
  TSmall small({5, 0, 7});
  CUcA* free_region = small.get(0);
  const TUcMeasures before = free_region->measures;
  const std::set<uint32_t> boundary = free_region->boundary;
  EXPECT_EQ(small.left(), (Ids{0, 1, 3}));
  EXPECT_EQ(free_region->head, 2);
  EXPECT_EQ(small.rig.map().region_of[2], 0);
  EXPECT_FALSE(small.rig.map().get_Lck(2));
  expect_Same(free_region->measures, before);
  EXPECT_EQ(free_region->boundary, boundary) << "it waits for the end of the pass";
  const List all = list_All(small.rig.world.soup);
  expect_Sound(small.rig.map(), std::set<uint32_t>(all.begin(), all.end()));
}

TEST(Deletion, TurnsAListRoundAsItFreesIt) {
  TRig rig(make_Strip(6), CDcmPar());
  std::strcpy(rig.par.F_srt, "srf");
  rig.par.F_srf = 1e9;
  settle_Open(rig, 1, {1, 2, 3});
  const List free_list = list_Tri(rig.map(), *rig.map().get_Uca(0));
  ASSERT_TRUE(del_Small(rig.map(), rig.par));
  List expected = {1, 2, 3};
  expected.insert(expected.end(), free_list.begin(), free_list.end());
  EXPECT_EQ(list_Tri(rig.map(), *rig.map().get_Uca(0)), expected);
}

TEST(Deletion, AnyOtherOrderTextFails_EvenWithNoRegionToJudge) {
  for (const char* text : {"", "srfx", "LEN", "area"}) {
    TSmall none({});
    std::strcpy(none.rig.par.F_srt, text);
    EXPECT_FALSE(none.run()) << text;
  }
  TSmall none({});
  EXPECT_TRUE(none.run());
}

TEST(Deletion, FailsWithoutRegion0) {
  TSmall small({5});
  small.rig.map().reset_Map();
  EXPECT_FALSE(small.run());
}

TEST(Deletion, AnAreaThatIsNoNumberIsNotAboveTheLimit) {
  TSmall small({5, std::nan(""), 7});
  EXPECT_EQ(small.left(), (Ids{0, 1, 3}));
}

TEST(Deletion, OfEqualScoresTheSortDecides) {
  struct TNamed {
    double key;
    int32_t id;
  };
  const std::vector<double> areas(13, 2.0);
  TSmall small(areas);
  small.rig.par.F_cnt = 4;
  std::vector<TNamed> named;
  for (const int32_t id : list_Ids(small.rig.map()))
    if (id != 0) named.push_back({2.0, id});
  reference::plain_Sort(named.data(), 0, 12, [](const TNamed& n) { return n.key; });
  Ids expected = {0};
  for (int i = 9; i < 13; ++i) expected.insert(named[size_t(i)].id);
  EXPECT_EQ(small.left(), expected);
}

// ---- The chain measure -------------------------------------------------------------------------

// The score of a region by what the limit lets through.
struct TChain : TSmall {
  TChain() : TSmall({1}) { std::strcpy(rig.par.F_srt, "len"); }
  bool stays(double limit) {
    rig.par.F_quo = limit;
    EXPECT_TRUE(run());
    return get(1) != nullptr;
  }
};

// With the principal moments x and y.
void shape(CUcA* region, double x, double y) {
  region->measures.plane = {};
  region->measures.plane.cxx = x;
  region->measures.plane.cyy = y;
}

TEST(Deletion, ByChain_ScoresPathsAcrossTheShorterAxis) {
  TChain probe;
  shape(probe.get(1), 4, 1);
  TUcElp ellipse;
  ASSERT_TRUE(get_Elp(probe.get(1), ellipse));
  const double width = probe.rig.par.F_fae;
  const double a = 2 * ellipse.a, b = 2 * ellipse.b;
  const double k = std::floor(std::min(a, b) / width);
  ASSERT_GT(k, 5);
  const double score = k * (a + b - (k + 1) * width) / (a + b);
  EXPECT_TRUE(probe.stays(std::nextafter(score, 0)));
  EXPECT_FALSE(probe.stays(score));
}

TEST(Deletion, ByChain_ARegionNarrowerThanAPathScoresZero) {
  TChain narrow;
  shape(narrow.get(1), 4, 1);
  narrow.rig.par.F_fae = 100;
  EXPECT_TRUE(narrow.stays(-1e-300));
  EXPECT_FALSE(narrow.stays(0));
}

TEST(Deletion, ByChain_ANumberOfPathsOutOfRangeIsTheLowest) {
  for (const double width : {0.0, 1e-12, -1e-12}) {
    TChain chain;
    shape(chain.get(1), 4, 1);
    chain.rig.par.F_fae = width;
    EXPECT_TRUE(chain.stays(-2.2e9)) << width;
    EXPECT_FALSE(chain.stays(-2.1e9)) << width;
  }
}

TEST(Deletion, ByChain_FailsWithoutRealEigenvalues) {
  TChain chain;
  // Nearly equal moments whose discriminant rounds below 0.
  reference::Random random(5);
  double x, y;
  do {
    x = random.real(1, 9);
    y = std::nextafter(x, 10);
  } while (!((x + y) * (x + y) / 4 - x * y < 0));
  shape(chain.get(1), y, x);
  TUcElp ellipse;
  ASSERT_FALSE(get_Elp(chain.get(1), ellipse));
  EXPECT_FALSE(chain.run());
}

TEST(Deletion, ByChain_FailsWhereTheAxesAreNotAboveZeroOrNoNumbers) {
  TChain none;
  shape(none.get(1), 0, 0);
  EXPECT_FALSE(none.run());
  TChain negative;
  shape(negative.get(1), 4, -1);
  EXPECT_FALSE(negative.run());
}

TEST(Deletion, ByChain_FixedRegionsAreNotScored) {
  TChain chain;
  shape(chain.get(1), 0, 0);
  chain.get(1)->fixed = true;
  EXPECT_TRUE(chain.stays(1e9));
}

}  // namespace
}  // namespace undercut
