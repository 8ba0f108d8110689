// A fixture for the stage files of get_Dcm: calls over a small body, and the files they leave.
#pragma once

#include "tests/boundary/dcm_request.h"
#include "tests/support/patterns.h"

using undercut::tests::Groups;
using undercut::tests::Pattern;

using Names = std::set<std::string>;

inline std::string numbered(const char* format, int a, int b = 0, int c = 0) {
  char text[64];
  std::snprintf(text, sizeof text, format, a, b, c);
  return text;
}

// The bytes of every result, in the order of the lists.
inline std::string bytes_Of(const TUcRes& res) {
  std::string all;
  const auto put = [&](const void* data, size_t size) {
    if (size != 0) all.append(static_cast<const char*>(data), size);
  };
  for (uint32_t i = 0; i < res.uca_t.count; ++i) {
    const TLstLstU32& regions = res.uca_t.data[i];
    for (uint32_t k = 0; k < regions.count; ++k)
      put(regions.data[k].data, sizeof(uint32_t) * regions.data[k].count);
    put(res.uca_a.data[i].data, sizeof(T3DRAY) * res.uca_a.data[i].count);
    put(res.uca_f.data[i].data, sizeof(T3DFRM) * res.uca_f.data[i].count);
  }
  put(res.sts.data, sizeof(TUcSts) * res.sts.count);
  return all;
}

// Calls with stage files, and what lies in the current folder after them.
class StageFiles : public Decomposition {
 protected:
  // One region of interest with a rim: the first half of a ring.
  static void add_Half(TDcmRequest& r) { r.add(0, r.triangles() / 2); }
  static bodies::TBody body() { return bodies::make_Ring(800); }

  // Files below the current folder, as "run/02-h2o/00-00-02-H2O.ply".
  static Names list_Files() { return list(true); }
  static Names list_Folders() { return list(false); }
  static Names list(bool files) {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("."))
      if (entry.is_directory() != files) names.insert(entry.path().string().substr(2));
    return names;
  }
  static void clear() {
    for (const auto& entry : std::filesystem::directory_iterator("."))
      std::filesystem::remove_all(entry.path());
  }
  static std::vector<std::string> lines_Of(const std::string& path) {
    std::istringstream text(read(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }
  static std::vector<uint32_t> indices_Of(const std::string& path) {
    std::vector<uint32_t> indices;
    for (const std::string& line : lines_Of(path))
      indices.push_back(static_cast<uint32_t>(std::stoul(line)));
    return indices;
  }
  // Calls, tells the number of passes.
  static int passes_Of(TDcmRequest& r) { return count(console_Of(r), "07. Fwd."); }
  // Calls over the half ring; the files that lie there then.
  static Names files_Of() {
    TDcmRequest r(body());
    add_Half(r);
    EXPECT_EQ(r.call(), 0);
    return list_Files();
  }
  // The colour of each face of a PLY file with colours per face.
  static std::vector<std::string> colours_Of(const std::string& path, uint32_t faces) {
    const std::vector<std::string> lines = lines_Of(path);
    std::vector<std::string> colours;
    if (lines.size() < faces) return colours;
    for (size_t i = lines.size() - faces; i < lines.size(); ++i) {
      std::istringstream line(lines[i]);
      int n, a, b, c, red, green, blue;
      line >> n >> a >> b >> c >> red >> green >> blue;
      colours.push_back(numbered("%d,%d,%d", red, green, blue));
    }
    return colours;
  }
};
