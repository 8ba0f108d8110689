// What the JSON documents of the command have in common. Their forms are told in docs/json.md.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "parameters.h"
#include "part.h"

namespace undercut::host {

using Json = nlohmann::ordered_json;

Json show_Program();
Json show_Units();
Json show_Input(const Part& part);
Json show_Setting(const Value& value);
// The parameters that were set; of one that was set twice the last value.
Json show_Settings(const std::vector<Setting>& settings);

Json show_Vec(const T3DVEC& v);
Json show_Frame(const T3DFRM& frame);

// From 0 to 1; 0 where there is no whole.
double find_Share(double part, double whole);

// Indented, but for arrays and objects of plain values, which stand on one line each. Numbers take
// the shortest form that reads back as the same value; one that is not finite is null.
std::string print_Json(const Json& json);

}  // namespace undercut::host
