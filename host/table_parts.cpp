#include "table_parts.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "text.h"

namespace undercut::host {

std::string show_Percent(double part, double whole) {
  return fixed_Text(whole > 0.0 ? 100.0 * part / whole : 0.0, 1) + " %";
}

std::string count_Word(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string show_Direction(const T3DVEC& direction) {
  std::string text;
  for (const double value : {direction.x, direction.y, direction.z}) {
    // Adding 0.0 shows a value that rounds to -0.0 without its sign.
    const std::string number = fixed_Text(std::round(value * 1e4) / 1e4 + 0.0, 4);
    text += std::string(number.size() < 9 ? 9 - number.size() : 1, ' ') + number;
  }
  return text;
}

void write_Part(std::ostream& out, const Part& part) {
  out << part.path << ": " << count_Word(part.mesh.triangles.size(), "triangle", "triangles")
      << ", " << count_Word(part.mesh.vertices.size(), "vertex", "vertices") << "\n";
  if (part.degenerate.empty()) return;
  out << count_Word(part.degenerate.size(), "triangle has", "triangles have")
      << " two equal corners:";
  constexpr size_t kShown = 10;
  for (size_t i = 0; i < std::min(kShown, part.degenerate.size()); ++i) {
    out << " " << part.degenerate[i];
  }
  out << (part.degenerate.size() > kShown ? " ...\n" : "\n");
}

void write_Settings(std::ostream& out, const std::vector<Setting>& settings) {
  for (const Setting& setting : settings) {
    out << setting.parameter->name() << " = " << show_Value(setting.value) << "\n";
  }
}

}  // namespace undercut::host
