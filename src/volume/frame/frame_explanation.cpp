#include "volume/frame/frame_explanation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "core/last_frame.h"
#include "core/number_text.h"
#include "volume/layout/box_view.h"
#include "volume/skipping/visibility.h"

namespace oct {
namespace {

constexpr float unknown = std::numeric_limits<float>::infinity();

std::string text_of(const glm::dvec3& numbers) {
  return oct::text_of(numbers.x) + ", " + oct::text_of(numbers.y) + ", " + oct::text_of(numbers.z);
}

// One frame, as it is asked about.
class Question {
 public:
  Question(const FrameRecord& record, const LowestValue& lowest) : record_(record), lowest_(lowest) {}

  std::string certain_cause() const {
    if (!record_.has_area()) return no_area_text(record_.drawn.viewport.width, record_.drawn.viewport.height);
    if (surface_shown()) return {};  // where it is, only the picture tells
    if (source_.volume == 0 || source_.lack != VolumeLack::none) return no_volume();
    if (!settings_.render_volume) return switched_off();
    if (box_.empty()) return not_filled();
    if (std::string cause = outside(); !cause.empty()) return cause;
    if (sectional()) return no_section();
    if (settings_.volume_mode == VolumeMode::dual_coloring && !has_secondary()) return no_secondary();
    if (std::string cause = cut_away(); !cause.empty()) return cause;
    return nothing_in_values();
  }

  std::string likely_cause() const {
    if (surface_shown() && !volume_shown()) {
      return "The surface that is shown lies outside of the view or is cut away, or has the colour of the "
             "background. Its depths must lie between 0 and the scale of setSurface. ";
    }
    const std::string nothing = "Nothing of the volume shows: ";
    if (!box_can_be_seen()) {
      return nothing + "with an extent of " + text_of(glm::dvec3(record_.range().extent)) + ", a zoom of " +
             oct::text_of(view().zoom) + " and a translation of " + text_of(glm::dvec3(view().translation)) +
             " it covers less than a pixel. Check setRange (setOfflineAspectRatio), setZoom and "
             "setTranslation. ";
    }
    if (!sectional() && plane_is_on()) {
      return nothing + "the clip plane, at " + oct::text_of(settings_.clip_plane.value) +
             ", leaves only what is transparent. Raise its value (setClipPlane). ";
    }
    if (!(colors().lower < colors().upper)) {
      return nothing + "the lower colouring boundary, " + oct::text_of(colors().lower) +
             ", is not below the upper one, " + oct::text_of(colors().upper) + ". Set others" +
             by_boundaries();
    }
    if (is_composite() && settings_.opacity_length > 0.0) {
      return nothing + "at an opacity length of " + oct::text_of(settings_.opacity_length) +
             " millimetres it is too transparent" + values_text() +
             ". Shorten the length (setOpacityLength) or lower the colouring boundaries" + by_boundaries();
    }
    if (is_composite()) {
      return nothing + "its values are too transparent in the colour map" + values_text() +
             ". Lower the boundaries" + by_boundaries() + "Or give the colour map more opacity (" +
             colormap_setter() + "). ";
    }
    return nothing + "it has the colours of the background" + values_text() + ". Set other boundaries" +
           by_boundaries();
  }

 private:
  const View& view() const { return settings_.view; }
  bool sectional() const { return settings_.rendering_mode == RenderingMode::sectional_view; }
  bool volume_shown() const { return source_.volume != 0 && settings_.render_volume; }
  bool surface_shown() const {
    return settings_.render_surface && settings_.surface && !settings_.surface->triangles.empty();
  }
  bool is_composite() const {
    return settings_.volume_mode == VolumeMode::normal || settings_.volume_mode == VolumeMode::dual_coloring;
  }
  bool has_secondary() const {
    const int index = settings_.secondary_slice_index;
    return source_.secondary != 0 && index >= 0 && index < source_.secondary_slice_count;
  }
  // Laid over a composite the overlay shows even where the volume does not; slices mix both.
  bool overlay_shows() const {
    return source_.overlay_present && (sectional() || settings_.volume_mode == VolumeMode::normal);
  }
  bool plane_is_on() const { return record_.plane != glm::vec4(0.0F); }

