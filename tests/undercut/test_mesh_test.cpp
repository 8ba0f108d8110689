// The mesh that rays are cast on.
#include "undercut/test_mesh.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <ostream>

#include "mesh/shrink.h"
#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

namespace undercut {

void PrintTo(TestMesh made, std::ostream* out) { *out << static_cast<int>(made); }

}  // namespace undercut

using namespace undercut;
using namespace undercut::tests;

namespace {

TEST(TestMesh, IsTheMeshItself_ForADilationOfZeroOrBelow) {
  TSoup soup = make_Bumpy(5, 4);
  for (const double dilation : {0.0, -0.0, -5e-324, -0.3, -1e300}) {
    CTestMesh test;
    ASSERT_EQ(test.Build(soup.msh(), dilation), TestMesh::kReady) << dilation;
    EXPECT_TRUE(test.mesh().vtx == soup.vtx.data());
    EXPECT_TRUE(test.mesh().tri == soup.tri.data());
    EXPECT_EQ(test.tree().items().size(), soup.tri.size());
  }
}

TEST(TestMesh, IsASoupOfGrownTriangles_WithTheNumberingOfTheMesh) {
  TSoup soup = make_Bumpy(5, 4);
  CTestMesh test;
  ASSERT_EQ(test.Build(soup.msh(), 0.2), TestMesh::kReady);
  Scoped<T3DMSH> grown;
  ASSERT_TRUE(tri_Shrink(soup.msh(), 0.2, *grown));
  const T3DMSH& msh = test.mesh();
  ASSERT_EQ(msh.n_tri, soup.tri.size());
  ASSERT_EQ(msh.n_vtx, 3 * soup.tri.size());
  EXPECT_EQ(std::memcmp(msh.vtx, grown->vtx, msh.n_vtx * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(msh.tri, grown->tri, msh.n_tri * sizeof(T3DTRI)), 0);
  EXPECT_EQ(test.tree().items().size(), soup.tri.size());
  EXPECT_TRUE(test.tree().mesh().vtx == msh.vtx);
}

TEST(TestMesh, LetsRaysHitWhatHasGrown) {
  TSoup soup = make_Grid(1, 1);
  const T3DRAY beside = {{-0.1, 0.5, -1}, {0, 0, 1}};
  CTestMesh test;
  ASSERT_EQ(test.Build(soup.msh(), 0.0), TestMesh::kReady);
  EXPECT_FALSE(test.tree().AnyHit(beside));
  ASSERT_EQ(test.Build(soup.msh(), 0.5), TestMesh::kReady);
  EXPECT_TRUE(test.tree().AnyHit(beside));
}

TEST(TestMesh, MayBeBuiltAnew) {
  TSoup first = make_Bumpy(3, 3), second = make_Grid(1, 2);
  const int64_t live = live_Allocations();
  {
    CTestMesh test;
    ASSERT_EQ(test.Build(first.msh(), 0.1), TestMesh::kReady);
    ASSERT_EQ(test.Build(second.msh(), 0.2), TestMesh::kReady);
    EXPECT_EQ(test.mesh().n_tri, 4u);
    ASSERT_EQ(test.Build(second.msh(), 0.0), TestMesh::kReady);
    EXPECT_TRUE(test.mesh().vtx == second.vtx.data());
    for (const double dilation : {0.0, 0.1}) {
      ASSERT_EQ(test.Build(second.msh(), 0.2), TestMesh::kReady);
      EXPECT_NE(test.Build(T3DMSH{}, dilation), TestMesh::kReady);
      EXPECT_TRUE(test.mesh().vtx == nullptr);
      EXPECT_TRUE(test.tree().items().empty());
    }
  }
  EXPECT_EQ(live_Allocations(), live);
}

TEST(TestMesh, TellsAnEmptyMeshByItsSoup_OrByItsTree) {
  TSoup soup = make_Grid(1, 1);
  void (*const faults[])(T3DMSH&) = {
      [](T3DMSH& m) { m.vtx = nullptr; }, [](T3DMSH& m) { m.tri = nullptr; },
      [](T3DMSH& m) { m.n_vtx = 0; },     [](T3DMSH& m) { m.n_tri = 0; },
      [](T3DMSH& m) { m = T3DMSH{}; },
  };
  for (const auto& fault : faults) {
    T3DMSH msh = soup.msh();
    fault(msh);
    CTestMesh test;
    EXPECT_EQ(test.Build(msh, 0.0), TestMesh::kNoTree);
    EXPECT_EQ(test.Build(msh, 0.1), TestMesh::kNoSoup);
    EXPECT_EQ(test.mesh().n_tri, 0u);
  }
}

TEST(TestMesh, TellsWhichStepHadNoMemory_AndIsEmptyThen) {
  TSoup soup = make_Bumpy(6, 6);
  const T3DMSH msh = soup.msh();
  const auto list_Steps = [&](double dilation) {
    return list_FailureCodes([&] {
      CTestMesh test;
      const TestMesh made = test.Build(msh, dilation);
      EXPECT_EQ(test.mesh().n_tri, made == TestMesh::kReady ? msh.n_tri : 0u);
      return static_cast<int32_t>(made);
    });
  };
  using Steps = std::vector<int32_t>;
  const auto code = [](TestMesh made) { return static_cast<int32_t>(made); };
  EXPECT_EQ(list_Steps(0.0), (Steps{code(TestMesh::kNoTree), code(TestMesh::kReady)}));
  EXPECT_EQ(list_Steps(0.1),
            (Steps{code(TestMesh::kNoSoup), code(TestMesh::kNoSoupTree), code(TestMesh::kReady)}));
}

}  // namespace
