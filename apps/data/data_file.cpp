#include "data/data_file.h"

#include <array>
#include <string_view>
#include <system_error>
#include <utility>

#include "data/arrays/array_reader.h"
#include "data/arrays/meta_image_header.h"
#include "data/arrays/nifti_header.h"
#include "data/arrays/npy_reader.h"
#include "data/arrays/npz_reader.h"
#include "data/arrays/nrrd_header.h"
#include "data/file_errors.h"
#include "data/formats/folder_reader.h"
#include "data/formats/png_reader.h"
#include "data/formats/tiff_reader.h"

namespace oct::app {
namespace {

using namespace std::string_view_literals;
using File = std::shared_ptr<InputFile>;
using Frames = std::unique_ptr<FrameReader>;

Frames open_npy_file(File file) {
  return open_npy(open_bytes(std::move(file), Compression::none));
}

Frames open_nrrd(File file) {
  return open_array(file, read_nrrd_header(*file));
}

Frames open_meta_image(File file) {
  return open_array(file, read_meta_image_header(*file));
}

Frames open_nifti(File file) {
  return open_array(file,
                    read_nifti_header(file->start(nifti_header_bytes), file->path(), Compression::none));
}

// NIfTI files are often compressed as a whole.
Frames open_gzip(File file) {
  const std::unique_ptr<ByteStream> stream = open_bytes(file, Compression::zlib_or_gzip);
  std::string start(nifti_header_bytes, '\0');
  stream->read(start.data(), start.size());
  if (!is_nifti_header(start))
    throw ReadError(file->path(), "of compressed files only NIfTI files are supported");
  return open_array(file, read_nifti_header(start, file->path(), Compression::zlib_or_gzip));
}

struct Format {
  std::string_view first_bytes;
  Frames (*open)(File);
};

constexpr Format formats[] = {
    {"\x93NUMPY"sv, open_npy_file}, {"\x89PNG\r\n\x1a\n"sv, open_png}, {"II\x2a\0"sv, open_tiff},
    {"MM\0\x2a"sv, open_tiff},      {"II\x2b\0"sv, open_tiff},  // TIFF with 64-bit offsets
    {"MM\0\x2b"sv, open_tiff},      {"NRRD000"sv, open_nrrd},          {"ObjectType"sv, open_meta_image},
    {"NDims"sv, open_meta_image},   {"Comment"sv, open_meta_image},    {"\x1F\x8B"sv, open_gzip}};

Frames open_raw(const File& file, const RawLayout& layout, const AxisOrder& axes) {
  const std::array<std::uint64_t, 3> sizes{layout.depth, layout.ascans, layout.bscans};
  ArrayDescription description;
  for (std::size_t i = 0; i < 3; ++i) description.sizes[i] = sizes[number_of(axes[i])];
  description.format = layout.format;
  description.skip = layout.offset.value_or(0);
  description.origin = layout.origin;
  const std::uint64_t wanted = sizes[0] * sizes[1] * sizes[2] * bytes_of(layout.format.type);
  if (!layout.offset && file->size() != wanted) {
    throw ReadError(file->path(), "the file has " + std::to_string(file->size()) + " bytes; " +
                                      layout.origin + " describes " + std::to_string(wanted) +
                                      " (+N skips N bytes at the start)");
  }
  return open_array(file, description);
}

// "file.npz:name" is an array in a file.
std::pair<std::filesystem::path, std::string> split_array_name(const std::filesystem::path& path) {
  const std::string text = to_utf8(path);
  const std::size_t end = text.rfind(".npz:");
  if (end == std::string::npos) return {path, {}};
  return {from_utf8(text.substr(0, end + 4)), text.substr(end + 5)};
}

Frames open_path(const std::filesystem::path& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return open_folder(path, open_path);
  const auto [file, array_name] = split_array_name(path);
  return open_frames(std::make_shared<InputFile>(file), array_name);
}

}  // namespace

Frames open_frames(File file, const std::string& array_name) {
  const std::string start = file->start(16);
  if (start.starts_with("PK\3\4"sv) || start.starts_with("PK\5\6"sv)) return open_npz(file, array_name);
  if (is_nifti_header(start)) return open_nifti(file);
  for (const Format& format : formats) {
    if (start.starts_with(format.first_bytes)) return format.open(file);
  }
  throw ReadError(file->path(), "not a .npy, .npz, PNG, TIFF, NRRD, MetaImage or NIfTI file");
}

OpenData open_data(const DataFile& file) {
  if (file.raw) {
    const AxisOrder axes = file.axes.value_or(memory_order);
    return {open_raw(std::make_shared<InputFile>(file.path), *file.raw, axes), axes};
  }
  Frames frames = open_path(file.path);
  const AxisOrder axes = file_order(*frames, file.axes.value_or(picture_order));
  return {std::move(frames), axes};
}

}  // namespace oct::app
