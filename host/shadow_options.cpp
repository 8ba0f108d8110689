#include "shadow_options.h"

#include "errors.h"
#include "option_values.h"

namespace undercut::host {
namespace {

constexpr const char* kClassifyExamples = R"(
Examples:
  undercut classify part.stl --axis 0,0,1 --axis 0,0,-1
      What can be seen neither from above nor from below. Results: classify/undercut.ply (open
      it in MeshLab), classify/undercut.json, and a table here.
  undercut classify part.stl --axis 0,0,1 --against vice.stl --against neighbour.stl
      Fixtures cast shadow too; the table tells how much of the undercut is theirs.
  undercut classify part.stl --corridor 0,0,5,1,0,0 --axis 0,0,1 --axis 1,0,2 --width 2
      A tool follows the line through 0,0,5 along X, first upright, then leant forward: what of a
      band of 2 mm is blocked at one of the two poses, and what at both.
)";

constexpr const char* kDepthExamples = R"(
Examples:
  undercut depth part.stl --axis 0,0,1
      How far each triangle lies under an overhang, across the axis. Results: depth/depth.ply
      (open it in MeshLab), depth/depth.json, and a histogram here.
  undercut depth part.stl --axis 0,0,1 --axis 1,0,0 --max 2 -o out
      The smaller depth under two axes; colours from 0 to 2 mm.
)";

void add_Shadow(CLI::App& command, ShadowWords& words, const char* folder) {
  add_Surface(command, words, folder,
              "Only these triangles: one index a line, from 0; # begins a comment. The files of "
              "several are taken together");
  add_List(command, "--axis", words.axes,
           "An axis, from the part towards the tool; several may be given, at least one is needed",
           "X,Y,Z");
  add_List(command, "--against", words.against,
           "A mesh that casts shadow too, such as a fixture; several may be given", "MESH");
}

void check_Shadow(const ShadowWords& words, const Reads& reads, ShadowOptions& options) {
  check_Surface(words, reads, options);
  if (words.axes.empty()) {
    throw UsageError(
        "--axis: name at least one axis, from the part towards the tool, for example --axis "
        "0,0,1. 'undercut axis' finds one.");
  }
  for (const std::string& text : words.axes) {
    options.axes.push_back(unit_Vec(parse_Direction("--axis", text)));
  }
  for (const std::string& text : words.against) {
    options.against.emplace_back(check_File("--against", text));
  }
}

}  // namespace

bool is_ReadByClassify(const Parameter& parameter, bool corridor) {
  const std::string name = parameter.name();
  return name == "ucs.f_tol" || name == (corridor ? kWidth : "ucs.f_dil");
}

bool is_ReadByDepth(const Parameter& parameter, bool against) {
  const std::string name = parameter.name();
  if (name == "ucs.f_tol" || name == "ucs.f_off") return true;
  for (const char* key : {"ucs.b_dbg", "ucs.b_rti", "ucs.b_sta", "ucs.l_ivl", "ucs.r_ivl",
                          "ucs.i_col", "ucs.p_col", "ucs.l_dFi"}) {
    if (name == key) return true;
  }
  return !against && (name == "ucs.f_dil" || name == "ucs.f_eps" || name == "ucs.f_srf");
}

CLI::App* add_Classify(CLI::App& app, ShadowWords& words) {
  CLI::App* command =
      app.add_subcommand("classify", "Tell which triangles no axis of a set reaches");
  add_Shadow(*command, words, "classify");
  add_Corridor(*command, words.corridor,
               "A tool follows slabs round a line, given by a point and a direction: one slab, and "
               "one pose, for each --axis. Tells what is blocked at some pose, and at every pose");
  command->footer(kClassifyExamples);
  return command;
}

CLI::App* add_Depth(CLI::App& app, ShadowWords& words) {
  CLI::App* command =
      app.add_subcommand("depth", "Tell how far each triangle lies under an overhang");
  add_Shadow(*command, words, "depth");
  add_Single(*command, "--max", words.max,
             "Upper end of the colours and of the histogram (default: the largest depth)", "MM");
  command->footer(kDepthExamples);
  return command;
}

ShadowOptions check_Classify(const ShadowWords& words) {
  ShadowOptions options;
  const bool corridor = words.corridor.line.has_value();
  check_Shadow(
      words, [&](const Parameter& p) { return is_ReadByClassify(p, corridor); }, options);
  if (corridor) {
    options.corridor = check_Corridor(words.corridor, words.axes, options.settings);
  } else if (words.corridor.width) {
    throw UsageError("--width is for --corridor: leave it out, or give the corridor's line.");
  }
  return options;
}

ShadowOptions check_Depth(const ShadowWords& words) {
  ShadowOptions options;
  const bool against = !words.against.empty();
  check_Shadow(
      words, [&](const Parameter& p) { return is_ReadByDepth(p, against); }, options);
  if (words.max) options.max = parse_Length("--max", *words.max);
  return options;
}

}  // namespace undercut::host
