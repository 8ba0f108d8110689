// What the searches for an axis find: on parts whose best axis follows from their symmetry, and
// against many directions that a plain program rates.
#include <gtest/gtest.h>

#include "tests/reference/plain_ratings.h"
#include "tests/reference/plain_search.h"
#include "tests/reference/second_depth.h"
#include "tests/reference/second_ratings.h"
#include "tests/support/analytic_parts.h"
#include "tests/support/random_bodies.h"
#include "tests/support/stl_mesh.h"
#include "tests/support/undercut_calls.h"

namespace undercut::tests {
namespace {

namespace second = reference::second;
using second::TRatings;

constexpr int kDensities[] = {1, 2, 4};
constexpr double kWeight = 0.01;  // the default
constexpr double kLift = 0.001;   // of the three-axis search, and the default of the others

// The tool's direction is a frame's Z: the part is rated along its opposite. The records of the
// boundary stand at multiples of 4 bytes, so frames are copied out of them.
T3DVEC find_Three(const TSoup& soup) {
  TUcCall call(soup);
  EXPECT_EQ(get_3ax(&call.req, &call.res), 0);
  const T3DFRM frm = call.res.frm_a;
  return -frm.z;
}
T3DVEC find_Five(const TSoup& soup, const std::vector<uint32_t>& roi = {}) {
  TUcCall call(soup);
  if (!roi.empty()) call.set_Roi(roi);
  EXPECT_EQ(get_5ax(&call.req, &call.res), 0);
  const T3DFRM frm = call.res.frm_b;
  return -frm.z;
}
// For a region of a mesh, by get_4ay or get_5ay.
T3DVEC find_Region(int32_t (*search)(const TUcReq*, TUcRes*), const TSoup& soup,
                   std::vector<uint32_t> region) {
  TUcCall call(soup);
  const auto count = static_cast<uint32_t>(region.size());
  TLstU32 list = {region.data(), count, count};
  call.req.cav = {&list, 1, 1};
  const int32_t status = search(&call.req, &call.res);
  EXPECT_EQ(status, 0);
  return status == 0 ? -call.res.lst[0].z : T3DVEC{0, 0, 0};
}

double rate_Three(TSoup soup, const T3DVEC& d) {
  return second::CView(soup.msh(), kLift).rate(d, kWeight).three;
}

TEST(SecondRatings, SeeWhatRaysSee) {
  reference::Random random(20264);
  for (int i = 0; i < 20; ++i) {
    SCOPED_TRACE("seed 20264, case " + std::to_string(i));
    const double bump = random.real(0, 1.5);
    TSoup soup = any_Ball(random, 8, 10, bump);
    join(soup, any_Heap(random, 2));
    const T3DVEC d = unit(random.triple(-1, 1));
    second::CView view(soup.msh(), kLift);
    view.look(d);
    const std::vector<second::TFacet> all = second::facets(soup.msh());
    const auto see = [&](const T3DVEC& along) {
      return second::where(second::look(soup.msh(), all, second::to_Real(along), kLift),
                           second::Sight::kSeen);
    };
    EXPECT_EQ(view.ahead(), see(d));
    EXPECT_EQ(view.behind(), see(-d));
  }
}

// ---- Symmetry -----------------------------------------------------------------------------------

// Of a convex part each point of the surface is seen from one end, and each end sees the part's
// outline, so the outline decides: of a box with sides a, b, c it is largest along (bc, ac, ab).
TEST(ThreeAxes, OfABox_LookAlongTheDirectionOfItsLargestOutline) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const bool turned : {false, true}) {
      SCOPED_TRACE("density " + std::to_string(density) + (turned ? ", turned" : ""));
      const TPart box =
          turned ? turn(make_BoxPart(density), general_Frame()) : make_BoxPart(density);
      const T3DVEC d = find_Three(box.soup);
      const T3DVEC local = {std::fabs(dot(d, box.frame.x)), std::fabs(dot(d, box.frame.y)),
                            std::fabs(dot(d, box.frame.z))};
      EXPECT_LT(ang_Vec(local, {12, 18, 24}), 1.0);
      const double best = -(2 * (1 - kWeight) * len(T3DVEC{12, 18, 24}) + kWeight * 108);
      EXPECT_NEAR(rate_Three(box.soup, d), best, 1e-4 * -best);
    }
}

