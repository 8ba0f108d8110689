// The command line.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "axis_options.h"
#include "components_options.h"
#include "inside_options.h"
#include "parameters.h"
#include "prepare.h"
#include "project_options.h"
#include "rim_options.h"
#include "shadow_options.h"
#include "statistics_options.h"

namespace undercut::host {

struct DecomposeOptions {
  std::filesystem::path part;
  std::vector<std::filesystem::path> rois;  // none: the whole mesh, or what the search finds
  bool search = false;                      // find the axis and the regions of interest
  double min_area = -1.0;                   // of a patch found, mm2; below 0: a share of the part
  std::vector<Setting> settings;            // in the order given; a later one wins
  std::filesystem::path folder = "regions";
  bool json = false;
  bool stage_files = false;
  bool plain = false;
  PrepareRules prepare;
};

struct Options {
  enum class Action {
    Axis,
    Classify,
    Depth,
    Decompose,
    Rim,
    Inside,
    Project,
    Statistics,
    Components,
    Parameters,
    Nothing
  };

  Action action = Action::Nothing;  // Nothing: help or the version was printed
  AxisOptions axis;
  ShadowOptions shadow;  // of Classify and Depth
  DecomposeOptions decompose;
  RimOptions rim;
  InsideOptions inside;
  ProjectOptions project;
  StatisticsOptions statistics;
  ComponentsOptions components;
  bool json = false;  // of Parameters
};

// Throws UsageError. Help and version are printed on `out`.
Options parse_Options(int argc, const char* const* argv, std::ostream& out);

}  // namespace undercut::host
