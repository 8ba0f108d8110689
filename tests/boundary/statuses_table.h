// The tables of docs/statuses.md: for each export its statuses, and the test that shows each.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace undercut::tests {

struct TStatusRow {
  int32_t status;
  std::string meaning;
  std::string shown;  // `Suite.Name` in backticks, or "not reachable: " and why
};

struct TStatusSection {
  std::string name;
  std::vector<TStatusRow> rows;
  std::vector<std::string> strange;  // lines of the table that are no row
};

inline std::string load_Source(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(UNDERCUT_SOURCE "/" + path).rdbuf();
  return text.str();
}

// Without blanks at both ends.
inline std::string trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \n") - first + 1);
}

// A row has three columns and a whole number in the first.
inline bool read_Row(const std::string& line, TStatusRow& row) {
  std::vector<std::string> columns;
  std::istringstream parts(line.substr(1));
  for (std::string part; std::getline(parts, part, '|');) columns.push_back(trimmed(part));
  if (columns.size() != 3 || line.back() != '|' || columns[0].empty()) return false;
  char* end = nullptr;
  row = {static_cast<int32_t>(std::strtol(columns[0].c_str(), &end, 10)), columns[1], columns[2]};
  return *end == '\0';
}

inline std::vector<TStatusSection> read_Statuses(const std::string& document) {
  std::vector<TStatusSection> sections;
  std::istringstream lines(document);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("## ", 0) == 0) sections.push_back({line.substr(3), {}, {}});
    if (sections.empty() || line.empty() || line[0] != '|') continue;
    if (line == "| Status | Meaning | Shown by |" || line == "|---|---|---|") continue;
    TStatusRow row;
    if (read_Row(line, row))
      sections.back().rows.push_back(row);
    else
      sections.back().strange.push_back(line);
  }
  return sections;
}

}  // namespace undercut::tests
