// What the tests of the writers share: a folder of their own, what lies in it, and small inputs.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/records.h"

namespace undercut {

// Runs each test in a fresh, empty current folder.
class InFolder : public testing::Test {
 protected:
  void SetUp() override {
    before_ = std::filesystem::current_path();
    std::string name = (std::filesystem::temp_directory_path() / "undercut-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    std::filesystem::current_path(folder_);
  }
  void TearDown() override {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }

  std::string folder() const { return folder_.string(); }
  static bool exists(const std::string& path) { return std::filesystem::exists(path); }
  static std::string read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return "(no file " + path + ")";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }
  // The lines of a file from the given one on, counted from 0.
  static std::string read_From(const std::string& path, int line) {
    const std::string text = read(path);
    size_t at = 0;
    while (line-- > 0) at = text.find('\n', at) + 1;
    return text.substr(at);
  }
  static size_t count_Files() {
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(".")) ++count;
    return count;
  }

 private:
  std::filesystem::path before_, folder_;
};

// A path whose folder does not exist.
inline constexpr const char* kUnwritable = "missing/folder/file";

// Owners of the arrays behind the plain views.
template <typename T>
struct Array {
  std::vector<T> items;
  Array(std::initializer_list<T> list) : items(list) {}
  explicit Array(std::vector<T> list) : items(std::move(list)) {}
  TArr<T> arr() { return {items.data(), static_cast<uint32_t>(items.size())}; }
  TLst<T> lst() {
    const auto count = static_cast<uint32_t>(items.size());
    return {items.data(), count, count};
  }
};

struct Lines {
  std::vector<std::vector<T3DVEC>> items;
  std::vector<TArr<T3DVEC>> views;
  Lines(std::initializer_list<std::vector<T3DVEC>> list) : items(list) {
    for (auto& line : items) views.push_back({line.data(), static_cast<uint32_t>(line.size())});
  }
  TArr<TArr<T3DVEC>> arr() { return {views.data(), static_cast<uint32_t>(views.size())}; }
};

struct Lists {
  std::vector<std::vector<uint32_t>> items;
  std::vector<TLst<uint32_t>> views;
  Lists(std::initializer_list<std::vector<uint32_t>> list)
      : Lists(std::vector<std::vector<uint32_t>>(list)) {}
  explicit Lists(std::vector<std::vector<uint32_t>> list) : items(std::move(list)) {
    for (auto& ids : items) {
      const auto count = static_cast<uint32_t>(ids.size());
      views.push_back({ids.data(), count, count});
    }
  }
  TLst<TLst<uint32_t>> lst() {
    const auto count = static_cast<uint32_t>(views.size());
    return {views.data(), count, count};
  }
};

struct Mesh {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  T3DMSH view() {
    return {vtx.data(), static_cast<uint32_t>(vtx.size()), tri.data(),
            static_cast<uint32_t>(tri.size())};
  }
};

// A unit square of two triangles that share the edge 0 2.
inline Mesh make_Square() {
  return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}}};
}

// `count` triangles over the three corners of one.
inline Mesh make_Stack(uint32_t count) {
  return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, std::vector<T3DTRI>(count, T3DTRI{0, 1, 2})};
}

// A frame at (1, 2, 3), a quarter turn round Z: its X is the world's Y.
inline constexpr T3DFRM kTurned = {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {1, 2, 3}};

}  // namespace undercut
