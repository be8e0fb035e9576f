#include "processing.h"

#include "camera.h"
#include "fourier.h"
#include "parallel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

/// With fewer A-scans per B-scan their mean would hold too much of the sample, and the calibrated background
/// is the better one.
constexpr int kMinimumForMean = 16;

/// Keeps the logarithm finite: -60 dB.
constexpr float kLeastPower = 1e-6f;

}  // namespace

Processing::Processing(const Calibration& calibration)
    : spectrumLength_(static_cast<int>(calibration.wavenumberPositions.size())),
      depthRangeMm_(calibration.depthRangeMm),
      background_(calibration.background),
      toEvenWavenumbers_(spectrumLength_, invertPositions(calibration.wavenumberPositions)) {
  if (calibration.compensationPhase.size() != calibration.wavenumberPositions.size() ||
      calibration.background.size() != calibration.wavenumberPositions.size())
    throw std::invalid_argument("The sequences of a calibration differ in length. ");
  referenceIntensity_ = *std::ranges::max_element(background_) / Camera::kLargestCount;
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
  if (output) output->resize(sizes, ranges);
  if (complexOutput) complexOutput->resize(sizes, ranges);
  float* const samples = output ? output->samples().data() : nullptr;
  std::complex<float>* const fields = complexOutput ? complexOutput->samples().data() : nullptr;
  const auto means = backgrounds(raw, workers);
  referenceIntensity_ = *std::ranges::max_element(means) / Camera::kLargestCount;

  parallelRanges(raw.aScans() * raw.bScans(), workers, [&](int begin, int end) {
    Fourier fourier(spectrumLength_);
    std::vector<float> signal(spectrumLength_);
    std::vector<float> even(spectrumLength_);
    std::vector<std::complex<float>> waves(spectrumLength_);
    std::vector<std::complex<float>> field(spectrumLength_);
    for (int index = begin; index < end; ++index) {
      const auto spectrum = raw.spectrum(index);
      const float* mean = means.data() + static_cast<std::size_t>(index / raw.aScans()) * spectrumLength_;
      for (int i = 0; i < spectrumLength_; ++i) signal[i] = static_cast<float>(spectrum[i]) - mean[i];
      toEvenWavenumbers_.apply(signal.data(), even.data());
      for (int i = 0; i < spectrumLength_; ++i) waves[i] = even[i] * weights_[i];
      fourier.forward(waves.data(), field.data());
      const std::size_t first = static_cast<std::size_t>(index) * depths;
      if (fields) std::copy_n(field.begin(), depths, fields + first);
      if (!samples) continue;
      for (int i = 0; i < depths; ++i)
        samples[first + i] = 10.0f * std::log10(std::max(std::norm(field[i]), kLeastPower));
    }
  });
}

/// One spectrum per B-scan: what all its A-scans have in common.
std::vector<float> Processing::backgrounds(const RawData& raw, int workers) const {
  std::vector<float> means(static_cast<std::size_t>(raw.bScans()) * spectrumLength_);
  parallelRanges(raw.bScans(), workers, [&](int begin, int end) {
    std::vector<std::uint64_t> sums(spectrumLength_);
    for (int bScan = begin; bScan < end; ++bScan) {
      float* const mean = means.data() + static_cast<std::size_t>(bScan) * spectrumLength_;
      if (raw.aScans() < kMinimumForMean) {
        std::copy(background_.begin(), background_.end(), mean);
        continue;
      }
      std::fill(sums.begin(), sums.end(), 0);
      for (int aScan = 0; aScan < raw.aScans(); ++aScan) {
        const auto spectrum = raw.spectrum(bScan * raw.aScans() + aScan);
        for (int i = 0; i < spectrumLength_; ++i) sums[i] += spectrum[i];
      }
      for (int i = 0; i < spectrumLength_; ++i)
        mean[i] = static_cast<float>(static_cast<double>(sums[i]) / raw.aScans());
    }
  });
  return means;
}

}  // namespace oct::simulator
