// The end files of get_Dcm: axes, frames, latitudes, regions and free triangles of a finished
// region of interest.
#include <algorithm>

#include "tests/boundary/stage_folder.h"

namespace {

// ---- End files ---------------------------------------------------------------------------------

class EndFiles : public StageFiles {
 protected:
  struct TRegion {
    T3DVEC centre, axis;
    T3DFRM frame;
  };
  // What a call gave for its first region of interest.
  static std::vector<TRegion> regions_Of(const TDcmRequest& r) {
    std::vector<TRegion> regions;
    for (uint32_t k = 0; k < r.res.uca_a.data[0].count; ++k)
      regions.push_back({r.res.uca_a.data[0].data[k].org, -r.res.uca_a.data[0].data[k].dir,
                         r.res.uca_f.data[0].data[k]});
    return regions;
  }
  static T3DVEC point_Of(const std::string& line) {
    std::istringstream text(line);
    T3DVEC p = {0, 0, 0};
    text >> p.x >> p.y >> p.z;
    return p;
  }
};

TEST_F(EndFiles, OfTheAxes_HaveABlockForEachRegion_AsLongAsLLen) {
  log("end", "");
  dcm_end("axi");
  defaults::set(dcm_len, 25.0);
  defaults::set(dcm_max, 1);
  TDcmRequest r(body());
  add_Half(r);
  ASSERT_EQ(r.call(), 0);
  const Names files = list_Files();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(Pattern("run/13-end/00-0[0-2]-11-Axi\\.pol").match(*files.begin()));
  const auto lines = lines_Of(*files.begin());
  const auto regions = regions_Of(r);
  ASSERT_GT(regions.size(), 0u);
  ASSERT_EQ(lines.size(), 4 * regions.size());
  std::set<size_t> found;
  for (size_t i = 0; i < lines.size(); i += 4) {
    const std::string tag = lines[i].substr(1, lines[i].size() - 2);
    EXPECT_TRUE(Pattern("axi-[1-9][0-9]*").match(tag)) << tag;
    EXPECT_EQ(lines[i], "<" + tag + ">");
    EXPECT_EQ(lines[i + 3], "</" + tag + ">");
    const T3DVEC p = point_Of(lines[i + 1]), q = point_Of(lines[i + 2]);
    for (size_t k = 0; k < regions.size(); ++k) {
      const T3DVEC off = p - regions[k].centre, along = q - p - 25.0 * regions[k].axis;
      // The start lies on the line of the axis.
      if (undercut::len(along) < 1e-5 &&
          undercut::len(off - undercut::dot(off, regions[k].axis) * regions[k].axis) < 1e-5)
        found.insert(k);
    }
  }
  EXPECT_EQ(found.size(), regions.size());
}

TEST_F(EndFiles, OfTheFrames_AreMatrices_WithTheAxesInColumns) {
  log("end", "");
  dcm_end("trf");
  TDcmRequest r(body());
  add_Half(r);
  ASSERT_EQ(r.call(), 0);
  std::multiset<std::string> expected, found;
  for (const TRegion& region : regions_Of(r)) {
    const T3DFRM& f = region.frame;
    char text[400];
    std::snprintf(text, sizeof text,
                  "%+14.8le %+14.8le %+14.8le %+14.8le\n%+14.8le %+14.8le %+14.8le %+14.8le\n"
                  "%+14.8le %+14.8le %+14.8le %+14.8le\n",
                  f.x.x, f.y.x, f.z.x, f.org.x, f.x.y, f.y.y, f.z.y, f.org.y, f.x.z, f.y.z, f.z.z,
                  f.org.z);
    expected.insert(std::string(text) +
                    "+0.00000000e+00 +0.00000000e+00 +0.00000000e+00 +1.00000000e+00\n");
  }
  for (const std::string& file : list_Files()) {
    EXPECT_TRUE(Pattern("run/13-end/00-[0-9]{2}-12-Lcs-[1-9][0-9]*\\.txt").match(file)) << file;
    found.insert(read(file));
  }
  EXPECT_GT(found.size(), 0u);
  EXPECT_EQ(found, expected);
}

TEST_F(EndFiles, OfTheLatitudes_TellTheAngleFromTheNearerPole) {
  log("end", "");
  dcm_end("win");
  defaults::set(dcm_Cnt, 8);
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_EQ(r.call(), 0);
  const Names files = list_Files();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(Pattern("run/13-end/00-[0-9]{2}-13-Win\\.txt").match(*files.begin()));
  std::multiset<std::string> expected, found;
  for (const TRegion& region : regions_Of(r)) {
    const double polar = polar_Of(region.axis);
    char text[80];
    std::snprintf(text, sizeof text, "%s latitude := %+5.2lf [deg]",
                  180 - polar > polar ? "north" : "south", std::min(polar, 180 - polar));
    expected.insert(text);
  }
  const Pattern form("(north|south) latitude \\([0-9]{4}\\) := [+ ][0-9.]+ \\[deg\\]");
  for (const std::string& line : lines_Of(*files.begin())) {
    EXPECT_TRUE(form.match(line)) << line;
    found.insert(line.substr(0, 15) + line.substr(22));  // without the region
  }
  EXPECT_EQ(found, expected);
  EXPECT_GT(count(read(*files.begin()), "north"), 0);
  EXPECT_GT(count(read(*files.begin()), "south"), 0);
}

TEST_F(EndFiles, OfTheMap_ComeInEachType_AndOfNoOther) {
  log("end", "ply stl txt sef pol");
  dcm_end("uda");
  TDcmRequest r(body());
  add_Half(r);
  ASSERT_EQ(r.call(), 0);
  std::set<std::string> types;
  const Pattern form("run/13-end/00-[0-9]{2}-14-UcA(\\.ply|\\.stl|-[0-9]+\\.(txt|sef|pol))");
  std::multiset<uint32_t> listed;
  for (const std::string& file : list_Files()) {
    EXPECT_TRUE(form.match(file)) << file;
    const std::string type = file.substr(file.size() - 3);
    types.insert(type);
    if (type != "txt") continue;
    const auto held = indices_Of(file);
    listed.insert(held.begin(), held.end());
  }
  EXPECT_EQ(types, (std::set<std::string>{"ply", "stl", "txt", "sef", "pol"}));
  EXPECT_EQ(listed.size(), r.triangles() / 2) << "each triangle once, the free ones too";
}

// Two strips of the ring that do not touch stay free, since no region survives.
void add_TwoPatches(TDcmRequest& r) {
  r.add(0, 40);
  r.add(400, 430);
  r.lists[0].insert(r.lists[0].end(), r.lists[1].begin(), r.lists[1].end());
  r.lists.pop_back();
  defaults::set(dcm_quo, 1e9);
}

TEST_F(EndFiles, OfTheFreeTriangles_HaveAListForEachPiece) {
  log("end", "ply stl txt sef pol");
  dcm_end("h2o");
  TDcmRequest r(body());
  add_TwoPatches(r);
  ASSERT_EQ(r.call(), 0);
  const Names files = list_Files();
  ASSERT_EQ(files.size(), 8u);
  const std::string stem = files.begin()->substr(0, std::string("run/13-end/00-00-15-H2O").size());
  EXPECT_EQ(files,
            (Names{stem + ".ply", stem + ".stl", stem + "-0.txt", stem + "-1.txt",
                   stem + "-000.sef", stem + "-001.sef", stem + "-000.pol", stem + "-001.pol"}));
  std::multiset<size_t> sizes = {indices_Of(stem + "-0.txt").size(),
                                 indices_Of(stem + "-1.txt").size()};
  EXPECT_EQ(sizes, (std::multiset<size_t>{30, 40}));
  const std::string stl = read(stem + ".stl");
  const uint32_t first = indices_Of(stem + "-0.txt")[0], second = indices_Of(stem + "-1.txt")[0];
  EXPECT_EQ(stl[84 + 50 * first + 48], 1);
  EXPECT_EQ(stl[84 + 50 * second + 48], 2);
  EXPECT_EQ(stl[84 + 50 * 300 + 48], 0);
}

TEST_F(EndFiles, OfTheFreeTriangles_AreNone_ForOnePiece) {
  log("end", "ply stl txt sef pol");
  dcm_end("h2o");
  defaults::set(dcm_quo, 1e9);
  TDcmRequest r(body());
  r.add(0, 40);
  ASSERT_EQ(r.call(), 0);
  EXPECT_TRUE(list_Files().empty());
  EXPECT_EQ(list_Folders(), (Names{"run", "run/13-end"}));
}

TEST_F(EndFiles, CarryThePassNumberThatTheLoopEndedWith) {
  log("end", "");
  dcm_end("win");
  defaults::set(dcm_max, 1);
  defaults::set(dcm_Cnt, 1);
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_EQ(passes_Of(r), 2);
  ASSERT_GT(r.rois[0].count, 0u);
  EXPECT_EQ(list_Files(), Names{"run/13-end/00-02-13-Win.txt"}) << "both passes took triangles";
}

TEST_F(EndFiles, AreNone_WithoutTheStageWord) {
  log("com", "");
  dcm_end("axi trf win uda h2o");
  EXPECT_TRUE(files_Of().empty());
  EXPECT_FALSE(exists("run/13-end"));
}

}  // namespace
