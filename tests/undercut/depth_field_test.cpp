// get_dFi and get_dFb against plain programs, and for any number of threads.
#include <gtest/gtest.h>
#include <omp.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "foundation/axis_frames.h"
#include "tests/interface/blocks.h"
#include "tests/reference/plain_depth.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using reference::Random;
using Depths = std::vector<double>;
using Axes = std::vector<T3DRAY>;

// A call with its own records; null `others` calls get_dFi.
Depths call(TSoup& soup, Axes axi, std::vector<T3DMSH>* others = nullptr,
            std::vector<uint32_t>* roi = nullptr) {
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = soup.msh();
  req.axi = view_Arr(axi);
  if (others) req.msh_b = view_Arr(*others);
  if (roi) req.roi = view_Lst(*roi);
  EXPECT_EQ(others ? get_dFb(&req, &res) : get_dFi(&req, &res), 0);
  Depths depths(res.dfi, res.dfi + (res.dfi ? soup.tri.size() : 0));
  clr_Res(&res);
  return depths;
}

// The same steps as the library's, in the plane of the axis's frame, along the whole rim.
double measure_InPlane(const T3DMSH& msh, const T3DVEC& centre,
                       const std::vector<reference::Edge>& rim, const T3DRAY& axis) {
  T3DFRM frm;
  EXPECT_TRUE(frm_Axis(axis, frm));
  const auto place = [&](const T3DVEC& p) {
    const T3DVEC local = to_Local(frm, p);
    return T2DVEC{local.x, local.y};
  };
  double best = reference::kNoAnswer;
  for (const auto& [a, b] : rim)
    best = std::min(best, dst_Seg2(place(centre), place(msh.vtx[a]), place(msh.vtx[b])));
  return best;
}

// A dented ball in general position, its triangles up to a third of its size.
TSoup make_Dented(Random& random, double size, const T3DVEC& centre) {
  TSoup soup = make_Sphere(3 + static_cast<uint32_t>(random.below(7)),
                           5 + static_cast<uint32_t>(random.below(9)), 1.0);
  for (T3DVEC& v : soup.vtx) {
    v = (size * random.real(0.35, 1.0)) * v + random.triple(-0.05, 0.05);
    v += centre;
  }
  return soup;
}

// A hilly sheet in general position, with holes.
TSoup make_Hilly(Random& random) {
  TSoup soup = make_Sheet(4 + static_cast<uint32_t>(random.below(8)),
                          4 + static_cast<uint32_t>(random.below(8)),
                          [&](double, double) { return random.real(-1.5, 1.5); });
  for (T3DVEC& v : soup.vtx) v += random.triple(-0.2, 0.2);
  for (uint32_t holes = static_cast<uint32_t>(random.below(5)); holes > 0; --holes)
    soup.tri.erase(soup.tri.begin() + static_cast<int64_t>(random.below(soup.tri.size())));
  return tilt(soup);
}

void append(TSoup& soup, const TSoup& other) {
  const auto up = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), other.vtx.begin(), other.vtx.end());
  for (const T3DTRI& t : other.tri) soup.tri.push_back({t.a + up, t.b + up, t.c + up});
}

// One of several kinds, numbered at random.
TSoup make_Mesh(Random& random) {
  TSoup soup;
  if (random.chance(0.4))
    soup = make_Hilly(random);
  else
    soup = make_Dented(random, 4.0, {0, 0, 0});
  if (random.chance(0.4)) append(soup, make_Dented(random, 2.0, random.triple(-4, 4)));
  for (size_t i = soup.tri.size(); i > 1; --i)
    std::swap(soup.tri[i - 1], soup.tri[random.below(i)]);
  return soup;
}

Axes make_Axes(Random& random, uint64_t count) {
  Axes axi;
  while (axi.size() < count) axi.push_back({random.triple(-9, 9), random.triple(-2, 2)});
  return axi;
}

