// The frame of every export: what is raised, what is caught, and the checks of indices.
#include "interface/call_frame.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using namespace undercut;

namespace {

TEST(CallFrame, GivesZero_WhenNothingIsRaised) {
  bool ran = false;
  EXPECT_EQ(run_Call([&](CallFrame& frame) {
              frame.need(true, -1);
              ran = true;
            }),
            0);
  EXPECT_TRUE(ran);
}

TEST(CallFrame, GivesTheCodeOfTheFirstCheckThatFails_AndStopsThere) {
  int steps = 0;
  EXPECT_EQ(run_Call([&](CallFrame& frame) {
              frame.need(true, -1);
              ++steps;
              frame.need(false, -2);
              ++steps;
              frame.need(false, -3);
            }),
            -2);
  EXPECT_EQ(steps, 1);
}

TEST(CallFrame, TakesPointersAndCountsAsConditions) {
  const int value = 0;
  const int* some = &value;
  const int* none = nullptr;
  EXPECT_EQ(run_Call([&](CallFrame& frame) { frame.need(some, -1), frame.need(3u, -2); }), 0);
  EXPECT_EQ(run_Call([&](CallFrame& frame) { frame.need(none, -1); }), -1);
  EXPECT_EQ(run_Call([&](CallFrame& frame) { frame.need(0u, -2); }), -2);
}

TEST(CallFrame, GivesTheCodeOfTheStep_WhenMemoryIsExhausted) {
  EXPECT_EQ(run_Call([](CallFrame& frame) {
              frame.at(-8);
              throw std::bad_alloc();
            }),
            -8);
  EXPECT_EQ(run_Call([](CallFrame& frame) {
              frame.at(-8);
              frame.at(-9);
              throw std::bad_alloc();
            }),
            -9);
}

TEST(CallFrame, GivesTheCommonCode_WhenMemoryIsExhaustedInAStepWithoutACode) {
  EXPECT_EQ(run_Call([](CallFrame&) { throw std::bad_alloc(); }), UNDERCUT_NO_MEMORY);
  EXPECT_EQ(UNDERCUT_NO_MEMORY, -1000);
}

TEST(CallFrame, LetsNothingElseAcrossTheBoundary) {
  EXPECT_EQ(run_Call([](CallFrame&) { throw std::runtime_error("any"); }), UNDERCUT_NO_MEMORY);
  EXPECT_EQ(run_Call([](CallFrame&) { throw "a text"; }), UNDERCUT_NO_MEMORY);
  EXPECT_EQ(run_Call([](CallFrame& frame) {
              frame.at(-4);
              throw 2.5;
            }),
            -4);
}

TEST(CallFrame, DestroysTheLocalsOfABodyThatRaised) {
  struct TLocal {
    explicit TLocal(int& ends) : ends_(ends) {}
    ~TLocal() { ++ends_; }
    int& ends_;
  };
  int ends = 0;
  EXPECT_EQ(run_Call([&](CallFrame& frame) {
              const TLocal local(ends);
              frame.need(false, -5);
            }),
            -5);
  EXPECT_EQ(ends, 1);
}

// A mesh of one triangle over three vertices.
struct TOneTriangle {
  T3DVEC vtx[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  T3DTRI tri[1] = {{0, 1, 2}};
  T3DMSH msh = {vtx, 3, tri, 1};
};

int32_t check_Msh(const T3DMSH& msh, int32_t before) {
  return run_Call([&](CallFrame& frame) { need_Msh(frame, msh, before); });
}

TEST(CallFrame, ChecksAMeshInTheOrderVerticesTrianglesCounts) {
  TOneTriangle one;
  EXPECT_EQ(check_Msh(one.msh, 0), 0);
  EXPECT_EQ(check_Msh({}, 0), -1);
  EXPECT_EQ(check_Msh({one.vtx, 0, nullptr, 0}, 0), -2);
  EXPECT_EQ(check_Msh({one.vtx, 0, one.tri, 0}, 0), -3);
  EXPECT_EQ(check_Msh({one.vtx, 3, one.tri, 0}, 0), -4);
}

TEST(CallFrame, ChecksASecondMeshUnderTheCodesThatFollow) {
  TOneTriangle one;
  EXPECT_EQ(check_Msh({}, 4), -5);
  EXPECT_EQ(check_Msh({one.vtx, 0, nullptr, 0}, 4), -6);
  EXPECT_EQ(check_Msh({one.vtx, 0, one.tri, 0}, 4), -7);
  EXPECT_EQ(check_Msh({one.vtx, 3, one.tri, 0}, 4), -8);
}

TEST(CallFrame, FindsATriangleIndexOutOfRange_AtEachPlaceOfAList) {
  for (uint32_t place = 0; place < 4; ++place) {
    uint32_t data[4] = {0, 1, 2, 2};
    const TLst<uint32_t> lst = {data, 4, 4};
    EXPECT_TRUE(ok_Triangles(lst, 3));
    for (const uint32_t bad : {3u, 0xFFFFFFFFu}) {
      data[place] = bad;
      EXPECT_FALSE(ok_Triangles(lst, 3)) << place;
    }
  }
}

TEST(CallFrame, ReadsAListUpToItsCountOnly) {
  uint32_t data[2] = {0, 99};
  EXPECT_TRUE(ok_Triangles({data, 1, 2}, 3));
}

TEST(CallFrame, TakesAListWithoutArrayAsEmpty) {
  EXPECT_TRUE(ok_Triangles({nullptr, 5, 5}, 3));
  EXPECT_TRUE(ok_Triangles({}, 0));
}

}  // namespace
