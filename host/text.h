// Reading of words and numbers, independent of the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace undercut::host {

bool is_Blank(char c);

// Without blanks at both ends.
std::string_view trim_Text(std::string_view text);

// Without the byte order mark that some editors put at the start of a file.
std::string_view skip_Mark(std::string_view text);

// Equal but for the case of ASCII letters.
bool equal_Text(std::string_view a, std::string_view b);

// Between quotes, for a message: cut to 40 characters, unprintable ones shown as "?".
std::string quote_Text(std::string_view text);

// The pieces between separators; one more than there are separators.
std::vector<std::string_view> split_Text(std::string_view text, char separator);

// The whole text as a number, or none. A number too large for a double is infinite.
std::optional<double> parse_Double(std::string_view text);
// Digits, perhaps behind a sign; such a number may still be too large for the next function.
bool is_Whole(std::string_view text);
std::optional<int64_t> parse_Integer(std::string_view text);

// Number of single-character changes that make one text the other, in either case of letters.
size_t dist_Text(std::string_view a, std::string_view b);

// A number with so many digits behind the point.
std::string fixed_Text(double value, int digits);

}  // namespace undercut::host
