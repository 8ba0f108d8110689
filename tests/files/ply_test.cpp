#include <limits>

#include "files/writers.h"
#include "foundation/arrays.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Ply : public InFolder {
 protected:
  // Colours of the faces of a stack of triangles: what follows the three indices.
  static std::string faces(const std::string& path) {
    std::istringstream text(read(path));
    std::string line, out;
    while (std::getline(text, line))
      if (line.rfind("3 0 1 2 ", 0) == 0) out += line.substr(8) + "\n";
    return out;
  }
};

constexpr const char* kRgb148 = "169 169 169\n";

TEST_F(Ply, ColourByFace_ByteForByte) {
  Mesh mesh = make_Square();
  const double values[] = {0, 1};
  ASSERT_TRUE(ply_Rng("a.ply", mesh.view(), 0, 1, values, 1));
  EXPECT_EQ(read("a.ply"),
            "ply\n"
            "format ascii 1.0\n"
            "comment QR presented\n"
            "element vertex 4\n"
            "property float x\n"
            "property float y\n"
            "property float z\n"
            "element face 2\n"
            "property list uchar int vertex_indices\n"
            "property uchar red\n"
            "property uchar green\n"
            "property uchar blue\n"
            "end_header\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 0.000000 0.000000\n"
            "1.000000 1.000000 0.000000\n"
            "0.000000 1.000000 0.000000\n"
            "3 0 1 2 255 255 255\n"
            "3 0 2 3 255 0 0\n");
}

TEST_F(Ply, ColourByVertex_ByteForByte) {
  Mesh mesh = make_Square();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(mesh.view(), *adj), 0);
  const double values[] = {0.5, 1.5};
  ASSERT_TRUE(ply_Vtx("a.ply", mesh.view(), *adj, {0, 2}, values, 3));
  EXPECT_EQ(read("a.ply"),
            "ply\n"
            "format ascii 1.0\n"
            "comment QR presented\n"
            "element vertex 4\n"
            "property float x\n"
            "property float y\n"
            "property float z\n"
            "property uchar red\n"
            "property uchar green\n"
            "property uchar blue\n"
            "element face 2\n"
            "property list uchar int vertex_indices\n"
            "end_header\n"
            "0.000000 0.000000 0.000000 127 127 127\n"
            "1.000000 0.000000 0.000000 191 191 191\n"
            "1.000000 1.000000 0.000000 127 127 127\n"
            "0.000000 1.000000 0.000000 63 63 63\n"
            "3 0 1 2\n"
            "3 0 2 3\n");
}

TEST_F(Ply, ColourByVertex_LeavesZerosOutOfTheMean) {
  Mesh mesh = make_Square();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(mesh.view(), *adj), 0);
  const double values[] = {0, 1};
  ASSERT_TRUE(ply_Vtx("a.ply", mesh.view(), *adj, {0, 2}, values, 3));
  EXPECT_EQ(read_From("a.ply", 13),
            "0.000000 0.000000 0.000000 127 127 127\n"
            "1.000000 0.000000 0.000000 255 255 255\n"
            "1.000000 1.000000 0.000000 127 127 127\n"
            "0.000000 1.000000 0.000000 127 127 127\n"
            "3 0 1 2\n"
            "3 0 2 3\n");
}

TEST_F(Ply, ColourByVertex_TakesZero_WhereNoTriangleIs) {
  Mesh mesh = make_Square();
  mesh.vtx.push_back({5, 5, 5});
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(mesh.view(), *adj), 0);
  const double values[] = {1, 1};
  ASSERT_TRUE(ply_Vtx("a.ply", mesh.view(), *adj, {-1, 1}, values, 3));
  EXPECT_NE(read("a.ply").find("5.000000 5.000000 5.000000 127 127 127\n"), std::string::npos);
}

TEST_F(Ply, ColourByVertex_PassesOverTriangleIndicesOutOfRange) {
  Mesh mesh = make_Stack(1);
  uint32_t entries[] = {7, 0, 0xFFFFFFFF};
  uint32_t* lists[] = {entries, entries, entries};
  uint32_t counts[] = {3, 0, 1};
  TAdj adj;
  adj.lists = lists;
  adj.counts = counts;
  const double values[] = {1};
  ASSERT_TRUE(ply_Vtx("a.ply", mesh.view(), adj, {0, 2}, values, 3));
  EXPECT_EQ(read_From("a.ply", 13),
            "0.000000 0.000000 0.000000 127 127 127\n"
            "1.000000 0.000000 0.000000 255 255 255\n"
            "0.000000 1.000000 0.000000 255 255 255\n"
            "3 0 1 2\n");
}

