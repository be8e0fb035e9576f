#include "data/volume_reader.h"

#include <cstring>
#include <utility>

#include "data/formats/input_file.h"
#include "data/image_reader.h"

namespace oct::app {
namespace {

constexpr std::uint64_t kMaxVoxels = std::uint64_t{1} << 33;  // 32 GiB of floats

void checkVoxelCount(const std::filesystem::path& file, std::uint64_t frameSamples, std::uint64_t frames) {
  if (frames > kMaxVoxels / frameSamples) {
    throw ReadError(file, "the volume is too large (" + std::to_string(frames) + " B-scans of " +
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

struct RawSample {
  std::size_t bytes;
  void (*append)(const std::vector<char>& bytes, std::vector<float>& samples);
};

RawSample rawSample(RawLayout::Type type) {
  switch (type) {
    case RawLayout::Type::UInt8:
      return {1, appendSamples<std::uint8_t>};
    case RawLayout::Type::UInt16:
      return {2, appendSamples<std::uint16_t>};
    default:
      return {4, appendSamples<float>};
  }
}

}  // namespace

VolumeData loadVolume(const std::filesystem::path& path, bool rowsAreAscans,
                      const ProgressFunction& progress) {
  VolumeData volume;
  const auto take = [&](const LoadedImage& loaded) {
    const Image& image = loaded.image;
    if (loaded.frame == 0) {
      if (loaded.frameCount < 2) {
        throw NoVolumeError(path, "this is one image; a volume has three axes (B-scan, depth, A-scan)");
      }
      volume = {image.depth, image.ascans, loaded.frameCount, {}};
      checkVoxelCount(path, image.samples.size(), volume.bscans);
      volume.voxels.reserve(image.samples.size() * volume.bscans);
    }
    if (image.depth != volume.depth || image.ascans != volume.ascans) {
      throw ReadError(path, "frame " + std::to_string(loaded.frame) + " has another size than the first");
    }
    volume.voxels.insert(volume.voxels.end(), image.samples.begin(), image.samples.end());
  };
  loadImages(path, rowsAreAscans, take, progress);
  return volume;
}

VolumeData loadRawVolume(const std::filesystem::path& path, const RawLayout& layout,
                         const ProgressFunction& progress) {
  InputFile file(path);
  const RawSample sample = rawSample(layout.type);
  const std::size_t frameSamples = layout.depth * layout.ascans;
  checkVoxelCount(path, frameSamples, layout.bscans);
  const std::uint64_t wanted = std::uint64_t{frameSamples} * layout.bscans * sample.bytes;
  if (file.size() != wanted) {
    throw ReadError(path, "the file has " + std::to_string(file.size()) + " bytes; " + layout.origin +
                              " describes " + std::to_string(wanted));
  }
  VolumeData volume{layout.depth, layout.ascans, layout.bscans, {}};
  volume.voxels.reserve(frameSamples * layout.bscans);
  std::vector<char> bytes(frameSamples * sample.bytes);
  for (std::size_t frame = 0; frame < layout.bscans; ++frame) {
    progress(frame * frameSamples, layout.bscans * frameSamples);
    file.read(bytes.data(), bytes.size());
    sample.append(bytes, volume.voxels);
  }
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
    throw ReadError(path, "the height map has " + std::to_string(map.bscans) + " rows of " +
                              std::to_string(map.ascans) + " samples; the volume has " +
                              std::to_string(volume.bscans) + " B-scans of " + std::to_string(volume.ascans) +
                              " A-scans");
  }
  return std::move(map.values);
}

}  // namespace oct::app