void expect_Near(const Depths& depths, const Depths& plain) {
  ASSERT_EQ(depths.size(), plain.size());
  for (size_t t = 0; t < depths.size(); ++t) {
    // Lengths are those of bodies of some 10 mm, seen from frames some 10 mm away.
    if (plain[t] == reference::kNoAnswer || plain[t] == 0)
      ASSERT_EQ(depths[t], plain[t]) << "triangle " << t;
    else
      ASSERT_NEAR(depths[t], plain[t], 1e-12 * std::max(10.0, plain[t])) << "triangle " << t;
  }
}

class PlainDepth : public testing::Test {
 protected:
  void SetUp() override { before_ = g_UCs; }
  void TearDown() override { g_UCs = before_; }

 private:
  CUCsPar before_;
};

TEST_F(PlainDepth, EqualsTheFieldOfAMeshInItsOwnShadow) {
  uint32_t deep = 0, none = 0;
  for (uint32_t seed = 0; seed < scale_Cases(60); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    TSoup soup = make_Mesh(random);
    reference::TPlainDepth plain = {soup.msh(), soup.msh(), soup.msh(),
                                    make_Axes(random, random.below(4))};
    plain.lift = g_UCs.f_tol = random.real(1e-6, 1e-2);
    plain.smallest = g_UCs.f_srf = random.chance(0.4) ? random.real(0, 20) : 0.0;
    g_UCs.f_off = random.real(1e-9, 0.1);
    const Depths depths = call(soup, plain.axi);
    expect_Near(depths, reference::find_Depth(plain));
    // The nearest part of the rim lies within each circle, so its distance is the same to the bit.
    plain.distance = measure_InPlane;
    ASSERT_EQ(depths, reference::find_Depth(plain));
    for (const double depth : depths) {
      deep += depth > 0.1 && depth < 1e9;
      none += depth > 1e9;
    }
  }
  EXPECT_GT(deep, 500u);
  EXPECT_GT(none, 10u);
}

TEST_F(PlainDepth, EqualsTheFieldOnGrownTriangles) {
  for (uint32_t seed = 0; seed < scale_Cases(20); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 1000);
    TSoup soup = make_Mesh(random);
    g_UCs.f_dil = random.real(0.01, 0.5);
    reference::TPlainSoup grown = reference::grow_Triangles(soup.msh(), g_UCs.f_dil);
    reference::TPlainDepth plain = {soup.msh(), grown.msh(), grown.msh(), make_Axes(random, 2)};
    plain.distance = measure_InPlane;
    ASSERT_EQ(call(soup, plain.axi), reference::find_Depth(plain));
  }
}

TEST_F(PlainDepth, EqualsTheFieldOfAMeshInTheShadowOfOthers) {
  for (uint32_t seed = 0; seed < scale_Cases(40); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 2000);
    TSoup soup = make_Mesh(random);
    TSoup first = make_Dented(random, 3.0, random.triple(-5, 5)), second = make_Hilly(random);
    for (T3DVEC& v : second.vtx) v += T3DVEC{0, 0, 5};
    std::vector<T3DMSH> others = {first.msh()};
    TSoup sum = first;
    if (random.chance(0.5)) {
      others.push_back(second.msh());
      append(sum, second);
    }
    // Small bodies often lie hidden as a whole along one axis, and not along another.
    for (int i = 0; i < 4; ++i) append(soup, make_Dented(random, 0.4, random.triple(-3, 3)));
    const Axes axi = make_Axes(random, 1 + random.below(4));
    const Depths depths = call(soup, axi, &others);
    const double lift = g_UCs.f_tol;
    expect_Near(depths, reference::find_JointDepth(soup.msh(), sum.msh(), axi, lift,
                                                   reference::measure_InSpace));
    ASSERT_EQ(depths,
              reference::find_JointDepth(soup.msh(), sum.msh(), axi, lift, measure_InPlane));
  }
}

TEST_F(PlainDepth, OfAMeshBesideAFarOne_IsThatOfTheMeshAlone_AlongOneAxis) {
  for (uint32_t seed = 0; seed < scale_Cases(40); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 3000);
    TSoup soup = make_Mesh(random);
    TSoup far = make_Dented(random, 4.0, {0, 0, 0});
    // Across the axis.
    const Axes axi = make_Axes(random, 1);
    const T3DVEC aside = 1000.0 * unit(cross(axi[0].dir, {0.3, -0.8, 0.5}));
    for (T3DVEC& v : far.vtx) v += aside;
    std::vector<T3DMSH> others = {far.msh()};
    ASSERT_EQ(call(soup, axi, &others), call(soup, axi));
  }
}

