#include <gtest/gtest.h>

#include <cmath>

#include "foundation/primitives.h"
#include "tests/reference/plain_volumes.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"

namespace undercut {
namespace {

using reference::Random;
using undercut::tests::scale_Cases;

C3DAABB make_Box(const T3DVEC& p, const T3DVEC& q) {
  C3DAABB box;
  box.add(p);
  box.add(q);
  return box;
}

T3DCYL make_Cylinder(const T3DVEC& org, const T3DVEC& axis, double radius) {
  return {frm_Ray({org, axis}), radius};
}

// ---- Cylinder ----------------------------------------------------------------------------------

TEST(Cylinder, TakesABoxThatItsAxisMeets_ForwardAndBackward) {
  const C3DAABB box = make_Box({-1, -1, 10}, {1, 1, 12});
  EXPECT_TRUE(hit_CylBox(make_Cylinder({0, 0, 0}, {0, 0, 1}, 0.1), box));
  EXPECT_TRUE(hit_CylBox(make_Cylinder({0, 0, 99}, {0, 0, 1}, 0.1), box));
  EXPECT_TRUE(hit_CylBox(make_Cylinder({0, 0, 11}, {0, 0, 1}, 0.1), box));
}

TEST(Cylinder, TakesABoxByAnyOfItsTwelveEdges_NoFartherThanTheRadius) {
  const C3DAABB box = make_Box({-1, -1, -1}, {1, 1, 1});
  for (const T3DVEC& along : {T3DVEC{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}) {
    const T3DVEC u = {along.y, along.z, along.x}, v = {along.z, along.x, along.y};
    for (const double su : {-1.0, 1.0}) {
      for (const double sv : {-1.0, 1.0}) {
        // Across the edge, half a unit from its middle.
        const T3DVEC out = unit(su * u + sv * v);
        const T3DVEC org = su * u + sv * v + 0.5 * out;
        const T3DVEC axis = cross(along, out);
        EXPECT_TRUE(hit_CylBox(make_Cylinder(org, axis, 0.5001), box));
        EXPECT_FALSE(hit_CylBox(make_Cylinder(org, axis, 0.4999), box));
      }
    }
  }
}

TEST(Cylinder, AlongAnEdgeOfABox_ReachesItByItsDistance) {
  const C3DAABB box = make_Box({-1, -1, -1}, {1, 1, 1});
  EXPECT_TRUE(hit_CylBox(make_Cylinder({2, 2, 50}, {0, 0, 1}, 1.4143), box));
  EXPECT_FALSE(hit_CylBox(make_Cylinder({2, 2, 50}, {0, 0, 1}, 1.4142), box));
  EXPECT_TRUE(hit_CylBox(make_Cylinder({3, 0, 0}, {0, 0, 1}, 2), box));
  EXPECT_FALSE(hit_CylBox(make_Cylinder({3, 0, 0}, {0, 0, 1}, 1.999), box));
}

TEST(Cylinder, TakesATriangleByItsAxisOrItsEdges) {
  const T3DFAC f = {{0, 0, 5}, {9, 0, 5}, {0, 9, 5}};
  EXPECT_TRUE(hit_CylTri(make_Cylinder({2, 2, 0}, {0, 0, 1}, 0.01), f));
  EXPECT_TRUE(hit_CylTri(make_Cylinder({2, 2, 99}, {0, 0, 1}, 0.01), f));
  EXPECT_TRUE(hit_CylTri(make_Cylinder({4, -1, 0}, {0, 0, 1}, 1), f));
  EXPECT_TRUE(hit_CylTri(make_Cylinder({-1, 4, 0}, {0, 0, 1}, 1), f));
  EXPECT_TRUE(hit_CylTri(make_Cylinder({5.5, 5.5, 0}, {0, 0, 1}, 1.4143), f));
  EXPECT_FALSE(hit_CylTri(make_Cylinder({4, -1, 0}, {0, 0, 1}, 0.999), f));
  EXPECT_FALSE(hit_CylTri(make_Cylinder({5.5, 5.5, 0}, {0, 0, 1}, 1.4142), f));
}

TEST(Cylinder, HoldsABoxWhole_WhenNoCornerIsFartherThanTheRadius) {
  const C3DAABB box = make_Box({-3, -4, 0}, {3, 4, 99});
  EXPECT_TRUE(in_Cyl(make_Cylinder({0, 0, 7}, {0, 0, 1}, 5), box));
  EXPECT_FALSE(in_Cyl(make_Cylinder({0, 0, 7}, {0, 0, 1}, 4.999), box));
  EXPECT_FALSE(in_Cyl(make_Cylinder({0.1, 0, 7}, {0, 0, 1}, 5), box));
}

// What is inside is reached, and a box with a sample point inside is reached.
TEST(Cylinder, ReachesEveryBoxAndTriangleWithAPointInside) {
  const uint64_t seed = 2431;
  SCOPED_TRACE(seed);
  Random random(seed);
  int boxes = 0, triangles = 0, whole = 0;
  for (int i = 0; i < 20000; ++i) {
    const T3DCYL cylinder =
        make_Cylinder(random.triple(-2, 2), random.triple(-1, 1), random.real(0.05, 1.5));
    const auto inside = [&](const T3DVEC& p) {
      return len(cross(p - cylinder.frm.org, cylinder.frm.z)) < cylinder.radius - 1e-9;
    };
    const C3DAABB box = make_Box(random.triple(-1, 1), random.triple(-1, 1));
    const T3DVEC w = random.triple(0, 1), e = box.size();
    if (inside(box.min + T3DVEC{w.x * e.x, w.y * e.y, w.z * e.z})) {
      ASSERT_TRUE(hit_CylBox(cylinder, box));
      ++boxes;
    }
    if (in_Cyl(cylinder, box)) {
      ASSERT_TRUE(hit_CylBox(cylinder, box));
      ++whole;
    }
    const T3DFAC f = {random.triple(-1, 1), random.triple(-1, 1), random.triple(-1, 1)};
    if (inside((1 - w.x) * f.a + w.x * (1 - w.y) * f.b + w.x * w.y * f.c)) {
      ASSERT_TRUE(hit_CylTri(cylinder, f));
      ++triangles;
    }
  }
  EXPECT_GT(boxes, 1000);
  EXPECT_GT(triangles, 1000);
  EXPECT_GT(whole, 100);
}

// A number a few units in the last place off another, or the same.
double nudge(Random& random, double v) {
  for (uint64_t k = random.below(4); k > 0; --k)
    v = std::nextafter(v, random.chance(0.5) ? kAbsent : -kAbsent);
  return v;
}

// Boxes of all sizes, thin and flat ones among them, on a lattice or anywhere.
C3DAABB make_HostileBox(Random& random, double scale, bool lattice) {
  T3DVEC p = scale * random.triple(-5, 5);
  T3DVEC size = scale * std::pow(10.0, random.real(-4, 0.5)) * random.triple(0, 1);
  if (random.chance(0.2)) size.x = 0.0;
  if (random.chance(0.2)) size.z *= std::pow(10.0, random.real(-8, 0));
  if (lattice) {
    p = {std::round(p.x), std::round(p.y), std::round(p.z)};
    size = {std::round(size.x), std::round(size.y) + 1, std::round(size.z) + 1};
  }
  return make_Box(p, p + size);
}

// An axis in general position, along the lattice, in the plane of a face or next to it, through a
// corner or past it at about the radius.
T3DCYL make_HostileCylinder(Random& random, const C3DAABB& box, double scale, bool lattice) {
  T3DVEC z = random.triple(-1, 1), org = scale * random.triple(-9, 9);
  if (lattice) org = {std::round(org.x), std::round(org.y), std::round(org.z)};
  if (random.chance(0.3)) z.x = random.chance(0.5) ? 0.0 : random.real(-1e-14, 1e-14);
  if (random.chance(0.2)) z.y = 0.0;
  if (random.chance(0.3)) org.x = nudge(random, random.chance(0.5) ? box.min.x : box.max.x);
  if (random.chance(0.2)) org.y = nudge(random, box.max.y);
  if (random.chance(0.2)) org.z = nudge(random, box.min.z);
  z = unit(z);
  const double half = 0.5 * len(box.size());
  double radius = scale * std::pow(10.0, random.real(-6, 1));
  if (random.chance(0.3)) {
    // As far from the middle of the box as its corners and the radius reach.
    const T3DVEC side = unit(cross(z, random.triple(-1, 1)));
    const double gap = random.chance(0.5) ? 0.0 : random.real(-1e-5, 1e-5);
    org = box.centre() + scale * random.real(-20, 20) * z + (half + radius + gap * scale) * side;
  }
  if (random.chance(0.02)) z = 2.0 * z;
  if (random.chance(0.02)) z = {0, 0, 0};
  if (random.chance(0.02)) radius = random.special();
  if (random.chance(0.02)) org.y = random.special();
  return {{{1, 0, 0}, {0, 1, 0}, z, org}, radius};
}

TEST(Cylinder, TellsBoxesThatLieFarOff_AsByAllItsTests) {
  uint32_t hit = 0, missed = 0;
  for (uint32_t seed = 0; seed < scale_Cases(200); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Random random(seed);
    const double scale = seed % 4 ? 1.0 : std::pow(10.0, random.real(-7, 9));
    for (int k = 0; k < 1000; ++k) {
      const bool lattice = random.chance(0.4);
      C3DAABB box = make_HostileBox(random, scale, lattice);
      if (random.chance(0.01)) box.max.y = random.special();
      if (random.chance(0.01)) box.reset();
      const T3DCYL cylinder = make_HostileCylinder(random, box, scale, lattice);
      const bool expected = reference::hit_CylBox(cylinder, box);
      ASSERT_EQ(hit_CylBox(cylinder, box), expected) << "case " << k;
      ++(expected ? hit : missed);
    }
  }
  EXPECT_GT(hit, 20000u);
  EXPECT_GT(missed, 20000u);
}

// ---- Slab --------------------------------------------------------------------------------------

TEST(Slab, LeavesOutOnlyWhatIsWhollyOnOneSide) {
  const T3DSLB slab = {kIdentity, 1, 3};
  const auto box = [](double low, double high) { return make_Box({low, 0, 0}, {high, 1, 1}); };
  const auto tri = [](double low, double high) {
    return T3DFAC{{low, 0, 0}, {high, 1, 0}, {low, 0, 1}};
  };
  const struct {
    double low, high;
    bool hit;
  } cases[] = {{-1, 0.9, false}, {-1, 1, true}, {-1, 2, true},  {1.5, 2, true},
               {-9, 9, true},    {3, 4, true},  {3.1, 4, false}};
  for (const auto& c : cases) {
    EXPECT_EQ(hit_SlabBox(slab, box(c.low, c.high)), c.hit) << c.low;
    EXPECT_EQ(hit_SlabTri(slab, tri(c.low, c.high)), c.hit) << c.low;
  }
}

TEST(Slab, WithoutAnAxis_TakesEverything) {
  T3DSLB slab = {kIdentity, 1, 3};
  slab.frm.x = {0, 0, 0};
  EXPECT_TRUE(hit_SlabBox(slab, make_Box({50, 50, 50}, {51, 51, 51})));
  EXPECT_TRUE(hit_SlabTri(slab, {{50, 0, 0}, {60, 0, 0}, {50, 1, 0}}));
  EXPECT_TRUE(in_Slab(slab, make_Box({50, 50, 50}, {51, 51, 51})));
}

TEST(Slab, HoldsABoxWhole_WhenNoCornerIsOutside) {
  const T3DSLB slab = {kIdentity, 1, 3};
  EXPECT_TRUE(in_Slab(slab, make_Box({1, -9, -9}, {3, 9, 9})));
  EXPECT_FALSE(in_Slab(slab, make_Box({0.9, 0, 0}, {2, 1, 1})));
  EXPECT_FALSE(in_Slab(slab, make_Box({2, 0, 0}, {3.1, 1, 1})));
}

// ---- Sphere and circle -------------------------------------------------------------------------

TEST(Sphere, ReachesABox_NoFartherThanItsRadius) {
  const C3DAABB box = make_Box({0, 0, 0}, {1, 1, 1});
  EXPECT_TRUE(hit_SphBox({{0.5, 0.5, 0.5}, 0}, box));
  EXPECT_TRUE(hit_SphBox({{3, 0.5, 0.5}, 2}, box));
  EXPECT_FALSE(hit_SphBox({{3, 0.5, 0.5}, 1.999}, box));
  EXPECT_TRUE(hit_SphBox({{3, 3, 2}, 3}, box));
  EXPECT_FALSE(hit_SphBox({{3, 3, 2}, 2.999}, box));
}

TEST(Sphere, HoldsABoxWhole_ByTheWideSphere) {
  const T3DSPH sphere = {{0, 0, 0}, 1};
  EXPECT_TRUE(in_Sph(sphere, make_Box({-0.1, -1.2, -0.1}, {0.1, -1.1, 0.1})));
  EXPECT_EQ(cls_Sphere(sphere, {0, -1.2, 0}), '0');
  EXPECT_FALSE(in_Sph(sphere, make_Box({-0.1, 0.9, -0.9}, {0.1, 0.95, -0.8})));
  EXPECT_TRUE(in_Sph(sphere, make_Box({-0.1, -0.1, -0.1}, {0.1, 0.1, 0.1})));
}

TEST(Circle, ReachesABox_NoFartherThanItsRadius) {
  C2DAABB box;
  box.add({0, 0});
  box.add({1, 1});
  EXPECT_TRUE(hit_CircBox({{4, 5}, 5}, box));
  EXPECT_FALSE(hit_CircBox({{4, 5}, 4.999}, box));
  EXPECT_TRUE(hit_CircBox({{0.5, 0.5}, 0}, box));
}

TEST(Circle, HoldsABoxWhole_WhenNoCornerIsOutside) {
  C2DAABB box;
  box.add({-1, 0});
  box.add({0, 1});
  EXPECT_TRUE(in_Circ({{0, 0}, 2}, box));
  EXPECT_FALSE(in_Circ({{0, 0}, 1}, box));
  for (const double dx : {-0.25, 0.25}) {
    for (const double dy : {-0.25, 0.25}) {  // one corner is farthest, at 1.06
      EXPECT_FALSE(in_Circ({{-0.5 + dx, 0.5 + dy}, 1.05}, box));
      EXPECT_TRUE(in_Circ({{-0.5 + dx, 0.5 + dy}, 1.07}, box));
    }
  }
}

}  // namespace
}  // namespace undercut
