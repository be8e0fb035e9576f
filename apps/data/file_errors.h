// What goes wrong with files, and how paths are written in texts.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace oct::app {

// Paths are UTF-8 in texts, whatever the platform's own encoding is.
inline std::string to_utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

inline std::filesystem::path from_utf8(const std::string& text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

class FileError : public std::runtime_error {
 protected:
  using runtime_error::runtime_error;
  FileError(const std::filesystem::path& file, const std::string& reason)
      : std::runtime_error(to_utf8(file) + ": " + reason) {}
};

// The file cannot be read or understood.
class ReadError : public FileError {
 public:
  ReadError(const std::filesystem::path& file, const std::string& reason) : FileError(file, reason) {}
  ReadError(const ReadError& error, const std::string& advice) : FileError(error.what() + (". " + advice)) {}
};

class WriteError : public FileError {
 public:
  WriteError(const std::filesystem::path& file, const std::string& reason) : FileError(file, reason) {}
};

}  // namespace oct::app
