// The keys are told in docs/json.md. Their order is fixed.
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "components_answer.h"
#include "face_ply.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Corridor(const ComponentsOptions& options) {
  if (!options.corridor) return nullptr;
  Json axes = Json::array();
  for (const T3DVEC& axis : options.axes) axes.push_back(show_Vec(axis));
  return {{"origin", show_Vec(options.corridor->org)},
          {"direction", show_Vec(options.corridor->dir)},
          {"axes", std::move(axes)},
          {"width", find_Value<double>(options.settings, kWidth)}};
}

Json show_Filter(const ComponentsOptions& options) {
  if (!options.filter) return nullptr;
  Json outside = Json::array();
  for (const auto& path : options.outside) outside.push_back(path.string());
  return {{"min_area", find_Value<double>(options.settings, "flt.f_srf")},
          {"min_value", find_Value<double>(options.settings, "flt.f_dep")},
          {"outside", std::move(outside)}};
}

Json show_Piece(const Piece& piece, size_t k, double whole) {
  Json json{{"number", k + 1}, {"kept", piece.kept}};
  json.update(show_Extent(piece.extent, whole));
  json["largest"] = piece.largest ? Json(*piece.largest) : Json(nullptr);
  json["triangles"] = piece.triangles;
  return json;
}

void write_Line(std::ostream& out, const std::string& name, const Extent& extent, double whole) {
  out << std::setw(8) << name << std::setw(12) << extent.count << std::setw(14)
      << fixed_Text(extent.area, 3) << std::setw(10) << show_Percent(extent.area, whole);
}

}  // namespace

Json make_ComponentsJson(const Part& part, const ComponentsOptions& options,
                         const ComponentsAnswer& answer) {
  Json pieces = Json::array();
  for (size_t k = 0; k < answer.pieces.size(); ++k) {
    pieces.push_back(show_Piece(answer.pieces[k], k, answer.region.area));
  }
  return {{"schema", kComponentsSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"parameters", show_Settings(options.settings)},
          {"region", show_Region(answer.roi, answer.region)},
          {"corridor", show_Corridor(options)},
          {"filter", show_Filter(options)},
          {"values", options.values.empty() ? Json(nullptr) : Json(options.values.string())},
          {"kept", show_Extent(answer.kept, answer.region.area)},
          {"dropped", show_Extent(answer.dropped, answer.region.area)},
          {"pieces", std::move(pieces)},
          {"elapsed", answer.elapsed_ms}};
}

void write_ComponentsTable(std::ostream& out, const Part& part, const ComponentsOptions& options,
                           const ComponentsAnswer& answer) {
  write_Shadow(out, part, {}, options.settings, answer.roi, answer.region);
  const bool values = !options.values.empty();
  out << "\n   piece   triangles      area mm2     share" << (values ? "     largest" : "") << "\n";
  for (size_t k = 0; k < answer.pieces.size(); ++k) {
    const Piece& piece = answer.pieces[k];
    write_Line(out, std::to_string(k + 1), piece.extent, answer.region.area);
    if (values) out << std::setw(12) << (piece.largest ? fixed_Text(*piece.largest, 4) : "-");
    out << (piece.kept ? "" : "  dropped") << "\n";
  }
  if (options.filter) {
    write_Line(out, "kept", answer.kept, answer.region.area);
    out << "\n";
    write_Line(out, "dropped", answer.dropped, answer.region.area);
    out << "\n";
  }
  out << "\n" << count_Word(answer.pieces.size(), "piece", "pieces");
  if (options.filter) out << ", " << answer.kept_pieces << " kept";
  out << "; in " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_ComponentsPly(std::ostream& out, const Part& part, const ComponentsAnswer& answer) {
  std::vector<int32_t> numbers(part.mesh.triangles.size(), -1);
  for (size_t k = 0; k < answer.pieces.size(); ++k) {
    const Piece& piece = answer.pieces[k];
    for (const uint32_t triangle : piece.triangles) {
      numbers[triangle] = piece.kept ? static_cast<int32_t>(k + 1) : 0;
    }
  }
  const auto put_Number = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(numbers[i]), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut components; piece: its number, from 1; 0 dropped, -1 not asked for",
                 "int piece", [&](size_t i) { return pick_Colour(numbers[i]); }, put_Number});
}

}  // namespace undercut::host
