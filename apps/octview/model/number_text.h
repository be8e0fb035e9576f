// Numbers as text that reads back as the same number, whatever the locale.
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace oct::app {

template <class Number>
std::string number_text(Number value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

}  // namespace oct::app
