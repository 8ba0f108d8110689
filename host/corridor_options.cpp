#include "corridor_options.h"

#include "errors.h"
#include "option_values.h"
#include "text.h"

namespace undercut::host {

void add_Corridor(CLI::App& command, CorridorWords& words, const char* help) {
  add_Single(command, "--corridor", words.line, help, "X,Y,Z,DX,DY,DZ");
  add_Single(command, "--width", words.width, "Width of the slabs (con.f_wid; default 3.8)", "MM");
}

T3DRAY check_Corridor(const CorridorWords& words, const std::vector<std::string>& axes,
                      std::vector<Setting>& settings) {
  const T3DRAY line = parse_Line("--corridor", *words.line);
  if (axes.empty()) {
    throw UsageError(
        "--corridor: name at least one --axis: each makes a slab that holds it and the corridor's "
        "line.");
  }
  for (const std::string& text : axes) {
    if (len_Vec(cross_Vec(unit_Vec(parse_Direction("--axis", text)), line.dir)) < 1e-9) {
      throw UsageError("--axis " + quote_Text(text) +
                       " runs along the corridor's line, so the two span no slab. Take another.");
    }
  }
  if (words.width) {
    settings.push_back({&find_Parameter(kWidth), parse_Length("--width", *words.width)});
  }
  return line;
}

}  // namespace undercut::host
