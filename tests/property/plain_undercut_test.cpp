// Undercuts and depths against plain programs of another method: no triangle differs on random
// meshes in general position.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference/second_depth.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"
#include "tests/support/undercut_calls.h"

namespace undercut::tests {
namespace {

namespace second = reference::second;

struct TCase {
  TSoup soup;
  std::vector<T3DRAY> axes = {};
  std::vector<uint32_t> roi = {};  // empty: everything is selected
  std::vector<bool> selected = {};
};

void select_Some(reference::Random& random, TCase& c) {
  c.selected.assign(c.soup.tri.size(), true);
  if (random.chance(0.7)) return;
  for (uint32_t t = 0; t < c.selected.size(); ++t) {
    c.selected[t] = t == 0 || random.chance(0.6);
    if (c.selected[t]) c.roi.push_back(t);
  }
}

TCase any_Case(reference::Random& random, int64_t most_axes) {
  TCase c = {any_Mesh(random)};
  for (int64_t k = random.integer(1, most_axes); k > 0; --k) {
    const bool is_Zero = random.chance(0.03);
    c.axes.push_back({random.triple(-9, 9), is_Zero ? T3DVEC{0, 0, 0} : random.triple(-1, 1)});
  }
  select_Some(random, c);
  g_UCs.f_tol = random.chance(0.5) ? 0.001 : random.real(0.0005, 0.2);
  return c;
}

// How many triangles differ by more than rounding explains. Coordinates of 10 mm round to 2e-15 mm,
// so depths below a hundredth of a millimetre are held to 1e-14 mm.
uint32_t count_Different(const std::vector<double>& actual, const std::vector<double>& expected) {
  if (actual.size() != expected.size()) return UINT32_MAX;
  uint32_t different = 0;
  for (size_t t = 0; t < actual.size(); ++t) {
    const bool has_Depth = expected[t] > 0 && expected[t] < second::kNoDepth;
    const double slack = has_Depth ? 1e-12 * std::max(expected[t], 0.01) : 0.0;
    different += !(std::fabs(actual[t] - expected[t]) <= slack);
  }
  return different;
}

TEST(Undercut, IsWhatAPlainProgramFinds) {
  const TDefaultParameters defaults;
  reference::Random random(20261);
  uint64_t hidden = 0, rated = 0;
  for (uint32_t i = 0; i < scale_Cases(150); ++i) {
    SCOPED_TRACE("seed 20261, case " + std::to_string(i));
    TCase c = any_Case(random, 5);
    const std::vector<uint8_t> expected =
        second::undercut_By(c.soup.msh(), c.axes, g_UCs.f_tol, c.selected);
    ASSERT_EQ(call_UCs(c.soup, c.axes, c.roi), expected);
    for (const uint8_t u : expected) hidden += u;
    rated += expected.size();
  }
  // Neither answer is rare.
  EXPECT_GT(hidden, rated / 10);
  EXPECT_LT(hidden, rated / 10 * 9);
}

TEST(Depth, OfAMesh_IsWhatAPlainProgramFinds) {
  const TDefaultParameters defaults;
  reference::Random random(20262);
  for (uint32_t i = 0; i < scale_Cases(150); ++i) {
    SCOPED_TRACE("seed 20262, case " + std::to_string(i));
    TCase c = any_Case(random, 4);
    g_UCs.f_srf = random.chance(0.3) ? random.real(0, 20) : 0;
    g_UCs.f_off = random.chance(0.5) ? 0.05 : random.real(0, 2);
    const std::vector<double> expected =
        second::depth_Own(c.soup.msh(), c.axes, g_UCs.f_tol, c.selected, g_UCs.f_srf);
    ASSERT_EQ(count_Different(call_DFi(c.soup, c.axes, c.roi), expected), 0u);
  }
}

TEST(Depth, UnderOtherMeshes_IsWhatAPlainProgramFinds) {
  const TDefaultParameters defaults;
  reference::Random random(20263);
  for (uint32_t i = 0; i < scale_Cases(100); ++i) {
    SCOPED_TRACE("seed 20263, case " + std::to_string(i));
    TCase c = any_Case(random, 3);
    std::vector<TSoup> others;
    for (int64_t k = random.integer(1, 2); k > 0; --k)
      others.push_back(random.chance(0.3) ? any_Sheet(random) : any_Mesh(random));
    std::vector<T3DMSH> views;
    views.reserve(others.size());
    for (TSoup& other : others) views.push_back(other.msh());
    const std::vector<double> expected =
        second::depth_Both(c.soup.msh(), views, c.axes, g_UCs.f_tol, c.selected);
    ASSERT_EQ(count_Different(call_DFb(c.soup, others, c.axes, c.roi), expected), 0u);
  }
}

}  // namespace
}  // namespace undercut::tests
