// The console side: times of stages on standard output, progress on standard error.
//
// Nothing here has an effect on any result. The state has no lock: only the thread that runs a
// computation calls these.
#pragma once

#include <cstdint>
#include <cstdio>

#include "files/paths.h"

namespace undercut {

// The clock of the stages: processor time in milliseconds, modulo 2^32.
uint32_t clk_Mil();

struct CTimer {
  uint32_t start = 0;  // clk_Mil() at the start of the stage
  FILE* out = stdout;
};

// Starts a stage and prints its label, which is written out at once.
void tim_Beg(CTimer& timer, const char* label);
// Starts a stage in silence.
void tim_Clk(CTimer& timer);
// Prints that the stage is done, and its time in minutes, seconds and milliseconds. Minutes don't
// wrap at 60.
void tim_End(const CTimer& timer);
// The same with the label in front.
void tim_Lbl(const CTimer& timer, const char* label);
// Seconds since the start, right for stages of up to 24 days.
double tim_Sec(const CTimer& timer);

// State of the progress display.
extern int32_t pgr_Sty;   // style, see pgr_Stp
extern uint8_t pgr_Off;   // 1: pgr_Beg and pgr_Stp do nothing
extern uint32_t pgr_Max;  // steps of the current run
extern uint32_t pgr_Sca;  // display units of the current run
extern int32_t pgr_Cur;   // display units shown so far
extern int32_t pgr_Aux;   // reset with pgr_Cur, read by nothing
extern int32_t pgr_Cnt;   // shown by style 3, written by nothing

void pgr_Set(int32_t style);
void pgr_Dis();
void pgr_Ena();
// Starts a run and erases the line.
void pgr_Beg(uint32_t steps, uint32_t units);
// Shows that `step` of the run's steps are done, if the number of display units has changed. More
// steps than the run has show more than 100 percent. Does nothing in a run of 0 steps, or where the
// units or the percent would leave 32 bits: there is no number to show.
//   style 1 and any other: percent      style 3: a count, a turning bar, percent
//   style 2: a growing bar, percent     style 4: a face, percent
void pgr_Stp(uint32_t step);
// Erases the line, also while the display is off.
void pgr_Clr();

// Makes the folders of a path, see pth_Mkd.
inline void mak_Pth(const char* path) { pth_Mkd(path); }

}  // namespace undercut
