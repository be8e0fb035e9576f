#include "support/npy.h"

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace oct::test {

std::vector<char> read_npy_bytes(const std::filesystem::path& file, const char* type) {
  std::ifstream stream(file, std::ios::binary);
  std::string head(10, '\0');
  stream.read(head.data(), 10);
  // Version 1 of the format: magic text, version, and the length of the description in two bytes.
  if (!stream || head.compare(0, 7, "\x93NUMPY\x01") != 0)
    throw std::runtime_error(file.string() + " is not a readable NumPy file. ");
  const auto byte = [&](int i) { return static_cast<std::size_t>(static_cast<unsigned char>(head[i])); };
  std::string description(byte(8) + 256 * byte(9), '\0');
  stream.read(description.data(), static_cast<std::streamsize>(description.size()));
  if (description.find("'descr': '" + std::string(type) + "'") == std::string::npos ||
      description.find("'fortran_order': False") == std::string::npos)
    throw std::runtime_error(file.string() + " has another element type or order. ");
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace oct::test
