#include "region_sight.h"

#include <limits>
#include <numeric>

#include "answer.h"
#include "axis_answer.h"
#include "capture.h"
#include "rim_calls.h"
#include "statistics_calls.h"

namespace undercut::host {
namespace {

// Cells along a side of the grid: enough that the shortest border of a region of one triangle has
// the seven points that a smooth curve needs, and few enough for a thousand regions.
constexpr uint32_t kCells = 200;
// In steps between the points of a contour.
constexpr double kStep = 0.25;
constexpr double kWeight = 0.5;
// In relation to the width of the region. The grid is twice the radius wider on each side; where
// that is less than two cells, the closing takes a cell from the outline.
constexpr double kRadiusShare = 1.5 / kCells;
constexpr double kErrorShare = 1.0 / 400.0;

std::vector<Region*> list_Regions(Answer& answer) {
  std::vector<Region*> regions;
  for (RoiAnswer& roi : answer.rois) {
    for (Region& region : roi.regions) regions.push_back(&region);
  }
  return regions;
}

void set_RimParameters() {
  const uint8_t by_number = 0;
  gri_Row(&kCells);
  gri_Col(&kCells);
  gri_Res(&by_number);
  ucs_Gew(&kWeight);
  ucs_Res(&kStep);
}

RegionRim trace_Region(const Mesh& mesh, const Region& region) {
  // A mesh of its own, so that no call goes through the part's triangles.
  const Mesh own = cut_Out(mesh, region.triangles);
  std::vector<uint32_t> all(own.triangles.size());
  std::iota(all.begin(), all.end(), 0u);
  const double width = find_Width(own, all, region.frame);
  const double error = width * kErrorShare;
  ucs_Err(&error);
  RegionRim rim;
  std::vector<Curve> curves;
  const int32_t status =
      trace_Rim(own, all, {RimMethod::kGridRoi, region.frame, 0, width * kRadiusShare}, curves);
  if (status != 0) {
    rim.failure = explain_Rim(RimMethod::kGridRoi, status).reason;
    rim.failure += " (status " + std::to_string(status) + ")";
    return rim;
  }
  rim.curves = place_Curves(own, all, region.frame, std::move(curves));
  return rim;
}

}  // namespace

void rate_Regions(const Part& part, Answer& answer) {
  const std::vector<Region*> regions = list_Regions(answer);
  Lists lists;
  std::vector<T3DVEC> axes;
  for (const Region* region : regions) {
    lists.push_back(region->triangles);
    axes.push_back(region->axis);
  }
  const Capture capture;
  const std::vector<SeenRegion> seen = rate_Regions(part.mesh, lists, axes);
  for (size_t i = 0; i < regions.size(); ++i) {
    const SeenRegion& s = seen[i];
    const double rim_share = s.rim_share.value_or(std::numeric_limits<double>::quiet_NaN());
    regions[i]->sight = {s.area_seen, s.share.value_or(0.0), rim_share, s.rim, s.rim_seen};
  }
}

void trace_Regions(const Part& part, Answer& answer) {
  set_RimParameters();
  for (Region* region : list_Regions(answer)) region->rim = trace_Region(part.mesh, *region);
}

}  // namespace undercut::host
