#include "command.h"

#include <unistd.h>

#include <chrono>
#include <exception>
#include <new>
#include <ostream>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "library_call.h"
#include "output.h"
#include "report.h"
#include "text.h"

namespace undercut::host {
namespace {

std::vector<Roi> read_Rois(const DecomposeOptions& options, const Part& part) {
  std::vector<Roi> rois;
  for (const auto& path : options.rois) rois.push_back(read_Roi(path, part.mesh.triangles.size()));
  if (rois.empty()) rois.push_back(whole_Roi(part));
  return rois;
}

std::vector<T3DVEC> find_Centres(const Mesh& mesh) {
  std::vector<T3DVEC> centres;
  centres.reserve(mesh.triangles.size());
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) centres.push_back(centre_Tri(mesh, i));
  return centres;
}

void warn_Unread(const DecomposeOptions& options, std::ostream& err) {
  for (const Setting& setting : options.settings) {
    if (is_Read(*setting.parameter)) continue;
    err << "undercut: note: " << setting.parameter->name()
        << " has no effect on the decomposition.\n";
  }
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

Answer compute_Answer(const DecomposeOptions& options, const Part& part,
                      const std::vector<Roi>& rois, std::ostream& err) {
  const auto start = std::chrono::steady_clock::now();
  const bool terminal = isatty(STDERR_FILENO) != 0;
  Prepared prepared =
      options.plain ? keep_Plain(part.mesh) : prepare_Mesh(part.mesh, options.prepare);
  CallRules rules{options.settings, {}, terminal};
  if (options.stage_files) rules.stage_folder = options.folder / "stages";
  LibraryCall call(prepared.mesh, rules);
  const double aperture = find_Aperture(options.settings);
  const LadderRules ladder =
      options.plain ? make_Plain(aperture) : make_Ladder(aperture, prepared.mesh.triangles.size());
  const Climb climb =
      climb_Ladder(make_Patches(part, prepared, rois), ladder, find_Centres(prepared.mesh),
                   make_Attempt(call, prepared, terminal, err));
  Answer answer = assemble_Answer(part, prepared, rois, climb);
  answer.times = call.times();
  answer.status = call.status();
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  answer.elapsed_ms = elapsed.count();
  return answer;
}

int run_Decompose(const DecomposeOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const std::vector<Roi> rois = read_Rois(options, part);
  warn_Unread(options, err);
  OutputFolder folder(options.folder, {"regions.ply", "regions.json"});
  const Answer answer = compute_Answer(options, part, rois, err);
  const std::string json = print_Json(make_Json(part, options, answer));
  write_Ply(folder.file(0), part, answer);
  folder.file(1) << json;
  folder.commit();
  if (options.json) {
    out << json;
  } else {
    write_Table(out, part, options, answer);
    out << "\nWritten: " << folder.path(0).string() << ", " << folder.path(1).string() << "\n";
    if (options.stage_files) {
      out << "Stage files: " << (options.folder / "stages").string() << "\n";
    }
  }
  return answer.failed() ? kFailures : kDone;
}

int run_Parameters(bool json, std::ostream& out) {
  if (json) {
    out << print_Json(make_ParametersJson());
  } else {
    write_Parameters(out);
  }
  return kDone;
}

int run_Action(const Options& options, std::ostream& out, std::ostream& err) {
  switch (options.action) {
    case Options::Action::Decompose:
      return run_Decompose(options.decompose, out, err);
    case Options::Action::Parameters:
      return run_Parameters(options.json, out);
    default:
      return kDone;
  }
}

}  // namespace

int run_Command(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  const auto fail = [&err](const char* what, int status) {
    err << "undercut: " << what << "\n";
    return status;
  };
  try {
    const int status = run_Action(parse_Options(argc, argv, out), out, err);
    out.flush();
    return out ? status : fail("standard output could not be written.", kFailures);
  } catch (const UsageError& error) {
    return fail(error.what(), kUsage);
  } catch (const InputError& error) {
    return fail(error.what(), kInput);
  } catch (const std::bad_alloc&) {
    return fail("not enough memory for this part. Reduce the mesh.", kFailures);
  } catch (const std::exception& error) {
    return fail(error.what(), kFailures);
  }
}

}  // namespace undercut::host
