#include "decomposition/stage_files.h"

#include <cstring>
#include <new>
#include <utility>

#include "decomposition/filter.h"
#include "files/paths.h"
#include "files/writers.h"

namespace undercut {

namespace {

struct TStageName {
  const char* word;
  const char* folder;
  const char* name;  // behind the numbers of region of interest and pass
};

constexpr TStageName kStages[] = {
    {"ini", "02-h2o", "02-H2O"}, {"fwd", "03-fwd", "03-Fwd"}, {"del", "04-del", "04-Del"},
    {"rnk", "05-rnk", "05-Rnk"}, {"bwd", "06-bwd", "06-Bwd"}, {"clo", "07-clo", "07-Clo"},
    {"com", "08-com", "08-Com"}, {"fil", "09-fil", "09-Fil"}, {"smo", "10-smo", "10-Smo"},
};

bool has_Word(const char* text, const char* word) { return std::strstr(text, word) != nullptr; }

// A formatted text, empty if it does not fit: an empty name writes nothing.
template <typename... Args>
std::string fmt(const char* format, Args... args) {
  char buffer[kNameSize];
  const int n = std::snprintf(buffer, sizeof buffer, format, args...);
  return n < 0 || static_cast<size_t>(n) >= sizeof buffer ? std::string() : std::string(buffer);
}

// Lists with an id each, as the writers take them.
struct TIdLists {
  std::vector<std::vector<uint32_t>> triangles;
  std::vector<uint32_t> ids;

