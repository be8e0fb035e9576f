// Numbers in texts for people.
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace oct {

// In as few digits as tell it, six at most, and with a point whatever the client's language is.
inline std::string text_of(double number) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 6).ptr;
  return {text.data(), end};
}

}  // namespace oct
