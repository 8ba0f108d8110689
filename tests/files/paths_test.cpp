#include "files/paths.h"

#include "tests/files/support.h"

namespace undercut {
namespace {

class Paths : public InFolder {};

TEST_F(Paths, FmtName_Formats_WhatFits) {
  char buffer[8];
  EXPECT_TRUE(fmt_Name(buffer, "%s-%03d", "ab", 7));
  EXPECT_STREQ(buffer, "ab-007");
  EXPECT_TRUE(fmt_Name(buffer, "%s", "1234567"));
  EXPECT_STREQ(buffer, "1234567");
}

TEST_F(Paths, FmtName_IsFalseAndEmpty_WhereTheEndDoesNotFit) {
  char buffer[8] = "before";
  EXPECT_FALSE(fmt_Name(buffer, "%s", "12345678"));
  EXPECT_STREQ(buffer, "");
}

TEST_F(Paths, Split_GivesFolderNameAndExtension) {
  EXPECT_EQ(pth_Dir("a/b/c.d.txt"), "a/b/");
  EXPECT_EQ(pth_Nam("a/b/c.d.txt"), "c.d");
  EXPECT_EQ(pth_Ext("a/b/c.d.txt"), ".txt");
}

TEST_F(Paths, Split_OfARelativeName_HasNoFolder) {
  EXPECT_EQ(pth_Dir("c.txt"), "");
  EXPECT_EQ(pth_Nam("c.txt"), "c");
  EXPECT_EQ(pth_Ext("c.txt"), ".txt");
}

TEST_F(Paths, Split_TakesNoPointOfAFolderForAnExtension) {
  EXPECT_EQ(pth_Dir("a.b/c"), "a.b/");
  EXPECT_EQ(pth_Nam("a.b/c"), "c");
  EXPECT_EQ(pth_Ext("a.b/c"), "");
}

TEST_F(Paths, Split_OfAFolder_HasNoName) {
  EXPECT_EQ(pth_Dir("/a/b/"), "/a/b/");
  EXPECT_EQ(pth_Nam("/a/b/"), "");
  EXPECT_EQ(pth_Ext("/a/b/"), "");
}

TEST_F(Paths, Split_KeepsTheCaseOfTheExtension) { EXPECT_EQ(pth_Ext("part.STL"), ".STL"); }

TEST_F(Paths, Split_OfANullPath_IsEmpty) {
  EXPECT_EQ(pth_Dir(nullptr), "");
  EXPECT_EQ(pth_Nam(nullptr), "");
  EXPECT_EQ(pth_Ext(nullptr), "");
}

TEST_F(Paths, Mkd_MakesEveryFolder_AndNotTheName) {
  pth_Mkd("a/b/c.txt");
  EXPECT_TRUE(exists("a/b"));
  EXPECT_FALSE(exists("a/b/c.txt"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Paths, Mkd_SkipsThePieceOfOnePoint) {
  pth_Mkd("./a/c.txt");
  EXPECT_TRUE(exists("a"));
  EXPECT_EQ(count_Files(), 1u);
  EXPECT_TRUE(std::filesystem::is_empty("a"));
}

TEST_F(Paths, Mkd_LeavesFoldersThatExist_AsTheyAre) {
  std::filesystem::create_directory("a");
  std::ofstream("a/kept.txt") << "kept";
  pth_Mkd("a/b/");
  EXPECT_EQ(read("a/kept.txt"), "kept");
  EXPECT_TRUE(exists("a/b"));
}

TEST_F(Paths, Mkd_MakesAbsoluteFolders_FromTheRoot) {
  pth_Mkd((folder() + "/deep/er/").c_str());
  EXPECT_TRUE(exists("deep/er"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Paths, Mkd_TakesSeveralSlashesForOne) {
  pth_Mkd("a//b///");
  EXPECT_TRUE(exists("a/b"));
}

TEST_F(Paths, Mkd_WithoutClosingSlash_DoesNotMakeTheLastPiece) {
  pth_Mkd("a/b");
  EXPECT_TRUE(exists("a"));
  EXPECT_FALSE(exists("a/b"));
}

TEST_F(Paths, Mkd_KeepsBackslashesInTheNameOfOneFolder) {
  pth_Mkd("a\\b/");
  EXPECT_TRUE(exists("a\\b"));
  EXPECT_EQ(count_Files(), 1u);
}

TEST_F(Paths, Mkd_TakesADriveForAFolder) {
  pth_Mkd("D:/a/");
  EXPECT_TRUE(exists("D:/a"));
}

TEST_F(Paths, Mkd_OfANameOrOfNothing_MakesNothing) {
  pth_Mkd("c.txt");
  pth_Mkd("");
  pth_Mkd("/");
  pth_Mkd("./");
  pth_Mkd(nullptr);
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Paths, Mkd_PassesOverAFolderThatCannotBeMade) {
  std::ofstream("a") << "a file";
  pth_Mkd("a/b/");
  EXPECT_EQ(read("a"), "a file");
}

TEST_F(Paths, Mkd_OfAPathBeyondTheBuffer_MakesNothing) {
  std::string path;
  while (path.size() + 1 < kNameSize) path += "ab/";
  pth_Mkd(path.c_str());
  EXPECT_EQ(count_Files(), 0u);
}

TEST_F(Paths, Mkd_MakesTheLongestPathThatFits) {
  std::string path;
  for (int i = 0; i < 5; ++i) path += std::string(200, 'x') + "/";
  path += std::string(kNameSize - 3 - path.size(), 'y') + "/";
  ASSERT_EQ(path.size() + 2, kNameSize);
  pth_Mkd(path.c_str());
  EXPECT_TRUE(exists(path));
}

}  // namespace
}  // namespace undercut
