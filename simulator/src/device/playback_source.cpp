#include "device/playback_source.h"

#include "optics/camera.h"

#include <cmath>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace oct::simulator {
namespace {

/// Brightness of the reference arm that nobody measured, as a part of the camera's range.
constexpr float kReference = 0.6f;

}  // namespace

PlaybackSource::PlaybackSource(std::shared_ptr<const Recording> recording, double depthMm, double widthMm,
                               double lengthMm)
    : recording_(std::move(recording)),
      depthMm_(depthMm),
      pattern_(recording_->sizes()[1], recording_->sizes()[2], widthMm, lengthMm) {
  if (!(depthMm > 0.0 && std::isfinite(depthMm)))
    throw std::invalid_argument("The depth of a recording must be above zero. ");
}

Calibration PlaybackSource::calibration() const {
  const auto pixels = static_cast<std::size_t>(spectrumLength());
  Calibration calibration{.depthRangeMm = depthMm_,
                          .wavenumberPositions = std::vector<double>(pixels),
                          .compensationPhase = std::vector<double>(pixels),
                          .background = std::vector<float>(pixels, kReference * Camera::kLargestCount)};
  std::iota(calibration.wavenumberPositions.begin(), calibration.wavenumberPositions.end(), 0.0);
  return calibration;
}

void PlaybackSource::expose(const Exposure& exposure, RawData& raw) {
  raw.refer(recording_, exposure.volume, pattern_.widthMm(), pattern_.lengthMm());
}

}  // namespace oct::simulator
