// Parts of a surface and their sizes, as the subcommands axis, classify and depth tell them.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "json_parts.h"
#include "part.h"

namespace undercut::host {

// How many triangles, and their area in mm2. Triangles with two equal corners have none.
struct Extent {
  size_t count = 0;
  double area = 0.0;

  void add(const Mesh& mesh, uint32_t triangle) {
    ++count;
    area += area_Tri(mesh, triangle);
  }
};

// Of the triangles of a list for which a test holds; areas are added up in the order of the list.
template <typename Test>
Extent measure(const Mesh& mesh, const std::vector<uint32_t>& triangles, const Test& test) {
  Extent extent;
  for (const uint32_t triangle : triangles) {
    if (test(triangle)) extent.add(mesh, triangle);
  }
  return extent;
}

// Of all triangles of a list.
inline Extent measure(const Mesh& mesh, const std::vector<uint32_t>& triangles) {
  return measure(mesh, triangles, [](uint32_t) { return true; });
}

// The triangles of several files as one region of interest, the whole part without any. Those that
// an earlier file names are left out, and counted as repeated. Throws InputError.
Roi read_Together(const std::vector<std::filesystem::path>& paths, const Part& part);

std::vector<Part> read_Parts(const std::vector<std::filesystem::path>& paths);

// The meshes joined to one, the triangles of the first in front. Throws InputError where there are
// more triangles than the library can number.
Mesh join_Meshes(const Mesh& first, const std::vector<Part>& others);

// The directions of the tool for axes from the part towards the tool.
std::vector<T3DVEC> turn_Round(const std::vector<T3DVEC>& axes);

// `count`, `area`, and `share`, the part of `whole`.
Json show_Extent(const Extent& extent, double whole);
// `source`, `count`, `repeated`, `area`.
Json show_Region(const Roi& roi, const Extent& extent);
Json show_Parts(const std::vector<Part>& parts);

// The head of a table: part, other meshes, parameters, region of interest.
void write_Shadow(std::ostream& out, const Part& part, const std::vector<Part>& others,
                  const std::vector<Setting>& settings, const Roi& roi, const Extent& region);

}  // namespace undercut::host
