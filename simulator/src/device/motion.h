// How the phantom moves.
#pragma once

#include "optics/beam_place.h"

namespace oct::simulator {

// A periodic motion, a function of time alone. At time 0 the phantom is where it is without motion.
class Motion {
 public:
  enum class Kind { none, breathing, drift };

  Motion() = default;

  // Throws std::invalid_argument unless the amplitude is 0 to 1 mm and the period above 0.
  Motion(Kind kind, double amplitude_mm, double period_seconds);

  // Whether the phantom moves at all.
  bool moves() const { return kind_ != Kind::none && amplitude_mm_ > 0.0; }

  // What a beam at a lateral position hits.
  BeamPlace place(double x_mm, double y_mm, double seconds) const;

 private:
  Kind kind_ = Kind::none;
  double amplitude_mm_ = 0.0;
  double period_seconds_ = 1.0;
};

}  // namespace oct::simulator
