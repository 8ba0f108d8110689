// The command as a function, so that tests can run it in their own process.
#pragma once

#include <iosfwd>

namespace undercut::host {

// Runs the command; answers go to `out`, messages and progress to `err`. Returns the exit status.
// While the library computes, file descriptor 1 is held back.
int run_Command(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
