// What the command answers: the library's regions in terms of the file's triangles and coordinates.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "find_rois.h"
#include "ladder.h"
#include "part.h"
#include "prepare.h"
#include "region_sight.h"
#include "stage_times.h"

namespace undercut::host {

struct Region {
  uint32_t number = 0;              // from 1, over all regions of interest
  std::vector<uint32_t> triangles;  // of the file, ascending
  double area = 0.0;                // mm2
  T3DVEC axis{};                    // unit vector from the part towards the tool
  T3DVEC centre{};
  T3DFRM frame{};
  double aperture = 0.0;  // degrees, with which the region was found
  RegionSight sight;
  RegionRim rim;
};

struct RoiAnswer {
  Roi roi;
  double area = 0.0;            // mm2
  double covered = 0.0;         // area in regions, mm2
  std::vector<Region> regions;  // in the order in which they were found
  std::vector<uint32_t> free;   // triangles in no region, ascending
  std::vector<CallNote> notes;
  int32_t first = 0, second = 0;  // codes of the first call that reported any
  size_t set_apart = 0;           // triangles kept from being neighbours
  size_t given_up = 0;            // triangles of patches that failed on every rung
  uint32_t halvings = 0;          // most halvings of a patch
  double narrowest = 0.0;         // narrowest aperture tried, degrees

  bool failed() const { return given_up > 0; }
};

struct Answer {
  std::optional<Search> search;  // none where the user named the regions of interest
  std::vector<RoiAnswer> rois;
  std::vector<int32_t> region_of;  // by triangle: number, 0 free, -1 in no region of interest
  std::vector<StageTime> times;
  uint32_t regions = 0;
  double area = 0.0, covered = 0.0;  // mm2, over all regions of interest
  uint32_t calls = 0;
  int32_t status = 0;  // the worst that the library returned
  double elapsed_ms = 0.0;

  bool failed() const;
};

// Makes the patches that the ladder starts from: each region of interest without the triangles that
// were set apart.
std::vector<Patch> make_Patches(const Part& part, const Prepared& prepared,
                                const std::vector<Roi>& rois);

// Where a triangle of the file was refined, it belongs to the region, or to the free triangles,
// that has the largest share of its area; of equal shares to the one found first. A region that
// is left without triangles so is dropped. Triangles that were set apart join a region where all
// triangles around their group lie in it.
Answer assemble_Answer(const Part& part, const Prepared& prepared, const std::vector<Roi>& rois,
                       const Climb& climb);

}  // namespace undercut::host
