// A set of bits, most significant bit of each byte first.
#include "foundation/bit_vector.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>

#include "foundation/arrays.h"

namespace undercut {

namespace {

uint8_t get_Mask(uint64_t index) { return static_cast<uint8_t>(128u >> (index & 7)); }

// The bits of a byte from position `first` on, and those up to position `last`.
uint8_t mask_From(uint64_t first) { return static_cast<uint8_t>(0xFFu >> (first & 7)); }
uint8_t mask_UpTo(uint64_t last) { return static_cast<uint8_t>(0xFFu << (7 - (last & 7))); }

void put_Bits(uint8_t& byte, unsigned mask, bool value) {
  byte = static_cast<uint8_t>(value ? byte | mask : byte & ~mask);
}

}  // namespace

CBitVector::CBitVector(const CBitVector& other) { *this = other; }

CBitVector& CBitVector::operator=(const CBitVector& other) {
  if (this == &other) return *this;
  release();
  if (other.is_Valid() && init(other.bits_)) std::memcpy(data_, other.data_, bytes_);
  return *this;
}

CBitVector::~CBitVector() { release(); }

bool CBitVector::init(uint64_t bits) {
  release();
  if (bits == 0) return false;
  const uint64_t bytes = bits / 8 + (bits % 8 != 0);
  data_ = new_Zeroed<uint8_t>(bytes);
  if (!data_) return false;
  capacity_ = bytes * 8;
  bytes_ = bytes;
  bits_ = bits;
  return true;
}

void CBitVector::release() {
  free_Array(data_);
  data_ = nullptr;
  capacity_ = bytes_ = bits_ = 0;
}

bool CBitVector::set(uint64_t index) {
  if (!data_ || index >= bits_) return false;
  // Threads set neighbouring bits of one byte at once. Only the final bits matter, so no order
  // between them is needed, and a bit that is set already costs no locked write.
  std::atomic_ref<uint8_t> byte(data_[index >> 3]);
  const uint8_t mask = get_Mask(index);
  if ((byte.load(std::memory_order_relaxed) & mask) == 0)
    byte.fetch_or(mask, std::memory_order_relaxed);
  return true;
}

bool CBitVector::clear(uint64_t index) {
  if (!data_ || index >= bits_) return false;
  put_Bits(data_[index >> 3], get_Mask(index), false);
  return true;
}

bool CBitVector::fill(uint64_t first, uint64_t last, bool value) {
  if (!data_ || last >= bits_ || first > last) return false;
  const uint64_t a = first >> 3, b = last >> 3;
  if (a == b) {
    put_Bits(data_[a], mask_From(first) & mask_UpTo(last), value);
    return true;
  }
  put_Bits(data_[a], mask_From(first), value);
  std::memset(data_ + a + 1, value ? 0xFF : 0, b - a - 1);
  put_Bits(data_[b], mask_UpTo(last), value);
  return true;
}

void CBitVector::set_All() {
  if (data_) std::memset(data_, 0xFF, bytes_);
}

void CBitVector::clear_All() {
  if (data_) std::memset(data_, 0, bytes_);
}

void CBitVector::flip_All() {
  for (uint64_t i = 0; i < bytes_; ++i) data_[i] = static_cast<uint8_t>(~data_[i]);
}

uint64_t CBitVector::count() const {
  if (!is_Valid()) return 0;
  const uint64_t whole = bits_ / 8;
  uint64_t sum = 0, i = 0;
  // Sets are sparse: eight empty bytes are passed over at once.
  for (uint64_t word; i + 8 <= whole; i += 8) {
    std::memcpy(&word, data_ + i, 8);
    if (word) sum += static_cast<uint64_t>(std::popcount(word));
  }
  for (; i < whole; ++i) sum += static_cast<uint64_t>(std::popcount(data_[i]));
  for (uint64_t bit = whole * 8; bit < bits_; ++bit) sum += test(bit);
  return sum;
}

bool CBitVector::is_Empty() const {
  if (!is_Valid()) return false;
  const uint8_t* last = data_ + bytes_ - 1;
  return std::all_of<const uint8_t*>(data_, last, [](uint8_t byte) { return byte == 0; }) &&
         (*last & mask_UpTo(bits_ - 1)) == 0;
}

CBitVector& CBitVector::operator&=(const CBitVector& other) {
  const uint64_t common = std::min(bytes_, other.bytes_);
  for (uint64_t i = 0; i < common; ++i) data_[i] &= other.data_[i];
  return *this;
}

CBitVector& CBitVector::operator|=(const CBitVector& other) {
  const uint64_t common = std::min(bytes_, other.bytes_);
  for (uint64_t i = 0; i < common; ++i) data_[i] |= other.data_[i];
  return *this;
}

bool CBitVector::from_Bytes(const uint8_t* bytes, uint64_t size) {
  if (!bytes || size == 0 || !init(size)) return false;
  for (uint64_t i = 0; i < size; ++i)
    if (bytes[i]) data_[i >> 3] |= get_Mask(i);
  return true;
}

bool CBitVector::to_Bytes(TArr<uint8_t>& bytes) const {
  reset(bytes);
  if (!is_Valid() || bits_ > UINT32_MAX || !alloc(bytes, static_cast<uint32_t>(bits_)))
    return false;
  each_Index(
      bytes.count, [&](uint32_t i) { bytes.data[i] = test(i); }, kWorthIfLight);
  return true;
}

bool CBitVector::to_Lst(TLst<uint32_t>& lst) const {
  reset(lst);
  if (!is_Valid() || bits_ > UINT32_MAX || !alloc(lst, static_cast<uint32_t>(count())))
    return false;
  uint32_t n = 0;
  for (uint64_t i = 0; i < bytes_; ++i) {
    if (data_[i] == 0) continue;
    for (uint64_t bit = i * 8; bit < i * 8 + 8; ++bit)
      if (test(bit)) lst.data[n++] = static_cast<uint32_t>(bit);
  }
  lst.count = n;
  return true;
}

bool CBitVector::from_Lst(const TLst<uint32_t>& lst, uint64_t bits) {
  if ((!lst.data && lst.count) || !init(bits)) return false;
  for (uint32_t i = 0; i < lst.count; ++i) {
    const uint64_t index = lst.data[i];
    if (index < bits_) data_[index >> 3] |= get_Mask(index);
  }
  return true;
}

}  // namespace undercut
