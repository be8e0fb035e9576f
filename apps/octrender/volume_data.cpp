#include "volume_data.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <utility>

#include "failure.h"
#include "image_input.h"
#include "input_file.h"
#include "progress.h"

namespace oct::app {
namespace {

constexpr std::size_t kMaxRawSide = 65536;
constexpr std::uint64_t kMaxVoxels = std::uint64_t{1} << 33;  // 32 GiB of floats

void checkVoxelCount(const std::filesystem::path& file, std::uint64_t frameSamples, std::uint64_t frames) {
  if (frames > kMaxVoxels / frameSamples) {
    throw inputFailure(file, "the volume is too large (" + std::to_string(frames) + " B-scans of " +
                                 std::to_string(frameSamples) + " samples)");
  }
}

template <class T>
void appendSamples(const std::vector<char>& bytes, std::vector<float>& samples) {
  for (std::size_t i = 0; i < bytes.size(); i += sizeof(T)) {
    T value;
    std::memcpy(&value, bytes.data() + i, sizeof(T));
    samples.push_back(static_cast<float>(value));
  }
}

VolumeData readRaw(const std::filesystem::path& path, const RawLayout& layout) {
  InputFile file(path);
  const std::size_t bytesPerSample = layout.type == "u1" ? 1 : layout.type == "u2" ? 2 : 4;
  const std::size_t frameSamples = layout.depth * layout.ascans;
  checkVoxelCount(path, frameSamples, layout.bscans);
  const std::uint64_t wanted = std::uint64_t{frameSamples} * layout.bscans * bytesPerSample;
  if (file.size() != wanted) {
    throw inputFailure(path, "the file has " + std::to_string(file.size()) + " bytes; --raw describes " +
                                 std::to_string(wanted));
  }
  VolumeData volume{layout.depth, layout.ascans, layout.bscans, {}};
  volume.voxels.reserve(frameSamples * layout.bscans);
  std::vector<char> bytes(frameSamples * bytesPerSample);
  Progress progress("reading " + toUtf8(path.filename()), frameSamples * layout.bscans);
  for (std::size_t frame = 0; frame < layout.bscans; ++frame) {
    progress.update(frame, layout.bscans);
    file.read(bytes.data(), bytes.size());
    if (layout.type == "u1") appendSamples<std::uint8_t>(bytes, volume.voxels);
    if (layout.type == "u2") appendSamples<std::uint16_t>(bytes, volume.voxels);
    if (layout.type == "f4") appendSamples<float>(bytes, volume.voxels);
  }
  return volume;
}

}  // namespace

RawLayout parseRawLayout(const std::string& text) {
  const Failure failure =
      badCommandLine("--raw: '" + text + "' is not DEPTHxASCANSxBSCANS:TYPE with sides from 1 to " +
                     std::to_string(kMaxRawSide) + " and one of the types f4, u1, u2");
  RawLayout layout;
  const char* next = text.data();
  const char* const end = next + text.size();
  const auto side = [&](std::size_t& value, char behind) {
    const auto [stop, error] = std::from_chars(next, end, value);
    if (error != std::errc() || value < 1 || value > kMaxRawSide || stop == end || *stop != behind)
      throw failure;
    next = stop + 1;
  };
  side(layout.depth, 'x');
  side(layout.ascans, 'x');
  side(layout.bscans, ':');
  layout.type.assign(next, end);
  if (layout.type != "f4" && layout.type != "u1" && layout.type != "u2") throw failure;
  return layout;
}

VolumeData loadVolume(const std::filesystem::path& path, bool rowsAreAscans,
                      const std::optional<RawLayout>& raw) {
  if (raw) return readRaw(path, *raw);
  VolumeData volume;
  std::optional<Progress> progress;
  loadImages(path, rowsAreAscans, [&](LoadedImage loaded) {
    const Image& image = loaded.image;
    if (loaded.frame == 0) {
      if (loaded.frameCount < 2) {
        throw inputFailure(path,
                           "this is one image; a volume has three axes (B-scan, depth, A-scan). Draw it with "
                           "octrender bscan");
      }
      volume = {image.depth, image.ascans, loaded.frameCount, {}};
      checkVoxelCount(path, image.samples.size(), volume.bscans);
      volume.voxels.reserve(image.samples.size() * volume.bscans);
      progress.emplace("reading " + toUtf8(path.filename()), image.samples.size() * volume.bscans);
    }
    if (image.depth != volume.depth || image.ascans != volume.ascans) {
      throw inputFailure(path, "frame " + std::to_string(loaded.frame) + " has another size than the first");
    }
    progress->update(loaded.frame, volume.bscans);
    volume.voxels.insert(volume.voxels.end(), image.samples.begin(), image.samples.end());
  });
  return volume;
}

LateralMap loadLateralMap(const std::filesystem::path& path) {
  FrameChoice choice;
  choice.singleFits = true;
  // Rows as A-scans: what lies in a row of the file stays together in memory.
  Image image = loadImage(path, choice, true).image;
  return {image.depth, image.ascans, std::move(image.samples)};
}

std::vector<float> loadHeightMap(const std::filesystem::path& path, const VolumeData& volume) {
  LateralMap map = loadLateralMap(path);
  if (map.bscans != volume.bscans || map.ascans != volume.ascans) {
    throw inputFailure(path, "the height map has " + std::to_string(map.bscans) + " rows of " +
                                 std::to_string(map.ascans) + " samples; the volume has " +
                                 std::to_string(volume.bscans) + " B-scans of " +
                                 std::to_string(volume.ascans) + " A-scans");
  }
  return std::move(map.values);
}

}  // namespace oct::app
