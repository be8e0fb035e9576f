// The bytes of samples one after another, whether they lie in the file as they are or compressed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "data/formats/input_file.h"

namespace oct::app {

enum class Compression { none, zlib_or_gzip, deflate };

class ByteStream {
 public:
  ByteStream() = default;
  virtual ~ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;

  // Cheap forwards; backwards everything is decompressed anew.
  virtual void seek(std::uint64_t position) = 0;

  // Throws a ReadError when there are fewer bytes.
  virtual void read(void* destination, std::size_t bytes) = 0;

  // What no header can promise more than.
  virtual std::uint64_t most_bytes() const = 0;

  virtual const std::filesystem::path& path() const = 0;
};

// What lies in the file from `begin` to `end`, which may be past its end.
std::unique_ptr<ByteStream> open_bytes(std::shared_ptr<InputFile> file, Compression compression,
                                       std::uint64_t begin = 0, std::uint64_t end = UINT64_MAX);

}  // namespace oct::app
