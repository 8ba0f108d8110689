// A subcommand on the part of two plates, and on its halves.
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <utility>
#include <vector>

#include "overhang.h"
#include "support.h"

namespace undercut::host {

struct PlatesCommand : testing::Test {
  explicit PlatesCommand(std::string subcommand) : name(std::move(subcommand)) {}

  std::string name;
  Folder folder;
  Mesh mesh = weld_Corners(make_Plates());

  void SetUp() override {
    folder.write("part.stl", make_BinaryStl(make_Plates()));
    folder.write("lower.stl", make_BinaryStl(make_Lower()));
    folder.write("upper.stl", make_BinaryStl(make_Upper()));
  }
  Ran run(const std::string& arguments) const { return run_Built(folder, name + " " + arguments); }
  // Arguments, each with what the command must say of them: it ends with `status`, and leaves
  // nothing in the folder of its name.
  using Refusals = std::vector<std::pair<const char*, const char*>>;
  void expect_Refused(int status, const Refusals& cases) const {
    for (const auto& [arguments, piece] : cases) {
      const Ran ran = run(arguments);
      EXPECT_EQ(ran.status, status) << arguments;
      EXPECT_TRUE(has_Text(ran.err, piece)) << arguments << ": " << ran.err;
      EXPECT_FALSE(fs::exists(folder.path / name)) << arguments;
    }
  }
  Json answer(const std::string& arguments) const {
    const Ran ran = run(arguments + " --json");
    EXPECT_EQ(ran.status, 0) << ran.err;
    return Json::parse(ran.out);
  }
};

}  // namespace undercut::host
