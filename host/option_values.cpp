#include "option_values.h"

#include <cmath>

#include "assimp_reader.h"
#include "errors.h"
#include "text.h"

namespace undercut::host {

std::vector<double> parse_Numbers(const std::string& text, size_t count) {
  std::vector<double> values;
  for (const std::string_view piece : split_Text(text, ',')) {
    const std::optional<double> value = parse_Double(trim_Text(piece));
    if (!value || !std::isfinite(*value)) return {};
    values.push_back(*value);
  }
  if (values.size() != count) values.clear();
  return values;
}

T3DVEC parse_Direction(const std::string& option, const std::string& text) {
  const std::vector<double> values = parse_Numbers(text, 3);
  const T3DVEC direction = values.empty() ? T3DVEC{} : T3DVEC{values[0], values[1], values[2]};
  const double length = len_Vec(direction);
  if (!(length > 1e-100) || !std::isfinite(length)) {
    throw UsageError(option + " " + quote_Text(text) +
                     ": write a direction as three numbers with commas, for example 0,0,1.");
  }
  return direction;
}

T3DRAY parse_Line(const std::string& option, const std::string& text) {
  const std::vector<double> values = parse_Numbers(text, 6);
  const T3DVEC way = values.empty() ? T3DVEC{} : T3DVEC{values[3], values[4], values[5]};
  const double length = len_Vec(way);
  if (!(length > 1e-100) || !std::isfinite(length)) {
    throw UsageError(option + " " + quote_Text(text) +
                     ": write a point and a direction as six numbers with commas, for example "
                     "0,0,5,0,0,1.");
  }
  return {{values[0], values[1], values[2]}, unit_Vec(way)};
}

double parse_Length(const std::string& option, const std::string& text) {
  const std::optional<double> value = parse_Double(text);
  if (!value || !std::isfinite(*value) || !(*value > 0.0)) {
    throw UsageError(option + " " + quote_Text(text) + ": write a length above 0 in mm.");
  }
  return *value;
}

void add_Part(CLI::App& command, std::string& part) {
  const char* formats = has_Assimp() ? "The part: STL, or another mesh format (OBJ, PLY, OFF, ...)"
                                     : "The part: STL, binary or text";
  command.add_option("PART", part, formats)->required();
}

void add_List(CLI::App& command, const char* name, std::vector<std::string>& list, const char* help,
              const char* word) {
  command.add_option(name, list, help)
      ->type_name(word)
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

const std::string& check_File(const std::string& option, const std::string& name) {
  if (name.empty()) throw UsageError(option + ": the name of the file is empty.");
  return name;
}

void check_Names(const std::string& part, const std::string& folder) {
  check_File("PART", part);
  if (folder.empty()) throw UsageError("-o: the name of the folder is empty.");
}

}  // namespace undercut::host
