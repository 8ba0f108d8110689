#include "files/progress.h"

#include <ctime>

namespace undercut {

namespace {

constexpr int kLineWidth = 132;
constexpr float kIntLimit = 2147483648.0f;  // 2^31, the first float that no int32_t holds

void print_Time(const CTimer& timer) {
  // By way of 64 bits: a clock that stepped back must not make the conversion undefined.
  const auto ms = static_cast<uint32_t>(static_cast<int64_t>(1000.0 * tim_Sec(timer)));
  std::fprintf(timer.out, "... done ! :: [%2d min : %2d sec : %3d mil] \n",
               static_cast<int>(ms / 60000), static_cast<int>((ms / 1000) % 60),
               static_cast<int>(ms % 1000));
}

void show_Step(int32_t unit, int32_t percent) {
  static constexpr char kBar[] = "-\\|/";
  static constexpr const char* kFace[] = {":-)", ":-|", ":-O", ":-("};
  switch (pgr_Sty) {
    case 2:
      std::fputs("\b\b\b\b\b\b", stderr);
      for (int32_t i = pgr_Cur; i < unit; ++i) std::fputc('=', stderr);
      std::fprintf(stderr, ">%3d %%", percent);
      std::fflush(stderr);
      break;
    case 3:
      std::fprintf(stderr, "\r[%d] [%c] %3d %%", pgr_Cnt, kBar[unit % 4], percent);
      break;
    case 4:
      std::fprintf(stderr, "\r%s %3d %%", kFace[unit % 4], percent);
      break;
    default:
      std::fprintf(stderr, "\r%3d %%", percent);
  }
}

}  // namespace

uint32_t clk_Mil() {
  // To milliseconds before the cut to 32 bits: ticks of a microsecond would wrap after 71 minutes.
  return static_cast<uint32_t>(std::clock() / (CLOCKS_PER_SEC / 1000));
}

void tim_Beg(CTimer& timer, const char* label) {
  tim_Clk(timer);
  std::fprintf(timer.out, "%s", label);
  std::fflush(timer.out);
}

void tim_Clk(CTimer& timer) { timer.start = clk_Mil(); }

void tim_End(const CTimer& timer) { print_Time(timer); }

void tim_Lbl(const CTimer& timer, const char* label) {
  std::fprintf(timer.out, "%s", label);
  print_Time(timer);
}

double tim_Sec(const CTimer& timer) {
  return static_cast<int32_t>(clk_Mil() - timer.start) / 1000.0;
}

int32_t pgr_Sty = 2;
uint8_t pgr_Off = 0;
uint32_t pgr_Max = 0;
uint32_t pgr_Sca = 0;
int32_t pgr_Cur = 0;
int32_t pgr_Aux = 0;
int32_t pgr_Cnt = 0;

void pgr_Set(int32_t style) { pgr_Sty = style; }
void pgr_Dis() { pgr_Off = 1; }
void pgr_Ena() { pgr_Off = 0; }

void pgr_Beg(uint32_t steps, uint32_t units) {
  if (pgr_Off) return;
  pgr_Max = steps;
  pgr_Sca = units;
  pgr_Cur = 0;
  pgr_Aux = 0;
  pgr_Clr();
}

void pgr_Stp(uint32_t step) {
  if (pgr_Off || pgr_Max == 0) return;
  const float frac = static_cast<float>(step) / static_cast<float>(pgr_Max);
  const float units = frac * static_cast<float>(pgr_Sca);
  const float percent = frac * 100.0f;
  if (units >= kIntLimit || percent >= kIntLimit) return;
  const auto unit = static_cast<int32_t>(units);
  if (unit == pgr_Cur) return;
  show_Step(unit, static_cast<int32_t>(percent));
  pgr_Cur = unit;
}

void pgr_Clr() { std::fprintf(stderr, "\r%*s\r", kLineWidth, ""); }

}  // namespace undercut
