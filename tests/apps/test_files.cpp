#include "apps/test_files.h"

#include <fstream>
#include <memory>
#include <random>
#include <system_error>

#include <stb/stb_image.h>

namespace oct::app::test {

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() /
            ("octrender_test_" + std::to_string(std::random_device()()))) {
  std::filesystem::create_directory(path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void write_file(const std::filesystem::path& path, const std::string& content) {
  std::ofstream stream(path, std::ios::binary);
  stream << content;
  stream.close();
  if (!stream) throw std::runtime_error("cannot write the test's file " + to_utf8(path));
}

std::string read_file(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string npy_bytes(const std::string& dictionary, const std::string& data) {
  std::string bytes("\x93NUMPY\x01\0", 8);
  bytes += static_cast<char>(dictionary.size() & 0xFF);
  bytes += static_cast<char>(dictionary.size() >> 8);
  return bytes + dictionary + data;
}

std::string npy_dictionary(const std::string& type, bool fortran_order, const std::string& shape) {
  return "{'descr': '" + type + "', 'fortran_order': " + (fortran_order ? "True" : "False") + ", 'shape': (" +
         shape + "), }\n";
}

void write_npy(const std::filesystem::path& path, const std::string& shape,
               const std::vector<float>& values) {
  write_file(path, npy_bytes(npy_dictionary("<f4", false, shape), bytes_of(values)));
}

Picture read_picture(const std::filesystem::path& path) {
  const std::string bytes = read_file(path);
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
      stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()),
                            &width, &height, &channels, 3),
      stbi_image_free);
  if (!pixels) throw std::runtime_error("no picture in " + to_utf8(path));
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3;
  return {{static_cast<unsigned>(width), static_cast<unsigned>(height)},
          {pixels.get(), pixels.get() + count}};
}

}  // namespace oct::app::test
