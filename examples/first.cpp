// A first program in C++: a pebble is divided into undercut regions; the result frees itself.
#include <undercut/exports.h>

#include <cmath>
#include <cstdio>
#include <numeric>
#include <vector>

struct Result : TUcRes {
  Result() : TUcRes() { ini_Res(this); }
  ~Result() { clr_Res(this); }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
};

int main() {
  // A pebble of 20 mm, in rows that are turned against one another.
  const uint32_t rows = 40, columns = 80;
  const double turn = 6.283185307179586;
  std::vector<T3DVEC> points;
  std::vector<T3DTRI> triangles;
  for (uint32_t i = 0; i <= rows; ++i)
    for (uint32_t k = 0; k < columns; ++k) {
      const double polar = turn / 2 * (i + 0.3) / (rows + 0.6);
      const double azimuth = turn * (k + 0.37 * i) / columns;
      const double radius = 10 + 1.5 * std::sin(3 * azimuth) * std::sin(2 * polar) +
                            0.05 * std::sin(1.7 * i + 2.3 * k);
      points.push_back({radius * std::sin(polar) * std::cos(azimuth),
                        radius * std::sin(polar) * std::sin(azimuth), radius * std::cos(polar)});
    }
  for (uint32_t i = 0; i < rows; ++i)
    for (uint32_t k = 0; k < columns; ++k) {
      const uint32_t a = i * columns + k, b = i * columns + (k + 1) % columns;
      triangles.push_back({a, a + columns, b + columns});
      triangles.push_back({a, b + columns, b});
    }
  std::vector<uint32_t> all(triangles.size());
  std::iota(all.begin(), all.end(), 0u);

  TLstU32 whole = {all.data(), uint32_t(all.size()), uint32_t(all.size())};
  TUcReq request;
  Result result;
  ini_Req(&request);
  request.msh = {points.data(), uint32_t(points.size()), triangles.data(),
                 uint32_t(triangles.size())};
  request.rois = {&whole, 1, 1};
  const int32_t status = get_Dcm(&request, &result);
  if (status != 0) {
    std::printf("get_Dcm returned %d\n", status);
    return 1;
  }
  for (uint32_t k = 0; k < result.uca_t.data[0].count; ++k)
    std::printf("region %u: %u triangles\n", k + 1, result.uca_t.data[0].data[k].count);
  std::printf("%u triangles left free\n", whole.count);
  return 0;
}
