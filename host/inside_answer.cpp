#include "inside_answer.h"

#include <algorithm>
#include <chrono>
#include <ostream>

#include <nlohmann/json.hpp>

#include "capture.h"
#include "curve_path.h"
#include "errors.h"
#include "library_request.h"
#include "library_result.h"
#include "surface_command.h"

namespace undercut::host {
namespace {

std::vector<GivenCurve> read_Given(const InsideOptions& options, const Mesh& mesh) {
  CurvePaths paths(mesh);
  std::vector<GivenCurve> given;
  for (const auto& path : options.curves) {
    size_t number = 0;
    for (Curve& curve : read_Curves(path)) {
      ++number;
      GivenCurve one{path.string(), std::move(curve), {}};
      if (options.reverse) std::reverse(one.points.begin(), one.points.end());
      for (const uint32_t vertex : paths.lay(one.points)) {
        one.laid.push_back(mesh.vertices[vertex]);
      }
      if (one.laid.empty()) {
        throw InputError(path.string() + ": curve " + std::to_string(number) +
                         " finds no way round along the edges of the part: it is too small for the "
                         "mesh, or joins pieces that are not connected. Check that it was made for "
                         "this part, or take a finer mesh.");
      }
      given.push_back(std::move(one));
    }
  }
  return given;
}

std::vector<uint32_t> call_Library(const Mesh& mesh, const std::vector<GivenCurve>& given) {
  std::vector<TArrVec> views;
  views.reserve(given.size());
  for (const GivenCurve& curve : given) {
    views.push_back(view_Points(curve.laid));
  }
  TUcReq request = make_Request(mesh);
  request.arg = {views.data(), static_cast<uint32_t>(views.size())};
  LibraryResult result;
  const Capture capture;
  const int32_t status = get_Sub(&request, &result.record);
  if (status == -7) {
    throw RunError(
        "the curves bound nothing on this part. They must lie on its surface, closed, without "
        "crossing themselves or one another, with triangles on both sides, and must not run where "
        "two sheets touch in a corner. Check that they were made for this part.");
  }
  check_Status(status, "tell what lies inside the curves");
  const TLstLstU32 lists = result.record.com;
  if (lists.count == 0) return {};
  return copy_List(lists.data[0]);
}

}  // namespace

InsideAnswer find_Inside(const InsideOptions& options, const Part& part) {
  InsideAnswer answer;
  const std::vector<uint32_t> whole = whole_Roi(part).triangles;
  answer.curves = read_Given(options, part.mesh);
  answer.triangles = call_Library(part.mesh, answer.curves);
  std::vector<bool> inside(part.mesh.triangles.size(), false);
  for (const uint32_t triangle : answer.triangles) inside[triangle] = true;
  answer.part = measure(part.mesh, whole);
  answer.inside = measure(part.mesh, whole, [&](uint32_t i) { return inside[i]; });
  answer.outside = measure(part.mesh, whole, [&](uint32_t i) { return !inside[i]; });
  return answer;
}

int run_Inside(const InsideOptions& options, std::ostream& out, std::ostream&) {
  const Part part = read_Part(options.part);
  OutputFolder folder(options.folder, {"inside.ply", "inside.json", "inside.txt"});
  const auto start = std::chrono::steady_clock::now();
  InsideAnswer answer = find_Inside(options, part);
  answer.elapsed_ms = since_Ms(start);
  write_InsidePly(folder.file(0), part, answer);
  for (const uint32_t triangle : answer.triangles) folder.file(2) << triangle << "\n";
  hand_Over(
      folder, make_InsideJson(part, options, answer), options.json, out,
      [&] { write_InsideTable(out, part, answer); }, ", " + folder.path(2).string());
  return kDone;
}

}  // namespace undercut::host
