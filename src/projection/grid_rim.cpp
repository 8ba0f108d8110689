// The rim of an area by a grid: what the area covers of the frame's x and y is drawn into cells,
// closed by a disk and traced. Lengths in mm.
//
// Both computations work on a copy of the rim grid's parameter block, and write it back twice: with
// the box of the area, and once the grid is fitted to it. So the block keeps box and cells of the
// last call that came so far, whether or not that call succeeded.
#include <algorithm>
#include <limits>

#include "projection/rim_raster.h"
#include "projection/rim_request.h"

namespace undercut {

namespace {

// The box of an area in x and y; what is not a number is passed over.
struct TExtent {
  T2DVEC low, high;

  void take(const T3DVEC& p) {
    low = {p.x < low.x ? p.x : low.x, p.y < low.y ? p.y : low.y};
    high = {p.x > high.x ? p.x : high.x, p.y > high.y ? p.y : high.y};
  }
};

// The grid's box is a square as wide as the larger side, with room for the disk on all sides. A
// radius that is none takes no room: it is told by the disk, and not by corners that it would have
// left outside.
void set_Box(const TExtent& extent, double radius, TGriPar& grid) {
  const T2DVEC &low = extent.low, &high = extent.high;
  const double w = std::max(high.x - low.x, high.y - low.y);
  const double margin = radius > 0.0 ? 2.0 * radius : 0.0;
  grid.org_xy = {low.x - margin, low.y - margin};
  grid.ext_xy = {low.x + w + margin, low.y + w + margin};
  grid.f_val = 0.0;
}

// Raises -29, -30. The whole copy is written: nothing else changes the block meanwhile, so this
// stores box, f_val and b_res first, then also the sizes or the numbers of cells.
void fit_Grid(CallFrame& frame, TGriPar& grid) {
  g_Gri = grid;
  frame.need(grid_Fit(grid), -29);
  frame.need(grid.n_row && grid.n_col, -30);
  g_Gri = grid;
}

// each_Face(visit) hands every triangle of the area, in the frame, to visit. Raises -29 to -35.
template <typename EachFace>
void draw_Area(CallFrame& frame, double radius, EachFace each_Face, TGriPar& grid,
               CBitMatrix& cells) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  TExtent extent = {{inf, inf}, {-inf, -inf}};
  each_Face([&extent](const T3DFAC& f) {
    for (const T3DVEC& p : {f.a, f.b, f.c}) extent.take(p);
  });
  set_Box(extent, radius, grid);
  fit_Grid(frame, grid);
  frame.need(cells.init(grid.n_row, grid.n_col), -31);
  each_Face([&](const T3DFAC& f) { frame.need(grid_Draw(grid, f, cells), -32); });
  Scoped<TDisk> disk;
  frame.need(grid_Disk(radius, grid, *disk), -33);
  frame.need(cells.dilate(*disk), -34);
  frame.need(cells.erode(*disk), -35);
}

// Raises -29 to -46.
template <typename EachFace>
void trace_Rim(CallFrame& frame, const TRimInput& in, TGriPar& grid, EachFace each_Face,
               TUcRes* res) {
  CBitMatrix cells;
  draw_Area(frame, in.radius, each_Face, grid, cells);
  Scoped<TArr<TArr<T3DVEC>>> lines;
  frame.need(grid_Trace(cells, grid, *lines), -36);
  const int32_t fitted = fit_Rims(in.curve, *lines);
  frame.need(fitted == 0, fitted);
  res->rma = lines.take();
}

// With a Z axis of unit length.
TRimInput load_GridRim(const TUcReq* req, const TUcRes* res) {
  TRimInput in = load_Rim(req, res);
  in.frm.z = unit(in.frm.z);
  return in;
}

}  // namespace

}  // namespace undercut

int32_t get_Rmb(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    TGriPar grid = g_Gri;
    const TRimInput in = load_GridRim(req, res);
    need_Rim(frame, in);
    CBitVector area;
    flood_Area(frame, in, area);
    const auto each_Face = [&](auto visit) {
      for (uint32_t t = 0; t < in.msh.n_tri; ++t)
        if (area.test(t)) visit(to_Local(in.frm, get_Fac(in.msh, t)));
    };
    trace_Rim(frame, in, grid, each_Face, res);
  });
}

int32_t get_Rmc(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    TGriPar grid = g_Gri;
    const TRimInput in = load_GridRim(req, res);
    need_Rim(frame, in);
    need_RimIndices(frame, in);
    const auto each_Face = [&](auto visit) {
      for (uint32_t i = 0; i < in.roi.count; ++i)
        visit(to_Local(in.frm, get_Fac(in.msh, in.roi.data[i])));
    };
    trace_Rim(frame, in, grid, each_Face, res);
  });
}
