// A named block of memory that the processes of a user share. One source per platform.
#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace oct {

class SharedBlock {
 public:
  static constexpr std::size_t size = 1024;  // bytes
  using Bytes = std::array<char, size>;

  // Opens the block, or makes it with every byte 0. Throws a std::exception when neither is possible, and for
  // a block that another user has made: who owns it can direct what this process writes.
  explicit SharedBlock(const char* name);
  ~SharedBlock();
  SharedBlock(const SharedBlock&) = delete;
  SharedBlock& operator=(const SharedBlock&) = delete;

  // A reader sees what one writer has written.
  Bytes read() const;
  void write(const Bytes& bytes);

 private:
  struct Mapping;
  std::unique_ptr<Mapping> mapping_;
};

}  // namespace oct
