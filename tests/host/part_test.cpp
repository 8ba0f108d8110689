#include "host/part.h"

#include <map>
#include <random>
#include <tuple>

#include "host/assimp_reader.h"
#include "host/errors.h"
#include "support.h"

namespace undercut::host {
namespace {

TEST(Weld, JoinsCornersThatAreExactlyEqualAndNumbersThemByFirstUse) {
  const Mesh mesh =
      weld_Corners({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 1}, {0, 1, 0}, {5, 5, 5}});
  ASSERT_EQ(mesh.vertices.size(), 4u);
  ASSERT_EQ(mesh.triangles.size(), 2u);
  EXPECT_EQ(mesh.triangles[0].a, 0u);
  EXPECT_EQ(mesh.triangles[1].a, 2u);
  EXPECT_EQ(mesh.triangles[1].b, 1u);
  EXPECT_EQ(mesh.triangles[1].c, 3u);
  EXPECT_EQ(mesh.vertices[3].x, 5.0);
}

TEST(Weld, TakesMinusZeroForZero) {
  const Mesh mesh = weld_Corners(
      {{0.0, -0.0, 0.0}, {1, 0, 0}, {0, 1, 0}, {-0.0, 0.0, -0.0}, {1, -0.0, 0}, {2, 2, 2}});
  EXPECT_EQ(mesh.vertices.size(), 4u);
  EXPECT_FALSE(std::signbit(mesh.vertices[0].y));
}

TEST(Weld, KeepsCornersApartThatDifferInTheLastBit) {
  const Mesh mesh = weld_Corners({{1, 0, 0}, {std::nextafter(1.0, 2.0), 0, 0}, {0, 1, 0}});
  EXPECT_EQ(mesh.vertices.size(), 3u);
}

TEST(Weld, AgreesWithAnOrderedMapOnRandomCorners) {
  std::mt19937 random(7);
  Soup corners;
  for (int i = 0; i < 3000; ++i) {
    const auto pick = [&] { return static_cast<double>(random() % 6) - 2.5; };
    corners.push_back({pick(), pick(), pick()});
  }
  const Mesh mesh = weld_Corners(corners);
  std::map<std::tuple<double, double, double>, uint32_t> plain;
  for (size_t i = 0; i < corners.size(); ++i) {
    const auto key = std::tuple(corners[i].x, corners[i].y, corners[i].z);
    const uint32_t id = plain.try_emplace(key, static_cast<uint32_t>(plain.size())).first->second;
    const T3DTRI& t = mesh.triangles[i / 3];
    EXPECT_EQ(i % 3 == 0 ? t.a : i % 3 == 1 ? t.b : t.c, id) << "seed 7, corner " << i;
  }
  EXPECT_EQ(mesh.vertices.size(), plain.size());
}

TEST(Part, ListsTrianglesWithTwoEqualCornersAndLeavesThemOutOfTheWholeMesh) {
  Folder folder;
  const Soup corners = {{0, 0, 0},    {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0},
                        {-0.0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  const Part part = read_Part(folder.write("a.stl", make_BinaryStl(corners)));
  EXPECT_EQ(part.mesh.triangles.size(), 3u);
  EXPECT_EQ(part.welded, 5u);
  EXPECT_EQ(part.degenerate, std::vector<uint32_t>({1}));
  EXPECT_EQ(whole_Roi(part).triangles, std::vector<uint32_t>({0, 2}));
}

TEST(Part, WithoutAnyProperTriangle_IsAnError) {
  Folder folder;
  const Part part =
      read_Part(folder.write("a.stl", make_BinaryStl({{0, 0, 0}, {0, 0, 0}, {1, 0, 0}})));
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { whole_Roi(part); }), "two equal corners"));
}

TEST(Part, MissingFileAndFolder_AreInputErrors) {
  Folder folder;
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { read_Part(folder.path / "no.stl"); }),
                       "cannot be opened"));
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { read_Part(folder.path); }), "is a folder"));
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { read_Part(folder.path / "no.obj"); }),
                       "cannot be opened"));
}

