// A file that is written and then closed with its scope.
//
// Numbers are formatted as in the C locale, whatever locale the host has set: the locale of the
// calling thread is exchanged for the time of one call. Writes are not checked one by one.
#pragma once

#include <locale.h>

#include <cstddef>
#include <cstdio>

#include "foundation/records.h"

namespace undercut {

class File {
 public:
  // Creates or empties the file; a null path opens nothing. `mode` is "w" or "wb".
  explicit File(const char* path, const char* mode = "w");
  ~File();
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  // False if the file could not be opened; nothing may be written then.
  explicit operator bool() const { return stream_ != nullptr; }

  __attribute__((format(printf, 2, 3))) void printf(const char* format, ...);
  void write(const void* bytes, size_t size);
  // Ends the file before its scope does; true if all of it was written.
  bool close();
  void point(const T3DVEC& p) { printf("%lf %lf %lf\n", p.x, p.y, p.z); }

 private:
  FILE* stream_;
  locale_t locale_;
};

}  // namespace undercut
