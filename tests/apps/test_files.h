// Files for the tests of the program: a folder that goes away, arrays and pictures in it.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

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

  std::filesystem::path operator/(const std::string& name) const { return path_ / fromUtf8(name); }
  auto fileCount() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

 private:
  std::filesystem::path path_;
};

void writeFile(const std::filesystem::path& path, const std::string& content);
std::string readFile(const std::filesystem::path& path);

// The bytes of a .npy file of version 1 with this dictionary.
std::string npyBytes(const std::string& dictionary, const std::string& data);

std::string npyDictionary(const std::string& type, bool fortranOrder, const std::string& shape);

template <class T>
std::string bytesOf(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// An array of 32-bit floats in C order; shape as Python writes it, such as "2, 3".
void writeNpy(const std::filesystem::path& path, const std::string& shape, const std::vector<float>& values);

Picture readPicture(const std::filesystem::path& path);

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
std::string errorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "no error";
}

inline void expectIn(const std::string& words, const std::string& text) {
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
    writeFile(path_, bytes);
    return loadImage(path_, {frame}, false);
  }

  void expectRefused(const std::vector<Refusal>& refusals) {
    for (const auto& [bytes, words] : refusals) {
      SCOPED_TRACE(words);
      const std::string text = errorOf<ReadError>([&] { load(bytes); });
      EXPECT_EQ(text.find(toUtf8(path_) + ": "), 0U) << text;
      expectIn(words, text);
    }
  }

  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "file";
};

}  // namespace oct::app::test
