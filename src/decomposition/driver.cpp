// get_Dcm: the division of regions of interest into undercut regions.
//
// Each region of interest is worked by itself, in passes: regions grow from seeds, small ones are
// deleted, the rest are ranked, balanced, split and fixed; what stays free is offered to the next
// pass. Passes end when one takes no triangle, or at n_max. A region of interest that fails is
// repaired if b_chk is set, and tried once more.
//
// Cost: two or three rays for each triangle that is offered, in growth and again in balancing; the
// rest is constant for each triangle.
#include <cstring>
#include <string>
#include <vector>

#include "decomposition/filter.h"
#include "decomposition/growth_notes.h"
#include "decomposition/output.h"
#include "decomposition/stage.h"
#include "decomposition/stage_files.h"
#include "files/stage_line.h"
#include "interface/call_frame.h"
#include "mesh/region_repair.h"

namespace undercut {

namespace {

constexpr int32_t kAttemptFailed = 11;  // what a status record holds, whatever went wrong

// Failures that can't be cured: the call returns at once and hands nothing over.
constexpr int32_t kNoFrameFile = -112;
constexpr int32_t kNoLock = -143;

// What the host is told for a code that ended the call.
int32_t status_Of(int32_t code) {
  if (code == UNDERCUT_BAD_VERTEX || (code <= -9 && code >= -12)) return 4;
  switch (code) {
    case -13:
      return 5;
    case -14:
    case -15:
    case -16:
    case -17:
    case -19:
    case -20:
      return 6;
    case -18:
      return 7;
    case -21:
      return 8;
    case -22:
      return 9;
    case -23:
      return 10;
    default:
      return 12;
  }
}

// A sub-step of "11. Fil.", run over every region that is not fixed. Those switched off change
// membership without measures; they are kept for surfaces that need them, and no parameter reaches
// them.
struct TSubStep {
  bool on;
  bool (*run)(CMap&, CUcA*);
  StageWord word;
};
constexpr TSubStep kSubSteps[] = {
    {false, clo_Uca, StageWord::kClo},
    {true, com_Uca, StageWord::kCom},
    {false, fil_Uca, StageWord::kFil},
    {false, smo_Uca, StageWord::kSmo},
};

CDcmPar own_Par() {
  CDcmPar par = g_Dcm;
  if (!par.b_rti) par.b_prg = 0;
  return par;
}

// The allowed ranges of polar angles, of which there are three at most.
std::vector<TUcBand> list_Bands(const CDcmPar& par) {
  if (par.n_con == 0) return {{0, 180}};
  const TUcBand all[] = {{par.a_th0, par.b_th0}, {par.a_th1, par.b_th1}, {par.a_th2, par.b_th2}};
  return {all, all + par.n_con};
}

// The locals of one call and its steps.
class CDriver {
 public:
  explicit CDriver(const TUcReq& req)
      : par_(own_Par()),
        lift_(g_UCs.f_tol),
        msh_(req.msh),
        rois_(req.rois),
        files_(par_, base_Dir(req), map_, tree_) {
    pgr_Set(3);
    if (par_.b_prg)
      pgr_Ena();
    else
      pgr_Dis();
  }

  void load(CallFrame& frame);
  void build(CallFrame& frame);
  void ini_Map(CallFrame& frame);
  void run();
  // The code of a failure that can't be cured, or 0.
  int32_t fatal() const { return fatal_; }
  // Stores the lists in the result, whatever the status is, and tells the status.
  int32_t hand_Over(TUcRes& res, int32_t status);

 private:
  static std::string base_Dir(const TUcReq& req) {
    const std::string dir(req.dir, strnlen(req.dir, sizeof req.dir));
    return dir.empty() ? "." : dir;
  }
  bool attempt(uint32_t roi);
  void run_Roi(CallFrame& frame, TLst<uint32_t>& roi);
  void run_Pass(CallFrame& frame, TUcStage& stage);
  void need_Cured(CallFrame& frame, bool ok, int32_t code);
  void run_SubSteps(CallFrame& frame);
  void end_Pass(CallFrame& frame, TUcStage& stage);
  void end_Files(CallFrame& frame);
  void write_Result(CallFrame& frame);
  void repair(uint32_t roi);
  CStageLine line(const char* label, bool progress = false) const {
    return CStageLine(par_.b_rti, label, progress && par_.b_prg);
  }

