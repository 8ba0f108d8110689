// Results are the same bits as when their hashes were taken: every computation over real parts and
// generated bodies. golden.txt has a line for each call: mesh, call, status, hash of all result
// bytes.
//
// The bits hang on the C library beside this one: on sin, cos, acos, atan2 and pow of libm, which
// round to within an ulp as each release of it, and its form for processors with or without fused
// multiply-add, happen to do. The hashes were taken with glibc 2.36 on a processor with it. The
// line "maths" is a hash of such values: where it differs nothing can be compared, and the tests
// are skipped and say so. All else is IEEE arithmetic and the same everywhere.
//
// With UNDERCUT_GOLDEN_WRITE=FILE in the environment the whole program writes the lines there and
// compares nothing. A change of golden.txt needs a reason in the changelog.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "tests/golden/golden_bodies.h"
#include "tests/golden/golden_calls.h"

namespace {

using undercut::tests::CHash;
using undercut::tests::TGoldenLine;
using Lines = std::vector<std::string>;

const char* file_ToWrite() { return std::getenv("UNDERCUT_GOLDEN_WRITE"); }

std::string form_Line(const std::string& mesh, const TGoldenLine& line) {
  char text[128];
  std::snprintf(text, sizeof text, "%-15s %-28s %5" PRId32 " %016" PRIx64, mesh.c_str(),
                line.call.c_str(), line.status, line.hash);
  return text;
}

// The lines of golden.txt that begin with a word.
Lines list_Golden(const std::string& mesh) {
  std::ifstream file(UNDERCUT_SOURCE "/tests/golden/golden.txt");
  Lines lines;
  for (std::string line; std::getline(file, line);)
    if (line.rfind(mesh + " ", 0) == 0) lines.push_back(line);
  return lines;
}

TGoldenLine hash_Maths() {
  CHash hash;
  for (int i = 0; i < 20000; ++i) {
    const volatile double x = 0.00037 * i;  // not to be worked out by the compiler
    for (const double y : {std::sin(x), std::cos(x), std::acos(x / 8 - 0.4), std::atan2(x - 3, 2.5),
                           std::pow(x, 1.0 / 3)})
      hash.add_Value(y);
  }
  return {"functions", 0, hash.value()};
}

void check_Lines(const std::string& mesh, const std::vector<TGoldenLine>& lines) {
  if (const char* path = file_ToWrite()) {
    std::ofstream file(path, std::ios::app);
    for (const TGoldenLine& line : lines) file << form_Line(mesh, line) << '\n';
    ASSERT_TRUE(file.good()) << path;
    return;
  }
  const Lines golden = list_Golden(mesh);
  EXPECT_EQ(golden.size(), lines.size()) << "calls over " << mesh;
  for (size_t i = 0; i < lines.size() && i < golden.size(); ++i)
    EXPECT_EQ(form_Line(mesh, lines[i]), golden[i]) << mesh << " " << lines[i].call;
}

// Begins the file that is to be written.
class CGoldenFile : public testing::Environment {
 public:
  void SetUp() override {
    if (const char* path = file_ToWrite())
      std::ofstream(path) << form_Line("maths", hash_Maths()) << '\n';
  }
};
[[maybe_unused]] testing::Environment* const g_File =
    testing::AddGlobalTestEnvironment(new CGoldenFile);

class Golden : public testing::TestWithParam<const char*> {};

TEST_P(Golden, ResultsAreTheSameBits) {
  undercut::tests::TSoup mesh = undercut::tests::make_GoldenMesh(GetParam());
  if (mesh.tri.empty()) GTEST_SKIP() << "no such part here: " << GetParam();
  if (!file_ToWrite() && list_Golden("maths") != Lines{form_Line("maths", hash_Maths())})
    GTEST_SKIP() << "sin, cos, acos, atan2 or pow round otherwise than where the hashes were taken";
  undercut::tests::CGoldenScene scene(std::move(mesh));
  testing::internal::CaptureStderr();  // depth fields tell there of what they can't find
  const auto lines = undercut::tests::CGoldenCalls(scene).run_All();
  testing::internal::GetCapturedStderr();
  check_Lines(GetParam(), lines);
}

std::string name_Of(const testing::TestParamInfo<const char*>& info) { return info.param; }

INSTANTIATE_TEST_SUITE_P(Generated, Golden, testing::ValuesIn(undercut::tests::kGenerated),
                         name_Of);
INSTANTIATE_TEST_SUITE_P(Parts, Golden, testing::ValuesIn(undercut::tests::kParts), name_Of);

}  // namespace
