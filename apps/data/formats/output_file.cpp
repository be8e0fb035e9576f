#include "data/formats/output_file.h"

#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "data/file_errors.h"

namespace oct::app {
namespace {

// In the same folder, because a file can be renamed in one step only within a file system. The number keeps
// two runs with the same output apart.
std::filesystem::path partial_name(const std::filesystem::path& path) {
  std::filesystem::path name = path;
  name.replace_extension();
  name += ".";
  name += std::to_string(std::random_device()());
  name += ".part";
  name += path.extension();
  return name;
}

}  // namespace

PartialFile::PartialFile(std::filesystem::path path)
    : path_(std::move(path)), partial_(partial_name(path_)) {}

PartialFile::~PartialFile() {
  std::error_code ignored;
  std::filesystem::remove(partial_, ignored);
}

void PartialFile::commit() {
  std::error_code error;
  std::filesystem::rename(partial_, path_, error);
  if (error) throw WriteError(path_, error.message());
}

OutputFile::OutputFile(std::filesystem::path path)
    : file_(std::move(path)), stream_(file_.partial_path(), std::ios::binary) {
  if (!stream_) throw WriteError(file_.final_path(), "cannot be opened for writing");
}

void OutputFile::write(const void* bytes, std::size_t count) {
  stream_.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  if (!stream_) throw WriteError(file_.final_path(), "writing failed");
}

void OutputFile::commit() {
  stream_.close();
  if (!stream_) throw WriteError(file_.final_path(), "writing failed");
  file_.commit();
}

}  // namespace oct::app
