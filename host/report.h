// The answer in its three forms: a table for people, JSON for programs, a coloured mesh to look at.
#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "answer.h"
#include "options.h"

namespace undercut::host {

using Json = nlohmann::ordered_json;

// The number of the form of regions.json, told in docs/json.md; raised when a key changes.
inline constexpr int kSchema = 1;

Json make_Json(const Part& part, const DecomposeOptions& options, const Answer& answer);

// Indented, but for arrays and objects of plain values, which stand on one line each.
std::string print_Json(const Json& json);

void write_Table(std::ostream& out, const Part& part, const DecomposeOptions& options,
                 const Answer& answer);

// Binary PLY, little-endian: the file's triangles over welded vertices, each with a colour and the
// property "region": its region's number, 0 if free, -1 if it is in no region of interest.
void write_Ply(std::ostream& out, const Part& part, const Answer& answer);

// Colours that lie far apart for numbers that lie near; grey for free triangles, dark for others.
std::array<uint8_t, 3> pick_Colour(int32_t region);

// The manual of the parameters.
void write_Parameters(std::ostream& out);
Json make_ParametersJson();

}  // namespace undercut::host
