// The JSON documents of the command: numbers, and the schemas in docs/schemas.
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <map>

#include "host/json_parts.h"
#include "overhang.h"
#include "support.h"

namespace undercut::host {
namespace {

TEST(Documents, NumbersTakeTheShortestFormThatReadsBackTheSame) {
  const std::pair<double, const char*> cases[] = {
      {0.1, "0.1"},         {0.1 + 0.2, "0.30000000000000004"},
      {1.0, "1.0"},         {-0.0, "-0.0"},
      {1e23, "1e+23"},      {5e-324, "5e-324"},
      {100.0, "100.0"},     {9007199254740993.0, "9007199254740992.0"},
      {1.5e300, "1.5e+300"}};
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(print_Json(Json(value)), std::string(text) + "\n");
    EXPECT_EQ(Json::parse(print_Json(Json(value))).get<double>(), value);
  }
}

TEST(Documents, WhatIsNotFinite_IsNull) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double far = std::numeric_limits<double>::infinity();
  EXPECT_EQ(print_Json(Json({nan, far, -far, 1})), "[null,null,null,1]\n");
}

TEST(Documents, TextsAndNestedValuesStandOnOneLineWhereNothingIsDeeper) {
  EXPECT_EQ(print_Json(Json({{"a\"b", {{"c", "d\n"}, {"e", true}}}, {"f", nullptr}})),
            "{\n  \"a\\\"b\": {\"c\":\"d\\n\",\"e\":true},\n  \"f\": null\n}\n");
}

// One document of each kind, with all that can be null filled once and empty once.
struct DocumentsOfTheCommand : testing::Test {
  Folder folder;

  void SetUp() override {
    folder.write("part.stl", make_BinaryStl(make_Lower()));
    folder.write("upper.stl", make_BinaryStl(make_Upper()));
    folder.write("roi.txt", "0\n1\n");
  }
  void check(const std::string& name, const std::string& arguments, const std::string& file) const {
    const Ran ran = run_Built(folder, arguments);
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(check_Documents("--strict " + name + "='" + (folder.path / file).string() + "'"), "")
        << arguments;
  }
};

TEST_F(DocumentsOfTheCommand, Axis_NothingElsePassesTheSchema) {
  check("axis", "axis part.stl --machine 3 --start 5,5 --set n_max=3 -o a", "a/axis.json");
  check("axis", "axis part.stl --machine 5 --window 0,0,50,90 --roi roi.txt -o b", "b/axis.json");
}

TEST_F(DocumentsOfTheCommand, Undercut_NothingElsePassesTheSchema) {
  check("undercut", "classify part.stl --axis 0,0,1 --against upper.stl -o a", "a/undercut.json");
  check("undercut", "classify part.stl --axis 0,0,1 --roi roi.txt -o b", "b/undercut.json");
  const std::string corridor = "classify part.stl --axis 0,0,1 --corridor 0,2.5,0,1,0,0";
  check("undercut", corridor + " --against upper.stl -o c", "c/undercut.json");
  check("undercut", corridor + " --width 2 -o d", "d/undercut.json");
}

TEST_F(DocumentsOfTheCommand, Depth_NothingElsePassesTheSchema) {
  check("depth", "depth part.stl --axis 0,0,1 --against upper.stl -o a", "a/depth.json");
  check("depth", "depth part.stl --axis 0,0,1 --roi roi.txt --max 1 -o b", "b/depth.json");
}

TEST_F(DocumentsOfTheCommand, Rim_NothingElsePassesTheSchema) {
  check("rim", "rim part.stl --axis 0,0,1 -o a", "a/rim.json");
  check("rim", "rim part.stl --axis 0,0,1 --method edges --set f_tol=0.01 -o b", "b/rim.json");
  check("rim", "rim part.stl --axis 0,0,1 --method grid-roi --roi roi.txt -o c", "c/rim.json");
}

TEST_F(DocumentsOfTheCommand, Inside_NothingElsePassesTheSchema) {
  folder.write("a.pol", "<0>\n2 2 1\n7 2 1\n7 6 1\n</0>\n");
  check("inside", "inside part.stl --curve a.pol -o a", "a/inside.json");
}

