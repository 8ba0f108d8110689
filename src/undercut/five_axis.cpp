// Five axes: the best direction of the sphere for a mesh or a region cut out of it. A scan, then a
// downhill simplex. Angles in degrees.
#include "files/writers.h"
#include "foundation/axis_frames.h"
#include "interface/call_frame.h"
#include "interface/parameters.h"
#include "mesh/curve_cut.h"
#include "mesh/weld.h"
#include "undercut/centres.h"
#include "undercut/region_axes.h"
#include "undercut/search.h"

namespace undercut {

namespace {

// Writes what each step works on into the current folder, to look at while changing the search. No
// parameter switches it on. With it, a direction without a frame fails with -14 after the scan and
// with -15 after the simplex.
constexpr bool kWritesFiles = false;

// The views that this computation reads of a request.
struct TSphereInput {
  T3DMSH msh;
  TArrArrVec arg;
  TLstU32 roi;
};

// The matrix from the host's coordinates to those of the found frame. False for no frame.
[[maybe_unused]] bool write_Frame(const char* path, const T3DVEC& centre, const TAmoRes& found) {
  T3DFRM frm;
  if (!frm_Axis({centre, -sph_ToCar(found.theta, found.phi)}, frm)) return false;
  T3DMAT mat;
  frm_ToMat(mat, frm);
  inv_Rigid(mat);
  trf_Mat(path, mat);
  return true;
}

bool is_Empty(const TLstU32& lst) { return !lst.data || lst.count == 0; }

// Those inside the curves, which take the place of the region; without curves the region itself.
TLstU32 select_Region(CallFrame& frame, const TSphereInput& in, TLstLstU32& cut) {
  if (!in.arg.data || in.arg.count == 0) return in.roi;
  frame.need(crv_Cut(in.msh, in.arg, cut) == 0, -9);
  return cut.data[1];
}

// A region is prepared alone, so that the rest of the mesh is no obstacle.
void prepare(CallFrame& frame, C5axUcErr& err, const TSphereInput& in, const TLstU32& region,
             T3DMSH& sub) {
  if (is_Empty(region)) {
    frame.need(err.ini_Err(in.msh), -13);
    return;
  }
  frame.need(wld_Sub(in.msh, region, sub), -11);
  if constexpr (kWritesFiles) stl_Msh("cav.stl", sub);
  frame.need(err.ini_Err(sub), -12);
}

TAmoRes search_Sphere(CallFrame& frame, CXaxUcErr& err, TAmoPar& amo, const TNxnPar& nxn,
                      const T3DVEC& centre) {
  const TAmoRes scanned = scan_Nxn(err, nxn);
  if constexpr (kWritesFiles) frame.need(write_Frame("nxn.trf", centre, scanned), -14);
  ini_Simplex(amo, {scanned.theta, scanned.phi}, amo.f_dxy);
  const TAmoRes found = run_Amo(err, amo);
  if constexpr (kWritesFiles) frame.need(write_Frame("amo.trf", centre, found), -15);
  return found;
}

}  // namespace

}  // namespace undercut

int32_t get_5ax(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar ucs = g_UCs;
    TAmoPar amo = g_Amo;
    const TNxnPar nxn = g_Nxn;
    const TSphereInput in =
        req && res ? TSphereInput{req->msh, req->arg, req->roi} : TSphereInput{};
    if constexpr (kWritesFiles) {
      stl_Msh("msh.stl", in.msh);
      pol_Lst("arg.pol", in.arg);
    }
    need_Msh(frame, in.msh, 3);
    frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
    frame.need(ok_Triangles(in.roi, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);

    Scoped<TLstLstU32> cut;
    const TLstU32 region = select_Region(frame, in, *cut);
    if constexpr (kWritesFiles) stl_Ids("roi.stl", in.msh, region);
    const T3DVEC centre = is_Empty(region) ? mean_Vertices(in.msh) : mean_Centroids(in.msh, region);
    C5axUcErr err;
    err.set_Gew(g_ErrGew);
    err.set_Off(ucs.f_tol);
    err.set_UseBox(false);
    Scoped<T3DMSH> sub;
    prepare(frame, err, in, region, *sub);

    CCountedErr counted(err);
    const TAmoRes found = search_Sphere(frame, counted, amo, nxn, centre);
    if (ucs.b_sta) print_Search("get_5ax", counted.count(), found);
    res->frm_b = frm_Found(centre, found.theta, found.phi);
  });
}
