#include "volume/text/text_rasteriser.h"

#include <cstring>

#include <windows.h>

#include "core/exception.h"
#include "core/platform.h"

namespace oct {
namespace {

// An ampersand is a character like any other.
constexpr UINT format = DT_LEFT | DT_TOP | DT_SINGLELINE | DT_NOPREFIX;
constexpr COLORREF glyph_color = 0x00FFFFFF;
constexpr COLORREF background_color = 0x00000000;

[[noreturn]] void fail(const std::string& what) {
  throw SystemError(what + system_error_text());
}

// The device context of the active window, or of the screen when the thread has none.
class WindowDeviceContext {
 public:
  WindowDeviceContext() : window_(GetActiveWindow()), context_(GetDC(window_)) {
    if (!context_) fail("Could not get a device context for text: ");
  }
  ~WindowDeviceContext() { ReleaseDC(window_, context_); }
  WindowDeviceContext(const WindowDeviceContext&) = delete;
  WindowDeviceContext& operator=(const WindowDeviceContext&) = delete;
  HDC get() const { return context_; }

 private:
  HWND window_;
  HDC context_;
};

class MemoryDeviceContext {
 public:
  explicit MemoryDeviceContext(const WindowDeviceContext& model) : context_(CreateCompatibleDC(model.get())) {
    if (!context_) fail("Could not create a device context for text: ");
  }
  ~MemoryDeviceContext() { DeleteDC(context_); }
  MemoryDeviceContext(const MemoryDeviceContext&) = delete;
  MemoryDeviceContext& operator=(const MemoryDeviceContext&) = delete;
  HDC get() const { return context_; }

 private:
  HDC context_;
};

// Owns a font or a bitmap, which must not be selected any more when it goes.
class GdiObject {
 public:
  explicit GdiObject(HGDIOBJ object) : object_(object) {}
  ~GdiObject() {
    if (object_) DeleteObject(object_);
  }
  GdiObject(const GdiObject&) = delete;
  GdiObject& operator=(const GdiObject&) = delete;
  HGDIOBJ get() const { return object_; }

 private:
  HGDIOBJ object_;
};

// Selects an object and puts the former one back.
class Selection {
 public:
  Selection(HDC context, HGDIOBJ object) : context_(context), former_(SelectObject(context, object)) {
    if (!former_) fail("Could not select an object for text: ");
  }
  ~Selection() { SelectObject(context_, former_); }
  Selection(const Selection&) = delete;
  Selection& operator=(const Selection&) = delete;

 private:
  HDC context_;
  HGDIOBJ former_;
};

HFONT create_font(int height, bool emphasis) {
  const WindowDeviceContext window;
  return CreateFontA(height, 0, 0, 0, emphasis ? FW_BOLD : FW_NORMAL, emphasis ? TRUE : FALSE, FALSE, FALSE,
                     ANSI_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY,
                     DEFAULT_PITCH | FF_DONTCARE, "Segoe UI");
}

BITMAPINFO bitmap_of(int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;  // positive: the bottom row comes first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

}  // namespace

struct TextRasteriser::Native {
  Native(int height, bool emphasis) : font(create_font(height, emphasis)) {
    if (!font.get()) fail("Could not create a font: ");
    const WindowDeviceContext window;
    const MemoryDeviceContext memory(window);
    const Selection selected(memory.get(), font.get());
    measure(memory, "0");
  }

  // Without any font on the machine GDI still gives a font object, but measures and draws nothing.
  static RECT measure(const MemoryDeviceContext& memory, const std::string& text) {
    RECT area{};
    DrawTextA(memory.get(), text.c_str(), static_cast<int>(text.size()), &area, format | DT_CALCRECT);
    if (area.right <= 0 || area.bottom <= 0) throw SystemError("No font was found for text labels. ");
    return area;
  }

  GdiObject font;
};

TextRasteriser::TextRasteriser(int height, bool emphasis)
    : native_(std::make_unique<Native>(height, emphasis)) {}
TextRasteriser::~TextRasteriser() = default;

TextPicture TextRasteriser::rasterise(const std::string& text) {
  TextPicture picture;
  if (text.empty()) return picture;
  const WindowDeviceContext window;
  const MemoryDeviceContext memory(window);
  const Selection font(memory.get(), native_->font.get());
  RECT area = Native::measure(memory, text);
  const BITMAPINFO info = bitmap_of(area.right, area.bottom);
  void* pixels = nullptr;
  const GdiObject bitmap(CreateDIBSection(memory.get(), &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
  if (!bitmap.get()) fail("Could not create a bitmap for text: ");
  const Selection target(memory.get(), bitmap.get());
  SetTextColor(memory.get(), glyph_color);
  SetBkColor(memory.get(), background_color);
  SetBkMode(memory.get(), OPAQUE);
  DrawTextA(memory.get(), text.c_str(), static_cast<int>(text.size()), &area, format);
  GdiFlush();  // drawing may be queued, and the pixels are read behind GDI's back

  picture.width = area.right;
  picture.height = area.bottom;
  picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                        4);
  std::memcpy(picture.pixels.data(), pixels, picture.pixels.size());
  return picture;
}

}  // namespace oct
