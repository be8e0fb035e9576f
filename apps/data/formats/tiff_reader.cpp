#include "data/formats/tiff_reader.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include <tiffio.h>

#include "data/arrays/array_reader.h"
#include "data/arrays/text_header.h"
#include "data/file_errors.h"
#include "data/formats/tiff_spacing.h"

namespace oct::app {
namespace {

constexpr tmsize_t max_allocation = tmsize_t{1} << 30;

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

// libtiff's way to the file. It is C: nothing may be thrown through it.
struct FilePlace {
  std::shared_ptr<InputFile> file;
  std::uint64_t position = 0;
};

tmsize_t read_file(thandle_t handle, void* destination, tmsize_t bytes) {
  auto& place = *static_cast<FilePlace*>(handle);
  if (bytes < 0 || place.position > place.file->size()) return 0;
  try {
    place.file->seek(place.position);
  } catch (const std::exception&) {
    return 0;
  }
  const std::size_t count = place.file->read_some(destination, static_cast<std::size_t>(bytes));
  place.position += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t write_nothing(thandle_t, void*, tmsize_t) {
  return 0;
}

toff_t seek_file(thandle_t handle, toff_t offset, int whence) {
  auto& place = *static_cast<FilePlace*>(handle);
  if (whence == SEEK_SET) place.position = offset;
  if (whence == SEEK_CUR) place.position += offset;
  if (whence == SEEK_END) place.position = place.file->size() + offset;
  return place.position;
}

toff_t size_of_file(thandle_t handle) {
  return static_cast<FilePlace*>(handle)->file->size();
}

int leave_open(thandle_t) {
  return 0;
}

std::optional<SampleType> tiff_type(int format, int bits) {
  const char kind = format == SAMPLEFORMAT_UINT     ? 'u'
                    : format == SAMPLEFORMAT_INT    ? 'i'
                    : format == SAMPLEFORMAT_IEEEFP ? 'f'
                                                    : '?';
  return bits % 8 == 0 ? find_sample_type(kind + std::to_string(bits / 8)) : std::nullopt;
}

class TiffReader : public FrameReader {
 public:
  explicit TiffReader(std::shared_ptr<InputFile> file) : place_{std::move(file)} {
    std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                             TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keep_error, &error_);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignore_warning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), max_allocation);
    tiff_.reset(TIFFClientOpenExt("", "rm", &place_, read_file, write_nothing, seek_file, leave_open,
                                  size_of_file, nullptr, nullptr, options.get()));
    if (!tiff_) throw damaged();
    spacing_ = tiff_spacing(description(), resolution(TIFFTAG_XRESOLUTION), resolution(TIFFTAG_YRESOLUTION));
    // Where the chain of pages breaks the count ends, with a complaint only.
    error_.clear();
    pages_ = TIFFNumberOfDirectories(tiff_.get());
    if (pages_ == 0 || !error_.empty()) throw damaged();
  }

  std::size_t frame_count() const override { return pages_; }
  FileSpacing spacing() const override { return spacing_; }

  Raster read(std::size_t frame, const ProgressFunction& progress) override {
    go_to(frame);
    const SampleType type = check_layout();
    Raster raster{side(TIFFTAG_IMAGELENGTH), side(TIFFTAG_IMAGEWIDTH), {}};
    check_raster_size(path(), raster.rows, raster.columns);
    std::vector<char> line(static_cast<std::size_t>(TIFFScanlineSize64(tiff_.get())));
    if (line.size() < raster.columns * bytes_of(type)) throw damaged();
    // Grows with what is really there: a header may lie.
    for (std::size_t row = 0; row < raster.rows; ++row) {
      progress(row * raster.columns, raster.rows * raster.columns);
      if (TIFFReadScanline(tiff_.get(), line.data(), static_cast<std::uint32_t>(row)) != 1) throw damaged();
      raster.samples.resize((row + 1) * raster.columns);
      convert_samples({type, false}, line.data(), raster.columns, &raster.samples[row * raster.columns]);
    }
    if (photometric() == PHOTOMETRIC_MINISWHITE) invert(raster.samples);
    return raster;
  }

