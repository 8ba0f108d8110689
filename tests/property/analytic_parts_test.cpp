// Parts with known undercuts: which triangles are hidden, how much area, and how deep they lie, at
// three densities, in the attitude of the drawing and in general position.
#include "tests/support/analytic_parts.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/undercut_calls.h"

namespace undercut::tests {
namespace {

constexpr int kDensities[] = {1, 2, 4};

double volume_Of(const TSoup& soup) {
  double sum = 0;
  for (const T3DTRI& t : soup.tri)
    sum += dot(soup.vtx[t.a], cross(soup.vtx[t.b], soup.vtx[t.c])) / 6;
  return sum;
}
double area_Of(const TSoup& soup, uint32_t t) {
  const T3DTRI& tri = soup.tri[t];
  return area_Tri({soup.vtx[tri.a], soup.vtx[tri.b], soup.vtx[tri.c]});
}
double area_Marked(const TSoup& soup, const std::vector<uint8_t>& marks) {
  double sum = 0;
  for (uint32_t t = 0; t < marks.size(); ++t)
    if (marks[t]) sum += area_Of(soup, t);
  return sum;
}

// Each edge twice, once in either direction.
void expect_Closed(const TSoup& soup) {
  std::map<std::pair<uint32_t, uint32_t>, int> edges;
  for (const T3DTRI& t : soup.tri)
    for (uint32_t k = 0; k < 3; ++k) ++edges[{corner(t, k), corner(t, k + 1)}];
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(edges.count({edge.second, edge.first}));
  }
}
void expect_Welded(const TSoup& soup) {
  std::map<T3DVECF, uint32_t> places;
  for (const T3DVEC& v : soup.vtx) EXPECT_TRUE(places.emplace(T3DVECF{v.x, v.y, v.z}, 0).second);
  for (uint32_t t = 0; t < soup.tri.size(); ++t) EXPECT_GT(area_Of(soup, t), 1e-4);
}

// The part as drawn and turned, at each density.
template <typename Check>
void each_Part(Check check) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const TPart& part : make_Parts(density))
      for (const bool turned : {false, true}) {
        SCOPED_TRACE(part.name + ", density " + std::to_string(density) +
                     (turned ? ", turned" : ""));
        check(turned ? turn(part, general_Frame()) : part);
      }
}

std::vector<T3DRAY> from_Above(const TPart& part) { return axes_Against({part.frame.z}); }
std::vector<T3DRAY> from_Both(const TPart& part) {
  return axes_Against({part.frame.z, -part.frame.z});
}

TEST(AnalyticParts, AreClosedWeldedAndOrientedOutwards) {
  each_Part([](const TPart& part) {
    expect_Closed(part.soup);
    expect_Welded(part.soup);
    EXPECT_NEAR(volume_Of(part.soup), part.volume, 1e-9 * part.volume);
  });
}

TEST(AnalyticParts, KnowTheTrianglesThatMakeUpTheirUndercutArea) {
  each_Part([](const TPart& part) {
    double up = 0, both = 0;
    for (uint32_t t = 0; t < part.up.size(); ++t) {
      if (part.up[t] > 0) up += area_Of(part.soup, t);
      if (part.both[t] > 0) both += area_Of(part.soup, t);
    }
    EXPECT_NEAR(up, part.area_up, part.row + 1e-9);
    EXPECT_NEAR(both, part.area_both, part.row + 1e-9);
  });
}

void expect_Undercut(const TPart& part, const std::vector<T3DRAY>& axes,
                     const std::vector<double>& depths, double area) {
  const std::vector<uint8_t> undercut = call_UCs(part.soup, axes);
  ASSERT_EQ(undercut.size(), depths.size());
  uint32_t wrong = 0;
  for (uint32_t t = 0; t < depths.size(); ++t) wrong += (depths[t] > 0) != (undercut[t] != 0);
  EXPECT_EQ(wrong, 0u);
  EXPECT_NEAR(area_Marked(part.soup, undercut), area, part.row + 1e-9);
}

