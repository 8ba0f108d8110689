// The subcommand decompose: from a part to its undercut regions.
#pragma once

#include <iosfwd>

#include "options.h"

namespace undercut::host {

// Returns the exit status. Throws the errors of errors.h.
int run_Decompose(const DecomposeOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
