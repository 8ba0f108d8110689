// The command line of the subcommand project.
#pragma once

#include "geometry.h"
#include "surface_options.h"

namespace undercut::host {

struct ProjectOptions : SurfaceOptions {
  std::vector<std::filesystem::path> points;  // one area each
  // Direction of projection of each area, unit vectors from the part towards the tool: one for
  // each area or one for all. None where frames are given.
  std::vector<T3DVEC> axes;
  std::vector<std::filesystem::path> frames;  // the same as frames that the points are told in
  std::vector<T3DRAY> lines;                  // to meet the part with, instead of areas; unit dirs
};

struct ProjectWords : SurfaceWords {
  std::vector<std::string> points, axes, frames, lines;
};

CLI::App* add_Project(CLI::App& app, ProjectWords& words);
// Throws UsageError.
ProjectOptions check_Project(const ProjectWords& words);

bool is_ReadByProject(const Parameter& parameter);

}  // namespace undercut::host
