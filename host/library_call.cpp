#include "library_call.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "capture.h"
#include "errors.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {
namespace {

namespace fs = std::filesystem;

// Longest name that the library puts behind its base directory, with room to spare: folders of a
// stage file are built in a buffer of 256 bytes.
constexpr size_t kLongestBase = 200;

const char* explain_Status(int32_t status) {
  switch (status) {
    case 4:
      return "it takes the mesh for bad";
    case 5:
      return "there is no region of interest";
    case 6:
      return "no memory at the start";
    case 7:
      return "no memory for the tree";
    case 8:
      return "more than three polar bands";
    case 9:
      return "it refuses the polar bands";
    case 10:
      return "no memory for the adjacency";
    case -112:
      return "a frame file could not be opened; look at the folder of the stage files";
    case -143:
      return "a triangle could not be locked";
    default:
      return "an inner failure";
  }
}

template <typename Raw>
void set_Value(int32_t (*setter)(const Raw*), Raw value) {
  setter(&value);
}

void set_StageFiles() {
  set_Value<uint8_t>(dcm_log, 1);
  dcm_wrk("cri ini fwd del rnk bwd clo com fil smo end flt");
  dcm_uda("ply");
  dcm_end("axi trf win uda h2o");
}

// Works in a folder for as long as the object lives: one kind of stage file is written beside the
// process, wherever the others go.
class WorkIn {
 public:
  explicit WorkIn(const fs::path& folder) {
    if (folder.empty()) return;
    back_ = fs::current_path();
    fs::create_directories(folder);
    fs::current_path(folder);
  }
  WorkIn(const WorkIn&) = delete;
  WorkIn& operator=(const WorkIn&) = delete;
  ~WorkIn() {
    std::error_code error;
    if (back_) fs::current_path(*back_, error);
  }

 private:
  std::optional<fs::path> back_;
};

std::vector<FoundRegion> copy_Slot(const TUcRes& result, uint32_t slot) {
  std::vector<FoundRegion> regions;
  if (slot >= result.uca_t.count || slot >= result.uca_a.count || slot >= result.uca_f.count) {
    return regions;
  }
  const TLstLstU32 lists = result.uca_t.data[slot];
  const TLstRay axes = result.uca_a.data[slot];
  const TLstFrm frames = result.uca_f.data[slot];
  for (uint32_t k = 0; k < lists.count && k < axes.count && k < frames.count; ++k) {
    const TLstU32 list = lists.data[k];
    regions.push_back({copy_List(list), axes.data[k], frames.data[k]});
  }
  return regions;
}

bool is_Doubtful(const Outcome& outcome) {
  return outcome.first != 0 && outcome.second == 0 && outcome.rest.empty();
}

struct BandKeys {
  const char *low, *high;
  int32_t (*set_Low)(const double*);
  int32_t (*set_High)(const double*);
};
constexpr BandKeys kBands[] = {{"dcm.a_th0", "dcm.b_th0", dcm_aT0, dcm_bT0},
                               {"dcm.a_th1", "dcm.b_th1", dcm_aT1, dcm_bT1},
                               {"dcm.a_th2", "dcm.b_th2", dcm_aT2, dcm_bT2}};

}  // namespace

void set_Parameters(const CallRules& rules) {
  if (!rules.stage_folder.empty()) set_StageFiles();
  for (const Setting& setting : rules.settings) setting.parameter->store(setting.value);
  // The times of the stages come from what the library prints; the command shows them in its way.
  set_Value<uint8_t>(dcm_rti, 1);
  set_Value<uint8_t>(dcm_prg, rules.progress ? 1 : 0);
}

double find_Aperture(const std::vector<Setting>& settings) {
  return find_Value<double>(settings, "dcm.T_win");
}

LibraryCall::LibraryCall(Mesh& mesh, const CallRules& rules) : mesh_(mesh), rules_(rules) {
  if (!rules_.stage_folder.empty()) {
    rules_.stage_folder = fs::absolute(rules_.stage_folder).lexically_normal();
    if (rules_.stage_folder.string().size() > kLongestBase) {
      throw UsageError(
          "--stage-files: the path of the folder is longer than the library can take (" +
          std::to_string(kLongestBase) + " characters): take a shorter one with -o.");
    }
  }
  set_Parameters(rules_);
}