// The outline of an upright cylinder, seen at an angle to its axis, is a disk and a rectangle.
TEST(ThreeAxes, OfACylinder_LeanAsItsProportionsTell) {
  const TDefaultParameters defaults;
  for (const int density : kDensities) {
    SCOPED_TRACE(density);
    const auto sectors = static_cast<uint32_t>(24 * density);
    TPart disk = {"disk",
                  revolve(divide({{0, 0}, {4, 0}, {4, 3}, {0, 3}}, 1.0 / density), sectors)};
    disk = turn(disk, general_Frame());
    const T3DVEC d = find_Three(disk.soup);
    const double across = TPolygon{4, sectors}.area(), along = 2 * 4 * 3;
    const double lean = std::acos(std::fabs(dot(d, disk.frame.z))) * kDegrees;
    EXPECT_NEAR(lean, std::atan2(along, across) * kDegrees, 1.5);
    const double surface = 2 * across + area_Ring(4, 0, 4, 3, sectors);
    const double best = -(2 * (1 - kWeight) * std::hypot(across, along) + kWeight * surface);
    EXPECT_NEAR(rate_Three(disk.soup, d), best, 0.005 * -best);
  }
}

TEST(ThreeAxes, OfASheet_LookAlongItsNormal) {
  const TDefaultParameters defaults;
  for (const int density : kDensities) {
    SCOPED_TRACE(density);
    const auto squares = static_cast<uint32_t>(4 * density);
    TSoup sheet = make_Grid(squares, squares);
    move(sheet, general_Frame());
    const T3DVEC d = find_Three(sheet);
    EXPECT_GT(std::fabs(dot(d, general_Frame().z)), std::cos(1.5 * kRadians));
    // Seen from one side alone.
    EXPECT_NEAR(rate_Three(sheet, d), -1.0 * squares * squares, 0.001 * squares * squares);
  }
}

// A cup with a pocket that opens at 27 degrees, and the triangles of the pocket: all of it is seen
// from within that cone, and the weight of the tilt decides for the middle.
struct TFunnel {
  TSoup soup;
  std::vector<uint32_t> pocket;
};
TFunnel make_Funnel(int density, const T3DFRM& to) {
  const Profile profile = divide({{0, 0}, {5, 0}, {5, 5}, {4, 5}, {2, 1}, {0, 1}}, 1.0 / density);
  TFunnel funnel = {revolve(profile, static_cast<uint32_t>(12 * density)), {}};
  for (uint32_t t = 0; t < funnel.soup.tri.size(); ++t) {
    const T3DFAC f = get_Fac(funnel.soup.msh(), t);
    if (nml_Tri(f).z > 0.1 && cen_Tri(f).z < 4.999) funnel.pocket.push_back(t);
  }
  move(funnel.soup, to);
  return funnel;
}
// A frame whose Z axis has these angles.
T3DFRM frame_At(double theta, double phi) {
  return frm_Ray({{1.5, -0.25, 4.0}, sph_ToCar(theta, phi)});
}

TEST(FiveAxes, OfAPocket_LookAlongItsMiddle) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const T3DFRM& frame : {general_Frame(), frame_At(100, 200), frame_At(160, 10)}) {
      SCOPED_TRACE(density);
      const TFunnel funnel = make_Funnel(density, frame);
      const T3DVEC d = find_Five(funnel.soup, funnel.pocket);
      EXPECT_LT(ang_Vec(d, frame.z), 0.75);
      // The pocket alone: nothing else is an obstacle, and all of it is seen.
      TSoup pocket = {funnel.soup.vtx, {}};
      for (const uint32_t t : funnel.pocket) pocket.tri.push_back(funnel.soup.tri[t]);
      EXPECT_LT(second::CView(pocket.msh(), kLift).rate(d, kWeight).five, kWeight * 0.0131);
    }
}

TEST(FiveAxes, OfAPocketInAWindow_LookAlongItsMiddle) {
  const TDefaultParameters defaults;
  const double window[4] = {30, 60, 90, 140};
  std::copy(window, window + 4, g_Nxn.box);
  g_Nxn.f_dxx = g_Nxn.f_dyy = 10;
  for (const int density : kDensities) {
    SCOPED_TRACE(density);
    const T3DFRM frame = frame_At(63, 97);
    const TFunnel funnel = make_Funnel(density, frame);
    EXPECT_LT(ang_Vec(find_Region(get_5ay, funnel.soup, funnel.pocket), frame.z), 0.75);
  }
}

