/// @file
/// The buffers that go from device to processing to client.
#pragma once

#include "base/handle_table.h"
#include "base/recording.h"

#include <array>
#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace oct::simulator {

/// Camera readings of one volume, or in their place a volume that was recorded processed.
class RawData : public HandleObject {
 public:
  static constexpr const char* kName = "raw data";

  /// Makes room for a volume; what was stored is lost.
  void resize(int spectrumLength, int aScans, int bScans, double widthMm, double lengthMm);

  /// Refers to a volume that needs no processing; what was stored is lost.
  void refer(std::shared_ptr<const Recording> recording, std::uint64_t volume, double widthMm,
             double lengthMm);

  int spectrumLength() const { return spectrumLength_; }
  int aScans() const { return aScans_; }
  int bScans() const { return bScans_; }
  double widthMm() const { return widthMm_; }
  double lengthMm() const { return lengthMm_; }
  bool empty() const { return counts_.empty() && !recording_; }

  /// The recording of the volume, and its number; null if there are camera readings.
  const Recording* recording() const { return recording_.get(); }
  std::uint64_t volume() const { return volume_; }

  /// @param index number of the A-scan within the volume, B-scan after B-scan
  std::span<std::uint16_t> spectrum(int index);
  std::span<const std::uint16_t> spectrum(int index) const;

 private:
  int spectrumLength_ = 0;
  int aScans_ = 0;
  int bScans_ = 0;
  double widthMm_ = 0.0;
  double lengthMm_ = 0.0;
  std::vector<std::uint16_t> counts_;
  std::shared_ptr<const Recording> recording_;
  std::uint64_t volume_ = 0;
};

/// A processed volume. Axis 0 is depth, the fastest in memory; then A-scans; then B-scans.
class Data : public HandleObject {
 public:
  static constexpr const char* kName = "data";

  /// Makes room for a volume; what was stored is lost.
  void resize(std::array<int, 3> sizes, std::array<double, 3> rangesMm);

  /// Throws std::invalid_argument unless all ranges are finite and not negative.
  void setRanges(std::array<double, 3> rangesMm);

  const std::array<int, 3>& sizes() const { return sizes_; }
  const std::array<double, 3>& rangesMm() const { return rangesMm_; }
  std::vector<float>& samples() { return samples_; }

 private:
  std::array<int, 3> sizes_{};
  std::array<double, 3> rangesMm_{};
  std::vector<float> samples_;
};

/// The complex field of a volume, laid out as Data.
class ComplexData : public HandleObject {
 public:
  static constexpr const char* kName = "complex data";

  /// Makes room for a volume; what was stored is lost.
  void resize(std::array<int, 3> sizes, std::array<double, 3> rangesMm);

  const std::array<int, 3>& sizes() const { return sizes_; }
  const std::array<double, 3>& rangesMm() const { return rangesMm_; }
  std::vector<std::complex<float>>& samples() { return samples_; }
  const std::vector<std::complex<float>>& samples() const { return samples_; }

 private:
  std::array<int, 3> sizes_{};
  std::array<double, 3> rangesMm_{};
  std::vector<std::complex<float>> samples_;
};

}  // namespace oct::simulator
