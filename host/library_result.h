// A result record of the library that releases its arrays however its reader ends.
#pragma once

#include <undercut/exports.h>

namespace undercut::host {

struct LibraryResult {
  TUcRes record{};
  LibraryResult() { ini_Res(&record); }
  LibraryResult(const LibraryResult&) = delete;
  LibraryResult& operator=(const LibraryResult&) = delete;
  ~LibraryResult() { clr_Res(&record); }
};

}  // namespace undercut::host
