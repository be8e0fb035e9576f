// Files of samples as a user names them, and what opens them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "data/arrays/sample_type.h"
#include "data/axes.h"
#include "data/formats/frames.h"
#include "data/formats/input_file.h"

namespace oct::app {

// How a file without a header is to be read. The product of the sizes fits into 60 bits.
struct RawLayout {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 1;
  SampleFormat format;
  std::optional<std::uint64_t> offset;  // bytes before the samples; without it the file holds nothing else
  std::string origin = "the layout";    // who says so, for messages

  bool operator==(const RawLayout&) const = default;
};

// What to read: a file, a folder of B-scans, "-" for the standard input, or "file.npz:name".
struct DataFile {
  std::filesystem::path path;
  std::optional<RawLayout> raw;
  // Without it picture_order, of a raw file memory_order.
  std::optional<AxisOrder> axes;

  bool operator==(const DataFile&) const = default;
};

// Frames with what lies along their axes.
struct OpenData {
  std::unique_ptr<FrameReader> frames;
  AxisOrder axes;
};

// The first bytes tell the format, not the name.
OpenData open_data(const DataFile& file);

// The same for bytes in memory; the path is for messages, and for files that a header names.
std::unique_ptr<FrameReader> open_frames(std::shared_ptr<InputFile> file, const std::string& array_name = {});

}  // namespace oct::app
