// Control of a device library whose volumes tell where they come from, and that does what a test asks for.
#pragma once

#include <string>

#include "oct_device/oct_device_types.h"

namespace oct::test {

// Every sample of a volume has the same value: the quantity that it shows as whole number, and a fraction of
// its own. A volume made of two is thus seen. A test may supply the samples instead.
class PatternDevice {
 public:
  virtual ~PatternDevice() = default;

  // Everything as at first: 16 x 12 x 10 samples, 2 x 3 x 1.5 mm, nothing failing, held or recorded.
  virtual void reset() = 0;

  // So many devices measure at the same time, each with processings of its own.
  static constexpr int devices = 16;
  virtual OCTDeviceHandle device(int number = 0) = 0;
  virtual ProcessingHandle processing(int number) = 0;
  virtual PolarizationProcessingHandle polarization() = 0;
  virtual ScanPatternHandle scan_pattern() = 0;

  virtual void set_size(int size1, int size2, int size3) = 0;       // from the next volume on
  virtual void set_volume(const float* samples) = 0;                // null: patterns again
  virtual void set_analog(int channels, const float* samples) = 0;  // at first two channels of zeros
  virtual void set_surface(const float* depths) = 0;                // at first zeros

  // The call of that number from now on, 0: every one, does nothing but leave "<function> failed".
  virtual void fail(const char* function, int call) = 0;

  // Calls of the function wait, after the given number of them, until another one is held or release().
  virtual void hold(const char* function, int after = 0) = 0;
  virtual bool held() = 0;  // whether a call waits
  virtual void release() = 0;

  virtual void record(bool enabled) = 0;  // true begins a new record
  virtual std::string calls() = 0;        // one per line

  virtual int volumes() = 0;  // acquired since the reset
  virtual int objects() = 0;  // created and not cleared
  virtual int misuses() = 0;  // handles that were null or not alive

  static constexpr int sensor0 = 0;  // quantities; polarization outputs by their number, intensity 10
  static constexpr int intensity = 10;
  static constexpr int sensor1 = 8;
};

}  // namespace oct::test

extern "C" OCT_DEVICE_API oct::test::PatternDevice* patternDevice();
