#include "axis_options.h"

#include <cmath>

#include "errors.h"
#include "option_values.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut axis part.stl --machine 3
      The axis along whose two ends the most of the surface is seen. Results: axis/axis.json,
      axis/axis.ply (open it in MeshLab), and a table here.
  undercut axis part.stl --machine 3 --start 90,0
      The same without a scan of all directions: the search starts at the file's X axis.
  undercut axis part.stl --machine 4 --plane 0 --window -40,40 --roi pocket.txt
      The best tilt between -40 and 40 degrees towards X, for the triangles in pocket.txt.
  undercut axis part.stl --machine 5 --roi a.txt --roi b.txt --json | jq '.axes[].axis'
      One axis for each of two regions.
)";

// Directions are told by the angle theta from Z and the azimuth phi from X. Both may run beyond a
// turn, but the scan's time grows with the window.
constexpr double kWidest = 720.0;

int parse_Machine(const AxisWords& words) {
  if (!words.machine) {
    throw UsageError("--machine: say how many axes the machine has: --machine 3, 4 or 5.");
  }
  for (const int machine : {3, 4, 5}) {
    if (trim_Text(*words.machine) == std::to_string(machine)) return machine;
  }
  throw UsageError("--machine " + quote_Text(*words.machine) +
                   ": write 3, 4 or 5, the number of the machine's axes.");
}

std::array<double, 2> parse_Start(const std::string& text, int machine) {
  if (machine == 4) {
    throw UsageError(
        "--start belongs to --machine 3. A machine of 4 axes searches a range of tilts: narrow it "
        "with --window TILT0,TILT1.");
  }
  if (machine == 5) {
    throw UsageError(
        "--start belongs to --machine 3. For 5 axes narrow the search with --window "
        "TH0,PH0,TH1,PH1.");
  }
  const std::vector<double> values = parse_Numbers(text, 2);
  if (values.empty() || std::fabs(values[0]) > kWidest || std::fabs(values[1]) > kWidest) {
    throw UsageError("--start " + quote_Text(text) +
                     ": write THETA,PHI, the angle from Z and the azimuth from X in degrees, for "
                     "example 90,0 for the X axis.");
  }
  return {values[0], values[1]};
}

[[noreturn]] void fail_Window(const std::string& text, const char* form) {
  throw UsageError("--window " + quote_Text(text) + ": " + form);
}

std::vector<double> parse_Tilts(const std::string& text) {
  std::vector<double> tilts = parse_Numbers(text, 2);
  if (tilts.empty() || tilts[0] < -360.0 || tilts[1] > 360.0 || !(tilts[0] < tilts[1])) {
    fail_Window(text,
                "with --machine 4 write TILT0,TILT1, two tilts in degrees from -360 to 360, the "
                "lower one first, for example -40,40.");
  }
  return tilts;
}

std::vector<double> parse_Box(const std::string& text) {
  std::vector<double> box = parse_Numbers(text, 4);
  bool good = !box.empty() && box[0] < box[2] && box[1] < box[3];
  for (const double angle : box) good = good && std::fabs(angle) <= kWidest;
  if (!good) {
    fail_Window(text,
                "write TH0,PH0,TH1,PH1, the angles from Z and the azimuths in degrees, from -720 "
                "to 720, the low ends first, for example 0,0,60,360.");
  }
  return box;
}

double parse_Plane(const std::string& text, int machine) {
  if (machine != 4) {
    throw UsageError("--plane belongs to --machine 4: leave it out, or take that machine.");
  }
  const std::vector<double> plane = parse_Numbers(text, 1);
  if (plane.empty() || plane[0] < 0.0 || plane[0] > 180.0) {
    throw UsageError("--plane " + quote_Text(text) +
                     ": write the azimuth of the plane in which the axis tilts, 0 to 180 degrees.");
  }
  return plane[0];
}

void set_Window(const AxisWords& words, AxisOptions& options) {
  const auto set = [&](const char* name, const Value& value) {
    options.settings.push_back({&find_Parameter(name), value});
  };
  if (words.window && options.machine == 4) {
    options.window = parse_Tilts(*words.window);
    set("gcu.f_th0", options.window[0]);
    set("gcu.f_th1", options.window[1]);
  } else if (words.window) {
    options.window = parse_Box(*words.window);
    const std::vector<double>& box = options.window;
    set("nxn.box", std::array<double, 4>{box[0], box[1], box[2], box[3]});
  }
  if (words.plane) set("gcu.f_phi", parse_Plane(*words.plane, options.machine));
}

}  // namespace

bool is_ReadByAxis(int machine, const Parameter& parameter) {
  const std::string name = parameter.name();
  if (name == "err.f_gew" || name == "ucs.f_tol" || name == "ucs.f_dil") return true;
  if (machine == 4) return name.starts_with("gcu.");
  return name.starts_with("amo.") || name.starts_with("nxn.");
}

CLI::App* add_Axis(CLI::App& app, AxisWords& words) {
  CLI::App* command =
      app.add_subcommand("axis", "Find the axis along which a part is best machined");
  add_Surface(*command, words, "axis",
              "Search an axis for these triangles: one index a line, from 0; # begins a comment. "
              "Given several times, one axis for each file");
  add_Single(*command, "--machine", words.machine, "Axes of the machine: 3, 4 or 5 (needed)",
             "3|4|5");
  add_Single(*command, "--start", words.start,
             "Start here instead of scanning all directions: angle from Z, azimuth from X, degrees "
             "(3 axes)",
             "THETA,PHI");
  add_Single(*command, "--window", words.window,
             "Search these directions only, degrees; TILT0,TILT1 with 4 axes", "TH0,PH0,TH1,PH1");
  add_Single(*command, "--plane", words.plane,
             "Azimuth of the plane in which the axis tilts, degrees (4 axes; default 90)", "PHI");
  command->footer(kExamples);
  return command;
}

AxisOptions check_Axis(const AxisWords& words) {
  AxisOptions options;
  options.machine = parse_Machine(words);
  check_Surface(
      words, [&](const Parameter& p) { return is_ReadByAxis(options.machine, p); }, options);
  if (words.start) options.start = parse_Start(*words.start, options.machine);
  if (options.start && words.window) {
    throw UsageError("--start replaces the scan that --window is for: leave one of the two out.");
  }
  set_Window(words, options);
  return options;
}

}  // namespace undercut::host