  // Of what is drawn as the volume. A frame that was drawn had colour maps.
  const ColormapSettings& colors() const {
    const ColormapRole role = source_.main_colormap_is_overlay ? ColormapRole::overlay : ColormapRole::main;
    return settings_.colormaps->at(static_cast<std::size_t>(role));
  }
  std::string colormap_setter() const {
    return source_.main_colormap_is_overlay ? "setOverlayRendererColormap" : "setRendererColormap";
  }
  std::string by_boundaries() const {
    return source_.main_colormap_is_overlay ? " (setOverlayRendererColoringBoundaries). "
                                            : " (setRendererColoringBoundaries). ";
  }

  std::string boundaries_text() const {
    return "boundaries " + oct::text_of(colors().lower) + " to " + oct::text_of(colors().upper);
  }
  // Of values that are known.
  std::string range_text() const {
    const std::optional<float> lowest = lowest_ ? lowest_() : std::nullopt;
    const std::string greatest = oct::text_of(record_.values->value);
    return lowest ? "values from " + oct::text_of(*lowest) + " to " + greatest : "values up to " + greatest;
  }
  std::string values_text() const {
    const bool known = record_.values && std::isfinite(record_.values->value);
    return " (" + (known ? range_text() + ", " : std::string()) + boundaries_text() + ")";
  }

  std::string no_volume() const {
    switch (source_.lack) {
      case VolumeLack::no_live_volume:
        return "No live volume has come yet. Start a data source (startDataSource) and draw frames until it "
               "has delivered one. ";
      case VolumeLack::no_overlay:
        return "Content type 1 shows the overlay volume alone, and there is none. Upload one "
               "(uploadOverlayOfflineVolume) or draw content type 0. ";
      case VolumeLack::no_voxels:
        return "The volume has no voxels: one of its sizes is 0. Allocate another one "
               "(allocateOfflineVolume). ";
      case VolumeLack::not_uploaded:
        return "The volume has been allocated, and nothing has been uploaded. Upload it "
               "(uploadOfflineVolume). ";
      case VolumeLack::not_allocated:
        if (source_.refusal) return "There is no volume; the last allocation failed: " + *source_.refusal;
        [[fallthrough]];
      case VolumeLack::none:
        break;
    }
    return "There is no volume. Allocate one (allocateOfflineVolume) and upload it (uploadOfflineVolume). ";
  }

  std::string switched_off() const {
    if (settings_.render_surface) {
      return "The volume is switched off, and the surface, which is switched on, has no triangles. "
             "Show the volume (setRenderElements) or set a surface of 2 x 2 finite samples or more "
             "(setSurface). ";
    }
    return "The volume is switched off, and so is the surface. Show one of them (setRenderElements). ";
  }

  std::string not_filled() const {
    return "Of the volume's " + std::to_string(source_.slice_count) + " B-scans " +
           std::to_string(record_.filled_slices()) +
           " count as uploaded, and that many show nothing. "
           "An upload of slice n fills the volume up to n, and without it: "
           "upload a later slice (uploadOfflineVolumeSlice), or a block (uploadOfflineSubVolume). ";
  }

