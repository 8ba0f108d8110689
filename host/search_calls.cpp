#include "search_calls.h"

#include <limits>

#include "capture.h"
#include "errors.h"
#include "library_request.h"
#include "library_result.h"
#include "text.h"

namespace undercut::host {
namespace {

using Export = int32_t (*)(const TUcReq*, TUcRes*);

// What the library means by a status that hangs on the parameters; null for others. The window of
// a machine of four axes is the range of its tilts.
const char* explain_Tilts(int32_t status) {
  switch (status) {
    case -10:
      return "gcu.f_th1 must be above gcu.f_th0.";
    case -16:
      return "gcu.f_win must be above 0.";
    case -17:
      return "the scan needs 5 intervals or more: set gcu.n_dim to 5 or more or, with gcu.n_flg=1, "
             "gcu.f_win below a fifth of the window.";
    default:
      return nullptr;
  }
}

const char* explain_Window(int32_t status) {
  if (status != -10 && status != -11) return nullptr;
  return "the window nxn.box is empty: its third and fourth number must be above the first and "
         "second.";
}

// Runs a search and reads what it printed; `pick` takes the frame from the result.
template <typename Pick>
FoundAxis run_Search(Export call, const char* name, const TUcReq& request,
                     const char* (*explain)(int32_t), const Pick& pick) {
  const uint8_t on = 1;
  ucs_Sta(&on);
  LibraryResult result;
  Capture capture;
  const int32_t status = call(&request, &result.record);
  const std::string printed = capture.finish();
  if (const char* why = explain != nullptr ? explain(status) : nullptr) {
    throw UsageError(std::string("--set: ") + why + " See 'undercut parameters'.");
  }
  check_Status(status, "search for an axis");
  FoundAxis found;
  found.search = name;
  found.frame = pick(result.record);
  const bool rated = read_Search(printed, name, found) &&
                     std::abs(found.rating) < std::numeric_limits<double>::max();
  if (!rated || !is_Finite(found.frame.z) || !(len_Vec(found.frame.z) > 0.0)) {
    throw RunError("no direction that was searched has a rating. Widen the window.");
  }
  return found;
}

// A request for one region. The region stays the caller's, and the library does not write it.
struct RegionRequest {
  TLstU32 region;
  TUcReq request;

  RegionRequest(const Mesh& mesh, const std::vector<uint32_t>& triangles)
      : region(view_List(triangles)), request(make_Request(mesh)) {
    request.cav = {&region, 1, 1};
  }
  RegionRequest(const RegionRequest&) = delete;
  RegionRequest& operator=(const RegionRequest&) = delete;
};

T3DFRM pick_First(const TUcRes& result) { return result.n_lst > 0 ? result.lst[0] : T3DFRM{}; }

}  // namespace

bool read_Search(std::string_view printed, std::string_view name, FoundAxis& found) {
  const std::string head = std::string(name) + " :: ratings ";
  bool any = false;
  for (std::string_view line : split_Text(printed, '\n')) {
    const size_t at = line.find(head);
    if (at == line.npos) continue;
    line.remove_prefix(at + head.size());
    const std::vector<std::string_view> pieces = split_Text(line, ',');
    constexpr std::string_view kWords[] = {"", "rating ", "theta ", "phi "};
    double values[4] = {};
    bool good = pieces.size() == 4;
    for (size_t k = 0; good && k < 4; ++k) {
      const std::string_view piece = trim_Text(pieces[k]);
      good = piece.starts_with(kWords[k]);
      const std::optional<double> value =
          good ? parse_Double(piece.substr(kWords[k].size())) : std::nullopt;
      good = value.has_value();
      if (good) values[k] = *value;
    }
    if (!good) continue;
    found.ratings = static_cast<uint32_t>(values[0]);
    found.rating = values[1];
    found.theta = values[2];
    found.phi = values[3];
    any = true;
  }
  return any;
}

FoundAxis search_ThreeAxis(const Mesh& mesh, const std::optional<std::array<double, 2>>& start) {
  TUcReq request = make_Request(mesh);
  const auto pick = [](const TUcRes& result) { return result.frm_a; };
  if (!start) return run_Search(get_3ax, "get_3ax", request, nullptr, pick);
  request.f_a = (*start)[0];
  request.f_b = (*start)[1];
  return run_Search(get_Amo, "get_Amo", request, nullptr, pick);
}

FoundAxis search_FourAxis(const Mesh& mesh, const std::vector<uint32_t>& region) {
  const RegionRequest asked(mesh, region);
  return run_Search(get_4ay, "get_4ay", asked.request, explain_Tilts, pick_First);
}

FoundAxis search_FiveAxis(const Mesh& mesh) {
  return run_Search(get_5ax, "get_5ax", make_Request(mesh), nullptr,
                    [](const TUcRes& result) { return result.frm_b; });
}

FoundAxis search_Window(const Mesh& mesh, const std::vector<uint32_t>& region) {
  const RegionRequest asked(mesh, region);
  return run_Search(get_5ay, "get_5ay", asked.request, explain_Window, pick_First);
}

}  // namespace undercut::host
