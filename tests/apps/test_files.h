// Files for the tests of the program: a folder that goes away, and arrays in it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "data/file_errors.h"
#include "data/formats/input_file.h"
#include "data/image_reader.h"

namespace oct::app::test {

class TemporaryFolder {
 public:
  TemporaryFolder() { std::filesystem::create_directory(path_); }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / from_utf8(name); }
  auto file_count() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
  const std::filesystem::path path_ =
      std::filesystem::temp_directory_path() / ("octrender_test_" + std::to_string(std::random_device()()));
};

inline void write_file(const std::filesystem::path& path, const std::string& content) {
  std::ofstream stream(path, std::ios::binary);
  stream << content;
  stream.close();
  if (!stream) throw std::runtime_error("cannot write the test's file " + to_utf8(path));
}

template <class T>
std::string bytes_of(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// The bytes of a .npy file of version 1 with this dictionary.
inline std::string npy_file(const std::string& dictionary, const std::string& data) {
  std::string bytes("\x93NUMPY\x01\0", 8);
  bytes += static_cast<char>(dictionary.size() & 0xFF);
  bytes += static_cast<char>(dictionary.size() >> 8);
  return bytes + dictionary + data;
}

// shape: as Python writes it, such as "2, 3"
inline std::string npy_dictionary(const std::string& type, const std::string& shape,
                                  bool fortran_order = false) {
  return "{'descr': '" + type + "', 'fortran_order': " + (fortran_order ? "True" : "False") + ", 'shape': (" +
         shape + "), }\n";
}

inline std::string npy_array(const std::string& type, const std::string& shape, const std::string& data,
                             bool fortran_order = false) {
  return npy_file(npy_dictionary(type, shape, fortran_order), data);
}

inline void write_npy(const std::filesystem::path& path, const std::string& shape,
                      const std::vector<float>& values) {
  write_file(path, npy_array("<f4", shape, bytes_of(values)));
}

// The text of the error of this type that ends the action.
template <class Error, class Action>
std::string error_of(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "no error";
}

inline void expect_in(const std::string& words, const std::string& text) {
  EXPECT_PRED_FORMAT2(testing::IsSubstring, words, text);
}

// Writes bytes to a file, of which the name tries the alphabets, and reads them as an image.
class ReaderTest : public testing::Test {
 protected:
  LoadedImage load(const std::string& bytes, std::optional<std::size_t> frame = std::nullopt) {
    write_file(path_, bytes);
    return load_image({path_, {}, {}}, {frame});
  }

  // Bytes, and words of the error.
  void expect_refused(const std::vector<std::pair<std::string, std::string>>& refusals) {
    for (const auto& [bytes, words] : refusals) {
      SCOPED_TRACE(words);
      const std::string text = error_of<ReadError>([&, &bytes = bytes] { load(bytes); });
      EXPECT_EQ(text.find(to_utf8(path_) + ": "), 0U) << text;
      expect_in(words, text);
    }
  }

  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "h\xC3\xA4ut \xE7\x9A\xAE";
};

}  // namespace oct::app::test
