#include "stage_times.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <iterator>
#include <optional>

#include "text.h"

namespace undercut::host {
namespace {

constexpr std::string_view kDoneMark = "... done ! :: [";

std::optional<StageTime> parse_Line(std::string_view line) {
  const size_t mark = line.find(kDoneMark);
  if (mark == line.npos) return std::nullopt;
  // A progress display may have left a carriage return in front of the label.
  std::string_view label = line.substr(0, mark);
  if (const size_t cr = label.rfind('\r'); cr != label.npos) label.remove_prefix(cr + 1);
  const std::string clock(line.substr(mark + kDoneMark.size()));
  uint64_t min = 0, sec = 0, mil = 0;
  const char* form = "%" SCNu64 " min : %" SCNu64 " sec : %" SCNu64 " mil";
  if (std::sscanf(clock.c_str(), form, &min, &sec, &mil) != 3) return std::nullopt;
  return StageTime{std::string(trim_Text(label)), 60000 * min + 1000 * sec + mil, 1};
}

}  // namespace

void add_StageTimes(std::string_view printed, std::vector<StageTime>& times) {
  for (const std::string_view line : split_Text(printed, '\n')) {
    const std::optional<StageTime> time = parse_Line(line);
    if (!time) continue;
    auto known = std::find_if(times.begin(), times.end(),
                              [&](const StageTime& t) { return t.stage == time->stage; });
    if (known == times.end()) {
      times.push_back(*time);
    } else {
      known->ms += time->ms;
      known->runs += 1;
    }
  }
}

}  // namespace undercut::host
