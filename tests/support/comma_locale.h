// A host whose numbers have a decimal comma.
#pragma once

#include <locale.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/files/support.h"

namespace undercut {

// Runs with a locale whose decimal sign is a comma; builds one where the system has none.
class CommaLocale : public InFolder {
 protected:
  void SetUp() override {
    InFolder::SetUp();
    uselocale(LC_GLOBAL_LOCALE);  // what an earlier test has left must not hide the host's
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
      if (set(name)) return;
    const char* make = "localedef -i de_DE -f ISO-8859-1 ./comma >/dev/null 2>&1";
    if (std::system(make) == 0) {
      setenv("LOCPATH", folder().c_str(), 1);
      const bool is_Set = set("comma");
      unsetenv("LOCPATH");
      if (is_Set) return;
    }
    GTEST_SKIP() << "no locale with a decimal comma on this machine";
  }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    InFolder::TearDown();
  }

  static std::string half() {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    return text;
  }

 private:
  static bool set(const char* name) { return std::setlocale(LC_ALL, name) && half() == "0,5"; }
};

}  // namespace undercut