TEST(Undercut, OfAPart_HasTheAreaOfItsDrawing_FromAbove) {
  each_Part(
      [](const TPart& part) { expect_Undercut(part, from_Above(part), part.up, part.area_up); });
}

TEST(Undercut, OfAPart_HasTheAreaOfItsDrawing_FromBothSides) {
  each_Part(
      [](const TPart& part) { expect_Undercut(part, from_Both(part), part.both, part.area_both); });
}

void expect_Depths(const TPart& part, const std::vector<double>& actual,
                   const std::vector<double>& depths) {
  ASSERT_EQ(actual.size(), depths.size());
  double worst = 0;
  uint32_t wrong = 0;
  for (uint32_t t = 0; t < depths.size(); ++t) {
    wrong += (depths[t] > 0) != (actual[t] > 0);
    worst = std::max(worst, std::fabs(actual[t] - depths[t]));
  }
  EXPECT_EQ(wrong, 0u);
  EXPECT_LE(worst, part.stray + 1e-9);
}

TEST(Depth, UnderAPart_IsTheDistanceToTheRimOfItsDrawing_FromAbove) {
  each_Part([](const TPart& part) {
    expect_Depths(part, call_DFi(part.soup, from_Above(part)), part.up);
  });
}

TEST(Depth, UnderAPart_IsTheDistanceToTheRimOfItsDrawing_FromBothSides) {
  each_Part([](const TPart& part) {
    expect_Depths(part, call_DFi(part.soup, from_Both(part)), part.both);
  });
}

// Between the two attitudes nothing but rounding differs.
TEST(Depth, TurnsWithThePart) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const TPart& part : make_Parts(density)) {
      SCOPED_TRACE(part.name + ", density " + std::to_string(density));
      const TPart turned = turn(part, general_Frame());
      const std::vector<double> plain = call_DFi(part.soup, from_Above(part));
      const std::vector<double> other = call_DFi(turned.soup, from_Above(turned));
      ASSERT_EQ(plain.size(), other.size());
      double worst = 0;
      for (uint32_t t = 0; t < plain.size(); ++t)
        worst = std::max(worst, std::fabs(plain[t] - other[t]));
      EXPECT_LE(worst, 1e-9);
    }
}

// A box below a smaller roof: the roof's outline is the rim on the box's upper side, and on its
// underside the deeper of the two rims decides.
TEST(Depth, UnderARoof_IsTheDistanceToTheOutlineOfTheRoof) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const bool turned : {false, true}) {
      SCOPED_TRACE("density " + std::to_string(density) + (turned ? ", turned" : ""));
      TPart box = make_BoxPart(density);
      TPart roof = {"roof", CCellMesh(3, 2, 1, density).build([](int, int, int) { return true; })};
      for (T3DVEC& v : roof.soup.vtx) v = v + T3DVEC{1.25, 0.75, 5};
      const auto is_Below = [](const T3DVEC& p) {
        return p.x > 1.25 && p.x < 4.25 && p.y > 0.75 && p.y < 2.75;
      };
      box.up.clear();
      box.both.clear();
      measure_Depths(box, [&](const T3DVEC& p, const T3DVEC& n) {
        const double own = is_Underside(p, n) ? inside_Rectangle(p, 0, 0, 6, 4) : 0;
        const double add = is_Below(p) ? inside_Rectangle(p, 1.25, 0.75, 4.25, 2.75) : 0;
        return TDepths{n.z == 0 ? 0 : std::max(own, add), 0};
      });
      if (turned) {
        box = turn(box, general_Frame());
        roof = turn(roof, general_Frame());
      }
      expect_Depths(box, call_DFb(box.soup, {roof.soup}, from_Above(box)), box.up);
    }
}

}  // namespace
}  // namespace undercut::tests
