#include "files/writers.h"
#include "tests/files/support.h"

namespace undercut {
namespace {

class Trf : public InFolder {};

TEST_F(Trf, Mat_ByteForByte) {
  const T3DMAT mat = {
      {1, -2, 0.5, 1e100, 0, 123456789.5, 1e-7, -1e-100, 1.0 / 3, 2, 3, 4, 0, 0, 0, 1}};
  ASSERT_TRUE(trf_Mat("a.trf", mat));
  EXPECT_EQ(read("a.trf"),
            "+1.00000000e+00 -2.00000000e+00 +5.00000000e-01 +1.00000000e+100\n"
            "+0.00000000e+00 +1.23456790e+08 +1.00000000e-07 -1.00000000e-100\n"
            "+3.33333333e-01 +2.00000000e+00 +3.00000000e+00 +4.00000000e+00\n"
            "+0.00000000e+00 +0.00000000e+00 +0.00000000e+00 +1.00000000e+00\n");
}

TEST_F(Trf, Mat_EndsWithTheUnitRow_WhateverTheMatrixHolds) {
  T3DMAT mat;
  for (double& m : mat.m) m = 7;
  ASSERT_TRUE(trf_Mat("a.trf", mat));
  EXPECT_EQ(read_From("a.trf", 3),
            "+0.00000000e+00 +0.00000000e+00 +0.00000000e+00 +1.00000000e+00\n");
}

TEST_F(Trf, Frm_HasTheAxesAndTheOriginAsColumns) {
  ASSERT_TRUE(trf_Frm("a.trf", {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}}));
  EXPECT_EQ(read("a.trf"),
            "+1.00000000e+00 +4.00000000e+00 +7.00000000e+00 +1.00000000e+01\n"
            "+2.00000000e+00 +5.00000000e+00 +8.00000000e+00 +1.10000000e+01\n"
            "+3.00000000e+00 +6.00000000e+00 +9.00000000e+00 +1.20000000e+01\n"
            "+0.00000000e+00 +0.00000000e+00 +0.00000000e+00 +1.00000000e+00\n");
}

TEST_F(Trf, IsFalse_ForANullOrUnwritablePath) {
  EXPECT_FALSE(trf_Mat(nullptr, T3DMAT()));
  EXPECT_FALSE(trf_Frm(nullptr, kTurned));
  EXPECT_FALSE(trf_Frm(kUnwritable, kTurned));
}

}  // namespace
}  // namespace undercut
