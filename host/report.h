// The answer in its three forms: a table for people, JSON for programs, a coloured mesh to look at.
#pragma once

#include <iosfwd>
#include <string>

#include "answer.h"
#include "face_ply.h"
#include "json_parts.h"
#include "options.h"

namespace undercut::host {

// The number of the form of regions.json, told in docs/json.md; raised when a key changes.
inline constexpr int kSchema = 3;

Json make_Json(const Part& part, const DecomposeOptions& options, const Answer& answer);

void write_Table(std::ostream& out, const Part& part, const DecomposeOptions& options,
                 const Answer& answer);

// Binary PLY, little-endian: the file's triangles over welded vertices, each with a colour and the
// property "region": its region's number, 0 if free, -1 if it is in no region of interest.
void write_Ply(std::ostream& out, const Part& part, const Answer& answer);

// The rims of all regions as `.pol`, in the part's coordinates; a block is tagged by its region.
void write_Rims(std::ostream& out, const Answer& answer);

// The manual of the parameters.
void write_Parameters(std::ostream& out);
Json make_ParametersJson();

}  // namespace undercut::host
