#include "octview/model/octrender_command.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "data/file_errors.h"
#include "octview/model/layer_colors.h"
#include "octview/model/number_text.h"
#include "octview/model/slice_position.h"
#include "octview/model/volume_picture.h"

namespace oct::app {
namespace {

using Words = std::vector<std::string>;

template <class... Values>
void add(Words& words, const std::string& option, const Values&... values) {
  words.push_back(option);
  const auto add_one = [&](const auto& value) {
    if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(value)>>) {
      words.push_back(number_text(value));
    } else {
      words.emplace_back(value);
    }
  };
  (add_one(values), ...);
}

// What begins with a hyphen would be taken for an option.
std::string path_text(const std::filesystem::path& path) {
  const std::string text = to_utf8(path);
  return text.starts_with('-') ? "./" + text : text;
}

std::string color_text(std::uint32_t color) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "%06X", static_cast<unsigned>(color & 0xFFFFFFU));
  return text.data();
}

std::string size_text(PictureSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

std::string raw_text(const RawLayout& raw) {
  std::string text = std::to_string(raw.depth) + "x" + std::to_string(raw.ascans) + "x" +
                     std::to_string(raw.bscans) + ":" + std::string(name_of(raw.format.type)) +
                     (raw.format.big_endian ? "be" : "le");
  if (raw.offset) text += "+" + std::to_string(*raw.offset);
  return text;
}

std::string axes_text(const AxisOrder& axes) {
  std::string text;
  for (std::size_t i = 3; i-- > 0;) text += std::string_view("dab")[number_of(axes[i])];
  return text;
}

// How the file is to be read.
Words reading_options(const DataFile& file) {
  Words words;
  if (file.raw) add(words, "--raw", raw_text(*file.raw));
  if (file.axes) add(words, "--axes", axes_text(*file.axes));
  return words;
}

void add_base(Words& words, const SessionFiles& files, PictureSize size, const std::string& output) {
  if (files.base.path.empty())
    throw std::runtime_error("What is shown is in no file that octrender could read");
  words.insert(words.end(), {path_text(files.base.path), "-o", output});
  std::ranges::copy(reading_options(files.base), std::back_inserter(words));
  if (files.decibels) words.emplace_back("--db");
  if (files.extent) add(words, "--extent", (*files.extent)[0], (*files.extent)[1], (*files.extent)[2]);
  add(words, "--size", size_text(size));
}

// octrender reads volumes alike, and maps as they are.
void check_layer(const DataFile& layer, const Words& wanted, const char* what) {
  if (reading_options(layer) == wanted) return;
  throw std::runtime_error("octrender cannot be told to read " + to_utf8(layer.path) + ", " + what +
                           ", in another way than it would by itself");
}

// Of the base: without a prefix; of a layer: "--overlay".
void add_colors(Words& words, const std::string& prefix, const LayerLook& look) {
  const std::string option = prefix.empty() ? "--" : prefix + "-";
  add(words, option + "range", look.range.lower, look.range.upper);
  add(words, option + "colormap", look.colormap);
  if (look.reverse) words.push_back(option + "reverse");
}

void add_opacity(Words& words, const OpacityRule& opacity, double length) {
  add(words, "--opacity", opacity.highest);
  if (opacity.shift != 0) add(words, "--opacity-shift", opacity.shift);
  if (length > 0) add(words, "--opacity-length", length);
  if (opacity.points.empty()) return;
  std::string curve;
  for (const auto& [place, part] : opacity.points) {
    if (!curve.empty()) curve += ',';
    curve += number_text(place) + ":" + number_text(part);
  }
  add(words, "--opacity-points", curve);
}

const char* mode_text(VolumeLook look) {
  constexpr std::array<const char*, 4> names{"composite", "maximum", "mean", "sections"};
  return names[static_cast<std::size_t>(look)];
}

void add_camera(Words& words, const VolumeView& view) {
  add(words, "--mode", mode_text(view.look));
  add(words, "--angles", view.angles[0], view.angles[1]);
  const auto& [right, up, near] = view.translation;
  if (right != 0 || up != 0 || near != 0) add(words, "--translate", right, up, near);
  add(words, "--zoom", view.zoom);
  if (!view.perspective) words.emplace_back("--orthographic");
  add(words, "--slices", view.slices);
  const auto& [ambient, diffuse, specular] = view.lighting;
  if (ambient != 0 || diffuse != 0 || specular != 0) add(words, "--light", ambient, diffuse, specular);
  if (view.jitter) words.emplace_back("--jitter");
}

void add_cuts(Words& words, const VolumeView& view) {
  if (view.clip) {
    add(words, "--clip", view.clip->value);
    if (view.clip->open) words.emplace_back("--clip-open");
    if (view.clip->ghost) words.emplace_back("--clip-ghost");
  }
  if (view.look != VolumeLook::sections) return;
  words.emplace_back("--sections");
  for (const std::optional<float>& section : view.sections)
    words.push_back(section ? number_text(*section) : "off");
}

void add_surroundings(Words& words, const VolumeView& view) {
  if (!view.edges) words.emplace_back("--no-edges");
  if (!view.scale_marks) words.emplace_back("--no-labels");
  if (view.box) words.emplace_back("--box");
  add(words, "--background", color_text(view.background_bottom), color_text(view.background_top));
  add(words, "--foreground", color_text(view.foreground));
}

}  // namespace

