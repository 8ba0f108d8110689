// ray_fuzz SEED BOOLEANS: asks hostile rays of hostile meshes, each in every way there is, and
// tells where the answers differ.
//
// A boolean is one ray along one way: the wide tree and the sweep in each form must agree, and with
// a loop over all triangles for every eighth ray and wherever two of them differ. Apart from that
// single pairs are judged, whose mistakes no other triangle hides. Case k of a seed is that of
// `ray_fuzz SEED+k 1`. Exit code 1 if anything differs.
#include <omp.h>

#include <cstdio>
#include <cstdlib>

#include "tests/reference/plain_rays.h"
#include "tests/support/sweep_forms.h"

namespace {

using namespace undercut;
using namespace undercut::tests;

constexpr uint32_t kRays = 4096;
constexpr double kOtherShare = 0.05;
constexpr uint32_t kOthers = 96;
constexpr uint32_t kPlainShare = 8;

struct TTotals {
  uint64_t cases = 0, booleans = 0, hits = 0, swept = 0, different = 0;
  TPairs pairs;

  void add(const TTotals& other) {
    cases += other.cases, booleans += other.booleans, hits += other.hits;
    swept += other.swept, different += other.different;
    pairs.pairs += other.pairs.pairs, pairs.unclear += other.pairs.unclear;
    pairs.wrong += other.pairs.wrong;
  }
};

void tell(uint64_t seed, const THostile& hostile, const char* what, uint64_t ray) {
#pragma omp critical
  std::printf("different: ray_fuzz %llu 1, mesh kind %u, %s, ray %llu\n",
              static_cast<unsigned long long>(seed), hostile.kind, what,
              static_cast<unsigned long long>(ray));
}

// Groups of rays against the triangles that they were aimed at, and some against others too.
void judge_Pairs(uint64_t seed, THostile& hostile, TTotals& totals) {
  reference::Random random(seed);
  const CPlaced placed(hostile);
  if (!placed.is_Bounded()) return;
  for (uint32_t first = 0; first < kRays; first += kGroup) {
    const float way = random.chance(0.5) ? 1.0f : -1.0f;
    std::vector<uint32_t> ids(&hostile.aims[first], &hostile.aims[first] + kGroup);
    for (uint32_t k = random.chance(kOtherShare) ? kOthers : 0; k > 0; --k)
      ids.push_back(static_cast<uint32_t>(random.below(hostile.soup.tri.size())));
    for (const TForm& form : list_Forms()) {
      const uint64_t wrong = totals.pairs.wrong;
      placed.judge(form, first, way, ids, totals.pairs);
      if (totals.pairs.wrong != wrong) tell(seed, hostile, form.name, first);
    }
  }
}

// Both bits that AnyHit or a loop leaves of those that are asked.
template <typename Hit>
uint8_t leave(const THostile& hostile, uint32_t i, const Hit& hit) {
  uint8_t open = hostile.sight[i];
  if ((open & kSeesAhead) && hit(T3DRAY{hostile.orgs[i], hostile.direction})) open &= kSeesBehind;
  if ((open & kSeesBehind) && hit(T3DRAY{hostile.orgs[i], -hostile.direction})) open &= kSeesAhead;
  return open;
}

void run_Case(uint64_t seed, TTotals& totals) {
  reference::Random random(seed);
  const auto triangles = static_cast<uint32_t>(100 + random.below(900));
  THostile hostile = make_Hostile(seed, triangles, kRays);
  const T3DMSH msh = hostile.soup.msh();
  C3DTriAABBTree tree;
  if (!tree.Prepare(msh)) std::abort();
  std::vector<uint8_t> want(kRays);
  const auto any_Plain = [&](const T3DRAY& ray) { return reference::any_Hit(msh, ray); };
  for (uint32_t i = 0; i < kRays; ++i) {
    want[i] = leave(hostile, i, [&](const T3DRAY& ray) { return tree.AnyHit(ray); });
    totals.booleans += hostile.sight[i] == 3 ? 2 : 1;
    totals.hits += static_cast<uint64_t>(__builtin_popcount(hostile.sight[i] ^ want[i]));
    if (i % kPlainShare != 0) continue;
    if (leave(hostile, i, any_Plain) == want[i]) continue;
    ++totals.different;
    tell(seed, hostile, "tree", i);
  }
  for (const TForm& form : list_Forms()) {
    std::vector<uint8_t> sight = hostile.sight;
    CSweep sweep;
    if (!sweep.ini_Msh(tree, form.lanes) ||
        !sweep.clear_Hit(hostile.direction,
                         {hostile.orgs.data(), hostile.box, nullptr, kRays, sight.data()}))
      continue;
    ++totals.swept;
    for (uint32_t i = 0; i < kRays; ++i) {
      if (sight[i] == want[i]) continue;
      ++totals.different;
      tell(seed, hostile, leave(hostile, i, any_Plain) == want[i] ? form.name : "tree", i);
    }
  }
  judge_Pairs(seed, hostile, totals);
  ++totals.cases;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "ray_fuzz SEED BOOLEANS\n");
    return 2;
  }
  const uint64_t seed = std::strtoull(argv[1], nullptr, 10);
  const uint64_t booleans = std::strtoull(argv[2], nullptr, 10);
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  std::fflush(stdout);
  TTotals totals;
  // Many cases for each thread at a time: how many are run hangs on the seed alone.
  for (uint64_t first = seed; totals.booleans < booleans; first += 64) {
    const int64_t cases = booleans == 1 ? 1 : 64;
#pragma omp parallel
    {
      TTotals own;
#pragma omp for schedule(dynamic)
      for (int64_t k = 0; k < cases; ++k) run_Case(first + static_cast<uint64_t>(k), own);
#pragma omp critical
      totals.add(own);
    }
  }
  const uint64_t different = totals.different + totals.pairs.wrong;
  std::printf(
      "%llu cases, %llu booleans (%llu hits), %llu sweeps, %llu pairs (%.3f unclear), "
      "%llu different\n",
      static_cast<unsigned long long>(totals.cases),
      static_cast<unsigned long long>(totals.booleans),
      static_cast<unsigned long long>(totals.hits), static_cast<unsigned long long>(totals.swept),
      static_cast<unsigned long long>(totals.pairs.pairs),
      static_cast<double>(totals.pairs.unclear) / static_cast<double>(totals.pairs.pairs),
      static_cast<unsigned long long>(different));
  return different == 0 ? 0 : 1;
}
