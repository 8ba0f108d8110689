// Calls get_Dcm and turns its records into plain values.
#pragma once

#include <filesystem>
#include <vector>

#include "ladder.h"
#include "parameters.h"
#include "stage_times.h"

namespace undercut::host {

struct CallRules {
  std::vector<Setting> settings;
  // Every call writes its stage files under a folder of its own in here; empty for none.
  std::filesystem::path stage_folder;
  bool progress = false;  // show the library's progress on standard error
};

// Hands the user's settings to the library, and those that the command needs itself.
void set_Parameters(const CallRules& rules);

// The value of the aperture T_win that holds for the first attempt.
double find_Aperture(const std::vector<Setting>& settings);

class LibraryCall {
 public:
  // The mesh must outlive the object. Sets the library's parameters.
  LibraryCall(Mesh& mesh, const CallRules& rules);

  // One call of get_Dcm with a region of interest for each patch; one outcome for each patch, in
  // their order. Throws RunError where the library refuses the call as a whole.
  std::vector<Outcome> run(const std::vector<Patch>& patches, const Rung& rung);

  const std::vector<StageTime>& times() const { return times_; }
  // The worst status that get_Dcm returned so far: 0, or 1.
  int32_t status() const { return status_; }

 private:
  // One call; false where it can't be told whose the slots of the result are.
  bool run_Together(const std::vector<Patch>& patches, std::vector<Outcome>& outcomes);
  void set_Bands(Tilt tilt) const;
  void set_Smallest(bool keep_small) const;
  void call_Library(TUcReq& request, TUcRes& result);

  Mesh& mesh_;
  CallRules rules_;
  std::vector<StageTime> times_;
  int32_t status_ = 0;
  uint32_t calls_ = 0;
};

}  // namespace undercut::host
