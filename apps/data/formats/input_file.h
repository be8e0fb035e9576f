// A file that is read from, with failures that name it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace oct::app {

class InputFile {
 public:
  explicit InputFile(const std::filesystem::path& path);

  const std::filesystem::path& path() const { return path_; }
  std::uint64_t size() const { return size_; }

  void seek(std::uint64_t offset);
  void read(void* destination, std::size_t bytes);

  // At most this many bytes from the start of the file.
  std::string start(std::size_t bytes);
  std::string whole();

 private:
  std::filesystem::path path_;
  std::ifstream stream_;
  std::uint64_t size_ = 0;
};

}  // namespace oct::app
