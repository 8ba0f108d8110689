// What the options of the subcommands have in common: their values, and how CLI11 is told of them.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "geometry.h"

namespace undercut::host {

// So many numbers with commas between them; empty where the text is anything else, or a number is
// not finite.
std::vector<double> parse_Numbers(const std::string& text, size_t count);

// A direction X,Y,Z of any length above 0, as it was written. Throws UsageError that names
// `option`.
T3DVEC parse_Direction(const std::string& option, const std::string& text);

// A line X,Y,Z,DX,DY,DZ: a point, and a direction that becomes a unit vector. Throws UsageError.
T3DRAY parse_Line(const std::string& option, const std::string& text);

// A length above 0 in mm. Throws UsageError.
double parse_Length(const std::string& option, const std::string& text);

void add_Part(CLI::App& command, std::string& part);

// An option that takes one value each time it is given, and gathers them.
void add_List(CLI::App& command, const char* name, std::vector<std::string>& list, const char* help,
              const char* word);

// An option of which the last value counts.
template <typename Value>
void add_Single(CLI::App& command, const char* name, Value& value, const char* help,
                const char* word) {
  command.add_option(name, value, help)
      ->type_name(word)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

// The name of a file that an option gives. Throws UsageError for an empty one.
const std::string& check_File(const std::string& option, const std::string& name);

// Throws UsageError for names that are empty.
void check_Names(const std::string& part, const std::string& folder);

}  // namespace undercut::host
