// Files that appear as a whole or not at all.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace oct::app {

// A name beside a file's own, under which others may write it. What lies there goes at the end of this object's life.
class PartialFile {
 public:
  // The extension stays, because programs go by it.
  explicit PartialFile(std::filesystem::path path);
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  const std::filesystem::path& final_path() const { return path_; }
  const std::filesystem::path& partial_path() const { return partial_; }

  // Puts it in the place of the file. Throws a WriteError.
  void commit();

 private:
  const std::filesystem::path path_;
  const std::filesystem::path partial_;
};

// Every failure is a WriteError that names the file.
class OutputFile {
 public:
  explicit OutputFile(std::filesystem::path path);

  void write(const void* bytes, std::size_t count);
  void write(std::string_view bytes) { write(bytes.data(), bytes.size()); }

  // Until then what was there before stays as it was.
  void commit();

 private:
  PartialFile file_;
  std::ofstream stream_;
};

}  // namespace oct::app
