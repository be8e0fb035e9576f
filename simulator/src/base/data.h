// The buffers that go from device to processing to client.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/handle_table.h"
#include "base/recording.h"

namespace oct::simulator {

// Camera readings of one volume, or in their place a volume that was recorded processed.
class RawData : public HandleObject {
 public:
  static constexpr const char* name = "raw data";

  // Makes room for a volume; what was stored is lost.
  void resize(int spectrum_length, int a_scans, int b_scans, double width_mm, double length_mm);

  // Refers to a volume that needs no processing; what was stored is lost.
  void refer(std::shared_ptr<const Recording> recording, std::uint64_t volume, double width_mm,
             double length_mm);

  int spectrum_length() const { return spectrum_length_; }
  int a_scans() const { return a_scans_; }
  int b_scans() const { return b_scans_; }
  double width_mm() const { return width_mm_; }
  double length_mm() const { return length_mm_; }
  bool empty() const { return counts_.empty() && !recording_; }

  // The recording of the volume, and its number; null if there are camera readings.
  const Recording* recording() const { return recording_.get(); }
  std::uint64_t volume() const { return volume_; }

  // index: number of the A-scan within the volume, B-scan after B-scan
  std::span<std::uint16_t> spectrum(int index);
  std::span<const std::uint16_t> spectrum(int index) const;

 private:
  int spectrum_length_ = 0;
  int a_scans_ = 0;
  int b_scans_ = 0;
  double width_mm_ = 0.0;
  double length_mm_ = 0.0;
  std::vector<std::uint16_t> counts_;
  std::shared_ptr<const Recording> recording_;
  std::uint64_t volume_ = 0;
};

// A processed volume. Axis 0 is depth, the fastest in memory; then A-scans; then B-scans.
class Data : public HandleObject {
 public:
  static constexpr const char* name = "data";

  // Makes room for a volume; what was stored is lost.
  void resize(std::array<int, 3> sizes, std::array<double, 3> ranges_mm);

  // Throws std::invalid_argument unless all ranges are finite and not negative.
  void set_ranges(std::array<double, 3> ranges_mm);

  const std::array<int, 3>& sizes() const { return sizes_; }
  const std::array<double, 3>& ranges_mm() const { return ranges_mm_; }
  std::vector<float>& samples() { return samples_; }

 private:
  std::array<int, 3> sizes_{};
  std::array<double, 3> ranges_mm_{};
  std::vector<float> samples_;
};

// The complex field of a volume, laid out as Data.
class ComplexData : public HandleObject {
 public:
  static constexpr const char* name = "complex data";

  // Makes room for a volume; what was stored is lost.
  void resize(std::array<int, 3> sizes, std::array<double, 3> ranges_mm);

  const std::array<int, 3>& sizes() const { return sizes_; }
  const std::array<double, 3>& ranges_mm() const { return ranges_mm_; }
  std::vector<std::complex<float>>& samples() { return samples_; }
  const std::vector<std::complex<float>>& samples() const { return samples_; }

 private:
  std::array<int, 3> sizes_{};
  std::array<double, 3> ranges_mm_{};
  std::vector<std::complex<float>> samples_;
};

}  // namespace oct::simulator
