#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Txt : public InFolder {};

TEST_F(Txt, Ids_ByteForByte) {
  Array<uint32_t> ids = {7, 0, 2147483647, 0xFFFFFFFF};
  ASSERT_TRUE(txt_Ids("a.txt", ids.lst()));
  EXPECT_EQ(read("a.txt"), "7\n0\n2147483647\n-1\n");
}

TEST_F(Txt, Ids_WritesTheCount_NotTheCapacity) {
  Array<uint32_t> ids = {7, 8, 9};
  TLst<uint32_t> two = ids.lst();
  two.count = 2;
  ASSERT_TRUE(txt_Ids("a.txt", two));
  EXPECT_EQ(read("a.txt"), "7\n8\n");
}

TEST_F(Txt, IdLst_WritesAFileForEachList_NumberedWithoutLeadingZeros) {
  Lists lists = {{1, 2}, {3}, {4}};
  Array<uint32_t> ids = {5, 0, 1234};
  ASSERT_TRUE(txt_IdLst("part", lists.lst(), ids.arr()));
  EXPECT_EQ(read("part-5.txt"), "1\n2\n");
  EXPECT_EQ(read("part-0.txt"), "3\n");
  EXPECT_EQ(read("part-1234.txt"), "4\n");
  EXPECT_EQ(count_Files(), 3u);
}

TEST_F(Txt, IdLst_StopsAtTheFirstFailure_AndKeepsWhatWasWritten) {
  Lists lists = {{1}, {}, {2}};
  Array<uint32_t> ids = {1, 2, 3};
  EXPECT_FALSE(txt_IdLst("part", lists.lst(), ids.arr()));
  EXPECT_TRUE(exists("part-1.txt"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Txt, IdLst_TakesTheLongestNameThatFits) {
  Lists lists = {{1}};
  Array<uint32_t> ids = {1};
  std::filesystem::create_directory(std::string(200, 'd'));
  std::string base = std::string(200, 'd') + "/";
  while (base.size() < 1000) base += "./";
  // The base, "-1.txt" and the end make 1024 bytes.
  const std::string fits = base + std::string(1017 - base.size(), 'f');
  EXPECT_TRUE(txt_IdLst(fits.c_str(), lists.lst(), ids.arr()));
  EXPECT_FALSE(txt_IdLst((fits + "f").c_str(), lists.lst(), ids.arr()));
}

TEST_F(Txt, WritesNoFile_ForEmptyOrMissingInput) {
  Array<uint32_t> ids = {1};
  Lists lists = {{1}, {2}};
  EXPECT_FALSE(txt_Ids("a.txt", {}));
  EXPECT_FALSE(txt_Ids(nullptr, ids.lst()));
  EXPECT_FALSE(txt_IdLst("a", {}, ids.arr()));
  EXPECT_FALSE(txt_IdLst(nullptr, lists.lst(), ids.arr()));
  EXPECT_FALSE(txt_IdLst("a", lists.lst(), ids.arr()));
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Txt, IsFalse_ForAnUnwritablePath) {
  Array<uint32_t> ids = {1};
  EXPECT_FALSE(txt_Ids(kUnwritable, ids.lst()));
}

}  // namespace
}  // namespace undercut
