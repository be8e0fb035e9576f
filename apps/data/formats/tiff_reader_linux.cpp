#include "data/formats/tiff_reader.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>

#include <tiffio.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

// Keeps the first complaint, which names the cause; libtiff would print it.
int keep_error(TIFF*, void* text, const char*, const char* format, va_list arguments) {
  char line[512];
  std::vsnprintf(line, sizeof line, format, arguments);
  auto& kept = *static_cast<std::string*>(text);
  if (kept.empty()) kept = line;
  return 1;
}

int ignore_warning(TIFF*, void*, const char*, const char*, va_list) {
  return 1;
}

template <class T>
void append_row(const std::vector<unsigned char>& line, std::size_t columns, std::vector<float>& samples) {
  const T* values = reinterpret_cast<const T*>(line.data());
  samples.insert(samples.end(), values, values + columns);
}

class TiffFile {
 public:
  explicit TiffFile(const std::filesystem::path& path) : path_(path) {
    std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                             TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keep_error, &error_);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignore_warning, nullptr);
    tiff_.reset(TIFFOpenExt(path.c_str(), "r", options.get()));
    if (!tiff_) throw damaged();
  }

  Raster read(const FrameChoice& choice) {
    const std::size_t pages = TIFFNumberOfDirectories(tiff_.get());
    const std::size_t page = choose_frame(path_, pages, choice);
    if (!TIFFSetDirectory(tiff_.get(), static_cast<tdir_t>(page))) throw damaged();
    return current_page(page, pages);
  }

  // Goes from page to page: each is found by way of those before it.
  void read_all(const TakeRaster& take) {
    const std::size_t pages = TIFFNumberOfDirectories(tiff_.get());
    if (!TIFFSetDirectory(tiff_.get(), 0)) throw damaged();
    for (std::size_t page = 0; page < pages; ++page) {
      if (page > 0 && !TIFFReadDirectory(tiff_.get())) throw damaged();
      take(current_page(page, pages));
    }
  }

 private:
  Raster current_page(std::size_t page, std::size_t pages) {
    Raster raster;
    raster.frame = page;
    raster.frame_count = pages;
    check_layout();
    raster.rows = side(TIFFTAG_IMAGELENGTH);
    raster.columns = side(TIFFTAG_IMAGEWIDTH);
    check_raster_size(path_, raster.rows, raster.columns);
    read_rows(raster);
    if (photometric() == PHOTOMETRIC_MINISWHITE) invert(raster.samples);
    return raster;
  }

  ReadError damaged() const { return ReadError(path_, "not a readable TIFF image: " + error_); }

  // The value of a tag, the default that the format gives it, or the fallback. T is the type that libtiff
  // stores for this tag.
  template <class T>
  T tag(std::uint32_t name, T fallback) const {
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff_.get(), name, &value) ? value : fallback;
  }

  std::uint32_t side(std::uint32_t name) const { return tag<std::uint32_t>(name, 0); }
  std::uint16_t bits() const { return tag<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1); }
  std::uint16_t photometric() const {
    return tag<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  }
  std::uint16_t format() const { return tag<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT); }

  void check_layout() const {
    if (TIFFIsTiled(tiff_.get())) throw ReadError(path_, "tiled TIFF images are not supported; save strips");
    if (tag<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1) != 1)
      throw ReadError(path_, "only gray TIFF images are supported");
    if (photometric() == PHOTOMETRIC_PALETTE) {
      throw ReadError(path_, "TIFF images with a palette are not supported; save gray");
    }
    const bool is_integer = format() == SAMPLEFORMAT_UINT && (bits() == 8 || bits() == 16);
    const bool is_float = format() == SAMPLEFORMAT_IEEEFP && bits() == 32;
    if (is_integer || is_float) return;
    throw ReadError(path_, "TIFF samples of this kind (" + std::to_string(bits()) +
                               " bits) are not supported; save 8 or 16 bits unsigned or 32-bit float");
  }

  void read_rows(Raster& raster) {
    std::vector<unsigned char> line(static_cast<std::size_t>(TIFFScanlineSize64(tiff_.get())));
    if (line.size() < raster.columns * bits() / 8) throw damaged();
    for (std::size_t row = 0; row < raster.rows; ++row) {
      if (TIFFReadScanline(tiff_.get(), line.data(), static_cast<std::uint32_t>(row)) != 1) throw damaged();
      if (bits() == 8) append_row<std::uint8_t>(line, raster.columns, raster.samples);
      if (bits() == 16) append_row<std::uint16_t>(line, raster.columns, raster.samples);
      if (bits() == 32) append_row<float>(line, raster.columns, raster.samples);
    }
  }

  void invert(std::vector<float>& samples) const {
    const float white = format() == SAMPLEFORMAT_IEEEFP ? 1.0F : static_cast<float>((1U << bits()) - 1);
    for (float& sample : samples) sample = white - sample;
  }

  const std::filesystem::path& path_;
  std::string error_;
  std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff_{nullptr, TIFFClose};
};

}  // namespace

Raster read_tiff(InputFile& file, const FrameChoice& choice) {
  return TiffFile(file.path()).read(choice);
}

void read_tiff_frames(InputFile& file, const TakeRaster& take) {
  TiffFile(file.path()).read_all(take);
}

}  // namespace oct::app
