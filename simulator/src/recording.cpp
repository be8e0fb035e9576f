#include "recording.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace oct::simulator {
namespace {

/// Depth samples become half of an even spectrum length that must be long enough to be resampled.
constexpr std::uint64_t kLeastDepth = 4;
constexpr std::uint64_t kLargestSide = 65536;

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& reason) {
  const auto name = file.u8string();
  throw std::runtime_error(std::string(name.begin(), name.end()) + ": " + reason + ". ");
}

/// What stands behind a key of the description.
std::string_view valueOf(std::string_view description, std::string_view key) {
  const auto place = description.find(key);
  if (place == std::string_view::npos) return {};
  auto value = description.substr(place + key.size());
  value.remove_prefix(std::min(value.find_first_not_of(" :"), value.size()));
  return value;
}

std::vector<std::uint64_t> shapeOf(std::string_view description) {
  auto text = valueOf(description, "'shape'");
  text = text.substr(0, text.find(')'));
  std::vector<std::uint64_t> shape;
  const char* next = text.data();
  while (next != text.data() + text.size()) {
    std::uint64_t side = 0;
    const auto [end, error] = std::from_chars(next, text.data() + text.size(), side);
    if (error == std::errc::invalid_argument) {
      ++next;
      continue;
    }
    shape.push_back(error == std::errc() ? side : kLargestSide + 1);
    next = end;
  }
  return shape;
}

/// Reads magic, version and description, which leaves the stream at the first sample.
std::string readDescription(std::ifstream& stream, const std::filesystem::path& file) {
  char magic[8] = {};
  stream.read(magic, sizeof magic);
  if (!stream || std::memcmp(magic, "\x93NUMPY", 6) != 0) fail(file, "this is not a NumPy array");
  const int lengthBytes = magic[6] == 1 ? 2 : 4;
  unsigned char digits[4] = {};
  stream.read(reinterpret_cast<char*>(digits), lengthBytes);
  const std::uint32_t length = digits[0] + 256u * digits[1] + 65536u * digits[2] + 16777216u * digits[3];
  if (!stream || length > 1u << 20) fail(file, "the array has a damaged description");
  std::string description(length, '\0');
  stream.read(description.data(), length);
  if (!stream) fail(file, "the array ends in its description");
  return description;
}

/// From rows of A-scans at one depth each to whole A-scans.
void transpose(const std::vector<float>& bScan, int depths, int aScans, float* samples) {
  for (int aScan = 0; aScan < aScans; ++aScan)
    for (int depth = 0; depth < depths; ++depth)
      samples[static_cast<std::size_t>(aScan) * depths + depth] =
          bScan[static_cast<std::size_t>(depth) * aScans + aScan];
}

}  // namespace

Recording readRecording(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) fail(file, "the file cannot be opened");
  const auto description = readDescription(stream, file);
  if (!valueOf(description, "'descr'").starts_with("'<f4'") ||
      !valueOf(description, "'fortran_order'").starts_with("False"))
    fail(file, "the array does not hold little-endian 32-bit floats in C order");
  auto shape = shapeOf(description);
  if (shape.size() == 3) shape.insert(shape.begin(), 1);
  if (shape.size() != 4) fail(file, "the array has neither three nor four axes");
  for (const auto side : shape)
    if (side < 1 || side > kLargestSide) fail(file, "an axis of the array is empty or too long");
  if (shape[2] < kLeastDepth) fail(file, "the A-scans of the array are too short");

  // Before memory is taken, the file must prove that it holds as much. No product here exceeds 64 bits.
  const auto start = stream.tellg();
  stream.seekg(0, std::ios::end);
  const auto floats = static_cast<std::uint64_t>(stream.tellg() - start) / sizeof(float);
  stream.seekg(start);
  const std::uint64_t frame = shape[2] * shape[3];
  if (shape[0] * shape[1] > floats / frame) fail(file, "the array ends before its last sample");

  Recording recording{
      .sizes = {static_cast<int>(shape[2]), static_cast<int>(shape[3]), static_cast<int>(shape[1])},
      .volumes = {}};
  std::vector<float> bScan(frame);
  for (std::uint64_t volume = 0; volume < shape[0]; ++volume) {
    auto samples = std::make_shared<Recording::Samples>(frame * shape[1]);
    for (std::uint64_t number = 0; number < shape[1]; ++number) {
      stream.read(reinterpret_cast<char*>(bScan.data()), static_cast<std::streamsize>(frame * sizeof(float)));
      transpose(bScan, recording.sizes[0], recording.sizes[1], samples->data() + number * frame);
    }
    recording.volumes.push_back(std::move(samples));
  }
  if (!stream) fail(file, "the file cannot be read");
  return recording;
}

}  // namespace oct::simulator