  const CDcmPar par_;
  const double lift_;
  const T3DMSH msh_;
  const TLst<TLst<uint32_t>> rois_;
  CMap map_;
  C3DTriAABBTree tree_;
  CStageFiles files_;
  TUcCand cnd_;
  TUcRank rnk_;
  CBitVector bit_v_, bit_t_;
  Scoped<TLst<TLst<TLst<uint32_t>>>> out_t_;
  Scoped<TLst<TLst<T3DRAY>>> out_a_;
  Scoped<TLst<TLst<T3DFRM>>> out_f_;
  Scoped<TArr<TUcSts>> sts_;
  std::vector<TUcSeed> seeds_;
  CGrowthNotes notes_;
  bool seeds_fit_ = false;  // they are those of the list of the region of interest as it is
  uint32_t slots_ = 0;      // slots that are filled, the same in the three lists
  int32_t fatal_ = 0;
};

void CDriver::load(CallFrame& frame) {
  const CStageLine stage = line("01. Load  :: [files [msh, roi]]");
  need_Msh(frame, msh_, 8);
  frame.need(rois_.data && rois_.count, -13);
  frame.need(ok_Vertices(msh_), UNDERCUT_BAD_VERTEX);
  frame.need(alloc(*out_t_, rois_.count), -14);
  frame.need(alloc(*out_a_, rois_.count), -15);
  frame.need(alloc(*out_f_, rois_.count), -16);
  frame.need(alloc(*sts_, rois_.count), -17);
  for (uint32_t k = 0; k < rois_.count; ++k) sts_->data[k] = {k, 0, 0};
  frame.need(bit_v_.init(msh_.n_vtx), -18);
  frame.need(bit_t_.init(msh_.n_tri), -19);
}

void CDriver::build(CallFrame& frame) {
  const CStageLine stage = line("02. Build :: AABB-Tree");
  frame.need(tree_.BuildRays(msh_), -18);
  cnd_ = {0,          nullptr,    &map_,
          &tree_,     par_.T_win, lift_,
          par_.f_fuz, par_.w_nul, {par_.T_gw0, par_.T_gw1, par_.T_gw2, par_.T_gw3, par_.T_gw4}};
  rnk_ = {nullptr, &map_, par_.L_gw0, par_.L_gw1};
  frame.need(par_.n_con <= 3, -21);
  frame.at(par_.n_con == 0 ? -19 : -20);
  const std::vector<TUcBand> bands = list_Bands(par_);
  frame.at(-22);
  frame.need(map_.set_Win(bands.data(), static_cast<uint32_t>(bands.size())), -22);
  frame.at(UNDERCUT_NO_MEMORY);
}

void CDriver::ini_Map(CallFrame& frame) {
  const CStageLine stage = line("03. Ini.  :: dynamic UcA map with msh");
  frame.at(-23);
  frame.need(map_.ini_Msh(msh_), -23);
  map_.b_ini = par_.b_ini != 0;
  map_.b_5ax = par_.b_5ax != 0;
  map_.w_4ax = par_.w_4ax;
  frame.at(UNDERCUT_NO_MEMORY);
}

void CDriver::run() {
  for (uint32_t i = 0; i < rois_.count; ++i) {
    const TLst<uint32_t>& roi = rois_.data[i];
    TUcSts& sts = sts_->data[i];
    seeds_fit_ = false;
    if (!roi.data || roi.count == 0 || attempt(i)) continue;
    if (fatal_) return;
    sts.first = kAttemptFailed;
    if (par_.b_chk) repair(i);
    // The list is taken as it is now: shortened by passes that ran, or by the repair.
    if (roi.count == 0 || attempt(i)) continue;
    if (fatal_) return;
    sts.second = kAttemptFailed;
    ++slots_;  // an empty slot in each list
  }
}

// Runs a region of interest under a handler of its own. What a failed attempt had put into its
// slots is taken back, so that the three lists agree.
bool CDriver::attempt(uint32_t roi) {
  files_.set_Roi(roi);
  files_.set_Pass(0);
  const int32_t code = run_Call([&](CallFrame& frame) { run_Roi(frame, rois_.data[roi]); });
  if (code == 0) return true;
  if (slots_ < rois_.count) {
    release(out_t_->data[slots_]);
    release(out_a_->data[slots_]);
    release(out_f_->data[slots_]);
  }
  return false;
}

void CDriver::run_Roi(CallFrame& frame, TLst<uint32_t>& roi) {
  frame.need(ok_Triangles(roi, msh_.n_tri), UNDERCUT_BAD_TRIANGLE);
  {
    const CStageLine stage = line("04. Calc. :: and sort UcA seeds");
    frame.at(-24);
    // A second attempt on the list as it was would get the very same seeds.
    if (!seeds_fit_) {
      notes_.forget();
      calc_Seeds(map_, {roi.data, roi.count}, tree_, lift_, seeds_);
    }
    seeds_fit_ = true;
  }
  files_.write_Seeds(roi, seeds_);
  {
    const CStageLine stage = line("05. Ini.  :: dynamic UcA map with roi");
    frame.at(-27);
    frame.need(map_.ini_Roi({roi.data, roi.count}), -27);
  }
  files_.write_Map(StageWord::kIni);

  TUcStage stage = {map_, par_, cnd_, rnk_, roi, seeds_, files_, 0, &notes_};
  uint32_t pass = 0;
  uint32_t n_prev = roi.count;
  while (roi.count != 0 && (par_.n_max < 1 || pass <= static_cast<uint32_t>(par_.n_max))) {
    files_.set_Pass(pass);
    run_Pass(frame, stage);
    if (n_prev <= roi.count) break;  // the pass took nothing
    n_prev = roi.count;
    files_.set_Pass(++pass);
  }
  frame.at(-145);
  frame.need(fil_Lst(map_), -145);
  end_Files(frame);
  write_Result(frame);
}

void CDriver::run_Pass(CallFrame& frame, TUcStage& stage) {
  pgr_Beg(stage.roi.count, 100);
  {
    const CStageLine console = line("07. Fwd.  :: greedy Bfs UcA growing", true);
    frame.at(-29);
    frame.need(grow_Regions(stage), -29);
  }
  files_.write_Map(StageWord::kFwd);
  {
    const CStageLine console = line("08. Del.  :: delete small UcA regions");
    frame.at(-59);
    frame.need(del_Small(map_, par_), -59);
  }
  files_.write_Map(StageWord::kDel);
  {
    const CStageLine console = line("09. Rnk.  :: ranking of trgl.s and UcA regions");
    frame.at(-71);
    frame.need(rank_Regions(stage), -71);
  }
  files_.write_Map(StageWord::kRnk);
  pgr_Beg(stage.roi.count, 100);
  {
    const CStageLine console = line("10. Bwd.  :: balancing UcA regions", true);
    frame.at(-79);
    frame.need(balance_Regions(stage), -79);
  }
  files_.write_Map(StageWord::kBwd);
  run_SubSteps(frame);
  end_Pass(frame, stage);
}

void CDriver::run_SubSteps(CallFrame& frame) {
  for (const TSubStep& sub : kSubSteps) {
    if (!sub.on) continue;
    {
      const CStageLine console = line("11. Fil.  :: filter/fill/smooth of UcA regions");
      frame.at(-119);
      std::vector<TUcRef> regions;
      frame.need(map_.get_Ucs(regions, false), -119);
      for (const TUcRef& ref : regions)
        if (ref.id != 0 && !ref.region->fixed) frame.need(sub.run(map_, ref.region), -120);
    }
    files_.write_Map(sub.word);
  }
}

void CDriver::end_Pass(CallFrame& frame, TUcStage& stage) {
  {
    const CStageLine console = line("12. Fil.  :: small/non significant UcA regions");
    frame.at(-128);
    frame.need(del_Small(map_, par_), -128);
    need_Cured(frame, fix_Regions(map_), kNoLock);
  }
  seeds_fit_ = false;
  keep_Seeds(map_, stage.roi, stage.seeds);
  frame.at(-144);
  frame.need(renew_Free(map_), -144);
}

// Ends the whole call, not this region of interest alone, unless the condition holds.
void CDriver::need_Cured(CallFrame& frame, bool ok, int32_t code) {
  if (!ok) fatal_ = code;
  frame.need(ok, code);
}

void CDriver::end_Files(CallFrame& frame) {
  frame.at(-131);
  const EndFiles done = files_.write_End();
  need_Cured(frame, done != EndFiles::kNoFrame, kNoFrameFile);
  frame.need(done == EndFiles::kDone, -131);
}

void CDriver::write_Result(CallFrame& frame) {
  std::vector<TUcRef> regions;
  frame.at(-140);
  frame.need(map_.get_Ucs(regions, true), -140);
  frame.at(141);
  frame.need(wrt_Tri(map_, out_t_->data[slots_], &regions), 141);
  frame.need(wrt_Axi(map_, out_a_->data[slots_], &regions), 142);
  frame.need(wrt_Frm(map_, out_f_->data[slots_], &regions), 143);
  ++slots_;
}

void CDriver::repair(uint32_t roi) {
  TLst<uint32_t>& list = rois_.data[roi];
  TLst<uint32_t> own = list;
  files_.write_List(own, "prv");
  {
    const CStageLine console = line("0x. Check :: and repair UcA region");
    // Its result is not asked: a list that could not be repaired is tried as it is.
    reg_Repair(msh_, own, bit_v_, bit_t_, map_.vtx_tri, map_.neighbours);
  }
  files_.write_List(own, "nxt");
  list = own;
  seeds_fit_ = false;
}

int32_t CDriver::hand_Over(TUcRes& res, int32_t status) {
  if (status == 0)
    for (uint32_t k = 0; k < sts_->count; ++k)
      if (sts_->data[k].first != 0 || sts_->data[k].second != 0) status = 1;
  out_t_->count = out_a_->count = out_f_->count = slots_;
  res.uca_t = out_t_.take();
  res.uca_a = out_a_.take();
  res.uca_f = out_f_.take();
  res.sts = sts_.take();
  return status;
}

}  // namespace

}  // namespace undercut

extern "C" int32_t get_Dcm(const TUcReq* req, TUcRes* res) try {
  using namespace undercut;
  if (!req || !res) return status_Of(-9);
  CDriver driver(*req);
  const int32_t code = run_Call([&](CallFrame& frame) {
    driver.load(frame);
    driver.build(frame);
    driver.ini_Map(frame);
    driver.run();
  });
  if (driver.fatal() != 0) return driver.fatal();
  return driver.hand_Over(*res, code == 0 ? 0 : status_Of(code));
} catch (...) {
  return undercut::status_Of(UNDERCUT_NO_MEMORY);
}
