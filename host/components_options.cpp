#include "components_options.h"

#include <algorithm>
#include <cmath>

#include "errors.h"
#include "option_values.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut components part.stl
      The connected pieces of the part. Results: components/components.ply (open it in MeshLab),
      components/components.json, components/piece-1.txt and so on, and a table here.
  undercut components part.stl --roi undercut.txt --min-area 0.5
      The connected pieces of a list of triangles, without those below 0.5 mm2.
  undercut components part.stl --values depth/depth.json --min-value 0.2 --outside rim/rim.pol
      Only pieces that reach 0.2 deep, and none that reaches into the curves.
  undercut components part.stl --corridor 0,0,0,1,0,0 --axis 0,0,1 --width 2
      The pieces of a band of 2 mm round the plane through X and Z.
)";

double parse_Number(const char* option, const std::string& text, bool area) {
  const std::optional<double> value = parse_Double(text);
  if (!value || !std::isfinite(*value) || !(*value >= 0.0)) {
    throw UsageError(
        std::string(option) + " " + quote_Text(text) +
        (area ? ": write an area of 0 or more in mm2." : ": write a value of 0 or more."));
  }
  return *value;
}

bool is_Limit(const Parameter& parameter) {
  return parameter.name() == "flt.f_srf" || parameter.name() == "flt.f_dep";
}

// A filter without a limit of its own lets everything through; what the user set comes behind.
void set_Filter(const ComponentsWords& words, ComponentsOptions& options) {
  options.filter = words.min_area || words.min_value || !words.outside.empty() ||
                   std::any_of(options.settings.begin(), options.settings.end(),
                               [](const Setting& s) { return is_Limit(*s.parameter); });
  if (!options.filter) return;
  const auto make = [](const char* name, double value) {
    return Setting{&find_Parameter(name), value};
  };
  options.settings.insert(options.settings.begin(),
                          {make("flt.f_srf", 0.0), make("flt.f_dep", 0.0)});
  if (words.min_area) {
    options.settings.push_back(
        make("flt.f_srf", parse_Number("--min-area", *words.min_area, true)));
  }
  if (words.min_value) {
    options.settings.push_back(
        make("flt.f_dep", parse_Number("--min-value", *words.min_value, false)));
  }
  if (find_Value<double>(options.settings, "flt.f_dep") > 0.0 && !words.values) {
    throw UsageError("--min-value: give a value for each triangle with --values.");
  }
}

void set_Corridor(const ComponentsWords& words, ComponentsOptions& options) {
  if (!words.corridor.line) {
    if (!words.axes.empty() || words.corridor.width) {
      throw UsageError(
          "--axis and --width are for --corridor: leave them out, or give the corridor's line.");
    }
    return;
  }
  options.corridor = check_Corridor(words.corridor, words.axes, options.settings);
  for (const std::string& text : words.axes) {
    options.axes.push_back(unit_Vec(parse_Direction("--axis", text)));
  }
}

}  // namespace

bool is_ReadByComponents(const Parameter& parameter, bool corridor) {
  const std::string name = parameter.name();
  return name == "ucs.f_eps" || is_Limit(parameter) || (corridor && name == kWidth);
}

CLI::App* add_Components(CLI::App& app, ComponentsWords& words) {
  CLI::App* command =
      app.add_subcommand("components", "Split a part, or triangles of it, into connected pieces");
  add_Surface(*command, words, "components",
              "Only these triangles: one index a line, from 0; # begins a comment. The files of "
              "several are taken together");
  add_Corridor(*command, words.corridor,
               "Only triangles that reach into slabs round a line, given by a point and a "
               "direction; with --axis");
  add_List(*command, "--axis", words.axes,
           "The corridor's slabs: one for each axis, round the plane that holds it and the line",
           "X,Y,Z");
  add_Single(*command, "--merge", words.merge,
             "Take vertices that are no farther apart as one (ucs.f_eps)", "MM");
  add_Single(*command, "--min-area", words.min_area, "Drop pieces of a smaller area (flt.f_srf)",
             "MM2");
  add_Single(*command, "--values", words.values,
             "A value for each triangle, one number a line, or a depth.json: tells the largest in "
             "each piece",
             "FILE");
  add_Single(*command, "--min-value", words.min_value,
             "Drop pieces whose largest value is smaller (flt.f_dep); with --values", "V");
  add_List(*command, "--outside", words.outside,
           "Drop pieces that reach inside these closed curves on the part (.pol); several may be "
           "given",
           "CURVE");
  command->footer(kExamples);
  return command;
}

ComponentsOptions check_Components(const ComponentsWords& words) {
  ComponentsOptions options;
  check_Surface(
      words,
      [&](const Parameter& p) { return is_ReadByComponents(p, words.corridor.line.has_value()); },
      options);
  if (words.values) options.values = check_File("--values", *words.values);
  for (const std::string& text : words.outside) {
    options.outside.emplace_back(check_File("--outside", text));
  }
  if (words.merge) {
    options.settings.push_back(
        {&find_Parameter("ucs.f_eps"), parse_Length("--merge", *words.merge)});
  }
  set_Corridor(words, options);
  set_Filter(words, options);
  return options;
}

}  // namespace undercut::host
