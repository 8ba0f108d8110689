// Several meshes as one.
#include "undercut/joined_mesh.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

TEST(JoinedMesh, HoldsAllInOrder_WithIndicesMovedUp) {
  TSoup box = make_Box(1, 2, 3), sheet = make_Grid(2, 1);
  T3DVEC lonely = {9, 9, 9};
  std::vector<T3DMSH> parts = {box.msh(), {&lonely, 1, nullptr, 0}, sheet.msh(), {}, box.msh()};
  Scoped<T3DMSH> sum;
  ASSERT_TRUE(join_Meshes(view_Arr(parts), *sum));
  ASSERT_EQ(sum->n_vtx, 8u + 6u + 8u);
  ASSERT_EQ(sum->n_tri, 12u + 4u + 12u);
  uint32_t vtx = 0, tri = 0;
  for (TSoup* part : {&box, &sheet, &box}) {
    for (const T3DVEC& v : part->vtx) EXPECT_TRUE(sum->vtx[vtx++] == v);
    const auto up = vtx - static_cast<uint32_t>(part->vtx.size());
    for (const T3DTRI& t : part->tri) {
      EXPECT_EQ(sum->tri[tri].a, t.a + up);
      EXPECT_EQ(sum->tri[tri].b, t.b + up);
      EXPECT_EQ(sum->tri[tri++].c, t.c + up);
    }
  }
}

TEST(JoinedMesh, OfNothing_Fails) {
  T3DMSH none = {}, out = {};
  EXPECT_FALSE(join_Meshes({nullptr, 0}, out));
  EXPECT_FALSE(join_Meshes({&none, 1}, out));
}

TEST(JoinedMesh, BeyondTheRangeOfIndices_Fails) {
  TSoup box = make_Box(1, 2, 3);
  T3DMSH out = {};
  for (const bool vertices : {true, false}) {
    std::vector<T3DMSH> parts = {box.msh(), box.msh()};
    (vertices ? parts[0].n_vtx : parts[0].n_tri) = 0xFFFFFFF9u;
    EXPECT_FALSE(join_Meshes(view_Arr(parts), out));
  }
}

TEST(JoinedMesh, WithoutMemory_FailsAndLeavesNothing) {
  TSoup box = make_Box(1, 2, 3);
  std::vector<T3DMSH> parts = {box.msh()};
  const auto codes = list_FailureCodes([&] {
    Scoped<T3DMSH> sum;
    return join_Meshes(view_Arr(parts), *sum);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

}  // namespace
