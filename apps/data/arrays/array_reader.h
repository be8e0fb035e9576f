// Arrays whose samples lie one after another. Readers of headers describe them, one reader does the rest.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "data/arrays/byte_stream.h"
#include "data/arrays/sample_type.h"
#include "data/formats/frames.h"

namespace oct::app {

struct ArrayDescription {
  std::array<std::uint64_t, 3> sizes{1, 1, 1};  // the fastest axis first
  std::array<std::uint8_t, 3> picture_axes{0, 1, 2};
  SampleFormat format;
  double slope = 1;  // value = slope * sample + intercept
  double intercept = 0;
  FileSpacing spacing;
  std::string origin;  // "the NRRD header": who says so, for messages

  std::filesystem::path data_file;  // empty: that of the header
  Compression compression = Compression::none;
  std::uint64_t data_begin = 0;  // where in the data file
  std::uint64_t skip = 0;   // bytes, decompressed ones where they are compressed, before the first sample
  bool at_the_end = false;  // the samples are the last bytes; data_begin and skip do not count
};

// Fails where the file cannot hold what the description tells.
std::unique_ptr<FrameReader> open_array(std::shared_ptr<InputFile> header_file, ArrayDescription description);

// The samples begin where the description's skip says.
std::unique_ptr<FrameReader> open_array(std::unique_ptr<ByteStream> stream,
                                        const ArrayDescription& description);

}  // namespace oct::app
