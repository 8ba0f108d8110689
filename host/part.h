// The part as the command keeps it: the file's triangles in the file's order, over welded vertices.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// The library numbers triangles by signed 32-bit values, and corners too.
inline constexpr size_t kMostTriangles = 0x2AAAAAAA;

struct Part {
  std::string path;
  Mesh mesh;                         // triangle i is triangle i of the file
  size_t welded = 0;                 // corners of the file that fell on an earlier one
  std::vector<uint32_t> degenerate;  // triangles with two equal corners
};

// The whole file. Throws InputError.
std::string read_File(const std::filesystem::path& path);

// Makes corners one vertex where their coordinates are exactly equal; -0.0 equals 0.0. Vertices
// are numbered by their first corner.
Mesh weld_Corners(const Soup& corners);

// Reads STL, and by assimp, where the command was built with it, every other format that the name
// of the file tells. Throws InputError.
Part read_Part(const std::filesystem::path& path);

// A list of triangles.
struct Roi {
  std::string source;  // "whole mesh", or the file's path
  std::vector<uint32_t> triangles;
  size_t repeated = 0;  // entries that were left out because an earlier one says the same
};

// The triangles of the part but for the degenerate ones.
Roi whole_Roi(const Part& part);

// Reads one triangle index a line; blank lines, and everything behind "#", are passed over.
// Throws InputError with the file and the line.
Roi read_Roi(const std::filesystem::path& path, size_t triangles);
// The same for each of several files.
std::vector<Roi> read_Rois(const std::vector<std::filesystem::path>& paths, const Part& part);

}  // namespace undercut::host
