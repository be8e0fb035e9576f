// Fourier transforms of complex signals.
#pragma once

#include <complex>

#include <unsupported/Eigen/FFT>

#include "signals/lanes.h"

namespace oct::simulator {

// Transforms of one length, of four signals at once. Keeps tables and must not be shared between threads.
class LaneFourier {
 public:
  explicit LaneFourier(int length) : length_(length), transform_({}, Transform::Unscaled) {}

  // sum over n of input[n] exp(-2 pi i n m / length), for every m
  void forward(const std::complex<Lanes>* input, std::complex<Lanes>* output) {
    transform_.fwd(output, input, length_);
  }

  // sum over n of input[n] exp(+2 pi i n m / length), for every m
  void backward(const std::complex<Lanes>* input, std::complex<Lanes>* output) {
    transform_.inv(output, input, length_);
  }

 private:
  using Transform = Eigen::FFT<Lanes>;

  int length_;
  Transform transform_;
};

}  // namespace oct::simulator
