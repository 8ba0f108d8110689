// How the subcommands that compute something of a part end.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

#include "errors.h"
#include "json_parts.h"
#include "output.h"

namespace undercut::host {

// Milliseconds that have passed.
double since_Ms(std::chrono::steady_clock::time_point start);

// Writes the document to the second file of the folder, the others being written already, and gives
// all of them their names. Then prints the document, or the table and where the files are: the
// first two, and what `more` tells of others.
void hand_Over(OutputFolder& folder, const Json& document, bool print_document, std::ostream& out,
               const std::function<void()>& write_Table, const std::string& more = "");

}  // namespace undercut::host
