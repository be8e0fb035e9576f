// Which axis of a file is which axis of a volume.
#pragma once

#include <array>

namespace oct::app {

// The numbers are places in triples of depth, A-scans, B-scans.
enum class Axis { depth, ascan, bscan };

// The axes of a frame's columns, of its rows, and the one along which frames follow each other: the fastest first.
using AxisOrder = std::array<Axis, 3>;

// Frames are B-scans as they are looked at, depth downwards.
inline constexpr AxisOrder picture_order{Axis::ascan, Axis::depth, Axis::bscan};
// Frames are B-scans, their rows A-scans: how the library and most devices keep them.
inline constexpr AxisOrder memory_order{Axis::depth, Axis::ascan, Axis::bscan};

constexpr unsigned number_of(Axis axis) {
  return static_cast<unsigned>(axis);
}

}  // namespace oct::app
