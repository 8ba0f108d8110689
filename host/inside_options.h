// The command line of the subcommand inside.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace undercut::host {

struct InsideOptions {
  std::filesystem::path part;
  std::vector<std::filesystem::path> curves;  // files, at least one
  bool reverse = false;                       // what lies to the right of the curves
  std::filesystem::path folder;
  bool json = false;
};

struct InsideWords {
  std::string part, folder = "inside";
  std::vector<std::string> curves;
  bool reverse = false, json = false;
};

CLI::App* add_Inside(CLI::App& app, InsideWords& words);
// Throws UsageError.
InsideOptions check_Inside(const InsideWords& words);

}  // namespace undercut::host
