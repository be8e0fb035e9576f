// Numbers as files of meshes hold them.
#pragma once

#include <string>

namespace oct::app {

// All machines that this runs on keep the lowest byte first, as the formats do.
template <class T>
void append_bytes(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace oct::app
