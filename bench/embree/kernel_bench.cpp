// The library against a ray tracing kernel: the same rays asked of the prescribed tree, the wide
// tree, the sight along one direction and Embree, on one machine in one run; a table in Markdown.
//
//   kernel_bench [bodies=ball,ring,walls] [sizes=10000,...] [walls=200000] [threads=1,2] [turns=5]
//                [rays=ahead,both,scattered,axis] [all=1] [device=,isa=avx2]
//
// Rays start 0.001 mm above each triangle and are ready before the clock starts, for sight, which
// lifts them itself, the normals alone; so the table flatters the kernel a little. `x prescribed`
// and `x kernel` say how many times faster than the prescribed tree and the kernel's fastest form a
// line is. `differing` counts rays answered otherwise than by the prescribed tree. Lines `axis` are
// one direction from a bare mesh: what is built and a ray for each triangle; they come with those
// of `ahead`. Of the kernel's forms the fastest of each family is shown, or all of them; device= is
// handed to it as it stands.
#include <omp.h>

#include <array>
#include <map>
#include <memory>
#include <sstream>

#include "bench/bodies.h"
#include "bench/embree/kernel.h"
#include "bench/embree/ours.h"
#include "bench/embree/rays.h"
#include "bench/embree/table.h"

namespace {

using versus::CKernelDevice;
using versus::CKernelScene;
using versus::CTable;
using versus::TContender;
using versus::TKernelMesh;
using versus::TRays;

using TList = std::vector<TContender>;
using TAnswers = std::vector<uint8_t>;

constexpr size_t kKinds = std::size(versus::kSceneKinds);

struct TOptions {
  std::map<std::string, std::string> values = {
      {"bodies", "ball,ring,walls"},
      {"rays", "ahead,both,scattered,axis"},
      {"threads", "1,2"},
      {"turns", "5"},
      {"device", ""},
      {"all", ""},
      {"walls", "200000"},
      {"sizes", "10000,20000,50000,100000,200000,500000,1000000"}};

  std::vector<std::string> list(const std::string& key) const {
    std::vector<std::string> words;
    std::istringstream text(values.at(key));
    for (std::string word; std::getline(text, word, ',');) words.push_back(word);
    return words;
  }
  bool has(const std::string& key, const std::string& word) const {
    const std::vector<std::string> words = list(key);
    return std::find(words.begin(), words.end(), word) != words.end();
  }
};

TOptions read_Options(int count, char** words) {
  TOptions options;
  for (int k = 1; k < count; ++k) {
    const std::string word = words[k];
    const size_t sign = word.find('=');
    const auto option = options.values.find(word.substr(0, sign));
    if (sign == std::string::npos || option == options.values.end())
      throw std::runtime_error("not an option: " + word);
    option->second = word.substr(sign + 1);
  }
  return options;
}

// ---- A body and all that is built over it ------------------------------------------------------

struct TView {
  const char* name;
  T3DVEC direction;
};

// Walls are seen through all of them, almost along them and exactly along them; other bodies 60
// degrees from Z, as on a tilted axis.
std::vector<TView> get_Views(const std::string& body) {
  using undercut::sph_ToCar;
  if (body != "walls") return {{"", sph_ToCar(60.0, 30.0)}};
  return {{" across", sph_ToCar(80.0, 7.0)},
          {" grazing", sph_ToCar(60.0, 88.0)},
          {" parallel", undercut::unit(T3DVEC{0.0, 0.8, 0.6})}};
}

bodies::TBody make_Body(const std::string& name, uint32_t size) {
  if (name == "ball") return bodies::make_Ball(size);
  if (name == "ring") return bodies::make_Ring(size);
  if (name == "walls") return bodies::make_Walls(size);
  throw std::runtime_error("not a body: " + name);
}

struct TCase {
  std::string body;
  bodies::TBody shape;
  T3DMSH msh;
  std::vector<T3DVEC> nml;
  TKernelMesh soup;
  undercut::C3DTriAABBTree prescribed, wide;
  std::array<std::unique_ptr<CKernelScene>, kKinds> scenes;
  TList builds;  // the prescribed tree, the wide tree, then the scenes

