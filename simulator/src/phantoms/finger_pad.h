// A finger pad under the skin's surface.
#pragma once

#include <cstdint>
#include <vector>

#include "phantoms/duct_map.h"
#include "phantoms/phantom.h"
#include "phantoms/ridge_pattern.h"
#include "phantoms/vessel.h"

namespace oct::simulator {

// Horny layer with fingerprint ridges and winding sweat ducts, living epidermis, the bright and wavy border
// to the dermis, and dermis with vessels. The pad is curved, so its middle is nearest to the device.
class FingerPad : public Phantom {
 public:
  explicit FingerPad(std::uint64_t seed);

  void describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const override;

  // Optical depth of the skin's surface.
  double surface_mm(double x_mm, double y_mm) const;

 private:
  struct Borders;
  Borders borders(double x_mm, double y_mm) const;

  std::uint64_t seed_;
  RidgePattern ridges_;
  DuctMap ducts_;
  std::vector<Vessel> vessels_;
};

}  // namespace oct::simulator
