// get_dFb, called as a host calls it.
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "tests/boundary/depth_request.h"
#include "tests/boundary/refusal.h"
#include "tests/files/support.h"
#include "tests/support/patterns.h"

using namespace undercut::tests;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// A floor of 12 by 4 squares, below a roof of its own from x = 2 to x = 6 and below a block of
// another mesh from x = 3.95 to x = 9.05.
void set_Scene(TDepthRequest& r) {
  r.soup = make_Grid(12, 4);
  append(r.soup, make_Roof(1.95, -1.1, 6.05, 5.2, 2));
  r.others = {moved(make_Box(5.1, 6, 1), {3.95, -1, 4})};
}
constexpr uint32_t kFloor = 96;

// From the rim of the patch below the own roof, and from the block's bottom edge.
double own_Depth(const T3DVEC& p) { return std::min(std::fabs(p.x - 2), std::fabs(p.x - 6)); }
double added_Depth(const T3DVEC& p) {
  return std::min(std::min(std::fabs(p.x - 3.95), std::fabs(9.05 - p.x)),
                  std::min(p.y + 1, 5 - p.y));
}

template <typename T>
void set(int32_t (*setter)(const T*), T value) {
  setter(&value);
}

class JointDepth : public testing::Test {
 protected:
  void SetUp() override {
    defaults::restore();
    set_Scene(r);
  }
  void TearDown() override { defaults::restore(); }

  TDepthRequest r{get_dFb};
};

TEST_F(JointDepth, TakesTheDeeper_WhereBothShadowATriangle) {
  const Depths depths = r.depths();
  uint32_t kinds[4] = {};
  for (uint32_t t = 0; t < kFloor; ++t) {
    const T3DVEC p = r.centre(t);
    const bool own = p.x > 2 && p.x<6, add = p.x> 3.95 && p.x < 9.05;
    ++kinds[own + 2 * add];
    const double expected = own && add ? std::max(own_Depth(p), added_Depth(p))
                            : own      ? own_Depth(p)
                            : add      ? added_Depth(p)
                                       : 0.0;
    EXPECT_NEAR(depths[t], expected, 1e-12) << t;
  }
  for (const uint32_t kind : kinds) EXPECT_GT(kind, 0u);
}

TEST_F(JointDepth, JoinsMeshes_AndMovesTheirIndicesUp) {
  // The block in two halves that don't touch, and a mesh that adds nothing.
  r.others = {moved(make_Box(2, 6, 1), {3.95, -1, 4}), TSoup{},
              moved(make_Box(2.1, 6, 1), {6.95, -1, 4})};
  const Depths depths = r.depths();
  for (uint32_t t = 0; t < kFloor; ++t) {
    const T3DVEC p = r.centre(t);
    if (p.x < 6) continue;
    const double inside = std::min(std::min(p.x - 6.95, 9.05 - p.x), std::min(p.y + 1, 5 - p.y));
    EXPECT_NEAR(depths[t], std::max(0.0, inside), 1e-12) << t;
  }
}

TEST_F(JointDepth, TakesTheLeastOfAxesThatStandForThemselves) {
  const T3DRAY lean = {{0, 0, 0}, {-0.4, 0, -1}};
  r.axi = {lean};
  const Depths leaning = r.depths();
  r.axi = {kDown};
  const Depths down = r.depths();
  r.axi = {kDown, lean};
  const Depths both = r.depths();
  for (uint32_t t = 0; t < both.size(); ++t) EXPECT_EQ(both[t], std::min(down[t], leaning[t]));
  EXPECT_NE(both, down);
  EXPECT_NE(both, leaning);
}

TEST_F(JointDepth, HasNoAnswer_WhereTheJoinedMeshHidesNothingOfItself) {
  // A roof that faces up sees out along the axis: it casts a shadow and has no rim.
  r.others = {make_Roof(3.95, -1.2, 9.05, 5.3, 4)};
  const Depths depths = r.depths();
  for (uint32_t t = 0; t < kFloor; ++t) {
    const T3DVEC p = r.centre(t);
    if (p.x > 3.95 && p.x < 9.05) {
      EXPECT_EQ(depths[t], kNoAnswer) << t;
    } else {
      EXPECT_NEAR(depths[t], p.x > 2 && p.x < 4 ? own_Depth(p) : 0.0, 1e-12) << t;
    }
  }
}

