// Why a picture is empty, as the library explains it.
#pragma once

#include <string>

#include "client/checked.h"

namespace oct::app {

// Of the last frame, by explainFrame or explainDisplay; empty when it shows something.
template <class Handle>
std::string explanation_of(int (*explain)(Handle, char*, int), Handle handle) {
  std::string text(2000, '\0');
  checked(explain, handle, text.data(), static_cast<int>(text.size()));
  text.resize(text.find('\0'));
  return text;
}

}  // namespace oct::app