  void add(uint32_t id, std::vector<uint32_t> list) {
    ids.push_back(id);
    triangles.push_back(std::move(list));
  }
  template <typename Write>
  void with(Write write) {
    std::vector<TLst<uint32_t>> inner;
    inner.reserve(triangles.size());
    for (std::vector<uint32_t>& list : triangles) {
      const auto n = static_cast<uint32_t>(list.size());
      inner.push_back({list.data(), n, n});
    }
    const auto n = static_cast<uint32_t>(inner.size());
    write(TLst<TLst<uint32_t>>{inner.data(), n, n}, TArr<uint32_t>{ids.data(), n});
  }
};

// One file for each type word of l_uda: the labels coloured, the lists one by one.
void write_Types(const CDcmPar& par, const T3DMSH& msh, const int32_t* labels, TIdLists& lists,
                 const std::string& stem) {
  const char* types = par.l_uda;
  if (has_Word(types, "ply")) ply_Lbl(fmt("%s.ply", stem.c_str()).c_str(), msh, labels);
  if (has_Word(types, "stl"))
    stl_Lbl(fmt("%s.stl", stem.c_str()).c_str(), msh, reinterpret_cast<const uint32_t*>(labels));
  lists.with([&](const TLst<TLst<uint32_t>>& each, const TArr<uint32_t>& ids) {
    if (has_Word(types, "txt")) txt_IdLst(stem.c_str(), each, ids);
    if (has_Word(types, "sef")) sef_OutLst(stem.c_str(), msh, each, ids);
    if (has_Word(types, "pol")) pol_OutLst(stem.c_str(), msh, each, ids);
  });
}

// A file is not worth a computation: what fails while one is made is dropped.
template <typename Write>
void quietly(Write write) {
  try {
    write();
  } catch (const std::bad_alloc&) {
    return;
  }
}

}  // namespace

std::vector<uint32_t> lst_Tri(const CMap& map, const CUcA& region) {
  std::vector<uint32_t> list;
  list.reserve(region.count);
  for (int32_t t = region.head; t != -1; t = map.next_Tri(t))
    list.push_back(static_cast<uint32_t>(t));
  return list;
}

CStageFiles::CStageFiles(const CDcmPar& par, std::string dir, const CMap& map,
                         const C3DTriAABBTree& tree)
    : par_(par), dir_(std::move(dir)), map_(map), tree_(tree) {
  fwd_ = logs("fwd") && par.l_mod != 0;
  bwd_ = logs("bwd") && par.l_mod != 0;
}

bool CStageFiles::logs(const char* word) const { return par_.l_log && has_Word(par_.l_wrk, word); }

bool CStageFiles::make_Folder(const char* folder, const char* sub, std::string& path) const {
  char text[kFolderSize];
  const bool fits = sub ? fmt_Name(text, "%s/%s/%s/%s/", dir_.c_str(), par_.l_pth, folder, sub)
                        : fmt_Name(text, "%s/%s/%s/", dir_.c_str(), par_.l_pth, folder);
  if (!fits) return false;
  pth_Mkd(text);
  path = text;
  return true;
}

void CStageFiles::write_Seeds(const TLst<uint32_t>& roi, const std::vector<TUcSeed>& seeds) const {
  if (!logs("cri")) return;
  quietly([&] {
    std::string folder;
    if (!make_Folder("01-cri", nullptr, folder)) return;
    std::vector<double> scores(map_.msh.n_tri, 0.0);
    for (const TUcSeed& seed : seeds) scores[roi.data[seed.index]] = -seed.key;
    const std::string name = fmt("%s%02d-%02d-01-Cri.ply", folder.c_str(), roi_, pass_);
    ply_Rng(name.c_str(), map_.msh, 0.0, 1.0, scores.data(), 1);
  });
}

void CStageFiles::write_Map(StageWord stage) const {
  const TStageName& s = kStages[static_cast<size_t>(stage)];
  if (!logs(s.word)) return;
  quietly([&] {
    std::string folder;
    if (!make_Folder(s.folder, nullptr, folder)) return;
    // The map after balancing lands in the current directory, though its folder is made: tools that
    // collect it look there.
    if (stage == StageWord::kBwd) folder.clear();
    write_Mesh(fmt("%s%02d-%02d-%s", folder.c_str(), roi_, pass_, s.name));
  });
}

// All regions with triangles, region 0 included, in tree order.
void CStageFiles::write_Mesh(const std::string& stem) const {
  std::vector<TUcRef> regions;
  if (stem.empty() || !map_.get_Ucs(regions, false)) return;
  TIdLists lists;
  for (const TUcRef& ref : regions)
    if (ref.region->count != 0)
      lists.add(static_cast<uint32_t>(ref.id), lst_Tri(map_, *ref.region));
  write_Types(par_, map_.msh, map_.region_of.data(), lists, stem);
}

void CStageFiles::write_Step(const char* folder, const char* texts, const std::string& name) const {
  std::string path;
  if (!has_Word(texts, "map") || !make_Folder(folder, "map", path)) return;
  const std::string stem = fmt("%s%s", path.c_str(), name.c_str());
  if (stem.empty()) return;
  write_Mesh(stem);
  std::vector<TUcRef> regions;
  if (!map_.get_Ucs(regions, false)) return;
  std::vector<const CUcA*> shown;
  for (const TUcRef& ref : regions)
    if (ref.id != 0) shown.push_back(ref.region);
  write_Geometry(map_, par_, stem, shown, false);
}

// A region alone.
void CStageFiles::write_Side(const char* folder, const std::string& name,
                             const CUcA& region) const {
  std::string path;
  if (!make_Folder(folder, "lnd", path)) return;
  const std::string stem = fmt("%s%s", path.c_str(), name.c_str());
  if (stem.empty()) return;
  std::vector<uint32_t> own = lst_Tri(map_, region);
  const auto n = static_cast<uint32_t>(own.size());
  const TLst<uint32_t> list = {own.data(), n, n};
  const char* types = par_.l_uda;
  if (has_Word(types, "ply")) ply_Ids(fmt("%s.ply", stem.c_str()).c_str(), map_.msh, list);
  if (has_Word(types, "stl")) stl_Ids(fmt("%s.stl", stem.c_str()).c_str(), map_.msh, list);
  if (has_Word(types, "txt")) txt_Ids(fmt("%s.txt", stem.c_str()).c_str(), list);
  if (has_Word(types, "sef")) sef_Out(fmt("%s.sef", stem.c_str()).c_str(), map_.msh, list);
  if (has_Word(types, "pol")) pol_Out(fmt("%s.pol", stem.c_str()).c_str(), map_.msh, list);
  write_Geometry(map_, par_, stem, {&region}, true);
}

void CStageFiles::write_Fwd(uint32_t step, const CUcA& region, uint32_t triangle) const {
  const int s = static_cast<int>(step), t = static_cast<int>(triangle);
  quietly([&] {
    write_Step("03-fwd", par_.l_fwd, fmt("%02d-%02d-03-%05d-Fwd", roi_, pass_, s));
    if (has_Word(par_.l_fwd, "lnd"))
      write_Side("03-fwd", fmt("%02d-%02d-03-[%d,%d,%d]-Fwd", roi_, pass_, s, region.id, t),
                 region);
  });
}

void CStageFiles::write_Bwd(uint32_t step, const CUcA* loser, const CUcA& gainer,
                            uint32_t triangle) const {
  const int s = static_cast<int>(step), t = static_cast<int>(triangle);
  quietly([&] {
    write_Step("06-bwd", par_.l_bwd, fmt("%02d-%02d-06-%05d-Bwd", roi_, pass_, s));
    if (!has_Word(par_.l_bwd, "lnd")) return;
    const char* format = "%02d-%02d-06-[%d,%d,%d]-Bwd(%c)";
    if (loser) write_Side("06-bwd", fmt(format, roi_, pass_, s, loser->id, t, 'X'), *loser);
    write_Side("06-bwd", fmt(format, roi_, pass_, s, gainer.id, t, 'Y'), gainer);
  });
}

void CStageFiles::write_List(const TLst<uint32_t>& roi, const char* word) const {
  if (!logs("flt")) return;
  quietly([&] {
    std::string folder;
    if (!make_Folder("02-roi", nullptr, folder)) return;
    stl_Ids(fmt("%s%02d-%s.stl", folder.c_str(), roi_, word).c_str(), map_.msh, roi);
  });
}

// The pieces of the free triangles, each with its number as label and id; no file for one piece
// alone.
void CStageFiles::write_Free(const std::string& stem) const {
  const CUcA* free_region = map_.get_Uca(0);
  if (!free_region || free_region->count == 0) return;
  Scoped<TLst<TArr<uint32_t>>> pieces;
  if (!lst_Com(map_, free_region, *pieces) || pieces->count == 0) return;
  std::vector<int32_t> labels(map_.msh.n_tri, -1);
  TIdLists lists;
  for (uint32_t i = 0; i < pieces->count; ++i) {
    const TArr<uint32_t>& piece = pieces->data[i];
    for (uint32_t j = 0; j < piece.count; ++j) labels[piece.data[j]] = static_cast<int32_t>(i);
    lists.add(i, {piece.data, piece.data + piece.count});
  }
  write_Types(par_, map_.msh, labels.data(), lists, stem);
}

EndFiles CStageFiles::write_End() const {
  if (!logs("end")) return EndFiles::kDone;
  std::string folder;
  std::vector<TUcRef> regions;
  if (!make_Folder("13-end", nullptr, folder)) return EndFiles::kDone;
  if (!map_.get_Ucs(regions, false)) return EndFiles::kFailed;
  const std::string stem = fmt("%s%02d-%02d-", folder.c_str(), roi_, pass_);
  const char* which = par_.l_end;
  if (has_Word(which, "axi") && !write_Axes(stem, regions)) return EndFiles::kFailed;
  if (has_Word(which, "trf") && !write_Frames(stem, regions)) return EndFiles::kNoFrame;
  if (has_Word(which, "win") && !write_Latitudes(stem, regions)) return EndFiles::kFailed;
  quietly([&] {
    if (has_Word(which, "uda")) write_Mesh(stem + "14-UcA");
    if (has_Word(which, "h2o")) write_Free(stem + "15-H2O");
  });
  return EndFiles::kDone;
}

}  // namespace undercut
