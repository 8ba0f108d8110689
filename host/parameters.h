// The library's parameters as the command's user meets them: by key, with checked values.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace undercut::host {

enum class Kind { I32, U32, U8, B32, F64, TXT, BOX };

using Value = std::variant<int64_t, double, std::string, std::array<double, 4>>;

struct Parameter {
  const char* setter;
  const char* block;
  const char* key;
  Kind kind;
  Value standard;  // the value at load
  const char* unit;
  const char* range;
  const char* sentence;
  int32_t (*store)(const Value&);  // hands a value to the library

  std::string name() const { return std::string(block) + "." + key; }
};

struct Setting {
  const Parameter* parameter;
  Value value;
};

const std::vector<Parameter>& all_Parameters();

// The decomposition reads it.
bool is_Read(const Parameter& parameter);

// Whether a computation reads a parameter.
using Reads = std::function<bool(const Parameter&)>;

// Finds a parameter by BLOCK.KEY, by the setter's name, or by the key alone. A key that several
// blocks have means the first that the computation reads. Throws UsageError, with near names, for
// an unknown key and for one that is not unique.
const Parameter& find_Parameter(std::string_view key, const Reads& reads = is_Read);

// Reads a value and checks it by kind and range. Throws UsageError.
Value parse_Value(const Parameter& parameter, std::string_view text);

// Reads "KEY=VALUE". Throws UsageError.
Setting parse_Setting(std::string_view text, const Reads& reads = is_Read);

// A note on `err` for each parameter that was set without effect; `what` names the computation.
void note_Unread(const std::vector<Setting>& settings, const Reads& reads, const char* what,
                 std::ostream& err);

// The value of a parameter that was set last, or its default; `Kept` is the kind that holds it.
template <typename Kept>
Kept find_Value(const std::vector<Setting>& settings, const char* name) {
  const Parameter& parameter = find_Parameter(name);
  Kept value = std::get<Kept>(parameter.standard);
  for (const Setting& setting : settings) {
    if (setting.parameter == &parameter) value = std::get<Kept>(setting.value);
  }
  return value;
}

std::string show_Value(const Value& value);
const char* show_Kind(Kind kind);

}  // namespace undercut::host
