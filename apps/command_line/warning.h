// What a program says besides its output.
#pragma once

#include <iostream>
#include <string>

namespace oct::app {

// One line on the standard error stream; nothing for an empty text.
inline void warn(const char* program, const std::string& text) {
  if (!text.empty()) std::cerr << program << ": warning: " << text << std::endl;
}

}  // namespace oct::app
