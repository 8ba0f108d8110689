// The names that the built shared library shows.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>

namespace {

// The names between "global:" and "local:" of the linker's list.
std::set<std::string> names_InMap() {
  std::ostringstream text;
  text << std::ifstream(UNDERCUT_SOURCE "/src/interface/exports.map").rdbuf();
  std::string list = text.str();
  list = list.substr(0, list.find("local:"));
  list = list.substr(std::min(list.size(), list.find("global:")));
  std::set<std::string> names;
  std::string name;
  for (const char c : list) {
    if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
      name += c;
      continue;
    }
    if (c == ';') names.insert(name);
    name.clear();
  }
  return names;
}

std::set<std::string> names_InLibrary() {
  const std::string command = UNDERCUT_NM " -D --defined-only " UNDERCUT_LIBRARY;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::set<std::string> names;
  char address[64], kind[8], name[512];
  while (pipe && std::fscanf(pipe.get(), "%63s %7s %511s", address, kind, name) == 3) {
    names.insert(name);
  }
  return names;
}

TEST(ExportedNames, AreTheListAndNothingElse) { EXPECT_EQ(names_InLibrary(), names_InMap()); }

TEST(ExportedNames, Are120) { EXPECT_EQ(names_InLibrary().size(), 120u); }

TEST(ExportedNames, HoldASetterForEachParameter) {
  const std::set<std::string> names = names_InLibrary();
  int setters = 0;
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  EXPECT_EQ(names.count(#setter), 1u) << #setter;                               \
  ++setters;
#include <undercut/interface/setters.def>
#undef UNDERCUT_SETTER
  EXPECT_EQ(setters, 87);
}

}  // namespace
