// get_Dcm over whole real parts, as they come: three bands, the whole mesh as one region of
// interest. Such parts hold coplanar neighbours, needles and holes, so the region of interest may
// fail; what comes back must hold together all the same.
#include <array>
#include <bit>
#include <map>

#include "tests/boundary/dcm_request.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr uintmax_t kLargestFile = 1200000;  // bytes; larger parts take minutes under a sanitizer
#else
constexpr uintmax_t kLargestFile = UINTMAX_MAX;
#endif

// One entry "" stands for a folder that is missing or empty.
std::vector<std::string> list_Parts(const char* folder) {
  std::vector<std::string> parts;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error))
    if (entry.path().extension() == ".stl") parts.push_back(entry.path().string());
  std::sort(parts.begin(), parts.end());
  if (parts.empty()) parts.push_back("");
  return parts;
}

struct TPart {
  std::vector<T3DVEC> vertices;
  std::vector<T3DTRI> triangles;
};

float take_Float(const char* at) {
  uint32_t bits = 0;
  for (int i = 0; i < 4; ++i) bits |= uint32_t{static_cast<uint8_t>(at[i])} << (8 * i);
  return std::bit_cast<float>(bits);
}

// A binary STL file; corners that are exactly equal become one vertex.
TPart read_Part(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  TPart part;
  std::map<std::array<double, 3>, uint32_t> number_of;
  for (size_t at = 84; at + 50 <= bytes.size(); at += 50) {
    uint32_t corners[3];
    for (size_t k = 0; k < 3; ++k) {
      std::array<double, 3> p;
      for (size_t i = 0; i < 3; ++i)
        p[i] = double{take_Float(bytes.data() + at + 12 + 12 * k + 4 * i)} + 0.0;
      const auto next = static_cast<uint32_t>(part.vertices.size());
      const auto [entry, fresh] = number_of.emplace(p, next);
      if (fresh) part.vertices.push_back({p[0], p[1], p[2]});
      corners[k] = entry->second;
    }
    part.triangles.push_back({corners[0], corners[1], corners[2]});
  }
  return part;
}

class Parts : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    defaults::restore();
    defaults::set(dcm_Con, 3);
  }
  void TearDown() override { defaults::restore(); }
};

void expect_Regions(const TLstLstU32& regions, uint32_t triangles) {
  std::vector<bool> held(triangles, false);
  for (uint32_t k = 0; k < regions.count; ++k) {
    ASSERT_GT(regions.data[k].count, 0u);
    for (uint32_t j = 0; j < regions.data[k].count; ++j) {
      const uint32_t t = regions.data[k].data[j];
      ASSERT_LT(t, triangles);
      ASSERT_FALSE(held[t]) << "triangle " << t << " is in two regions";
      held[t] = true;
    }
  }
}

void expect_Axis(const T3DVEC& dir) {
  ASSERT_NEAR(undercut::len(dir), 1, 1e-12);
  const double polar = polar_Of(-dir);
  ASSERT_TRUE(polar <= 20 + 1e-6 || polar >= 160 - 1e-6 || std::fabs(polar - 90) <= 10 + 1e-6)
      << polar;
}

// `left`: what the list holds after the call.
void expect_Sound(const TUcRes& res, int32_t status, uint32_t left, uint32_t triangles) {
  ASSERT_TRUE(status == 0 || status == 1) << status;
  ASSERT_EQ(res.sts.count, 1u);
  const TUcSts sts = res.sts.data[0];
  EXPECT_EQ(uint32_t{sts.roi}, 0u);
  EXPECT_TRUE(sts.first == 0 || sts.first == 11);
  EXPECT_TRUE(sts.second == 0 || (sts.second == 11 && sts.first == 11));
  EXPECT_EQ(status == 1, sts.first != 0);

  // A second attempt that had nothing left to offer has no slot.
  const bool passed_over = sts.first != 0 && sts.second == 0 && left == 0 && res.uca_t.count == 0;
  ASSERT_EQ(res.uca_t.count, passed_over ? 0u : 1u);
  ASSERT_EQ(res.uca_a.count, res.uca_t.count);
  ASSERT_EQ(res.uca_f.count, res.uca_t.count);
  if (passed_over) return;
  const uint32_t n = res.uca_t.data[0].count;
  ASSERT_EQ(res.uca_a.data[0].count, n);
  ASSERT_EQ(res.uca_f.data[0].count, n);
  EXPECT_TRUE(sts.second == 0 || n == 0) << "the slot of a failed region of interest is empty";
  expect_Regions(res.uca_t.data[0], triangles);
  for (uint32_t k = 0; k < n; ++k) {
    expect_Axis(res.uca_a.data[0].data[k].dir);
    ASSERT_NEAR(undercut::len(res.uca_f.data[0].data[k].z), 1, 1e-9);
  }
}

TEST_P(Parts, GiveResultsThatHoldTogether) {
  if (GetParam().empty()) GTEST_SKIP() << "no parts here: the folder is missing";
  if (std::filesystem::file_size(GetParam()) > kLargestFile)
    GTEST_SKIP() << "too large for a build with a sanitizer";
  TPart part = read_Part(GetParam());
  const auto n = static_cast<uint32_t>(part.triangles.size());
  ASSERT_GT(n, 100u);

  std::vector<uint32_t> all(n);
  std::iota(all.begin(), all.end(), 0u);
  TLstU32 roi = {all.data(), n, n};
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = {part.vertices.data(), static_cast<uint32_t>(part.vertices.size()),
             part.triangles.data(), n};
  req.rois = {&roi, 1, 1};
  const int32_t status = get_Dcm(&req, &res);
  expect_Sound(res, status, roi.count, n);
  clr_Res(&res);
}

std::string name_Of(const testing::TestParamInfo<std::string>& info) {
  const std::string stem = std::filesystem::path(info.param).stem().string();
  return stem.empty() ? "none" : stem;
}

INSTANTIATE_TEST_SUITE_P(Shared, Parts, testing::ValuesIn(list_Parts(UNDERCUT_MESHES)), name_Of);
INSTANTIATE_TEST_SUITE_P(Examples, Parts, testing::ValuesIn(list_Parts(UNDERCUT_EXAMPLES)),
                         name_Of);

}  // namespace