TEST_F(JointDepth, LeavesTheOpenBorderOfTheJoinedMeshOutOfItsRim_ButForTheLastEdge) {
  // A roof that faces down hides itself, and its border is all open. Of its four edges the second,
  // at y = -1.2, is the one that is never tested.
  r.others = {make_Roof(3.95, -1.2, 9.05, 5.3, 4)};
  for (T3DTRI& t : r.others[0].tri) std::swap(t.b, t.c);
  const Depths depths = r.depths();
  for (uint32_t t = 0; t < kFloor; ++t) {
    const T3DVEC p = r.centre(t);
    if (p.x < 6 || p.x > 9.05) continue;
    EXPECT_NEAR(depths[t], p.y + 1.2, 1e-12) << t;
  }
}

TEST_F(JointDepth, OfTwoEqualCorners_IsNoAnswer) {
  r.soup.tri.push_back({20, 20, 21});
  EXPECT_EQ(r.depths().back(), kNoAnswer);
  r.fill_Roi({3});
  EXPECT_EQ(r.depths().back(), 0.0);
}

TEST_F(JointDepth, WithoutAxes_HasNoAnswer_AndIsZeroOutsideTheSelection) {
  r.axi = {};
  EXPECT_EQ(r.depths(), Depths(kFloor + 2, kNoAnswer));
  r.fill_Roi({5});
  const Depths depths = r.depths();
  EXPECT_EQ(depths[5], kNoAnswer);
  EXPECT_EQ(depths[6], 0.0);
}

TEST_F(JointDepth, NeitherGrowsTriangles_NorMergesVertices_NorDropsPatches) {
  const Depths depths = r.depths();
  set(ucs_Dil, 1.0);
  set(ucs_Eps, 1.5);
  set(ucs_Srf, 1e9);
  EXPECT_EQ(r.depths(), depths);
}

TEST_F(JointDepth, SaysSo_WhereItsCircleMissesTheRim) {
  set(ucs_Off, -100.0);
  testing::internal::CaptureStderr();
  r.depths();
  EXPECT_NE(testing::internal::GetCapturedStderr().find("rho==+DBL_MAX\n"), std::string::npos);
}

// ---- Console and files -------------------------------------------------------------------------

std::string console_Of(TDepthRequest& r, int32_t code = 0) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(r.fill_AndCall(), code);
  return testing::internal::GetCapturedStdout();
}

TEST_F(JointDepth, IsSilentUnlessTold) { EXPECT_EQ(console_Of(r), ""); }

TEST_F(JointDepth, PrintsItsRunAndItsTime) {
  set(ucs_Rti, uint8_t{1});
  const Pattern line(
      "calculate :: dFi of UC\\(msh,add\\) {19}\\.\\.\\. done ! :: "
      "\\[ *[0-9]+ min : *[0-9]+ sec : *[0-9]+ mil\\] \n");
  EXPECT_TRUE(line.match(console_Of(r)));
  r.others.clear();
  EXPECT_TRUE(line.match(console_Of(r, -9)));
}

TEST_F(JointDepth, PrintsALineOfCountsForEachAxis) {
  set(ucs_Sta, uint8_t{1});
  r.axi = {kDown, kUp};
  // Along the first axis the own roof hides 32 triangles, the block 40 and one of the roof's two;
  // 16 are hidden by both. Along the second all of the mesh is hidden by the floor or itself.
  EXPECT_EQ(console_Of(r),
            "axis 0 :: seen 41, hit by own 32, hit by added 41\n"
            "axis 1 :: seen 0, hit by own 98, hit by added 0\n");
}

class JointDepthFiles : public undercut::InFolder {
 protected:
  void SetUp() override {
    InFolder::SetUp();
    defaults::restore();
    set_Scene(r);
    set(ucs_Dbg, uint32_t{1});
  }
  void TearDown() override {
    defaults::restore();
    InFolder::TearDown();
  }
  // Calls; the lines behind the head of D:/dFi.ply.
  std::vector<std::string> lines_OfPly(std::string& head) {
    EXPECT_EQ(r.fill_AndCall(), 0);
    std::istringstream text(read("D:/dFi.ply"));
    std::vector<std::string> lines;
    head.clear();
    for (std::string line; std::getline(text, line);) {
      if (head.find("end_header") == std::string::npos)
        head += line + "\n";
      else
        lines.push_back(line);
    }
    return lines;
  }

  TDepthRequest r{get_dFb};
};

