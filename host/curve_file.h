// Closed curves in files: `.pol`, blocks of points between an opening and a closing tag.
//
//   <000>
//   10.000000 0.000000 5.000000
//   ...
//   </000>
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// A closed curve; the first point is not repeated at its end.
using Curve = std::vector<T3DVEC>;

// With zeros in front, three digits at least: "007".
std::string pad_Number(size_t number);

// Six digits behind the point, as in the files that the library writes.
void write_Curve(std::ostream& out, const std::string& tag, const Curve& curve);

// The curves of a file in their order. Blank lines, and everything behind "#", are passed over; a
// last point that repeats the first is dropped. Throws InputError with the file and the line.
std::vector<Curve> read_Curves(const std::filesystem::path& path);

// Of the closed polygon, in mm.
double measure_Length(const Curve& curve);

// Area enclosed in the plane of x and y, mm2; below 0 for a curve that runs clockwise.
double measure_Area(const Curve& curve);

}  // namespace undercut::host
