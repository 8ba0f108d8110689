// A set of bits over triangles or vertices.
#pragma once

#include <algorithm>
#include <cstdint>

#include "foundation/parallel.h"
#include "foundation/records.h"

namespace undercut {

// Bit i lives in byte i / 8 under the mask 128 >> (i % 8). Bits of the last byte beyond the logical
// size exist, and the whole-array operations change them; `count` and `is_Empty` stop at the size.
class CBitVector {
 public:
  CBitVector() = default;
  CBitVector(const CBitVector& other);  // empty if memory is exhausted
  CBitVector& operator=(const CBitVector& other);
  virtual ~CBitVector();

  // Releases, then holds `bits` clear bits; false for 0 bits or no memory.
  bool init(uint64_t bits);
  void release();

  // False if the index is out of range. Setting is safe beside other settings, from any thread: two
  // threads may set bits of one byte. Clearing is not.
  bool set(uint64_t index);
  bool clear(uint64_t index);
  bool test(uint64_t index) const {
    return index < bits_ && data_ && (data_[index >> 3] & (128u >> (index & 7))) != 0;
  }
  bool test_Not(uint64_t index) const { return !test(index); }  // true out of range
  // The run from first to last, inclusive, to one value, whole bytes at a time; false, and no
  // change, if it is out of range or reversed.
  bool fill(uint64_t first, uint64_t last, bool value);

  bool is_Valid() const { return data_ && capacity_ && bytes_ && bits_; }
  void set_All();
  void clear_All();
  void flip_All();
  uint64_t count() const;
  bool is_Empty() const;  // false if not valid

  // Bit i to test(i), for all bits at once, in parallel; those beyond the size are cleared.
  template <typename Test>
  void assign(const Test& test) {
    for (uint64_t first = 0; first < bytes_; first += UINT32_MAX)
      each_Index(static_cast<uint32_t>(std::min<uint64_t>(bytes_ - first, UINT32_MAX)),
                 [&](uint32_t i) { data_[first + i] = pack((first + i) * 8, test); });
  }

  // Over the bytes that both have; the rest stays.
  CBitVector& operator&=(const CBitVector& other);
  CBitVector& operator|=(const CBitVector& other);
  friend CBitVector operator&(CBitVector a, const CBitVector& b) { return a &= b; }
  friend CBitVector operator|(CBitVector a, const CBitVector& b) { return a |= b; }

  // A byte for each bit.
  bool from_Bytes(const uint8_t* bytes, uint64_t size);
  bool to_Bytes(TArr<uint8_t>& bytes) const;
  // Indices of set bits in rising order; the list is allocated at their number.
  bool to_Lst(TLst<uint32_t>& lst) const;
  // Indices at or beyond `bits` are passed over.
  bool from_Lst(const TLst<uint32_t>& lst, uint64_t bits);

  uint64_t capacity() const { return capacity_; }
  uint64_t bytes() const { return bytes_; }
  uint64_t size() const { return bits_; }
  const uint8_t* data() const { return data_; }

 private:
  // The byte that begins with a bit.
  template <typename Test>
  uint8_t pack(uint64_t first, const Test& test) const {
    unsigned byte = 0;
    for (uint64_t i = first; i < first + 8; ++i)
      byte = byte << 1 | (i < bits_ && test(i) ? 1u : 0u);
    return static_cast<uint8_t>(byte);
  }

  uint8_t* data_ = nullptr;
  uint64_t capacity_ = 0;
  uint64_t bytes_ = 0;
  uint64_t bits_ = 0;
};

}  // namespace undercut
