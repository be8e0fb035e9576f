// The function that a library may lack by mistake.
#include <algorithm>

#include "live/pattern_device.h"

// The middle of the first sample of each A-scan that is no darkness; below all of them where there is none.
void determineSurface(DataHandle volume, DataHandle surface) {
  using namespace oct::test;
  if (!entered("determineSurface", volume, surface)) return;
  const auto [depth, a_scans, b_scans] = volume->size;
  resize(*surface, a_scans, b_scans, 1);
  auto a_scan = volume->samples.begin();
  for (float& found : surface->samples) {
    const auto end = a_scan + depth;
    const auto tissue = std::find_if(a_scan, end, [](float sample) { return sample > 0.0F; });
    const auto index = static_cast<double>(tissue - a_scan);
    found = static_cast<float>(volume->range[0] * (tissue == end ? 1.0 : (index + 0.5) / depth));
    a_scan = end;
  }
}
