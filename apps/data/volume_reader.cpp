#include "data/volume_reader.h"

#include <cstring>
#include <utility>

#include "data/formats/input_file.h"
#include "data/image_reader.h"

namespace oct::app {
namespace {

constexpr std::uint64_t max_voxels = std::uint64_t{1} << 33;  // 32 GiB of floats

void check_voxel_count(const std::filesystem::path& file, std::uint64_t frame_samples, std::uint64_t frames) {
  if (frames > max_voxels / frame_samples) {
    throw ReadError(file, "the volume is too large (" + std::to_string(frames) + " B-scans of " +
                              std::to_string(frame_samples) + " samples)");
  }
}

template <class T>
void append_samples(const std::vector<char>& bytes, std::vector<float>& samples) {
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

RawSample raw_sample(RawLayout::Type type) {
  switch (type) {
    case RawLayout::Type::uint8:
      return {1, append_samples<std::uint8_t>};
    case RawLayout::Type::uint16:
      return {2, append_samples<std::uint16_t>};
    default:
      return {4, append_samples<float>};
  }
}

}  // namespace

VolumeData load_volume(const std::filesystem::path& path, bool rows_are_ascans,
                       const ProgressFunction& progress) {
  VolumeData volume;
  const auto take = [&](const LoadedImage& loaded) {
    const Image& image = loaded.image;
    if (loaded.frame == 0) {
      if (loaded.frame_count < 2) {
        throw NoVolumeError(path, "this is one image; a volume has three axes (B-scan, depth, A-scan)");
      }
      volume = {image.depth, image.ascans, loaded.frame_count, {}};
      check_voxel_count(path, image.samples.size(), volume.bscans);
      volume.voxels.reserve(image.samples.size() * volume.bscans);
    }
    if (image.depth != volume.depth || image.ascans != volume.ascans) {
      throw ReadError(path, "frame " + std::to_string(loaded.frame) + " has another size than the first");
    }
    volume.voxels.insert(volume.voxels.end(), image.samples.begin(), image.samples.end());
  };
  load_images(path, rows_are_ascans, take, progress);
  return volume;
}

VolumeData load_raw_volume(const std::filesystem::path& path, const RawLayout& layout,
                           const ProgressFunction& progress) {
  InputFile file(path);
  const RawSample sample = raw_sample(layout.type);
  const std::size_t frame_samples = layout.depth * layout.ascans;
  check_voxel_count(path, frame_samples, layout.bscans);
  const std::uint64_t wanted = std::uint64_t{frame_samples} * layout.bscans * sample.bytes;
  if (file.size() != wanted) {
    throw ReadError(path, "the file has " + std::to_string(file.size()) + " bytes; " + layout.origin +
                              " describes " + std::to_string(wanted));
  }
  VolumeData volume{layout.depth, layout.ascans, layout.bscans, {}};
  volume.voxels.reserve(frame_samples * layout.bscans);
  std::vector<char> bytes(frame_samples * sample.bytes);
  for (std::size_t frame = 0; frame < layout.bscans; ++frame) {
    progress(frame * frame_samples, layout.bscans * frame_samples);
    file.read(bytes.data(), bytes.size());
    sample.append(bytes, volume.voxels);
  }
  return volume;
}

LateralMap load_lateral_map(const std::filesystem::path& path) {
  FrameChoice choice;
  choice.single_fits = true;
  // Rows as A-scans: what lies in a row of the file stays together in memory.
  Image image = load_image(path, choice, true).image;
  return {image.depth, image.ascans, std::move(image.samples)};
}

std::vector<float> load_height_map(const std::filesystem::path& path, const VolumeData& volume) {
  LateralMap map = load_lateral_map(path);
  if (map.bscans != volume.bscans || map.ascans != volume.ascans) {
    throw ReadError(path, "the height map has " + std::to_string(map.bscans) + " rows of " +
                              std::to_string(map.ascans) + " samples; the volume has " +
                              std::to_string(volume.bscans) + " B-scans of " + std::to_string(volume.ascans) +
                              " A-scans");
  }
  return std::move(map.values);
}

}  // namespace oct::app
