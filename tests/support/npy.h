// Reads arrays that were stored by NumPy.
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

namespace oct::test {

// The bytes of a little-endian array in C order; throws std::runtime_error if the file is not one.
// type: the element type as NumPy writes it, for example "<f8"
std::vector<char> read_npy_bytes(const std::filesystem::path& file, const char* type);

// The elements of an array, all axes in one row.
template <typename Element>
std::vector<Element> read_npy(const std::filesystem::path& file, const char* type) {
  const auto bytes = read_npy_bytes(file, type);
  const auto* elements = reinterpret_cast<const Element*>(bytes.data());
  return {elements, elements + bytes.size() / sizeof(Element)};
}

}  // namespace oct::test
