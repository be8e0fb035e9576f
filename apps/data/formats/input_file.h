// A file that is read from, with failures that name it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <string>

namespace oct::app {

class InputFile {
 public:
  // "-" is the standard input, which is kept in memory: nobody can go back in a pipe.
  explicit InputFile(const std::filesystem::path& path);

  // What is in memory already; the path names it in errors.
  InputFile(const std::filesystem::path& path, std::string content);

  const std::filesystem::path& path() const { return path_; }
  std::uint64_t size() const { return size_; }

  void seek(std::uint64_t offset);
  void read(void* destination, std::size_t bytes);

  // As many bytes as there are; throws nothing.
  std::size_t read_some(void* destination, std::size_t bytes) noexcept;

  // At most this many bytes from the start of the file.
  std::string start(std::size_t bytes);
  std::string whole();

 private:
  std::filesystem::path path_;
  std::unique_ptr<std::istream> stream_;
  std::uint64_t size_ = 0;
};

}  // namespace oct::app
