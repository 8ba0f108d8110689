#include "rim_options.h"

#include "errors.h"
#include "option_values.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut rim part.stl --axis 0,0,1
      The outline of the largest connected surface that is seen from above. Results: rim/rim.pol
      (the curves, in the part's coordinates), rim/rim.ply, rim/rim.json, and a table here.
  undercut rim part.stl --axis 0,0,1 --start 120 --radius 2
      The same of what is connected with triangle 120; gaps of less than 4 mm are closed.
  undercut rim part.stl --axis 1,0,1 --method grid-roi --roi pocket.txt --cell 0.05
      The outline of listed triangles, whatever hides them, on cells of 0.05 mm.
  undercut rim part.stl --axis 0,0,1 && undercut inside part.stl --curve rim/rim.pol
      The triangles inside the curves.
)";

RimMethod parse_Method(const std::string& text) {
  const std::pair<const char*, RimMethod> methods[] = {
      {"edges", RimMethod::kEdges}, {"grid", RimMethod::kGrid}, {"grid-roi", RimMethod::kGridRoi}};
  for (const auto& [name, method] : methods) {
    if (text == name) return method;
  }
  throw UsageError("--method " + quote_Text(text) + ": write edges, grid or grid-roi.");
}

uint32_t parse_Start(const std::string& text) {
  const std::optional<int64_t> value = parse_Integer(trim_Text(text));
  if (!value || *value < 0 || *value > int64_t{0xFFFFFFFF}) {
    throw UsageError("--start " + quote_Text(text) +
                     ": write the number of a triangle, from 0 in the order of the file.");
  }
  return static_cast<uint32_t>(*value);
}

int64_t parse_Cells(const char* option, const std::string& text) {
  const std::optional<int64_t> value = parse_Integer(trim_Text(text));
  if (!value || *value < 1 || *value > kMostCells) {
    throw UsageError(option + (" " + quote_Text(text)) + ": write a whole number from 1 to " +
                     std::to_string(kMostCells) + ".");
  }
  return *value;
}

double parse_Radius(const std::string& text) {
  const std::vector<double> radius = parse_Numbers(text, 1);
  if (radius.empty() || radius[0] < 0.0) {
    throw UsageError("--radius " + quote_Text(text) + ": write a length of 0 or more in mm.");
  }
  return radius[0];
}

void check_Axis(const RimWords& words, RimOptions& options) {
  if (words.axis && words.frame) {
    throw UsageError("--frame tells the axis too, by its Z: leave --axis out, or --frame.");
  }
  if (words.frame) {
    options.frame = check_File("--frame", *words.frame);
  } else if (words.axis) {
    options.axis = unit_Vec(parse_Direction("--axis", *words.axis));
  } else {
    throw UsageError(
        "--axis: name the axis to look along, from the part towards the tool, for example --axis "
        "0,0,1. 'undercut axis' finds one.");
  }
}

// They stand among the settings, behind those of the user.
void set_Grid(const RimWords& words, RimOptions& options) {
  if (!words.cell && !words.rows && !words.columns && !words.radius) return;
  if (options.method == RimMethod::kEdges) {
    throw UsageError(
        "--cell, --rows, --columns and --radius belong to the grid: leave them out, or take "
        "another --method.");
  }
  if (words.cell && (words.rows || words.columns)) {
    throw UsageError("--cell and --rows or --columns both tell the grid: leave one of them out.");
  }
  const auto set = [&](const char* name, const Value& value) {
    options.settings.push_back({&find_Parameter(name), value});
  };
  if (words.radius) options.radius = parse_Radius(*words.radius);
  if (words.cell) {
    options.cell = parse_Length("--cell", *words.cell);
    set("gri.f_dxx", *options.cell);
    set("gri.f_dyy", *options.cell);
    set("gri.b_res", int64_t{1});
  } else if (words.rows || words.columns) {
    // The grid is a square, so one number tells the other.
    const int64_t rows =
        words.rows ? parse_Cells("--rows", *words.rows) : parse_Cells("--columns", *words.columns);
    set("gri.n_row", rows);
    set("gri.n_col", words.columns ? parse_Cells("--columns", *words.columns) : rows);
    set("gri.b_res", int64_t{0});
  }
}

}  // namespace

bool is_ReadByRim(RimMethod method, const Parameter& parameter) {
  const std::string name = parameter.name();
  if (name == "ucs.f_gew" || name == "ucs.f_res" || name == "ucs.f_err") return true;
  if (name == "ucs.f_tol") return method != RimMethod::kGridRoi;
  return method != RimMethod::kEdges && name.starts_with("gri.");
}

CLI::App* add_Rim(CLI::App& app, RimWords& words) {
  CLI::App* command =
      app.add_subcommand("rim", "Trace the closed curves that bound an area as seen along an axis");
  add_Surface(*command, words, "rim",
              "Only these triangles may be of the area: one index a line, from 0; # begins a "
              "comment. The files of several are taken together");
  add_Single(*command, "--axis", words.axis,
             "The axis, from the part towards the tool; needed, unless --frame is given", "X,Y,Z");
  add_Single(
      *command, "--frame", words.frame,
      "The frame of the curves, its Z from the part towards the tool: a matrix of four lines "
      "(.trf), or an earlier rim.json",
      "FILE");
  add_Single(*command, "--method", words.method,
             "edges: what is seen and connected with the start, along the edges of the mesh; grid: "
             "the same on a grid; grid-roi: the triangles of --roi as they stand (default grid)",
             "edges|grid|grid-roi");
  add_Single(*command, "--start", words.start,
             "A triangle of the area (default: the largest one of the largest connected area that "
             "is seen)",
             "TRIANGLE");
  add_Single(*command, "--radius", words.radius,
             "Close gaps that are narrower than twice this (default 0.5 % of the area's width, a "
             "cell and a half at "
             "least)",
             "MM");
  add_Single(*command, "--cell", words.cell, "Size of a cell of the grid", "MM");
  add_Single(*command, "--rows", words.rows, "Rows of the grid (default 1000)", "N");
  add_Single(*command, "--columns", words.columns, "Columns of the grid (default 1000)", "N");
  command->footer(kExamples);
  return command;
}

RimOptions check_Rim(const RimWords& words) {
  RimOptions options;
  if (words.method) options.method = parse_Method(*words.method);
  check_Surface(
      words, [&](const Parameter& p) { return is_ReadByRim(options.method, p); }, options);
  check_Axis(words, options);
  if (words.start) {
    if (options.method == RimMethod::kGridRoi) {
      throw UsageError(
          "--start belongs to the methods edges and grid; grid-roi takes all triangles of --roi.");
    }
    options.start = parse_Start(*words.start);
  }
  set_Grid(words, options);
  return options;
}

}  // namespace undercut::host
