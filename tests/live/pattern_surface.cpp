// The function that a library may lack by mistake.
#include "live/pattern_device.h"

void determineSurface(DataHandle volume, DataHandle surface) {
  using namespace oct::test;
  if (!entered("determineSurface", volume, surface)) return;
  locked([=](PatternDevice& state) {
    resize(*surface, volume->size[1], volume->size[2], 1);
    copy_or_clear(state.surface, surface->samples);
  });
}
