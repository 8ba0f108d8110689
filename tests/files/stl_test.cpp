#include <cmath>
#include <cstring>
#include <limits>

#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Stl : public InFolder {
 protected:
  static uint32_t count(const std::string& path) {
    const std::string bytes = read(path);
    uint32_t n = 0;
    if (bytes.size() >= 84) std::memcpy(&n, bytes.data() + 80, 4);
    return n;
  }
  static std::vector<float> corners(const std::string& path, size_t record) {
    std::vector<float> out(9);
    std::memcpy(out.data(), read(path).data() + 84 + 50 * record + 12, 36);
    return out;
  }
  static int attribute(const std::string& path, size_t record) {
    const std::string bytes = read(path);
    const size_t at = 84 + 50 * record + 48;
    return static_cast<uint8_t>(bytes[at]) + 256 * static_cast<uint8_t>(bytes[at + 1]);
  }
};

TEST_F(Stl, OneTriangle_ByteForByte) {
  Mesh mesh = {{{1, 2, -1}, {0.5, 0, 0}, {0, 1, 4}}, {{0, 1, 2}}};
  ASSERT_TRUE(stl_Msh("a.stl", mesh.view()));
  std::string expected("zorvanite!", 10);
  expected += std::string(70, '\0');
  expected += std::string("\x01\0\0\0", 4);
  expected += std::string("\0\0\0\0\0\0\0\0\0\0\x80\x3f", 12);        // 0 0 1
  expected += std::string("\0\0\x80\x3f\0\0\0\x40\0\0\x80\xbf", 12);  // 1 2 -1
  expected += std::string("\0\0\0\x3f\0\0\0\0\0\0\0\0", 12);          // 0.5 0 0
  expected += std::string("\0\0\0\0\0\0\x80\x3f\0\0\x80\x40", 12);    // 0 1 4
  expected += std::string("\0\0", 2);
  EXPECT_EQ(read("a.stl"), expected);
}

TEST_F(Stl, Normal_IsUp_WhateverTheTriangle) {
  Mesh mesh = {{{0, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{0, 1, 2}, {0, 0, 0}}};
  ASSERT_TRUE(stl_Msh("a.stl", mesh.view()));
  const std::string up("\0\0\0\0\0\0\0\0\0\0\x80\x3f", 12);
  EXPECT_EQ(read("a.stl").substr(84, 12), up);
  EXPECT_EQ(read("a.stl").substr(134, 12), up);
}

TEST_F(Stl, Corners_AreNarrowedToSinglePrecision) {
  Mesh mesh = {{{0.1, 1e300, -1e300}, {0, 0, 0}, {0, 0, 0}}, {{0, 1, 2}}};
  ASSERT_TRUE(stl_Msh("a.stl", mesh.view()));
  const std::vector<float> c = corners("a.stl", 0);
  EXPECT_EQ(c[0], 0.1f);
  EXPECT_EQ(c[1], std::numeric_limits<float>::infinity());
  EXPECT_EQ(c[2], -std::numeric_limits<float>::infinity());
}

TEST_F(Stl, Label_IsStoredPlusOne_InSixteenBits) {
  Mesh mesh = make_Stack(6);
  const uint32_t labels[] = {0, 41, 0xFFFFFFFF, 65534, 65535, 65536};
  ASSERT_TRUE(stl_Lbl("a.stl", mesh.view(), labels));
  const int expected[] = {1, 42, 0, 65535, 0, 1};
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(attribute("a.stl", i), expected[i]) << i;
}

TEST_F(Stl, Label_IsTheOnlyDifferenceToThePlainFile) {
  Mesh mesh = make_Square();
  const uint32_t labels[] = {0xFFFFFFFF, 0xFFFFFFFF};
  ASSERT_TRUE(stl_Lbl("a.stl", mesh.view(), labels));
  ASSERT_TRUE(stl_Msh("b.stl", mesh.view()));
  EXPECT_EQ(read("a.stl"), read("b.stl"));
}

TEST_F(Stl, Ids_WritesTheListedTriangles_InListOrder) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {1, 0, 1};
  ASSERT_TRUE(stl_Ids("a.stl", mesh.view(), ids.lst()));
  EXPECT_EQ(count("a.stl"), 3u);
  EXPECT_EQ(read("a.stl").size(), 84u + 3 * 50);
  EXPECT_EQ(corners("a.stl", 0), (std::vector<float>{0, 0, 0, 1, 1, 0, 0, 1, 0}));
  EXPECT_EQ(corners("a.stl", 1), (std::vector<float>{0, 0, 0, 1, 0, 0, 1, 1, 0}));
  EXPECT_EQ(corners("a.stl", 2), corners("a.stl", 0));
}

