#include "components_calls.h"

#include <algorithm>

#include "errors.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {
namespace {

std::vector<std::vector<uint32_t>> copy_Lists(const TLstLstU32& lists) {
  std::vector<std::vector<uint32_t>> copies;
  copies.reserve(lists.count);
  for (uint32_t k = 0; k < lists.count; ++k) {
    copies.push_back(copy_List(lists.data[k]));
  }
  return copies;
}

// A view of sets of curves, which must outlive it.
struct CurveSets {
  std::vector<std::vector<TArrVec>> curves;
  std::vector<TArrArrVec> sets;

  explicit CurveSets(const std::vector<std::vector<Curve>>& given) {
    curves.reserve(given.size());
    for (const std::vector<Curve>& set : given) {
      curves.emplace_back();
      for (const Curve& curve : set) {
        curves.back().push_back(view_Points(curve));
      }
      sets.push_back({curves.back().data(), static_cast<uint32_t>(curves.back().size())});
    }
  }
  TArrCrv view() { return {sets.data(), static_cast<uint32_t>(sets.size())}; }
};

}  // namespace

std::vector<std::vector<uint32_t>> find_Pieces(const Mesh& mesh,
                                               const std::vector<uint32_t>& triangles) {
  std::vector<uint8_t> mask(mesh.triangles.size(), 0);
  for (const uint32_t triangle : triangles) mask[triangle] = 1;
  TUcReq request = make_Request(mesh);
  request.bit = {mask.data(), static_cast<uint32_t>(mask.size())};
  LibraryResult result;
  check_Status(get_Com(&request, &result.record), "split the triangles into pieces");
  std::vector<std::vector<uint32_t>> pieces = copy_Lists(result.record.com);
  // The library lists them as it walks from one to the next.
  for (std::vector<uint32_t>& piece : pieces) std::sort(piece.begin(), piece.end());
  return pieces;
}

std::vector<std::vector<uint32_t>> filter_Pieces(const Mesh& mesh,
                                                 const std::vector<std::vector<uint32_t>>& pieces,
                                                 const std::vector<double>& values,
                                                 const std::vector<std::vector<Curve>>& outside) {
  if (pieces.empty()) return {};
  std::vector<TLstU32> lists = view_Lists(pieces);
  CurveSets sets(outside);
  TUcReq request = make_Request(mesh);
  set_Regions(request, lists);
  request.add = values.data();
  request.lst = sets.view();
  LibraryResult result;
  const int32_t status = flt_Com(&request, &result.record);
  constexpr int32_t kNotCut = -12;
  if (status == kNotCut) {
    throw InputError(
        "--outside: the curves bound nothing of the part. Each must be closed, lie on it "
        "('undercut "
        "project' puts it there), and run counter-clockwise round what it bounds, as seen from "
        "outside.");
  }
  check_Status(status, "filter the pieces");
  return copy_Lists(result.record.com);
}

}  // namespace undercut::host
