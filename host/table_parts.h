// What the tables of the command have in common.
#pragma once

#include <iosfwd>
#include <string>

#include "parameters.h"
#include "part.h"

namespace undercut::host {

// "12.5 %"
std::string show_Percent(double part, double whole);

// "1 triangle", "2 triangles"
std::string count_Word(size_t count, const char* one, const char* many);

// Three columns of nine characters, with four digits behind the point.
std::string show_Direction(const T3DVEC& direction);

// The part's name and size, and its degenerate triangles.
void write_Part(std::ostream& out, const Part& part);

// A line for each parameter that was set.
void write_Settings(std::ostream& out, const std::vector<Setting>& settings);

}  // namespace undercut::host
