#include "surface_options.h"

#include "option_values.h"

namespace undercut::host {

void add_Surface(CLI::App& command, SurfaceWords& words, const char* folder, const char* roi_help) {
  add_Part(command, words.part);
  add_List(command, "--roi", words.rois, roi_help, "FILE");
  add_List(command, "--set", words.sets, "Set a parameter; 'undercut parameters' lists them",
           "KEY=VALUE");
  words.folder = folder;
  const std::string help =
      std::string("Folder of the results, made if missing (default ") + folder + ")";
  add_Single(command, "-o,--out", words.folder, help.c_str(), "FOLDER");
  command.add_flag("--json", words.json, "Print the answer as JSON on standard output");
}

void check_Surface(const SurfaceWords& words, const Reads& reads, SurfaceOptions& options) {
  check_Names(words.part, words.folder);
  options.part = words.part;
  options.folder = words.folder;
  options.rois.assign(words.rois.begin(), words.rois.end());
  options.json = words.json;
  for (const std::string& text : words.sets) {
    options.settings.push_back(parse_Setting(text, reads));
  }
}

}  // namespace undercut::host