  std::string outside() const {
    const Camera camera = record_.camera();
    const std::array<glm::vec3, 8> corners = box_corners();
    const auto all = [&](auto beyond) {
      return std::ranges::all_of(corners, [&](const glm::vec3& corner) {
        return beyond(camera.whole_projection * camera.modelview * glm::vec4(corner, 1.0F));
      });
    };
    constexpr float rounding = 1e-4F;
    const auto beyond = [&](int axis, float side) {
      return all([=](const glm::vec4& p) { return side * p[axis] - p.w > rounding * std::abs(p.w); });
    };
    const auto text = [&](const char* where) {
      return std::string("The volume lies outside of the view, ") + where + ": its translation is " +
             text_of(glm::dvec3(view().translation)) + ", the zoom " + oct::text_of(view().zoom) +
             ". Move it back (setTranslation). ";
    };
    if (view().perspective && all([](const glm::vec4& p) { return p.w < 0.0F; }))
      return text("behind the viewer, who stands at a distance of 5");
    if (beyond(0, -1.0F)) return text("to the left");
    if (beyond(0, 1.0F)) return text("to the right");
    if (beyond(1, -1.0F)) return text("below");
    if (beyond(1, 1.0F)) return text("above");
    return {};
  }

  std::array<glm::vec3, 8> box_corners() const {
    std::array<glm::vec3, 8> corners;
    for (unsigned i = 0; i < 8; ++i) {
      corners[i] = {(i & 1U) != 0 ? 1.0F : -1.0F, (i & 2U) != 0 ? 1.0F : -1.0F,
                    (i & 4U) != 0 ? box_.end() : -1.0F};
    }
    return corners;
  }

  // Whether the box covers a pixel, about.
  bool box_can_be_seen() const {
    const Camera camera = record_.camera();
    glm::vec2 low(1e30F);
    glm::vec2 high(-1e30F);
    for (const glm::vec3& corner : box_corners()) {
      const std::optional<glm::vec3> at = on_screen(camera, corner);
      if (!at) return true;
      low = glm::min(low, glm::vec2(*at));
      high = glm::max(high, glm::vec2(*at));
    }
    return high.x - low.x >= 1.0F && high.y - low.y >= 1.0F;  // false as well where they are no numbers
  }

  std::string no_section() const {
    bool shown = false;
    for (int axis = 0; axis < 3; ++axis) {
      const Section& section = settings_.sections[static_cast<std::size_t>(axis)];
      if (section.shown && box_.reaches(axis, 2.0F * section.position - 1.0F))
        return even_colour("Every slice");
      shown = shown || section.shown;
    }
    if (!shown)
      return "All three slices of the sectional view are switched off. Show one (setSectionalView). ";
    return "The slice that is shown lies in the part of the volume that has not been uploaded yet. "
           "Move it to a smaller position (setSectionalView). ";
  }

  std::string no_secondary() const {
    if (source_.secondary == 0) {
      return "Volume mode 3 colours the volume by secondary data, and there is none. Upload it "
             "(uploadOfflineSecondaryData) or choose another mode (setVolumeMode). ";
    }
    return "Volume mode 3 uses image " + std::to_string(settings_.secondary_slice_index) +
           " of the secondary data, which has images 0 to " +
           std::to_string(source_.secondary_slice_count - 1) +
           ". Choose one of them (setRendererSecondarySliceIndex). ";
  }

  // Rays begin on the faces of the box that look at the viewer, on a closed cut that does, and right before an eye in
  // the box. Where none of that is left there are no rays.
  std::string cut_away() const {
    const glm::vec4& plane = record_.plane;
    if (!plane_is_on()) return {};
    const auto kept = [&](const glm::vec3& point) {
      constexpr float rounding = 1e-3F;
      return !(glm::dot(plane, glm::vec4(point, 1.0F)) < -rounding);
    };
    const std::array<glm::vec3, 8> corners = box_corners();
    if (std::ranges::none_of(corners, kept)) {
      return "The clip plane cuts everything away: its value is " + oct::text_of(settings_.clip_plane.value) +
             ". Raise it (setClipPlane). ";
    }
    const glm::vec4 eye = eye_in_model(record_.camera());
    const bool cut_shows = !settings_.clip_plane.open_cut && !(glm::dot(plane, eye) > 0.0F);
    if (cut_shows || (eye.w != 0.0F && box_.contains(glm::vec3(eye) / eye.w))) return {};
    for (int axis = 0; axis < 3; ++axis) {
      for (const float side : {-1.0F, axis == 2 ? box_.end() : 1.0F}) {
        const float outwards = side == -1.0F ? -1.0F : 1.0F;
        constexpr float rounding = 1e-3F;
        if (outwards * (eye[axis] - side * eye.w) < -rounding) continue;  // looks away
        const CrossSection face = box_.cross_section(axis, side);
        if (std::ranges::any_of(face, kept)) return {};
      }
    }
    return "The clip plane cuts away every face of the volume that looks at the viewer, and its cut is open: "
           "its value is " +
           oct::text_of(settings_.clip_plane.value) + ". Raise it, or close the cut (setClipPlane). ";
  }

