// .txt: lists of indices.
#include "files/elements.h"
#include "files/file.h"
#include "files/writers.h"

namespace undercut {

bool txt_Ids(const char* path, const TLst<uint32_t>& ids) {
  if (is_Empty(ids)) return false;
  File file(path);
  if (!file) return false;
  for (uint32_t i = 0; i < ids.count; ++i) file.printf("%d\n", static_cast<int>(ids.data[i]));
  return true;
}

bool txt_IdLst(const char* base, const TLst<TLst<uint32_t>>& lists, const TArr<uint32_t>& ids) {
  // One digit at least: no leading zeros.
  return write_Lists(base, lists, ids, 1, ".txt", txt_Ids);
}

}  // namespace undercut
