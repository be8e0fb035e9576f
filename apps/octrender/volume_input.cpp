#include "octrender/volume_input.h"

#include "command_line/progress.h"

namespace oct::app {

VolumeData read_volume(const VolumeInput& input) {
  const std::filesystem::path path = from_utf8(input.file);
  const ProgressFunction progress = reading_progress(path);
  if (input.raw) return load_raw_volume(path, *input.raw, progress);
  try {
    return load_volume(path, input.transpose, progress);
  } catch (const NoVolumeError& error) {
    throw ReadError(error, "Draw it with octrender bscan");
  }
}

ValueRange volume_range(const std::string& origin, const std::vector<float>& voxels,
                        const std::optional<ValueRange>& given, Shares shares) {
  if (given) return *given;
  const Progress progress("finding the display range", voxels.size());
  const std::optional<ValueRange> range = quick_range(voxels, shares);
  if (!range) throw ReadError(from_utf8(origin), "the volume holds no finite sample");
  return *range;
}

}  // namespace oct::app
