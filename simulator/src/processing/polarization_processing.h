/// @file
/// From the fields of two sensors to polarization quantities.
#pragma once

#include "base/data.h"
#include "base/handle_table.h"
#include "processing/stokes.h"

#include <array>
#include <memory>
#include <span>

namespace oct::simulator {

/// Computes Stokes vectors, averages them, and derives what the outputs ask for.
class PolarizationProcessing : public HandleObject {
 public:
  static constexpr const char* kName = "polarization processing";

  enum Quantity : int { kIntensity, kRetardation, kOpticAxis, kDopu, kQ, kU, kV, kQuantityCount };

  /// The output is not owned; once it is gone nobody asks for the quantity. One object takes one quantity:
  /// it is taken away from the quantity it was set for before.
  void setOutput(Quantity quantity, const std::shared_ptr<Data>& output);

  void setThresholdEnabled(bool enabled) { thresholdEnabled_ = enabled; }

  /// @param decibels intensity below which there is too little light to tell a polarization
  void setThreshold(double decibels);

  /// Places over which Stokes vectors are averaged, and DOPU is formed. Throws std::invalid_argument for
  /// places below 1.
  /// @param axis 0 depth, 1 A-scans, 2 B-scans
  void setAveraging(int axis, int places);
  void setDopuBox(int axis, int places);

  /// @param volumes successive volumes over which Stokes vectors are averaged, the older the less weight
  void setVolumeAveraging(int volumes);

  /// @param workers number of threads, 0 for one per core; the result does not depend on it
  void execute(const ComplexData& sensor0, const ComplexData& sensor1, int workers = 0);

 private:
  using Outputs = std::array<std::shared_ptr<Data>, kQuantityCount>;

  Outputs outputs() const;
  void addToEarlier(StokesVolume& stokes, int workers);
  void write(Quantity quantity, const StokesVolume& stokes, std::span<float> samples, int workers) const;

  std::array<std::weak_ptr<Data>, kQuantityCount> outputs_;
  bool thresholdEnabled_ = false;
  double threshold_ = 0.0;
  std::array<int, 3> averaging_{1, 1, 1};
  std::array<int, 3> dopuBox_{3, 3, 3};
  int volumes_ = 1;
  StokesVolume earlier_;
  int earlierCount_ = 0;
};

}  // namespace oct::simulator
