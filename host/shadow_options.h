// The command lines of the subcommands classify and depth.
#pragma once

#include <optional>

#include "corridor_options.h"
#include "geometry.h"
#include "surface_options.h"

namespace undercut::host {

struct ShadowOptions : SurfaceOptions {
  std::vector<T3DVEC> axes;  // unit vectors from the part towards the tool, at least one
  std::vector<std::filesystem::path> against;  // meshes that cast shadow too
  // classify: the line round which a tool follows the corridor, unit direction; each axis is a
  // pose.
  std::optional<T3DRAY> corridor;
  std::optional<double> max;  // depth: upper end of the colours and of the histogram, mm
};

struct ShadowWords : SurfaceWords {
  std::vector<std::string> axes, against;
  std::optional<std::string> max;
  CorridorWords corridor;
};

CLI::App* add_Classify(CLI::App& app, ShadowWords& words);
CLI::App* add_Depth(CLI::App& app, ShadowWords& words);

// Throw UsageError.
ShadowOptions check_Classify(const ShadowWords& words);
ShadowOptions check_Depth(const ShadowWords& words);

bool is_ReadByClassify(const Parameter& parameter, bool corridor);
bool is_ReadByDepth(const Parameter& parameter, bool against);

}  // namespace undercut::host
