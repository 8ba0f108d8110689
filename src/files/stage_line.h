// A stage's line on the console: its label when it begins and its time when it ends, however it
// ends.
#pragma once

#include "files/progress.h"

namespace undercut {

class CStageLine {
 public:
  // Prints nothing unless `on`. With `progress` the display has the line to itself while the stage
  // runs, and the label is printed at the end.
  CStageLine(bool on, const char* label, bool progress = false);
  ~CStageLine();
  CStageLine(const CStageLine&) = delete;
  CStageLine& operator=(const CStageLine&) = delete;

 private:
  CTimer timer_;
  char label_[kNameSize];  // padded, so that the times stand in one column
  bool on_, progress_;
};

}  // namespace undercut