std::vector<std::string> volume_command(const SessionFiles& files, const ViewState& state, PictureSize size,
                                        const std::string& output) {
  const DrawnLayers drawn = drawn_layers(files, state);
  Words words{"volume"};
  add_base(words, files, size, output);
  add_camera(words, state.volume);
  add_colors(words, "", state.base);
  if (state.volume.look == VolumeLook::composite)
    add_opacity(words, state.base.opacity, state.volume.opacity_length);
  add_cuts(words, state.volume);
  add_surroundings(words, state.volume);
  if (drawn.overlay) {
    check_layer(files.overlay, reading_options(files.base), "the overlay");
    add(words, "--overlay", path_text(files.overlay.path));
    add_colors(words, "--overlay", state.overlay);
  }
  if (drawn.surface) {
    check_layer(files.surface, {}, "the surface");
    add(words, "--surface", path_text(files.surface.path));
    add_colors(words, "--surface", state.surface);
    if (!drawn.volume) words.emplace_back("--surface-only");
  }
  if (drawn.secondary) {
    check_layer(files.secondary, {}, "the secondary data");
    add(words, "--secondary", path_text(files.secondary.path));
    add_colors(words, "--secondary", state.secondary);
  }
  return words;
}

std::vector<std::string> slice_command(const SessionFiles& files, const ViewState& state, SliceAxis axis,
                                       std::ptrdiff_t position, PictureSize size, const std::string& output) {
  constexpr std::array<const char*, 3> names{"bscan", "enface", "third"};
  const SliceWindow& window = state.windows[static_cast<std::size_t>(axis)];
  Words words{"slice"};
  add_base(words, files, size, output);
  add(words, "--axis", names[static_cast<std::size_t>(axis)]);
  add(words, "--position", position);
  if (axis == SliceAxis::enface) {
    add(words, "--layers", state.enface.layers);
    add(words, "--projection", state.enface.projection == Projection::mean ? "mean" : "maximum");
    if (state.enface.along_surface) {
      check_layer(files.surface, {}, "the surface");
      add(words, "--surface", path_text(files.surface.path));
    }
  }
  add(words, "--zoom", window.zoom);
  add(words, "--center", window.centre[0], window.centre[1]);
  add_colors(words, "", state.base);
  if (!files.overlay.path.empty() && state.overlay.visible) {
    check_layer(files.overlay, reading_options(files.base), "the overlay");
    add(words, "--overlay", path_text(files.overlay.path));
    add_colors(words, "--overlay", state.overlay);
    add(words, "--overlay-opacity", state.overlay.opacity.highest);
  }
  return words;
}

std::vector<std::string> pane_command(const Document& document, const ViewState& state, Pane pane,
                                      PictureSize size, const std::string& output) {
  if (pane != Pane::volume) {
    const auto axis = static_cast<SliceAxis>(pane);
    return slice_command(document.files, state, axis, slice_position(document, state, axis).position, size,
                         output);
  }
  if (document.volume->is_reduced())
    throw std::runtime_error("octrender cannot be told to reduce the volume as it is here");
  ViewState shown = state;
  follow_cursor(document, shown);
  return volume_command(document.files, shown, size, output);
}

}  // namespace oct::app
