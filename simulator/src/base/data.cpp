#include "base/data.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace oct::simulator {

void RawData::resize(int spectrum_length, int a_scans, int b_scans, double width_mm, double length_mm) {
  counts_.resize(static_cast<std::size_t>(spectrum_length) * a_scans * b_scans);
  recording_.reset();
  spectrum_length_ = spectrum_length;
  a_scans_ = a_scans;
  b_scans_ = b_scans;
  width_mm_ = width_mm;
  length_mm_ = length_mm;
}

void RawData::refer(std::shared_ptr<const Recording> recording, std::uint64_t volume, double width_mm,
                    double length_mm) {
  const auto [depths, a_scans, b_scans] = recording->sizes();
  resize(2 * depths, 0, 0, width_mm, length_mm);
  a_scans_ = a_scans;
  b_scans_ = b_scans;
  recording_ = std::move(recording);
  volume_ = volume;
}

std::span<std::uint16_t> RawData::spectrum(int index) {
  return std::span(counts_).subspan(static_cast<std::size_t>(index) * spectrum_length_, spectrum_length_);
}

std::span<const std::uint16_t> RawData::spectrum(int index) const {
  return std::span(counts_).subspan(static_cast<std::size_t>(index) * spectrum_length_, spectrum_length_);
}

void Data::resize(std::array<int, 3> sizes, std::array<double, 3> ranges_mm) {
  samples_.resize(static_cast<std::size_t>(sizes[0]) * sizes[1] * sizes[2]);
  sizes_ = sizes;
  ranges_mm_ = ranges_mm;
}

void ComplexData::resize(std::array<int, 3> sizes, std::array<double, 3> ranges_mm) {
  samples_.resize(static_cast<std::size_t>(sizes[0]) * sizes[1] * sizes[2]);
  sizes_ = sizes;
  ranges_mm_ = ranges_mm;
}

void Data::set_ranges(std::array<double, 3> ranges_mm) {
  for (const double range : ranges_mm)
    if (!(std::isfinite(range) && range >= 0.0))
      throw std::invalid_argument("A range must be finite and not negative. ");
  ranges_mm_ = ranges_mm;
}

}  // namespace oct::simulator
