#include "curve_file.h"

#include <cmath>
#include <optional>
#include <ostream>
#include <string_view>

#include "errors.h"
#include "part.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr size_t kFewestPoints = 3;

class CurveReader {
 public:
  explicit CurveReader(const std::filesystem::path& path) : path_(path.string()) {}

  std::vector<Curve> read(std::string_view bytes) {
    for (std::string_view text : split_Text(skip_Mark(bytes), '\n')) {
      ++line_;
      text = trim_Text(text.substr(0, text.find('#')));
      if (!text.empty()) take_Line(text);
    }
    if (!tag_.empty()) fail("the block <" + tag_ + "> has no end. Close it by </" + tag_ + ">.");
    if (curves_.empty()) {
      throw InputError(path_ +
                       ": the file holds no curve. Write each as a block of points between "
                       "<000> and </000>.");
    }
    return std::move(curves_);
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw InputError(path_ + ":" + std::to_string(line_) + ": " + what);
  }

  void take_Line(std::string_view text) {
    if (text.front() != '<') {
      take_Point(text);
      return;
    }
    if (text.back() != '>' || text.size() < 3) fail(quote_Text(text) + " is no tag.");
    text = text.substr(1, text.size() - 2);
    text.front() == '/' ? end_Block(text.substr(1)) : start_Block(text);
  }

  void start_Block(std::string_view tag) {
    if (!tag_.empty()) {
      fail("a block begins inside <" + tag_ + ">. Close that by </" + tag_ + "> first.");
    }
    tag_ = tag;
    curve_.clear();
  }

  void end_Block(std::string_view tag) {
    if (tag_ != tag || tag_.empty()) {
      fail("</" + std::string(tag) + "> closes a block that was not opened.");
    }
    const auto is_Same = [](const T3DVEC& a, const T3DVEC& b) {
      return a.x == b.x && a.y == b.y && a.z == b.z;
    };
    if (curve_.size() > 1 && is_Same(curve_.front(), curve_.back())) curve_.pop_back();
    if (curve_.size() < kFewestPoints) {
      fail("the curve <" + tag_ + "> has fewer than three points, so it bounds nothing.");
    }
    curves_.push_back(std::move(curve_));
    curve_ = {};
    tag_.clear();
  }

  void take_Point(std::string_view text) {
    if (tag_.empty()) fail(quote_Text(text) + " stands outside a block. Open one by <000>.");
    std::vector<double> values;
    while (!text.empty()) {
      size_t end = 0;
      while (end < text.size() && !is_Blank(text[end])) ++end;
      const std::optional<double> value = parse_Double(text.substr(0, end));
      if (!value || !std::isfinite(*value)) {
        fail(quote_Text(text.substr(0, end)) + " is no coordinate. Write three numbers a line.");
      }
      values.push_back(*value);
      text = trim_Text(text.substr(end));
    }
    if (values.size() != 3) fail("a point needs three numbers, x y z in mm, with blanks between.");
    curve_.push_back({values[0], values[1], values[2]});
  }

  std::string path_, tag_;  // an empty tag: outside a block
  size_t line_ = 0;
  Curve curve_;
  std::vector<Curve> curves_;
};

}  // namespace

std::string pad_Number(size_t number) {
  const std::string digits = std::to_string(number);
  return std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

void write_Curve(std::ostream& out, const std::string& tag, const Curve& curve) {
  out << "<" << tag << ">\n";
  for (const T3DVEC& p : curve) {
    // Adding 0.0 turns -0.0 into 0.0.
    out << fixed_Text(p.x + 0.0, 6) << " " << fixed_Text(p.y + 0.0, 6) << " "
        << fixed_Text(p.z + 0.0, 6) << "\n";
  }
  out << "</" << tag << ">\n";
}

std::vector<Curve> read_Curves(const std::filesystem::path& path) {
  return CurveReader(path).read(read_File(path));
}

double measure_Length(const Curve& curve) {
  double length = 0.0;
  for (size_t i = 0; i < curve.size(); ++i) {
    length += len_Vec(curve[(i + 1) % curve.size()] - curve[i]);
  }
  return length;
}

double measure_Area(const Curve& curve) {
  double twice = 0.0;
  for (size_t i = 0; i < curve.size(); ++i) {
    // From the first point on, so that curves far from the origin lose no digits.
    const T3DVEC a = curve[i] - curve[0], b = curve[(i + 1) % curve.size()] - curve[0];
    twice += a.x * b.y - a.y * b.x;
  }
  return 0.5 * twice;
}

}  // namespace undercut::host
