// The three-axis search against a plain program.
#include <gtest/gtest.h>
#include <omp.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>

#include "interface/exports.h"
#include "interface/parameters.h"
#include "tests/reference/plain_axis.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

using reference::TAxisFound;
using reference::TAxisSettings;

// Sets the parameters for the time of a test.
class Searches : public testing::Test {
 protected:
  ~Searches() override {
    g_Nxn = TNxnPar();
    g_Amo = TAmoPar();
    g_UCs = CUCsPar();
    g_ErrGew = 0.01;
  }
  static void set(const TAxisSettings& settings) {
    std::copy_n(settings.box, 4, g_Nxn.box);
    g_Nxn.f_dxx = settings.dxx;
    g_Nxn.f_dyy = settings.dyy;
    g_Amo.f_dxy = settings.dxy;
    g_Amo.f_eps = settings.eps;
    g_Amo.n_max = settings.limit;
    g_ErrGew = settings.weight;
  }
  struct TAnswer {
    int32_t status;
    T3DFRM frm;
    std::string line;
  };
  // With a start get_Amo, else get_3ax.
  static TAnswer call(TSoup& soup, const T2DVEC* start) {
    TUcReq req;
    TUcRes res;
    ini_Req(&req);
    ini_Res(&res);
    req.msh = soup.msh();
    if (start) req.f_a = start->x, req.f_b = start->y;
    g_UCs.b_sta = 1;
    testing::internal::CaptureStdout();
    TAnswer answer;
    answer.status = start ? get_Amo(&req, &res) : get_3ax(&req, &res);
    std::fflush(stdout);
    answer.line = testing::internal::GetCapturedStdout();
    answer.frm = res.frm_a;
    clr_Res(&res);
    return answer;
  }
  static void expect_Plain(TSoup& soup, const TAxisSettings& settings, const T2DVEC* start) {
    set(settings);
    const TAnswer found = call(soup, start);
    const TAxisFound plain = reference::find_Axis(soup.msh(), settings, start);
    ASSERT_EQ(found.status, 0);
    char rating[32] = {};
    std::to_chars(rating, rating + 31, plain.rating);
    const std::string head = std::string(start ? "get_Amo" : "get_3ax") + " :: ratings " +
                             std::to_string(plain.ratings) + ", rating " + rating + ", theta ";
    EXPECT_EQ(found.line.substr(0, head.size()), head);
    EXPECT_EQ(std::memcmp(&found.frm, &plain.frm, sizeof(T3DFRM)), 0)
        << found.frm.z.x << " " << found.frm.z.y << " " << found.frm.z.z << " instead of "
        << plain.frm.z.x << " " << plain.frm.z.y << " " << plain.frm.z.z;
  }
};

}  // namespace

TEST_F(Searches, FindTheFrameAndTheRatingOfAPlainProgram) {
  constexpr uint64_t seed = 3333;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(24); ++round) {
    SCOPED_TRACE(round);
    TSoup soup = round % 4 == 0   ? make_Tangle(random, 5 + random.below(20), 1 + random.below(40))
                 : round % 4 == 1 ? tilt(make_Bumpy(4, 4))
                 : round % 4 == 2 ? tilt(make_Box(2, 3, 5))
                                  : make_Sphere(4, 6, 4);
    TAxisSettings settings;
    if (round >= 8) {
      settings.box[0] = random.real(-20, 60);
      settings.box[1] = random.real(0, 90);
      settings.box[2] = random.real(60, 200);
      settings.box[3] = random.real(90, 500);
      settings.dxx = random.real(20, 60);
      settings.dyy = random.real(20, 60);
      settings.dxy = random.real(0, 20);
      settings.eps = random.real(0, 1);
      settings.limit = static_cast<unsigned>(random.below(40));
      settings.weight = random.real(0, 1);
    }
    expect_Plain(soup, settings, nullptr);
    const T2DVEC start = {random.real(-50, 200), random.real(-50, 400)};
    expect_Plain(soup, settings, &start);
  }
}

TEST_F(Searches, HaveTheSameBits_ForAnyNumberOfThreads) {
  const int threads_before = omp_get_max_threads();
  TSoup soup = tilt(make_Bumpy(15, 15));
  TAnswer first = {};
  for (const int threads : {1, 2, 3, 4, 8, 16, 1}) {
    omp_set_num_threads(threads);
    const TAnswer found = call(soup, nullptr);
    ASSERT_EQ(found.status, 0);
    if (first.line.empty()) first = found;
    EXPECT_EQ(found.line, first.line);
    EXPECT_EQ(std::memcmp(&found.frm, &first.frm, sizeof(T3DFRM)), 0) << threads;
  }
  omp_set_num_threads(threads_before);
}

}  // namespace undercut::tests
