// Allocation and release of the plain array records. Arrays are allocated once at their final size
// and never grow. Every allocation is told by false, never by an exception; a count of 0 succeeds
// and leaves the record empty.
#pragma once

#include <cstdint>
#include <new>
#include <type_traits>

#include "foundation/records.h"
#include "foundation/values.h"

namespace undercut {

// `count` elements without a value, or null. Plain records only; freed by free_Array.
template <typename T>
T* new_Array(uint64_t count) {
  static_assert(std::is_trivially_copyable_v<T>);
  if (count > SIZE_MAX / sizeof(T)) return nullptr;
  return static_cast<T*>(::operator new(count * sizeof(T), std::nothrow));
}

// All zero, on several threads where it is much: pages of memory that is new come with the first
// write to them, and that takes longer than the writing.
void clear_Bytes(void* data, uint64_t count);

// The same with every byte zero.
template <typename T>
T* new_Zeroed(uint64_t count) {
  T* data = new_Array<T>(count);
  if (data) clear_Bytes(data, count * sizeof(T));
  return data;
}

inline void free_Array(const void* data) { ::operator delete(const_cast<void*>(data)); }

template <typename T>
void reset(TArr<T>& arr) {
  arr.data = nullptr;
  arr.count = 0;
}
template <typename T>
void reset(TLst<T>& lst) {
  lst.data = nullptr;
  lst.count = 0;
  lst.capacity = 0;
}

// Room for `count` elements, all zero; count is set.
template <typename T>
bool alloc(TArr<T>& arr, uint32_t count) {
  reset(arr);
  if (count == 0) return true;
  arr.data = new_Zeroed<T>(count);
  if (!arr.data) return false;
  arr.count = count;
  return true;
}

// Room for `capacity` elements, all zero (so inner records are empty); count stays 0.
template <typename T>
bool alloc(TLst<T>& lst, uint32_t capacity) {
  reset(lst);
  if (capacity == 0) return true;
  lst.data = new_Zeroed<T>(capacity);
  if (!lst.data) return false;
  lst.capacity = capacity;
  return true;
}

// Release: frees what an element holds, level by level, then the array; the record ends empty.
template <typename T>
void release(TArr<T>& arr);
template <typename T>
void release(TLst<T>& lst);
template <typename T>
void release(T&) {}  // holds nothing
inline void release(T3DMSH& msh) {
  free_Array(msh.vtx);
  free_Array(msh.tri);
  msh = {};
}
inline void release(T3DPOL& pol) {
  free_Array(pol.pnt);
  free_Array(pol.sgm);
  pol = {};
}
inline void release(T2DPOL& pol) {
  free_Array(pol.pnt);
  free_Array(pol.sgm);
  pol = {};
}
template <typename T>
void release(TArr<T>& arr) {
  for (uint32_t i = 0; arr.data && i < arr.count; ++i) release(arr.data[i]);
  free_Array(arr.data);
  reset(arr);
}
// Walks the capacity: slots beyond the count are empty records, or partly filled ones of a writer
// that failed.
template <typename T>
void release(TLst<T>& lst) {
  for (uint32_t i = 0; lst.data && i < lst.capacity; ++i) release(lst.data[i]);
  free_Array(lst.data);
  reset(lst);
}

// Room for a mesh; does nothing and succeeds if either count is 0.
bool alloc_Msh(T3DMSH& msh, uint32_t n_vtx, uint32_t n_tri);
// Room for a polyline; fails unless both counts are above 0.
bool alloc_Pol(T3DPOL& pol, uint32_t n_pnt, uint32_t n_sgm);
bool alloc_Pol(T2DPOL& pol, uint32_t n_pnt, uint32_t n_sgm);
// Drops z; segments are copied.
bool flat_Pol(const T3DPOL& src, T2DPOL& dst);

// Both arrays and both counts are there.
inline bool is_Usable(const T3DMSH& msh) {
  return msh.vtx && msh.tri && msh.n_vtx != 0 && msh.n_tri != 0;
}

inline bool ok_Corners(const T3DMSH& msh, const T3DTRI& tri) {
  return tri.a < msh.n_vtx && tri.b < msh.n_vtx && tri.c < msh.n_vtx;
}
// Whether every triangle names vertices of the mesh, which is there.
bool ok_Vertices(const T3DMSH& msh);

// Ends the life of a record with its scope. Moves nowhere; `take` hands the record out.
template <typename Record>
class Scoped {
 public:
  Scoped() = default;
  ~Scoped() { release(record_); }
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;

  Record& operator*() { return record_; }
  Record* operator->() { return &record_; }
  Record take() {
    const Record out = record_;
    record_ = {};
    return out;
  }

 private:
  Record record_ = {};
};

}  // namespace undercut
