// A named block of memory that all processes of the machine share. One source per platform.
#pragma once

#include <cstddef>
#include <memory>

namespace oct {

class SharedBlock {
 public:
  // Opens the block, or makes it with every byte 0. Throws a std::exception when neither is possible.
  SharedBlock(const char* name, std::size_t size);
  ~SharedBlock();
  SharedBlock(const SharedBlock&) = delete;
  SharedBlock& operator=(const SharedBlock&) = delete;

  char* data() const;

 private:
  struct Mapping;
  std::unique_ptr<Mapping> mapping_;
};

}  // namespace oct
