// The times that the library prints for its stages, added up over all calls. Milliseconds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace undercut::host {

struct StageTime {
  std::string stage;  // the label, without the blanks that pad it
  uint64_t ms = 0;
  uint32_t runs = 0;
};

// Reads lines "LABEL... done ! :: [ 0 min :  0 sec :  12 mil]"; adds each to the stage of its
// label, new labels behind the old ones. Other lines are passed over.
void add_StageTimes(std::string_view printed, std::vector<StageTime>& times);

}  // namespace undercut::host
