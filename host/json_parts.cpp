#include "json_parts.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <nlohmann/json.hpp>

namespace undercut::host {
namespace {

void put_Number(double value, std::string& text) {
  if (!std::isfinite(value)) {
    text += "null";
    return;
  }
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  const std::string_view digits(buffer, static_cast<size_t>(end - buffer));
  text += digits;
  // Marks a number as real for readers that tell the two kinds apart.
  if (digits.find_first_of(".e") == digits.npos) text += ".0";
}

// A value on one line.
void put_Plain(const Json& json, std::string& text) {
  if (json.is_number_float()) {
    put_Number(json.get<double>(), text);
  } else if (!json.is_structured()) {
    text += json.dump(-1, ' ', false, Json::error_handler_t::replace);
  } else {
    text += json.is_object() ? '{' : '[';
    bool first = true;
    for (auto item = json.begin(); item != json.end(); ++item) {
      if (!first) text += ',';
      first = false;
      if (json.is_object()) {
        put_Plain(Json(item.key()), text);
        text += ':';
      }
      put_Plain(*item, text);
    }
    text += json.is_object() ? '}' : ']';
  }
}

void put_Value(const Json& json, const std::string& margin, std::string& text) {
  const bool nested =
      std::any_of(json.begin(), json.end(), [](const Json& item) { return item.is_structured(); });
  if (!nested) {
    put_Plain(json, text);
    return;
  }
  const std::string inner = margin + "  ";
  text += json.is_object() ? "{" : "[";
  bool first = true;
  for (auto item = json.begin(); item != json.end(); ++item) {
    text += (first ? "\n" : ",\n") + inner;
    first = false;
    if (json.is_object()) {
      put_Plain(Json(item.key()), text);
      text += ": ";
    }
    put_Value(*item, inner, text);
  }
  text += "\n" + margin + (json.is_object() ? "}" : "]");
}

}  // namespace

Json show_Program() { return {{"name", "undercut"}, {"version", UNDERCUT_VERSION}}; }

Json show_Units() { return {{"length", "mm"}, {"area", "mm2"}, {"angle", "deg"}, {"time", "ms"}}; }

Json show_Input(const Part& part) {
  double area = 0.0;
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) area += area_Tri(part.mesh, i);
  return {{"path", part.path},
          {"triangles", part.mesh.triangles.size()},
          {"vertices", part.mesh.vertices.size()},
          {"welded", part.welded},
          {"area", area},
          {"degenerate", part.degenerate}};
}

Json show_Setting(const Value& value) {
  return std::visit([](const auto& v) { return Json(v); }, value);
}

Json show_Settings(const std::vector<Setting>& settings) {
  Json json = Json::object();
  for (const Setting& s : settings) json[s.parameter->name()] = show_Setting(s.value);
  return json;
}

// Adding 0.0 turns -0.0 into 0.0.
Json show_Vec(const T3DVEC& v) { return Json::array({v.x + 0.0, v.y + 0.0, v.z + 0.0}); }

Json show_Frame(const T3DFRM& frame) {
  return {{"x", show_Vec(frame.x)},
          {"y", show_Vec(frame.y)},
          {"z", show_Vec(frame.z)},
          {"origin", show_Vec(frame.org)}};
}

double find_Share(double part, double whole) { return whole > 0.0 ? part / whole : 0.0; }

std::string print_Json(const Json& json) {
  std::string text;
  put_Value(json, "", text);
  return text + "\n";
}

}  // namespace undercut::host
