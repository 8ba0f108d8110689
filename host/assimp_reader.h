// Reads formats other than STL, where the command was built with assimp.
#pragma once

#include <filesystem>

#include "geometry.h"

namespace undercut::host {

bool has_Assimp();

// Triangles in the order in which assimp hands them over: node by node, mesh by mesh, face by face;
// polygons are cut into triangles, points and lines left out. Throws InputError.
Soup read_Assimp(const std::filesystem::path& path);

}  // namespace undercut::host
