// FNV-1a, 64 bit (Fowler, Noll, Vo 1991): tells whether two results are the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace undercut::tests {

class CHash {
 public:
  void add(const void* bytes, size_t size) {
    const auto* p = static_cast<const unsigned char*>(bytes);
    for (size_t i = 0; i < size; ++i) value_ = (value_ ^ p[i]) * 1099511628211u;
  }
  // For types without padding only.
  template <typename T>
  void add_Value(const T& value) {
    add(&value, sizeof value);
  }
  // The elements of a TArr, a TLst or a vector.
  template <typename T>
  void add_Array(const T* data, size_t count) {
    for (size_t i = 0; i < count; ++i) add_Value(data[i]);
  }
  // A TArr or a TLst: its count and its elements.
  template <typename List>
  void add_List(const List& list) {
    add(&list.count, sizeof list.count);
    add_Array(list.data, list.count);
  }
  // The lists of a list.
  template <typename Lists>
  void add_Lists(const Lists& lists) {
    for (uint32_t i = 0; i < lists.count; ++i) add_List(lists.data[i]);
  }
  uint64_t value() const { return value_; }

 private:
  uint64_t value_ = 14695981039346656037u;
};

}  // namespace undercut::tests
