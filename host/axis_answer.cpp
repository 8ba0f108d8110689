#include "axis_answer.h"

#include <chrono>
#include <ostream>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "axis_calls.h"
#include "library_call.h"
#include "surface_command.h"
#include "terminal.h"

namespace undercut::host {
namespace {

// The search for three axes takes a mesh alone, so a region is handed over as one. Elsewhere an
// empty list stands for the whole mesh.
FoundAxis search_Region(const AxisOptions& options, const Mesh& mesh,
                        const std::vector<uint32_t>& region) {
  switch (options.machine) {
    case 3:
      return search_ThreeAxis(region.empty() ? mesh : cut_Out(mesh, region), options.start);
    case 4:
      return search_FourAxis(mesh, region);
    default:
      // A region is cut out by one search, and in place in the other.
      return region.empty() && options.window.empty() ? search_FiveAxis(mesh)
                                                      : search_Window(mesh, region);
  }
}

class Measuring {
 public:
  Measuring(const Part& part, AxisAnswer& answer)
      : mesh_(part.mesh), whole_(whole_Roi(part).triangles), answer_(answer) {
    answer_.part = measure(mesh_, whole_);
    answer_.seen_by.assign(mesh_.triangles.size(), 0);
  }

  void run(AxisResult& result, int machine) {
    const std::vector<bool> hidden = find_Hidden(mesh_, {-1.0 * result.axis}, whole_);
    result.from_axis = see(result, hidden);
    std::vector<bool> neither = hidden;
    if (machine == 3) {
      const std::vector<bool> behind = find_Hidden(mesh_, {result.axis}, whole_);
      result.from_opposite = see(result, behind);
      for (size_t i = 0; i < neither.size(); ++i) neither[i] = neither[i] && behind[i];
      result.from_either = see(result, neither);
    }
    ++number_;
    for (const uint32_t triangle : whole_) {
      int32_t& seen_by = answer_.seen_by[triangle];
      if (seen_by == 0 && !neither[triangle]) seen_by = number_;
    }
  }

 private:
  Sight see(const AxisResult& result, const std::vector<bool>& hidden) const {
    const auto is_Seen = [&](uint32_t i) {
      return !hidden[i] && !has_EqualCorners(mesh_.triangles[i]);
    };
    return {measure(mesh_, result.roi.triangles, is_Seen), measure(mesh_, whole_, is_Seen)};
  }

  const Mesh& mesh_;
  const std::vector<uint32_t> whole_;
  AxisAnswer& answer_;
  int32_t number_ = 0;
};

}  // namespace

Mesh cut_Out(const Mesh& mesh, const std::vector<uint32_t>& triangles) {
  Mesh out;
  std::unordered_map<uint32_t, uint32_t> numbers;
  const auto renumber = [&](uint32_t vertex) {
    const auto [entry, fresh] =
        numbers.try_emplace(vertex, static_cast<uint32_t>(out.vertices.size()));
    if (fresh) out.vertices.push_back(mesh.vertices[vertex]);
    return entry->second;
  };
  for (const uint32_t triangle : triangles) {
    const T3DTRI& t = mesh.triangles[triangle];
    const uint32_t a = renumber(t.a), b = renumber(t.b), c = renumber(t.c);
    out.triangles.push_back({a, b, c});
  }
  return out;
}

AxisAnswer find_Axes(const AxisOptions& options, const Part& part, std::ostream* progress) {
  std::vector<Roi> rois = read_Rois(options.rois, part);
  const bool whole = rois.empty();
  if (whole) rois.push_back(whole_Roi(part));
  AxisAnswer answer;
  Measuring measuring(part, answer);
  for (Roi& roi : rois) {
    if (progress != nullptr) {
      *progress << "search for the best axis: " << roi.source << "\n" << std::flush;
    }
    AxisResult result;
    result.found =
        search_Region(options, part.mesh, whole ? std::vector<uint32_t>{} : roi.triangles);
    // With three axes Z points to the side where the seen surface lies, otherwise it is the
    // direction of the tool.
    const double side = options.machine == 3 ? 1.0 : -1.0;
    result.axis = unit_Vec(side * result.found.frame.z);
    result.region = measure(part.mesh, roi.triangles);
    result.roi = std::move(roi);
    measuring.run(result, options.machine);
    answer.axes.push_back(std::move(result));
  }
  return answer;
}

int run_Axis(const AxisOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  note_Unread(
      options.settings, [&](const Parameter& p) { return is_ReadByAxis(options.machine, p); },
      "the search", err);
  OutputFolder folder(options.folder, {"axis.ply", "axis.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  AxisAnswer answer = find_Axes(options, part, is_Terminal() ? &err : nullptr);
  answer.elapsed_ms = since_Ms(start);
  write_AxisPly(folder.file(0), part, answer);
  hand_Over(folder, make_AxisJson(part, options, answer), options.json, out,
            [&] { write_AxisTable(out, part, options, answer); });
  return kDone;
}

}  // namespace undercut::host
