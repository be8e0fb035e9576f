// Reads an evenly sampled signal between its samples.
#pragma once

#include <array>
#include <complex>
#include <vector>

namespace oct::simulator {

// Band-limited interpolation at positions that are fixed beforehand: eight samples weighted by a windowed
// sinc. Signals up to about two thirds of the highest frequency pass unharmed; beyond the ends the signal
// counts as zero.
class Resampler {
 public:
  // input_length: samples of the signals to be read, 8 or more
  // positions: where to read them, in samples from 0 to input_length - 1
  Resampler(int input_length, const std::vector<double>& positions);

  // input: input_length samples, real or complex, of one signal or of several side by side
  // output: as many values as there are positions
  template <typename Value>
  void apply(const Value* input, Value* output) const {
    for (std::size_t i = 0; i < taps_.size(); ++i) {
      const Value* samples = input + taps_[i].first;
      Value sum{};
      for (int tap = 0; tap < tap_count; ++tap) sum += RealOf<Value>(taps_[i].weights[tap]) * samples[tap];
      output[i] = sum;
    }
  }

 private:
  static constexpr int tap_count = 8;

  template <typename Value>
  struct RealPart {
    using Type = Value;
  };
  template <typename Value>
  struct RealPart<std::complex<Value>> {
    using Type = Value;
  };
  template <typename Value>
  using RealOf = typename RealPart<Value>::Type;

  struct Taps {
    int first;
    std::array<float, tap_count> weights;
  };

  std::vector<Taps> taps_;
};

// Finds where a rising sequence takes the values 0, 1, 2, ... size - 1, by straight lines between its
// points. Values outside the sequence give the nearest end.
std::vector<double> invert_positions(const std::vector<double>& rising);

// Reads a sequence at fractional places from 0 to size - 1, by straight lines between its points.
std::vector<double> read_linear(const std::vector<double>& values, const std::vector<double>& places);

}  // namespace oct::simulator
