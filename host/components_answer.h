// The subcommand components: connected pieces of a part, and which of them are worth keeping.
#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "components_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of components.json, told in docs/json.md; raised when a key changes.
inline constexpr int kComponentsSchema = 1;

// More lists than these are not written.
inline constexpr size_t kMostLists = 1000;

struct Piece {
  std::vector<uint32_t> triangles;
  Extent extent;
  std::optional<double> largest;  // of the values
  bool kept = true;               // by the filter
};

struct ComponentsAnswer {
  Roi roi;
  Extent region;
  std::vector<Piece> pieces;  // in the library's order; their numbers count from 1
  Extent kept, dropped;       // over all pieces
  size_t kept_pieces = 0;
  double elapsed_ms = 0.0;
};

// Reads the parameters that are set. Throws InputError and RunError.
ComponentsAnswer split_Part(const ComponentsOptions& options, const Part& part);

Json make_ComponentsJson(const Part& part, const ComponentsOptions& options,
                         const ComponentsAnswer& answer);
void write_ComponentsTable(std::ostream& out, const Part& part, const ComponentsOptions& options,
                           const ComponentsAnswer& answer);
// Each triangle with the number of its piece.
void write_ComponentsPly(std::ostream& out, const Part& part, const ComponentsAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Components(const ComponentsOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
