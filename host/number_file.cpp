#include "number_file.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <ostream>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "text.h"

namespace undercut::host {
namespace {

using Row = std::vector<double>;

// The words of a line between blanks and commas.
std::vector<std::string_view> split_Words(std::string_view line) {
  std::vector<std::string_view> words;
  const auto separates = [](char c) { return is_Blank(c) || c == ','; };
  for (size_t i = 0; i < line.size();) {
    size_t end = i;
    while (end < line.size() && !separates(line[end])) ++end;
    if (end > i) words.push_back(line.substr(i, end - i));
    i = end + 1;
  }
  return words;
}

// The lines with numbers, each with at least `least` and at most `most` of them; `form` tells the
// user what a line should be.
std::vector<Row> read_Rows(const std::filesystem::path& path, size_t least, size_t most,
                           const char* form) {
  const std::string bytes = read_File(path);
  std::vector<Row> rows;
  size_t number = 0;
  for (std::string_view line : split_Text(skip_Mark(bytes), '\n')) {
    ++number;
    const std::vector<std::string_view> words = split_Words(line.substr(0, line.find('#')));
    if (words.empty()) continue;
    const auto fail = [&](const std::string& what) {
      throw InputError(path.string() + ":" + std::to_string(number) + ": " + what + ". Write " +
                       form + " a line.");
    };
    if (words.size() < least || words.size() > most) {
      fail("there are " + std::to_string(words.size()) + " numbers");
    }
    Row row;
    for (const std::string_view word : words) {
      const std::optional<double> value = parse_Double(word);
      if (!value || !std::isfinite(*value)) fail(quote_Text(word) + " is no finite number");
      row.push_back(*value);
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

[[noreturn]] void fail_Count(const std::filesystem::path& path, size_t count, size_t triangles) {
  throw InputError(path.string() + ": there are " + std::to_string(count) +
                   " values, but the part has " + std::to_string(triangles) +
                   " triangles. Give one for each.");
}

std::vector<double> read_Depths(const std::filesystem::path& path) {
  const Json document = read_Document(path);
  const auto depths = document.find("depths");
  if (depths == document.end() || !depths->is_array()) {
    throw InputError(path.string() +
                     ": there are no \"depths\". Name a depth.json of 'undercut depth', or a text "
                     "with one number a line.");
  }
  std::vector<double> values;
  values.reserve(depths->size());
  for (const Json& depth : *depths) {
    if (!depth.is_null() && !depth.is_number()) {
      throw InputError(path.string() + ": depth " + std::to_string(values.size()) +
                       " is no number.");
    }
    values.push_back(depth.is_null() ? std::numeric_limits<double>::lowest() : depth.get<double>());
  }
  return values;
}

}  // namespace

Json read_Document(const std::filesystem::path& path) {
  const std::string bytes = read_File(path);
  Json document = Json::parse(skip_Mark(bytes), nullptr, false);
  if (!document.is_object()) {
    throw InputError(path.string() + ": this is no JSON document of the command.");
  }
  return document;
}

std::vector<T3DVEC> read_Points(const std::filesystem::path& path) {
  std::vector<T3DVEC> points;
  const size_t most = std::numeric_limits<size_t>::max();
  for (const Row& row : read_Rows(path, 3, most, "the three coordinates of one point")) {
    points.push_back({row[0], row[1], row[2]});
  }
  if (points.empty()) {
    throw InputError(path.string() + ": the file has no point. Write x y z, one point a line.");
  }
  return points;
}

void write_Points(std::ostream& out, const std::vector<T3DVEC>& points) {
  for (const T3DVEC& point : points) {
    std::string line;
    for (const double value : {point.x, point.y, point.z}) {
      char buffer[32];
      const char* const end = std::to_chars(buffer, buffer + sizeof buffer, value + 0.0).ptr;
      line += (line.empty() ? "" : " ") + std::string(static_cast<const char*>(buffer), end);
    }
    out << line << "\n";
  }
}

std::vector<double> read_Values(const std::filesystem::path& path, size_t triangles) {
  std::vector<double> values;
  if (equal_Text(path.extension().string(), ".json")) {
    values = read_Depths(path);
  } else {
    for (const Row& row : read_Rows(path, 1, 1, "one number")) values.push_back(row[0]);
  }
  if (values.size() != triangles) fail_Count(path, values.size(), triangles);
  return values;
}

T3DFRM read_Frame(const std::filesystem::path& path) {
  const std::vector<Row> rows = read_Rows(path, 4, 4, "four numbers");
  if (rows.size() != 4) {
    throw InputError(path.string() + ": there are " + std::to_string(rows.size()) +
                     " lines of numbers. A frame has four: a column for each axis, then the "
                     "origin, and 0 0 0 1 below.");
  }
  const auto column = [&](size_t k) { return T3DVEC{rows[0][k], rows[1][k], rows[2][k]}; };
  const T3DFRM frame{unit_Vec(column(0)), unit_Vec(column(1)), unit_Vec(column(2)), column(3)};
  // Frames are written with nine digits.
  constexpr double kLoose = 1e-6;
  if (!(len_Vec(cross_Vec(frame.x, frame.y) - frame.z) < kLoose) ||
      !(std::fabs(dot_Vec(frame.x, frame.y)) < kLoose)) {
    throw InputError(path.string() +
                     ": the axes are not at right angles to one another, or are left-handed. "
                     "Write a column for each of X, Y and Z, then the origin.");
  }
  return frame;
}

}  // namespace undercut::host
