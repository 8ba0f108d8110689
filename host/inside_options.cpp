#include "inside_options.h"

#include "errors.h"
#include "option_values.h"

namespace undercut::host {
namespace {

constexpr const char* kExamples = R"(
Examples:
  undercut inside part.stl --curve rim/rim.pol
      The triangles that the curves of 'undercut rim' bound. Results: inside/inside.txt (one
      triangle a line, as --roi reads it), inside/inside.ply, inside/inside.json, a table here.
  undercut inside part.stl --curve pocket.pol --reverse -o rest
      Everything but what the curve bounds, or what a curve bounds that was drawn clockwise.
)";

}  // namespace

CLI::App* add_Inside(CLI::App& app, InsideWords& words) {
  CLI::App* command =
      app.add_subcommand("inside", "List the triangles inside closed curves on a part");
  add_Part(*command, words.part);
  add_List(*command, "--curve", words.curves,
           "A file of closed curves (.pol) on the surface; several may be given, at least one is "
           "needed. Inside is to the left of a curve, seen from outside the part",
           "FILE");
  command->add_flag("--reverse", words.reverse, "Take what is to the right of the curves");
  add_Single(*command, "-o,--out", words.folder,
             "Folder of the results, made if missing (default inside)", "FOLDER");
  command->add_flag("--json", words.json, "Print the answer as JSON on standard output");
  command->footer(kExamples);
  return command;
}

InsideOptions check_Inside(const InsideWords& words) {
  check_Names(words.part, words.folder);
  if (words.curves.empty()) {
    throw UsageError(
        "--curve: name at least one file of closed curves, for example --curve rim/rim.pol. "
        "'undercut rim' writes one.");
  }
  InsideOptions options{words.part, {}, words.reverse, words.folder, words.json};
  for (const std::string& text : words.curves) {
    options.curves.emplace_back(check_File("--curve", text));
  }
  return options;
}

}  // namespace undercut::host
