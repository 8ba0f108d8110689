#include "decompose.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "find_rois.h"
#include "library_call.h"
#include "report.h"
#include "surface_command.h"
#include "terminal.h"
#include "text.h"

namespace undercut::host {
namespace {

std::vector<T3DVEC> find_Centres(const Mesh& mesh) {
  std::vector<T3DVEC> centres;
  centres.reserve(mesh.triangles.size());
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) centres.push_back(centre_Tri(mesh, i));
  return centres;
}

void warn_Unread(const DecomposeOptions& options, std::ostream& err) {
  const auto reads = [&](const Parameter& parameter) {
    return is_Read(parameter) || (options.search && is_ReadBySearch(parameter));
  };
  note_Unread(options.settings, reads, "the decomposition", err);
}

// Tells on a terminal which attempt is on its way, so that a long run shows life.
Attempt make_Attempt(LibraryCall& call, Prepared& prepared, bool talk, std::ostream& err) {
  return [&call, &prepared, talk, &err, count = 0](const std::vector<Patch>& patches,
                                                   const Rung& rung) mutable {
    ++count;
    if (talk) {
      size_t triangles = 0;
      for (const Patch& patch : patches) triangles += patch.triangles.size();
      err << "attempt " << count << ": " << triangles << " triangles in " << patches.size()
          << (patches.size() == 1 ? " patch" : " patches") << ", aperture "
          << fixed_Text(rung.aperture, 0) << " deg, position " << rung.position + 1 << "\n"
          << std::flush;
    }
    place_Vertices(prepared, rung.position);
    return call.run(patches, rung);
  };
}

// Finds the regions of interest, and takes the axis as the machine's Z.
Search search_Part(DecomposeOptions& options, const Part& part, std::ostream& err) {
  options.settings = add_SearchSettings(options.settings);
  const bool terminal = is_Terminal();
  if (terminal) err << "search for the best axis\n" << std::flush;
  set_Parameters({options.settings, {}, false});
  Search search = search_Rois(part, options.min_area);
  options.prepare.up = search.axis;
  if (terminal) {
    err << "undercut: " << search.triangles
        << " triangles, patches to divide: " << search.patches.size() << "\n"
        << std::flush;
  }
  return search;
}

// Whether a patch without regions is offered without the deletion of small ones: where --min-area
// tells which patches are worth it, and the user has not said which regions are.
bool is_Bare(const DecomposeOptions& options) {
  return options.search &&
         std::none_of(options.settings.begin(), options.settings.end(), [](const Setting& setting) {
           return setting.parameter->name().starts_with("dcm.F_");
         });
}

Answer compute_Answer(const DecomposeOptions& options, const Part& part,
                      const std::vector<Roi>& rois, std::ostream& err) {
  const bool terminal = is_Terminal();
  Prepared prepared =
      options.plain ? keep_Plain(part.mesh) : prepare_Mesh(part.mesh, options.prepare);
  CallRules rules{options.settings, {}, terminal};
  if (options.stage_files) rules.stage_folder = options.folder / "stages";
  LibraryCall call(prepared.mesh, rules);
  const double aperture = find_Aperture(options.settings);
  const LadderRules ladder =
      options.plain ? make_Plain(aperture)
                    : make_Ladder(aperture, prepared.mesh.triangles.size(), is_Bare(options));
  const Climb climb =
      climb_Ladder(make_Patches(part, prepared, rois), ladder, find_Centres(prepared.mesh),
                   make_Attempt(call, prepared, terminal, err));
  Answer answer = assemble_Answer(part, prepared, rois, climb);
  answer.times = call.times();
  answer.status = call.status();
  return answer;
}

}  // namespace

int run_Decompose(const DecomposeOptions& asked, std::ostream& out, std::ostream& err) {
  DecomposeOptions options = asked;
  const Part part = read_Part(options.part);
  std::vector<Roi> rois = read_Rois(options.rois, part);
  if (rois.empty() && !options.search) rois.push_back(whole_Roi(part));
  warn_Unread(options, err);
  OutputFolder folder(options.folder, {"regions.ply", "regions.json", "rims.pol"});
  const auto start = std::chrono::steady_clock::now();
  std::optional<Search> search;
  if (options.search) {
    search = search_Part(options, part, err);
    rois = search->patches;
  }
  Answer answer = compute_Answer(options, part, rois, err);
  if (is_Terminal()) err << "rates and rims of the regions\n" << std::flush;
  measure_Regions(part, answer);
  answer.search = std::move(search);
  answer.elapsed_ms = since_Ms(start);

  write_Ply(folder.file(0), part, answer);
  write_Rims(folder.file(2), answer);
  hand_Over(
      folder, make_Json(part, options, answer), options.json, out,
      [&] { write_Table(out, part, options, answer); }, ", " + folder.path(2).string());
  if (options.stage_files && !options.json) {
    out << "Stage files: " << (options.folder / "stages").string() << "\n";
  }
  return answer.failed() ? kFailures : kDone;
}

}  // namespace undercut::host