TEST_F(Stl, Ids_OutOfRange_WriteNoFile_AndAreNoFailure) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {0, 2};
  EXPECT_TRUE(stl_Ids("a.stl", mesh.view(), ids.lst()));
  EXPECT_TRUE(stl_Frm("a.stl", mesh.view(), ids.lst(), kTurned));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Stl, Frm_TurnsCornersToLocalCoordinates) {
  Mesh mesh = {{{1, 2, 3}, {1, 5, 3}, {-1, 2, 4}}, {{0, 1, 2}}};
  Array<uint32_t> ids = {0};
  ASSERT_TRUE(stl_Frm("a.stl", mesh.view(), ids.lst(), kTurned));
  EXPECT_EQ(corners("a.stl", 0), (std::vector<float>{0, 0, 0, 3, 0, 0, 0, 2, 1}));
}

TEST_F(Stl, Lst_WritesAFileForEachList_NumberedByIndex) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {0, 1}};
  ASSERT_TRUE(stl_Lst("part", mesh.view(), lists.lst()));
  EXPECT_EQ(count("part-000.stl"), 1u);
  EXPECT_EQ(count("part-001.stl"), 2u);
  EXPECT_EQ(count_Files(), 2u);
}

TEST_F(Stl, Lst_StopsAtTheFirstFailure_AndKeepsWhatWasWritten) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {}, {1}};
  EXPECT_FALSE(stl_Lst("part", mesh.view(), lists.lst()));
  EXPECT_TRUE(exists("part-000.stl"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Stl, Lst_GoesOn_PastAListWithAnIdOutOfRange) {
  Mesh mesh = make_Square();
  Lists lists = {{9}, {1}};
  EXPECT_TRUE(stl_Lst("part", mesh.view(), lists.lst()));
  EXPECT_FALSE(exists("part-000.stl"));
  EXPECT_TRUE(exists("part-001.stl"));
}

TEST_F(Stl, Lst_FailsForABaseThatDoesNotFit) {
  Mesh mesh = make_Square();
  Lists lists = {{0}};
  EXPECT_FALSE(stl_Lst(std::string(1020, 'x').c_str(), mesh.view(), lists.lst()));
  EXPECT_FALSE(stl_Lst(nullptr, mesh.view(), lists.lst()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Stl, WritesNoFile_ForEmptyOrMissingInput) {
  Mesh mesh = make_Square();
  const T3DMSH whole = mesh.view();
  T3DMSH no_vtx = whole, no_tri = whole, none = whole;
  no_vtx.vtx = nullptr;
  no_tri.tri = nullptr;
  none.n_tri = 0;
  Array<uint32_t> ids = {0};
  const uint32_t labels[] = {0, 0};
  for (const T3DMSH& bad : {no_vtx, no_tri, none}) {
    EXPECT_FALSE(stl_Msh("a.stl", bad));
    EXPECT_FALSE(stl_Lbl("a.stl", bad, labels));
  }
  for (const T3DMSH& bad : {no_vtx, no_tri}) EXPECT_FALSE(stl_Ids("a.stl", bad, ids.lst()));
  EXPECT_FALSE(stl_Lbl("a.stl", whole, nullptr));
  EXPECT_FALSE(stl_Ids("a.stl", whole, {}));
  EXPECT_FALSE(stl_Frm("a.stl", whole, {}, kTurned));
  EXPECT_FALSE(stl_Lst("a", whole, {}));
  EXPECT_FALSE(stl_Msh(nullptr, whole));
  EXPECT_FALSE(stl_Ids(nullptr, whole, ids.lst()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Stl, WritesNoFile_ForAVertexOutOfRange) {
  Mesh mesh = make_Square();
  mesh.tri[1].c = 4;
  Array<uint32_t> good = {0}, bad = {0, 1};
  EXPECT_FALSE(stl_Msh("a.stl", mesh.view()));
  EXPECT_FALSE(stl_Ids("a.stl", mesh.view(), bad.lst()));
  EXPECT_EQ(count_Files(), 0u);
  EXPECT_TRUE(stl_Ids("a.stl", mesh.view(), good.lst()));
}

TEST_F(Stl, IsFalse_ForAnUnwritablePath) {
  Mesh mesh = make_Square();
  EXPECT_FALSE(stl_Msh(kUnwritable, mesh.view()));
}

}  // namespace
}  // namespace undercut
