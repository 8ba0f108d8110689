#include "files/stage_line.h"

namespace undercut {

CStageLine::CStageLine(bool on, const char* label, bool progress) : on_(on), progress_(progress) {
  fmt_Name(label_, "%-50s", label);
  if (!on_) return;
  if (progress_)
    tim_Clk(timer_);
  else
    tim_Beg(timer_, label_);
}

CStageLine::~CStageLine() {
  if (!on_) return;
  if (progress_) {
    pgr_Clr();
    tim_Lbl(timer_, label_);
  } else {
    tim_End(timer_);
  }
}

}  // namespace undercut