TEST_F(Ply, Val_NegatesFirst_IfToldSo) {
  Mesh mesh = make_Stack(2);
  const double values[] = {-0.5, 0.5};
  ASSERT_TRUE(ply_Val("a.ply", mesh.view(), {0, 1}, values, 2, false));
  EXPECT_EQ(faces("a.ply"), "255 255 255\n255 127 127\n");
  ASSERT_TRUE(ply_Val("a.ply", mesh.view(), {0, 1}, values, 2, true));
  EXPECT_EQ(faces("a.ply"), "255 127 127\n255 255 255\n");
}

TEST_F(Ply, Val_IsRng_WithoutTheNegation) {
  Mesh mesh = make_Stack(3);
  const double values[] = {1, 2, 3};
  for (int32_t mode = 1; mode <= 4; ++mode) {
    ASSERT_TRUE(ply_Val("a.ply", mesh.view(), {0.5, 4}, values, mode, false));
    ASSERT_TRUE(ply_Rng("b.ply", mesh.view(), 0.5, 4, values, mode));
    EXPECT_EQ(read("a.ply"), read("b.ply"));
  }
}

TEST_F(Ply, AModeOutside1To4_GivesAValidBlackFile) {
  Mesh mesh = make_Stack(2);
  const double values[] = {0, 1};
  for (const int32_t mode : {0, 5, -7}) {
    ASSERT_TRUE(ply_Rng("a.ply", mesh.view(), 0, 1, values, mode));
    EXPECT_EQ(faces("a.ply"), "0 0 0\n0 0 0\n");
  }
}

TEST_F(Ply, ValuesThatAreNotNumbers_AreWhite) {
  Mesh mesh = make_Stack(2);
  const double values[] = {std::numeric_limits<double>::quiet_NaN(), 1.7976931348623157e+308};
  ASSERT_TRUE(ply_Rng("a.ply", mesh.view(), 0, 1, values, 4));
  EXPECT_EQ(faces("a.ply"), "255 255 255\n255 0 0\n");
}

TEST_F(Ply, Lbl_TakesThePaletteAtLabelPlusOne) {
  Mesh mesh = make_Stack(4);
  const int32_t labels[] = {-1, 0, 1, 2};
  ASSERT_TRUE(ply_Lbl("a.ply", mesh.view(), labels));
  EXPECT_EQ(faces("a.ply"), "255 255 255\n192 255 255\n255 0 0\n0 255 0\n");
}

TEST_F(Ply, Lbl_WrapsFrom149On) {
  Mesh mesh = make_Stack(4);
  // Colours 148, 149 mod 149 + 2 = 2, 150 mod 149 + 2 = 3, and 298 mod 149 + 2 = 2.
  const int32_t labels[] = {147, 148, 149, 297};
  ASSERT_TRUE(ply_Lbl("a.ply", mesh.view(), labels));
  EXPECT_EQ(faces("a.ply"), std::string(kRgb148) + "255 0 0\n0 255 0\n255 0 0\n");
}

TEST_F(Ply, Lbl_IsHeldTo148_WhereTheWrapGoesBeyond) {
  Mesh mesh = make_Stack(3);
  // 295, 296 and 297 mod 149 + 2 are 148, 149 and 150.
  const int32_t labels[] = {294, 295, 296};
  ASSERT_TRUE(ply_Lbl("a.ply", mesh.view(), labels));
  EXPECT_EQ(faces("a.ply"), std::string(kRgb148) + kRgb148 + kRgb148);
}

TEST_F(Ply, Lbl_NeverLeavesThePalette) {
  Mesh mesh = make_Stack(4);
  const int32_t labels[] = {-2, INT32_MIN, INT32_MAX, INT32_MAX - 1};
  ASSERT_TRUE(ply_Lbl("a.ply", mesh.view(), labels));
  // 2^31 mod 149 + 2 is 141, and 2^31 - 1 gives 140.
  EXPECT_EQ(faces("a.ply"), "255 255 255\n255 255 255\n240 255 240\n248 248 255\n");
}

TEST_F(Ply, Reg_TakesThePaletteAtOnePlusTheListsIndex) {
  Mesh mesh = make_Stack(4);
  Lists lists = {{3}, {}, {0, 2}};
  ASSERT_TRUE(ply_Reg("a.ply", mesh.view(), lists.lst()));
  EXPECT_EQ(faces("a.ply"), "0 255 0\n255 255 255\n0 255 0\n192 255 255\n");
}

