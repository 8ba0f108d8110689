// Reads STL, binary and text. The order of triangles and corners is that of the file.
#pragma once

#include <string>
#include <string_view>

#include "geometry.h"

namespace undercut::host {

// Told by size alone, 84 + 50 n bytes: the header of a binary file may well begin with "solid".
bool is_BinaryStl(std::string_view bytes);

// `name` stands in messages. Throws InputError, with the line or the triangle, on a file that is
// cut off or no STL, on one without triangles, and on a coordinate that is not finite.
Soup parse_Stl(std::string_view bytes, const std::string& name);

}  // namespace undercut::host
