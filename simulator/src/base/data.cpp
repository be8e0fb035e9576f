#include "base/data.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace oct::simulator {

void RawData::resize(int spectrumLength, int aScans, int bScans, double widthMm, double lengthMm) {
  counts_.resize(static_cast<std::size_t>(spectrumLength) * aScans * bScans);
  recording_.reset();
  spectrumLength_ = spectrumLength;
  aScans_ = aScans;
  bScans_ = bScans;
  widthMm_ = widthMm;
  lengthMm_ = lengthMm;
}

void RawData::refer(std::shared_ptr<const Recording> recording, std::uint64_t volume, double widthMm,
                    double lengthMm) {
  const auto [depths, aScans, bScans] = recording->sizes();
  resize(2 * depths, 0, 0, widthMm, lengthMm);
  aScans_ = aScans;
  bScans_ = bScans;
  recording_ = std::move(recording);
  volume_ = volume;
}

std::span<std::uint16_t> RawData::spectrum(int index) {
  return std::span(counts_).subspan(static_cast<std::size_t>(index) * spectrumLength_, spectrumLength_);
}

std::span<const std::uint16_t> RawData::spectrum(int index) const {
  return std::span(counts_).subspan(static_cast<std::size_t>(index) * spectrumLength_, spectrumLength_);
}

void Data::resize(std::array<int, 3> sizes, std::array<double, 3> rangesMm) {
  samples_.resize(static_cast<std::size_t>(sizes[0]) * sizes[1] * sizes[2]);
  sizes_ = sizes;
  rangesMm_ = rangesMm;
}

void ComplexData::resize(std::array<int, 3> sizes, std::array<double, 3> rangesMm) {
  samples_.resize(static_cast<std::size_t>(sizes[0]) * sizes[1] * sizes[2]);
  sizes_ = sizes;
  rangesMm_ = rangesMm;
}

void Data::setRanges(std::array<double, 3> rangesMm) {
  for (const double range : rangesMm)
    if (!(std::isfinite(range) && range >= 0.0))
      throw std::invalid_argument("A range must be finite and not negative. ");
  rangesMm_ = rangesMm;
}

}  // namespace oct::simulator
