#include "project_answer.h"

#include <undercut/exports.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include <nlohmann/json.hpp>

#include "curve_file.h"
#include "library_call.h"
#include "number_file.h"
#include "prepare.h"
#include "project_calls.h"
#include "registered_mesh.h"
#include "surface_command.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

bool is_CurveFile(const std::filesystem::path& path) {
  return equal_Text(path.extension().string(), ".pol");
}

// The k-th of several, or the one for all.
template <typename Item>
const Item& pick_Item(const std::vector<Item>& items, size_t k) {
  return items.size() == 1 ? items[0] : items[k];
}

void read_Area(const std::filesystem::path& path, MovedArea& area) {
  area.source = path.string();
  if (!is_CurveFile(path)) {
    area.before = read_Points(path);
    return;
  }
  for (const Curve& curve : read_Curves(path)) {
    area.curves.push_back(curve.size());
    area.before.insert(area.before.end(), curve.begin(), curve.end());
  }
}

Roi pick_Triangles(const ProjectOptions& options, const Part& part, size_t k) {
  if (options.rois.empty()) return whole_Roi(part);
  Roi roi = read_Roi(pick_Item(options.rois, k), part.mesh.triangles.size());
  const bool usable = std::any_of(roi.triangles.begin(), roi.triangles.end(), [&](uint32_t i) {
    return !has_EqualCorners(part.mesh.triangles[i]);
  });
  if (!usable) {
    throw InputError(roi.source +
                     ": every triangle that it names has two equal corners, so there is nothing to "
                     "put points on. Name others.");
  }
  return roi;
}

MovedArea make_Area(const ProjectOptions& options, const Part& part, size_t k) {
  MovedArea area;
  area.roi = pick_Triangles(options, part, k);
  area.region = measure(part.mesh, area.roi.triangles);
  read_Area(options.points[k], area);
  area.in_frame = !options.frames.empty();
  if (area.in_frame) {
    area.frame = read_Frame(pick_Item(options.frames, k));
    for (T3DVEC& point : area.before) point = place_Point(area.frame, point);
  } else {
    const Rotation upright = rotate_Up(pick_Item(options.axes, k));
    area.frame = {upright.x, upright.y, upright.z, {0, 0, 0}};
  }
  return area;
}

void rate_Area(const RegisteredMesh& registered, MovedArea& area) {
  double sum = 0.0;
  for (size_t i = 0; i < area.before.size(); ++i) {
    const double distance = len_Vec(area.after[i] - area.before[i]);
    sum += distance;
    area.largest = std::fmax(area.largest, distance);
    area.stayed += distance > 0.0 ? 0 : 1;
    area.on_part.push_back(registered.touches({area.after[i], area.frame.z}));
    area.off_part += area.on_part.back() ? 0 : 1;
  }
  area.mean = sum / static_cast<double>(area.before.size());
}

void move_Areas(const ProjectOptions& options, const Part& part, ProjectAnswer& answer) {
  std::vector<PointsArea> asked;
  for (size_t k = 0; k < options.points.size(); ++k) {
    answer.areas.push_back(make_Area(options, part, k));
  }
  for (const MovedArea& area : answer.areas) {
    asked.push_back({area.roi.triangles, area.before, area.frame});
  }
  // The library's second step passes over a face that lies across the axis at the very height of
  // the point, and goes on to the wall behind it. So what the first step, which a tolerance of 0
  // shows, puts onto the part stays there.
  const double none = 0.0, tolerance = find_Value<double>(options.settings, "prj.f_tol");
  prj_tol(&none);
  const std::vector<std::vector<T3DVEC>> first = move_Points(part.mesh, asked);
  prj_tol(&tolerance);
  std::vector<std::vector<T3DVEC>> moved = move_Points(part.mesh, asked);
  const RegisteredMesh registered(part.mesh);
  for (size_t k = 0; k < moved.size(); ++k) {
    MovedArea& area = answer.areas[k];
    area.after = std::move(moved[k]);
    for (size_t i = 0; i < area.after.size(); ++i) {
      if (registered.touches({first[k][i], area.frame.z})) area.after[i] = first[k][i];
    }
    rate_Area(registered, area);
  }
}

void meet_Lines(const ProjectOptions& options, const Part& part, ProjectAnswer& answer) {
  const RegisteredMesh registered(part.mesh);
  for (const T3DRAY& line : options.lines) {
    MetLine met{line, registered.meet_Line(line), 0.0};
    if (met.point) met.distance = dot_Vec(*met.point - line.org, line.dir);
    answer.lines.push_back(met);
  }
}

std::string print_Points(const std::vector<T3DVEC>& points) {
  std::ostringstream text;
  write_Points(text, points);
  return text.str();
}

std::string print_Curves(const MovedArea& area) {
  std::ostringstream text;
  auto from = area.after.begin();
  for (size_t k = 0; k < area.curves.size(); ++k) {
    const auto to = from + static_cast<std::ptrdiff_t>(area.curves[k]);
    write_Curve(text, pad_Number(k), {from, to});
    from = to;
  }
  return text.str();
}

// Writes the points but for the first file's document, and tells which files there are besides.
std::string write_Files(const ProjectAnswer& answer, OutputFolder& folder) {
  std::string more;
  const auto add = [&](const std::string& name, const std::string& bytes) {
    folder.add(name, bytes);
    more += ", " + folder.path(folder.count() - 1).string();
  };
  folder.replace_Numbered("points-", ".asc");
  folder.replace_Numbered("points-", ".pol");
  for (size_t k = 0; k < answer.areas.size(); ++k) {
    const MovedArea& area = answer.areas[k];
    const std::string name = "points-" + std::to_string(k + 1);
    if (k == 0) {
      folder.file(0) << print_Points(area.after);
    } else {
      add(name + ".asc", print_Points(area.after));
    }
    if (!area.curves.empty()) add(name + ".pol", print_Curves(area));
  }
  if (answer.areas.empty()) {
    std::vector<T3DVEC> points;
    for (const MetLine& met : answer.lines) {
      if (met.point) points.push_back(*met.point);
    }
    folder.file(0) << print_Points(points);
  }
  return more;
}

}  // namespace

ProjectAnswer project_Points(const ProjectOptions& options, const Part& part) {
  ProjectAnswer answer;
  if (options.lines.empty()) {
    move_Areas(options, part, answer);
  } else {
    meet_Lines(options, part, answer);
  }
  return answer;
}

int run_Project(const ProjectOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const bool lines = !options.lines.empty();
  const auto reads = [&](const Parameter& p) { return !lines && is_ReadByProject(p); };
  note_Unread(options.settings, reads, "the projection", err);
  OutputFolder folder(options.folder, {lines ? "lines.asc" : "points-1.asc", "projection.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  ProjectAnswer answer = project_Points(options, part);
  answer.elapsed_ms = since_Ms(start);
  const std::string more = write_Files(answer, folder);
  hand_Over(
      folder, make_ProjectionJson(part, options, answer), options.json, out,
      [&] { write_ProjectionTable(out, part, options, answer); }, more);
  return kDone;
}

}  // namespace undercut::host
