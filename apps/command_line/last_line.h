// The end of what a program wrote.
#pragma once

#include <string>

namespace oct::app {

// The last line that is not empty.
inline std::string last_line_of(std::string text) {
  constexpr char ends[] = "\r\n \t";
  text.erase(text.find_last_not_of(ends) + 1);
  return text.substr(text.find_last_of("\r\n") + 1);
}

}  // namespace oct::app
