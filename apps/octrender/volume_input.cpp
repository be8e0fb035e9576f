#include "octrender/volume_input.h"

#include "command_line/progress.h"

namespace oct::app {

VolumeData readVolume(const VolumeInput& input) {
  const std::filesystem::path path = fromUtf8(input.file);
  const ProgressFunction progress = readingProgress(path);
  if (input.raw) return loadRawVolume(path, *input.raw, progress);
  try {
    return loadVolume(path, input.transpose, progress);
  } catch (const NoVolumeError& error) {
    throw ReadError(error, "Draw it with octrender bscan");
  }
}

ValueRange volumeRange(const std::string& origin, const std::vector<float>& voxels,
                       const std::optional<ValueRange>& given, Shares shares) {
  if (given) return *given;
  const Progress progress("finding the display range", voxels.size());
  const std::optional<ValueRange> range = quickRange(voxels, shares);
  if (!range) throw ReadError(fromUtf8(origin), "the volume holds no finite sample");
  return *range;
}

}  // namespace oct::app
