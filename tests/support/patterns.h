// Extended regular expressions against whole texts, by the C library's matcher: that of the
// standard library draws false warnings from gcc 12 in builds with a sanitizer.
#pragma once

#include <gtest/gtest.h>
#include <regex.h>

#include <string>
#include <vector>

namespace undercut::tests {

using Groups = std::vector<std::string>;  // the whole text, then what stands in each parenthesis

class Pattern {
 public:
  explicit Pattern(const std::string& text) {
    EXPECT_EQ(regcomp(&compiled_, ("^" + text + "$").c_str(), REG_EXTENDED), 0) << text;
  }
  ~Pattern() { regfree(&compiled_); }
  Pattern(const Pattern&) = delete;
  Pattern& operator=(const Pattern&) = delete;

  bool match(const std::string& text) const {
    return regexec(&compiled_, text.c_str(), 0, nullptr, 0) == 0;
  }
  bool match(const std::string& text, Groups& groups) const {
    regmatch_t found[8];
    if (regexec(&compiled_, text.c_str(), 8, found, 0) != 0) return false;
    groups.clear();
    for (const regmatch_t& part : found)
      groups.push_back(part.rm_so < 0 ? std::string()
                                      : text.substr(static_cast<size_t>(part.rm_so),
                                                    static_cast<size_t>(part.rm_eo - part.rm_so)));
    return true;
  }

 private:
  regex_t compiled_ = {};
};

}  // namespace undercut::tests
