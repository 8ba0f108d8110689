// The frame of every export: a check that fails raises its code as a plain 32-bit integer, which
// unwinds to one handler; nothing else crosses the boundary.
//
//   return run_Call([&](CallFrame& frame) {
//     frame.need(msh.vtx, -1);          // a check
//     frame.at(-8);                     // the step that begins here: what it throws becomes -8
//     ...
//   });
#pragma once

#include <cstdint>
#include <new>

#include "foundation/arrays.h"
#include "interface/exports.h"

namespace undercut {

class CallFrame {
 public:
  // Names the code of the step that begins: an exhausted allocation in it gives this code.
  void at(int32_t code) { step_ = code; }
  // Raises the code unless the condition holds. By value: fields of packed records are handed in,
  // and a reference to one may be misaligned.
  void need(bool condition, int32_t code) {
    if (!condition) throw code;
  }
  int32_t step() const { return step_; }

 private:
  int32_t step_ = UNDERCUT_NO_MEMORY;
};

// Runs the body; 0, the raised code, or the code of the step in which anything else was thrown.
template <typename Body>
int32_t run_Call(Body&& body) noexcept {
  CallFrame frame;
  try {
    body(frame);
    return 0;
  } catch (const int32_t code) {
    return code;
  } catch (...) {
    return frame.step();
  }
}

// The four checks of a mesh that every computation begins with, as -1 to -4 less `before`.
inline void need_Msh(CallFrame& frame, const T3DMSH& msh, int32_t before = 0) {
  frame.need(msh.vtx, -1 - before);
  frame.need(msh.tri, -2 - before);
  frame.need(msh.n_vtx, -3 - before);
  frame.need(msh.n_tri, -4 - before);
}

// Whether every entry names a triangle of a mesh of n_tri triangles.
bool ok_Triangles(const TLst<uint32_t>& lst, uint32_t n_tri);
// The same of every region; their number is the capacity.
bool ok_Regions(const TLst<TLst<uint32_t>>& regions, uint32_t n_tri);

}  // namespace undercut
