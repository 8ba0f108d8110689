#include "classify_answer.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "axis_calls.h"
#include "library_call.h"
#include "surface_command.h"
#include "terminal.h"

namespace undercut::host {
namespace {

// Those of the region that no axis sees, which are the hidden ones of all axes.
std::vector<bool> hide_All(const ShadowOptions& options, const Mesh& mesh, std::ostream* progress,
                           ClassifyAnswer& answer) {
  std::vector<bool> hidden(mesh.triangles.size(), true);
  for (size_t k = 0; k < options.axes.size(); ++k) {
    if (progress != nullptr) {
      *progress << "axis " << k + 1 << " of " << options.axes.size() << "\n" << std::flush;
    }
    const std::vector<bool> one = find_Hidden(mesh, {-1.0 * options.axes[k]}, answer.roi.triangles);
    answer.seen.push_back(measure(mesh, answer.roi.triangles, [&](uint32_t i) { return !one[i]; }));
    for (size_t i = 0; i < hidden.size(); ++i) hidden[i] = hidden[i] && one[i];
  }
  return hidden;
}

// Without the other meshes.
std::vector<bool> hide_Alone(const ShadowOptions& options, const Part& part, const Roi& roi) {
  return find_Hidden(part.mesh, turn_Round(options.axes), roi.triangles);
}

}  // namespace

ClassifyAnswer classify_Part(const ShadowOptions& options, const Part& part,
                             std::ostream* progress) {
  ClassifyAnswer answer;
  answer.roi = read_Together(options.rois, part);
  const std::vector<uint32_t>& list = answer.roi.triangles;
  answer.region = measure(part.mesh, list);
  answer.others = read_Parts(options.against);
  const bool alone = answer.others.empty();
  const std::vector<bool> hidden =
      alone ? hide_All(options, part.mesh, progress, answer)
            : hide_All(options, join_Meshes(part.mesh, answer.others), progress, answer);
  const std::vector<bool> own = alone ? hidden : hide_Alone(options, part, answer.roi);
  answer.reach.assign(part.mesh.triangles.size(), Reach::kNotAsked);
  for (const uint32_t i : list) {
    answer.reach[i] = !hidden[i] ? Reach::kSeen : own[i] ? Reach::kOwn : Reach::kOthers;
  }
  answer.undercut = measure(part.mesh, list, [&](uint32_t i) { return hidden[i]; });
  answer.from_others =
      measure(part.mesh, list, [&](uint32_t i) { return answer.reach[i] == Reach::kOthers; });
  return answer;
}

int run_Classify(const ShadowOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const bool corridor = options.corridor.has_value();
  const auto reads = [&](const Parameter& p) { return is_ReadByClassify(p, corridor); };
  note_Unread(options.settings, reads, "the classification", err);
  OutputFolder folder(options.folder, {"undercut.ply", "undercut.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  std::ostream* const progress = is_Terminal() ? &err : nullptr;
  ClassifyAnswer answer = corridor ? classify_Corridor(options, part, progress)
                                   : classify_Part(options, part, progress);
  answer.elapsed_ms = since_Ms(start);
  if (answer.region.count == 0 && corridor) {
    err << "undercut: note: no triangle that is asked reaches into the corridor. Check its point, "
           "its direction and --width.\n";
  }
  write_UndercutPly(folder.file(0), part, answer);
  hand_Over(folder, make_UndercutJson(part, options, answer), options.json, out,
            [&] { write_UndercutTable(out, part, options, answer); });
  return kDone;
}

}  // namespace undercut::host
