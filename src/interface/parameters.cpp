// Defaults and dumps of the parameter blocks, both made from the rows of setters.def.
#include "interface/parameters.h"

#include <array>
#include <cstring>
#include <type_traits>

#include "files/file.h"

namespace undercut {

namespace {

// The weight that stands alone, in the shape of a block.
struct TErrPar {
  double f_gew;
};

// The record behind each block name of the table.
using TBlock_dcm = CDcmPar;
using TBlock_ucs = CUCsPar;
using TBlock_amo = TAmoPar;
using TBlock_gcu = TGcuPar;
using TBlock_nxn = TNxnPar;
using TBlock_gri = TGriPar;
using TBlock_flt = TFltPar;
using TBlock_con = TConPar;
using TBlock_prj = TPrjPar;
using TBlock_err = TErrPar;

template <typename Field, typename Value>
void put_Default(Field& field, Value value) {
  field = static_cast<Field>(value);
}
template <size_t size>
void put_Default(char (&field)[size], const char* text) {
  std::strncpy(field, text, size - 1);
  field[size - 1] = '\0';
}
void put_Default(double (&field)[4], const std::array<double, 4>& box) {
  std::memcpy(field, box.data(), sizeof field);
}

// Every field of the block that has a row.
template <typename Block>
void fill_Block(Block& par) {
#define UNDERCUT_BOX(a, b, c, d) \
  std::array<double, 4> { a, b, c, d }
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  if constexpr (std::is_same_v<Block, TBlock_##block>) put_Default(par.key, value);
#include "interface/setters.def"
#undef UNDERCUT_SETTER
#undef UNDERCUT_BOX
}

double default_Err() {
  TErrPar par;
  fill_Block(par);
  return par.f_gew;
}

void print_Key(File& file, const char* key, double value) { file.printf("%s=%lf\n", key, value); }
void print_Key(File& file, const char* key, const char* text) {
  file.printf("%s=%s \n", key, text);
}
template <typename Integer>
requires std::is_integral_v<Integer>
void print_Key(File& file, const char* key, Integer value) {
  file.printf("%s=%d \n", key, static_cast<int>(value));
}

// The rows of a block stand in the table in the order of its dump.
template <typename Block>
bool dump_Block(const Block& par, const char* head, const char* name) {
  File file(name);
  if (!file) return false;
  file.printf("%s\n", head);
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  if constexpr (std::is_same_v<Block, TBlock_##block>) print_Key(file, #key, par.key);
#include "interface/setters.def"
#undef UNDERCUT_SETTER
  return file.close();
}

}  // namespace

CDcmPar::CDcmPar() { fill_Block(*this); }
CUCsPar::CUCsPar() { fill_Block(*this); }
TAmoPar::TAmoPar() { fill_Block(*this); }
TGcuPar::TGcuPar() {
  fill_Block(*this);
  f_th0_s = f_th0;
  f_th1_s = f_th1;
}
TNxnPar::TNxnPar() { fill_Block(*this); }
TGriPar::TGriPar() { fill_Block(*this); }
TFltPar::TFltPar() { fill_Block(*this); }
TConPar::TConPar() { fill_Block(*this); }
TPrjPar::TPrjPar() { fill_Block(*this); }

CDcmPar g_Dcm;
CUCsPar g_UCs;
TAmoPar g_Amo;
TGcuPar g_Gcu;
TNxnPar g_Nxn;
TGriPar g_Gri;
TFltPar g_Flt;
TConPar g_Con;
TPrjPar g_Prj;
double g_ErrGew = default_Err();

bool dmp_Dcm(const CDcmPar& par, const char* name) { return dump_Block(par, "[CDcmPar]", name); }
bool dmp_UCs(const CUCsPar& par, const char* name) { return dump_Block(par, "[CUCsPar]", name); }

}  // namespace undercut
