#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Sef : public InFolder {
 protected:
  std::vector<T3DVEC> points_ = {{1, 2, 3}, {1, 5, 3}, {-1, 2, 4}};
  std::vector<T3DSGM> segments_ = {{0, 1}, {2, 1}};
  T3DPOL pol() { return {points_.data(), 3, segments_.data(), 2}; }
};

TEST_F(Sef, Pol_ByteForByte) {
  ASSERT_TRUE(sef_Pol("a.sef", pol()));
  EXPECT_EQ(read("a.sef"),
            "3\n"
            "1.000000 2.000000 3.000000\n"
            "1.000000 5.000000 3.000000\n"
            "-1.000000 2.000000 4.000000\n"
            "2\n"
            "0 1\n"
            "2 1\n");
}

TEST_F(Sef, PolFrm_TurnsPointsToLocalCoordinates) {
  ASSERT_TRUE(sef_PolFrm("a.sef", pol(), kTurned));
  EXPECT_EQ(read("a.sef"),
            "3\n"
            "0.000000 0.000000 0.000000\n"
            "3.000000 0.000000 0.000000\n"
            "0.000000 2.000000 1.000000\n"
            "2\n"
            "0 1\n"
            "2 1\n");
}

TEST_F(Sef, Pol_TellsOfAFileThatCannotBeOpened_OnStandardError) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(sef_Pol(kUnwritable, pol()));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "error: can't open missing/folder/file file \n");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(sef_PolFrm(kUnwritable, pol(), kTurned));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "error: can't open missing/folder/file file \n");
}

TEST_F(Sef, AllOthers_AreSilent_AboutAFileThatCannotBeOpened) {
  Mesh mesh = make_Square();
  Array<T3DVEC> points = {{0, 0, 0}};
  Array<T3DRAY> rays = {{{0, 0, 0}, {0, 0, 1}}};
  Lines loops = {{{0, 0, 0}}};
  Array<uint32_t> one = {0};
  Lists lists = {{0}};
  testing::internal::CaptureStderr();
  for (const char* path : {static_cast<const char*>(nullptr), kUnwritable}) {
    EXPECT_FALSE(sef_Loop(path, points.arr()));
    EXPECT_FALSE(sef_Frm(path, kTurned));
    EXPECT_FALSE(sef_Ray(path, rays.items[0]));
    EXPECT_FALSE(sef_Pnt(path, points.items[0]));
    EXPECT_FALSE(sef_Out(path, mesh.view(), one.lst()));
    EXPECT_FALSE(sef_OutFrm(path, mesh.view(), one.lst(), kTurned));
    EXPECT_FALSE(sef_OutLst(path, mesh.view(), lists.lst(), one.arr()));
    EXPECT_FALSE(sef_IdPts(path, points.arr(), one.arr()));
    EXPECT_FALSE(sef_IdLps(path, loops.arr(), one.arr()));
    EXPECT_FALSE(sef_IdRays(path, rays.arr(), one.arr()));
  }
  EXPECT_FALSE(sef_Pol(nullptr, pol()));
  EXPECT_FALSE(sef_PolFrm(nullptr, pol(), kTurned));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Sef, Pol_WithoutSegments_HasACountOfZero) {
  T3DPOL bare = pol();
  bare.sgm = nullptr;
  EXPECT_FALSE(sef_Pol("a.sef", bare));
  bare.n_sgm = 0;
  bare.n_pnt = 1;
  EXPECT_TRUE(sef_Pol("a.sef", bare));
  EXPECT_EQ(read("a.sef"), "1\n1.000000 2.000000 3.000000\n0\n");
}

TEST_F(Sef, Loop_ClosesFromTheLastToTheFirst) {
  Array<T3DVEC> loop(points_);
  ASSERT_TRUE(sef_Loop("a.sef", loop.arr()));
  EXPECT_EQ(read_From("a.sef", 4), "3\n0 1\n1 2\n2 0\n");
}

TEST_F(Sef, Loop_OfOnePoint_HasASegmentToItself) {
  Array<T3DVEC> loop = {{1, 2, 3}};
  ASSERT_TRUE(sef_Loop("a.sef", loop.arr()));
  EXPECT_EQ(read("a.sef"), "1\n1.000000 2.000000 3.000000\n1\n0 0\n");
}

TEST_F(Sef, Frm_HasAxesOfTenTimesTheirLength) {
  ASSERT_TRUE(sef_Frm("a.sef", {{2, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}}));
  EXPECT_EQ(read("a.sef"),
            "4\n"
            "1.000000 2.000000 3.000000\n"
            "21.000000 2.000000 3.000000\n"
            "1.000000 12.000000 3.000000\n"
            "1.000000 2.000000 13.000000\n"
            "3\n"
            "0 1\n"
            "0 2\n"
            "0 3\n");
}

TEST_F(Sef, Ray_WritesBothVectorsAsStored) {
  ASSERT_TRUE(sef_Ray("a.sef", {{1, 2, 3}, {0, 0, -1}}));
  EXPECT_EQ(read("a.sef"), "2\n1.000000 2.000000 3.000000\n0.000000 0.000000 -1.000000\n1\n0 1\n");
}

TEST_F(Sef, Pnt_HasNoSegment) {
  ASSERT_TRUE(sef_Pnt("a.sef", {1, 2, 3}));
  EXPECT_EQ(read("a.sef"), "1\n1.000000 2.000000 3.000000\n0\n");
}

TEST_F(Sef, Out_IsTheBoundary_WithPointsInOrderOfUse) {
  Mesh mesh = make_Square();
  Array<uint32_t> ids = {0, 1};
  ASSERT_TRUE(sef_Out("a.sef", mesh.view(), ids.lst()));
  EXPECT_EQ(read("a.sef"),
            "4\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 0.000000 0.000000\n"
            "1.000000 1.000000 0.000000\n"
            "0.000000 1.000000 0.000000\n"
            "4\n"
            "0 1\n"
            "1 2\n"
            "2 3\n"
            "3 0\n");
}

