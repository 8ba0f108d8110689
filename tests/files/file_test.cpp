#include "files/file.h"

#include "files/writers.h"
#include "tests/support/comma_locale.h"

namespace undercut {
namespace {

class FileTest : public InFolder {};

TEST_F(FileTest, Open_OfANullOrUnwritablePath_IsFalse) {
  EXPECT_FALSE(File(nullptr));
  EXPECT_FALSE(File(""));
  EXPECT_FALSE(File(kUnwritable));
  EXPECT_FALSE(File("."));
}

TEST_F(FileTest, Open_EmptiesAnOlderFile) {
  std::ofstream("a.txt") << "older and longer";
  {
    File file("a.txt");
    ASSERT_TRUE(file);
    file.printf("%d", 7);
  }
  EXPECT_EQ(read("a.txt"), "7");
}

TEST_F(FileTest, Point_HasSixDigitsBehindThePoint) {
  { File("a.txt").point({0.5, -1e-7, 1234567.125}); }
  EXPECT_EQ(read("a.txt"), "0.500000 -0.000000 1234567.125000\n");
}

TEST_F(FileTest, Close_TellsWhetherAllOfItWasWritten) {
  File file("a.txt");
  file.printf("%d", 7);
  EXPECT_TRUE(file.close());
  EXPECT_EQ(read("a.txt"), "7");
  EXPECT_FALSE(file.close());
  EXPECT_FALSE(file);
  EXPECT_FALSE(File(kUnwritable).close());
  File full("/dev/full");
  if (!full) GTEST_SKIP() << "no device that is always full";
  full.printf("%d", 7);
  EXPECT_FALSE(full.close());
}

size_t count_Open() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    ++count;
  return count;
}

TEST_F(FileTest, EveryWriter_ClosesItsFile) {
  if (!std::filesystem::exists("/proc/self/fd")) GTEST_SKIP() << "cannot see what is open";
  Mesh square = make_Square();
  Array<uint32_t> ids = {0, 1};
  Array<T3DVEC> points = {{0, 0, 0}, {1, 0, 0}};
  const int32_t labels[] = {0, 1};
  const size_t before = count_Open();
  EXPECT_TRUE(stl_Msh("a.stl", square.view()));
  EXPECT_TRUE(ply_Lbl("a.ply", square.view(), labels));
  EXPECT_TRUE(pol_Out("a.pol", square.view(), ids.lst()));
  EXPECT_TRUE(sef_Loop("a.sef", points.arr()));
  EXPECT_TRUE(asc_Pts("a.asc", points.arr()));
  EXPECT_TRUE(trf_Frm("a.trf", kTurned));
  EXPECT_TRUE(txt_Ids("a.txt", ids.lst()));
  EXPECT_FALSE(txt_Ids(kUnwritable, ids.lst()));
  EXPECT_EQ(count_Open(), before);
}

TEST_F(CommaLocale, DoesNotReachTheFiles_AndStaysTheHosts) {
  EXPECT_TRUE(asc_Pnt("a.asc", {0.5, 1.25, -2}));
  EXPECT_EQ(read("a.asc"), "0.500000 1.250000 -2.000000\n");
  EXPECT_TRUE(trf_Frm("a.trf", kTurned));
  EXPECT_EQ(read("a.trf").find(','), std::string::npos);
  Mesh square = make_Square();
  const double values[] = {0.5, 0.5};
  EXPECT_TRUE(ply_Rng("a.ply", square.view(), 0, 1, values, 1));
  EXPECT_EQ(read("a.ply").find(','), std::string::npos);

  File first("1.asc");
  {
    File second("2.asc");
    second.point({0.5, 0, 0});
    EXPECT_EQ(half(), "0,5");
  }
  first.point({0.5, 0, 0});
  EXPECT_EQ(half(), "0,5");
}

}  // namespace
}  // namespace undercut
