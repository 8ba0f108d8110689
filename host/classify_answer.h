// The subcommand classify: which triangles no axis of a set reaches.
#pragma once

#include <iosfwd>
#include <vector>

#include "shadow_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of undercut.json, told in docs/json.md; raised when a key changes.
inline constexpr int kUndercutSchema = 1;

// What a triangle is; the property "undercut" of undercut.ply.
enum class Reach : int8_t {
  kNotAsked = -1,  // in no region of interest
  kSeen = 0,
  kOwn = 1,    // undercut, and so it is without the other meshes
  kOthers = 2  // undercut, but only since the other meshes cast shadow
};

struct ClassifyAnswer {
  Roi roi;
  Extent region;
  std::vector<Part> others;
  std::vector<Extent> seen;  // from each axis
  std::vector<Reach> reach;  // by triangle
  Extent undercut, from_others;
  double elapsed_ms = 0.0;
};

// Reads the parameters that are set.
ClassifyAnswer classify_Part(const ShadowOptions& options, const Part& part,
                             std::ostream* progress);

Json make_UndercutJson(const Part& part, const ShadowOptions& options,
                       const ClassifyAnswer& answer);
void write_UndercutTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                         const ClassifyAnswer& answer);
void write_UndercutPly(std::ostream& out, const Part& part, const ClassifyAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Classify(const ShadowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