TEST_F(Sef, Out_MergesPointsOfEqualCoordinates) {
  // Two triangles with corners of their own along the common edge: by index it is a boundary.
  Mesh mesh = {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}, {1, 1, 0}, {0, 1, 0}},
               {{0, 1, 2}, {3, 4, 5}}};
  Array<uint32_t> ids = {0, 1};
  ASSERT_TRUE(sef_Out("a.sef", mesh.view(), ids.lst()));
  EXPECT_EQ(read("a.sef"),
            "4\n"
            "0.000000 0.000000 0.000000\n"
            "1.000000 0.000000 0.000000\n"
            "1.000000 1.000000 0.000000\n"
            "0.000000 1.000000 0.000000\n"
            "6\n"
            "0 1\n"
            "1 2\n"
            "2 0\n"
            "0 2\n"
            "2 3\n"
            "3 0\n");
}

TEST_F(Sef, OutFrm_TurnsPointsToLocalCoordinates) {
  Mesh mesh = {points_, {{0, 1, 2}}};
  Array<uint32_t> ids = {0};
  ASSERT_TRUE(sef_OutFrm("a.sef", mesh.view(), ids.lst(), kTurned));
  EXPECT_EQ(read("a.sef"),
            "3\n"
            "0.000000 0.000000 0.000000\n"
            "3.000000 0.000000 0.000000\n"
            "0.000000 2.000000 1.000000\n"
            "3\n"
            "0 1\n"
            "1 2\n"
            "2 0\n");
}

TEST_F(Sef, OutLst_WritesAFileForEachList_NumberedById) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {0, 1}};
  Array<uint32_t> ids = {3, 1000};
  ASSERT_TRUE(sef_OutLst("part", mesh.view(), lists.lst(), ids.arr()));
  ASSERT_TRUE(sef_Out("b.sef", mesh.view(), lists.views[1]));
  EXPECT_TRUE(exists("part-003.sef"));
  EXPECT_EQ(read("part-1000.sef"), read("b.sef"));
}

TEST_F(Sef, OutLst_StopsAtTheFirstFailure_AndKeepsWhatWasWritten) {
  Mesh mesh = make_Square();
  Lists lists = {{0}, {}, {1}};
  Array<uint32_t> ids = {1, 2, 3};
  EXPECT_FALSE(sef_OutLst("part", mesh.view(), lists.lst(), ids.arr()));
  EXPECT_TRUE(exists("part-001.sef"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Sef, IdWriters_MakeAFileForEachElement) {
  Array<T3DVEC> points = {{1, 2, 3}, {4, 5, 6}};
  Array<uint32_t> ids = {17, 18};
  ASSERT_TRUE(sef_IdPts("p", points.arr(), ids.arr()));
  EXPECT_EQ(read("p-lnd(017).sef"), "1\n1.000000 2.000000 3.000000\n0\n");
  EXPECT_EQ(read("p-lnd(018).sef"), "1\n4.000000 5.000000 6.000000\n0\n");

  Lines loops = {{{1, 2, 3}}};
  ASSERT_TRUE(sef_IdLps("l", loops.arr(), ids.arr()));
  EXPECT_EQ(read("l-lnd(017).sef"), "1\n1.000000 2.000000 3.000000\n1\n0 0\n");

  Array<T3DRAY> rays = {{{1, 2, 3}, {0, 0, 1}}};
  ASSERT_TRUE(sef_IdRays("r", rays.arr(), ids.arr()));
  EXPECT_EQ(read("r-lnd(017).sef"),
            "2\n1.000000 2.000000 3.000000\n0.000000 0.000000 1.000000\n1\n0 1\n");
  EXPECT_EQ(count_Files(), 4u);
}

TEST_F(Sef, IdWriters_GoOnPastAnElementThatFails) {
  Lines loops = {{}, {{1, 2, 3}}};
  Array<uint32_t> ids = {1, 2};
  EXPECT_FALSE(sef_IdLps("l", loops.arr(), ids.arr()));
  EXPECT_FALSE(exists("l-lnd(001).sef"));
  EXPECT_TRUE(exists("l-lnd(002).sef"));
}

TEST_F(Sef, WritesNoFile_ForEmptyOrMissingInput) {
  Mesh mesh = make_Square();
  Array<T3DVEC> points = {{0, 0, 0}, {1, 0, 0}};
  Array<uint32_t> one = {0};
  Lists lists = {{0}, {1}};
  EXPECT_FALSE(sef_Pol("a.sef", {}));
  EXPECT_FALSE(sef_PolFrm("a.sef", {}, kTurned));
  EXPECT_FALSE(sef_Loop("a.sef", {}));
  EXPECT_FALSE(sef_Out("a.sef", mesh.view(), {}));
  EXPECT_FALSE(sef_Out("a.sef", {}, one.lst()));
  EXPECT_FALSE(sef_OutLst("a", mesh.view(), {}, one.arr()));
  EXPECT_FALSE(sef_OutLst("a", mesh.view(), lists.lst(), one.arr()));
  EXPECT_FALSE(sef_IdPts("a", {}, one.arr()));
  EXPECT_FALSE(sef_IdPts("a", points.arr(), one.arr()));
  EXPECT_FALSE(sef_IdLps("a", {}, one.arr()));
  EXPECT_FALSE(sef_IdRays("a", {}, one.arr()));
  EXPECT_EQ(count_Files(), 0u);
}

}  // namespace
}  // namespace undercut
