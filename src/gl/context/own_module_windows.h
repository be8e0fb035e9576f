// The module that this code is part of: the library, or the program that it is linked into.
#pragma once

#include <windows.h>

namespace oct::gl {

// Flags of GetModuleHandleEx beside the address; without "unchanged" the caller owns a reference. Null on failure.
inline HMODULE own_module(DWORD flags) {
  static const char anything_of_this_module = 0;
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, &anything_of_this_module, &module);
  return module;
}

}  // namespace oct::gl
