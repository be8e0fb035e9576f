#include "data/formats/png_writer.h"

#include <fstream>
#include <random>
#include <string>
#include <system_error>

#include <stb/stb_image_write.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

void append(void* stream, void* bytes, int count) {
  static_cast<std::ofstream*>(stream)->write(static_cast<const char*>(bytes), count);
}

// In the same folder, because a file can be renamed in one step only within a file system. The number keeps
// two runs with the same output apart.
std::filesystem::path temporary_name(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name += ".";
  name += std::to_string(std::random_device()());
  name += ".tmp";
  return name;
}

void encode(const std::filesystem::path& path, const Picture& picture) {
  std::ofstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot be opened for writing");
  const auto [width, height] = picture.size;
  const int encoded =
      stbi_write_png_to_func(append, &stream, static_cast<int>(width), static_cast<int>(height), 3,
                             picture.pixels.data(), static_cast<int>(width * 3));
  stream.close();
  if (!encoded || !stream) throw std::runtime_error("writing failed");
}

}  // namespace

void write_png(const std::filesystem::path& path, const Picture& picture) {
  const std::filesystem::path temporary = temporary_name(path);
  try {
    encode(temporary, picture);
    std::filesystem::rename(temporary, path);
  } catch (const std::filesystem::filesystem_error& error) {
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    throw WriteError(path, error.code().message());
  } catch (const std::exception& error) {
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    throw WriteError(path, error.what());
  }
}

}  // namespace oct::app
