#include "answer.h"

#include <algorithm>
#include <utility>

#include "apart.h"

namespace undercut::host {
namespace {

// First piece of each triangle of the file among the prepared ones, and their number at the end.
std::vector<size_t> find_Pieces(const Prepared& prepared, size_t triangles) {
  std::vector<size_t> first(triangles + 1, 0);
  for (const uint32_t origin : prepared.origin) ++first[origin + 1];
  for (size_t i = 0; i < triangles; ++i) first[i + 1] += first[i];
  return first;
}

T3DFRM turn_Back(const Rotation& rotation, const T3DFRM& frame) {
  return {rotation.turn_Back(frame.x), rotation.turn_Back(frame.y), rotation.turn_Back(frame.z),
          rotation.turn_Back(frame.org)};
}

// Work on one region of interest: the regions found in it are numbered from 1, 0 is free.
class RoiWork {
 public:
  RoiWork(const Part& part, const Prepared& prepared, const std::vector<size_t>& pieces,
          const Roi& roi)
      : part_(part), prepared_(prepared), pieces_(pieces) {
    answer_.roi = roi;
    local_.assign(part.mesh.triangles.size(), -1);
    piece_region_.assign(prepared.mesh.triangles.size(), 0);
  }

  RoiAnswer solve(const Climb& climb, uint32_t index) {
    take_Regions(climb, index);
    take_Notes(climb, index);
    for (const uint32_t triangle : answer_.roi.triangles) local_[triangle] = vote(triangle);
    join_SetApart();
    fill_Lists();
    return std::move(answer_);
  }

 private:
  void take_Regions(const Climb& climb, uint32_t index) {
    for (const Settled& settled : climb.settled) {
      if (settled.patch.roi != index) continue;
      answer_.halvings = std::max(answer_.halvings, settled.patch.halvings);
      for (const FoundRegion& found : settled.regions) {
        Region region;
        region.axis = unit_Vec(-1.0 * prepared_.rotation.turn_Back(found.axis.dir));
        region.centre = prepared_.rotation.turn_Back(found.axis.org);
        region.frame = turn_Back(prepared_.rotation, found.frame);
        region.aperture = settled.aperture;
        answer_.regions.push_back(region);
        const auto number = static_cast<int32_t>(answer_.regions.size());
        for (const uint32_t piece : found.triangles) piece_region_[piece] = number;
      }
    }
    for (const Patch& patch : climb.given_up) {
      if (patch.roi != index) continue;
      answer_.halvings = std::max(answer_.halvings, patch.halvings);
      for (size_t k = 0; k < patch.triangles.size(); ++k) {
        const uint32_t origin = prepared_.origin[patch.triangles[k]];
        // Pieces of one triangle stand in a row.
        const bool again = k > 0 && prepared_.origin[patch.triangles[k - 1]] == origin;
        answer_.given_up += again ? 0 : 1;
      }
    }
  }

  void take_Notes(const Climb& climb, uint32_t index) {
    for (const CallNote& note : climb.notes) {
      if (note.roi != index) continue;
      answer_.notes.push_back(note);
      if (answer_.first == 0) {
        answer_.first = note.first;
        answer_.second = note.second;
      }
      const bool narrower = answer_.notes.size() == 1 || note.aperture < answer_.narrowest;
      if (narrower) answer_.narrowest = note.aperture;
    }
  }

  // The region with the largest share of a triangle's area.
  int32_t vote(uint32_t triangle) const {
    std::vector<std::pair<int32_t, double>> shares;
    for (size_t piece = pieces_[triangle]; piece < pieces_[triangle + 1]; ++piece) {
      const int32_t region = piece_region_[piece];
      auto share = std::find_if(shares.begin(), shares.end(),
                                [&](const auto& s) { return s.first == region; });
      if (share == shares.end()) share = shares.insert(shares.end(), {region, 0.0});
      share->second += area_Tri(prepared_.mesh, static_cast<uint32_t>(piece));
    }
    const auto best =
        std::max_element(shares.begin(), shares.end(), [](const auto& a, const auto& b) {
          return a.second != b.second ? a.second < b.second : a.first > b.first;
        });
    return best->first;
  }

