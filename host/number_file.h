// Text files of numbers that a user hands in: points, values for triangles, frames. Numbers are
// separated by blanks or commas; blank lines, and everything behind "#", are passed over.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <vector>

#include "json_parts.h"

namespace undercut::host {

// The points of a file, `x y z` a line; further numbers of a line are passed over, as normals or
// colours of a scan. Throws InputError, also where there are none.
std::vector<T3DVEC> read_Points(const std::filesystem::path& path);

// One point a line; each number takes the shortest form that reads back as the same value.
void write_Points(std::ostream& out, const std::vector<T3DVEC>& points);

// A number for each triangle: one a line, or the `depths` of a depth.json, of which null is below
// all others. Throws InputError, also for another number of values.
std::vector<double> read_Values(const std::filesystem::path& path, size_t triangles);

// A frame as a matrix of four lines: a column for each axis, then the origin. The axes become unit
// vectors. Throws InputError, also for axes that are not at right angles or are left-handed.
T3DFRM read_Frame(const std::filesystem::path& path);

// A JSON document of the command. Throws InputError where it is none.
Json read_Document(const std::filesystem::path& path);

}  // namespace undercut::host
