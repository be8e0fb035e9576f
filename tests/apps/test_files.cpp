#include "test_files.h"

#include <stb/stb_image.h>

#include <fstream>
#include <memory>
#include <random>
#include <system_error>

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

void writeFile(const std::filesystem::path& path, const std::string& content) {
  std::ofstream stream(path, std::ios::binary);
  stream << content;
  stream.close();
  if (!stream) throw std::runtime_error("cannot write the test's file " + toUtf8(path));
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string npyBytes(const std::string& dictionary, const std::string& data) {
  std::string bytes("\x93NUMPY\x01\0", 8);
  bytes += static_cast<char>(dictionary.size() & 0xFF);
  bytes += static_cast<char>(dictionary.size() >> 8);
  return bytes + dictionary + data;
}

std::string npyDictionary(const std::string& type, bool fortranOrder, const std::string& shape) {
  return "{'descr': '" + type + "', 'fortran_order': " + (fortranOrder ? "True" : "False") + ", 'shape': (" +
         shape + "), }\n";
}

void writeNpy(const std::filesystem::path& path, const std::string& shape, const std::vector<float>& values) {
  writeFile(path, npyBytes(npyDictionary("<f4", false, shape), bytesOf(values)));
}

Picture readPicture(const std::filesystem::path& path) {
  const std::string bytes = readFile(path);
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
      stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()),
                            &width, &height, &channels, 3),
      stbi_image_free);
  if (!pixels) throw std::runtime_error("no picture in " + toUtf8(path));
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3;
  return {{static_cast<unsigned>(width), static_cast<unsigned>(height)},
          {pixels.get(), pixels.get() + count}};
}

}  // namespace oct::app::test
