// All parameter blocks at once: what tests that set parameters save, compare and put back.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include "interface/exports.h"
#include "interface/parameters.h"

struct TWeight {
  double f_gew;
};

// The members have the names of the blocks in setters.def.
struct TBlocks {
  undercut::CDcmPar dcm;
  undercut::CUCsPar ucs;
  undercut::TAmoPar amo;
  undercut::TGcuPar gcu;
  undercut::TNxnPar nxn;
  undercut::TGriPar gri;
  undercut::TFltPar flt;
  undercut::TConPar con;
  undercut::TPrjPar prj;
  TWeight err;
};

// Calls visit(field of a, field of b) for each pair of a member and the global block it stands for.
template <typename Blocks, typename Visit>
void visit_Blocks(Blocks& blocks, Visit visit) {
  visit(blocks.dcm, undercut::g_Dcm);
  visit(blocks.ucs, undercut::g_UCs);
  visit(blocks.amo, undercut::g_Amo);
  visit(blocks.gcu, undercut::g_Gcu);
  visit(blocks.nxn, undercut::g_Nxn);
  visit(blocks.gri, undercut::g_Gri);
  visit(blocks.flt, undercut::g_Flt);
  visit(blocks.con, undercut::g_Con);
  visit(blocks.prj, undercut::g_Prj);
  visit(blocks.err.f_gew, undercut::g_ErrGew);
}

// Byte by byte, padding included, so that a later comparison of bytes is exact.
inline void save_Blocks(TBlocks& blocks) {
  visit_Blocks(blocks, [](auto& mine, auto& global) {
    static_assert(sizeof mine == sizeof global);
    static_assert(std::is_trivially_copyable_v<std::remove_reference_t<decltype(mine)>>);
    std::memcpy(&mine, &global, sizeof mine);
  });
}
inline void restore_Blocks(const TBlocks& blocks) {
  visit_Blocks(blocks,
               [](const auto& mine, auto& global) { std::memcpy(&global, &mine, sizeof global); });
}
inline bool are_AsSaved(const TBlocks& blocks) {
  bool same = true;
  visit_Blocks(blocks, [&same](const auto& mine, auto& global) {
    same = same && std::memcmp(&global, &mine, sizeof global) == 0;
  });
  return same;
}

class BlocksTest : public testing::Test {
 protected:
  BlocksTest() { save_Blocks(at_start); }
  ~BlocksTest() override { restore_Blocks(at_start); }
  TBlocks at_start;
};
