// The table comes from the library's own list of setters, so that names, defaults, ranges and
// sentences agree with it by construction.
#include "parameters.h"

#include <undercut/exports.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <ostream>
#include <utility>

#include "errors.h"
#include "text.h"

namespace undercut::host {
namespace {

template <typename Raw>
int32_t store_Raw(int32_t (*setter)(const Raw*), const Value& value) {
  if constexpr (std::is_same_v<Raw, char>) {
    return setter(std::get<std::string>(value).c_str());
  } else if constexpr (std::is_same_v<Raw, double>) {
    const auto* box = std::get_if<std::array<double, 4>>(&value);
    return setter(box != nullptr ? box->data() : &std::get<double>(value));
  } else {
    const auto raw = static_cast<Raw>(std::get<int64_t>(value));
    return setter(&raw);
  }
}

Value make_Value(int value) { return int64_t{value}; }
Value make_Value(double value) { return value; }
Value make_Value(const char* value) { return std::string(value); }
Value make_Value(const std::array<double, 4>& value) { return value; }

#define UNDERCUT_BOX(a, b, c, d) (std::array<double, 4>{a, b, c, d})
#define UNDERCUT_SETTER(setter, block, key, type, value, unit, range, sentence) \
  Parameter{#setter,                                                            \
            #block,                                                             \
            #key,                                                               \
            Kind::type,                                                         \
            make_Value(value),                                                  \
            unit,                                                               \
            range,                                                              \
            sentence,                                                           \
            [](const Value& v) { return store_Raw(&setter, v); }},
const std::vector<Parameter> kParameters = {
#include <undercut/interface/setters.def>
};
#undef UNDERCUT_SETTER
#undef UNDERCUT_BOX

std::string list_Names(const std::vector<const Parameter*>& parameters) {
  std::string names;
  for (const Parameter* parameter : parameters) {
    names += (names.empty() ? "" : ", ") + parameter->name();
  }
  return names;
}

// The three nearest names, if any is near enough to be a slip of the finger.
std::string suggest_Names(std::string_view key) {
  std::vector<std::pair<size_t, const Parameter*>> near;
  for (const Parameter& p : kParameters) {
    const size_t distance =
        std::min({dist_Text(key, p.key), dist_Text(key, p.setter), dist_Text(key, p.name())});
    if (distance <= 2 || distance * 3 <= key.size()) near.emplace_back(distance, &p);
  }
  std::stable_sort(near.begin(), near.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<const Parameter*> names;
  for (size_t i = 0; i < std::min<size_t>(3, near.size()); ++i) names.push_back(near[i].second);
  return names.empty() ? "" : " Did you mean " + list_Names(names) + "?";
}

std::optional<double> parse_Bound(std::string_view text) { return parse_Double(trim_Text(text)); }

// One of the words joined by "or": a set of texts, or of whole numbers.
bool is_OneOf(std::string_view range, std::string_view text) {
  for (size_t at = range.find(" or "); at != range.npos; at = range.find(" or ")) {
    if (range.substr(0, at) == text) return true;
    range.remove_prefix(at + 4);
  }
  return range == text;
}

// The forms in which the table writes ranges: "A to B", "A or more", "above A", "below B", the last
// two also joined by a comma. A range with a colon explains special values and bounds nothing.
bool is_InRange(std::string_view range, double value) {
  if (range.find(':') != range.npos) return true;
  for (std::string_view piece : split_Text(range, ',')) {
    piece = trim_Text(piece);
    if (const size_t to = piece.find(" to "); to != piece.npos) {
      const auto low = parse_Bound(piece.substr(0, to));
      const auto high = parse_Bound(piece.substr(to + 4));
      if (low && high && !(value >= *low && value <= *high)) return false;
    } else if (piece.ends_with(" or more")) {
      const auto low = parse_Bound(piece.substr(0, piece.size() - 8));
      if (low && !(value >= *low)) return false;
    } else if (piece.starts_with("above ")) {
      const auto low = parse_Bound(piece.substr(6));
      if (low && !(value > *low)) return false;
    } else if (piece.starts_with("below ")) {
      const auto high = parse_Bound(piece.substr(6));
      if (high && !(value < *high)) return false;
    }
  }
  return true;
}

[[noreturn]] void fail_Value(const Parameter& p, std::string_view text, const std::string& why) {
  throw UsageError("--set " + p.name() + "=" + std::string(text) + ": " + why +
                   " Range: " + p.range + ". See 'undercut parameters'.");
}

Value parse_Whole(const Parameter& p, std::string_view text) {
  const std::optional<int64_t> value = parse_Integer(trim_Text(text));
  if (!value) fail_Value(p, text, "a whole number is needed.");
  const bool flag = p.kind == Kind::U8 || p.kind == Kind::B32;
  const bool is_signed = p.kind == Kind::I32;
  const int64_t low = is_signed ? std::numeric_limits<int32_t>::min() : 0;
  const int64_t high = flag        ? 1
                       : is_signed ? std::numeric_limits<int32_t>::max()
                                   : int64_t{std::numeric_limits<uint32_t>::max()};
  if (*value < low || *value > high || !is_InRange(p.range, static_cast<double>(*value))) {
    fail_Value(p, text, "the value is out of range.");
  }
  return *value;
}

double parse_Real(const Parameter& p, std::string_view text) {
  const std::optional<double> value = parse_Double(trim_Text(text));
  if (!value || !std::isfinite(*value)) fail_Value(p, text, "a finite number is needed.");
  if (!is_InRange(p.range, *value)) fail_Value(p, text, "the value is out of range.");
  return *value;
}

Value parse_Text(const Parameter& p, std::string_view text) {
  if (text.size() > 63) fail_Value(p, text, "a text has at most 63 characters.");
  const bool choice = std::string_view(p.range).find(" or ") != std::string_view::npos;
  if (choice && !is_OneOf(p.range, text)) fail_Value(p, text, "this is none of the words allowed.");
  return std::string(text);
}

Value parse_Box(const Parameter& p, std::string_view text) {
  const std::vector<std::string_view> pieces = split_Text(text, ',');
  if (pieces.size() != 4) fail_Value(p, text, "four numbers with commas between them are needed.");
  std::array<double, 4> box{};
  for (size_t k = 0; k < 4; ++k) box[k] = parse_Real(p, pieces[k]);
  return box;
}

}  // namespace

const std::vector<Parameter>& all_Parameters() { return kParameters; }

bool is_Read(const Parameter& parameter) {
  const std::string name = parameter.name();
  return name.starts_with("dcm.") || name == "ucs.f_tol";
}

const Parameter& find_Parameter(std::string_view key, const Reads& reads) {
  std::vector<const Parameter*> found;
  for (const Parameter& p : kParameters) {
    if (key == p.name() || key == p.setter) return p;
    if (key == p.key) found.push_back(&p);
  }
  for (const Parameter* p : found) {
    if (reads(*p)) return *p;
  }
  if (found.size() == 1) return *found[0];
  if (found.empty()) {
    throw UsageError("--set: there is no parameter " + quote_Text(key) + "." + suggest_Names(key) +
                     " 'undercut parameters' lists them all.");
  }
  throw UsageError("--set: " + quote_Text(key) + " is not unique. Write one of " +
                   list_Names(found) + ".");
}

Value parse_Value(const Parameter& parameter, std::string_view text) {
  switch (parameter.kind) {
    case Kind::F64:
      return parse_Real(parameter, text);
    case Kind::TXT:
      return parse_Text(parameter, text);
    case Kind::BOX:
      return parse_Box(parameter, text);
    default:
      return parse_Whole(parameter, text);
  }
}

Setting parse_Setting(std::string_view text, const Reads& reads) {
  const size_t equals = text.find('=');
  if (equals == text.npos || equals == 0) {
    throw UsageError("--set " + std::string(text) + ": write KEY=VALUE, for example n_con=3.");
  }
  const Parameter& parameter = find_Parameter(trim_Text(text.substr(0, equals)), reads);
  return {&parameter, parse_Value(parameter, text.substr(equals + 1))};
}

void note_Unread(const std::vector<Setting>& settings, const Reads& reads, const char* what,
                 std::ostream& err) {
  for (const Setting& setting : settings) {
    if (reads(*setting.parameter)) continue;
    err << "undercut: note: " << setting.parameter->name() << " has no effect on " << what << ".\n";
  }
}

std::string show_Value(const Value& value) {
  const auto show_Number = [](double number) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.12g", number);
    return std::string(buffer);
  };
  if (const auto* whole = std::get_if<int64_t>(&value)) return std::to_string(*whole);
  if (const auto* real = std::get_if<double>(&value)) return show_Number(*real);
  if (const auto* text = std::get_if<std::string>(&value)) return "\"" + *text + "\"";
  std::string box;
  for (const double number : std::get<std::array<double, 4>>(value)) {
    box += (box.empty() ? "" : ",") + show_Number(number);
  }
  return box;
}

const char* show_Kind(Kind kind) {
  switch (kind) {
    case Kind::F64:
      return "number";
    case Kind::TXT:
      return "text";
    case Kind::BOX:
      return "four numbers";
    case Kind::U8:
    case Kind::B32:
      return "flag";
    default:
      return "whole number";
  }
}

}  // namespace undercut::host
