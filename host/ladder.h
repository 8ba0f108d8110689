// Tries a patch of surface again and again, in easier and easier forms, until the library takes it.
//
// A region of interest fails as a whole when a single measure leaves its range; wide curved regions
// are the usual cause. A narrower aperture makes regions less curved; halves of the patch keep the
// rest out of a failure's way. The ladder does not call the library itself: it is handed a
// function.
#pragma once

#include <undercut/exports.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// Triangles that are offered together, all of one region of interest.
struct Patch {
  uint32_t roi = 0;
  uint32_t halvings = 0;  // from the region of interest to this patch
  std::vector<uint32_t> triangles;
};

struct FoundRegion {
  std::vector<uint32_t> triangles;
  T3DRAY axis{};  // centre, and direction from the tool to the part, as the library tells them
  T3DFRM frame{};
};

// What became of a patch.
struct Outcome {
  int32_t first = 0, second = 0;     // the library's codes of its two attempts
  std::vector<FoundRegion> regions;  // of the attempt that went through
  // The library's list as it was left. A second attempt runs on what earlier passes of the first
  // left over, and the regions of those passes are lost.
  std::vector<uint32_t> rest;
};

// The axes that a rung allows: all of each polar band, or one angle of it alone. The library judges
// a seed at the most tilted axis of a band; the floor of a pocket is seen along others only.
enum class Tilt { kBand, kLow, kHigh, kMiddle };

// One way to offer a patch.
struct Rung {
  double aperture = 0.0;  // T_win, degrees
  uint32_t position = 0;  // which of the general positions the mesh is brought into
  bool again = false;     // offer again, in pieces, what a failed attempt let go of
  Tilt tilt = Tilt::kBand;
  bool keep_small = false;  // regions are not deleted for being small
};

// Offers all patches on one rung, in one call of the library; one outcome for each.
using Attempt = std::function<std::vector<Outcome>(const std::vector<Patch>&, const Rung&)>;

struct LadderRules {
  std::vector<Rung> whole;  // tried first; a patch that fails goes on as it is
  std::vector<Rung> rungs;  // then these, and again for each half
  std::vector<Rung> rest;   // what stayed free is offered on each of these at the end
  // At the very end those regions of interest are offered again in which no region was found.
  std::vector<Rung> bare;
  uint32_t most_halvings = 0;
};

struct Settled {
  Patch patch;
  double aperture = 0.0;
  std::vector<FoundRegion> regions;
};

// What one call did for one region of interest.
struct CallNote {
  uint32_t call = 0, roi = 0;
  double aperture = 0.0;
  uint32_t position = 0;
  Tilt tilt = Tilt::kBand;
  bool keep_small = false;
  uint32_t patches = 0, failed = 0;
  size_t triangles = 0;
  int32_t first = 0, second = 0;  // codes of the first patch that has any
};

struct Climb {
  std::vector<Settled> settled;
  std::vector<Patch> given_up;  // failed on every rung
  std::vector<CallNote> notes;  // by call, then by region of interest
  uint32_t calls = 0;
};

// Whether growth meets a frame that lags too far behind is a matter of chance, so that the same
// patch in another position often goes through whole: that is tried first, at the user's aperture
// and a few narrower ones, fewer times for larger meshes. Then come the user's aperture and the
// narrower ones of 40, 30, 25, 20, 15, 10 degrees, in pieces. With `bare` set the last rung keeps
// small regions: a patch that is all that there is to divide may be narrower than the tool paths by
// which the library tells what is small.
LadderRules make_Ladder(double aperture, size_t triangles, bool bare = false);

// One call, and what its second attempt found is kept.
LadderRules make_Plain(double aperture);

// The halves of a patch: cut at the median of the centres along their longest extent. Equal
// coordinates go by triangle number, so the halves are the same on every machine.
std::vector<Patch> halve_Patch(const Patch& patch, const std::vector<T3DVEC>& centres);

// All patches start on the first rung together. Those that fail go down rung by rung; those that
// fail on the last are halved and start anew, behind the rungs for whole patches.
//
// On those a patch goes through whole or not at all. On the others it comes to pieces: what the
// library's second attempt dealt with is settled, and only the rest goes on. Where some passes of
// an attempt went well, the triangles that they had dealt with are offered again on the same rung.
// At the end the triangles that no region took are offered once more, on the rungs for the rest:
// what fails there stays free.
Climb climb_Ladder(std::vector<Patch> patches, const LadderRules& rules,
                   const std::vector<T3DVEC>& centres, const Attempt& attempt);

}  // namespace undercut::host
