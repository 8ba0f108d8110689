// Every file that a decomposition writes for inspection, told in one place.
//
// Nothing is written unless l_log is set and the stage's word stands in l_wrk; words are found by
// substring, so they may be joined in any way. Files change no result, and one that cannot be
// written stops nothing, but for the end files of axes, frames and latitudes, whose failure to open
// is told. A folder whose text does not fit its buffer has no files, and that is no failure.
#pragma once

#include <string>
#include <vector>

#include "decomposition/map.h"
#include "decomposition/seeds.h"
#include "interface/parameters.h"
#include "mesh/trees.h"

namespace undercut {

// A stage with a folder of its own; the numbers are those of the folders.
enum class StageWord { kIni, kFwd, kDel, kRnk, kBwd, kClo, kCom, kFil, kSmo };

enum class EndFiles { kDone, kFailed, kNoFrame };

class CStageFiles {
 public:
  // `dir` is the base directory. All arguments outlive this.
  CStageFiles(const CDcmPar& par, std::string dir, const CMap& map, const C3DTriAABBTree& tree);

  // The first and the second number of every file name.
  void set_Roi(uint32_t roi) { roi_ = static_cast<int>(roi); }
  void set_Pass(uint32_t pass) { pass_ = static_cast<int>(pass); }

  // The scores of the seeds as one value for each triangle of the mesh, 0 outside the list.
  void write_Seeds(const TLst<uint32_t>& roi, const std::vector<TUcSeed>& seeds) const;
  // The map at the end of a stage.
  void write_Map(StageWord stage) const;
  // Whether growth writes files on its way.
  bool writes_Fwd() const { return fwd_; }
  // After an accepted triangle, whenever the step is a multiple of l_mod. `loser` may be null.
  void step_Fwd(uint32_t step, const CUcA& region, uint32_t triangle) const {
    if (fwd_ && step % par_.l_mod == 0) write_Fwd(step, region, triangle);
  }
  void step_Bwd(uint32_t step, const CUcA* loser, const CUcA& gainer, uint32_t triangle) const {
    if (bwd_ && step % par_.l_mod == 0) write_Bwd(step, loser, gainer, triangle);
  }
  // The list of a region of interest round its repair: `word` is "prv" or "nxt".
  void write_List(const TLst<uint32_t>& roi, const char* word) const;
  // Axes, frames, latitudes, regions and free triangles of a finished region of interest.
  EndFiles write_End() const;

 private:
  bool logs(const char* word) const;
  bool make_Folder(const char* folder, const char* sub, std::string& path) const;
  void write_Fwd(uint32_t step, const CUcA& region, uint32_t triangle) const;
  void write_Bwd(uint32_t step, const CUcA* loser, const CUcA& gainer, uint32_t triangle) const;
  void write_Step(const char* folder, const char* texts, const std::string& name) const;
  void write_Side(const char* folder, const std::string& name, const CUcA& region) const;
  void write_Mesh(const std::string& stem) const;
  bool write_Axes(const std::string& folder, const std::vector<TUcRef>& regions) const;
  bool write_Frames(const std::string& folder, const std::vector<TUcRef>& regions) const;
  bool write_Latitudes(const std::string& folder, const std::vector<TUcRef>& regions) const;
  void write_Free(const std::string& stem) const;

  const CDcmPar& par_;
  const std::string dir_;
  const CMap& map_;
  const C3DTriAABBTree& tree_;
  int roi_ = 0, pass_ = 0;
  bool fwd_, bwd_;
};

// Files that hang on the stem of a step file, chosen by l_geo: centres, frames, normals, footprints
// and ellipses of the given regions. With `single` the frames are of one region and l_lcs chooses
// their form.
void write_Geometry(const CMap& map, const CDcmPar& par, const std::string& stem,
                    const std::vector<const CUcA*>& regions, bool single);

// The triangles of a region in the order of its list.
std::vector<uint32_t> lst_Tri(const CMap& map, const CUcA& region);

}  // namespace undercut
