// Contenders, their race, and the table of its figures.
#pragma once

#include <omp.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace versus {

// Processor time on one thread, so that other programs on the machine take nothing but cache; the
// clock on the wall on more.
inline double get_Ms() {
  using std::chrono::steady_clock;
  if (omp_get_max_threads() == 1) return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
  return std::chrono::duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

inline double time_Ms(const std::function<void()>& work) {
  const double start = get_Ms();
  work();
  return get_Ms() - start;
}

// Of contenders of one family the table shows the fastest alone, unless all are wanted.
struct TContender {
  std::string family, name;
  bool kernel = false;
  std::function<void()> work = nullptr;
  std::function<uint64_t()> differing = nullptr;  // of the first turn's answers; may be empty
  std::function<void()> before = nullptr;         // off the clock; may be empty
  double ms = std::numeric_limits<double>::infinity();
  uint64_t wrong = 0;
};

// By turns, so that a load from elsewhere meets them all; of each the least time counts.
inline void race(std::vector<TContender>& list, int turns) {
  for (int turn = 0; turn < turns; ++turn)
    for (TContender& contender : list) {
      if (contender.before) contender.before();
      // What asks is asked three times on end, as a search asks: the first time finds the caches as
      // another contender left them.
      for (int run = contender.before ? 2 : 0; run < 3; ++run)
        contender.ms = std::min(contender.ms, time_Ms(contender.work));
      if (turn == 0 && contender.differing) contender.wrong = contender.differing();
    }
}

inline double find_Best(const std::vector<TContender>& list) {
  double best = std::numeric_limits<double>::infinity();
  for (const TContender& contender : list)
    if (contender.kernel) best = std::min(best, contender.ms);
  return best;
}

class CTable {
 public:
  explicit CTable(bool all) : all_(all) {}

  static void print_Head() {
    std::puts(
        "| body | triangles | threads | rays | contender | ms | ns each | x prescribed "
        "| x kernel | differing |\n|---|---|---|---|---|---|---|---|---|---|");
  }

  // `place` is the first columns; the first contender is the prescribed tree. `each` is what ns
  // are counted for, `rays` what differing ones are a share of; 0 for none.
  void print(const std::string& place, const std::vector<TContender>& list, size_t each,
             size_t rays) const {
    const double best = find_Best(list);
    for (const TContender& row : list) {
      if (!is_Shown(row, list)) continue;
      std::printf("| %s | %s%s | %.2f | %.1f | %.2f | %.2f | ", place.c_str(), row.name.c_str(),
                  row.kernel && row.ms == best ? " (best)" : "", row.ms,
                  1e6 * row.ms / static_cast<double>(each), list[0].ms / row.ms, best / row.ms);
      if (rays == 0 || !row.differing)
        std::printf("|\n");
      else
        std::printf("%llu, %.1e |\n", static_cast<unsigned long long>(row.wrong),
                    static_cast<double>(row.wrong) / static_cast<double>(rays));
    }
    std::fflush(stdout);
  }

 private:
  bool is_Shown(const TContender& row, const std::vector<TContender>& list) const {
    return all_ || std::none_of(list.begin(), list.end(), [&](const TContender& other) {
             return other.family == row.family && other.ms < row.ms;
           });
  }

  bool all_;
};

}  // namespace versus
