// The calls that one measurement makes into the device library, in the order that device libraries are used
// to.
#pragma once

#include "live/device_library.h"

namespace oct {

// Owns the device library's objects that it works with. Acquisition thread only.
class DeviceSequence {
 public:
  virtual ~DeviceSequence() = default;  // after the end of the measurement

  virtual void fetch_first() = 0;
  virtual void process_first() = 0;
  virtual void fetch() = 0;
  virtual void process() = 0;
  // Millimetres, onto what was processed.
  virtual void set_range(double depth, double lateral1, double lateral2) = 0;

  virtual DataHandle volume() const = 0;  // what is drawn; null if the device gave none
  virtual DataHandle analog() const { return nullptr; }

  // Whether there is something to draw in data of this depth.
  virtual bool has_volume(std::int64_t depth) const = 0;

  // What becomes of a source whose device fails after its first volume, or that finds no volume renderer: it
  // ends, or it goes on, and waits for its stop.
  virtual bool ends_by_itself() const = 0;
  virtual const char* text_without_renderer() const = 0;
};

}  // namespace oct
