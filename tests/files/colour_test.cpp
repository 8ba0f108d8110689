#include "files/colour.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace undercut {

std::ostream& operator<<(std::ostream& out, const TRgb& c) {
  return out << '(' << int{c.r} << ", " << int{c.g} << ", " << int{c.b} << ')';
}

namespace {

constexpr TRgb kWhite = {255, 255, 255};
constexpr TRgb kRed = {255, 0, 0};
constexpr TRgb kBlack = {0, 0, 0};
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TRgb at(double t, int32_t mode) { return col_Map(t, 0, 1, mode); }

TEST(ColourMap, IsWhite_AtAndBelowTheLowBound_InAllModes) {
  for (int32_t mode = 1; mode <= 4; ++mode) {
    EXPECT_EQ(col_Map(0.0, 0, 1, mode), kWhite) << mode;
    EXPECT_EQ(col_Map(-1.0, 0, 1, mode), kWhite) << mode;
    // A bound that single precision rounds up, and one that it rounds down.
    EXPECT_EQ(col_Map(0.1, 0.1, 1, mode), kWhite) << mode;
    EXPECT_EQ(col_Map(0.3, 0.3, 1, mode), kWhite) << mode;
  }
}

TEST(ColourMap, HasItsLastColour_AtAndAboveTheHighBound) {
  for (const double v : {1.0, 2.0, 1e30}) {
    EXPECT_EQ(at(v, 1), kRed);
    EXPECT_EQ(at(v, 2), kRed);
    EXPECT_EQ(at(v, 3), kBlack);
    EXPECT_EQ(at(v, 4), kRed);
  }
}

TEST(ColourMap, Mode1_SaturatesYellow_ThenRunsRoundTheHues) {
  EXPECT_EQ(at(0.085, 1), (TRgb{252, 255, 127}));
  EXPECT_EQ(at(0.17, 1), (TRgb{249, 255, 0}));
  EXPECT_EQ(at(0.25, 1), (TRgb{127, 255, 0}));
  EXPECT_EQ(at(0.375, 1), (TRgb{0, 255, 63}));
  EXPECT_EQ(at(0.5, 1), (TRgb{0, 255, 255}));
  EXPECT_EQ(at(0.625, 1), (TRgb{0, 63, 255}));
  EXPECT_EQ(at(0.75, 1), (TRgb{127, 0, 255}));
  EXPECT_EQ(at(0.875, 1), (TRgb{255, 0, 191}));
}

TEST(ColourMap, Mode2_SaturatesRed) {
  EXPECT_EQ(at(0.25, 2), (TRgb{255, 191, 191}));
  EXPECT_EQ(at(0.5, 2), (TRgb{255, 127, 127}));
  EXPECT_EQ(at(0.75, 2), (TRgb{255, 63, 63}));
}

TEST(ColourMap, Mode3_DarkensToBlack) {
  EXPECT_EQ(at(0.25, 3), (TRgb{191, 191, 191}));
  EXPECT_EQ(at(0.5, 3), (TRgb{127, 127, 127}));
}

TEST(ColourMap, Mode4_IsThePiecewiseRamp) {
  EXPECT_EQ(at(0.1, 4), (TRgb{191, 255, 191}));
  EXPECT_EQ(at(0.3, 4), (TRgb{63, 255, 63}));
  EXPECT_EQ(at(0.5, 4), (TRgb{127, 255, 0}));
  EXPECT_EQ(at(0.7, 4), (TRgb{255, 191, 0}));
  EXPECT_EQ(at(0.9, 4), (TRgb{255, 63, 0}));
}

TEST(ColourMap, Mode4_TakesTheLaterPiece_AtASharedBound) {
  EXPECT_EQ(at(0.2, 4), (TRgb{127, 255, 127}));
  EXPECT_EQ(at(0.4, 4), (TRgb{0, 255, 0}));
  EXPECT_EQ(at(0.6, 4), (TRgb{255, 255, 0}));
  EXPECT_EQ(at(0.8, 4), (TRgb{255, 127, 0}));
}

TEST(ColourMap, ScalesToItsRange) {
  for (int32_t mode = 1; mode <= 4; ++mode) EXPECT_EQ(col_Map(20, -20, 60, mode), at(0.5, mode));
}

TEST(ColourMap, IsBlack_ForAModeOutside1To4) {
  for (const int32_t mode : {0, 5, -1, INT32_MIN, INT32_MAX})
    for (const double v : {-1.0, 0.5, 2.0}) EXPECT_EQ(at(v, mode), kBlack) << mode;
}

TEST(ColourMap, OfARangeWithoutLength_SplitsAtIt) {
  EXPECT_EQ(col_Map(5, 5, 5, 2), kWhite);
  EXPECT_EQ(col_Map(4, 5, 5, 2), kWhite);
  EXPECT_EQ(col_Map(6, 5, 5, 2), kRed);
}

TEST(ColourMap, OfARangeUpsideDown_SplitsAtItsLowBound) {
  EXPECT_EQ(col_Map(3, 5, 1, 2), kWhite);
  EXPECT_EQ(col_Map(5, 5, 1, 2), kWhite);
  EXPECT_EQ(col_Map(6, 5, 1, 2), kRed);
}

TEST(ColourMap, IsWhite_WhereAnythingIsNotANumber) {
  for (int32_t mode = 1; mode <= 4; ++mode) {
    EXPECT_EQ(col_Map(kNan, 0, 1, mode), kWhite);
    EXPECT_EQ(col_Map(0.5, kNan, 1, mode), kWhite);
    EXPECT_EQ(col_Map(0.5, 0, kNan, mode), kWhite);
  }
}

TEST(ColourMap, TakesInfiniteAndHugeValues_ForTheEnds) {
  const double huge = std::numeric_limits<double>::max();
  for (const double v : {kInf, huge}) {
    EXPECT_EQ(at(v, 2), kRed);
    EXPECT_EQ(at(-v, 2), kWhite);
    EXPECT_EQ(col_Map(0.5, 0, v, 2), kWhite);
    EXPECT_EQ(col_Map(0.5, -v, 1, 2), kWhite);
    EXPECT_EQ(col_Map(v, 0, v, 2), kRed);
  }
}

// The map told in double precision and by its colours' own definition, one channel off at most.
TRgb map_Plain(double t, int32_t mode) {
  const auto byte = [](double c) {
    return static_cast<uint8_t>(255 * std::fmin(std::fmax(c, 0), 1));
  };
  const auto wheel = [&](double hue, double saturation) {
    // Each channel falls from 1 to 0 between one sixth and two sixths away from its own hue.
    const auto channel = [&](double own) {
      double away = std::fabs(hue - own);
      if (away > 0.5) away = 1 - away;
      return 1 - saturation * (1 - std::fmin(std::fmax(2 - 6 * away, 0), 1));
    };
    return TRgb{byte(channel(0)), byte(channel(1 / 3.0)), byte(channel(2 / 3.0))};
  };
  if (mode == 1) return wheel(std::fmax(t, 0.17), std::fmin(t / 0.17, 1));
  if (mode == 2) return wheel(0, t);
  if (mode == 3) return {byte(1 - t), byte(1 - t), byte(1 - t)};
  if (t < 0.4) return {byte(1 - 2.5 * t), 255, byte(1 - 2.5 * t)};
  if (t < 0.6) return {byte(5 * t - 2), 255, 0};
  return {255, byte(2.5 - 2.5 * t), 0};
}

TEST(ColourMap, AgreesWithItsPlainForm_OnRandomValues) {
  constexpr unsigned kSeed = 41;
  SCOPED_TRACE(testing::Message() << "seed " << kSeed);
  std::mt19937 random(kSeed);
  std::uniform_real_distribution<double> uniform(1e-6, 1 - 1e-6);
  for (int i = 0; i < 20000; ++i) {
    const double t = uniform(random);
    const int32_t mode = 1 + i % 4;
    const TRgb colour = at(t, mode), plain = map_Plain(t, mode);
    ASSERT_LE(std::abs(colour.r - plain.r), 1) << t << " in mode " << mode;
    ASSERT_LE(std::abs(colour.g - plain.g), 1) << t << " in mode " << mode;
    ASSERT_LE(std::abs(colour.b - plain.b), 1) << t << " in mode " << mode;
  }
}

TEST(Palette, BeginsWithSixteenPlainColours) {
  const TRgb first[] = {{255, 255, 255}, {192, 255, 255}, {255, 0, 0},   {0, 255, 0},
                        {0, 0, 255},     {255, 255, 0},   {0, 255, 255}, {255, 0, 255},
                        {192, 192, 192}, {128, 128, 128}, {128, 0, 0},   {128, 128, 0},
                        {0, 128, 0},     {128, 0, 128},   {0, 128, 128}, {0, 0, 128}};
  for (int i = 0; i < 16; ++i) EXPECT_EQ(col_Pal(i), first[i]) << i;
}

TEST(Palette, HoldsTheNamedColours_InTheirOrder) {
  EXPECT_EQ(col_Pal(16), (TRgb{128, 0, 0}));       // maroon
  EXPECT_EQ(col_Pal(22), (TRgb{255, 99, 71}));     // tomato
  EXPECT_EQ(col_Pal(60), (TRgb{0, 128, 128}));     // teal
  EXPECT_EQ(col_Pal(99), (TRgb{255, 0, 255}));     // magenta
  EXPECT_EQ(col_Pal(123), (TRgb{188, 143, 143}));  // rosy brown, one off the web's
  EXPECT_EQ(col_Pal(145), (TRgb{0, 0, 0}));
  EXPECT_EQ(col_Pal(148), (TRgb{169, 169, 169}));
}

// One number for the whole table, so that no entry can change unseen.
TEST(Palette, IsUnchanged) {
  uint64_t hash = 1469598103934665603u;  // FNV-1a
  for (int i = 0; i <= kPaletteLast; ++i)
    for (const uint8_t byte : {col_Pal(i).r, col_Pal(i).g, col_Pal(i).b})
      hash = (hash ^ byte) * 1099511628211u;
  EXPECT_EQ(hash, 12017397840510359144u);
}

TEST(Palette, NeverGivesItsLastEntry) {
  EXPECT_EQ(kPaletteSize, 150);
  EXPECT_EQ(kPaletteLast, 148);
  EXPECT_EQ(col_Pal(149), col_Pal(148));
  EXPECT_EQ(col_Pal(INT64_MAX), col_Pal(148));
}

TEST(Palette, HoldsNegativeIndicesToTheFirstEntry) {
  EXPECT_EQ(col_Pal(-1), col_Pal(0));
  EXPECT_EQ(col_Pal(INT64_MIN), col_Pal(0));
}

}  // namespace
}  // namespace undercut
