// The regions of a regions.json that 'undercut decompose' wrote, read back.
#pragma once

#include <filesystem>
#include <vector>

#include "parameters.h"
#include "part.h"

namespace undercut::host {

struct NamedRegion {
  Roi roi;
  T3DVEC axis{};  // unit vector from the part towards the tool
};

struct RegionFile {
  std::vector<NamedRegion> regions;  // in the order of their numbers; there may be none
  T3DVEC up{0, 0, 1};                // the machine's Z in the file's coordinates
  std::vector<Setting> bands;        // what was set of the machine's polar bands
};

// dcm.n_con and the angles dcm.a_th0 to dcm.b_th2.
bool is_Band(const Parameter& parameter);

// Throws InputError, also where the document tells of another part.
RegionFile read_Regions(const std::filesystem::path& path, const Part& part);

}  // namespace undercut::host
