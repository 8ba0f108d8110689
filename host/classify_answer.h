// The subcommand classify: which triangles no axis of a set reaches.
#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "shadow_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of undercut.json, told in docs/json.md; raised when a key changes.
inline constexpr int kUndercutSchema = 2;

// What a triangle is; the property "undercut" of undercut.ply.
enum class Reach : int8_t {
  kNotAsked = -1,  // in no region of interest, or not in the corridor
  kSeen = 0,
  kOwn = 1,     // undercut, and so it is without the other meshes
  kOthers = 2,  // undercut, but only since the other meshes cast shadow
  // Of a corridor, whose undercut is what is blocked at every pose:
  kSometimes = 3,       // blocked at some pose, and so it is without the other meshes
  kSometimesOthers = 4  // blocked at some pose, but only since the other meshes cast shadow
};

// What is told of a corridor beside the classes of its triangles.
struct CorridorAnswer {
  std::vector<Extent> bands;                   // what lies in the slab of each pose
  std::vector<uint32_t> blocked, from_others;  // at some pose; only since the others cast shadow
  Extent blocked_extent, from_others_extent;
  uint32_t registered = 0, shaded = 0;  // triangles of the library's registered mesh
};

struct ClassifyAnswer {
  Roi roi;
  Extent region;
  std::vector<Part> others;
  std::vector<Extent> seen;  // from each axis
  std::vector<Reach> reach;  // by triangle
  Extent undercut, from_others;
  std::optional<CorridorAnswer> corridor;  // where the options name one
  double elapsed_ms = 0.0;
};

// Both read the parameters that are set.
ClassifyAnswer classify_Part(const ShadowOptions& options, const Part& part,
                             std::ostream* progress);
// For options with a corridor; what does not reach into it is in no region of interest.
ClassifyAnswer classify_Corridor(const ShadowOptions& options, const Part& part,
                                 std::ostream* progress);

Json make_UndercutJson(const Part& part, const ShadowOptions& options,
                       const ClassifyAnswer& answer);
void write_UndercutTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                         const ClassifyAnswer& answer);
void write_UndercutPly(std::ostream& out, const Part& part, const ClassifyAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Classify(const ShadowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
