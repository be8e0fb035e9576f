// Texts for clients.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

namespace oct::api {

// Up to the first NUL, as any C string, cut to what the buffer holds with its end. Null takes nothing.
inline void copy_text(const std::string& text, char* buffer, int size) {
  if (!buffer || size <= 0) return;
  const std::size_t length = std::min(std::strlen(text.c_str()), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.c_str(), length);
  buffer[length] = '\0';
}

}  // namespace oct::api