TEST_F(JointDepthFiles, WriteNothingWithoutTheFolder) {
  EXPECT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(JointDepthFiles, AreWrittenOnlyWhenTold) {
  std::filesystem::create_directory("D:");
  set(ucs_Dbg, uint32_t{0});
  EXPECT_EQ(r.fill_AndCall(), 0);
  EXPECT_TRUE(std::filesystem::is_empty("D:"));
}

TEST_F(JointDepthFiles, HoldTheMeshAndTheJoinedMesh) {
  std::filesystem::create_directory("D:");
  r.others.push_back(make_Roof(0, 0, 1, 1, 50));
  EXPECT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(read("D:/msh.stl").size(), 84 + 50 * r.soup.tri.size());
  const std::string sum = read("D:/sum.stl");
  ASSERT_EQ(sum.size(), 84u + 50 * (12 + 2));
  float corner[3];  // of the last triangle, which follows its normal
  std::memcpy(corner, sum.data() + 84 + 50 * 13 + 12 * 3, sizeof corner);
  EXPECT_EQ(corner[0], 0.0f);
  EXPECT_EQ(corner[1], 1.0f);
  EXPECT_EQ(corner[2], 50.0f);
}

TEST_F(JointDepthFiles, AreThereEvenIfALaterStepFails) {
  std::filesystem::create_directory("D:");
  r.fill();
  r.req.msh.n_tri = 0;
  EXPECT_EQ(r.call(), -10);
  EXPECT_FALSE(exists("D:/msh.stl"));
  EXPECT_TRUE(exists("D:/sum.stl"));
  EXPECT_FALSE(exists("D:/dFi.ply"));
}

TEST_F(JointDepthFiles, ColourTheFaces_ForSelector0) {
  std::filesystem::create_directory("D:");
  set(ucs_pCl, uint32_t{0});
  std::string head;
  const auto lines = lines_OfPly(head);
  EXPECT_LT(head.find("element face"), head.find("property uchar red"));
  ASSERT_EQ(lines.size(), r.soup.vtx.size() + r.soup.tri.size());
  // Depth 0, and one beyond the range of 0 to 0.5 mm.
  const std::string& seen = lines[r.soup.vtx.size()];
  const std::string& deep = lines[r.soup.vtx.size() + 2 * 3];
  EXPECT_NE(seen.substr(seen.find(' ', 9)), deep.substr(deep.find(' ', 9)));
}

TEST_F(JointDepthFiles, ColourTheVertices_ForAnyOtherSelector) {
  std::filesystem::create_directory("D:");
  for (const uint32_t selector : {1u, 2u, 77u}) {
    set(ucs_pCl, selector);
    std::string head;
    const auto lines = lines_OfPly(head);
    EXPECT_LT(head.find("property uchar red"), head.find("element face"));
    EXPECT_EQ(lines.size(), r.soup.vtx.size() + r.soup.tri.size());
  }
}

TEST_F(JointDepthFiles, TakeModeAndRangeOfTheirColoursFromTheParameters) {
  std::filesystem::create_directory("D:");
  std::string head;
  const auto lines = lines_OfPly(head);
  set(ucs_iCl, uint32_t{0});
  EXPECT_NE(lines_OfPly(head), lines);
  set(ucs_iCl, uint32_t{1});
  EXPECT_EQ(lines_OfPly(head), lines);
  set(ucs_Rig, 3.0);
  EXPECT_NE(lines_OfPly(head), lines);
  set(ucs_Rig, 0.5);
  set(ucs_Lef, -3.0);
  EXPECT_NE(lines_OfPly(head), lines);
}

// ---- Codes -------------------------------------------------------------------------------------

// One fault for each code that a request can bring about, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TDepthRequest&);
};
const TFault kFaults[] = {
    {UNDERCUT_BAD_VERTEX, [](TDepthRequest& r) { r.soup.tri[3].b = 69; }},
    {UNDERCUT_BAD_VERTEX, [](TDepthRequest& r) { r.others[0].tri.at(0).c = 8; }},
    {UNDERCUT_BAD_TRIANGLE,
     [](TDepthRequest& r) {
       r.fill_Roi({0, 98});
     }},
    {-6,
     [](TDepthRequest& r) {
       r.axi.push_back({{0, 0, 0}, {0, kInfinite, 1}});
     }},
    {-8,
     [](TDepthRequest& r) {
       r.curves = {{{0, 0, 0}}};
     }},
    {-9, [](TDepthRequest& r) { r.others = {TSoup{}}; }},
};

TEST_F(JointDepth, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const TFault& fault : kFaults) {
    TDepthRequest bad(get_dFb);
    set_Scene(bad);
    fault.make(bad);
    bad.fill();
    expect_Refusal(get_dFb, bad.req, fault.code);
  }
}

