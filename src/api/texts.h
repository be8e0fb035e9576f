// Texts that go into a client's buffer.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

namespace oct::api {

// Writes the text up to its first NUL, as any C string, cut to `size` bytes with its end. Writes nothing into null or
// into no bytes.
inline void give_text(const std::string& text, char* buffer, int size) {
  if (!buffer || size <= 0) return;
  const std::size_t length = std::min(std::strlen(text.c_str()), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.c_str(), length);
  buffer[length] = '\0';
}

}  // namespace oct::api
