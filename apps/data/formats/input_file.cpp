#include "data/formats/input_file.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>
#include <utility>

#include "data/file_errors.h"
#include "data/formats/standard_input.h"

namespace oct::app {
namespace {

constexpr std::size_t max_piped_bytes = std::size_t{8} << 30;

std::string read_standard_input(const std::filesystem::path& path) {
  prepare_standard_input();
  std::string content;
  std::string piece(std::size_t{1} << 20, '\0');
  do {
    std::cin.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    content.append(piece, 0, static_cast<std::size_t>(std::cin.gcount()));
    if (content.size() > max_piped_bytes) {
      throw ReadError(path, "more than 8 GiB come from the standard input; give the name of a file");
    }
  } while (std::cin);
  return content;
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& path) : path_(path) {
  if (path == "-") {
    *this = InputFile("standard input", read_standard_input("standard input"));
    return;
  }
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) throw ReadError(path, "no such file");
  if (!std::filesystem::is_regular_file(status)) throw ReadError(path, "not a regular file");
  size_ = std::filesystem::file_size(path, error);
  if (error) throw ReadError(path, error.message());
  stream_ = std::make_unique<std::ifstream>(path, std::ios::binary);
  if (!*stream_) throw ReadError(path, "cannot be opened for reading");
  if (size_ == 0) throw ReadError(path, "the file is empty");
}

InputFile::InputFile(const std::filesystem::path& path, std::string content)
    : path_(path), size_(content.size()) {
  if (size_ == 0) throw ReadError(path, "the file is empty");
  stream_ = std::make_unique<std::istringstream>(std::move(content), std::ios::binary);
}

void InputFile::seek(std::uint64_t offset) {
  stream_->clear();
  if (!stream_->seekg(static_cast<std::streamoff>(offset))) throw ReadError(path_, "reading failed");
}

void InputFile::read(void* destination, std::size_t bytes) {
  if (read_some(destination, bytes) != bytes) throw ReadError(path_, "the file is truncated");
}

std::size_t InputFile::read_some(void* destination, std::size_t bytes) noexcept {
  stream_->read(static_cast<char*>(destination), static_cast<std::streamsize>(bytes));
  return static_cast<std::size_t>(stream_->gcount());
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