  // Past 4 GiB ImageJ writes the samples of all images behind those of the first, the only one that has tags.
  std::optional<ArrayDescription> imagej_stack() const {
    const std::string text = description();
    double images = 0;
    if (pages_ != 1 || !is_imagej(text) || !parse_double(imagej_value(text, "images"), images))
      return std::nullopt;
    if (!(images >= 2 && images < 1e9)) return std::nullopt;
    std::uint64_t* offsets = nullptr;
    if (tag<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE) != COMPRESSION_NONE ||
        !TIFFGetField(tiff_.get(), TIFFTAG_STRIPOFFSETS, &offsets) || !offsets) {
      return std::nullopt;
    }
    ArrayDescription stack;
    stack.format = {check_layout(), TIFFIsBigEndian(tiff_.get()) != 0};
    stack.sizes = {side(TIFFTAG_IMAGEWIDTH), side(TIFFTAG_IMAGELENGTH), static_cast<std::uint64_t>(images)};
    stack.data_begin = offsets[0];
    stack.spacing = spacing_;
    stack.origin = "ImageJ";
    return stack;
  }

 private:
  const std::filesystem::path& path() const { return place_.file->path(); }
  ReadError damaged() const { return ReadError(path(), "not a readable TIFF image: " + error_); }

  // Each page is found by way of those before it.
  void go_to(std::size_t page) {
    if (page == page_) return;
    const bool there = page == page_ + 1 ? TIFFReadDirectory(tiff_.get())
                                         : TIFFSetDirectory(tiff_.get(), static_cast<tdir_t>(page));
    if (!there) throw damaged();
    page_ = page;
  }

  // The value of a tag, the default that the format gives it, or the fallback. T is the type that libtiff
  // stores for this tag.
  template <class T>
  T tag(std::uint32_t name, T fallback) const {
    T value = fallback;
    return TIFFGetFieldDefaulted(tiff_.get(), name, &value) ? value : fallback;
  }

  std::uint32_t side(std::uint32_t name) const { return tag<std::uint32_t>(name, 0); }
  std::uint16_t photometric() const {
    return tag<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  }
  int bits() const { return tag<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1); }
  int format() const { return tag<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT); }
  double resolution(std::uint32_t name) const { return tag<float>(name, 0); }
  std::string description() const {
    const char* const text = tag<const char*>(TIFFTAG_IMAGEDESCRIPTION, nullptr);
    return text ? text : "";
  }

  SampleType check_layout() const {
    if (TIFFIsTiled(tiff_.get())) throw ReadError(path(), "tiled TIFF images are not supported; save strips");
    if (tag<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1) != 1)
      throw ReadError(path(), "only gray TIFF images are supported");
    if (photometric() == PHOTOMETRIC_PALETTE) {
      throw ReadError(path(), "TIFF images with a palette are not supported; save gray");
    }
    const std::optional<SampleType> type = tiff_type(format(), bits());
    if (type) return *type;
    throw ReadError(path(), "TIFF samples of this kind (" + std::to_string(bits()) +
                                " bits) are not supported; save integers of 8, 16 or 32 bits or floats");
  }

  void invert(std::vector<float>& samples) const {
    const float white = format() == SAMPLEFORMAT_UINT ? static_cast<float>(std::pow(2.0, bits()) - 1) : 1.0F;
    for (float& sample : samples) sample = white - sample;
  }

  FilePlace place_;
  std::string error_;
  std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff_{nullptr, TIFFClose};
  FileSpacing spacing_;
  std::size_t pages_ = 0;
  std::size_t page_ = 0;
};

}  // namespace

std::unique_ptr<FrameReader> open_tiff(std::shared_ptr<InputFile> file) {
  auto reader = std::make_unique<TiffReader>(file);
  if (std::optional<ArrayDescription> stack = reader->imagej_stack())
    return open_array(std::move(file), *stack);
  return reader;
}

}  // namespace oct::app
