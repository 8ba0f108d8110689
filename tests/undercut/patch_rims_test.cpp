// Patches of hidden triangles, measured on their own and by the flood.
#include "undercut/patch_rims.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <vector>

#include "mesh/boundary.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using reference::Random;

// A hilly sheet of which some triangles are hidden, in patches.
struct TScene {
  TSoup soup;
  T3DMSH msh;
  T3DFRM frm = kIdentity;
  Scoped<TAdj> tri_tri;
  CBitVector hidden, open_ends;

  explicit TScene(Random& random, uint32_t most) {
    const auto side = [&] { return 2 + static_cast<uint32_t>(random.below(most)); };
    soup = make_Grid(side(), side());
    for (T3DVEC& v : soup.vtx) v += random.triple(-0.3, 0.3);
    for (size_t i = soup.tri.size(); i > 1; --i)
      if (random.chance(0.5)) std::swap(soup.tri[i - 1], soup.tri[random.below(i)]);
    msh = soup.msh();
    frm = frm_Ray({random.triple(-5, 5), random.triple(-1, 1)});
    EXPECT_EQ(adj_TriTri(msh, *tri_tri), 0);
    hidden.init(msh.n_tri);
    const double share = random.real(0.2, 0.95);
    for (uint32_t t = 0; t < msh.n_tri; ++t)
      if (random.chance(share)) hidden.set(t);
    open_ends.init(msh.n_vtx);
    EXPECT_TRUE(mark_Open(msh, *tri_tri, open_ends));
  }

  // 0, or the code of the step that failed.
  int32_t build(CPatchRims& patches) {
    if (!patches.reserve(msh.n_tri)) return -10;
    if (!patches.find(hidden)) return -11;
    if (!patches.make_Rims()) return -12;
    if (!patches.list_Borders(hidden)) return -13;
    for (uint32_t j = 0; j < patches.count(); ++j)
      if (const int32_t built = patches.build_Rim(j, open_ends, frm)) return built;
    return 0;
  }

  std::vector<double> measure() {
    std::vector<double> least(msh.n_tri, kAbsent);
    CPatchRims patches(msh, *tri_tri);
    EXPECT_EQ(build(patches), 0);
    patches.measure(frm, least.data());
    return least;
  }

  std::vector<double> flood() {
    std::vector<double> least(msh.n_tri, kAbsent), rho(msh.n_tri);
    CPatchRims patches(msh, *tri_tri);
    EXPECT_EQ(build(patches), 0);
    CBitVector waiting;
    waiting.init(msh.n_tri);
    CQueue queue;
    const TFlood flood = {msh, *tri_tri, frm, 0.05, waiting, queue, rho.data()};
    EXPECT_EQ(patches.measure_ByFlood(flood, least.data()), 0);
    EXPECT_TRUE(waiting.is_Empty());
    return least;
  }
};

TEST(PatchRims, GiveEachTriangleWhatTheFloodGives) {
  uint32_t measured = 0;
  for (uint32_t seed = 0; seed < scale_Cases(150); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    TScene scene(random, 30);
    const std::vector<double> alone = scene.measure();
    ASSERT_EQ(alone, scene.flood());
    for (const double distance : alone) measured += distance < kAbsent;
  }
  EXPECT_GT(measured, 5000u);
}

TEST(PatchRims, AreMeasuredAlike_ByAnyNumberOfThreads) {
  Random random(1);
  TScene scene(random, 1);
  scene.soup = make_Grid(160, 120);
  for (T3DVEC& v : scene.soup.vtx) v += random.triple(-0.3, 0.3);
  scene.msh = scene.soup.msh();
  adj_Free(*scene.tri_tri);
  ASSERT_EQ(adj_TriTri(scene.msh, *scene.tri_tri), 0);
  scene.hidden.init(scene.msh.n_tri);
  scene.hidden.assign([&](uint64_t t) { return t % 160 < 120 && t % 77 != 0; });
  scene.open_ends.init(scene.msh.n_vtx);
  const int before = omp_get_max_threads();
  omp_set_num_threads(1);
  const std::vector<double> one = scene.measure();
  omp_set_num_threads(5);
  EXPECT_EQ(scene.measure(), one);
  omp_set_num_threads(before);
}

TEST(PatchRims, HaveTheBordersThatEachPatchHasOnItsOwn) {
  for (uint32_t seed = 0; seed < scale_Cases(40); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    TScene scene(random, 12);
    CPatchRims patches(scene.msh, *scene.tri_tri);
    ASSERT_EQ(scene.build(patches), 0);
    std::vector<double> least(scene.msh.n_tri, kAbsent);
    patches.measure(scene.frm, least.data());
    std::vector<uint32_t> number(scene.msh.n_vtx);
    for (uint32_t j = 0; j < patches.count(); ++j) {
      std::vector<uint32_t> list(patches.triangles(j), patches.triangles(j) + patches.size(j));
      Scoped<TArr<T3DSGM>> border;
      ASSERT_EQ(bnd_Lst(scene.msh, view_Lst(list), number.data(), *border), 0);
      drop_Open(*border, scene.open_ends);
      CRim rim;
      ASSERT_EQ(rim.Build(scene.msh, *border, scene.frm), 0);
      for (const uint32_t t : list)
        ASSERT_EQ(least[t], rim.walk_All(get_Place(scene.msh, scene.frm, t))) << t;
    }
  }
}

TEST(PatchRims, TellTheStepThatHadNoMemory) {
  Random random(3);
  TScene scene(random, 4);
  const auto codes = list_FailureCodes([&] {
    CPatchRims patches(scene.msh, *scene.tri_tri);
    return scene.build(patches);
  });
  const std::vector<int32_t> first(codes.begin(), codes.begin() + 8);
  EXPECT_EQ(first, (std::vector<int32_t>{-10, -11, -12, -13, -1, -2, -3, -1}));
  EXPECT_EQ(codes.back(), 0);
}

// A patch that is asked for again begins anew.
TEST(PatchRims, ServeOneSetAfterAnother) {
  Random random(4);
  TScene scene(random, 20);
  const std::vector<double> first = scene.measure();
  CPatchRims patches(scene.msh, *scene.tri_tri);
  ASSERT_EQ(scene.build(patches), 0);
  const uint32_t count = patches.count();
  for (int turn = 0; turn < 2; ++turn) {
    ASSERT_TRUE(patches.find(scene.hidden) && patches.make_Rims() &&
                patches.list_Borders(scene.hidden));
    ASSERT_EQ(patches.count(), count);
    for (uint32_t j = 0; j < count; ++j)
      ASSERT_EQ(patches.build_Rim(j, scene.open_ends, scene.frm), 0);
    std::vector<double> least(scene.msh.n_tri, kAbsent);
    patches.measure(scene.frm, least.data());
    EXPECT_EQ(least, first);
  }
}

TEST(Rim, OfASet_IsMeasuredForItsTrianglesAlone) {
  Random random(5);
  TScene scene(random, 20);
  Scoped<TArr<T3DSGM>> border;
  ASSERT_EQ(bnd_Adj(scene.msh, *scene.tri_tri, nullptr, *border), 0);
  CRim rim;
  ASSERT_EQ(rim.Build(scene.msh, *border, scene.frm), 0);
  std::vector<double> distance(scene.msh.n_tri, -7.0);
  measure_Set(scene.msh, scene.frm, rim, scene.hidden, distance.data());
  for (uint32_t t = 0; t < scene.msh.n_tri; ++t)
    EXPECT_EQ(distance[t],
              scene.hidden.test(t) ? rim.walk_All(get_Place(scene.msh, scene.frm, t)) : -7.0);
}

}  // namespace
