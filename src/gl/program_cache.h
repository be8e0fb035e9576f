// Program binaries of this process, by program.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gl/gl.h"

namespace oct::gl {

struct ProgramBinary {
  GLenum format = 0;
  std::vector<unsigned char> bytes;
};

// A program is known by its source lengths and its name; the texts are not compared. Its binary is good for the
// driver that made it.
struct ProgramKey {
  std::pair<std::size_t, std::size_t> source_lengths;  // fragment, vertex
  std::string name;
  std::string driver;
  auto operator<=>(const ProgramKey&) const = default;
};

// Null when there is none. Safe from any thread; a binary stays alive while somebody holds it.
std::shared_ptr<const ProgramBinary> find_program_binary(const ProgramKey& key);
void store_program_binary(const ProgramKey& key, ProgramBinary binary);

}  // namespace oct::gl
