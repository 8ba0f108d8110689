// Binary STL: 80 bytes of header, a count n, then n records of 50 bytes (normal, three corners in
// single precision, two bytes without meaning), all little-endian. Text STL: words in any case,
// with any white space between them; several solids in one file are joined. Normals are not used.
#include "stl_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "errors.h"
#include "text.h"

namespace undercut::host {
namespace {

constexpr size_t kHeader = 84;
constexpr size_t kRecord = 50;

uint32_t read_U32(std::string_view bytes, size_t at) {
  uint32_t value = 0;
  for (size_t k = 0; k < 4; ++k) {
    value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[at + k])) << (8 * k);
  }
  return value;
}

double read_F32(std::string_view bytes, size_t at) {
  return static_cast<double>(std::bit_cast<float>(read_U32(bytes, at)));
}

[[noreturn]] void fail_NotFinite(const std::string& name, size_t triangle,
                                 const std::string& where) {
  throw InputError(name + ": triangle " + std::to_string(triangle) + where +
                   " has a coordinate that is not finite. Repair the part, or leave the triangle"
                   " out, and export it again.");
}

Soup parse_Binary(std::string_view bytes, const std::string& name) {
  const size_t count = read_U32(bytes, 80);
  Soup corners;
  corners.reserve(3 * count);
  for (size_t i = 0; i < count; ++i) {
    for (size_t k = 0; k < 3; ++k) {
      const size_t at = kHeader + kRecord * i + 12 + 12 * k;
      corners.push_back({read_F32(bytes, at), read_F32(bytes, at + 4), read_F32(bytes, at + 8)});
      if (!is_Finite(corners.back())) fail_NotFinite(name, i, "");
    }
  }
  return corners;
}

// Walks over the words of a text and knows the line that it stands in.
class Words {
 public:
  Words(std::string_view text, const std::string& name) : text_(skip_Mark(text)), name_(name) {}

  // The next word, empty at the end of the text.
  std::string_view next() {
    while (at_ < text_.size() && is_Blank(text_[at_])) {
      if (text_[at_++] == '\n') ++line_;
    }
    const size_t start = at_;
    while (at_ < text_.size() && !is_Blank(text_[at_])) ++at_;
    return text_.substr(start, at_ - start);
  }

  void expect(std::string_view wanted) {
    const std::string_view word = next();
    if (!equal_Text(word, wanted)) fail("'" + std::string(wanted) + "' expected", word);
  }

  // Skips the name behind solid or endsolid, up to the end of the line or to "facet normal".
  void skip_Name() {
    while (at_ < text_.size() && text_[at_] != '\n') {
      const size_t before = at_;
      const size_t line = line_;
      const std::string_view word = next();
      const bool facet = equal_Text(word, "facet") && equal_Text(peek(), "normal");
      if (line_ != line || facet) {
        at_ = before;
        line_ = line;
        if (facet) return;
        while (at_ < text_.size() && text_[at_] != '\n') ++at_;
      }
    }
  }

  [[noreturn]] void fail(const std::string& what, std::string_view found) const {
    const std::string end = ", but the file ends here: it seems cut off. Export it again.";
    throw InputError(where() + ": " + what +
                     (found.empty() ? end
                                    : ", found " + quote_Text(found) +
                                          ". This is no whole text STL: export it again."));
  }

  std::string where() const { return name_ + ":" + std::to_string(line_); }
  size_t line() const { return line_; }
  const std::string& name() const { return name_; }

 private:
  std::string_view peek() const {
    Words ahead = *this;
    return ahead.next();
  }

  std::string_view text_;
  const std::string& name_;
  size_t at_ = 0;
  size_t line_ = 1;
};

double parse_Coordinate(Words& words, size_t triangle) {
  const std::string_view word = words.next();
  const std::optional<double> value = parse_Double(word);
  if (!value)
    words.fail("a coordinate of triangle " + std::to_string(triangle) + " expected", word);
  if (!std::isfinite(*value)) {
    fail_NotFinite(words.name(), triangle, " (line " + std::to_string(words.line()) + ")");
  }
  return *value;
}

// What stands behind "facet". The normal's three words may be anything: they are often "nan".
void parse_Facet(Words& words, Soup& corners) {
  const size_t triangle = corners.size() / 3;
  words.expect("normal");
  for (int k = 0; k < 3; ++k) {
    const std::string_view word = words.next();
    if (word.empty()) words.fail("a normal expected", word);
  }
  words.expect("outer");
  words.expect("loop");
  for (int k = 0; k < 3; ++k) {
    words.expect("vertex");
    const double x = parse_Coordinate(words, triangle);
    const double y = parse_Coordinate(words, triangle);
    const double z = parse_Coordinate(words, triangle);
    corners.push_back({x, y, z});
  }
  words.expect("endloop");
  words.expect("endfacet");
}

Soup parse_Text(std::string_view bytes, const std::string& name) {
  Words words(bytes, name);
  Soup corners;
  for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
    if (!equal_Text(word, "solid")) words.fail("'solid' expected", word);
    words.skip_Name();
    for (word = words.next(); !equal_Text(word, "endsolid"); word = words.next()) {
      if (!equal_Text(word, "facet")) words.fail("'facet' or 'endsolid' expected", word);
      parse_Facet(words, corners);
    }
    words.skip_Name();
  }
  return corners;
}

bool is_TextStl(std::string_view bytes, const std::string& name) {
  return equal_Text(Words(bytes, name).next(), "solid");
}

[[noreturn]] void fail_NoStl(std::string_view bytes, const std::string& name) {
  std::string why = "it is shorter than the header of a binary STL";
  if (bytes.size() >= kHeader) {
    const uint64_t count = read_U32(bytes, 80);
    why = "as a binary STL its header promises " + std::to_string(count) + " triangles, that is " +
          std::to_string(kHeader + kRecord * count) + " bytes, but it has " +
          std::to_string(bytes.size());
  }
  throw InputError(name +
                   ": this is no STL, or it is cut off: it does not begin with 'solid', and " +
                   why + ". Export the part again as STL.");
}

}  // namespace

bool is_BinaryStl(std::string_view bytes) {
  return bytes.size() >= kHeader &&
         bytes.size() == kHeader + kRecord * static_cast<uint64_t>(read_U32(bytes, 80));
}

Soup parse_Stl(std::string_view bytes, const std::string& name) {
  if (bytes.empty()) throw InputError(name + ": the file is empty. Export the part again.");
  Soup corners;
  if (is_BinaryStl(bytes)) {
    corners = parse_Binary(bytes, name);
  } else if (is_TextStl(bytes, name)) {
    corners = parse_Text(bytes, name);
  } else {
    fail_NoStl(bytes, name);
  }
  if (corners.empty()) {
    throw InputError(name + ": the file holds no triangle. Check what was exported.");
  }
  return corners;
}

}  // namespace undercut::host
