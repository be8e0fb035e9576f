// Images as the renderer of B-scans gets them.
#pragma once

#include <cstdint>
#include <optional>

#include "client/renderers.h"
#include "data/colormap.h"
#include "data/image.h"
#include "data/samples.h"

namespace oct::app {

void set_display_base(DisplayRenderingHandle renderer, const Image& image, const ValueRange& range);

// Of the base, which the library draws opaque: they are laid upon the background, which is beside the image, too.
void set_display_colors(DisplayRenderingHandle renderer, Colormap colors, std::uint32_t background);

// The first overlay. Without a threshold every sample shows.
void set_display_overlay(DisplayRenderingHandle renderer, const Image& image, const ValueRange& range,
                         const Colormap& colors, const std::optional<double>& threshold);

}  // namespace oct::app
