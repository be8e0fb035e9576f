/// @file
/// The back of an eye.
#pragma once

#include "phantoms/phantom.h"
#include "phantoms/vessel.h"

#include <array>
#include <cstdint>
#include <vector>

namespace oct::simulator {

/// The retina around the fovea, with the layers from the nerve fibres to the pigment epithelium, the choroid
/// and the sclera. Vessels in the nerve fibre layer throw shadows.
class Retina : public Phantom {
 public:
  /// Layers from the vitreous body downwards.
  enum Layer : int {
    kNerveFibres,
    kGanglionCells,
    kInnerPlexiform,
    kInnerNuclear,
    kOuterPlexiform,
    kOuterNuclear,
    kOuterLimitingMembrane,
    kInnerSegments,
    kSegmentJunction,
    kOuterSegments,
    kPigmentEpithelium,
    kChoriocapillaris,
    kChoroid,
    kLayerCount
  };

  /// Optical depths of the upper ends of all layers, and of the lower end of the last.
  using Borders = std::array<double, kLayerCount + 1>;

  explicit Retina(std::uint64_t seed);

  void describe(double xMm, double yMm, double cellMm, DepthProfile& profile) const override;

  Borders borders(double xMm, double yMm) const;

 private:
  std::uint64_t seed_;
  std::vector<Vessel> vessels_;
};

}  // namespace oct::simulator
