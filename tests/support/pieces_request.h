// A request of the computations that take pieces of a mesh apart, and the lists that they answer
// with.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "interface/exports.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

using Indices = std::vector<uint32_t>;
using Lists = std::vector<Indices>;
using Codes = std::vector<int32_t>;

struct TPiecesRequest {
  using Computation = int32_t (*)(const TUcReq*, TUcRes*);

  TSoup soup;
  std::vector<uint8_t> bit;
  Lists pieces;
  std::vector<double> add;
  Points curve;               // of arg, if it has points
  std::vector<TCurves> sets;  // of lst
  std::vector<TLstU32> cav = {};
  TUcReq req;
  TUcRes res;

  explicit TPiecesRequest(Computation computation) : computation_(computation) {
    ini_Req(&req);
    ini_Res(&res);
  }
  ~TPiecesRequest() { clr_Res(&res); }
  TPiecesRequest(const TPiecesRequest&) = delete;
  TPiecesRequest& operator=(const TPiecesRequest&) = delete;

  // Writes the views of what now stands in the fields. No piece has a null pointer.
  void fill() {
    req.msh = soup.msh();
    req.bit = {bit.data(), static_cast<uint32_t>(bit.size())};
    cav.clear();
    for (Indices& piece : pieces) {
      piece.reserve(1);
      const auto count = static_cast<uint32_t>(piece.size());
      cav.push_back({piece.data(), count, count});
    }
    const auto regions = static_cast<uint32_t>(cav.size());
    req.cav = {cav.data(), regions, regions};
    req.add = add.data();
    arg_ = {{curve}};
    req.arg = curve.empty() ? TArrArrVec{} : arg_.view();
    views_.clear();
    for (TCurves& set : sets) views_.push_back(set.view());
    req.lst = {views_.data(), static_cast<uint32_t>(views_.size())};
  }
  // The result of an earlier call is released first.
  int32_t call() {
    clr_Res(&res);
    return computation_(&req, &res);
  }
  int32_t fill_AndCall() {
    fill();
    return call();
  }
  // The lists of a call that succeeds. Each has its count as its capacity.
  Lists lists() {
    EXPECT_EQ(fill_AndCall(), 0);
    EXPECT_EQ(res.com.count, res.com.capacity);
    for (uint32_t k = 0; k < res.com.count; ++k)
      EXPECT_EQ(res.com.data[k].count, res.com.data[k].capacity);
    return copy_Nested(res.com);
  }
  // The codes of a call whose allocations fail one after the other.
  Codes list_Codes() {
    fill();
    clr_Res(&res);
    return list_FailureCodes([this] {
      const int32_t code = call();
      clr_Res(&res);
      return code;
    });
  }

 private:
  Computation computation_;
  TCurves arg_ = {{}};
  std::vector<TArrArrVec> views_;
};

// The request and the host's arrays are the same bytes after a call as before it.
inline void expect_Untouched(TPiecesRequest& r) {
  r.fill();
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
  const TSoup soup = r.soup;
  const auto bit = r.bit;
  const auto pieces = r.pieces;
  const auto add = r.add;
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(std::memcmp(soup.vtx.data(), r.soup.vtx.data(), soup.vtx.size() * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(soup.tri.data(), r.soup.tri.data(), soup.tri.size() * sizeof(T3DTRI)), 0);
  EXPECT_EQ(bit, r.bit);
  EXPECT_EQ(pieces, r.pieces);
  EXPECT_EQ(add, r.add);
}

// A request with one thing wrong, and the code that tells it.
struct TPiecesFault {
  int32_t code;
  void (*make)(TPiecesRequest&);
};

// Each fault gives its code, leaks nothing and leaves the result as it was; of two faults the one
// that stands first in the list is told. `make` readies a request that succeeds.
template <size_t N>
void expect_Faults(const TPiecesFault (&faults)[N], TPiecesRequest::Computation computation,
                   void (*make)(TPiecesRequest&)) {
  for (size_t i = 0; i < N; ++i)
    for (size_t k = i; k < N; ++k) {
      TPiecesRequest r(computation);
      make(r);
      r.fill();
      faults[k].make(r);
      faults[i].make(r);
      TUcRes res, before;
      std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
      std::memcpy(static_cast<void*>(&before), &res, sizeof res);
      const int64_t live = live_Allocations();
      EXPECT_EQ(computation(&r.req, &res), faults[i].code) << "beside " << faults[k].code;
      EXPECT_EQ(live_Allocations(), live) << faults[i].code << " beside " << faults[k].code;
      EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0) << faults[i].code;
    }
}

// A hundred calls hold no more than the lists of the last one.
inline void expect_NoLeak(TPiecesRequest& r) {
  r.fill();
  clr_Res(&r.res);
  const int64_t live = live_Allocations();
  ASSERT_EQ(r.call(), 0);
  const int64_t held = live_Allocations();
  for (int cycle = 0; cycle < 100; ++cycle) {
    ASSERT_EQ(r.call(), 0);
    ASSERT_EQ(live_Allocations(), held);
  }
  clr_Res(&r.res);
  EXPECT_EQ(live_Allocations(), live);
}

// A request and a result that stand at multiples of 4 only give the same lists.
inline void expect_WorksUnaligned(TPiecesRequest& r, TPiecesRequest::Computation computation) {
  const Lists expected = r.lists();
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  std::memcpy(static_cast<void*>(req), &r.req, sizeof r.req);
  ini_Res(res);
  ASSERT_EQ(computation(req, res), 0);
  EXPECT_EQ(copy_Nested(res->com), expected);
  clr_Res(res);
}

// Corners of a rectangle, counterclockwise seen from +Z.
inline Points make_Rectangle(double x, double y, double width, double height) {
  return {{x, y, 0}, {x + width, y, 0}, {x + width, y + height, 0}, {x, y + height, 0}};
}

// The triangles of the squares of a sheet that is n squares wide, from (x, y) on, in rising order.
inline Indices list_Squares(uint32_t n, uint32_t x, uint32_t y, uint32_t width, uint32_t height) {
  Indices list;
  for (uint32_t row = y; row < y + height; ++row)
    for (uint32_t t = 2 * (row * n + x); t < 2 * (row * n + x + width); ++t) list.push_back(t);
  return list;
}

// A sheet for random cases: with gaps, and now and then with flat triangles between its vertices.
inline TSoup pick_Sheet(reference::Random& random) {
  TSoup soup = make_Bumpy(6, 5);
  const auto gaps = static_cast<uint32_t>(random.below(6));
  for (uint32_t k = 0; k < gaps; ++k) soup.tri.erase(soup.tri.begin() + random.integer(0, 50));
  if (random.chance(0.2)) soup.tri.insert(soup.tri.begin() + 7, {1, 1, 3});
  return soup;
}
inline Points pick_Curve(reference::Random& random) {
  const T3DVEC centre = {random.real(1, 5), random.real(1, 4), 0};
  Points points = make_Circle(centre, random.real(0.5, 3), 3 + uint32_t(random.below(9)));
  if (random.chance(0.5)) std::reverse(points.begin(), points.end());
  return points;
}

}  // namespace undercut::tests
