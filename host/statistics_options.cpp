#include "statistics_options.h"

#include "errors.h"
#include "option_values.h"
#include "region_file.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut statistics part.stl --roi pocket.txt --roi rib.txt --axis 0,0,1
      How much of each region, and of its rim, is seen from above. Results:
      statistics/statistics.ply (open it in MeshLab), statistics/statistics.json, and a table.
  undercut statistics part.stl --regions regions/regions.json
      The regions of 'undercut decompose', each along its own axis.
  undercut statistics part.stl --roi pocket.txt --axis 0.4,0,1 --values depth/depth.json
      The largest depth in the region too.
  undercut statistics part.stl --regions regions/regions.json --allowed --set n_con=1 --set b_th0=30
      What is lost where the machine tilts by 30 degrees at the most: the nearest axis that it can
      take, and what is seen along that.
)";

}  // namespace

bool is_ReadByStatistics(const Parameter& parameter, bool allowed) {
  const std::string name = parameter.name();
  return name == "ucs.f_tol" || (allowed && is_Band(parameter));
}

CLI::App* add_Statistics(CLI::App& app, StatisticsWords& words) {
  CLI::App* command =
      app.add_subcommand("statistics", "Rate regions: how much of each is seen along its axis");
  add_Surface(*command, words, "statistics",
              "A region: one triangle index a line, from 0; # begins a comment. Several may be "
              "given (default: the whole part)");
  add_List(*command, "--axis", words.axes,
           "An axis, from the part towards the tool; once for all regions, or once for each. Of "
           "one region alone several may be given",
           "X,Y,Z");
  add_Single(*command, "--regions", words.regions,
             "Rate the regions of a regions.json of 'undercut decompose', with their own axes "
             "unless --axis is given",
             "FILE");
  add_Single(*command, "--values", words.values,
             "A value for each triangle, one number a line, or a depth.json: tells the largest in "
             "each region",
             "FILE");
  command->add_flag("--allowed", words.allowed,
                    "Rate also the nearest axis in each polar band of the machine (dcm.n_con, "
                    "dcm.a_th0 to dcm.b_th2; unless they are set, those of --regions)");
  add_Single(*command, "--up", words.up,
             "The machine's Z axis in the part's coordinates, from which the bands are told "
             "(default: that of --regions, or 0,0,1)",
             "X,Y,Z");
  command->footer(kExamples);
  return command;
}

StatisticsOptions check_Statistics(const StatisticsWords& words) {
  StatisticsOptions options;
  check_Surface(
      words, [&](const Parameter& p) { return is_ReadByStatistics(p, words.allowed); }, options);
  if (words.regions) options.regions = check_File("--regions", *words.regions);
  if (words.values) options.values = check_File("--values", *words.values);
  if (words.regions && !words.rois.empty()) {
    throw UsageError("--regions and --roi both name regions: leave one of them out.");
  }
  if (words.axes.empty() && !words.regions) {
    throw UsageError(
        "--axis: name at least one axis, from the part towards the tool, for example --axis "
        "0,0,1, or --regions with axes of their own.");
  }
  if (words.up && !words.allowed) {
    throw UsageError("--up is for the polar bands of --allowed: leave it out, or give both.");
  }
  for (const std::string& text : words.axes) {
    options.axes.push_back(unit_Vec(parse_Direction("--axis", text)));
  }
  options.allowed = words.allowed;
  if (words.up) options.up = parse_Direction("--up", *words.up);
  return options;
}

}  // namespace undercut::host