TEST(Part, StlMayHaveAnExtensionInCapitalsOrNone) {
  Folder folder;
  const std::string bytes = make_BinaryStl(make_Dome(2));
  EXPECT_EQ(read_Part(folder.write("a.STL", bytes)).mesh.triangles.size(), 8u);
  EXPECT_EQ(read_Part(folder.write("a", bytes)).mesh.triangles.size(), 8u);
}

TEST(Part, OtherFormats_KeepTheOrderOfTriangles) {
  if (!has_Assimp()) GTEST_SKIP() << "built without assimp";
  Folder folder;
  const auto path =
      folder.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 5 5 5\nf 2 3 4\nf 1 2 3\nf 4 3 1\n");
  const Part part = read_Part(path);
  ASSERT_EQ(part.mesh.triangles.size(), 3u);
  EXPECT_EQ(part.mesh.vertices.size(), 4u);
  EXPECT_EQ(part.mesh.vertices[part.mesh.triangles[0].c].x, 5.0);
  EXPECT_EQ(part.mesh.vertices[part.mesh.triangles[1].a].x, 0.0);
  EXPECT_EQ(part.mesh.vertices[part.mesh.triangles[2].a].x, 5.0);
}

TEST(Part, OtherFormats_FileThatIsNoMesh_IsAnInputError) {
  Folder folder;
  const auto path = folder.write("a.xyzzy", "hello");
  EXPECT_TRUE(has_Text(catch_Text<InputError>([&] { read_Part(path); }), "as STL"));
}

TEST(Roi, ReadsOneIndexALineAndPassesOverBlanksAndComments) {
  Folder folder;
  const Roi roi = read_Roi(folder.write("r.txt", "# top\n\n 3 \r\n0# first\n\t\n7"), 8);
  EXPECT_EQ(roi.triangles, std::vector<uint32_t>({3, 0, 7}));
  EXPECT_EQ(roi.repeated, 0u);
}

TEST(Roi, MayBeginWithAByteOrderMark) {
  Folder folder;
  EXPECT_EQ(read_Roi(folder.write("r.txt",
                                  "\xEF\xBB\xBF"
                                  "5\r\n0\r\n"),
                     8)
                .triangles,
            std::vector<uint32_t>({5, 0}));
}

TEST(Roi, LeavesRepeatedEntriesOutAndCountsThem) {
  Folder folder;
  const Roi roi = read_Roi(folder.write("r.txt", "3\n3\n1\n3\n"), 8);
  EXPECT_EQ(roi.triangles, std::vector<uint32_t>({3, 1}));
  EXPECT_EQ(roi.repeated, 2u);
}

TEST(Roi, BadLines_AreNamedWithFileAndLine) {
  Folder folder;
  const auto fail = [&](const std::string& text) {
    const auto path = folder.write("r.txt", text);
    return catch_Text<InputError>([&] { read_Roi(path, 8); });
  };
  EXPECT_TRUE(has_Text(fail("1\n\nabc\n"), "r.txt:3: 'abc' is no triangle index"));
  EXPECT_TRUE(has_Text(fail("1 2\n"), "r.txt:1: '1 2' is no triangle index"));
  EXPECT_TRUE(has_Text(fail("1.5\n"), "r.txt:1: '1.5'"));
  EXPECT_TRUE(has_Text(fail("1\n8\n"),
                       "r.txt:2: triangle 8 is out of range. The part has triangles 0 to 7"));
  EXPECT_TRUE(has_Text(fail("-1\n"), "r.txt:1: triangle -1 is out of range"));
  EXPECT_TRUE(has_Text(fail("0\n99999999999999999999\n"),
                       "r.txt:2: triangle 99999999999999999999 is out of range"));
  EXPECT_TRUE(has_Text(fail("-\n"), "r.txt:1: '-' is no triangle index"));
  EXPECT_TRUE(has_Text(fail("# nothing\n"), "names no triangle"));
  EXPECT_TRUE(has_Text(fail(""), "names no triangle"));
}

}  // namespace
}  // namespace undercut::host
