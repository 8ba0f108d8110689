// Memory for values that are written before they are read: nothing is cleared or copied when it
// grows, and it is kept from one use to the next.
#pragma once

#include <cstddef>
#include <memory>

namespace undercut {

template <typename T>
class CScratch {
 public:
  // Room for at least so many; what was there is lost where there was less. Throws std::bad_alloc.
  void resize(size_t count) {
    if (count <= capacity_) return;
    data_.reset();
    capacity_ = 0;
    data_ = std::make_unique_for_overwrite<T[]>(count);
    capacity_ = count;
  }
  T* data() { return data_.get(); }
  const T* data() const { return data_.get(); }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }

 private:
  std::unique_ptr<T[]> data_;
  size_t capacity_ = 0;
};

}  // namespace undercut
