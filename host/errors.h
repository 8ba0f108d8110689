// What the command can fail with. Each message says what, where, and what to do about it.
#pragma once

#include <stdexcept>

namespace undercut::host {

// Exit statuses of the command.
inline constexpr int kDone = 0;
inline constexpr int kFailures = 1;  // computed, but a region of interest failed
inline constexpr int kUsage = 2;
inline constexpr int kInput = 3;

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct InputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The library refused a call as a whole, or a result could not be written.
struct RunError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace undercut::host
