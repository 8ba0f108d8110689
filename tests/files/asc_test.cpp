#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Asc : public InFolder {};

TEST_F(Asc, Pts_ByteForByte) {
  Array<T3DVEC> points = {{1, 2, 3}, {-0.5, 1e6, 0}};
  ASSERT_TRUE(asc_Pts("a.asc", points.arr()));
  EXPECT_EQ(read("a.asc"),
            "1.000000 2.000000 3.000000\n"
            "-0.500000 1000000.000000 0.000000\n");
}

TEST_F(Asc, Pnt_HasOneLine) {
  ASSERT_TRUE(asc_Pnt("a.asc", {1, 2, 3}));
  EXPECT_EQ(read("a.asc"), "1.000000 2.000000 3.000000\n");
}

TEST_F(Asc, Ray_WritesBothVectorsAsStored) {
  ASSERT_TRUE(asc_Ray("a.asc", {{1, 2, 3}, {0, 0, -1}}));
  EXPECT_EQ(read("a.asc"), "1.000000 2.000000 3.000000\n0.000000 0.000000 -1.000000\n");
}

TEST_F(Asc, IdWriters_MakeAFileForEachElement) {
  Array<T3DVEC> points = {{1, 2, 3}};
  Array<uint32_t> ids = {17};
  ASSERT_TRUE(asc_IdPts("p", points.arr(), ids.arr()));
  EXPECT_EQ(read("p-lnd(017).asc"), "1.000000 2.000000 3.000000\n");

  Lines lists = {{{1, 2, 3}, {4, 5, 6}}};
  ASSERT_TRUE(asc_IdLst("l", lists.arr(), ids.arr()));
  EXPECT_EQ(read("l-lnd(017).asc"), "1.000000 2.000000 3.000000\n4.000000 5.000000 6.000000\n");

  Array<T3DRAY> rays = {{{1, 2, 3}, {0, 0, 1}}};
  ASSERT_TRUE(asc_IdRays("r", rays.arr(), ids.arr()));
  EXPECT_EQ(read("r-lnd(017).asc"), "1.000000 2.000000 3.000000\n0.000000 0.000000 1.000000\n");
  EXPECT_EQ(count_Files(), 3u);
}

TEST_F(Asc, IdWriters_GoOnPastAnElementThatFails) {
  Lines lists = {{{1, 2, 3}}, {}, {{4, 5, 6}}};
  Array<uint32_t> ids = {1, 2, 3};
  EXPECT_FALSE(asc_IdLst("l", lists.arr(), ids.arr()));
  EXPECT_TRUE(exists("l-lnd(001).asc"));
  EXPECT_FALSE(exists("l-lnd(002).asc"));
  EXPECT_TRUE(exists("l-lnd(003).asc"));
}

TEST_F(Asc, IdWriters_WriteNothing_ForABaseThatDoesNotFit) {
  Array<T3DVEC> points = {{1, 2, 3}};
  Array<uint32_t> ids = {17};
  EXPECT_FALSE(asc_IdPts(std::string(1023, 'x').c_str(), points.arr(), ids.arr()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Asc, WritesNoFile_ForEmptyOrMissingInput) {
  Array<uint32_t> one = {0};
  EXPECT_FALSE(asc_Pts("a.asc", {}));
  EXPECT_FALSE(asc_IdPts("a", {}, one.arr()));
  EXPECT_FALSE(asc_IdLst("a", {}, one.arr()));
  EXPECT_FALSE(asc_IdRays("a", {}, one.arr()));
  Array<T3DVEC> points = {{1, 2, 3}};
  EXPECT_FALSE(asc_IdPts("a", points.arr(), {}));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Asc, IsFalse_ForANullOrUnwritablePath) {
  Array<T3DVEC> points = {{1, 2, 3}};
  for (const char* path : {static_cast<const char*>(nullptr), kUnwritable}) {
    EXPECT_FALSE(asc_Pts(path, points.arr()));
    EXPECT_FALSE(asc_Pnt(path, {1, 2, 3}));
    EXPECT_FALSE(asc_Ray(path, {{1, 2, 3}, {0, 0, 1}}));
  }
}

}  // namespace
}  // namespace undercut
