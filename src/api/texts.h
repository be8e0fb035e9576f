// Texts that go into a client's buffer.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "oct_rendering/types.h"

namespace oct::api {

// Writes the text up to its first NUL, as any C string, cut to `size` bytes with its end. Writes nothing into null or
// into no bytes.
inline void give_text(const std::string& text, char* buffer, int size) {
  if (!buffer || size <= 0) return;
  const std::size_t length = std::min(std::strlen(text.c_str()), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.c_str(), length);
  buffer[length] = '\0';
}

// For exports that tell an error; none leaves the buffer as it is.
inline int give_error(const std::optional<std::string>& error, char* buffer, int size) {
  if (!error) return 0;
  give_text(*error, buffer, size);
  return OCT_RENDERER_ERROR;
}

// For exports that explain a picture. What fails on the way leaves an empty text.
template <class Explain>
int give_explanation(Explain&& explain, char* buffer, int size) {
  give_text("", buffer, size);
  const std::string explanation = explain();
  give_text(explanation, buffer, size);
  return explanation.empty() ? 0 : 1;
}

}  // namespace oct::api
