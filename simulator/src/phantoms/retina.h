// The back of an eye.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "phantoms/phantom.h"
#include "phantoms/vessel.h"

namespace oct::simulator {

// The retina around the fovea, with the layers from the nerve fibres to the pigment epithelium, the choroid
// and the sclera. Vessels in the nerve fibre layer throw shadows.
class Retina : public Phantom {
 public:
  // Layers from the vitreous body downwards.
  enum Layer : int {
    nerve_fibres,
    ganglion_cells,
    inner_plexiform,
    inner_nuclear,
    outer_plexiform,
    outer_nuclear,
    outer_limiting_membrane,
    inner_segments,
    segment_junction,
    outer_segments,
    pigment_epithelium,
    choriocapillaris,
    choroid,
    layer_count
  };

  // Optical depths of the upper ends of all layers, and of the lower end of the last.
  using Borders = std::array<double, layer_count + 1>;

  explicit Retina(std::uint64_t seed);

  void describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const override;

  Borders borders(double x_mm, double y_mm) const;

 private:
  std::uint64_t seed_;
  std::vector<Vessel> vessels_;
};

}  // namespace oct::simulator
