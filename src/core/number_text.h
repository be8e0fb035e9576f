// Numbers in texts for people.
#pragma once

#include <cstdio>
#include <string>

namespace oct {

// In as few digits as tell it, six at most.
inline std::string text_of(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", number);
  return text;
}

}  // namespace oct
