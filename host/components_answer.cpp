#include "components_answer.h"

#include <algorithm>
#include <ostream>

#include <nlohmann/json.hpp>

#include "components_calls.h"
#include "library_call.h"
#include "number_file.h"
#include "registered_mesh.h"
#include "statistics_calls.h"
#include "surface_command.h"

namespace undercut::host {
namespace {

// The triangles of the lists that reach into the corridor too.
void keep_Corridor(const ComponentsOptions& options, const Part& part, Roi& roi) {
  std::vector<bool> inside(part.mesh.triangles.size(), false);
  for (const uint32_t i : RegisteredMesh(part.mesh).pick_Slabs(*options.corridor, options.axes)) {
    inside[i] = true;
  }
  std::erase_if(roi.triangles, [&](uint32_t i) { return !inside[i]; });
}

void filter(const ComponentsOptions& options, const Part& part, const Lists& lists,
            const std::vector<double>& values, ComponentsAnswer& answer) {
  std::vector<std::vector<Curve>> outside;
  outside.reserve(options.outside.size());
  for (const auto& path : options.outside) outside.push_back(read_Curves(path));
  // Without values none is asked for.
  const std::vector<double> rated =
      values.empty() ? std::vector<double>(part.mesh.triangles.size(), 0.0) : values;
  // Kept pieces come back in their order, and no two share a triangle.
  const Lists kept = filter_Pieces(part.mesh, lists, rated, outside);
  auto next = kept.begin();
  for (Piece& piece : answer.pieces) {
    piece.kept = next != kept.end() && next->front() == piece.triangles.front();
    if (piece.kept) ++next;
  }
}

std::string name_List(size_t piece) { return "piece-" + std::to_string(piece + 1) + ".txt"; }

// Writes a list for each kept piece, and tells which there are.
std::string write_Lists(const ComponentsAnswer& answer, OutputFolder& folder, std::ostream& err) {
  folder.replace_Numbered("piece-", ".txt");
  if (answer.kept_pieces > kMostLists) {
    err << "undercut: note: no lists are written for more than " << kMostLists
        << " pieces. Drop small ones with --min-area.\n";
    return "";
  }
  const size_t before = folder.count();
  for (size_t k = 0; k < answer.pieces.size(); ++k) {
    if (!answer.pieces[k].kept) continue;
    std::string text;
    for (const uint32_t triangle : answer.pieces[k].triangles) {
      text += std::to_string(triangle) + "\n";
    }
    folder.add(name_List(k), text);
  }
  const size_t count = folder.count() - before;
  if (count == 0) return "";
  const std::string first = folder.path(before).string();
  return count == 1 ? ", " + first
                    : ", " + first + " to " + folder.path(folder.count() - 1).filename().string();
}

}  // namespace

ComponentsAnswer split_Part(const ComponentsOptions& options, const Part& part) {
  ComponentsAnswer answer;
  answer.roi = read_Together(options.rois, part);
  if (options.corridor) keep_Corridor(options, part, answer.roi);
  answer.region = measure(part.mesh, answer.roi.triangles);
  const Lists lists = find_Pieces(part.mesh, answer.roi.triangles);
  for (const std::vector<uint32_t>& list : lists) {
    answer.pieces.push_back({list, measure(part.mesh, list), {}, true});
  }
  std::vector<double> values;
  if (!options.values.empty()) {
    values = read_Values(options.values, part.mesh.triangles.size());
    const std::vector<std::optional<double>> largest = find_Largest(part.mesh, lists, values);
    for (size_t k = 0; k < largest.size(); ++k) answer.pieces[k].largest = largest[k];
  }
  if (options.filter) filter(options, part, lists, values, answer);
  for (const Piece& piece : answer.pieces) {
    Extent& sum = piece.kept ? answer.kept : answer.dropped;
    sum.count += piece.extent.count;
    sum.area += piece.extent.area;
    answer.kept_pieces += piece.kept ? 1 : 0;
  }
  return answer;
}

int run_Components(const ComponentsOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const bool corridor = options.corridor.has_value();
  const auto reads = [&](const Parameter& p) { return is_ReadByComponents(p, corridor); };
  note_Unread(options.settings, reads, "the components", err);
  OutputFolder folder(options.folder, {"components.ply", "components.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  ComponentsAnswer answer = split_Part(options, part);
  answer.elapsed_ms = since_Ms(start);
  write_ComponentsPly(folder.file(0), part, answer);
  const std::string more = write_Lists(answer, folder, err);
  hand_Over(
      folder, make_ComponentsJson(part, options, answer), options.json, out,
      [&] { write_ComponentsTable(out, part, options, answer); }, more);
  return kDone;
}

}  // namespace undercut::host
