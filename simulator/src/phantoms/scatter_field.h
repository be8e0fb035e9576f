// The microscopic disorder of tissue, from which speckle arises.
#pragma once

#include <complex>
#include <cstdint>
#include <vector>

namespace oct::simulator {

// Sums the light of all scatterers within a depth cell and the beam's width.
// Every cell of a fine lateral lattice holds so many scatterers of random phase that their sum is a circular
// Gaussian number. The beam adds the lattice columns around it, weighted by its profile; neighbouring
// A-scans share columns, so that speckle has the beam's width whatever the scan's density.
class ScatterField {
 public:
  explicit ScatterField(std::uint64_t seed);

  // Sums along depth at one lateral position.
  // field: receives one sum per depth cell, of mean power 1
  void read(double x_mm, double y_mm, std::vector<std::complex<float>>& field) const;

 private:
  std::uint64_t seed_;
  std::vector<std::complex<float>> pool_;
};

}  // namespace oct::simulator
