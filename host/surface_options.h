// What the subcommands axis, classify and depth are all told.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "parameters.h"

namespace CLI {
class App;
}

namespace undercut::host {

struct SurfaceOptions {
  std::filesystem::path part;
  std::vector<std::filesystem::path> rois;  // none: the whole mesh
  std::vector<Setting> settings;            // in the order given; a later one wins
  std::filesystem::path folder;
  bool json = false;
};

// What CLI11 stores before it is checked.
struct SurfaceWords {
  std::string part, folder;
  std::vector<std::string> rois, sets;
  bool json = false;
};

// `folder` is where results go unless the user says otherwise.
void add_Surface(CLI::App& command, SurfaceWords& words, const char* folder, const char* roi_help);

// Throws UsageError. `reads` tells the parameters that the computation reads.
void check_Surface(const SurfaceWords& words, const Reads& reads, SurfaceOptions& options);

}  // namespace undercut::host
