// The corridor mode of classify: a tool follows slabs round a line, one pose for each slab, and the
// part, with other meshes if there are any, is the obstacle.
#include <algorithm>
#include <ostream>

#include "classify_answer.h"
#include "registered_mesh.h"

namespace undercut::host {
namespace {

using Marks = std::vector<bool>;  // by triangle

// A registered part, and how the tool moves past it.
struct Course {
  const RegisteredMesh& part;
  size_t count;  // triangles of the part
  T3DRAY line;
  std::vector<T3DVEC> poses;  // directions in which the tool moves
  std::vector<Marks> bands;   // what reaches into the slab of each pose
};

Marks mark_List(size_t count, const std::vector<uint32_t>& list) {
  Marks marks(count, false);
  for (const uint32_t i : list) marks[i] = true;
  return marks;
}

// What is seen at no pose in whose slab it lies. The library tells it of the last pose's slab, so
// each pose is the last of a call, unless earlier calls told all of its slab.
Marks find_NeverSeen(const Course& course, const Mesh& obstacle) {
  Marks never(course.count, false), told(course.count, false);
  std::vector<T3DVEC> poses = course.poses;
  for (const Marks& band : course.bands) {
    std::rotate(poses.begin(), poses.begin() + 1, poses.end());
    bool fresh = false;
    for (size_t i = 0; i < band.size(); ++i) {
      fresh = fresh || (band[i] && !told[i]);
      told[i] = told[i] || band[i];
    }
    if (!fresh) continue;
    for (const uint32_t i : course.part.list_NeverSeen(obstacle, course.line, poses)) {
      never[i] = true;
    }
  }
  return never;
}

struct Blocked {
  Marks sometimes, never_seen;  // what is never seen counts as blocked at some pose
};

Blocked find_Blocked(const Course& course, const Mesh& obstacle) {
  Blocked blocked{course.part.find_Blocked(obstacle, course.line, course.poses),
                  find_NeverSeen(course, obstacle)};
  // A triangle with two equal corners starts no ray that could be blocked.
  for (size_t i = 0; i < blocked.sometimes.size(); ++i) {
    blocked.sometimes[i] = blocked.sometimes[i] || blocked.never_seen[i];
  }
  return blocked;
}

// What is seen at each pose, of what lies in its slab.
void see_Poses(const Course& course, const Mesh& obstacle, const Mesh& mesh, const Marks& never,
               std::ostream* progress, ClassifyAnswer& answer) {
  for (size_t k = 0; k < course.poses.size(); ++k) {
    if (progress != nullptr) {
      *progress << "axis " << k + 1 << " of " << course.poses.size() << "\n" << std::flush;
    }
    const Marks one = course.part.find_Blocked(obstacle, course.line, {course.poses[k]});
    const Marks& band = course.bands[k];
    answer.seen.push_back(measure(mesh, answer.roi.triangles,
                                  [&](uint32_t i) { return band[i] && !one[i] && !never[i]; }));
  }
}

// Cuts the region of interest down to what reaches into some slab.
void keep_Bands(const Course& course, const Mesh& mesh, ClassifyAnswer& answer) {
  std::erase_if(answer.roi.triangles, [&](uint32_t i) {
    return std::none_of(course.bands.begin(), course.bands.end(),
                        [i](const Marks& band) { return band[i]; });
  });
  answer.region = measure(mesh, answer.roi.triangles);
  for (const Marks& band : course.bands) {
    answer.corridor->bands.push_back(
        measure(mesh, answer.roi.triangles, [&](uint32_t i) { return band[i]; }));
  }
}

void fill_Classes(const Mesh& mesh, const Blocked& all, const Blocked& own,
                  ClassifyAnswer& answer) {
  const std::vector<uint32_t>& list = answer.roi.triangles;
  const auto by_Others = [&](uint32_t i) { return all.sometimes[i] && !own.sometimes[i]; };
  answer.reach.assign(mesh.triangles.size(), Reach::kNotAsked);
  for (const uint32_t i : list) {
    if (all.never_seen[i]) {
      answer.reach[i] = own.never_seen[i] ? Reach::kOwn : Reach::kOthers;
    } else if (all.sometimes[i]) {
      answer.reach[i] = by_Others(i) ? Reach::kSometimesOthers : Reach::kSometimes;
    } else {
      answer.reach[i] = Reach::kSeen;
    }
  }
  answer.undercut = measure(mesh, list, [&](uint32_t i) { return all.never_seen[i]; });
  answer.from_others =
      measure(mesh, list, [&](uint32_t i) { return answer.reach[i] == Reach::kOthers; });
  CorridorAnswer& corridor = *answer.corridor;
  corridor.blocked_extent = measure(mesh, list, [&](uint32_t i) { return all.sometimes[i]; });
  corridor.from_others_extent = measure(mesh, list, by_Others);
  for (const uint32_t i : list) {
    if (all.sometimes[i]) corridor.blocked.push_back(i);
    if (by_Others(i)) corridor.from_others.push_back(i);
  }
  std::sort(corridor.blocked.begin(), corridor.blocked.end());
  std::sort(corridor.from_others.begin(), corridor.from_others.end());
}

}  // namespace

ClassifyAnswer classify_Corridor(const ShadowOptions& options, const Part& part,
                                 std::ostream* progress) {
  ClassifyAnswer answer;
  answer.roi = read_Together(options.rois, part);
  answer.others = read_Parts(options.against);
  const RegisteredMesh registered(part.mesh);
  answer.corridor = CorridorAnswer{};
  answer.corridor->registered = registered.count();
  answer.corridor->shaded = registered.count_Shaded();
  Course course{
      registered, part.mesh.triangles.size(), *options.corridor, turn_Round(options.axes), {}};
  for (const T3DVEC& pose : course.poses) {
    course.bands.push_back(mark_List(course.count, registered.pick_Slabs(course.line, {pose})));
  }
  keep_Bands(course, part.mesh, answer);

  const bool alone = answer.others.empty();
  const Mesh joined = alone ? Mesh{} : join_Meshes(part.mesh, answer.others);
  const Mesh& obstacle = alone ? part.mesh : joined;
  const Blocked all = find_Blocked(course, obstacle);
  see_Poses(course, obstacle, part.mesh, all.never_seen, progress, answer);
  fill_Classes(part.mesh, all, alone ? all : find_Blocked(course, part.mesh), answer);
  return answer;
}

}  // namespace undercut::host
