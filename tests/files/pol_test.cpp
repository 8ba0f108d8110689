#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Pol : public InFolder {};

TEST_F(Pol, Lst_ByteForByte) {
  Lines lines = {{{0, 0, 0}, {1, 2.5, -3}}, {{4, 5, 6}}};
  ASSERT_TRUE(pol_Lst("a.pol", lines.arr()));
  EXPECT_EQ(read("a.pol"),
            "<000>\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 2.500000 -3.000000\n"
            "</000>\n"
            "<001>\n"
            "4.000000 5.000000 6.000000\n"
            "</001>\n");
}

TEST_F(Pol, Lst_SkipsEmptyLines_AndKeepsTheNumbersOfTheOthers) {
  Lines lines = {{{0, 0, 0}}, {}, {{1, 0, 0}}};
  ASSERT_TRUE(pol_Lst("a.pol", lines.arr()));
  EXPECT_EQ(read("a.pol"),
            "<000>\n0.000000 0.000000 0.000000\n</000>\n"
            "<002>\n1.000000 0.000000 0.000000\n</002>\n");
}

TEST_F(Pol, LstFrm_TurnsPointsToLocalCoordinates) {
  Lines lines = {{{1, 2, 3}, {1, 5, 3}}};
  ASSERT_TRUE(pol_LstFrm("a.pol", lines.arr(), kTurned));
  EXPECT_EQ(read("a.pol"),
            "<000>\n0.000000 0.000000 0.000000\n3.000000 0.000000 0.000000\n</000>\n");
}

TEST_F(Pol, One_IsTaggedByZeros) {
  Array<T3DVEC> line = {{1, 2, 3}, {4, 5, 6}};
  ASSERT_TRUE(pol_One("a.pol", line.arr()));
  EXPECT_EQ(read("a.pol"),
            "<000>\n1.000000 2.000000 3.000000\n4.000000 5.000000 6.000000\n</000>\n");
}

TEST_F(Pol, Seg_IsTaggedSgm) {
  ASSERT_TRUE(pol_Seg("a.pol", {1, 2, 3}, {4, 5, 6}));
  EXPECT_EQ(read("a.pol"),
            "<sgm>\n1.000000 2.000000 3.000000\n4.000000 5.000000 6.000000\n</sgm>\n");
}

TEST_F(Pol, Frm_HasABlockForEachAxis_OfItsLength) {
  ASSERT_TRUE(pol_Frm("a.pol", {{2, 0, 0}, {0, 1, 0}, {0, 0, 0.5}, {1, 2, 3}}));
  EXPECT_EQ(read("a.pol"),
            "<X>\n1.000000 2.000000 3.000000\n3.000000 2.000000 3.000000\n</X>\n"
            "<Y>\n1.000000 2.000000 3.000000\n1.000000 3.000000 3.000000\n</Y>\n"
            "<Z>\n1.000000 2.000000 3.000000\n1.000000 2.000000 3.500000\n</Z>\n");
}

TEST_F(Pol, Pts_HasABlockForEachPoint_TaggedByItsId) {
  Array<T3DVEC> points = {{1, 2, 3}, {4, 5, 6}};
  Array<uint32_t> ids = {17, 1234};
  ASSERT_TRUE(pol_Pts("a.pol", points.arr(), ids.arr()));
  EXPECT_EQ(read("a.pol"),
            "<lnd(017)>\n1.000000 2.000000 3.000000\n</lnd(017)>\n"
            "<lnd(1234)>\n4.000000 5.000000 6.000000\n</lnd(1234)>\n");
}

TEST_F(Pol, Ids_SkipsEmptyLines_AndKeepsTheIdsOfTheOthers) {
  Lines lines = {{{1, 2, 3}}, {}, {{4, 5, 6}}};
  Array<uint32_t> ids = {7, 8, 9};
  ASSERT_TRUE(pol_Ids("a.pol", lines.arr(), ids.arr()));
  EXPECT_EQ(read("a.pol"),
            "<lnd(007)>\n1.000000 2.000000 3.000000\n</lnd(007)>\n"
            "<lnd(009)>\n4.000000 5.000000 6.000000\n</lnd(009)>\n");
}

TEST_F(Pol, Rays_WritesBothVectorsAsStored) {
  Array<T3DRAY> rays = {{{1, 2, 3}, {0, 0, -1}}};
  Array<uint32_t> ids = {5};
  ASSERT_TRUE(pol_Rays("a.pol", rays.arr(), ids.arr()));
  EXPECT_EQ(read("a.pol"),
            "<lnd(005)>\n1.000000 2.000000 3.000000\n0.000000 0.000000 -1.000000\n</lnd(005)>\n");
}

TEST_F(Pol, AnIdBeyond31Bits_IsWrittenNegative) {
  Array<T3DVEC> points = {{1, 2, 3}};
  Array<uint32_t> ids = {0x80000000};
  ASSERT_TRUE(pol_Pts("a.pol", points.arr(), ids.arr()));
  EXPECT_EQ(read("a.pol").substr(0, 18), "<lnd(-2147483648)>");
}

TEST_F(Pol, Out_IsTheBoundaryLoop) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {1, 0};
  ASSERT_TRUE(pol_Out("a.pol", mesh.view(), ids.lst()));
  EXPECT_EQ(read("a.pol"),
            "<000>\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 0.000000 0.000000\n"
            "1.000000 1.000000 0.000000\n"
            "0.000000 1.000000 0.000000\n"
            "</000>\n");
}

