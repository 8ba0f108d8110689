// The stage files of get_Dcm: which word brings which file, in which folder, under which name, and
// what stands in it.
#include <algorithm>
#include <map>

#include "tests/boundary/stage_folder.h"

namespace {

// ---- Which word brings which file --------------------------------------------------------------

TEST_F(StageFiles, AreNone_WithoutTheMasterSwitch) {
  log("cri ini fwd del rnk bwd com end flt", "ply stl txt sef pol");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  dcm_end("axi trf win uda h2o");
  defaults::set(dcm_mod, 1u);
  defaults::set(dcm_log, 0);
  EXPECT_TRUE(files_Of().empty());
  EXPECT_TRUE(list_Folders().empty());
}

TEST_F(StageFiles, AreNone_WithoutAWord) {
  log("", "ply stl txt sef pol");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  dcm_end("axi trf win uda h2o");
  defaults::set(dcm_mod, 1u);
  EXPECT_TRUE(files_Of().empty());
  EXPECT_TRUE(list_Folders().empty());
}

TEST_F(StageFiles, CarryTheFolderAndNameOfTheirStage_OnceInEachPass) {
  const struct {
    const char *word, *folder, *name;
    bool once;  // for a region of interest, not for a pass
  } kStages[] = {
      {"ini", "02-h2o", "02-H2O", true},  {"fwd", "03-fwd", "03-Fwd", false},
      {"del", "04-del", "04-Del", false}, {"rnk", "05-rnk", "05-Rnk", false},
      {"com", "08-com", "08-Com", false},
  };
  defaults::set(dcm_Cnt, 1);  // several passes
  for (const auto& stage : kStages) {
    clear();
    log(stage.word, "ply");
    TDcmRequest r(body());
    add_Half(r);
    const int run = passes_Of(r), passes = stage.once ? 1 : run;
    Names expected;
    for (int p = 0; p < passes; ++p)
      expected.insert("run/" + std::string(stage.folder) + numbered("/%02d-%02d-", 0, p) +
                      stage.name + ".ply");
    EXPECT_GE(run, 2);
    EXPECT_EQ(list_Files(), expected) << stage.word;
    EXPECT_EQ(list_Folders(), (Names{"run", "run/" + std::string(stage.folder)}));
  }
}

TEST_F(StageFiles, OfBalancing_LandInTheCurrentFolder_ThoughTheirFolderIsMade) {
  log("bwd", "ply txt");
  TDcmRequest r(body());
  add_Half(r);
  const int passes = passes_Of(r);
  EXPECT_EQ(list_Folders(), (Names{"run", "run/06-bwd"}));
  for (int p = 0; p < passes; ++p) {
    EXPECT_TRUE(exists(numbered("%02d-%02d-06-Bwd.ply", 0, p)));
    EXPECT_TRUE(exists(numbered("%02d-%02d-06-Bwd-0.txt", 0, p)) ||
                exists(numbered("%02d-%02d-06-Bwd-1.txt", 0, p)));
  }
  for (const std::string& name : list_Files()) EXPECT_EQ(name.find('/'), std::string::npos) << name;
}

TEST_F(StageFiles, OfTheSeeds_ShowEachScore_AndWhiteOutside) {
  log("cri", "");
  TDcmRequest r(body());
  add_Half(r);
  ASSERT_EQ(r.call(), 0);
  ASSERT_EQ(list_Files(), Names{"run/01-cri/00-00-01-Cri.ply"}) << "PLY, whatever l_uda says";
  const auto colours = colours_Of("run/01-cri/00-00-01-Cri.ply", r.triangles());
  ASSERT_EQ(colours.size(), r.triangles());
  uint32_t coloured = 0;
  for (uint32_t t = 0; t < r.triangles(); ++t) {
    const bool is_White = colours[t] == "255,255,255";
    EXPECT_TRUE(is_White || t < r.triangles() / 2) << t;
    coloured += !is_White;
  }
  EXPECT_GT(coloured, r.triangles() / 4);
}

TEST_F(StageFiles, AreNone_ForSubStepsThatAreSwitchedOff) {
  log("clo fil smo", "ply stl txt sef pol");
  EXPECT_TRUE(files_Of().empty());
  EXPECT_TRUE(list_Folders().empty());
}

TEST_F(StageFiles, OfTheRepair_AreNone_WithoutARepair) {
  log("flt", "stl");
  dcm_srt("area");  // both attempts fail
  TDcmRequest r(body());
  add_Half(r);
  EXPECT_EQ(r.call(), 1);
  EXPECT_TRUE(list_Files().empty());
}

TEST_F(StageFiles, OfTheRepair_CarryTheNumberOfTheRegionOfInterest_AndNoPass) {
  log("flt", "");
  dcm_srt("area");
  defaults::set(dcm_chk, 1);
  TDcmRequest r(body());
  r.add_Halves();
  EXPECT_EQ(r.call(), 1);
  EXPECT_EQ(list_Files(), (Names{"run/02-roi/00-prv.stl", "run/02-roi/00-nxt.stl",
                                 "run/02-roi/01-prv.stl", "run/02-roi/01-nxt.stl"}));
}

TEST_F(StageFiles, AreChosenByWordsJoinedInAnyWay) {
  log("ini fwd", "ply");
  const Names expected = files_Of();
  ASSERT_GE(expected.size(), 2u);
  for (const char* words : {"inifwd", "fwdini", "fwd,ini", "xxfwd;;ini__", "ini\tfwd ini"}) {
    clear();
    log(words, "ply");
    EXPECT_EQ(files_Of(), expected) << words;
  }
}

TEST_F(StageFiles, BeginWithTheNumberOfTheRegionOfInterest) {
  log("ini", "ply");
  TDcmRequest r(body());
  r.add(0, r.triangles() / 2);
  r.lists.emplace_back();
  r.add(r.triangles() / 2, r.triangles());
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(list_Files(), (Names{"run/02-h2o/00-00-02-H2O.ply", "run/02-h2o/02-00-02-H2O.ply"}));
}

// ---- Types -------------------------------------------------------------------------------------

TEST_F(StageFiles, AreNone_WithoutAType_ThoughTheFolderIsMade) {
  log("ini", "obj");
  EXPECT_TRUE(files_Of().empty());
  EXPECT_EQ(list_Folders(), (Names{"run", "run/02-h2o"}));
}

TEST_F(StageFiles, OfEachType_HaveTheirNames) {
  const std::string stem = "run/02-h2o/00-00-02-H2O";
  const std::pair<const char*, std::string> kTypes[] = {{"ply", stem + ".ply"},
                                                        {"stl", stem + ".stl"},
                                                        {"txt", stem + "-0.txt"},
                                                        {"sef", stem + "-000.sef"},
                                                        {"pol", stem + "-000.pol"}};
  Names all;
  for (const auto& [type, name] : kTypes) {
    clear();
    log("ini", type);
    EXPECT_EQ(files_Of(), Names{name}) << "region 0 holds all";
    all.insert(name);
  }
  clear();
  log("ini", "plystltxtsefpol");
  EXPECT_EQ(files_Of(), all);
}

TEST_F(StageFiles, OfTheMap_ShowEachRegion_WithItsNumber) {
  log("fwd", "ply stl txt sef pol");
  defaults::set(dcm_max, 1);
  TDcmRequest r(body());
  add_Half(r);
  ASSERT_EQ(r.call(), 0);
  const std::string stem = "run/03-fwd/00-00-03-Fwd";

  std::map<uint32_t, int> region_of;
  const Pattern list(stem + "-([0-9]+)\\.txt");
  int regions = 0;
  for (const std::string& name : list_Files()) {
    Groups match;
    if (!list.match(name, match)) continue;
    const int id = std::stoi(match[1]);
    ++regions;
    for (const uint32_t t : indices_Of(name)) EXPECT_TRUE(region_of.emplace(t, id).second) << t;
    EXPECT_TRUE(exists(stem + numbered("-%03d.sef", id))) << id;
    EXPECT_TRUE(exists(stem + numbered("-%03d.pol", id))) << id;
  }
  EXPECT_GE(regions, 2);
  ASSERT_EQ(region_of.size(), r.triangles() / 2) << "the free triangles too";

  const std::string stl = read(stem + ".stl");
  ASSERT_EQ(stl.size(), 84u + 50 * r.triangles());
  const auto colours = colours_Of(stem + ".ply", r.triangles());
  ASSERT_EQ(colours.size(), r.triangles());
  const char* const kPalette[] = {"255,255,255", "192,255,255", "255,0,0",
                                  "0,255,0",     "0,0,255",     "255,255,0"};
  for (uint32_t t = 0; t < r.triangles(); ++t) {
    const auto low = static_cast<uint8_t>(stl[84 + 50 * t + 48]);
    const auto high = static_cast<uint8_t>(stl[84 + 50 * t + 49]);
    const int number = region_of.count(t) ? region_of[t] + 1 : 0;
    ASSERT_EQ(low + 256 * high, number) << t;
    if (number >= 6) continue;
    ASSERT_EQ(colours[t], kPalette[number]) << t;
  }
}

// ---- Step files --------------------------------------------------------------------------------

TEST_F(StageFiles, OfGrowthSteps_ShowTheMap_WheneverTheStepIsAMultiple) {
  log("fwd", "stl");
  dcm_fwd("map");
  const auto steps = [](uint32_t modulus) {
    clear();
    defaults::set(dcm_mod, modulus);
    std::set<int> found;
    const Pattern name("run/03-fwd/map/00-00-03-([0-9]{5})-Fwd\\.stl");
    Groups match;
    for (const std::string& file : files_Of())
      if (name.match(file, match)) found.insert(std::stoi(match[1]));
    return found;
  };
  const std::set<int> all = steps(1);
  ASSERT_GT(all.size(), 50u);
  EXPECT_EQ(*all.begin(), 0);
  EXPECT_EQ(*all.rbegin(), static_cast<int>(all.size()) - 1) << "a file for each step";
  std::set<int> seventh;
  for (const int step : all)
    if (step % 7 == 0) seventh.insert(step);
  EXPECT_EQ(steps(7), seventh);
}

TEST_F(StageFiles, OfSteps_AreNone_WithAModulusOfZero) {
  log("fwd bwd", "stl");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  defaults::set(dcm_mod, 0u);
  for (const std::string& name : files_Of()) {
    EXPECT_EQ(name.find("map"), std::string::npos) << name;
    EXPECT_EQ(name.find("lnd"), std::string::npos) << name;
  }
  EXPECT_EQ(list_Folders(), (Names{"run", "run/03-fwd", "run/06-bwd"}));
}

TEST_F(StageFiles, OfSteps_NeedTheWordOfTheirStage) {
  log("ini", "stl");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  defaults::set(dcm_mod, 1u);
  EXPECT_EQ(files_Of(), Names{"run/02-h2o/00-00-02-H2O.stl"});
}

TEST_F(StageFiles, OfGrowthSteps_ShowTheGainingRegionAlone) {
  log("fwd", "ply stl txt sef pol");
  dcm_fwd("lnd");
  defaults::set(dcm_mod, 10u);
  const Names files = files_Of();
  const Pattern name(
      "(run/03-fwd/lnd/[0-9]{2}-[0-9]{2}-03-\\[([0-9]+),([0-9]+),([0-9]+)\\]-Fwd)\\.txt");
  Groups match;
  int steps = 0;
  for (const std::string& file : files) {
    if (!name.match(file, match)) continue;
    ++steps;
    EXPECT_EQ(std::stoi(match[2]) % 10, 0);
    EXPECT_GT(std::stoi(match[3]), 0) << "region 0 gains nothing";
    const std::vector<uint32_t> held = indices_Of(file);
    ASSERT_GE(held.size(), 2u);
    EXPECT_EQ(held[0], std::stoul(match[4])) << "the triangle that was taken comes first";
    EXPECT_EQ(std::filesystem::file_size(match[1] + ".stl"), 84u + 50 * held.size());
    EXPECT_TRUE(files.count(match[1] + ".ply"));
    EXPECT_TRUE(files.count(match[1] + ".sef"));
    EXPECT_TRUE(files.count(match[1] + ".pol"));
  }
  EXPECT_GT(steps, 5);
  EXPECT_FALSE(exists("run/03-fwd/map"));
}

TEST_F(StageFiles, OfBalancingSteps_ShowTheLosingAndTheGainingRegion) {
  log("bwd", "txt");
  dcm_bwd("map lnd");
  defaults::set(dcm_mod, 1u);
  const Names files = files_Of();
  const Pattern name(
      "(run/06-bwd/lnd/([0-9]{2}-[0-9]{2}-06-)\\[([0-9]+),([0-9]+),([0-9]+)\\]-Bwd)\\(Y\\)\\.txt");
  Groups match;
  std::set<std::string> maps;
  const Pattern loser("run/06-bwd/lnd/(.*)\\[([0-9]+),([0-9]+),([0-9]+)\\]-Bwd\\(X\\)\\.txt");
  const Pattern whole("run/06-bwd/map/(.*)([0-9]{5})-Bwd-[0-9]+\\.txt");
  std::map<std::string, std::string> loser_of;
  for (const std::string& file : files) {
    if (loser.match(file, match)) loser_of[match[1] + std::to_string(std::stoi(match[2]))] = file;
    if (whole.match(file, match)) maps.insert(match[1] + std::to_string(std::stoi(match[2])));
  }
  int steps = 0, pairs = 0;
  for (const std::string& file : files) {
    if (!name.match(file, match)) continue;
    ++steps;
    const std::string step = match[2] + match[3];
    const auto taken = static_cast<uint32_t>(std::stoul(match[5]));
    const std::vector<uint32_t> held = indices_Of(file);
    ASSERT_FALSE(held.empty());
    EXPECT_EQ(held[0], taken);
    EXPECT_TRUE(maps.count(step)) << step;
    if (!loser_of.count(step)) continue;  // the move emptied the loser
    ++pairs;
    const std::vector<uint32_t> left = indices_Of(loser_of[step]);
    EXPECT_EQ(std::count(left.begin(), left.end(), taken), 0) << step;
  }
  EXPECT_GT(steps, 0);
  EXPECT_GT(pairs, 0);
  EXPECT_EQ(maps.size(), static_cast<size_t>(steps));
}

// ---- Geometry ----------------------------------------------------------------------------------

TEST_F(StageFiles, OfGeometry_HangOnTheStemOfTheStep) {
  const std::pair<const char*, const char*> kWords[] = {
      {"cen", "-oCen.asc"}, {"pcs", "-pLcs.pol"}, {"pml", "-pNml.pol"}, {"tcs", "-tLcs.pol"},
      {"tml", "-tNml.pol"}, {"fsp", "-tFsp.pol"}, {"elp", "-tElp.pol"}};
  log("fwd", "");
  dcm_fwd("map lnd");
  dcm_lcs("pol");
  defaults::set(dcm_mod, 40u);
  for (const auto& [word, ending] : kWords) {
    clear();
    dcm_geo(word);
    int maps = 0, alone = 0;
    const Pattern map("run/03-fwd/map/[0-9]{2}-[0-9]{2}-03-[0-9]{5}-Fwd" + std::string(ending));
    const Pattern lnd("run/03-fwd/lnd/[0-9]{2}-[0-9]{2}-03-\\[[0-9,]+\\]-Fwd" +
                      std::string(ending));
    for (const std::string& file : files_Of()) {
      const bool is_Map = map.match(file), is_Lnd = lnd.match(file);
      EXPECT_TRUE(is_Map || is_Lnd) << word << ": " << file;
      maps += is_Map;
      alone += is_Lnd;
    }
    EXPECT_GT(alone, 0) << word;
    EXPECT_EQ(maps, alone) << word;
  }
}

TEST_F(StageFiles, OfFrames_TakeTheirFormFromLLcs_ForARegionAlone) {
  log("fwd", "");
  dcm_geo("pcs tcs");
  defaults::set(dcm_mod, 1000000u);  // the first step of each pass
  const auto endings = [&](const char* where, const char* forms) {
    clear();
    dcm_fwd(where);
    dcm_lcs(forms);
    Names found;
    for (const std::string& file : files_Of())
      if (file.find("/00-00-") != std::string::npos) found.insert(file.substr(file.size() - 9));
    return found;
  };
  EXPECT_EQ(endings("lnd", ""), Names{});
  EXPECT_EQ(endings("lnd", "pol"), (Names{"-pLcs.pol", "-tLcs.pol"}));
  EXPECT_EQ(endings("lnd", "trf"), (Names{"-pLcs.trf", "-tLcs.trf"}));
  EXPECT_EQ(endings("lnd", "trfpol"), (Names{"-pLcs.pol", "-tLcs.pol", "-pLcs.trf", "-tLcs.trf"}));
  EXPECT_EQ(endings("map", "trf"), (Names{"-pLcs.pol", "-tLcs.pol"})) << "always .pol";
}

TEST_F(StageFiles, OfGeometry_HoldAnEntryForEachRegion) {
  log("fwd", "txt");
  dcm_fwd("map");
  dcm_geo("cen pcs pml fsp elp");
  defaults::set(dcm_mod, 1u);
  const Names files = files_Of();
  std::string stem;  // the last step of the first pass
  for (const std::string& file : files)
    if (file.find("map/00-00") != std::string::npos && file.find("-oCen") != std::string::npos)
      stem = file.substr(0, file.size() - 9);
  ASSERT_FALSE(stem.empty());
  std::set<int> ids;
  Groups match;
  const Pattern list(".*/00-00-03-[0-9]{5}-Fwd-([0-9]+)\\.txt");
  for (const std::string& file : files)
    if (file.rfind(stem + "-", 0) == 0 && list.match(file, match)) ids.insert(std::stoi(match[1]));
  ids.erase(0);
  ASSERT_GE(ids.size(), 2u);
  EXPECT_EQ(lines_Of(stem + "-oCen.asc").size(), ids.size());
  for (const int id : ids) {
    const std::string tag = numbered("<lnd(%03d)>", id);
    EXPECT_EQ(count(read(stem + "-pLcs.pol"), tag), 3) << "three axes";
    EXPECT_EQ(count(read(stem + "-pNml.pol"), tag), 1);
    EXPECT_GE(count(read(stem + "-tFsp.pol"), tag), 1);
    EXPECT_LE(count(read(stem + "-tElp.pol"), tag), 1);
  }
}

// ---- Folders -----------------------------------------------------------------------------------

TEST_F(StageFiles, LieUnderTheBaseFolderAndTheRunFolder) {
  log("ini", "ply");
  dcm_pth("one/two");
  TDcmRequest r(body());
  add_Half(r);
  std::strcpy(r.req.dir, "base/of all");
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(list_Files(), Names{"base/of all/one/two/02-h2o/00-00-02-H2O.ply"});
}

TEST_F(StageFiles, LieUnderAnAbsoluteBaseFolder) {
  log("ini", "ply");
  TDcmRequest r(body());
  add_Half(r);
  const std::string base = folder() + "/absolute";
  ASSERT_LT(base.size(), sizeof r.req.dir);
  std::strcpy(r.req.dir, base.c_str());
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(list_Files(), Names{"absolute/run/02-h2o/00-00-02-H2O.ply"});
}

TEST_F(StageFiles, LieUnderTheCurrentFolder_WithoutABaseOrARunFolder) {
  log("ini", "ply");
  dcm_pth("");
  EXPECT_EQ(files_Of(), Names{"02-h2o/00-00-02-H2O.ply"});
}

// A relative base folder of `length` characters.
void set_Base(TDcmRequest& r, size_t length) {
  std::string text;
  while (text.size() < length) text += text.size() % 10 == 9 ? '/' : 'd';
  if (text.back() == '/') text.back() = 'd';
  std::strcpy(r.req.dir, text.c_str());
}

TEST_F(StageFiles, AreNone_WhereTheFolderDoesNotFitItsBuffer_AndNothingElseChanges) {
  TDcmRequest plain(body()), r(body());
  add_Half(plain);
  add_Half(r);
  ASSERT_EQ(plain.call(), 0);
  log("cri ini fwd del rnk bwd com end flt", "ply");
  dcm_end("axi trf win uda h2o");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  set_Base(r, 255);
  EXPECT_EQ(r.call(), 0);
  EXPECT_EQ(bytes_Of(r.res), bytes_Of(plain.res));
  EXPECT_TRUE(list_Files().empty());
  EXPECT_TRUE(list_Folders().empty());
}

TEST_F(StageFiles, FitUpTo255CharactersOfFolder) {
  log("fwd", "txt");
  dcm_fwd("map");
  defaults::set(dcm_max, 1);
  const size_t rest = std::string("/run/03-fwd/").size();
  for (const size_t length : {255 - rest, 256 - rest}) {
    clear();
    TDcmRequest r(body());
    add_Half(r);
    set_Base(r, length);
    ASSERT_EQ(r.call(), 0);
    EXPECT_EQ(list_Files().empty(), length + rest > 255);
    for (const std::string& name : list_Files())
      EXPECT_EQ(name.find("/map/"), std::string::npos) << "the longer folder of steps does not fit";
  }
}

// ---- No effect on results ----------------------------------------------------------------------

TEST_F(StageFiles, ChangeNoResult) {
  TDcmRequest plain(body()), r(body());
  plain.add_Halves();
  r.add_Halves();
  const int32_t status = plain.call();
  ASSERT_GT(plain.res.uca_t.data[0].count, 1u);
  log("cri ini fwd del rnk bwd com end flt", "ply stl txt sef pol");
  dcm_fwd("map lnd");
  dcm_bwd("map lnd");
  dcm_end("axi trf win uda h2o");
  dcm_geo("cen pcs pml tcs tml fsp elp");
  dcm_lcs("pol trf");
  defaults::set(dcm_mod, 5u);
  EXPECT_EQ(r.call(), status);
  EXPECT_EQ(bytes_Of(r.res), bytes_Of(plain.res));
  EXPECT_EQ(r.lists, plain.lists) << "what stayed free";
  EXPECT_GT(list_Files().size(), 500u);
}

TEST_F(StageFiles, ThatCannotBeWritten_ChangeNoResult) {
  TDcmRequest plain(body()), r(body());
  add_Half(plain);
  add_Half(r);
  ASSERT_EQ(plain.call(), 0);
  std::ofstream("run") << "in the way of the folder";
  log("cri ini fwd del rnk bwd com end", "ply stl txt sef pol");
  dcm_fwd("map lnd");
  dcm_end("uda h2o");
  dcm_geo("cen pcs pml tcs tml fsp elp");
  defaults::set(dcm_mod, 20u);
  testing::internal::CaptureStderr();  // the writer of .sef speaks of each file
  EXPECT_EQ(r.call(), 0);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(bytes_Of(r.res), bytes_Of(plain.res));
}

}  // namespace
