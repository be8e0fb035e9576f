// An array between guard words, at any distance from an aligned address.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace oct::vec::test {

template <class Value>
class GuardedArray {
 public:
  // offset: places beyond a multiple of 64 bytes
  GuardedArray(std::size_t size, std::size_t offset)
      : bytes_((size + offset) * sizeof(Value) + 3 * guard), size_(size) {
    std::memset(bytes_.data(), pattern, bytes_.size());
    const auto address = reinterpret_cast<std::uintptr_t>(bytes_.data()) + guard;
    const std::uintptr_t aligned = (address + 63) / 64 * 64;
    first_ = guard + (aligned - address) + offset * sizeof(Value);
  }

  Value* data() { return reinterpret_cast<Value*>(bytes_.data() + first_); }
  Value& operator[](std::size_t i) { return data()[i]; }

  // Whether everything but the array is as it was.
  bool is_intact_around() const {
    const auto is_as_before = [](unsigned char byte) { return byte == pattern; };
    const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(first_);
    const auto end = begin + static_cast<std::ptrdiff_t>(size_ * sizeof(Value));
    return std::all_of(bytes_.begin(), begin, is_as_before) && std::all_of(end, bytes_.end(), is_as_before);
  }

  // Bit for bit, so that NaN equals itself.
  bool operator==(const GuardedArray& other) const {
    return size_ == other.size_ && std::memcmp(bytes_.data() + first_, other.bytes_.data() + other.first_,
                                               size_ * sizeof(Value)) == 0;
  }

 private:
  static constexpr std::size_t guard = 128;
  static constexpr unsigned char pattern = 0xA5;

  std::vector<unsigned char> bytes_;
  std::size_t size_;
  std::size_t first_ = 0;
};

}  // namespace oct::vec::test
