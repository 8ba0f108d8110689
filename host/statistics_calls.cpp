#include "statistics_calls.h"

#include <limits>

#include "library_request.h"
#include "library_result.h"
#include "surface.h"

namespace undercut::host {
namespace {

// What the library says where there is no share or no value.
constexpr double kAbsent = std::numeric_limits<double>::max();

std::optional<double> skip_Absent(double value) {
  if (value == kAbsent || value == -kAbsent) return std::nullopt;
  return value;
}

}  // namespace

std::vector<SeenRegion> rate_Regions(const Mesh& mesh, const Lists& lists,
                                     const std::vector<T3DVEC>& axes) {
  std::vector<SeenRegion> rated(lists.size());
  if (lists.empty()) return rated;
  // The library is told the direction in which the tool moves.
  AxesRequest asked(mesh, turn_Round(axes), {});
  std::vector<TLstU32> views = view_Lists(lists);
  set_Regions(asked.request, views);
  LibraryResult surface, rim;
  check_Status(get_Sta(&asked.request, &surface.record), "rate the regions");
  check_Status(get_Stb(&asked.request, &rim.record), "rate the rims of the regions");
  for (size_t k = 0; k < lists.size(); ++k) {
    const TUcStat& s = surface.record.sta[k];
    const TUcStat& r = rim.record.sta[k];
    rated[k] = {s.seen != 0, skip_Absent(s.share), s.area_seen, s.area,
                r.seen != 0, skip_Absent(r.share), r.rim_seen,  r.rim};
  }
  return rated;
}

std::vector<std::optional<double>> find_Largest(const Mesh& mesh, const Lists& lists,
                                                const std::vector<double>& values) {
  std::vector<std::optional<double>> largest;
  if (lists.empty()) return largest;
  TUcReq request = make_Request(mesh);
  std::vector<TLstU32> views = view_Lists(lists);
  set_Regions(request, views);
  request.add = values.data();
  LibraryResult result;
  check_Status(get_Stc(&request, &result.record), "find the largest values");
  for (size_t k = 0; k < lists.size(); ++k) {
    largest.push_back(skip_Absent(result.record.sta[k].value));
  }
  return largest;
}

std::vector<T3DVEC> hold_Axes(const std::vector<T3DVEC>& axes, const Band& band) {
  std::vector<T3DVEC> held;
  if (axes.empty()) return held;
  // One band a call: of several, the library starts each from what the one before left.
  constexpr uint32_t kOne = 1;
  dcm_Con(&kOne);
  dcm_aT0(&band.from);
  dcm_bT0(&band.to);
  const AxesRequest asked({}, turn_Round(axes), {});
  LibraryResult result;
  check_Status(err_Nml(&asked.request, &result.record), "find the axes that the machine allows");
  for (uint32_t k = 0; k < result.record.nml.count; ++k) {
    const TLstRay nearest = result.record.nml.data[k];
    held.push_back(-1.0 * nearest.data[0].dir);
  }
  return held;
}

}  // namespace undercut::host
