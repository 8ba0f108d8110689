#include "files/outline.h"

#include <limits>
#include <random>

#include "files/writers.h"
#include "mesh/boundary.h"
#include "mesh/weld.h"
#include "tests/files/support.h"

namespace undercut {

namespace {

class Outline : public InFolder {};

template <typename T>
std::vector<T> items(const T* data, uint32_t count) {
  return std::vector<T>(data, data + count);
}

std::vector<uint32_t> ends(const T3DPOL& pol) {
  std::vector<uint32_t> out;
  for (const T3DSGM& segment : items(pol.sgm, pol.n_sgm)) {
    out.push_back(segment.a);
    out.push_back(segment.b);
  }
  return out;
}

// The same from the whole mesh, with a set of its triangles.
struct Plain {
  Scoped<TArr<T3DSGM>> edges;
  bool init(const T3DMSH& msh, const TLst<uint32_t>& ids) {
    CBitVector set;
    return set.from_Lst(ids, msh.n_tri) && bnd_Own(msh, set, *edges) == 0 && edges->count != 0;
  }
  std::vector<std::vector<T3DVEC>> loops(const T3DMSH& msh) {
    std::vector<std::vector<T3DVEC>> out;
    Scoped<TArr<TArr<uint32_t>>> chains;
    EXPECT_TRUE(bnd_Loops(msh, *edges, *chains));
    for (uint32_t i = 0; i < chains->count; ++i) {
      out.emplace_back();
      const TArr<uint32_t>& chain = chains->data[i];
      for (const uint32_t v : items(chain.data, chain.count)) out.back().push_back(msh.vtx[v]);
    }
    return out;
  }
  bool pol(const T3DMSH& msh, T3DPOL& out) {
    if (!alloc_Pol(out, msh.n_vtx, edges->count)) return false;
    std::copy(msh.vtx, msh.vtx + msh.n_vtx, out.pnt);
    std::copy(edges->data, edges->data + edges->count, out.sgm);
    return wld_Pol(out);
  }
};

void expect_Same(const T3DMSH& msh, const TLst<uint32_t>& ids) {
  Plain plain;
  COutline outline;
  ASSERT_EQ(outline.init(msh, ids), plain.init(msh, ids));
  if (plain.edges->count == 0) return;

  Scoped<TArr<TArr<T3DVEC>>> loops;
  ASSERT_TRUE(outline.loops(*loops));
  const auto expected = plain.loops(msh);
  ASSERT_EQ(loops->count, expected.size());
  for (uint32_t i = 0; i < loops->count; ++i)
    EXPECT_EQ(items(loops->data[i].data, loops->data[i].count), expected[i]) << "loop " << i;

  Scoped<T3DPOL> pol, pol_Plain;
  ASSERT_TRUE(outline.edges(*pol));
  ASSERT_TRUE(plain.pol(msh, *pol_Plain));
  EXPECT_EQ(items(pol->pnt, pol->n_pnt), items(pol_Plain->pnt, pol_Plain->n_pnt));
  EXPECT_EQ(ends(*pol), ends(*pol_Plain));
}

// Few vertices, so that edges of three triangles, triangles given twice and degenerate ones abound;
// few places, so that vertices coincide.
TEST_F(Outline, OfTheListedTrianglesAlone_IsThatOfTheWholeMesh) {
  constexpr unsigned kSeed = 97;
  std::mt19937 random(kSeed);
  const auto below = [&random](uint32_t n) { return static_cast<uint32_t>(random() % n); };
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", round " << round);
    const uint32_t n_vtx = 3 + below(12), n_tri = 1 + below(20);
    Mesh mesh;
    for (uint32_t v = 0; v < n_vtx; ++v) {
      const double x = below(3), y = below(3), z = below(2);
      mesh.vtx.push_back({x, y, z});
    }
    for (uint32_t t = 0; t < n_tri; ++t) {
      const uint32_t a = below(n_vtx), b = below(n_vtx), c = below(n_vtx);
      mesh.tri.push_back({a, b, c});
    }
    std::vector<uint32_t> listed;
    for (uint32_t i = 0; i < n_tri; ++i) listed.push_back(below(n_tri));
    Array<uint32_t> ids(listed);
    expect_Same(mesh.view(), ids.lst());
  }
}

TEST_F(Outline, OfAClosedSurface_IsNone_AndNoFileIsWritten) {
  Mesh mesh = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
               {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}}};
  Array<uint32_t> ids = {0, 1, 2, 3};
  EXPECT_FALSE(pol_Out("a.pol", mesh.view(), ids.lst()));
  EXPECT_FALSE(sef_Out("a.sef", mesh.view(), ids.lst()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Outline, LeavesDegenerateTrianglesOut) {
  Mesh mesh = make_Square();
  mesh.tri.push_back({0, 1, 1});
  Array<uint32_t> with = {0, 1, 2}, without = {0, 1};
  ASSERT_TRUE(pol_Out("a.pol", mesh.view(), with.lst()));
  ASSERT_TRUE(pol_Out("b.pol", mesh.view(), without.lst()));
  EXPECT_EQ(read("a.pol"), read("b.pol"));
}

TEST_F(Outline, AnIdOutOfRange_WritesNoFile_AndIsNoFailure) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {0, 2};
  EXPECT_TRUE(pol_Out("a.pol", mesh.view(), ids.lst()));
  EXPECT_TRUE(pol_OutFrm("a.pol", mesh.view(), ids.lst(), kTurned));
  EXPECT_TRUE(sef_Out("a.sef", mesh.view(), ids.lst()));
  EXPECT_TRUE(sef_OutFrm("a.sef", mesh.view(), ids.lst(), kTurned));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Outline, AVertexOutOfRange_WritesNoFile) {
  Mesh mesh = make_Square();
  mesh.tri[1].b = 4;
  Array<uint32_t> ids = {0, 1};
  EXPECT_FALSE(pol_Out("a.pol", mesh.view(), ids.lst()));
  EXPECT_FALSE(sef_Out("a.sef", mesh.view(), ids.lst()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Outline, TakesCoordinatesThatAreNotNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Mesh mesh = {{{nan, 0, 0}, {1, nan, 0}, {nan, nan, nan}}, {{0, 1, 2}}};
  Array<uint32_t> ids = {0};
  EXPECT_TRUE(pol_Out("a.pol", mesh.view(), ids.lst()));
  sef_Out("a.sef", mesh.view(), ids.lst());
  EXPECT_EQ(read("a.pol").substr(0, 6), "<000>\n");
}

}  // namespace
}  // namespace undercut
