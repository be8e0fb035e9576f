#include "data/formats/input_file.h"

#include <algorithm>
#include <system_error>

#include "data/file_errors.h"

namespace oct::app {

InputFile::InputFile(const std::filesystem::path& path) : path_(path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) throw ReadError(path, "no such file");
  if (!std::filesystem::is_regular_file(status)) throw ReadError(path, "not a regular file");
  size_ = std::filesystem::file_size(path, error);
  if (error) throw ReadError(path, error.message());
  stream_.open(path, std::ios::binary);
  if (!stream_) throw ReadError(path, "cannot be opened for reading");
  if (size_ == 0) throw ReadError(path, "the file is empty");
}

void InputFile::seek(std::uint64_t offset) {
  if (!stream_.seekg(static_cast<std::streamoff>(offset))) throw ReadError(path_, "reading failed");
}

void InputFile::read(void* destination, std::size_t bytes) {
  stream_.read(static_cast<char*>(destination), static_cast<std::streamsize>(bytes));
  if (static_cast<std::size_t>(stream_.gcount()) != bytes) throw ReadError(path_, "the file is truncated");
}

std::string InputFile::start(std::size_t bytes) {
  std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(bytes, size_)), '\0');
  seek(0);
  read(text.data(), text.size());
  return text;
}

std::string InputFile::whole() {
  return start(static_cast<std::size_t>(size_));
}

}  // namespace oct::app
