// The corridor that the subcommands classify and components take: slabs round a line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "geometry.h"
#include "parameters.h"

namespace CLI {
class App;
}

namespace undercut::host {

// The name of the parameter that holds the width of the slabs.
inline constexpr const char* kWidth = "con.f_wid";

struct CorridorWords {
  std::optional<std::string> line, width;
};

// `help` tells what the line is for.
void add_Corridor(CLI::App& command, CorridorWords& words, const char* help);

// The line, which must be given, its direction a unit vector; `axes` is what the user wrote for the
// axes of the slabs. The width goes to the settings. Throws UsageError.
T3DRAY check_Corridor(const CorridorWords& words, const std::vector<std::string>& axes,
                      std::vector<Setting>& settings);

}  // namespace undercut::host
