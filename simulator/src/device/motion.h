/// @file
/// How the phantom moves.
#pragma once

#include "optics/beam_place.h"

namespace oct::simulator {

/// A periodic motion, a function of time alone. At time 0 the phantom is where it is without motion.
class Motion {
 public:
  enum class Kind { kNone, kBreathing, kDrift };

  Motion() = default;

  /// Throws std::invalid_argument unless the amplitude is 0 to 1 mm and the period above 0.
  Motion(Kind kind, double amplitudeMm, double periodSeconds);

  /// Whether the phantom moves at all.
  bool moves() const { return kind_ != Kind::kNone && amplitudeMm_ > 0.0; }

  /// What a beam at a lateral position hits.
  BeamPlace place(double xMm, double yMm, double seconds) const;

 private:
  Kind kind_ = Kind::kNone;
  double amplitudeMm_ = 0.0;
  double periodSeconds_ = 1.0;
};

}  // namespace oct::simulator
