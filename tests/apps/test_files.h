// Files for the tests of the program: a folder that goes away, arrays and pictures in it.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "octrender/exit_code.h"
#include "data/picture.h"

namespace oct::app::test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / fromUtf8(name); }
  std::vector<std::string> fileNames() const;

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

// Expects a failure with this exit code whose text has the wanted words in it.
template <class Action>
void expectFailure(ExitCode code, const std::string& words, Action action) {
  try {
    action();
    ADD_FAILURE() << "no failure; expected: " << words;
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), code);
    EXPECT_NE(std::string(failure.what()).find(words), std::string::npos) << failure.what();
  }
}

}  // namespace oct::app::test
