#include "device/playback_source.h"

#include <cmath>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "optics/camera.h"

namespace oct::simulator {
namespace {

// Brightness of the reference arm that nobody measured, as a part of the camera's range.
constexpr float reference = 0.6F;

}  // namespace

PlaybackSource::PlaybackSource(std::shared_ptr<const Recording> recording, double depth_mm, double width_mm,
                               double length_mm)
    : recording_(std::move(recording)),
      depth_mm_(depth_mm),
      pattern_(recording_->sizes()[1], recording_->sizes()[2], width_mm, length_mm) {
  if (!(depth_mm > 0.0 && std::isfinite(depth_mm)))
    throw std::invalid_argument("The depth of a recording must be above zero. ");
}

Calibration PlaybackSource::calibration() const {
  const auto pixels = static_cast<std::size_t>(spectrum_length());
  Calibration calibration{.depth_range_mm = depth_mm_,
                          .wavenumber_positions = std::vector<double>(pixels),
                          .compensation_phase = std::vector<double>(pixels),
                          .background = std::vector<float>(pixels, reference * Camera::largest_count)};
  std::iota(calibration.wavenumber_positions.begin(), calibration.wavenumber_positions.end(), 0.0);
  return calibration;
}

void PlaybackSource::expose(const Exposure& exposure, RawData& raw) {
  raw.refer(recording_, exposure.volume, pattern_.width_mm(), pattern_.length_mm());
}

}  // namespace oct::simulator