  // Set apart as a whole: all its pieces are.
  bool is_Apart(uint32_t triangle) const {
    for (size_t piece = pieces_[triangle]; piece < pieces_[triangle + 1]; ++piece) {
      if (!prepared_.apart[piece]) return false;
    }
    return true;
  }

  void join_SetApart() {
    std::vector<uint32_t> apart;
    for (const uint32_t triangle : answer_.roi.triangles) {
      if (is_Apart(triangle)) apart.push_back(triangle);
    }
    answer_.set_apart = apart.size();
    join_Apart(part_.mesh, apart, local_);
  }

  void fill_Lists() {
    std::vector<uint32_t> triangles = answer_.roi.triangles;
    std::sort(triangles.begin(), triangles.end());
    for (const uint32_t triangle : triangles) {
      const double area = area_Tri(part_.mesh, triangle);
      answer_.area += area;
      if (local_[triangle] == 0) {
        answer_.free.push_back(triangle);
        continue;
      }
      Region& region = answer_.regions[static_cast<size_t>(local_[triangle] - 1)];
      region.triangles.push_back(triangle);
      region.area += area;
      answer_.covered += area;
    }
    std::erase_if(answer_.regions, [](const Region& region) { return region.triangles.empty(); });
  }

  const Part& part_;
  const Prepared& prepared_;
  const std::vector<size_t>& pieces_;
  RoiAnswer answer_;
  std::vector<int32_t> local_;         // by triangle: -1 outside, 0 free, or region
  std::vector<int32_t> piece_region_;  // by prepared triangle: 0 free, or region
};

}  // namespace

bool Answer::failed() const {
  return std::any_of(rois.begin(), rois.end(), [](const RoiAnswer& roi) { return roi.failed(); });
}

std::vector<Patch> make_Patches(const Part& part, const Prepared& prepared,
                                const std::vector<Roi>& rois) {
  const std::vector<size_t> pieces = find_Pieces(prepared, part.mesh.triangles.size());
  std::vector<Patch> patches;
  for (uint32_t i = 0; i < rois.size(); ++i) {
    Patch patch{i, 0, {}};
    for (const uint32_t triangle : rois[i].triangles) {
      for (size_t piece = pieces[triangle]; piece < pieces[triangle + 1]; ++piece) {
        if (!prepared.apart[piece]) patch.triangles.push_back(static_cast<uint32_t>(piece));
      }
    }
    patches.push_back(std::move(patch));
  }
  return patches;
}

Answer assemble_Answer(const Part& part, const Prepared& prepared, const std::vector<Roi>& rois,
                       const Climb& climb) {
  const std::vector<size_t> pieces = find_Pieces(prepared, part.mesh.triangles.size());
  Answer answer;
  answer.calls = climb.calls;
  answer.region_of.assign(part.mesh.triangles.size(), -1);
  for (uint32_t i = 0; i < rois.size(); ++i) {
    RoiAnswer roi = RoiWork(part, prepared, pieces, rois[i]).solve(climb, i);
    // A triangle in several regions of interest shows the first region that has it.
    for (const uint32_t triangle : roi.free) {
      answer.region_of[triangle] = std::max(answer.region_of[triangle], 0);
    }
    for (Region& region : roi.regions) {
      region.number = ++answer.regions;
      for (const uint32_t triangle : region.triangles) {
        int32_t& shown = answer.region_of[triangle];
        if (shown <= 0) shown = static_cast<int32_t>(region.number);
      }
    }
    answer.area += roi.area;
    answer.covered += roi.covered;
    answer.rois.push_back(std::move(roi));
  }
  return answer;
}

}  // namespace undercut::host
