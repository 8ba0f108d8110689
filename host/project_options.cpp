#include "project_options.h"

#include "errors.h"
#include "option_values.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut project part.stl --points scan.xyz --axis 0,0,1
      Moves each point along Z onto the part. Results: project/points-1.asc,
      project/projection.json, and a table here.
  undercut project part.stl --points rim/rim.pol --roi area.txt --axis 0.3,0,1
      Puts closed curves back onto the area that they bound: project/points-1.pol too.
  undercut project part.stl --points a.asc --roi a.txt --points b.asc --roi b.txt --axis 0,0,1
      Two areas, each with its points and its triangles, along one axis.
  undercut project part.stl --line 5,5,20,0,0,-1
      Where a line through a point meets the part, nearest to that point.
)";

// One for each area, one for all, or none where that is allowed.
void check_Count(const char* option, size_t count, size_t areas) {
  if (count <= 1 || count == areas) return;
  throw UsageError(std::string(option) + " is given " + std::to_string(count) + " times for " +
                   std::to_string(areas) + (areas == 1 ? " file" : " files") +
                   " of points: give it once for all, or once for each --points.");
}

void check_Lines(const ProjectWords& words, ProjectOptions& options) {
  if (!words.points.empty() || !words.axes.empty() || !words.frames.empty() ||
      !words.rois.empty()) {
    throw UsageError(
        "--line meets the whole part with a line, and has a direction of its own: leave --points, "
        "--axis, --frame and --roi out, or --line.");
  }
  for (const std::string& text : words.lines) options.lines.push_back(parse_Line("--line", text));
}

void check_Areas(const ProjectWords& words, ProjectOptions& options) {
  for (const std::string& text : words.points) {
    options.points.emplace_back(check_File("--points", text));
  }
  if (words.axes.empty() == words.frames.empty()) {
    throw UsageError(words.axes.empty()
                         ? "--axis: name the direction in which points move, for example --axis "
                           "0,0,1, or a --frame."
                         : "--axis and --frame both say in which direction points move: leave one "
                           "of them out.");
  }
  check_Count("--axis", words.axes.size(), words.points.size());
  check_Count("--frame", words.frames.size(), words.points.size());
  check_Count("--roi", words.rois.size(), words.points.size());
  for (const std::string& text : words.axes) {
    options.axes.push_back(unit_Vec(parse_Direction("--axis", text)));
  }
  options.frames.assign(words.frames.begin(), words.frames.end());
}

}  // namespace

bool is_ReadByProject(const Parameter& parameter) { return parameter.name().starts_with("prj."); }

CLI::App* add_Project(CLI::App& app, ProjectWords& words) {
  CLI::App* command =
      app.add_subcommand("project", "Put points or closed curves onto the part along an axis");
  add_Surface(*command, words, "project",
              "The triangles that the points belong to: one index a line, from 0; # begins a "
              "comment. Given once for all files of points, or once for each (default: the whole "
              "part)");
  add_List(*command, "--points", words.points,
           "Points to move, x y z a line (.asc, .xyz), or closed curves (.pol); several may be "
           "given, each moves by itself",
           "FILE");
  add_List(*command, "--axis", words.axes,
           "Direction in which points move; once for all files of points, or once for each",
           "X,Y,Z");
  add_List(*command, "--frame", words.frames,
           "Instead of --axis: the frame that the points are told in, a matrix of four lines "
           "(.trf); they move along its Z",
           "FILE");
  add_List(*command, "--line", words.lines,
           "Instead of points: where this line meets the part, nearest to X,Y,Z; several may be "
           "given",
           "X,Y,Z,DX,DY,DZ");
  command->footer(kExamples);
  return command;
}

ProjectOptions check_Project(const ProjectWords& words) {
  ProjectOptions options;
  check_Surface(words, is_ReadByProject, options);
  if (!words.lines.empty()) {
    check_Lines(words, options);
  } else if (words.points.empty()) {
    throw UsageError(
        "--points: name a file of points to move, x y z a line, or a --line to meet the part "
        "with.");
  } else {
    check_Areas(words, options);
  }
  return options;
}

}  // namespace undercut::host
