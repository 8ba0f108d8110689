// Where the rays of triangles start: the fastest form against single rays.
#include "mesh/ray_starts.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20241124;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr T3DVEC kUntouched = {-77.5, 1e-300, 42};
constexpr uint8_t kUntouchedByte = 0xEE;

// One bit pattern; what is not a number has many, and none is promised.
bool is_Same(double a, double b) {
  return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}
bool is_Same(const T3DVEC& a, const T3DVEC& b) {
  return is_Same(a.x, b.x) && is_Same(a.y, b.y) && is_Same(a.z, b.z);
}

// What a form fills for a range of triangles, with something else on both sides of it.
struct TFilled {
  std::vector<T3DVEC> orgs;
  std::vector<uint8_t> no_ray;
  TPointRange range;

  template <typename Form>
  TFilled(Form form, const TRayStarts& starts, uint32_t first, uint32_t end)
      : orgs(starts.msh.n_tri, kUntouched), no_ray(starts.msh.n_tri, kUntouchedByte) {
    range = form(starts, first, end, orgs.data(), no_ray.data());
  }
};

TFilled fill_Plain(const TRayStarts& starts, uint32_t first, uint32_t end) {
  return {[](const TRayStarts& from, uint32_t t, uint32_t last, T3DVEC* orgs, uint8_t* no_ray) {
            TPointRange range;
            for (; t < last; ++t) {
              const bool is_ray = start_Ray(from, t, orgs[t]);
              no_ray[t] = is_ray ? 0 : kNoRay;
              if (!is_ray) continue;
              const T3DVEC& p = orgs[t];
              for (const double x : {p.x, p.y, p.z}) range.is_finite &= std::isfinite(x);
              const auto extend = [](double x, double& low, double& high) {
                if (x < low) low = x;
                if (x > high) high = x;
              };
              extend(p.x, range.box.min.x, range.box.max.x);
              extend(p.y, range.box.min.y, range.box.max.y);
              extend(p.z, range.box.min.z, range.box.max.z);
            }
            return range;
          },
          starts, first, end};
}

testing::AssertionResult equal(const TFilled& got, const TFilled& want) {
  for (size_t t = 0; t < want.orgs.size(); ++t) {
    if (got.no_ray[t] != want.no_ray[t])
      return testing::AssertionFailure() << "whether triangle " << t << " starts a ray";
    if (!is_Same(got.orgs[t], want.orgs[t]))
      return testing::AssertionFailure() << "the start of triangle " << t;
  }
  if (got.range.is_finite != want.range.is_finite)
    return testing::AssertionFailure() << "whether all are finite";
  if (got.range.box.min != want.range.box.min || got.range.box.max != want.range.box.max)
    return testing::AssertionFailure() << "the box";
  return testing::AssertionSuccess();
}

void expect_Equal(const TRayStarts& starts, uint32_t first, uint32_t end) {
  const TFilled plain = fill_Plain(starts, first, end);
  EXPECT_TRUE(equal(TFilled(start_Each, starts, first, end), plain))
      << "start_Each, " << first << " to " << end;
  EXPECT_TRUE(equal(TFilled(start_Rays, starts, first, end), plain))
      << "start_Rays, " << first << " to " << end;
}

enum class Kind { kPlain, kFlat, kTiny, kHuge, kSpecial, kMixed, kCount };

double any_Number(reference::Random& random, Kind kind) {
  const double x = random.real(-1, 1);
  switch (kind) {
    case Kind::kTiny:  // squares and products vanish, or all but
      return random.chance(0.2) ? 5e-324 * std::round(4 * x)
                                : x * std::pow(10, random.real(-323, -150));
    case Kind::kHuge:  // and overflow
      return x * std::pow(10, random.real(140, 308));
    case Kind::kSpecial:
      return random.chance(0.3) ? random.special() : x;
    case Kind::kMixed:
      return random.chance(0.02) ? random.special() : x * std::pow(10, random.real(-20, 20));
    default:
      return x;
  }
}

T3DVEC any_Point(reference::Random& random, Kind kind) {
  const double x = any_Number(random, kind), y = any_Number(random, kind);
  return {x, y, any_Number(random, kind)};
}

// Triangles over few vertices: some share an index or a place, some lie on a line.
TSoup make_Mesh(reference::Random& random, Kind kind, uint32_t triangles) {
  TSoup soup;
  const double flat = kind == Kind::kFlat ? 0.5 : 0.05;
  const uint32_t vertices = 3 + 2 * triangles;
  for (uint32_t v = 0; v < vertices; ++v) {
    T3DVEC p = any_Point(random, kind);
    if (v > 1 && random.chance(flat)) p = soup.vtx[random.below(v)];
    if (v > 1 && random.chance(flat)) p = 0.5 * (soup.vtx[v - 1] + soup.vtx[v - 2]);
    if (random.chance(flat)) p.x = random.chance(0.5) ? 0.0 : -0.0;
    soup.vtx.push_back(p);
  }
  const auto pick = [&] { return static_cast<uint32_t>(random.below(vertices)); };
  while (soup.tri.size() < triangles) {
    const uint32_t a = pick(), b = random.chance(flat) ? a : pick();
    const uint32_t c = random.chance(flat) ? a : random.chance(flat) ? b : pick();
    soup.tri.push_back({a, b, c});
  }
  return soup;
}

}  // namespace

