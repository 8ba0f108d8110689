#include "host/stl_reader.h"

#include <random>

#include "host/errors.h"
#include "support.h"

namespace undercut::host {
namespace {

const Soup kTwo = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1.5, -2, 3}, {4, 5, 6}, {7, 8, 9.25}};

const std::string kText =
    "solid box\n"
    "  facet normal 0 0 1\n    outer loop\n"
    "      vertex 0 0 0\n      vertex 1 0 0\n      vertex 0 1 0\n"
    "    endloop\n  endfacet\n"
    "  facet normal 0 0 1\n    outer loop\n"
    "      vertex 1.5 -2 3\n      vertex +4 5e0 6\n      vertex 7 8 9.25\n"
    "    endloop\n  endfacet\nendsolid box\n";

void expect_Two(const Soup& corners) {
  ASSERT_EQ(corners.size(), kTwo.size());
  for (size_t i = 0; i < kTwo.size(); ++i) {
    EXPECT_EQ(corners[i].x, kTwo[i].x);
    EXPECT_EQ(corners[i].y, kTwo[i].y);
    EXPECT_EQ(corners[i].z, kTwo[i].z);
  }
}

std::string fail_Stl(const std::string& bytes) {
  return catch_Text<InputError>([&] { parse_Stl(bytes, "p.stl"); });
}

std::string replace_Text(std::string text, const std::string& old, const std::string& fresh) {
  return text.replace(text.find(old), old.size(), fresh);
}

TEST(StlReader, Binary_KeepsTrianglesAndCornersInTheirOrder) {
  expect_Two(parse_Stl(make_BinaryStl(kTwo), "p.stl"));
}

TEST(StlReader, Binary_IsToldBySizeThoughTheHeaderSaysSolid) {
  expect_Two(parse_Stl(make_BinaryStl(kTwo, "solid facet normal"), "p.stl"));
}

TEST(StlReader, Text_KeepsTrianglesAndCornersInTheirOrder) {
  expect_Two(parse_Stl(kText, "p.stl"));
}

TEST(StlReader, Text_MayBeInCapitalsWithCarriageReturnsAndTabs) {
  std::string text;
  for (const char c : kText) {
    if (c == '\n') text += '\r';
    text += c == ' ' ? '\t' : static_cast<char>(std::toupper(c));
  }
  expect_Two(parse_Stl(text, "p.stl"));
}

TEST(StlReader, Text_MayStandOnOneLine) {
  std::string text = kText;
  for (char& c : text) c = c == '\n' ? ' ' : c;
  expect_Two(parse_Stl(text, "p.stl"));
}

TEST(StlReader, Text_MayHaveNoNameAByteOrderMarkAndNoLastNewline) {
  std::string text =
      replace_Text(replace_Text(kText, "solid box\n", "solid\n"), "endsolid box\n", "endsolid");
  expect_Two(parse_Stl("\xEF\xBB\xBF" + text, "p.stl"));
}

TEST(StlReader, Text_MayHaveTheWordFacetInItsName) {
  expect_Two(parse_Stl(replace_Text(kText, "solid box", "solid facet endsolid solid"), "p.stl"));
}

TEST(StlReader, Text_JoinsSeveralSolids) {
  const Soup corners = parse_Stl(kText + kText, "p.stl");
  ASSERT_EQ(corners.size(), 12u);
  EXPECT_EQ(corners[9].x, 1.5);
}

TEST(StlReader, Text_TakesAnyThreeWordsForTheNormal) {
  expect_Two(parse_Stl(replace_Text(kText, "normal 0 0 1", "normal nan -nan(ind) ?"), "p.stl"));
}

TEST(StlReader, Text_TakesATinyNumberForZeroAndKeepsItFinite) {
  const Soup corners = parse_Stl(replace_Text(kText, "vertex 1 0 0", "vertex 1 1e-999 0"), "p.stl");
  EXPECT_EQ(corners[1].y, 0.0);
}

TEST(StlReader, EmptyFile_IsAnError) {
  EXPECT_TRUE(has_Text(fail_Stl(""), "p.stl: the file is empty"));
}

TEST(StlReader, NoTriangles_IsAnErrorInBothForms) {
  EXPECT_TRUE(has_Text(fail_Stl(make_BinaryStl({})), "holds no triangle"));
  EXPECT_TRUE(has_Text(fail_Stl("solid a\nendsolid a\n"), "holds no triangle"));
}