TEST_F(Ply, Reg_GivesListsBeyond148_TheSameColour) {
  Mesh mesh = make_Stack(151);
  std::vector<std::vector<uint32_t>> single;
  for (uint32_t i = 0; i < 151; ++i) single.push_back({i});
  Lists lists(std::move(single));
  ASSERT_TRUE(ply_Reg("a.ply", mesh.view(), lists.lst()));
  const std::string colours = faces("a.ply");
  const std::string same = kRgb148;
  // List 146 has colour 147; from list 147 on all have colour 148.
  EXPECT_EQ(colours.substr(colours.size() - 5 * same.size()),
            "128 128 128\n" + same + same + same + same);
}

TEST_F(Ply, Bit_IsRedForSetBits) {
  Mesh mesh = make_Stack(3);
  CBitVector bits;
  ASSERT_TRUE(bits.init(3) && bits.set(1));
  ASSERT_TRUE(ply_Bit("a.ply", mesh.view(), bits));
  EXPECT_EQ(faces("a.ply"), "255 255 255\n255 0 0\n255 255 255\n");
}

TEST_F(Ply, Bit_DoesNothing_UnlessThereIsABitForEachTriangle) {
  Mesh mesh = make_Stack(3);
  for (const uint64_t size : {2u, 4u}) {
    CBitVector bits;
    ASSERT_TRUE(bits.init(size));
    EXPECT_FALSE(ply_Bit("a.ply", mesh.view(), bits));
  }
  EXPECT_FALSE(ply_Bit("a.ply", mesh.view(), CBitVector()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Ply, Ids_IsBit_OfTheList) {
  Mesh mesh = make_Stack(3);
  Array<uint32_t> ids = {2, 0, 2};
  ASSERT_TRUE(ply_Ids("a.ply", mesh.view(), ids.lst()));
  EXPECT_EQ(faces("a.ply"), "255 0 0\n255 255 255\n255 0 0\n");
}

TEST_F(Ply, AnIdOutOfRange_WritesNoFile_AndIsNoFailure) {
  Mesh mesh = make_Stack(2);
  Array<uint32_t> ids = {0, 2};
  Lists lists = {{0}, {2}};
  EXPECT_TRUE(ply_Ids("a.ply", mesh.view(), ids.lst()));
  EXPECT_TRUE(ply_Reg("a.ply", mesh.view(), lists.lst()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Ply, WritesNoFile_ForEmptyOrMissingInput) {
  Mesh mesh = make_Square();
  const T3DMSH whole = mesh.view();
  T3DMSH no_vtx = whole, no_tri = whole, zero_vtx = whole, zero_tri = whole;
  no_vtx.vtx = nullptr;
  no_tri.tri = nullptr;
  zero_vtx.n_vtx = 0;
  zero_tri.n_tri = 0;
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(whole, *adj), 0);
  const double values[] = {1, 1};
  const int32_t labels[] = {1, 1};
  CBitVector bits;
  ASSERT_TRUE(bits.init(2));
  Array<uint32_t> ids = {0};
  Lists lists = {{0}};
  for (const T3DMSH& bad : {no_vtx, no_tri, zero_vtx, zero_tri}) {
    EXPECT_FALSE(ply_Rng("a.ply", bad, 0, 1, values, 1));
    EXPECT_FALSE(ply_Vtx("a.ply", bad, *adj, {0, 1}, values, 1));
    EXPECT_FALSE(ply_Reg("a.ply", bad, lists.lst()));
    EXPECT_FALSE(ply_Lbl("a.ply", bad, labels));
    EXPECT_FALSE(ply_Bit("a.ply", bad, bits));
    EXPECT_FALSE(ply_Ids("a.ply", bad, ids.lst()));
  }
  EXPECT_FALSE(ply_Val("a.ply", whole, {0, 1}, nullptr, 1, false));
  EXPECT_FALSE(ply_Vtx("a.ply", whole, TAdj(), {0, 1}, values, 1));
  EXPECT_FALSE(ply_Vtx("a.ply", whole, *adj, {0, 1}, nullptr, 1));
  EXPECT_FALSE(ply_Reg("a.ply", whole, {}));
  EXPECT_FALSE(ply_Lbl("a.ply", whole, nullptr));
  EXPECT_FALSE(ply_Ids("a.ply", whole, {}));
  EXPECT_FALSE(ply_Rng(nullptr, whole, 0, 1, values, 1));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Ply, IsFalse_ForAnUnwritablePath) {
  Mesh mesh = make_Square();
  const int32_t labels[] = {1, 1};
  const double values[] = {1, 1};
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(mesh.view(), *adj), 0);
  EXPECT_FALSE(ply_Lbl(kUnwritable, mesh.view(), labels));
  EXPECT_FALSE(ply_Vtx(kUnwritable, mesh.view(), *adj, {0, 1}, values, 1));
}

}  // namespace
}  // namespace undercut
