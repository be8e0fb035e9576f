#include "core/shared_block.h"

namespace oct {

// Writers of several processes share no lock. What two readings in a row agree on is one writer's.
SharedBlock::Bytes SharedBlock::read() const {
  constexpr int attempts = 100;
  Bytes bytes = read_once();
  for (int i = 0; i < attempts; ++i) {
    const Bytes again = read_once();
    if (again == bytes) break;
    bytes = again;
  }
  return bytes;
}

}  // namespace oct
