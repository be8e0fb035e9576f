#include "octview/window/clipboard.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <windows.h>

namespace oct::app {
namespace {

struct FreeGlobal {
  void operator()(void* memory) const { GlobalFree(memory); }
};

class OpenedClipboard {
 public:
  OpenedClipboard() {
    if (!OpenClipboard(nullptr)) throw std::runtime_error("Another program holds the clipboard");
  }
  ~OpenedClipboard() { CloseClipboard(); }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;
};

}  // namespace

// A device-independent bitmap: rows from the bottom, blue first, each row a whole number of four bytes.
bool copy_picture(const Picture& picture) {
  const std::size_t width = picture.size.width, height = picture.size.height;
  const std::size_t row_bytes = (width * 3 + 3) / 4 * 4;
  std::unique_ptr<void, FreeGlobal> memory(
      GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(BITMAPINFOHEADER) + row_bytes * height));
  auto* const bytes = memory ? static_cast<std::byte*>(GlobalLock(memory.get())) : nullptr;
  if (!bytes) throw std::runtime_error("There is not enough memory for a copy of the picture");
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = static_cast<LONG>(width);
  header.biHeight = static_cast<LONG>(height);
  header.biPlanes = 1;
  header.biBitCount = 24;
  header.biCompression = BI_RGB;
  std::memcpy(bytes, &header, sizeof header);
  for (std::size_t row = 0; row < height; ++row) {
    std::byte* pixel = bytes + sizeof header + (height - 1 - row) * row_bytes;
    const std::uint8_t* source = &picture.pixels[row * width * picture.channels];
    for (std::size_t column = 0; column < width; ++column, pixel += 3, source += picture.channels) {
      for (std::size_t i = 0; i < 3; ++i) pixel[i] = std::byte{source[2 - i]};
    }
  }
  GlobalUnlock(memory.get());
  const OpenedClipboard clipboard;
  if (!EmptyClipboard() || !SetClipboardData(CF_DIB, memory.get()))
    throw std::runtime_error("The clipboard does not take the picture");
  static_cast<void>(memory.release());  // the clipboard's from now on
  return true;
}

}  // namespace oct::app