TEST_F(DocumentsOfTheCommand, Regions_NothingElsePassesTheSchema) {
  folder.write("dome.stl", make_BinaryStl(make_Dome(12)));
  check("regions", "decompose dome.stl --whole --max-edge 5 -o a", "a/regions.json");
  check("regions", "decompose dome.stl --plain --set n_con=3 -o b", "b/regions.json");
}

TEST_F(DocumentsOfTheCommand, Projection_NothingElsePassesTheSchema) {
  folder.write("p.asc", "3 3 2\n");
  folder.write("p.pol", "<000>\n3 3 2\n4 3 2\n4 4 2\n</000>\n");
  folder.write("f.trf", "1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
  check("projection", "project part.stl --points p.asc --axis 0,0,1 -o a", "a/projection.json");
  check("projection", "project part.stl --points p.pol --frame f.trf -o b", "b/projection.json");
  check("projection", "project part.stl --line 3,3,2,0,0,1 -o c", "c/projection.json");
  check("projection", "project part.stl --line 30,3,2,0,0,1 -o d", "d/projection.json");
}

TEST_F(DocumentsOfTheCommand, Statistics_NothingElsePassesTheSchema) {
  std::string values;
  for (int i = 0; i < 480; ++i) values += "1.5\n";
  folder.write("v.txt", values);
  check("statistics", "statistics part.stl --axis 0,0,1 -o a", "a/statistics.json");
  check(
      "statistics",
      "statistics part.stl --axis 0,0,1 --roi roi.txt --values v.txt --allowed --set n_con=3 -o b",
      "b/statistics.json");
}

TEST_F(DocumentsOfTheCommand, Components_NothingElsePassesTheSchema) {
  check("components", "components part.stl -o a", "a/components.json");
  check("components",
        "components part.stl --roi roi.txt --min-area 3 --corridor 0,0,0,1,0,0 --axis 0,0,1 -o b",
        "b/components.json");
}

TEST_F(DocumentsOfTheCommand, Parameters_NothingElsePassesTheSchema) {
  check("parameters", "parameters --json", ".stdout");
}

TEST(Schemas, AWrongDocumentIsTold) {
  Folder folder;
  folder.write("x.json", "{\"schema\": 1, \"program\": NaN}");
  EXPECT_NE(check_Documents("axis='" + (folder.path / "x.json").string() + "'"), "");
  folder.write("x.json", "{\"schema\": 1}");
  EXPECT_TRUE(has_Text(check_Documents("axis='" + (folder.path / "x.json").string() + "'"),
                       "'program' is a required property"));
}

TEST(Schemas, WhatTheyShareIsTheSameInAll) {
  std::map<std::string, Json> known;
  size_t files = 0;
  for (const auto& entry : fs::directory_iterator(UNDERCUT_SOURCE "/docs/schemas")) {
    ++files;
    const Json schema = Json::parse(load_File(entry.path()));
    for (const auto& [name, definition] : schema["$defs"].items()) {
      const auto [place, fresh] = known.try_emplace(name, definition);
      EXPECT_EQ(place->second, definition) << entry.path() << ": " << name;
    }
  }
  EXPECT_EQ(files, 10u);
}

// Every key that a schema names is told in the manual.
TEST(Schemas, EveryKeyIsToldInTheManual) {
  const std::string manual = load_File(fs::path(UNDERCUT_SOURCE) / "docs/json.md");
  const auto check = [&](const auto& self, const Json& node) -> void {
    for (const auto& [key, value] : node.items()) {
      if (key == "properties") {
        for (const auto& [name, ignored] : value.items()) {
          EXPECT_TRUE(has_Text(manual, "`" + name + "`")) << name;
        }
      }
      if (value.is_structured()) self(self, value);
    }
  };
  for (const auto& entry : fs::directory_iterator(UNDERCUT_SOURCE "/docs/schemas")) {
    check(check, Json::parse(load_File(entry.path())));
  }
}

}  // namespace
}  // namespace undercut::host
