#include <windows.h>

#include "volume/missing_fonts.h"

// This program's entry for the function in its table of imports.
extern "C" decltype(&DrawTextA) importedDrawText asm("__imp_DrawTextA");

namespace oct::test {
namespace {

decltype(&DrawTextA) drawText = nullptr;

// Without any font GDI gives font objects all the same, and then measures and draws nothing.
int WINAPI drawNothing(HDC, LPCSTR, int, LPRECT, UINT) {
  return 0;
}

void setImport(decltype(&DrawTextA) function) {
  DWORD protection = 0;
  VirtualProtect(&importedDrawText, sizeof importedDrawText, PAGE_READWRITE, &protection);
  importedDrawText = function;
  VirtualProtect(&importedDrawText, sizeof importedDrawText, protection, &protection);
}

}  // namespace

MissingFonts::MissingFonts() {
  drawText = importedDrawText;
  setImport(drawNothing);
}

MissingFonts::~MissingFonts() {
  setImport(drawText);
}

}  // namespace oct::test