TEST(StlReader, Binary_CutOff_TellsBothSizes) {
  std::string bytes = make_BinaryStl(kTwo);
  bytes.pop_back();
  const std::string text = fail_Stl(bytes);
  EXPECT_TRUE(has_Text(text, "promises 2 triangles, that is 184 bytes, but it has 183")) << text;
}

TEST(StlReader, Binary_WithBytesBehindItsEnd_IsAnError) {
  EXPECT_TRUE(has_Text(fail_Stl(make_BinaryStl(kTwo) + "x"), "184 bytes, but it has 185"));
}

TEST(StlReader, OtherBytes_AreNoStl) {
  EXPECT_TRUE(has_Text(fail_Stl("PNG"), "shorter than the header of a binary STL"));
  EXPECT_TRUE(has_Text(fail_Stl(std::string(500, '\0')), "this is no STL"));
  EXPECT_TRUE(has_Text(fail_Stl(std::string(500, '\xFF')), "promises 4294967295 triangles"));
}

TEST(StlReader, Binary_NotFinite_NamesTheTriangle) {
  for (const uint32_t bits : {0x7FC00000u, 0x7F800000u, 0xFF800000u}) {
    std::string bytes = make_BinaryStl(kTwo);
    for (size_t k = 0; k < 4; ++k)
      bytes[84 + 50 + 12 + 24 + k] = static_cast<char>(bits >> (8 * k));
    EXPECT_TRUE(has_Text(fail_Stl(bytes), "p.stl: triangle 1 has a coordinate that is not finite"));
  }
}

TEST(StlReader, Binary_IgnoresNormalsThatAreNotFinite) {
  std::string bytes = make_BinaryStl(kTwo);
  for (size_t k = 84; k < 96; ++k) bytes[k] = '\xFF';
  expect_Two(parse_Stl(bytes, "p.stl"));
}

TEST(StlReader, Text_NotFinite_NamesTriangleAndLine) {
  for (const char* word : {"nan", "inf", "-inf", "1e999"}) {
    const std::string bytes = replace_Text(kText, "vertex 7", std::string("vertex ") + word);
    EXPECT_TRUE(
        has_Text(fail_Stl(bytes), "triangle 1 (line 13) has a coordinate that is not finite"))
        << word;
  }
}

TEST(StlReader, Text_NoNumber_NamesTriangleLineAndWord) {
  const std::string text = fail_Stl(replace_Text(kText, "vertex 0 1 0", "vertex 0 1,5 0"));
  EXPECT_TRUE(has_Text(text, "p.stl:6: a coordinate of triangle 0 expected, found '1,5'")) << text;
}

TEST(StlReader, Text_WrongWord_NamesTheLine) {
  EXPECT_TRUE(has_Text(fail_Stl(replace_Text(kText, "outer", "inner")),
                       "p.stl:3: 'outer' expected, found 'inner'"));
  EXPECT_TRUE(has_Text(fail_Stl(replace_Text(kText, "endloop", "vertex 1 1 1\nendloop")),
                       "p.stl:7: 'endloop' expected, found 'vertex'"));
  EXPECT_TRUE(has_Text(fail_Stl(kText + "more"), "'solid' expected, found 'more'"));
}

TEST(StlReader, Text_CutOffAnywhere_IsAnError) {
  // Cuts inside the name behind endsolid leave a whole file.
  for (size_t size = 1; size < kText.find("endsolid") + 8; ++size) {
    EXPECT_NE(fail_Stl(kText.substr(0, size)), "") << size;
  }
  EXPECT_TRUE(has_Text(fail_Stl(kText.substr(0, kText.find("endsolid"))), "the file ends here"));
}

TEST(StlReader, RandomBytes_AreReadOrRefusedButNeverHarm) {
  std::mt19937 random(20260101);
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = round % 2 == 0 ? kText : make_BinaryStl(kTwo);
    for (int k = 0; k < 1 + round % 7; ++k)
      bytes[random() % bytes.size()] = static_cast<char>(random());
    if (round % 3 == 0) bytes.resize(random() % (bytes.size() + 1));
    try {
      EXPECT_EQ(parse_Stl(bytes, "p.stl").size() % 3, 0u);
    } catch (const InputError& error) {
      EXPECT_NE(std::string(error.what()), "") << "seed 20260101, round " << round;
    }
  }
}

}  // namespace
}  // namespace undercut::host
