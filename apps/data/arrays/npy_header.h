// The header of a .npy file: a Python dictionary that gives element type, memory order and shape.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/arrays/byte_stream.h"

namespace oct::app {

struct NpyHeader {
  std::string type;  // as the file spells it, such as "<f4"
  bool fortran_order = false;
  std::vector<std::uint64_t> shape;
  std::uint64_t data_offset = 0;
};

// Leaves the stream at the first data byte.
NpyHeader read_npy_header(ByteStream& stream);

}  // namespace oct::app
