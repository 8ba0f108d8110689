// Backward balancing: growth is unfair, for the first regions took all they could. Here the region
// of lowest rank takes its best candidate, even from another region, again and again; one that
// finds no acceptable candidate is finished, and its triangles are locked.
//
// A guard ends circles of one triangle between two regions. Other circles, through three regions or
// of ever other triangles between two, would go on for ever, so the stage fails after a bounded
// number of turns.
#include <set>

#include "decomposition/stage.h"
#include "decomposition/stage_files.h"
#include "files/progress.h"

namespace undercut {

namespace {

// Turns allowed in one stage: kTurns + kTurnsPerTriangle for each triangle of the mesh.
constexpr uint64_t kTurns = 1000000;
constexpr uint64_t kTurnsPerTriangle = 200;

// Watches the moves of one pair of regions.
struct TUcGuard {
  int32_t from = -1, to = -1;
  bool turned = false;       // a move in the opposite direction has been seen
  std::set<uint32_t> moved;  // went from -> to and have not come back
};

enum class Verdict { kMove, kBreak };

// Notes the move and tells whether the pair is running in a circle. A broken circle leaves `moved`
// as it is, which is empty.
Verdict watch(TUcGuard& guard, int32_t from, int32_t to, uint32_t triangle) {
  if (guard.from == from && guard.to == to) {
    if (!guard.turned) {
      guard.moved.insert(triangle);
      return Verdict::kMove;
    }
    if (guard.moved.empty()) {
      guard.from = guard.to = -1;
      guard.turned = false;
      return Verdict::kBreak;
    }
  } else if (guard.from == to && guard.to == from) {
    if (guard.moved.erase(triangle) == 0) guard.moved.insert(triangle);
    guard.turned = true;
    return Verdict::kMove;
  }
  guard.from = from;
  guard.to = to;
  guard.turned = false;
  guard.moved = {triangle};
  return Verdict::kMove;
}

// The region at its turn.
struct TUcServed {
  CUcA* region = nullptr;
  int32_t id = -1;
  double rank = 0;
};

enum class Choice { kFound, kNone, kFailed };

// The best candidate that is neither locked nor refused.
Choice choose_Tri(TUcStage& stage, CUcA* region, uint32_t& triangle) {
  double cost, same;
  while (region->pop_Que(cost, triangle)) {
    if (!region->pop_Cnd(triangle, same) || same != cost) return Choice::kFailed;
    if (stage.map.get_Lck(triangle)) continue;
    stage.cnd.region = region;
    stage.cnd.triangle = triangle;
    if (test_Cand(stage.cnd)) return Choice::kFound;
  }
  return Choice::kNone;
}

bool rank_Again(TUcStage& stage, CUcA* region) {
  stage.rnk.region = region;
  double rank;
  if (!cost_Uca(stage.rnk, rank)) return false;
  if (!stage.map.add_Rnk(region->id, rank)) return false;
  if (!stage.map.add_Rnq(rank, region->id, region)) return false;
  region->rank = rank;
  return true;
}

// Takes a region's entries out of rank map and queue; false if it has none.
bool withdraw(CMap& map, int32_t id) {
  double rank;
  CUcA* region;
  return map.pop_Rnk(id, rank) && map.del_Rnq(rank, id, region);
}

// The loser of a triangle is withdrawn, corrected and ranked again.
bool settle_Loser(TUcStage& stage, CUcA* loser, uint32_t triangle) {
  if (!withdraw(stage.map, loser->id)) return false;
  stage.rnk.region = loser;
  return upd_Del(stage.rnk, triangle) && rank_Again(stage, loser);
}

// Both sides renew what the move changed; region 0 holds no candidates.
bool renew_Candidates(TUcStage& stage, const TUcMove& move, CUcA* loser, CUcA* gainer) {
  for (size_t k = 0; k < 4; ++k) {
    if (move.triangles[k] == -1) continue;
    const auto triangle = static_cast<uint32_t>(move.triangles[k]);
    const bool open = !stage.map.get_Lck(triangle);
    if (loser && loser->id != 0 && !heed_Flag(stage.cnd, loser, triangle, move.from_flags[k], open))
      return false;
    if (!heed_Flag(stage.cnd, gainer, triangle, move.to_flags[k], open)) return false;
  }
  return true;
}

bool move_Tri(TUcStage& stage, const TUcServed& served, int32_t from, uint32_t triangle) {
  CMap& map = stage.map;
  // A region about to lose its last triangle is destroyed by the move: its entries must not outlive
  // it.
  const CUcA* source = map.get_Uca(from);
  if (from != 0 && source && source->count == 1 && !withdraw(map, from)) return false;
  TUcMove move;
  TUcMoved moved;
  if (!map.classify_Move(triangle, served.id, move)) return false;
  if (!map.apply_Move(triangle, served.id, moved)) return false;
  stage.rnk.region = served.region;
  if (!upd_Add(stage.rnk, triangle) || !rank_Again(stage, served.region)) return false;
  CUcA* loser = map.get_Uca(from);
  if (loser && from > 0 && !settle_Loser(stage, loser, triangle)) return false;
  if (!renew_Candidates(stage, move, loser, served.region)) return false;
  stage.files.step_Bwd(stage.step, loser, *served.region, triangle);
  ++stage.step;
  pgr_Stp(stage.step);
  return true;
}

bool put_Back(CMap& map, const TUcServed& served) {
  return map.add_Rnk(served.id, served.rank) && map.add_Rnq(served.rank, served.id, served.region);
}

// One turn of a region that has been taken from the queue.
bool serve(TUcStage& stage, TUcGuard& guard, const TUcServed& served) {
  CMap& map = stage.map;
  uint32_t triangle;
  const Choice choice = choose_Tri(stage, served.region, triangle);
  if (choice == Choice::kFailed) return false;
  if (choice == Choice::kNone) {
    for (int32_t t = served.region->head; t != -1; t = map.next_Tri(t))
      if (!map.set_Lck(static_cast<uint32_t>(t))) return false;
    return true;
  }
  const int32_t from = map.region_of[triangle];
  if (from == served.id) return false;
  // Outside the region of interest: the candidate is lost, the turn is not.
  if (from == -1) return put_Back(map, served);
  if (watch(guard, from, served.id, triangle) == Verdict::kBreak) {
    drop_Cnd(map, served.id, map.get_Uca(from));
    drop_Cnd(map, from, served.region);
    return put_Back(map, served);
  }
  return move_Tri(stage, served, from, triangle);
}

}  // namespace

void drop_Cnd(CMap& map, int32_t id, CUcA* region) {
  if (!region || region->candidates.empty()) return;
  TLst<uint32_t>& held = map.scratch_b;
  held.count = 0;
  for (const TUcWish& wish : region->queue)
    if (map.region_of[wish.triangle] == id)
      held.data[held.count++] = static_cast<uint32_t>(wish.triangle);
  for (uint32_t i = 0; i < held.count; ++i)
    if (!region->drop_Wish(held.data[i])) return;
}

bool balance_Regions(TUcStage& stage) {
  TUcGuard guard;
  stage.step = 0;
  TUcServed served;
  uint64_t turns_left = kTurns + kTurnsPerTriangle * stage.map.msh.n_tri;
  while (stage.map.pop_Rnq(served.rank, served.region, served.id)) {
    if (turns_left-- == 0) return false;
    double rank;
    if (!served.region || !stage.map.pop_Rnk(served.id, rank)) return false;
    if (served.id == 0) continue;
    if (served.rank != rank || served.rank != served.region->rank || served.id != served.region->id)
      return false;
    if (!serve(stage, guard, served)) return false;
  }
  return true;
}

}  // namespace undercut