  TCase(const std::string& name, uint32_t size)
      : body(name),
        shape(make_Body(name, size)),
        msh(shape.view()),
        nml(versus::make_Normals(msh)),
        soup(msh) {}

  std::string place(const std::string& rays) const {
    return body + " | " + std::to_string(msh.n_tri) + " | " +
           std::to_string(omp_get_max_threads()) + " | " + rays;
  }
};

void race_Builds(TCase& of, const CKernelDevice& device, int turns) {
  of.builds.push_back({.family = "prescribed",
                       .name = "prescribed tree",
                       .work = [&] { versus::build_Prescribed(of.prescribed, of.msh); },
                       .before = [&] { of.prescribed.Clear(); }});
  of.builds.push_back({.family = "wide",
                       .name = "wide tree",
                       .work = [&] { versus::build_Wide(of.wide, of.msh); },
                       .before = [&] { of.wide.Clear(); }});
  for (size_t k = 0; k < kKinds; ++k) {
    const versus::TSceneKind& kind = versus::kSceneKinds[k];
    std::unique_ptr<CKernelScene>& scene = of.scenes[k];
    const std::string name = std::string("kernel, ") + kind.name;
    of.builds.push_back(
        {.family = name,
         .name = name,
         .kernel = true,
         .work = [&] { scene = std::make_unique<CKernelScene>(device, of.soup, kind); },
         .before = [&] { scene.reset(); }});
  }
  versus::race(of.builds, turns);
}

// ---- Rays --------------------------------------------------------------------------------------

uint64_t count_Differing(const TAnswers& truth, const TAnswers& open) {
  uint64_t count = 0;
  for (size_t i = 0; i < truth.size(); ++i) count += truth[i] != open[i];
  return count;
}

void add_Trees(TList& list, const TCase& of, const TRays& rays, TAnswers& truth, TAnswers& open) {
  list.push_back({.family = "prescribed",
                  .name = "prescribed tree",
                  .work = [&] { versus::ask_Tree(of.prescribed, rays, truth.data()); },
                  .differing = [] { return uint64_t{0}; }});
  list.push_back({.family = "wide",
                  .name = "wide tree",
                  .work = [&] { versus::ask_Tree(of.wide, rays, open.data()); },
                  .differing = [&] { return count_Differing(truth, open); }});
}

void add_Sight(TList& list, const TCase& of, const T3DVEC& direction, versus::Ways ways,
               const TAnswers& truth, TAnswers& sight) {
  // Kept from turn to turn, as a search for an axis keeps it: the first turn makes the starts.
  const auto eye = std::make_shared<undercut::CSight>(
      of.wide, undercut::TRayStarts{of.msh, versus::kLift, of.nml.data()});
  const auto ask = [&, ways, eye] {
    eye->see_Along(direction, ways, nullptr, of.msh.n_tri, sight.data());
  };
  const auto differing = [&, ways] {
    return count_Differing(truth, versus::unpack_Sight(sight, ways));
  };
  list.push_back({.family = "sight", .name = "sight", .work = ask, .differing = differing});
}

void add_Kernel(TList& list, const TCase& of, const TRays& rays, const TAnswers& truth,
                TAnswers& open) {
  for (size_t k = 0; k < kKinds; ++k)
    for (const versus::TKernelForm& form : versus::kKernelForms) {
      const versus::TSceneKind& kind = versus::kSceneKinds[k];
      const RTCScene scene = of.scenes[k]->get();
      const std::string form_name = std::string("kernel, ") + form.family;
      list.push_back({.family = form_name + (kind.robust ? ", robust" : ""),
                      .name = form_name + " (" + form.name + ", " + kind.name + ")",
                      .kernel = true,
                      .work = [&, scene] { form.ask(scene, rays, open.data()); },
                      .differing = [&] { return count_Differing(truth, open); }});
    }
}

// The rows of kernel forms stand kind by kind behind `first` other rows.
double find_Axis(const TList& asked, size_t first, const TCase& of, size_t kind) {
  const size_t forms = std::size(versus::kKernelForms);
  double least = std::numeric_limits<double>::infinity();
  for (size_t k = 0; k < forms; ++k) least = std::min(least, asked[first + kind * forms + k].ms);
  return of.builds[2 + kind].ms + least;
}

// Building and asking, summed where they were raced apart; sight is run afresh.
TList sum_Axes(const TList& asked, const TCase& of, const T3DVEC& direction, int turns) {
  TAnswers sight(of.msh.n_tri);
  undercut::C3DTriAABBTree tree;
  TList list = {{.family = "sight",
                 .name = "sight",
                 .work = [&] { versus::sight_Afresh(tree, of.msh, direction, sight.data()); },
                 .before = [&] { tree.Clear(); }}};
  versus::race(list, turns);
  const auto add = [&](const std::string& name, bool kernel, double ms) {
    list.push_back({.family = name, .name = name, .kernel = kernel, .ms = ms});
  };
  add("prescribed tree", false, of.builds[0].ms + asked[0].ms);
  add("wide tree", false, of.builds[1].ms + asked[1].ms);
  std::rotate(list.begin(), list.begin() + 1, list.end());
  for (size_t k = 0; k < kKinds; ++k)
    add(std::string("kernel, ") + versus::kSceneKinds[k].name, true, find_Axis(asked, 3, of, k));
  return list;
}

// One direction, or it and its opposite.
void run_View(const TCase& of, const TView& view, versus::Ways ways, const TOptions& options,
              const CTable& table) {
  const bool both = ways == versus::Ways::kBoth;
  std::vector<T3DVEC> directions = {view.direction};
  if (both) directions.push_back(-view.direction);
  const TRays rays = versus::make_Parallel(of.msh, directions, both ? "both" : "ahead");
  TAnswers truth(rays.count()), open(rays.count()), sight(of.msh.n_tri);
  const int turns = std::stoi(options.values.at("turns"));
  TList list;
  add_Trees(list, of, rays, truth, open);
  add_Sight(list, of, view.direction, ways, truth, sight);
  add_Kernel(list, of, rays, truth, open);
  versus::race(list, turns);
  table.print(of.place(rays.name + view.name), list, rays.count(), rays.count());
  if (both || !options.has("rays", "axis")) return;
  const TList axes = sum_Axes(list, of, view.direction, turns);
  table.print(of.place(std::string("axis") + view.name), axes, of.msh.n_tri, 0);
}

void run_Scattered(const TCase& of, const TOptions& options, const CTable& table) {
  const TRays rays = versus::make_Scattered(of.msh);
  TAnswers truth(rays.count()), open(rays.count());
  TList list;
  add_Trees(list, of, rays, truth, open);
  add_Kernel(list, of, rays, truth, open);
  versus::race(list, std::stoi(options.values.at("turns")));
  table.print(of.place(rays.name), list, rays.count(), rays.count());
}

void run_Body(const std::string& body, uint32_t size, const CKernelDevice& device,
              const TOptions& options, const CTable& table) {
  TCase of(body, size);
  race_Builds(of, device, std::stoi(options.values.at("turns")));
  table.print(of.place("build"), of.builds, of.msh.n_tri, 0);
  for (const TView& view : get_Views(body)) {
    if (options.has("rays", "ahead")) run_View(of, view, versus::Ways::kAhead, options, table);
    if (options.has("rays", "both")) run_View(of, view, versus::Ways::kBoth, options, table);
  }
  if (options.has("rays", "scattered")) run_Scattered(of, options, table);
}

void run_Threads(int threads, const TOptions& options) {
  omp_set_num_threads(threads);
  const std::string& settings = options.values.at("device");
  const CKernelDevice device(threads, settings);
  const CTable table(!options.values.at("all").empty());
  for (const std::string& body : options.list("bodies"))
    for (const std::string& size : options.list(body == "walls" ? "walls" : "sizes"))
      run_Body(body, static_cast<uint32_t>(std::stoul(size)), device, options, table);
}

}  // namespace

int main(int count, char** words) try {
  const TOptions options = read_Options(count, words);
  CTable::print_Head();
  for (const std::string& threads : options.list("threads"))
    run_Threads(std::stoi(threads), options);
  return 0;
} catch (const std::exception& problem) {
  std::fprintf(stderr, "%s\n", problem.what());
  return 1;
}
