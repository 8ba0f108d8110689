// A sorted set of small records in few contiguous blocks.
//
// Candidates come and go by the hundred thousand while a region holds some ten to a thousand at a
// time. So the records lie side by side, in the order of operator<: most sets are one block, which
// is searched without a branch and changed by moving some hundred bytes, and nothing is allocated
// for a record. A full block is split in two, which keeps a change cheap however large the set is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace undercut {

template <typename Record>
class CSortedBlocks {
 public:
  class Iterator {
   public:
    Iterator(const CSortedBlocks& set, size_t block)
        : set_(&set),
          block_(block),
          at_(block < set.blocks_.size() ? set.blocks_[block].first : 0) {}
    const Record& operator*() const { return set_->blocks_[block_].records[at_]; }
    const Record* operator->() const { return &**this; }
    Iterator& operator++() {
      if (++at_ == set_->blocks_[block_].records.size()) *this = Iterator(*set_, block_ + 1);
      return *this;
    }
    bool operator==(const Iterator& other) const {
      return block_ == other.block_ && at_ == other.at_;
    }

   private:
    const CSortedBlocks* set_;
    size_t block_, at_;
  };

  Iterator begin() const { return {*this, empty() ? blocks_.size() : 0}; }
  Iterator end() const { return {*this, blocks_.size()}; }
  size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  const Record& front() const { return blocks_.front().records[blocks_.front().first]; }

  // The record that is neither less nor greater; null for none.
  const Record* find(const Record& record) const {
    if (blocks_.empty()) return nullptr;
    const Block& block = blocks_[block_Of(record)];
    const Record* found = block.at_Least(record);
    return found == block.end() || record < *found ? nullptr : found;
  }

  // False if its like is there.
  bool insert(const Record& record) {
    if (blocks_.empty()) blocks_.emplace_back();
    const size_t b = block_Of(record);
    Block& block = blocks_[b];
    const Record* at = block.at_Least(record);
    if (at != block.end() && !(record < *at)) return false;
    block.records.insert(block.records.begin() + (at - block.records.data()), record);
    ++count_;
    if (block.records.size() == kSplit) part(b);
    return true;
  }

  // False if there is none.
  bool erase(const Record& record) {
    if (blocks_.empty()) return false;
    const size_t b = block_Of(record);
    Block& block = blocks_[b];
    const Record* found = block.at_Least(record);
    if (found == block.end() || record < *found) return false;
    block.records.erase(block.records.begin() + (found - block.records.data()));
    drop_Empty(b);
    return true;
  }

  void pop_Front() {
    ++blocks_.front().first;
    drop_Empty(0);
  }

  // Gives the memory back too.
  void clear() {
    std::vector<Block>().swap(blocks_);
    count_ = 0;
  }

 private:
  static constexpr size_t kSplit = 128;

  // Empty only where it is the only one.
  struct Block {
    std::vector<Record> records;
    size_t first = 0;  // those before it are gone

    const Record* end() const { return records.data() + records.size(); }
    // The first record that is not less; the end if all are.
    const Record* at_Least(const Record& record) const {
      const Record* low = records.data() + first;
      size_t left = records.size() - first;
      while (left != 0) {
        const size_t half = left / 2;
        const bool less = low[half] < record;
        low = less ? low + (left - half) : low;
        left = half;
      }
      return low;
    }
  };

  // The first block whose last record is not less; the last one if there is none.
  size_t block_Of(const Record& record) const {
    size_t low = 0, high = blocks_.size() - 1;
    while (low < high) {
      const size_t middle = (low + high) / 2;
      if (blocks_[middle].records.back() < record)
        low = middle + 1;
      else
        high = middle;
    }
    return low;
  }

  // Rids a full block of what is gone, or halves it.
  void part(size_t b) {
    std::vector<Record>& records = blocks_[b].records;
    const auto at = [&](size_t k) { return records.begin() + static_cast<std::ptrdiff_t>(k); };
    records.erase(at(0), at(blocks_[b].first));
    blocks_[b].first = 0;
    if (records.size() < kSplit / 2) return;
    Block upper;
    upper.records.assign(at(records.size() / 2), records.end());
    blocks_.reserve(blocks_.size() + 1);
    std::vector<Record>& lower = blocks_[b].records;
    lower.resize(lower.size() / 2);
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(b) + 1, std::move(upper));
  }

  // The only block keeps its memory for what comes next.
  void drop_Empty(size_t b) {
    --count_;
    Block& block = blocks_[b];
    if (block.first < block.records.size()) return;
    if (blocks_.size() > 1) {
      blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(b));
      return;
    }
    block.records.clear();
    block.first = 0;
  }

  std::vector<Block> blocks_;
  size_t count_ = 0;
};

}  // namespace undercut
