#include "files/colour.h"

#include <cmath>

namespace undercut {

namespace {

constexpr TRgb kWhite = {255, 255, 255};
constexpr TRgb kRed = {255, 0, 0};
constexpr TRgb kBlack = {0, 0, 0};

uint8_t to_Byte(float component) {
  if (!(component > 0.0f)) return 0;
  if (component >= 1.0f) return 255;
  return static_cast<uint8_t>(component * 255.0f);
}

TRgb to_Rgb(float r, float g, float b) { return {to_Byte(r), to_Byte(g), to_Byte(b)}; }

// Hue, saturation, value to red, green, blue.
TRgb hsv_ToRgb(float h, float s, float v) {
  if (s == 0.0f) return to_Rgb(v, v, v);
  const float x = std::fmod(6.0f * h, 6.0f);
  const int i = static_cast<int>(x);
  const float f = x - static_cast<float>(i);
  const float p = v * (1.0f - s);
  const float q = v * (1.0f - s * f);
  const float u = v * (1.0f - s * (1.0f - f));
  switch (i) {
    case 0:
      return to_Rgb(v, u, p);
    case 1:
      return to_Rgb(q, v, p);
    case 2:
      return to_Rgb(p, v, u);
    case 3:
      return to_Rgb(p, q, v);
    case 4:
      return to_Rgb(u, p, v);
    case 5:
      return to_Rgb(v, p, q);
    default:
      return kWhite;
  }
}

// From white over green and yellow to red, in five equal steps; at a shared bound the later one.
TRgb ramp_Rgb(float t) {
  if (t < 0.2f) {
    const float c = 1.0f - 0.5f * (5.0f * t);
    return to_Rgb(c, 1.0f, c);
  }
  if (t < 0.4f) {
    const float c = 0.5f - 0.5f * (5.0f * (t - 0.2f));
    return to_Rgb(c, 1.0f, c);
  }
  if (t < 0.6f) return to_Rgb(5.0f * (t - 0.4f), 1.0f, 0.0f);
  if (t < 0.8f) return to_Rgb(1.0f, 1.0f - 0.5f * (5.0f * (t - 0.6f)), 0.0f);
  return to_Rgb(1.0f, 0.5f - 0.5f * (5.0f * (t - 0.8f)), 0.0f);
}

constexpr TRgb kPalette[kPaletteSize] = {
    {255, 255, 255}, {192, 255, 255}, {255, 0, 0},     {0, 255, 0},     {0, 0, 255},
    {255, 255, 0},   {0, 255, 255},   {255, 0, 255},   {192, 192, 192}, {128, 128, 128},
    {128, 0, 0},     {128, 128, 0},   {0, 128, 0},     {128, 0, 128},   {0, 128, 128},
    {0, 0, 128},     {128, 0, 0},     {139, 0, 0},     {165, 42, 42},   {178, 34, 34},
    {220, 20, 60},   {255, 0, 0},     {255, 99, 71},   {255, 127, 80},  {205, 92, 92},
    {240, 128, 128}, {233, 150, 122}, {250, 128, 114}, {255, 160, 122}, {255, 69, 0},
    {255, 140, 0},   {255, 165, 0},   {255, 215, 0},   {184, 134, 11},  {218, 165, 32},
    {238, 232, 170}, {189, 183, 107}, {240, 230, 140}, {128, 128, 0},   {255, 255, 0},
    {154, 205, 50},  {85, 107, 47},   {107, 142, 35},  {124, 252, 0},   {173, 255, 47},
    {0, 100, 0},     {0, 128, 0},     {34, 139, 34},   {0, 255, 0},     {50, 205, 50},
    {144, 238, 144}, {152, 251, 152}, {143, 188, 143}, {0, 250, 154},   {0, 255, 127},
    {46, 139, 87},   {102, 205, 170}, {60, 179, 113},  {32, 178, 170},  {47, 79, 79},
    {0, 128, 128},   {0, 139, 139},   {0, 255, 255},   {0, 255, 255},   {224, 255, 255},
    {0, 206, 209},   {64, 224, 208},  {72, 209, 204},  {175, 238, 238}, {127, 255, 212},
    {176, 224, 230}, {95, 158, 160},  {70, 130, 180},  {100, 149, 237}, {0, 191, 255},
    {30, 144, 255},  {173, 216, 230}, {135, 206, 235}, {135, 206, 250}, {25, 25, 112},
    {0, 0, 128},     {0, 0, 139},     {0, 0, 205},     {0, 0, 255},     {65, 105, 225},
    {138, 43, 226},  {75, 0, 130},    {72, 61, 139},   {106, 90, 205},  {123, 104, 238},
    {147, 112, 219}, {139, 0, 139},   {148, 0, 211},   {153, 50, 204},  {186, 85, 211},
    {128, 0, 128},   {216, 191, 216}, {221, 160, 221}, {238, 130, 238}, {255, 0, 255},
    {218, 112, 214}, {199, 21, 133},  {219, 112, 147}, {255, 20, 147},  {255, 105, 180},
    {255, 182, 193}, {255, 192, 203}, {250, 235, 215}, {245, 245, 220}, {255, 228, 196},
    {255, 235, 205}, {245, 222, 179}, {255, 248, 220}, {255, 250, 205}, {250, 250, 210},
    {255, 255, 224}, {139, 69, 19},   {160, 82, 45},   {210, 105, 30},  {205, 133, 63},
    {244, 164, 96},  {222, 184, 135}, {210, 180, 140}, {188, 143, 143}, {255, 228, 181},
    {255, 222, 173}, {255, 218, 185}, {255, 228, 225}, {255, 240, 245}, {250, 240, 230},
    {253, 245, 230}, {255, 239, 213}, {255, 245, 238}, {245, 255, 250}, {112, 128, 144},
    {119, 136, 153}, {176, 196, 222}, {230, 230, 250}, {255, 250, 240}, {240, 248, 255},
    {248, 248, 255}, {240, 255, 240}, {255, 255, 240}, {240, 255, 255}, {255, 250, 250},
    {0, 0, 0},       {105, 105, 105}, {128, 128, 128}, {169, 169, 169}, {192, 192, 192},
};

}  // namespace

TRgb col_Map(double value, double low, double high, int32_t mode) {
  if (mode < 1 || mode > 4) return kBlack;
  const float v = static_cast<float>(value);
  const float lo = static_cast<float>(low);
  const float hi = static_cast<float>(high);
  if (v <= lo) return kWhite;
  if (v >= hi) return mode == 3 ? kBlack : kRed;
  const float t = (v - lo) / (hi - lo);
  if (!(t > 0.0f)) return kWhite;  // not a number, or lost to the width of the range
  switch (mode) {
    case 1:
      return t < 0.17f ? hsv_ToRgb(0.17f, 5.882353f * t, 1.0f) : hsv_ToRgb(t, 1.0f, 1.0f);
    case 2:
      return hsv_ToRgb(1.0f, t, 1.0f);
    case 3:
      return hsv_ToRgb(0.0f, 0.0f, 1.0f - t);
    default:
      return ramp_Rgb(t);
  }
}

TRgb col_Pal(int64_t index) {
  if (index < 0) index = 0;
  if (index > kPaletteLast) index = kPaletteLast;
  return kPalette[index];
}

}  // namespace undercut
