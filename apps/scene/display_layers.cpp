#include "scene/display_layers.h"

#include <limits>

#include "client/checked.h"

namespace oct::app {
namespace {

void hand_over(void (*setter)(DisplayRenderingHandle, int, int, const float*),
               DisplayRenderingHandle renderer, const Image& image) {
  checked(setter, renderer, static_cast<int>(image.depth), static_cast<int>(image.ascans),
          image.samples.data());
}

}  // namespace

void set_display_base(DisplayRenderingHandle renderer, const Image& image, const ValueRange& range) {
  hand_over(setDisplayData, renderer, image);
  checked(setDisplayColoringBoundaries, renderer, range.lower, range.upper);
}

void set_display_colors(DisplayRenderingHandle renderer, Colormap colors, std::uint32_t background) {
  flatten_onto(colors, background);
  checked(setDisplayColormap, renderer, colors.data(), static_cast<int>(colors.size()));
  checked(setBackgroundColor, renderer, static_cast<int>(background));
}

void set_display_overlay(DisplayRenderingHandle renderer, const Image& image, const ValueRange& range,
                         const Colormap& colors, const std::optional<double>& threshold) {
  hand_over(setDisplayOverlayData, renderer, image);
  checked(setDisplayOverlayColormap, renderer, 0, colors.data(), static_cast<int>(colors.size()));
  checked(setDisplayOveralyColoringBoundaries, renderer, 0, range.lower, range.upper);
  // The library's own start, 0, would hide the overlay wherever the base is in negative decibels.
  const double everywhere = std::numeric_limits<float>::lowest();
  checked(setDisplayOveralyThreshold, renderer, threshold.value_or(everywhere));
}

}  // namespace oct::app
