#include "processing/processing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>

#include "base/parallel.h"
#include "optics/camera.h"
#include "signals/fourier.h"
#include "vec/vec.h"

namespace oct::simulator {
namespace {

// With fewer A-scans per B-scan their mean would hold too much of the sample, and the calibrated background
// is the better one.
constexpr int minimum_for_mean = 16;

// As many readings of 16 bits have a sum of 32 bits.
constexpr int summable = 65536;

// Keeps the logarithm finite: -60 dB.
constexpr float least_power = 1e-6F;

}  // namespace

// Takes groups of consecutive A-scans from camera readings to fields in depth; one per thread.
class Processing::Transformation {
 public:
  // means: one spectrum per B-scan, to be taken away from its A-scans
  Transformation(const Processing& processing, const RawData& raw, const std::vector<float>& means)
      : processing_(processing),
        raw_(raw),
        means_(means),
        length_(processing.spectrum_length_),
        fourier_(length_),
        signals_(static_cast<std::size_t>(length_) * Lanes::count),
        signal_(length_),
        even_(length_),
        waves_(length_),
        fields_(length_),
        field_(length_ / 2) {}

  // first: number of the group's first A-scan; beyond the last A-scan the last is repeated
  void run(int first) {
    const int last = raw_.a_scans() * raw_.b_scans() - 1;
    for (int lane = 0; lane < Lanes::count; ++lane) {
      const int index = std::min(first + lane, last);
      const float* const mean = means_.data() + static_cast<std::size_t>(index / raw_.a_scans()) * length_;
      vec::subtract(signals_.data() + lane * length_, raw_.spectrum(index).data(), mean, length_);
    }
    join_lanes(signals_.data(), length_, signal_.data());
    processing_.to_even_wavenumbers_.apply(signal_.data(), even_.data());
    for (int i = 0; i < length_; ++i) {
      const auto weight = processing_.weights_[i];
      waves_[i] = {even_[i] * weight.real(), even_[i] * weight.imag()};
    }
    fourier_.forward(waves_.data(), fields_.data());
  }

  // The field of one A-scan of the group.
  // room: where it shall lie; null for memory that the next call overwrites
  const std::complex<float>* field(int lane, std::complex<float>* room) {
    if (!room) room = field_.data();
    take_lane(fields_.data(), lane, length_ / 2, room);
    return room;
  }

 private:
  const Processing& processing_;
  const RawData& raw_;
  const std::vector<float>& means_;
  int length_;
  LaneFourier fourier_;
  std::vector<float> signals_;
  std::vector<Lanes> signal_;
  std::vector<Lanes> even_;
  std::vector<std::complex<Lanes>> waves_;
  std::vector<std::complex<Lanes>> fields_;
  std::vector<std::complex<float>> field_;
};

Processing::Processing(const Calibration& calibration)
    : spectrum_length_(static_cast<int>(calibration.wavenumber_positions.size())),
      depth_range_mm_(calibration.depth_range_mm),
      background_(calibration.background),
      to_even_wavenumbers_(spectrum_length_, invert_positions(calibration.wavenumber_positions)) {
  if (calibration.compensation_phase.size() != calibration.wavenumber_positions.size() ||
      calibration.background.size() != calibration.wavenumber_positions.size())
    throw std::invalid_argument("The sequences of a calibration differ in length. ");
  reference_intensity_ =
      vec::extremes(background_.data(), background_.size()).highest / Camera::largest_count;
  const auto places = invert_positions(calibration.wavenumber_positions);
  const auto phase = read_linear(calibration.compensation_phase, places);
  for (int i = 0; i < spectrum_length_; ++i) {
    const double hann = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * i / (spectrum_length_ - 1));
    const double scale = hann / std::sqrt(static_cast<double>(spectrum_length_));
    weights_.emplace_back(std::polar(scale, phase[i]));
  }
}

void Processing::execute(const RawData& raw, int workers) {
  const auto output = output_.lock();
  const auto complex_output = complex_output_.lock();
  if (!output && !complex_output) throw std::logic_error("No output was set, or it was cleared. ");
  if (raw.empty()) throw std::invalid_argument("The raw data is empty. ");
  if (raw.spectrum_length() != spectrum_length_)
    throw std::invalid_argument("The raw data comes from a device with another spectrum length. ");

  const int depths = spectrum_length_ / 2;
  const std::array sizes{depths, raw.a_scans(), raw.b_scans()};
  const std::array ranges{depth_range_mm_, raw.width_mm(), raw.length_mm()};
  if (raw.recording() && complex_output)
    throw std::invalid_argument("A recorded volume has no complex field. ");
  if (output) output->resize(sizes, ranges);
  if (raw.recording()) {
    raw.recording()->play(raw.volume(), output->samples(), workers);
    return;
  }
  if (complex_output) complex_output->resize(sizes, ranges);
  float* const samples = output ? output->samples().data() : nullptr;
  std::complex<float>* const fields = complex_output ? complex_output->samples().data() : nullptr;
  const auto means = backgrounds(raw, workers);
  reference_intensity_ = vec::extremes(means.data(), means.size()).highest / Camera::largest_count;

  const int a_scans = raw.a_scans() * raw.b_scans();
  const int groups = (a_scans + Lanes::count - 1) / Lanes::count;
  parallel_ranges(groups, workers, [&](int begin, int end) {
    Transformation transformation(*this, raw, means);
    for (int group = begin; group < end; ++group) {
      transformation.run(group * Lanes::count);
      for (int lane = 0; lane < Lanes::count; ++lane) {
        const int index = group * Lanes::count + lane;
        if (index >= a_scans) break;
        const std::size_t first = static_cast<std::size_t>(index) * depths;
        const auto* const field = transformation.field(lane, fields ? fields + first : nullptr);
        if (!samples) continue;
        vec::powers(samples + first, reinterpret_cast<const float*>(field), depths);
        vec::decibels(samples + first, samples + first, depths, least_power);
      }
    }
  });
}

// One spectrum per B-scan: what all its A-scans have in common.
std::vector<float> Processing::backgrounds(const RawData& raw, int workers) const {
  std::vector<float> means(static_cast<std::size_t>(raw.b_scans()) * spectrum_length_);
  parallel_ranges(raw.b_scans(), workers, [&](int begin, int end) {
    std::vector<double> wholes(spectrum_length_);
    std::vector<std::uint32_t> sums(spectrum_length_);
    for (int b_scan = begin; b_scan < end; ++b_scan) {
      float* const mean = means.data() + static_cast<std::size_t>(b_scan) * spectrum_length_;
      if (raw.a_scans() < minimum_for_mean) {
        std::copy(background_.begin(), background_.end(), mean);
        continue;
      }
      std::fill(wholes.begin(), wholes.end(), 0.0);
      for (int first = 0; first < raw.a_scans(); first += summable) {
        std::fill(sums.begin(), sums.end(), 0U);
        const int last = first + std::min(summable, raw.a_scans() - first);
        for (int a_scan = first; a_scan < last; ++a_scan) {
          const auto* const spectrum = raw.spectrum(b_scan * raw.a_scans() + a_scan).data();
          for (int i = 0; i < spectrum_length_; ++i) sums[i] += spectrum[i];
        }
        for (int i = 0; i < spectrum_length_; ++i) wholes[i] += sums[i];
      }
      for (int i = 0; i < spectrum_length_; ++i) mean[i] = static_cast<float>(wholes[i] / raw.a_scans());
    }
  });
  return means;
}

}  // namespace oct::simulator
