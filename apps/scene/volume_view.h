// How a volume is looked at, whatever delivers it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "data/colormap.h"
#include "data/picture.h"
#include "data/samples.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::app {

enum class VolumeLook { composite, maximum, mean, sections };

struct ClipSetting {
  double value = 0.5;
  bool open = false;
  bool ghost = false;  // shows where the part that is cut away was

  bool operator==(const ClipSetting&) const = default;
};

struct VolumeView {
  VolumeLook look = VolumeLook::composite;
  bool secondary_colors = false;  // a composite is coloured by the secondary data
  PictureSize size;
  std::array<double, 2> angles{};       // degrees, about the horizontal axis and the depth axis
  std::array<double, 3> translation{};  // right, up, towards the viewer; the box's half diagonal is 2
  double zoom = 40;
  bool perspective = true;
  int slices = 256;
  std::array<double, 3> lighting{};  // ambient, diffuse, specular; all 0: none
  bool jitter = false;               // of the rays' first samples
  double opacity_length = 0;         // in millimetres; 0: opacities are those of a step
  std::optional<ClipSetting> clip;
  std::array<std::optional<float>, 3> sections{0.5F, 0.5F,
                                               0.5F};  // across A-scans, depth, B-scans; none: hidden
  bool edges = true;
  bool scale_marks = true;
  bool box = false;
  std::uint32_t background_bottom = 0x000066;  // 0xRRGGBB
  std::uint32_t background_top = 0x000019;
  std::uint32_t foreground = 0xFFFFFF;

  bool operator==(const VolumeView&) const = default;
};

// Those of the automatic range that suits the look.
Shares range_shares(VolumeLook look);

// Everything but the angles, which may change from picture to picture.
void set_view(VolumeRendererHandle renderer, const VolumeView& view);

// 0xRRGGBB, as in the view.
void set_background(VolumeRendererHandle renderer, std::uint32_t bottom, std::uint32_t top);

enum class ColoredData { volume, overlay, secondary, surface };

void set_colors(VolumeRendererHandle renderer, ColoredData data, const Colormap& colors,
                const ValueRange& range);

}  // namespace oct::app
