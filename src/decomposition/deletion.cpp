// Deletion of small regions: each new region is scored, and the poor ones dissolve into region 0.
//
// The score "len" is a chain measure: how far a tool of path width F_fae travels over the region's
// ellipse, as paths across its shorter axis by the mean share of its length.
#include <cmath>
#include <cstring>

#include "decomposition/stage.h"
#include "foundation/sort_key.h"

namespace undercut {

namespace {

struct TUcScore {
  double score;
  CUcA* region;
};

// As a 32-bit integer; what is out of range is the lowest one.
double whole_Paths(double quotient) {
  const double k = std::floor(quotient);
  return k >= -2147483648.0 && k <= 2147483647.0 ? k : -2147483648.0;
}

bool score_Len(const CUcA& region, double width, double& score) {
  TUcElp ellipse;
  if (!get_Elp(&region, ellipse)) return false;
  const double a = 2 * ellipse.a, b = 2 * ellipse.b;
  const double k = whole_Paths((a < b ? a : b) / width);
  if (!(a + b > 0)) return false;
  score = k * (a + b - (k + 1) * width) / (a + b);
  return true;
}

// All triangles back to region 0, at the head of its list; its measures are left for the end of the
// pass.
bool dissolve(CMap& map, CUcA* region, CUcA* free_region) {
  while (region->head != -1)
    if (!map.pass_Tri(static_cast<uint32_t>(region->head), region, free_region)) return false;
  return map.kill_Uca(region);
}

}  // namespace

bool del_Small(CMap& map, const CDcmPar& par) {
  CUcA* free_region = map.get_Uca(0);
  const bool by_area = std::strcmp(par.F_srt, "srf") == 0;
  if (!free_region || (!by_area && std::strcmp(par.F_srt, "len") != 0)) return false;
  std::vector<TUcRef> regions;
  if (!map.get_Ucs(regions, false)) return false;
  std::vector<TUcScore> scores;
  scores.reserve(regions.size());
  for (const TUcRef& ref : regions) {
    if (ref.id == 0 || ref.region->fixed) continue;
    double score = ref.region->measures.area;
    if (!by_area && !score_Len(*ref.region, par.F_fae, score)) return false;
    scores.push_back({score, ref.region});
  }
  const auto n = static_cast<int64_t>(scores.size());
  sort_Key(scores.data(), 0, n - 1, [](const TUcScore& s) { return s.score; });

  // A region stays only above the limit: a score equal to it goes.
  const double limit = by_area ? par.F_srf : par.F_quo;
  for (int64_t j = 0; j < n; ++j) {
    const TUcScore& entry = scores[static_cast<size_t>(n - 1 - j)];
    const bool over_cap = par.F_cnt >= 1 && j >= par.F_cnt;
    if ((over_cap || !(entry.score > limit)) && !dissolve(map, entry.region, free_region))
      return false;
  }
  return true;
}

}  // namespace undercut