TEST_F(PlainDepth, InTheShadowOfOthers_IsTheLeastOfWhatEachAxisGivesAlone) {
  for (uint32_t seed = 0; seed < scale_Cases(20); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 4000);
    TSoup soup = make_Mesh(random), other = make_Mesh(random);
    std::vector<T3DMSH> others = {other.msh()};
    const Axes axi = make_Axes(random, 3);
    Depths least(soup.tri.size(), reference::kNoAnswer);
    for (const T3DRAY& axis : axi) {
      const Depths depths = call(soup, {axis}, &others);
      for (size_t t = 0; t < least.size(); ++t) least[t] = std::min(least[t], depths[t]);
    }
    ASSERT_EQ(call(soup, axi, &others), least);
  }
}

TEST_F(PlainDepth, IsZeroOutsideTheSelection_AndTheSameInside) {
  for (uint32_t seed = 0; seed < scale_Cases(20); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 5000);
    TSoup soup = make_Mesh(random), other = make_Mesh(random);
    std::vector<T3DMSH> others = {other.msh()};
    std::vector<uint32_t> roi(random.below(50));
    roi.reserve(1);
    std::vector<bool> listed(soup.tri.size());
    for (uint32_t& t : roi) {
      t = static_cast<uint32_t>(random.below(soup.tri.size()));
      listed[t] = true;
    }
    const Axes axi = make_Axes(random, 2);
    for (std::vector<T3DMSH>* add : {static_cast<std::vector<T3DMSH>*>(nullptr), &others}) {
      Depths whole = call(soup, axi, add);
      for (size_t t = 0; t < whole.size(); ++t)
        if (!listed[t]) whole[t] = 0;
      ASSERT_EQ(call(soup, axi, add, &roi), whole);
    }
  }
}

TEST_F(PlainDepth, TurnsWithTheMeshAndTheAxis) {
  for (uint32_t seed = 0; seed < scale_Cases(20); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed + 6000);
    TSoup soup = make_Mesh(random);
    Axes axi = make_Axes(random, 2);
    const Depths depths = call(soup, axi);
    const T3DFRM frm = frm_Ray({random.triple(-5, 5), random.triple(-1, 1)});
    for (T3DVEC& v : soup.vtx) v = to_World(frm, v);
    for (T3DRAY& axis : axi)
      axis = {to_World(frm, axis.org), to_World({frm.x, frm.y, frm.z, {0, 0, 0}}, axis.dir)};
    const Depths turned = call(soup, axi);
    for (size_t t = 0; t < depths.size(); ++t)
      ASSERT_NEAR(turned[t], depths[t], 1e-9) << "triangle " << t;
  }
}

TEST_F(PlainDepth, HasTheSameBitsForAnyNumberOfThreads) {
  Random random(7);
  TSoup soup = make_Sphere(24, 30, 5.0), other = make_Sphere(20, 24, 3.0);
  for (T3DVEC& v : soup.vtx) v = random.real(0.6, 1.0) * v;
  for (T3DVEC& v : other.vtx) v += T3DVEC{1, 4, -6};
  std::vector<T3DMSH> others = {other.msh()};
  const Axes axi = make_Axes(random, 3);
  const int before = omp_get_max_threads();
  omp_set_num_threads(1);
  const Depths alone = call(soup, axi), joint = call(soup, axi, &others);
  for (const int threads : {2, 3, 4, 8, 16, 1}) {
    omp_set_num_threads(threads);
    for (int repeat = 0; repeat < 3; ++repeat) {
      const Depths again = call(soup, axi), again_Joint = call(soup, axi, &others);
      EXPECT_EQ(std::memcmp(again.data(), alone.data(), alone.size() * sizeof(double)), 0);
      EXPECT_EQ(std::memcmp(again_Joint.data(), joint.data(), joint.size() * sizeof(double)), 0);
    }
  }
  omp_set_num_threads(before);
}

}  // namespace