  std::string nothing_in_values() const {
    const Colormap& map = colors().colors.colors();
    const float lower = colors().lower;
    const float upper = colors().upper;
    if (overlay_shows()) return {};
    if (!has_opacity(map)) {
      return "The volume's colour map has no opacity: the fourth byte of each of its " +
             std::to_string(map.size()) + " colours is 0. Give it some (" + colormap_setter() + "). ";
    }
    if (!is_composite()) return even_colour("Every ray");
    if (std::isnan(lower))
      return "The lower colouring boundary is not a number. Set another one" + by_boundaries();
    if (lower > upper && alpha_of(map.front()) == 0) {
      return "The colouring boundaries are the wrong way round (" + boundaries_text() +
             "): all that is above the lower one has the first colour, which is transparent. Swap them" +
             by_boundaries();
    }
    if (!record_.values) return {};
    if (record_.values->value == -unknown) return no_numbers();
    if (record_.values->bound <= lower) {
      return "All values of the volume lie at or below the lower colouring boundary: " + range_text() + ", " +
             boundaries_text() + ". Lower the boundaries" + by_boundaries();
    }
    const bool ascend = std::isfinite(lower) && std::isfinite(upper) && lower < upper;
    const float visible_from = ascend ? composite_limit(map, lower, upper) : unknown;
    if (ascend && record_.values->bound <= visible_from) {
      return "All values of the volume lie where the colour map is transparent: " + range_text() +
             ", opacity from " + oct::text_of(visible_from) + " on (" + boundaries_text() +
             "). Lower the boundaries" + by_boundaries() + "Or give the first colours opacity (" +
             colormap_setter() + "). ";
    }
    return {};
  }

  static std::string no_numbers() {
    return "The volume holds no number that could be drawn: all of its voxels are NaN or minus infinity. "
           "Check the data. ";
  }

  // What counts all values alike, at or below the lower boundary, is one patch of the first colour. A mean counts its
  // first point twice and its last one not at all: it may be three times the greatest value.
  std::string even_colour(const char* each) const {
    if (overlay_shows() || !record_.values) return {};
    if (record_.values->value == -unknown) return no_numbers();
    const bool mean = !sectional() && settings_.volume_mode == VolumeMode::mean;
    const float bound = record_.values->bound * (mean && record_.values->bound > 0.0F ? 3.0F : 1.0F);
    if (!(bound <= colors().lower && colors().lower < colors().upper)) return {};
    return std::string(each) +
           " has the first colour of the map, because all values of the volume lie at or below "
           "the lower colouring boundary: " +
           range_text() + ", " + boundaries_text() + ". Lower the boundaries" + by_boundaries();
  }

  const FrameRecord& record_;
  const LowestValue& lowest_;
  const VolumeSettings& settings_ = record_.drawn.settings;
  const VolumeSource& source_ = record_.drawn.source;
  const FilledBox box_ = record_.box();
};

}  // namespace

std::string certain_cause(const FrameRecord& record, const LowestValue& lowest) {
  return Question(record, lowest).certain_cause();
}

std::string likely_cause(const FrameRecord& record, const LowestValue& lowest) {
  return Question(record, lowest).likely_cause();
}

}  // namespace oct
