#include "options.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <functional>
#include <sstream>

#include "errors.h"
#include "option_values.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr const char* kOverview = R"(
Examples:
  undercut axis part.stl --machine 3
      The axis along which a machine of three axes reaches the most of the part.
  undercut classify part.stl --axis 0,0,1 --axis 0,0,-1
      Which triangles none of these axes reaches.
  undercut depth part.stl --axis 0,0,1
      How far each triangle lies under an overhang.
  undercut decompose part.stl
      Regions that can each be machined along one axis, of what three axes do not reach.
  undercut rim part.stl --axis 0,0,1
      The closed curves that bound what is seen along an axis; 'undercut inside' lists what lies
      inside such curves.
  undercut parameters
      Every parameter with its default, unit, range and meaning.

'undercut axis --help', and likewise for each command, tells its options.
Exit status: 0 done, 1 computed with failures, 2 wrong usage, 3 bad input.
)";

constexpr const char* kExamples = R"(
Examples:
  undercut decompose part.stl
      Finds the best axis of a three-axis machine and divides what it does not reach. Results:
      regions/regions.ply (open it in MeshLab), regions/regions.json, and a table here.
  undercut decompose part.stl --whole --set n_con=3 --set T_win=40 -o out
      Divides the whole surface, with the file's Z as the machine's: three polar bands for the
      tool axes, a narrower aperture, results in out/.
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
  std::optional<std::string> min_area;
  bool json = false, stage_files = false, plain = false, whole = false;
};

double parse_MinArea(const std::string& text) {
  const std::optional<double> value = parse_Double(text);
  if (!value || !std::isfinite(*value) || !(*value >= 0.0)) {
    throw UsageError("--min-area " + quote_Text(text) + ": write an area of 0 or more in mm2.");
  }
  return *value;
}

CLI::App* add_Decompose(CLI::App& app, RawOptions& raw) {
  CLI::App* command = app.add_subcommand("decompose",
                                         "Divide the undercuts of a part, or its whole surface, "
                                         "into regions, each reachable along one tool axis");
  add_Part(*command, raw.part);
  add_List(
      *command, "--roi", raw.rois,
      "A region of interest: one triangle index a line, from 0; # begins a comment. Several "
      "may be given; without one, the patches that a three-axis machine does not reach are taken",
      "FILE");
  add_List(*command, "--set", raw.sets, "Set a parameter; 'undercut parameters' lists them",
           "KEY=VALUE");
  add_Single(*command, "-o,--out", raw.folder,
             "Folder of the results, made if missing (default regions)", "FOLDER");
  command->add_flag("--json", raw.json, "Print the answer as JSON on standard output");
  command->add_flag("--stage-files", raw.stage_files,
                    "Write the library's stage files, to FOLDER/stages");
  add_Single(*command, "--up", raw.up,
             "The machine's Z axis in the part's coordinates (default: the axis found, or 0,0,1 "
             "with --roi, --whole or --plain)",
             "X,Y,Z");
  command->add_flag("--whole", raw.whole,
                    "Divide the whole surface: no search for an axis and for undercuts");
  add_Single(*command, "--min-area", raw.min_area,
             "Drop patches of undercut smaller than this (default a thousandth of the part's area)",
             "MM2");
  add_Single(*command, "--max-edge", raw.max_edge,
             "Split edges longer than this for the computation", "MM");
  command->add_flag(
      "--plain", raw.plain,
      "Hand the mesh over as it is, in one call: no preparation and no further attempts");
  command->footer(kExamples);
  return command;
}

DecomposeOptions check_Decompose(const RawOptions& raw) {
  DecomposeOptions options;
  options.part = raw.part;
  options.folder = raw.folder;
  options.rois.assign(raw.rois.begin(), raw.rois.end());
  options.json = raw.json;
  options.stage_files = raw.stage_files;
  options.plain = raw.plain;
  check_Names(raw.part, raw.folder);
  if (raw.plain && (raw.up || raw.max_edge)) {
    throw UsageError(
        "--plain hands the part over as it is: leave --up and --max-edge out, or --plain.");
  }
  for (const std::string& text : raw.sets) options.settings.push_back(parse_Setting(text));
  // Where the user says what to divide, or what Z is, there is nothing to search for.
  options.search = raw.rois.empty() && !raw.up && !raw.whole && !raw.plain;
  if (raw.whole && !raw.rois.empty()) {
    throw UsageError("--whole and --roi both say what to divide: leave one of them out.");
  }
  if (raw.min_area) {
    if (!options.search) {
      throw UsageError(
          "--min-area is for the patches that the command finds: leave it out, or leave --roi, "
          "--up, --whole and --plain out.");
    }
    options.min_area = parse_MinArea(*raw.min_area);
  }
  if (raw.up) options.prepare.up = parse_Direction("--up", *raw.up);
  if (raw.max_edge) options.prepare.max_edge = parse_Length("--max-edge", *raw.max_edge);
  return options;
}

// A subcommand: what it is called, and how its words become options once it was named.
struct Command {
  const CLI::App* app;
  Options::Action action;
  std::function<void()> check;
};

// What CLI11 stores for all of them.
struct AllWords {
  AxisWords axis;
  ShadowWords classify, depth;
  RawOptions decompose;
  RimWords rim;
  InsideWords inside;
  ProjectWords project;
  StatisticsWords statistics;
  ComponentsWords components;
};

std::vector<Command> add_Commands(CLI::App& app, AllWords& words, Options& options) {
  using Action = Options::Action;
  std::vector<Command> commands{
      {add_Axis(app, words.axis), Action::Axis, [&] { options.axis = check_Axis(words.axis); }},
      {add_Classify(app, words.classify), Action::Classify,
       [&] { options.shadow = check_Classify(words.classify); }},
      {add_Depth(app, words.depth), Action::Depth,
       [&] { options.shadow = check_Depth(words.depth); }},
      {add_Decompose(app, words.decompose), Action::Decompose,
       [&] { options.decompose = check_Decompose(words.decompose); }},
      {add_Rim(app, words.rim), Action::Rim, [&] { options.rim = check_Rim(words.rim); }},
      {add_Inside(app, words.inside), Action::Inside,
       [&] { options.inside = check_Inside(words.inside); }},
      {add_Project(app, words.project), Action::Project,
       [&] { options.project = check_Project(words.project); }},
      {add_Statistics(app, words.statistics), Action::Statistics,
       [&] { options.statistics = check_Statistics(words.statistics); }},
      {add_Components(app, words.components), Action::Components,
       [&] { options.components = check_Components(words.components); }}};
  CLI::App* parameters = app.add_subcommand("parameters", "List every parameter of the library");
  parameters->add_flag("--json", options.json, "As JSON");
  commands.push_back({parameters, Action::Parameters, [] {}});
  return commands;
}

}  // namespace

Options parse_Options(int argc, const char* const* argv, std::ostream& out) {
  CLI::App app("Undercut regions and tool axes of triangle meshes", "undercut");
  app.set_version_flag("--version", std::string("undercut ") + UNDERCUT_VERSION);
  app.footer(kOverview);
  app.require_subcommand(0, 1);
  AllWords words;
  Options options;
  const std::vector<Command> commands = add_Commands(app, words, options);
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
  for (const Command& command : commands) {
    if (!command.app->parsed()) continue;
    options.action = command.action;
    command.check();
    return options;
  }
  throw UsageError(
      "name a command: axis, classify, depth, decompose, rim, inside, project, statistics, "
      "components or parameters.\nRun 'undercut --help' for help.");
}

}  // namespace undercut::host
