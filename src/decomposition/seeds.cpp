#include "decomposition/seeds.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "decomposition/measures.h"
#include "foundation/parallel.h"
#include "foundation/sort_key.h"

namespace undercut {

namespace {

// The polar angle of a band's axis: sph_ToCar in two halves, of which this one is the same for all
// triangles.
struct TPolar {
  double sine, cosine;
};

// Of two bounds the one nearer to 90 degrees, the upper on a tie: the most tilted axis of the band.
double tilted_Bound(const TUcBand& band) {
  return std::fabs(90 - band.high) <= std::fabs(90 - band.low) ? band.high : band.low;
}

std::vector<TPolar> list_Polars(const std::vector<TUcBand>& bands) {
  std::vector<TPolar> polars;
  polars.reserve(bands.size());
  for (const TUcBand& band : bands) {
    const double angle = tilted_Bound(band) * kRadians;
    polars.push_back({std::sin(angle), std::cos(angle)});
  }
  return polars;
}

// The axes along which one triangle is judged: one for each band, in the azimuth of its normal.
struct TJudged {
  const T3DFAC f;
  const TUcFace face;
  T3DVEC start;  // of its rays
  double sine, cosine;

  TJudged(const CMap& map, const T3DFAC& corners, double lift) : f(corners), face(corners) {
    start = face.centre + lift * face.normal;
    double azimuth = azm_Vec(face.normal);
    if (!map.b_5ax) azimuth = snap_Azimuth(map, azimuth);
    sine = std::sin(azimuth * kRadians);
    cosine = std::cos(azimuth * kRadians);
  }
  T3DVEC axis(const TPolar& p) const { return {p.sine * cosine, p.sine * sine, p.cosine}; }
  // Of its area, what shows along the axis.
  double share(const TPolar& p) const { return area_Tri(prj_Tri(f, axis(p), start)) / face.area; }
};

// Of the bands whose ray leaves, the one wins that shows most, the first of equals. So a ray is
// asked only for the band that shows most of those left, and the first that leaves decides. A few
// bands at once: more than three never come from a call.
constexpr size_t kAtOnce = 3;

void score_Seed(const std::vector<TPolar>& polars, const C3DTriAABBTree& tree,
                const TJudged& judged, TUcSeed& seed) {
  double best = 0;
  for (size_t first = 0; first < polars.size(); first += kAtOnce) {
    const size_t count = std::min(kAtOnce, polars.size() - first);
    std::array<double, kAtOnce> shares = {};
    for (size_t k = 0; k < count; ++k) shares[k] = judged.share(polars[first + k]);
    for (;;) {
      size_t most = count;
      for (size_t k = 0; k < count; ++k)
        if (shares[k] > (most == count ? best : shares[most])) most = k;
      if (most == count) break;
      if (!tree.AnyHit({judged.start, judged.axis(polars[first + most])})) {
        best = shares[most];
        seed.band = static_cast<int32_t>(first + most);
        break;
      }
      shares[most] = 0;
    }
  }
  seed.key = -best;
}

}  // namespace

void calc_Seeds(const CMap& map, const TArr<uint32_t>& roi, const C3DTriAABBTree& tree, double lift,
                std::vector<TUcSeed>& seeds) {
  seeds.assign(roi.count, {});
  const std::vector<TPolar> polars = list_Polars(map.bands);
  each_Index(roi.count, [&](uint32_t i) {
    seeds[i].index = i;
    const T3DFAC f = get_Fac(map.msh, roi.data[i]);
    if (!is_Flat(f)) score_Seed(polars, tree, TJudged(map, f, lift), seeds[i]);
  });
  sort_Key(seeds.data(), 0, static_cast<int64_t>(roi.count) - 1,
           [](const TUcSeed& seed) { return seed.key; });
}

}  // namespace undercut
