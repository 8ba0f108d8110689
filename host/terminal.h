// Whether someone watches: progress is shown on a terminal only.
#pragma once

#include <unistd.h>

namespace undercut::host {

inline bool is_Terminal() { return isatty(STDERR_FILENO) != 0; }

}  // namespace undercut::host