TEST(FourAxes, OfAPocket_LookAlongItsMiddle) {
  const TDefaultParameters defaults;
  for (const int density : kDensities)
    for (const double phi : {90.0, 25.0})
      for (const double tilt : {-18.5, 0.0, 3.25, 12.5}) {
        SCOPED_TRACE(std::to_string(density) + ", tilt " + std::to_string(tilt));
        g_Gcu.f_phi = phi;
        const T3DFRM frame = frame_At(tilt, phi);
        const TFunnel funnel = make_Funnel(density, frame);
        EXPECT_LT(ang_Vec(find_Region(get_4ay, funnel.soup, funnel.pocket), frame.z), 0.1);
      }
}

// ---- Scans --------------------------------------------------------------------------------------

// The best of the searches' own coarse scan, and of many directions spread over the sphere.
struct TScans {
  TRatings coarse = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, dense = coarse;
};

TScans scan(second::CView& view, uint32_t directions) {
  TScans best;
  const double box[4] = {0, 0, 180, 360};
  reference::scan_Sphere(box, 40, 40, [&](double theta, double phi) {
    const TRatings r = view.rate(reference::direction_Of(theta, phi), kWeight);
    best.coarse.three = std::min(best.coarse.three, r.three);
    best.coarse.five = std::min(best.coarse.five, r.five);
    return 0.0;
  });
  for (const T3DVEC& d : second::spread_Directions(directions)) {
    if (d.z < 0) break;  // each rating tells of the opposite direction too
    const TRatings r = view.rate(d, kWeight);
    best.dense.three = std::min(best.dense.three, r.three);
    best.dense.five = std::min({best.dense.five, r.five, r.five_Behind});
  }
  return best;
}

// The dense scan's points lie 4.5 degrees apart, so a search can find better ones between them.
// What a search may lose against the coarse scan, as a part of the area, and win over the dense one
// for three axes, as a part of the rating, and for five, as a part of the area.
struct TMargins {
  double lost_Five, won_Three, won_Five;
};

void expect_Between(const TSoup& soup, uint32_t directions, const TMargins& margins) {
  second::CView view(TUcCall::view(soup), kLift);
  const TScans best = scan(view, directions);
  const double three = view.rate(find_Three(soup), kWeight).three;
  EXPECT_LE(three, best.coarse.three * (1 - 1e-9));
  EXPECT_GE(three, best.dense.three * (1 + margins.won_Three));
  const double five = view.rate(find_Five(soup), kWeight).five;
  EXPECT_LE(five, best.coarse.five + margins.lost_Five + 1e-9);
  EXPECT_GE(five, best.dense.five - margins.won_Five);
}

TEST(Searches, OfAScannedPart_EndNoWorseThanTheirScanAndNoBetterThanADenseOne) {
  const TDefaultParameters defaults;
  const std::string folder = UNDERCUT_EXAMPLES;
  const TSoup molar = read_Stl(folder + "/molar_stub.stl");
  ASSERT_EQ(molar.tri.size(), 3878u);
  expect_Between(molar, 2000, {0, 0.002, 0.001});
  const TSoup spot = read_Stl(folder + "/spot.stl");
  ASSERT_EQ(spot.tri.size(), 23062u);
  expect_Between(spot, 100, {0, 0.005, 0.005});
}

// On parts of few flat faces ratings jump where a whole face comes into sight. The simplex starts
// round the best point of the scan and not at it, so it can end just below the jump; and a jump
// between the directions of the dense scan is one that only the simplex climbs.
TEST(Searches, OfADrawnPart_EndNoWorseThanTheirScanAndNoBetterThanADenseOne) {
  const TDefaultParameters defaults;
  for (const TPart& part : make_Parts(1)) {
    SCOPED_TRACE(part.name);
    expect_Between(turn(part, general_Frame()).soup, 2000, {0.003, 0.01, 0.05});
  }
}

}  // namespace
}  // namespace undercut::tests