TEST_F(Pol, Out_OfAPart_IsTheBoundaryOfThatPart) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {1, 1};
  ASSERT_TRUE(pol_Out("a.pol", mesh.view(), ids.lst()));
  EXPECT_EQ(read("a.pol"),
            "<000>\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 1.000000 0.000000\n"
            "0.000000 1.000000 0.000000\n"
            "</000>\n");
}

TEST_F(Pol, OutFrm_TurnsPointsToLocalCoordinates) {
  Mesh mesh = {{{1, 2, 3}, {1, 5, 3}, {-1, 2, 4}}, {{0, 1, 2}}};
  Array<uint32_t> ids = {0};
  ASSERT_TRUE(pol_OutFrm("a.pol", mesh.view(), ids.lst(), kTurned));
  EXPECT_EQ(read("a.pol"),
            "<000>\n"
            "0.000000 0.000000 0.000000\n"
            "3.000000 0.000000 0.000000\n"
            "0.000000 2.000000 1.000000\n"
            "</000>\n");
}

TEST_F(Pol, OutLst_WritesAFileForEachList_NumberedById) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {1}};
  Array<uint32_t> ids = {4, 12};
  ASSERT_TRUE(pol_OutLst("part", mesh.view(), lists.lst(), ids.arr()));
  ASSERT_TRUE(pol_Out("b.pol", mesh.view(), lists.views[1]));
  EXPECT_TRUE(exists("part-004.pol"));
  EXPECT_EQ(read("part-012.pol"), read("b.pol"));
  EXPECT_EQ(count_Files(), 3u);
}

TEST_F(Pol, OutLst_StopsAtTheFirstFailure_AndKeepsWhatWasWritten) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {}, {1}};
  Array<uint32_t> ids = {1, 2, 3};
  EXPECT_FALSE(pol_OutLst("part", mesh.view(), lists.lst(), ids.arr()));
  EXPECT_TRUE(exists("part-001.pol"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Pol, WritesNoFile_ForEmptyOrMissingInput) {
  Mesh mesh = make_Square();
  Lines lines = {{{0, 0, 0}}};
  Array<T3DVEC> points = {{0, 0, 0}, {1, 0, 0}};
  Array<T3DRAY> rays = {{{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {0, 0, 1}}};
  Array<uint32_t> one = {0};
  Lists lists = {{0}, {1}};
  EXPECT_FALSE(pol_Lst("a.pol", {}));
  EXPECT_FALSE(pol_LstFrm("a.pol", {}, kTurned));
  EXPECT_FALSE(pol_One("a.pol", {}));
  EXPECT_FALSE(pol_Pts("a.pol", {}, one.arr()));
  EXPECT_FALSE(pol_Ids("a.pol", {}, one.arr()));
  EXPECT_FALSE(pol_Rays("a.pol", {}, one.arr()));
  EXPECT_FALSE(pol_Out("a.pol", mesh.view(), {}));
  EXPECT_FALSE(pol_Out("a.pol", {}, one.lst()));
  EXPECT_FALSE(pol_OutFrm("a.pol", mesh.view(), {}, kTurned));
  EXPECT_FALSE(pol_OutLst("a", mesh.view(), {}, one.arr()));
  // Fewer ids than elements.
  EXPECT_FALSE(pol_Pts("a.pol", points.arr(), one.arr()));
  EXPECT_FALSE(pol_Ids("a.pol", lines.arr(), {}));
  EXPECT_FALSE(pol_Rays("a.pol", rays.arr(), one.arr()));
  EXPECT_FALSE(pol_OutLst("a", mesh.view(), lists.lst(), one.arr()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Pol, IsFalse_ForANullOrUnwritablePath) {
  Mesh mesh = make_Square();
  Lines lines = {{{0, 0, 0}}};
  Array<T3DVEC> points = {{0, 0, 0}};
  Array<T3DRAY> rays = {{{0, 0, 0}, {0, 0, 1}}};
  Array<uint32_t> one = {0};
  Lists lists = {{0}};
  for (const char* path : {static_cast<const char*>(nullptr), kUnwritable}) {
    EXPECT_FALSE(pol_Lst(path, lines.arr()));
    EXPECT_FALSE(pol_LstFrm(path, lines.arr(), kTurned));
    EXPECT_FALSE(pol_One(path, points.arr()));
    EXPECT_FALSE(pol_Seg(path, {0, 0, 0}, {1, 0, 0}));
    EXPECT_FALSE(pol_Frm(path, kTurned));
    EXPECT_FALSE(pol_Pts(path, points.arr(), one.arr()));
    EXPECT_FALSE(pol_Ids(path, lines.arr(), one.arr()));
    EXPECT_FALSE(pol_Rays(path, rays.arr(), one.arr()));
    EXPECT_FALSE(pol_Out(path, mesh.view(), one.lst()));
    EXPECT_FALSE(pol_OutFrm(path, mesh.view(), one.lst(), kTurned));
    EXPECT_FALSE(pol_OutLst(path, mesh.view(), lists.lst(), one.arr()));
  }
}

}  // namespace
}  // namespace undercut
