#include "volume/missing_fonts.h"

#include <utility>

#include <windows.h>

// This program's entry for the function in its table of imports.
extern "C" decltype(&DrawTextA) imported_draw_text asm("__imp_DrawTextA");

namespace oct::test {
namespace {

// Without any font GDI gives font objects all the same, and then measures and draws nothing.
int WINAPI draw_nothing(HDC, LPCSTR, int, LPRECT, UINT) {
  return 0;
}

decltype(&DrawTextA) other = draw_nothing;  // than the one that is in use

}  // namespace

void hide_fonts() {
  DWORD protection = 0;
  VirtualProtect(&imported_draw_text, sizeof imported_draw_text, PAGE_READWRITE, &protection);
  std::swap(imported_draw_text, other);
  VirtualProtect(&imported_draw_text, sizeof imported_draw_text, protection, &protection);
}

void show_fonts() {
  hide_fonts();
}

}  // namespace oct::test