void LibraryCall::call_Library(TUcReq& request, TUcRes& result) {
  fs::path folder;
  ++calls_;
  if (!rules_.stage_folder.empty()) {
    char name[32];
    std::snprintf(name, sizeof name, "call-%03u", calls_);
    folder = rules_.stage_folder / name;
    std::snprintf(request.dir, sizeof request.dir, "%s", folder.c_str());
  }
  const WorkIn work(folder);
  Capture capture;
  const int32_t status = get_Dcm(&request, &result);
  add_StageTimes(capture.finish(), times_);
  if (status != 0 && status != 1) {
    throw RunError("the library refused the call with status " + std::to_string(status) + ": " +
                   explain_Status(status) + ".");
  }
  status_ = std::max(status_, status);
}

bool LibraryCall::run_Together(const std::vector<Patch>& patches, std::vector<Outcome>& outcomes) {
  // The library shortens the lists in place, so it gets copies.
  std::vector<std::vector<uint32_t>> triangles;
  std::vector<TLstU32> lists;
  triangles.reserve(patches.size());
  for (const Patch& patch : patches) {
    triangles.push_back(patch.triangles);
    const auto count = static_cast<uint32_t>(patch.triangles.size());
    lists.push_back({triangles.back().data(), count, count});
  }
  TUcReq request = make_Request(mesh_);
  const auto count = static_cast<uint32_t>(lists.size());
  request.rois = {lists.data(), count, count};
  LibraryResult result;
  call_Library(request, result.record);

  // A second attempt on an empty list is skipped and uses no slot; one that took its whole list
  // leaves an empty list too, but has one.
  outcomes.assign(count, {});
  uint32_t doubtful = 0;
  for (uint32_t i = 0; i < count && i < result.record.sts.count; ++i) {
    const TUcSts status = result.record.sts.data[i];
    const TLstU32 rest = lists[i];
    outcomes[i] = {status.first, status.second, {}, copy_List(rest)};
    doubtful += is_Doubtful(outcomes[i]) ? 1 : 0;
  }
  const uint32_t slots = result.record.uca_t.count;
  const bool skipped = slots + doubtful == count;
  if (slots != count && !skipped) return false;
  uint32_t slot = 0;
  for (Outcome& outcome : outcomes) {
    if (slots != count && is_Doubtful(outcome)) continue;
    outcome.regions = copy_Slot(result.record, slot++);
  }
  return true;
}

// No bands at all are one from pole to pole.
void LibraryCall::set_Bands(Tilt tilt) const {
  const auto bands = static_cast<uint32_t>(find_Value<int64_t>(rules_.settings, "dcm.n_con"));
  const bool whole = bands == 0 && tilt != Tilt::kBand;
  set_Value<uint32_t>(dcm_Con, whole ? 1 : bands);
  for (const BandKeys& keys : kBands) {
    double low = find_Value<double>(rules_.settings, keys.low);
    double high = find_Value<double>(rules_.settings, keys.high);
    if (whole) {
      low = 0.0;
      high = 180.0;
    }
    if (tilt == Tilt::kLow) high = low;
    if (tilt == Tilt::kHigh) low = high;
    if (tilt == Tilt::kMiddle) low = high = 0.5 * (low + high);
    keys.set_Low(&low);
    keys.set_High(&high);
  }
}

void LibraryCall::set_Smallest(bool keep_small) const {
  const auto find = [&](const char* name) {
    return keep_small ? 0.0 : find_Value<double>(rules_.settings, name);
  };
  set_Value<double>(dcm_srf, find("dcm.F_srf"));
  set_Value<double>(dcm_quo, find("dcm.F_quo"));
}

std::vector<Outcome> LibraryCall::run(const std::vector<Patch>& patches, const Rung& rung) {
  dcm_win(&rung.aperture);
  set_Bands(rung.tilt);
  set_Smallest(rung.keep_small);
  std::vector<Outcome> outcomes;
  if (run_Together(patches, outcomes)) return outcomes;
  // A list alone has one slot or none.
  std::vector<Outcome> all;
  for (const Patch& patch : patches) {
    run_Together({patch}, outcomes);
    all.push_back(std::move(outcomes[0]));
  }
  return all;
}

}  // namespace undercut::host
