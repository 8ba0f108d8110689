#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace undercut::host {
namespace {

char lower_Char(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Number readers of the standard library refuse a leading plus.
std::string_view skip_Plus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

}  // namespace

bool is_Blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trim_Text(std::string_view text) {
  while (!text.empty() && is_Blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_Blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view skip_Mark(std::string_view text) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

bool equal_Text(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower_Char(x) == lower_Char(y); });
}

std::string quote_Text(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text.substr(0, 40)) quoted += c >= ' ' && c <= '~' ? c : '?';
  return quoted + (text.size() > 40 ? "...'" : "'");
}

std::vector<std::string_view> split_Text(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (size_t at = text.find(separator); at != text.npos; at = text.find(separator)) {
    pieces.push_back(text.substr(0, at));
    text.remove_prefix(at + 1);
  }
  pieces.push_back(text);
  return pieces;
}

std::optional<double> parse_Double(std::string_view text) {
  text = skip_Plus(text);
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
  // Out of range may mean too large or too small: strtod tells them apart.
  if (error == std::errc::result_out_of_range)
    return std::strtod(std::string(text).c_str(), nullptr);
  return value;
}

bool is_Whole(std::string_view text) {
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<int64_t> parse_Integer(std::string_view text) {
  text = skip_Plus(text);
  int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (stop != end || error != std::errc()) return std::nullopt;
  return value;
}

size_t dist_Text(std::string_view a, std::string_view b) {
  // Levenshtein's distance (1965), one row of the table at a time.
  std::vector<size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      const size_t change = diagonal + (lower_Char(a[i]) == lower_Char(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({change, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

std::string fixed_Text(double value, int digits) {
  char buffer[400];
  const int length = std::snprintf(buffer, sizeof buffer, "%.*f", digits, value);
  return std::string(buffer, static_cast<size_t>(length));
}

}  // namespace undercut::host