TEST(RayStarts, HaveTheBitsOfSingleRays_AndTheirRange) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  reference::Random random(kSeed);
  uint32_t none = 0, infinite = 0, finite = 0;
  for (uint32_t round = 0; round < scale_Cases(600); ++round) {
    const auto kind = static_cast<Kind>(round % static_cast<uint32_t>(Kind::kCount));
    TSoup soup = make_Mesh(random, kind, 1 + static_cast<uint32_t>(random.below(60)));
    const T3DMSH msh = soup.msh();
    std::vector<T3DVEC> normals;
    for (uint32_t t = 0; t < msh.n_tri; ++t) normals.push_back(any_Point(random, kind));
    const double lift = round % 7 == 0 ? 0.0 : any_Number(random, kind);
    const auto first = static_cast<uint32_t>(random.below(msh.n_tri + 1));
    const auto end = first + static_cast<uint32_t>(random.below(msh.n_tri - first + 1));
    for (const bool is_given : {false, true}) {
      const TRayStarts starts = {msh, lift, is_given ? normals.data() : nullptr};
      expect_Equal(starts, first, end);
      expect_Equal(starts, 0, msh.n_tri);
      const TFilled all(start_Rays, starts, 0, msh.n_tri);
      for (const uint8_t is : all.no_ray) none += is ? 1 : 0;
      ++(all.range.is_finite ? finite : infinite);
    }
  }
  EXPECT_GT(none, 500u);
  EXPECT_GT(finite, 200u);
  EXPECT_GT(infinite, 200u);
}

TEST(RayStarts, OfAnyRange_TouchNoOtherTriangle) {
  reference::Random random(kSeed + 1);
  for (const Kind kind : {Kind::kPlain, Kind::kFlat, Kind::kSpecial}) {
    TSoup soup = make_Mesh(random, kind, 20);
    std::vector<T3DVEC> normals;
    for (uint32_t t = 0; t < 20; ++t) normals.push_back(any_Point(random, Kind::kPlain));
    for (uint32_t first = 0; first < 10; ++first)
      for (uint32_t count = 0; count < 10; ++count) {
        expect_Equal({soup.msh(), 0.125, nullptr}, first, first + count);
        expect_Equal({soup.msh(), 0.125, normals.data()}, first, first + count);
      }
  }
}

// One odd triangle at each place of a group, and beyond the last whole one.
TEST(RayStarts, AreNoneWhereTwoCornersAreEqual_ByIndexOrByPlace) {
  for (uint32_t place = 0; place < 6; ++place)
    for (const T3DTRI& odd : {T3DTRI{0, 0, 1}, T3DTRI{0, 1, 0}, T3DTRI{1, 0, 0}, T3DTRI{0, 5, 1},
                              T3DTRI{1, 0, 5}, T3DTRI{5, 1, 0}}) {
      TSoup soup;
      soup.vtx = {{0, 5, 9}, {1, 0, 0}, {0, 1, 0}, {1, 1, 1}, {2, 5, 3}, {-0.0, 5, 9}};
      soup.tri.assign(6, {1, 2, 3});
      soup.tri[place] = odd;
      const TRayStarts starts = {soup.msh(), 1.0, nullptr};
      expect_Equal(starts, 0, 6);
      const TFilled filled(start_Rays, starts, 0, 6);
      for (uint32_t t = 0; t < 6; ++t) EXPECT_EQ(filled.no_ray[t], t == place ? kNoRay : 0);
      EXPECT_TRUE(is_Same(filled.orgs[place], {0, 0, 0}));
      EXPECT_TRUE(filled.range.box.min == filled.range.box.max);  // all others start at one place
      EXPECT_TRUE(filled.range.is_finite);
    }
}

TEST(RayStarts, LeaveTrianglesWithoutNumbers_OutOfTheRangeOnlyWhereTheyStartNoRay) {
  for (uint32_t place = 0; place < 6; ++place)
    for (const double odd : {kInfinity, -kInfinity, std::nan("")})
      for (uint32_t axis = 0; axis < 3; ++axis) {
        TSoup soup;
        soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 3, 4}};
        (axis == 0 ? soup.vtx[3].x : axis == 1 ? soup.vtx[3].y : soup.vtx[3].z) = odd;
        soup.tri.assign(6, {0, 1, 2});
        soup.tri[place] = {3, 0, 0};
        const TRayStarts starts = {soup.msh(), 1.0, nullptr};
        expect_Equal(starts, 0, 6);
        EXPECT_TRUE(TFilled(start_Rays, starts, 0, 6).range.is_finite);
        soup.tri[place] = {3, 0, 1};
        expect_Equal(starts, 0, 6);
        EXPECT_FALSE(TFilled(start_Rays, starts, 0, 6).range.is_finite);
        // Equal to itself by index alone: it is not a number.
        soup.tri[place] = {3, 3, 0};
        expect_Equal(starts, 0, 6);
        EXPECT_EQ(TFilled(start_Rays, starts, 0, 6).no_ray[place], std::isnan(odd) ? 0 : kNoRay);
      }
}

TEST(RayStarts, OfATriangleOnALine_AreNotLifted) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}};
  soup.tri.assign(5, {0, 1, 2});
  const TRayStarts starts = {soup.msh(), 9.0, nullptr};
  expect_Equal(starts, 0, 5);
  for (const T3DVEC& org : TFilled(start_Rays, starts, 0, 5).orgs)
    EXPECT_TRUE(is_Same(org, {1, 1, 1}));
}

TEST(RayStarts, OfNoTriangles_HaveAnEmptyRange) {
  TSoup soup = make_Grid(2, 2);
  for (const uint32_t t : {0u, 3u, 8u}) {
    const TFilled filled(start_Rays, {soup.msh(), 1.0, nullptr}, t, t);
    EXPECT_TRUE(filled.range.box.is_Inverted());
    EXPECT_TRUE(filled.range.is_finite);
  }
}

}  // namespace undercut::tests
