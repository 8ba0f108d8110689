// The life of the records of the boundary, and of the registered mesh under failing memory.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "square.h"
#include "tests/support/allocations.h"

using namespace undercut::tests;

namespace {

constexpr unsigned char kOld = 0xAB;  // what the host's memory held

template <typename Record>
std::vector<unsigned char> bytes_Of(const Record& record) {
  const auto* first = reinterpret_cast<const unsigned char*>(&record);
  return {first, first + sizeof(Record)};
}

TEST(Records, ANewRequest_IsEmptyButForItsGapsAndTheClosingDisk) {
  TUcReq req;
  std::memset(static_cast<void*>(&req), kOld, sizeof req);
  const int64_t live = live_Allocations();
  EXPECT_EQ(ini_Req(&req), 0);
  EXPECT_EQ(live_Allocations(), live) << "a request allocates nothing";

  std::vector<unsigned char> expected(652, 0);
  for (int byte = 92; byte < 96; ++byte) expected[byte] = kOld;
  for (int byte = 316; byte < 336; ++byte) expected[byte] = kOld;
  const double one = 1.0;  // on the diagonal of the frame: x.x, y.y, z.z
  for (const int byte : {216, 216 + 32, 216 + 64}) std::memcpy(&expected[byte], &one, sizeof one);
  EXPECT_EQ(bytes_Of(req), expected);
}

TEST(Records, ANewRequest_MayStandAtAMultipleOf4Bytes) {
  alignas(8) unsigned char memory[4 + sizeof(TUcReq)];
  std::memset(memory, kOld, sizeof memory);
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  EXPECT_EQ(ini_Req(req), 0);
  EXPECT_EQ(memory[3], kOld);
  EXPECT_EQ(memory[4], 0);
  double one = 0.0;
  std::memcpy(&one, memory + 4 + 216, sizeof one);
  EXPECT_EQ(one, 1.0);
}

TEST(Records, ANewResult_IsEmptyFromByte192On_AndKeepsTheFirst192Bytes) {
  TUcRes res;
  std::memset(static_cast<void*>(&res), kOld, sizeof res);
  EXPECT_EQ(ini_Res(&res), 0);
  std::vector<unsigned char> expected(368, 0);
  std::fill(expected.begin(), expected.begin() + 192, kOld);
  EXPECT_EQ(bytes_Of(res), expected);
}

TEST(Records, ARequest_TakesClosedCurvesAndSetsOfThem) {
  T3DVEC points[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  TArrVec curve = {points, 3};
  TArrArrVec curves = {&curve, 1};
  TUcReq req;
  ini_Req(&req);
  req.arg = curves;
  req.lst = {&curves, 1};
  EXPECT_EQ(req.arg.data[0].data[1].x, 1.0);
  EXPECT_EQ(req.lst.data[0].data[0].data[1].x, 1.0);
}

TEST(Records, NullPointers_AreHarmless) {
  EXPECT_EQ(ini_Req(nullptr), 0);
  EXPECT_EQ(ini_Res(nullptr), 0);
  EXPECT_EQ(clr_Res(nullptr), 0);
  EXPECT_EQ(clr_Sub(nullptr), 0);
}

// An array as the library allocates it, zeroed.
template <typename T>
T* array(uint32_t count) {
  return static_cast<T*>(std::memset(::operator new(count * sizeof(T)), 0, count * sizeof(T)));
}
template <typename List>
void fill_List(List& lst, uint32_t count) {
  lst.data = array<std::remove_pointer_t<decltype(lst.data)>>(count);
  lst.count = count;
  lst.capacity = count;
}
template <typename Array>
void fill_Array(Array& arr, uint32_t count) {
  arr.data = array<std::remove_pointer_t<decltype(arr.data)>>(count);
  arr.count = count;
}

// A result in which every array is there, at every level.
void fill_Result(TUcRes& res) {
  ini_Res(&res);
  res.lst = array<T3DFRM>(2);
  res.n_lst = 2;
  res.dfi = array<double>(3);
  res.ucs = array<uint8_t>(3);
  res.sta = array<TUcStat>(2);
  fill_Array(res.rma, 2);
  for (uint32_t i = 0; i < 2; ++i) fill_Array(res.rma.data[i], 3);
  fill_List(res.com, 2);
  for (uint32_t i = 0; i < 2; ++i) fill_List(res.com.data[i], 3);
  fill_List(res.uca_t, 2);
  for (uint32_t i = 0; i < 2; ++i) {
    fill_List(res.uca_t.data[i], 2);
    for (uint32_t k = 0; k < 2; ++k) fill_List(res.uca_t.data[i].data[k], 4);
  }
  fill_List(res.uca_a, 2);
  fill_List(res.uca_f, 2);
  fill_List(res.nml, 2);
  for (uint32_t i = 0; i < 2; ++i) {
    fill_List(res.uca_a.data[i], 3);
    fill_List(res.uca_f.data[i], 3);
    fill_List(res.nml.data[i], 3);
  }
  fill_Array(res.prj, 2);
  for (uint32_t i = 0; i < 2; ++i) fill_Array(res.prj.data[i], 3);
  fill_Array(res.sts, 2);
}

TEST(Records, Clearing_FreesEveryArrayAtEveryLevel) {
  const int64_t live = live_Allocations();
  TUcRes res;
  fill_Result(res);
  EXPECT_EQ(live_Allocations(), live + 30);
  EXPECT_EQ(clr_Res(&res), 0);
  EXPECT_EQ(live_Allocations(), live);
}

TEST(Records, Clearing_EmptiesEachRecordWhole_AndKeepsTheFramesAndTheGaps) {
  TUcRes res;
  fill_Result(res);
  std::memset(reinterpret_cast<unsigned char*>(&res), kOld, 192);
  res.gap_204 = res.gap_268 = 0x01010101;
  EXPECT_EQ(clr_Res(&res), 0);
  std::vector<unsigned char> expected(368, 0);
  std::fill(expected.begin(), expected.begin() + 192, kOld);
  std::fill(expected.begin() + 204, expected.begin() + 208, 1);
  std::fill(expected.begin() + 268, expected.begin() + 272, 1);
  EXPECT_EQ(bytes_Of(res), expected);
}

TEST(Records, Clearing_GoesInAFixedOrder) {
  TUcRes res;
  fill_Result(res);
  const void* order[] = {res.ucs,        res.dfi,      res.sta,        res.lst,
                         res.rma.data,   res.com.data, res.uca_t.data, res.uca_a.data,
                         res.uca_f.data, res.prj.data, res.nml.data,   res.sts.data};
  const FreedBlocks freed;
  clr_Res(&res);
  int before = -1;
  for (const void* block : order) {
    EXPECT_GT(freed.place_Of(block), before);
    before = freed.place_Of(block);
  }
}

TEST(Records, Clearing_TwiceInARowIsHarmless) {
  const int64_t live = live_Allocations();
  TUcRes res;
  fill_Result(res);
  EXPECT_EQ(clr_Res(&res), 0);
  EXPECT_EQ(live_Allocations(), live);
  const std::vector<unsigned char> once = bytes_Of(res);
  EXPECT_EQ(clr_Res(&res), 0);
  EXPECT_EQ(bytes_Of(res), once);
  EXPECT_EQ(live_Allocations(), live + 1) << "the copy of the bytes";
}

TEST(Records, Clearing_TakesAResultThatIsPartlyFilled) {
  const int64_t live = live_Allocations();
  TUcRes res;
  ini_Res(&res);
  fill_List(res.uca_t, 3);
  fill_List(res.uca_t.data[1], 2);
  res.uca_t.count = 1;
  EXPECT_EQ(clr_Res(&res), 0);
  EXPECT_EQ(live_Allocations(), live);
}

TEST(Records, Clearing_TakesARecordAtAMultipleOf4Bytes) {
  alignas(8) unsigned char memory[4 + sizeof(TUcRes)] = {};
  auto* res = reinterpret_cast<TUcRes*>(memory + 4);
  const int64_t live = live_Allocations();
  fill_Result(*res);
  EXPECT_EQ(clr_Res(res), 0);
  EXPECT_EQ(live_Allocations(), live);
}

TEST(Records, ClearingOneList_FreesItAndEmptiesItsRecord) {
  const int64_t live = live_Allocations();
  TLstU32 lst;
  fill_List(lst, 5);
  EXPECT_EQ(clr_Sub(&lst), 0);
  EXPECT_TRUE(lst.data == nullptr);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_EQ(lst.capacity, 0u);
  EXPECT_EQ(live_Allocations(), live);
  EXPECT_EQ(clr_Sub(&lst), 0);
}

// ---- The registered mesh -----------------------------------------------------------------------

// A strip of triangles, large enough for a tree of several levels.
struct TStrip {
  std::vector<T3DVEC> vtx;
  std::vector<T3DTRI> tri;
  explicit TStrip(uint32_t count) {
    for (uint32_t i = 0; i < count + 2; ++i) vtx.push_back({0.5 * i, double(i % 2), 0.0});
    for (uint32_t i = 0; i < count; ++i) tri.push_back({i, i + 1, i + 2});
  }
  T3DMSH msh() { return {vtx.data(), uint32_t(vtx.size()), tri.data(), uint32_t(tri.size())}; }
};

TEST(RegisteredMeshCalls, EachStepWithoutMemory_GivesItsCodeAndLeaksNothing) {
  TStrip strip(100);
  const T3DMSH msh = strip.msh();
  clr_Dll();
  std::vector<int32_t> codes = list_FailureCodes([&] {
    const int32_t code = ini_Adt(&msh);
    clr_Dll();
    return code;
  });
  // Some step may do without the scratch memory that it would like: 0 in between.
  codes.erase(std::remove(codes.begin(), codes.end(), 0), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  EXPECT_EQ(codes, (std::vector<int32_t>{-5, -6, -7, -8, -9, -10, -11, -12}));
}

TEST(RegisteredMeshCalls, AMeshWithoutArraysOrCounts_GivesMinus1ToMinus4) {
  TStrip strip(3);
  const T3DMSH whole = strip.msh();
  T3DMSH msh = whole;
  EXPECT_EQ(ini_Adt(nullptr), -1);
  msh.vtx = nullptr;
  EXPECT_EQ(ini_Adt(&msh), -1);
  msh = whole;
  msh.tri = nullptr;
  EXPECT_EQ(ini_Adt(&msh), -2);
  msh = whole;
  msh.n_vtx = 0;
  EXPECT_EQ(ini_Adt(&msh), -3);
  msh = whole;
  msh.n_tri = 0;
  EXPECT_EQ(ini_Adt(&msh), -4);
  strip.tri[2].a = 5;
  EXPECT_EQ(ini_Adt(&whole), UNDERCUT_BAD_VERTEX);
  clr_Dll();
}

TEST(RegisteredMeshCalls, TheTriangleCount_Is0BeforeAndAfter) {
  TStrip strip(7);
  const T3DMSH msh = strip.msh();
  uint32_t count = 99;
  EXPECT_EQ(cnt_Tri(&count), 0);
  EXPECT_EQ(count, 0u);
  ASSERT_EQ(ini_Adt(&msh), 0);
  EXPECT_EQ(cnt_Tri(&count), 0);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(clr_Dll(), 0);
  EXPECT_EQ(cnt_Tri(&count), 0);
  EXPECT_EQ(count, 0u);
}

TEST(RegisteredMeshCalls, TheSelection_IsAnEmptyListWithRoomForAllTriangles) {
  TStrip strip(7);
  const T3DMSH msh = strip.msh();
  ASSERT_EQ(ini_Adt(&msh), 0);
  TLstU32 lst = {};
  EXPECT_EQ(get_Roi(&lst), 0);
  EXPECT_TRUE(lst.data != nullptr);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_EQ(lst.capacity, 7u);
  clr_Dll();
}

TEST(RegisteredMeshCalls, TheSelection_IsTheSameArrayEachTime_NotACopyToRelease) {
  TStrip strip(7);
  const T3DMSH msh = strip.msh();
  ASSERT_EQ(ini_Adt(&msh), 0);
  const int64_t live = live_Allocations();
  TLstU32 one = {}, two = {};
  get_Roi(&one);
  get_Roi(&two);
  EXPECT_TRUE(one.data == two.data);
  EXPECT_EQ(live_Allocations(), live);
  clr_Dll();
}

TEST(RegisteredMeshCalls, TheShadedTriangles_AreNone_AlsoAfterAComputation) {
  TStrip strip(7);
  const T3DMSH msh = strip.msh();
  ASSERT_EQ(ini_Adt(&msh), 0);
  TSquareRequest r;
  ASSERT_EQ(r.fill_AndCall(), 0);
  TLstU32 lst = {};
  EXPECT_EQ(get_Shd(&lst), 0);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_EQ(clr_Sub(&lst), 0);
  clr_Dll();
}

TEST(RegisteredMeshCalls, AThousandCycles_LeakNothing) {
  TStrip strip(40);
  const T3DMSH msh = strip.msh();
  clr_Dll();
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(ini_Adt(&msh), 0);
    ASSERT_EQ(clr_Dll(), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
}

TEST(RegisteredMeshCalls, CoordinatesThatAreNotFinite_AreAllowedIn) {
  TStrip strip(40);
  strip.vtx[3].x = __builtin_inf();
  strip.vtx[9].y = __builtin_nan("");
  strip.vtx[20] = {1e308, -1e308, 1e308};
  const T3DMSH msh = strip.msh();
  EXPECT_EQ(ini_Adt(&msh), 0);
  clr_Dll();
}

}  // namespace
