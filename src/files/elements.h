// What the writers share: checks before a file is opened, the choice of coordinates, and the
// writing of a file for each element of a list.
#pragma once

#include <cstdint>

#include "files/paths.h"
#include "foundation/arrays.h"
#include "foundation/parallel.h"

namespace undercut {

// TArr and TLst.
template <typename List>
bool is_Empty(const List& list) {
  return !list.data || list.count == 0;
}

template <typename List>
bool has_Ids(const TArr<uint32_t>& ids, const List& list) {
  return ids.data && ids.count >= list.count;
}

inline bool ok_Ids(const T3DMSH& msh, const TLst<uint32_t>& ids) {
  return holds_All(ids.count, [&](uint32_t i) { return ids.data[i] < msh.n_tri; });
}

// Points as they are, and points in the coordinates of a frame.
struct InPlace {
  const T3DVEC& operator()(const T3DVEC& p) const { return p; }
};
struct InFrame {
  const T3DFRM& frm;
  T3DVEC operator()(const T3DVEC& p) const { return to_Local(frm, p); }
};

// write(name, list) for each list, as "<base>-<number><extension>" with at least `digits` digits,
// up to the first failure; number_of(i) is the number of list i.
template <typename NumberOf, typename Write>
bool write_Lists(const char* base, const TLst<TLst<uint32_t>>& lists, NumberOf number_of,
                 int digits, const char* extension, Write write) {
  if (!base || is_Empty(lists)) return false;
  for (uint32_t i = 0; i < lists.count; ++i) {
    char name[kNameSize];
    const int number = static_cast<int>(number_of(i));
    if (!fmt_Name(name, "%s-%0*d%s", base, digits, number, extension)) return false;
    if (!write(name, lists.data[i])) return false;
  }
  return true;
}

// The same with numbers from an id array.
template <typename Write>
bool write_Lists(const char* base, const TLst<TLst<uint32_t>>& lists, const TArr<uint32_t>& ids,
                 int digits, const char* extension, Write write) {
  return has_Ids(ids, lists) &&
         write_Lists(
             base, lists, [&ids](uint32_t i) { return ids.data[i]; }, digits, extension, write);
}

// write(name, element) for each element, as "<base>-lnd(<id>)<extension>", past failures too.
template <typename List, typename Write>
bool write_Elements(const char* base, const List& list, const TArr<uint32_t>& ids,
                    const char* extension, Write write) {
  if (!base || is_Empty(list) || !has_Ids(ids, list)) return false;
  bool all = true;
  for (uint32_t i = 0; i < list.count; ++i) {
    char name[kNameSize];
    const int id = static_cast<int>(ids.data[i]);
    if (!fmt_Name(name, "%s-lnd(%03d)%s", base, id, extension) || !write(name, list.data[i]))
      all = false;
  }
  return all;
}

}  // namespace undercut
