// Structs that a client's program and the library may know in different versions.
#pragma once

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace oct::api {

// The size that a client has set, in the first member. Throws std::invalid_argument with the text for null, and for a
// size that does not reach over the two first members.
template <class Struct>
unsigned int size_of(const Struct* target, const char* failure) {
  if (!target || target->size < 2 * sizeof(unsigned int)) throw std::invalid_argument(failure);
  return target->size;
}

// Writes as much as the client has room for: a client of an older header knows fewer members.
template <class Struct>
void give(const Struct& all, Struct& target) {
  std::memcpy(&target, &all, std::min<std::size_t>(all.size, sizeof all));
}

}  // namespace oct::api
