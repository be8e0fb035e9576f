// Files for the tests of the program: a folder that goes away, arrays and pictures in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "data/file_errors.h"
#include "data/image_reader.h"
#include "data/picture.h"

namespace oct::app::test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / from_utf8(name); }
  auto file_count() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
  std::filesystem::path path_;
};

void write_file(const std::filesystem::path& path, const std::string& content);
std::string read_file(const std::filesystem::path& path);

// The bytes of a .npy file of version 1 with this dictionary.
std::string npy_bytes(const std::string& dictionary, const std::string& data);

std::string npy_dictionary(const std::string& type, bool fortran_order, const std::string& shape);

template <class T>
std::string bytes_of(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// An array of 32-bit floats in C order; shape as Python writes it, such as "2, 3".
void write_npy(const std::filesystem::path& path, const std::string& shape, const std::vector<float>& values);

Picture read_picture(const std::filesystem::path& path);

// What the program wrote to a stream while this object lived.
class CapturedStream {
 public:
  explicit CapturedStream(std::ostream& stream) : stream_(stream), before_(stream.rdbuf(text_.rdbuf())) {}
  ~CapturedStream() { stream_.rdbuf(before_); }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* before_;
};

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

// Writes bytes to a file and reads them as an image.
class ReaderTest : public testing::Test {
 protected:
  struct Refusal {
    std::string bytes;
    std::string words;
  };

  LoadedImage load(const std::string& bytes, std::optional<std::size_t> frame = std::nullopt) {
    write_file(path_, bytes);
    return load_image(path_, {frame}, false);
  }

  void expect_refused(const std::vector<Refusal>& refusals) {
    for (const auto& [bytes, words] : refusals) {
      SCOPED_TRACE(words);
      const std::string text = error_of<ReadError>([&] { load(bytes); });
      EXPECT_EQ(text.find(to_utf8(path_) + ": "), 0U) << text;
      expect_in(words, text);
    }
  }

  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "file";
};

}  // namespace oct::app::test
