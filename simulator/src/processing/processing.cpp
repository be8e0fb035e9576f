#include "processing/processing.h"

#include "base/parallel.h"
#include "optics/camera.h"
#include "signals/fourier.h"
#include "vec/vec.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

/// With fewer A-scans per B-scan their mean would hold too much of the sample, and the calibrated background
/// is the better one.
constexpr int kMinimumForMean = 16;

/// As many readings of 16 bits have a sum of 32 bits.
constexpr int kSummable = 65536;

/// Keeps the logarithm finite: -60 dB.
constexpr float kLeastPower = 1e-6f;

}  // namespace

/// Takes groups of consecutive A-scans from camera readings to fields in depth; one per thread.
class Processing::Transformation {
 public:
  /// @param means one spectrum per B-scan, to be taken away from its A-scans
  Transformation(const Processing& processing, const RawData& raw, const std::vector<float>& means)
      : processing_(processing),
        raw_(raw),
        means_(means),
        length_(processing.spectrumLength_),
        fourier_(length_),
        signals_(static_cast<std::size_t>(length_) * Lanes::kCount),
        signal_(length_),
        even_(length_),
        waves_(length_),
        fields_(length_),
        field_(length_ / 2) {}

  /// @param first number of the group's first A-scan; beyond the last A-scan the last is repeated
  void run(int first) {
    const int last = raw_.aScans() * raw_.bScans() - 1;
    for (int lane = 0; lane < Lanes::kCount; ++lane) {
      const int index = std::min(first + lane, last);
      const float* const mean = means_.data() + static_cast<std::size_t>(index / raw_.aScans()) * length_;
      vec::subtract(signals_.data() + lane * length_, raw_.spectrum(index).data(), mean, length_);
    }
    joinLanes(signals_.data(), length_, signal_.data());
    processing_.toEvenWavenumbers_.apply(signal_.data(), even_.data());
    for (int i = 0; i < length_; ++i) {
      const auto weight = processing_.weights_[i];
      waves_[i] = {even_[i] * weight.real(), even_[i] * weight.imag()};
    }
    fourier_.forward(waves_.data(), fields_.data());
  }

  /// The field of one A-scan of the group.
  /// @param room where it shall lie; null for memory that the next call overwrites
  const std::complex<float>* field(int lane, std::complex<float>* room) {
    if (!room) room = field_.data();
    takeLane(fields_.data(), lane, length_ / 2, room);
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
    : spectrumLength_(static_cast<int>(calibration.wavenumberPositions.size())),
      depthRangeMm_(calibration.depthRangeMm),
      background_(calibration.background),
      toEvenWavenumbers_(spectrumLength_, invertPositions(calibration.wavenumberPositions)) {
  if (calibration.compensationPhase.size() != calibration.wavenumberPositions.size() ||
      calibration.background.size() != calibration.wavenumberPositions.size())
    throw std::invalid_argument("The sequences of a calibration differ in length. ");
  referenceIntensity_ = vec::extremes(background_.data(), background_.size()).highest / Camera::kLargestCount;
  const auto places = invertPositions(calibration.wavenumberPositions);
  const auto phase = readLinear(calibration.compensationPhase, places);
  for (int i = 0; i < spectrumLength_; ++i) {
    const double hann = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * i / (spectrumLength_ - 1));
    const double scale = hann / std::sqrt(static_cast<double>(spectrumLength_));
    weights_.emplace_back(std::polar(scale, phase[i]));
  }
}

void Processing::execute(const RawData& raw, int workers) {
  const auto output = output_.lock();
  const auto complexOutput = complexOutput_.lock();
  if (!output && !complexOutput) throw std::logic_error("No output was set, or it was cleared. ");
  if (raw.empty()) throw std::invalid_argument("The raw data is empty. ");
  if (raw.spectrumLength() != spectrumLength_)
    throw std::invalid_argument("The raw data comes from a device with another spectrum length. ");

  const int depths = spectrumLength_ / 2;
  const std::array sizes{depths, raw.aScans(), raw.bScans()};
  const std::array ranges{depthRangeMm_, raw.widthMm(), raw.lengthMm()};
  if (raw.recording() && complexOutput)
    throw std::invalid_argument("A recorded volume has no complex field. ");
  if (output) output->resize(sizes, ranges);
  if (raw.recording()) {
    raw.recording()->play(raw.volume(), output->samples(), workers);
    return;
  }
  if (complexOutput) complexOutput->resize(sizes, ranges);
  float* const samples = output ? output->samples().data() : nullptr;
  std::complex<float>* const fields = complexOutput ? complexOutput->samples().data() : nullptr;
  const auto means = backgrounds(raw, workers);
  referenceIntensity_ = vec::extremes(means.data(), means.size()).highest / Camera::kLargestCount;

  const int aScans = raw.aScans() * raw.bScans();
  const int groups = (aScans + Lanes::kCount - 1) / Lanes::kCount;
  parallelRanges(groups, workers, [&](int begin, int end) {
    Transformation transformation(*this, raw, means);
    for (int group = begin; group < end; ++group) {
      transformation.run(group * Lanes::kCount);
      for (int lane = 0; lane < Lanes::kCount; ++lane) {
        const int index = group * Lanes::kCount + lane;
        if (index >= aScans) break;
        const std::size_t first = static_cast<std::size_t>(index) * depths;
        const auto* const field = transformation.field(lane, fields ? fields + first : nullptr);
        if (!samples) continue;
        vec::powers(samples + first, reinterpret_cast<const float*>(field), depths);
        vec::decibels(samples + first, samples + first, depths, kLeastPower);
      }
    }
  });
}

/// One spectrum per B-scan: what all its A-scans have in common.
std::vector<float> Processing::backgrounds(const RawData& raw, int workers) const {
  std::vector<float> means(static_cast<std::size_t>(raw.bScans()) * spectrumLength_);
  parallelRanges(raw.bScans(), workers, [&](int begin, int end) {
    std::vector<double> wholes(spectrumLength_);
    std::vector<std::uint32_t> sums(spectrumLength_);
    for (int bScan = begin; bScan < end; ++bScan) {
      float* const mean = means.data() + static_cast<std::size_t>(bScan) * spectrumLength_;
      if (raw.aScans() < kMinimumForMean) {
        std::copy(background_.begin(), background_.end(), mean);
        continue;
      }
      std::fill(wholes.begin(), wholes.end(), 0.0);
      for (int first = 0; first < raw.aScans(); first += kSummable) {
        std::fill(sums.begin(), sums.end(), 0u);
        const int last = first + std::min(kSummable, raw.aScans() - first);
        for (int aScan = first; aScan < last; ++aScan) {
          const auto* const spectrum = raw.spectrum(bScan * raw.aScans() + aScan).data();
          for (int i = 0; i < spectrumLength_; ++i) sums[i] += spectrum[i];
        }
        for (int i = 0; i < spectrumLength_; ++i) wholes[i] += sums[i];
      }
      for (int i = 0; i < spectrumLength_; ++i) mean[i] = static_cast<float>(wholes[i] / raw.aScans());
    }
  });
  return means;
}

}  // namespace oct::simulator
