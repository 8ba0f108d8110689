// The exported setters, one for each row of setters.def. Each is told apart by the type of its
// field and of the value that the host hands over, so that a row which does not fit its block won't
// compile.
#include <cstring>

#include "interface/exports.h"
#include "interface/parameters.h"

namespace {

// The block behind each block name of the table.
constexpr undercut::CDcmPar& dcm = undercut::g_Dcm;
constexpr undercut::CUCsPar& ucs = undercut::g_UCs;
constexpr undercut::TAmoPar& amo = undercut::g_Amo;
constexpr undercut::TGcuPar& gcu = undercut::g_Gcu;
constexpr undercut::TNxnPar& nxn = undercut::g_Nxn;
constexpr undercut::TGriPar& gri = undercut::g_Gri;
constexpr undercut::TFltPar& flt = undercut::g_Flt;
constexpr undercut::TConPar& con = undercut::g_Con;
constexpr undercut::TPrjPar& prj = undercut::g_Prj;
constexpr struct { double& f_gew; } err = {undercut::g_ErrGew};

// Copied as bytes: the host's value may stand at any address.
int32_t store_Bytes(void* field, const void* value, size_t size) {
  if (value) std::memcpy(field, value, size);
  return 0;
}

template <typename Value>
int32_t store_Value(Value& field, const Value* value) {
  return store_Bytes(&field, value, sizeof(Value));
}
// A flag of 32 bits of which the host sets the lowest byte; the other three stay.
int32_t store_Value(uint32_t& flag, const uint8_t* value) { return store_Bytes(&flag, value, 1); }
int32_t store_Value(double (&box)[4], const double* value) {
  return store_Bytes(box, value, sizeof box);
}
// A longer text is cut, so that none runs into the next field.
int32_t store_Value(char (&field)[undercut::kTextSize], const char* text) {
  if (!text) return 0;
  const size_t length = strnlen(text, sizeof field - 1);
  std::memmove(field, text, length);
  std::memset(field + length, 0, sizeof field - length);
  return 0;
}

}  // namespace

#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  int32_t setter(const UNDERCUT_VALUE_##type* value_) { return store_Value(block.key, value_); }
#include "interface/setters.def"
