#include "depth_answer.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include <nlohmann/json.hpp>

#include "depth_calls.h"
#include "library_call.h"
#include "surface_command.h"
#include "terminal.h"

namespace undercut::host {
namespace {

constexpr size_t kRanges = 10;

DepthAnswer find_Answer(const ShadowOptions& options, const Part& part, std::ostream& err) {
  DepthAnswer answer;
  answer.roi = read_Together(options.rois, part);
  answer.others = read_Parts(options.against);
  std::vector<Mesh> others;
  others.reserve(answer.others.size());
  for (const Part& other : answer.others) others.push_back(other.mesh);
  std::string printed;
  answer.depths =
      find_Depths(part.mesh, turn_Round(options.axes), answer.roi.triangles, others, printed);
  err << printed;
  sort_Depths(part.mesh, options.max, answer);
  return answer;
}

}  // namespace

void sort_Depths(const Mesh& mesh, const std::optional<double>& top, DepthAnswer& answer) {
  const std::vector<uint32_t>& list = answer.roi.triangles;
  answer.region = measure(mesh, list);
  for (const uint32_t triangle : list) {
    // What is not a number is passed over.
    answer.largest = std::fmax(answer.largest, answer.depths[triangle]);
  }
  answer.top = top ? *top : answer.largest;
  const size_t ranges = answer.top > 0.0 ? kRanges : 0;
  for (size_t k = 0; k < ranges; ++k) {
    const auto end = [&](size_t i) { return answer.top * static_cast<double>(i) / kRanges; };
    answer.ranges.push_back({end(k), end(k + 1), {}});
  }
  for (const uint32_t triangle : list) {
    const double depth = answer.depths[triangle];
    if (std::isnan(depth)) {
      answer.unknown.add(mesh, triangle);
      answer.unknown_triangles.push_back(triangle);
    } else if (!(depth > 0.0)) {
      answer.seen.add(mesh, triangle);
    } else {
      answer.deep.add(mesh, triangle);
      const auto range = std::find_if(answer.ranges.begin(), answer.ranges.end(),
                                      [&](const DepthRange& r) { return depth <= r.to; });
      (range == answer.ranges.end() ? answer.deeper : range->extent).add(mesh, triangle);
    }
  }
  std::sort(answer.unknown_triangles.begin(), answer.unknown_triangles.end());
}

int run_Depth(const ShadowOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const auto reads = [&](const Parameter& p) {
    return is_ReadByDepth(p, !options.against.empty());
  };
  note_Unread(options.settings, reads, "the depth", err);
  OutputFolder folder(options.folder, {"depth.ply", "depth.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  if (is_Terminal()) err << "depth under " << options.axes.size() << " axes\n" << std::flush;
  DepthAnswer answer = find_Answer(options, part, err);
  answer.elapsed_ms = since_Ms(start);
  write_DepthPly(folder.file(0), part, answer);
  hand_Over(folder, make_DepthJson(part, options, answer), options.json, out,
            [&] { write_DepthTable(out, part, options, answer); });
  return kDone;
}

}  // namespace undercut::host
