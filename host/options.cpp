#include "options.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <sstream>

#include "assimp_reader.h"
#include "errors.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut decompose part.stl
      Divides the whole surface. Results: regions/regions.ply (open it in MeshLab),
      regions/regions.json, and a table here.
  undercut decompose part.stl --set n_con=3 --set T_win=40 -o out
      Three polar bands for the tool axes, a narrower aperture, results in out/.
  undercut decompose part.stl --roi top.txt --roi side.txt --up 0,1,0
      Two regions of interest, one triangle index a line; the machine's Z is the file's Y.
  undercut decompose part.stl --json | jq .covered
      The answer as JSON on standard output.
  undercut parameters
      Every parameter with its default, unit, range and meaning.

Exit status: 0 done, 1 computed with failures, 2 wrong usage, 3 bad input.
)";

// What CLI11 stores before it is checked.
struct RawOptions {
  std::string part;
  std::optional<std::string> up, max_edge;
  std::string folder = "regions";
  std::vector<std::string> rois, sets;
  bool json = false, stage_files = false, plain = false;
};

T3DVEC parse_Up(const std::string& text) {
  const std::vector<std::string_view> pieces = split_Text(text, ',');
  double values[3] = {};
  bool good = pieces.size() == 3;
  for (size_t k = 0; good && k < 3; ++k) {
    const std::optional<double> value = parse_Double(trim_Text(pieces[k]));
    good = value && std::isfinite(*value);
    if (good) values[k] = *value;
  }
  const T3DVEC up{values[0], values[1], values[2]};
  const double length = len_Vec(up);
  if (!good || !(length > 1e-100) || !std::isfinite(length)) {
    throw UsageError("--up " + quote_Text(text) +
                     ": write a direction as three numbers with commas, for example 0,0,1.");
  }
  return up;
}

double parse_MaxEdge(const std::string& text) {
  const std::optional<double> value = parse_Double(text);
  if (!value || !std::isfinite(*value) || !(*value > 0.0)) {
    throw UsageError("--max-edge " + quote_Text(text) + ": write a length above 0 in mm.");
  }
  return *value;
}

void add_Decompose(CLI::App& app, RawOptions& raw) {
  CLI::App* command = app.add_subcommand(
      "decompose", "Divide the surface of a part into regions, each reachable along one tool axis");
  const char* formats = has_Assimp() ? "The part: STL, or another mesh format (OBJ, PLY, OFF, ...)"
                                     : "The part: STL, binary or text";
  command->add_option("PART", raw.part, formats)->required();
  const auto add_List = [&](const char* name, std::vector<std::string>& list, const char* help,
                            const char* word) {
    command->add_option(name, list, help)
        ->type_name(word)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  };
  add_List("--roi", raw.rois,
           "A region of interest: one triangle index a line, from 0; # begins a comment. Several "
           "may be given; without one, the whole mesh is taken",
           "FILE");
  add_List("--set", raw.sets, "Set a parameter; 'undercut parameters' lists them", "KEY=VALUE");
  const auto add_Single = [&](const char* name, auto& value, const char* help, const char* word) {
    command->add_option(name, value, help)
        ->type_name(word)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  };
  add_Single("-o,--out", raw.folder, "Folder of the results, made if missing (default regions)",
             "FOLDER");
  command->add_flag("--json", raw.json, "Print the answer as JSON on standard output");
  command->add_flag("--stage-files", raw.stage_files,
                    "Write the library's stage files, to FOLDER/stages");
  add_Single("--up", raw.up, "The machine's Z axis in the part's coordinates (default 0,0,1)",
             "X,Y,Z");
  add_Single("--max-edge", raw.max_edge, "Split edges longer than this for the computation", "MM");
  command->add_flag(
      "--plain", raw.plain,
      "Hand the mesh over as it is, in one call: no preparation and no further attempts");
  command->footer(kExamples);
}

DecomposeOptions check_Decompose(const RawOptions& raw) {
  DecomposeOptions options;
  options.part = raw.part;
  options.folder = raw.folder;
  options.rois.assign(raw.rois.begin(), raw.rois.end());
  options.json = raw.json;
  options.stage_files = raw.stage_files;
  options.plain = raw.plain;
  if (raw.part.empty()) throw UsageError("PART: the name of the file is empty.");
  if (raw.folder.empty()) throw UsageError("-o: the name of the folder is empty.");
  if (raw.plain && (raw.up || raw.max_edge)) {
    throw UsageError(
        "--plain hands the part over as it is: leave --up and --max-edge out, or --plain.");
  }
  for (const std::string& text : raw.sets) options.settings.push_back(parse_Setting(text));
  if (raw.up) options.prepare.up = parse_Up(*raw.up);
  if (raw.max_edge) options.prepare.max_edge = parse_MaxEdge(*raw.max_edge);
  return options;
}

}  // namespace

Options parse_Options(int argc, const char* const* argv, std::ostream& out) {
  CLI::App app("Undercut regions and tool axes of triangle meshes", "undercut");
  app.set_version_flag("--version", std::string("undercut ") + UNDERCUT_VERSION);
  app.footer(kExamples);
  app.require_subcommand(0, 1);
  RawOptions raw;
  Options options;
  add_Decompose(app, raw);
  CLI::App* parameters = app.add_subcommand("parameters", "List every parameter of the library");
  parameters->add_flag("--json", options.json, "As JSON");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const std::string help = "\nRun 'undercut --help' for help.";
    if (const std::vector<std::string> rest = app.remaining(); !rest.empty()) {
      throw UsageError(quote_Text(rest[0]) + " is no command: write 'undercut decompose PART'." +
                       help);
    }
    std::ostringstream ignored;
    if (error.get_exit_code() != 0) {
      throw UsageError(error.what() + help);
    }
    app.exit(error, out, ignored);
    return options;
  }
  if (app.get_subcommands().empty()) {
    throw UsageError("name a command, decompose or parameters.\nRun 'undercut --help' for help.");
  }
  if (parameters->parsed()) {
    options.action = Options::Action::Parameters;
  } else {
    options.action = Options::Action::Decompose;
    options.decompose = check_Decompose(raw);
  }
  return options;
}

}  // namespace undercut::host
