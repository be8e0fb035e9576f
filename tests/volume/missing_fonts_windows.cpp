#include "volume/missing_fonts.h"

#include <windows.h>

// This program's entry for the function in its table of imports.
extern "C" decltype(&DrawTextA) imported_draw_text asm("__imp_DrawTextA");

namespace oct::test {
namespace {

decltype(&DrawTextA) draw_text = nullptr;

// Without any font GDI gives font objects all the same, and then measures and draws nothing.
int WINAPI draw_nothing(HDC, LPCSTR, int, LPRECT, UINT) {
  return 0;
}

void set_import(decltype(&DrawTextA) function) {
  DWORD protection = 0;
  VirtualProtect(&imported_draw_text, sizeof imported_draw_text, PAGE_READWRITE, &protection);
  imported_draw_text = function;
  VirtualProtect(&imported_draw_text, sizeof imported_draw_text, protection, &protection);
}

}  // namespace

MissingFonts::MissingFonts() {
  draw_text = imported_draw_text;
  set_import(draw_nothing);
}

MissingFonts::~MissingFonts() {
  set_import(draw_text);
}

}  // namespace oct::test
