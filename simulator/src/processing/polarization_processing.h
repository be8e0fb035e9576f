// From the fields of two sensors to polarization quantities.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "base/data.h"
#include "base/handle_table.h"
#include "processing/stokes.h"

namespace oct::simulator {

// Computes Stokes vectors, averages them, and derives what the outputs ask for.
class PolarizationProcessing : public HandleObject {
 public:
  static constexpr const char* name = "polarization processing";

  enum Quantity : int {
    intensity,
    retardation,
    optic_axis,
    dopu,
    stokes_q,
    stokes_u,
    stokes_v,
    quantity_count
  };

  // The output is not owned; once it is gone nobody asks for the quantity. One object takes one quantity:
  // it is taken away from the quantity it was set for before.
  void set_output(Quantity quantity, const std::shared_ptr<Data>& output);

  void set_threshold_enabled(bool enabled) { threshold_enabled_ = enabled; }

  // decibels: intensity below which there is too little light to tell a polarization
  void set_threshold(double decibels);

  // Places over which Stokes vectors are averaged, and DOPU is formed. Throws std::invalid_argument for
  // places below 1.
  // axis: 0 depth, 1 A-scans, 2 B-scans
  void set_averaging(int axis, int places);
  void set_dopu_box(int axis, int places);

  // volumes: successive volumes over which Stokes vectors are averaged, the older the less weight
  void set_volume_averaging(int volumes);

  // workers: number of threads, 0 for one per core; the result does not depend on it
  void execute(const ComplexData& sensor0, const ComplexData& sensor1, int workers = 0);

 private:
  using Outputs = std::array<std::shared_ptr<Data>, quantity_count>;

  Outputs outputs() const;
  void add_to_earlier(StokesVolume& stokes, int workers);
  void write(Quantity quantity, const StokesVolume& stokes, std::span<float> samples, int workers) const;

  std::array<std::weak_ptr<Data>, quantity_count> outputs_;
  bool threshold_enabled_ = false;
  double threshold_ = 0.0;
  std::array<int, 3> averaging_{1, 1, 1};
  std::array<int, 3> dopu_box_{3, 3, 3};
  int volumes_ = 1;
  StokesVolume earlier_;
  int earlier_count_ = 0;
};

}  // namespace oct::simulator
