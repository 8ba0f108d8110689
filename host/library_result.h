// A result record of the library that releases its arrays however its reader ends.
#pragma once

#include <undercut/exports.h>

#include <vector>

namespace undercut::host {

struct LibraryResult {
  TUcRes record{};
  LibraryResult() { ini_Res(&record); }
  LibraryResult(const LibraryResult&) = delete;
  LibraryResult& operator=(const LibraryResult&) = delete;
  ~LibraryResult() { clr_Res(&record); }
};

// A list of a result, to keep.
inline std::vector<uint32_t> copy_List(const TLstU32& list) {
  return {list.data, list.data + list.count};
}

}  // namespace undercut::host
