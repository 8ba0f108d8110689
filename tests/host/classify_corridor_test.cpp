#include "host/classify_answer.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <random>

#include "host/registered_mesh.h"
#include "plates_command.h"

namespace undercut::host {
namespace {

using Indices = std::vector<uint32_t>;

constexpr T3DVEC kUp{0, 0, 1};

struct ClassifyCorridor : PlatesCommand {
  ClassifyCorridor() : PlatesCommand("classify") {}
};

// A plain computation of what a tool meets that follows a corridor.
struct Plain {
  const Mesh& mesh;  // part and obstacle; the triangles of the part come first
  T3DRAY line;
  double width;
  size_t asked;  // triangles of the part

  // Reaches into the slab of a pose, which is narrower by the sine of the angle between both
  // directions.
  bool reaches(uint32_t triangle, const T3DVEC& axis) const {
    const T3DVEC across = cross_Vec(line.dir, unit_Vec(axis));
    const T3DVEC normal = unit_Vec(across);
    const double half = 0.5 * width * len_Vec(across);
    double low = 1e300, high = -1e300;
    const T3DTRI& t = mesh.triangles[triangle];
    for (const uint32_t v : {t.a, t.b, t.c}) {
      const double at = dot_Vec(normal, mesh.vertices[v] - line.org);
      low = std::min(low, at);
      high = std::max(high, at);
    }
    return low <= half && high >= -half;
  }
  bool blocks(uint32_t triangle, const T3DVEC& axis) const {
    return reaches(triangle, axis) && !sees_Axis(mesh, triangle, unit_Vec(axis));
  }
  template <typename Test>
  Indices list(const Test& test) const {
    Indices found;
    for (uint32_t i = 0; i < asked; ++i) {
      if (test(i)) found.push_back(i);
    }
    return found;
  }
  Indices inside(const std::vector<T3DVEC>& axes) const {
    return list([&](uint32_t i) { return is_Any(axes, i, &Plain::reaches); });
  }
  Indices blocked_Sometimes(const std::vector<T3DVEC>& axes) const {
    return list([&](uint32_t i) { return is_Any(axes, i, &Plain::blocks); });
  }
  // In some slab, and seen at no pose in whose slab it lies.
  Indices blocked_Always(const std::vector<T3DVEC>& axes) const {
    return list([&](uint32_t i) {
      return is_Any(axes, i, &Plain::reaches) &&
             std::all_of(axes.begin(), axes.end(),
                         [&](const T3DVEC& a) { return !reaches(i, a) || blocks(i, a); });
    });
  }
  // At each pose, of what lies in its slab.
  std::vector<size_t> count_Seen(const std::vector<T3DVEC>& axes) const {
    std::vector<size_t> counts;
    for (const T3DVEC& axis : axes) {
      counts.push_back(inside({axis}).size() - blocked_Sometimes({axis}).size());
    }
    return counts;
  }
  bool is_Any(const std::vector<T3DVEC>& axes, uint32_t i,
              bool (Plain::*test)(uint32_t, const T3DVEC&) const) const {
    return std::any_of(axes.begin(), axes.end(),
                       [&](const T3DVEC& axis) { return (this->*test)(i, axis); });
  }
};

Indices list_Json(const Json& extent) { return extent["triangles"].get<Indices>(); }

std::vector<size_t> count_Seen(const Json& json) {
  std::vector<size_t> counts;
  for (const Json& axis : json["axes"]) counts.push_back(axis["seen"]["count"].get<size_t>());
  return counts;
}

Indices list_Classes(const ClassifyAnswer& answer, const std::vector<Reach>& classes) {
  Indices found;
  for (uint32_t i = 0; i < answer.reach.size(); ++i) {
    if (std::find(classes.begin(), classes.end(), answer.reach[i]) != classes.end()) {
      found.push_back(i);
    }
  }
  return found;
}

TEST_F(ClassifyCorridor, OnePose_BlocksWhatLiesBehindThePartAsTheToolComes) {
  const Json json = answer("part.stl --corridor 0,2.5,0,2,0,0 --axis 0,0,3 --width 0.4");
  const Plain plain{mesh, {{0, 2.5, 0}, {1, 0, 0}}, 0.4, 740};
  EXPECT_EQ(json["region"]["count"], plain.inside({kUp}).size());
  EXPECT_EQ(list_Json(json["undercut"]), plain.blocked_Always({kUp}));
  EXPECT_EQ(list_Json(json["corridor"]["blocked"]), plain.blocked_Sometimes({kUp}));
  // Of a row of both plates, one cell wide, with its ends: all but the upper plate's top, and the
  // ends.
  EXPECT_NEAR(json["region"]["area"], 40.0 + 4.0, 1e-9);
  EXPECT_NEAR(json["undercut"]["area"], 30.0, 1e-9);
  EXPECT_NEAR(json["axes"][0]["seen"]["area"], 14.0, 1e-9);
  for (const uint32_t i : list_Json(json["undercut"])) EXPECT_LT(centre_Tri(mesh, i).z, 5.0);
  const Json below = answer("part.stl --corridor 0,2.5,0,2,0,0 --axis 0,0,-1 --width 0.4");
  for (const uint32_t i : list_Json(below["undercut"])) EXPECT_GT(centre_Tri(mesh, i).z, 0.0);
  EXPECT_NEAR(below["undercut"]["area"], 30.0, 1e-9);
}

TEST_F(ClassifyCorridor, TheDocument_TellsTheCorridorAndItsBands) {
  const Json json =
      answer("part.stl --corridor 1,2.5,0,2,0,0 --axis 0,0,3 --axis 0,2,2 --width 0.4");
  const Json& corridor = json["corridor"];
  EXPECT_EQ(corridor["origin"], Json({1.0, 2.5, 0.0}));
  EXPECT_EQ(corridor["direction"], Json({1.0, 0.0, 0.0}));
  EXPECT_EQ(corridor["width"], 0.4);
  EXPECT_EQ(json["parameters"]["con.f_wid"], 0.4);
  EXPECT_EQ(corridor["registered"]["triangles"], 740);
  EXPECT_EQ(corridor["registered"]["shaded"], 0);
  EXPECT_TRUE(corridor["from_others"].is_null());
  const Plain plain{mesh, {{1, 2.5, 0}, {1, 0, 0}}, 0.4, 740};
  EXPECT_EQ(corridor["bands"][0]["count"], plain.inside({kUp}).size());
  EXPECT_EQ(corridor["bands"][1]["count"], plain.inside({{0, 1, 1}}).size());
  EXPECT_NEAR(corridor["bands"][0]["area"], 44.0, 1e-9);
  EXPECT_TRUE(answer("part.stl --axis 0,0,1")["corridor"].is_null());
}

TEST_F(ClassifyCorridor, WithoutAWidth_TheSlabsAreAsWideAsTheParameter) {
  const Plain plain{mesh, {{0, 2.5, 0}, {1, 0, 0}}, 3.8, 740};
  const Json json = answer("part.stl --corridor 0,2.5,0,1,0,0 --axis 0,0,1");
  EXPECT_EQ(json["corridor"]["width"], 3.8);
  EXPECT_EQ(json["region"]["count"], plain.inside({kUp}).size());
  const Json set = answer("part.stl --corridor 0,2.5,0,1,0,0 --axis 0,0,1 --set f_wid=0.4");
  EXPECT_EQ(set["corridor"]["width"], 0.4);
  EXPECT_NEAR(set["region"]["area"], 44.0, 1e-9);
}

TEST_F(ClassifyCorridor, PosesInOneSlab_TellWhatIsBlockedAtSomeAndAtEvery) {
  const std::vector<T3DVEC> axes{{0, 0, 1}, {1, 0, 1}, {-2, 0, 1}};
  const Plain plain{mesh, {{0, 2.5, 0}, {1, 0, 0}}, 0.4, 740};
  const Json json = answer(
      "part.stl --corridor 0,2.5,0,1,0,0 --axis 0,0,1 --axis 1,0,1 --axis -2,0,1 --width 0.4");
  EXPECT_EQ(list_Json(json["corridor"]["blocked"]), plain.blocked_Sometimes(axes));
  EXPECT_EQ(list_Json(json["undercut"]), plain.blocked_Always(axes));
  EXPECT_GT(json["corridor"]["blocked"]["count"], json["undercut"]["count"]);
  EXPECT_EQ(count_Seen(json), plain.count_Seen(axes));
}

TEST_F(ClassifyCorridor, PosesWithSlabsOfTheirOwn_AreToldOfAllSlabsInAnyOrder) {
  const std::vector<T3DVEC> axes{{0, 0, 1}, {0, -1, 1}, {0, 1, 1}, {0, 1, 0.2}};
  const Plain plain{mesh, {{0, 4.4, 1.5}, {1, 0, 0}}, 1.1, 740};
  const std::string corridor = "part.stl --corridor 0,4.4,1.5,1,0,0 --width 1.1 ";
  const Json json = answer(corridor + "--axis 0,0,1 --axis 0,-1,1 --axis 0,1,1 --axis 0,1,0.2");
  EXPECT_EQ(list_Json(json["undercut"]), plain.blocked_Always(axes));
  EXPECT_EQ(list_Json(json["corridor"]["blocked"]), plain.blocked_Sometimes(axes));
  EXPECT_EQ(json["region"]["count"], plain.inside(axes).size());
  EXPECT_EQ(count_Seen(json), plain.count_Seen(axes));
  // Slabs other than the last tell of what the last does not hold.
  size_t elsewhere = 0;
  for (const uint32_t i : list_Json(json["undercut"])) {
    elsewhere += plain.reaches(i, axes.back()) ? 0 : 1;
  }
  EXPECT_GT(elsewhere, 0u);
  const Json turned = answer(corridor + "--axis 0,1,0.2 --axis 0,1,1 --axis 0,-1,1 --axis 0,0,1");
  EXPECT_EQ(turned["undercut"], json["undercut"]);
  EXPECT_EQ(turned["corridor"]["blocked"], json["corridor"]["blocked"]);
}

TEST_F(ClassifyCorridor, AnyLineAndPoses_AreThoseOfAPlainComputation) {
  const Part lower = make_Part(make_Lower());
  const fs::path upper = folder.path / "upper.stl";
  for (unsigned seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto draw = [&](double low, double high) {
      return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
    };
    const auto draw_Vec = [&] { return unit_Vec({draw(-1, 1), draw(-1, 1), draw(-1, 1)}); };
    ShadowOptions options;
    options.corridor = T3DRAY{{draw(0, 10), draw(0, 10), draw(0, 5)}, draw_Vec()};
    const double width = draw(0.1, 6.0);
    options.settings.push_back({&find_Parameter(kWidth), width});
    con_Wid(&width);
    for (unsigned k = 0; k <= seed % 4; ++k) options.axes.push_back(draw_Vec());
    options.against = {upper};
    const ClassifyAnswer got = classify_Corridor(options, lower, nullptr);
    const Plain both{mesh, *options.corridor, width, 480};
    const Plain own{lower.mesh, *options.corridor, width, 480};
    EXPECT_EQ(list_Classes(got, {Reach::kOwn, Reach::kOthers}), both.blocked_Always(options.axes));
    EXPECT_EQ(got.corridor->blocked, both.blocked_Sometimes(options.axes));
    EXPECT_EQ(list_Classes(got, {Reach::kNotAsked}).size(), 480 - both.inside(options.axes).size());
    Indices others, all = both.blocked_Sometimes(options.axes),
                    alone = own.blocked_Sometimes(options.axes);
    std::set_difference(all.begin(), all.end(), alone.begin(), alone.end(),
                        std::back_inserter(others));
    EXPECT_EQ(got.corridor->from_others, others);
    others.clear();
    all = both.blocked_Always(options.axes);
    alone = own.blocked_Always(options.axes);
    std::set_difference(all.begin(), all.end(), alone.begin(), alone.end(),
                        std::back_inserter(others));
    EXPECT_EQ(list_Classes(got, {Reach::kOthers}), others);
  }
  const double standard = 3.8;
  con_Wid(&standard);
}

TEST_F(ClassifyCorridor, Against_TellsWhatIsBlockedByTheOthersAlone) {
  // Of the lower plate's top, the upper one hides what it hangs over from above, and the tool that
  // leans out sees it.
  const Json json = answer(
      "lower.stl --corridor 0,2.5,1,1,0,0 --axis 0,0,1 --axis 4,0,1 --width 0.4 --against "
      "upper.stl");
  EXPECT_EQ(json["corridor"]["registered"]["triangles"], 480) << "the part alone";
  EXPECT_NEAR(json["corridor"]["from_others"]["area"], 10.0, 1e-9);
  const std::vector<T3DVEC> axes{{0, 0, 1}, {4, 0, 1}};
  const Plain plain{mesh, {{0, 2.5, 1}, {1, 0, 0}}, 0.4, 480};
  EXPECT_EQ(list_Json(json["corridor"]["blocked"]), plain.blocked_Sometimes(axes));
  EXPECT_EQ(list_Json(json["undercut"]), plain.blocked_Always(axes));
  EXPECT_EQ(json["from_others"]["count"], 0) << "the far end lies free";
  const Json above =
      answer("lower.stl --corridor 0,2.5,1,1,0,0 --axis 0,0,1 --width 0.4 --against upper.stl");
  EXPECT_NEAR(above["from_others"]["area"], 10.0, 1e-9);
  EXPECT_EQ(above["from_others"], above["corridor"]["from_others"]);
}

TEST_F(ClassifyCorridor, Roi_OnlyItsTrianglesInTheCorridorAreAsked) {
  folder.write("top.txt", list_Centres(mesh, [](const T3DVEC& c) { return c.z == 1.0; }));
  const Json json =
      answer("part.stl --corridor 0,2.5,0,1,0,0 --axis 0,0,1 --width 0.4 --roi top.txt");
  EXPECT_EQ(json["region"]["area"], 10.0);
  EXPECT_EQ(json["region"]["source"], "top.txt");
  EXPECT_EQ(json["undercut"]["area"], 10.0);
  EXPECT_EQ(json["undercut"]["share"], 1.0);
  EXPECT_EQ(json["corridor"]["bands"][0]["area"], 10.0);
}

TEST_F(ClassifyCorridor, DegenerateTriangles_AreLeftOutUnlessARegionNamesThem) {
  Soup corners = make_Plates();
  const T3DVEC p{3, 8, 1}, q{4, 8, 1};
  corners.insert(corners.end(), {p, p, q});
  folder.write("part.stl", make_BinaryStl(corners));
  folder.write("one.txt", "740\n");
  const std::string corridor = "part.stl --corridor 0,8,0,1,0,0 --axis 0,0,1 --width 0.4";
  const Indices whole = list_Json(answer(corridor)["undercut"]);
  EXPECT_EQ(std::count(whole.begin(), whole.end(), 740u), 0);
  const Json json = answer(corridor + " --roi one.txt");
  EXPECT_EQ(json["undercut"]["triangles"], Json({740}));
  EXPECT_EQ(json["corridor"]["blocked"]["triangles"], Json({740}));
  EXPECT_EQ(json["axes"][0]["seen"]["count"], 0);
}

TEST_F(ClassifyCorridor, Ply_HoldsWhatEachTriangleIs) {
  // The step of the lower plate hides its side from the leaning tool; the upper one hides the top.
  const std::string arguments =
      "lower.stl --corridor 0,2.5,1,1,0,0 --axis 0,0,1 --axis 4,0,1 --width 0.4 --against "
      "upper.stl";
  const Json json = answer(arguments);
  const std::string ply = load_File(folder.path / "classify/undercut.ply");
  const Mesh lower = weld_Corners(make_Lower());
  const std::vector<T3DVEC> axes{{0, 0, 1}, {4, 0, 1}};
  const Plain both{mesh, {{0, 2.5, 1}, {1, 0, 0}}, 0.4, 480};
  const Plain own{lower, both.line, 0.4, 480};
  const auto has = [](const Indices& list, uint32_t i) {
    return std::binary_search(list.begin(), list.end(), i);
  };
  const Indices inside = both.inside(axes), some = both.blocked_Sometimes(axes),
                every = both.blocked_Always(axes), own_some = own.blocked_Sometimes(axes),
                own_every = own.blocked_Always(axes);
  size_t counts[5] = {};
  for (uint32_t i = 0; i < 480; ++i) {
    const int32_t expected = !has(inside, i)    ? -1
                             : has(every, i)    ? (has(own_every, i) ? 1 : 2)
                             : !has(some, i)    ? 0
                             : has(own_some, i) ? 3
                                                : 4;
    int32_t value = 9;
    std::memcpy(&value, load_Value(ply, lower, i, 4).data(), 4);
    EXPECT_EQ(value, expected) << i;
    if (expected >= 0) ++counts[expected];
  }
  for (const int32_t kind : {0, 1, 3, 4}) EXPECT_GT(counts[kind], 0u) << kind;
}

TEST_F(ClassifyCorridor, PrintsATableAndWritesBothFiles) {
  const Ran ran =
      run("lower.stl --corridor 0,2.5,1,1,0,0 --axis 0,0,1 --axis 4,0,1 --width 0.4 --against "
          "upper.stl");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  for (const char* piece :
       {"con.f_wid = 0.4\n", "in the corridor ", "pose 1: band ", "pose 2: band ", "  seen ",
        "all bands ", "blocked at some pose ", "  from the others ", "blocked at every pose ",
        "Written: classify/undercut.ply, classify/undercut.json"}) {
    EXPECT_TRUE(has_Text(ran.out, piece)) << piece << "\n" << ran.out;
  }
  EXPECT_FALSE(has_Text(ran.out, "seen from")) << ran.out;
}

TEST_F(ClassifyCorridor, ACorridorBesideThePart_IsToldAndHasNoTriangles) {
  const Ran ran = run("part.stl --corridor 0,60,0,1,0,0 --axis 0,0,1");
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_TRUE(has_Text(ran.err, "note: no triangle that is asked reaches into the corridor"));
  const Json json = Json::parse(load_File(folder.path / "classify/undercut.json"));
  EXPECT_EQ(json["region"]["count"], 0);
  EXPECT_EQ(json["undercut"]["count"], 0);
}

TEST_F(ClassifyCorridor, WrongUsage_SaysWhatToDo) {
  expect_Refused(
      2,
      {{"part.stl --axis 0,0,1 --width 2", "--width is for --corridor: leave it out"},
       {"part.stl --corridor 0,0,0,1,0,0", "--axis: name at least one axis"},
       {"part.stl --corridor 0,0,0 --axis 0,0,1", "write a point and a direction as six numbers"},
       {"part.stl --corridor 0,0,0,0,0,0 --axis 0,0,1", "write a point and a direction"},
       {"part.stl --corridor 0,0,0,1,0,0 --axis 0,0,1 --axis 2,0,0",
        "--axis '2,0,0' runs along the corridor's line"},
       {"part.stl --corridor 0,0,0,1,0,0 --axis 0,0,1 --width 0", "--width '0': write a length"}});
}

TEST_F(ClassifyCorridor, ASettingWithoutEffect_IsNoted) {
  const std::string corridor = "part.stl --corridor 0,2.5,0,1,0,0 --axis 0,0,1 ";
  EXPECT_TRUE(has_Text(run(corridor + "--set f_dil=0.1").err,
                       "ucs.f_dil has no effect on the classification"));
  EXPECT_EQ(run(corridor + "--set f_wid=2 --set f_tol=0.01").err, "");
  EXPECT_TRUE(has_Text(run("part.stl --axis 0,0,1 --set f_wid=1").err,
                       "con.f_wid has no effect on the classification"));
  const Json lifted = answer(corridor + "--set f_tol=4.5");
  EXPECT_LT(lifted["undercut"]["area"], answer(corridor)["undercut"]["area"])
      << "rays of the lower plate's top start above the upper one";
}

TEST(RegisteredMesh, CountsItsTrianglesAndShadesNone) {
  const Mesh mesh = weld_Corners(make_Plates());
  const RegisteredMesh registered(mesh);
  EXPECT_EQ(registered.count(), 740u);
  EXPECT_EQ(registered.count_Shaded(), 0u);
}

TEST(RegisteredMesh, BlockedAtSomePose_IsWhatSinglePosesBlockTogether) {
  const Mesh mesh = weld_Corners(make_Plates());
  const RegisteredMesh registered(mesh);
  const T3DRAY line{{0, 4.4, 1.5}, {1, 0, 0}};
  const std::vector<T3DVEC> poses{{0, 0, -1}, {0, 1, -1}, {0, -1, -0.2}};
  std::vector<bool> together(mesh.triangles.size(), false);
  for (const T3DVEC& pose : poses) {
    const std::vector<bool> one = registered.find_Blocked(mesh, line, {pose});
    for (size_t i = 0; i < one.size(); ++i) together[i] = together[i] || one[i];
  }
  EXPECT_EQ(registered.find_Blocked(mesh, line, poses), together);
  EXPECT_GT(std::count(together.begin(), together.end(), true), 0);
}

}  // namespace
}  // namespace undercut::host