TEST_F(JointDepth, TellsTheFirstOfTwoFaults) {
  for (size_t i = 0; i < std::size(kFaults); ++i)
    for (size_t k = i + 1; k < std::size(kFaults); ++k) {
      if (i == 1 && k + 1 == std::size(kFaults)) continue;  // both are about the other mesh
      TDepthRequest bad(get_dFb);
      set_Scene(bad);
      kFaults[k].make(bad);
      kFaults[i].make(bad);
      EXPECT_EQ(bad.fill_AndCall(), kFaults[i].code) << "beside " << kFaults[k].code;
    }
}

TEST_F(JointDepth, WithoutFurtherMeshes_FailsToJoinThem) {
  r.fill();
  T3DMSH none[2] = {};
  for (const TArrMsh& empty :
       {TArrMsh{nullptr, 0}, TArrMsh{nullptr, 2}, TArrMsh{none, 0}, TArrMsh{none, 2}}) {
    r.req.msh_b = empty;
    EXPECT_EQ(r.call(), -9);
  }
  EXPECT_EQ(get_dFb(nullptr, &r.res), -9);
  EXPECT_EQ(get_dFb(&r.req, nullptr), -9);
}

TEST_F(JointDepth, PassesOverMeshesWithoutArrays) {
  const Depths depths = r.depths();
  T3DMSH parts[] = {{nullptr, 7, r.soup.tri.data(), 2},
                    {r.soup.vtx.data(), 7, nullptr, 2},
                    r.others[0].msh(),
                    {nullptr, 0, nullptr, 0}};
  r.req.msh_b = {parts, 4};
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(Depths(r.res.dfi, r.res.dfi + depths.size()), depths);
}

TEST_F(JointDepth, RefusesMeshesThatHaveTooManyVerticesTogether) {
  r.fill();
  T3DMSH huge[2] = {r.others[0].msh(), r.others[0].msh()};
  huge[0].n_vtx = 0xFFFFFFFFu;
  r.req.msh_b = {huge, 2};
  EXPECT_EQ(r.call(), -9);
}

TEST_F(JointDepth, OfAnEmptyMesh_FailsWithItsTree) {
  r.fill();
  r.req.msh.tri = nullptr;
  EXPECT_EQ(r.call(), -10);
  r.fill_Roi({});
  EXPECT_EQ(r.call(), -7);
  r.fill_Roi({0});
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
}

// Not to be brought about are -36 to -40 and -46 to -50, as in get_dFi.
TEST_F(JointDepth, TellsTheStepThatHadNoMemory) {
  r.fill_Roi({46, 47});
  r.curves = {
      {{1, 1, 0}, {2, 1, 0}, {3, 1, 0}, {3, 2, 0}, {3, 3, 0}, {2, 3, 0}, {1, 3, 0}, {1, 2, 0}}};
  Codes expected = {-5};
  for (int32_t code = -7; code >= -30; --code) expected.push_back(code);
  // Lists of the classification have no code of their own.
  for (const int32_t code : {-1000, -31, -32, -33, -34, -35, -41, -42, -43, -44, -45, 0})
    expected.push_back(code);
  // Only where the slack is nothing do distances go from triangle to triangle.
  std::erase_if(expected, [](int32_t code) { return code == -25 || code == -35; });
  EXPECT_EQ(r.list_Codes(), expected);
  set(ucs_Off, 0.0);
  expected.insert(std::find(expected.begin(), expected.end(), -26), -25);
  expected.insert(std::find(expected.begin(), expected.end(), -41), -35);
  EXPECT_EQ(r.list_Codes(), expected);
}

TEST_F(JointDepth, LeavesTheRequestAsItWas_AndLeaksNothing) {
  r.fill();
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
  const TSoup soup = r.soup, other = r.others[0];
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(ini_Res(&r.res), 0);
    ASSERT_EQ(get_dFb(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live + 1);
    ASSERT_EQ(clr_Res(&r.res), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  const auto same = [](const TSoup& a, const TSoup& b) {
    return std::memcmp(a.vtx.data(), b.vtx.data(), a.vtx.size() * sizeof(T3DVEC)) == 0 &&
           std::memcmp(a.tri.data(), b.tri.data(), a.tri.size() * sizeof(T3DTRI)) == 0;
  };
  EXPECT_TRUE(same(soup, r.soup));
  EXPECT_TRUE(same(other, r.others[0]));
}

}  // namespace
