#include "octview/views/slice_marks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "octview/model/measurements.h"
#include "octview/model/slice_position.h"

namespace oct::app {
namespace {

constexpr ImU32 bright = IM_COL32(255, 255, 255, 255);
constexpr ImU32 shade = IM_COL32(0, 0, 0, 190);
constexpr ImU32 measured = measured_color;
constexpr ImU32 surface_color = IM_COL32(255, 120, 60, 220);

ImVec2 screen(const ScreenPoint& point) {
  return {static_cast<float>(point[0]), static_cast<float>(point[1])};
}

class Marks {
 public:
  Marks(ImDrawList& list, const Workspace& workspace, const SliceGeometry& geometry)
      : list_(list),
        document_(workspace.document),
        state_(workspace.state),
        workspace_(workspace),
        geometry_(geometry),
        axes_(axes_of(geometry.axis)),
        ruler_(ruler_of(workspace.document.spacing())),
        from_(screen(geometry.corner)),
        to_(screen({geometry.corner[0] + geometry.size[0], geometry.corner[1] + geometry.size[1]})),
        em_(ImGui::GetFontSize()) {}

  void draw_crosshair() {
    if (!state_.crosshair) return;
    const ImVec2 at = screen(geometry_.screen_of(state_.cursor));
    const float gap = em_ * 0.7F;
    constexpr std::array<SliceAxis, 3> sections{SliceAxis::enface, SliceAxis::third, SliceAxis::bscan};
    draw_broken_line({at.x, from_.y}, {at.x, at.y - gap}, {at.x, at.y + gap}, {at.x, to_.y},
                     color_of(sections[axes_.right]));
    const bool bent = axes_.down == 0 && slice_position(document_, state_, SliceAxis::enface).below_surface;
    if (bent) {
      draw_surface(state_.below_surface, color_of(SliceAxis::enface));
    } else {
      draw_broken_line({from_.x, at.y}, {at.x - gap, at.y}, {at.x + gap, at.y}, {to_.x, at.y},
                       color_of(sections[axes_.down]));
    }
  }

  // Where a section along depth cuts the surface.
  void draw_surface(double below, ImU32 color) {
    if (axes_.down != 0 || !document_.surface) return;
    std::vector<ImVec2> line;
    const auto flush = [&] {
      if (line.size() > 1)
        list_.AddPolyline(line.data(), static_cast<int>(line.size()), color, 0, em_ * 0.1F);
      line.clear();
    };
    // Two points per em at most are enough for an eye, one per sample all there is.
    const double last = static_cast<double>(document_.sizes()[axes_.right]) - 1;
    const double step = std::max(1.0, geometry_.area.width / geometry_.size[0]);
    const double begin = std::max(0.0, std::floor(geometry_.area.left) - 1);
    const double end = std::min(last, geometry_.area.left + geometry_.area.width + 1);
    for (double right = begin; right <= end; right += step) {
      VoxelPoint point = state_.cursor;
      point[axes_.right] = std::floor(right);
      const std::optional<double> depth = surface_depth(document_, point[1], point[2]);
      if (!depth) {
        flush();
        continue;
      }
      point[0] = *depth + below;
      line.push_back(screen(geometry_.screen_of(point)));
    }
    flush();
  }

  void draw_axis_labels() {
    constexpr std::array<const char*, 3> names{"depth", "A-scans", "B-scans"};
    draw_label(list_, {from_.x + em_ * 0.4F, from_.y + em_ * 0.3F},
               std::string(names[axes_.right]) + " \xE2\x86\x92", bright);
    draw_label(list_, {from_.x + em_ * 0.4F, from_.y + em_ * 1.5F},
               std::string(names[axes_.down]) + " \xE2\x86\x93", bright);
  }

  // With where its millimetres come from.
  void draw_scale_bar() {
    const double pixel = geometry_.area.width / geometry_.size[0] * ruler_.step[axes_.right];
    const double length = round_length(pixel * std::max(geometry_.size[0] * 0.3, 1.0));
    const auto width = static_cast<float>(length / pixel);
    const ImVec2 right{to_.x - em_ * 0.6F, to_.y - em_ * 0.6F};
    const ImVec2 left{right.x - width, right.y};
    const float thick = em_ * 0.2F;
    list_.AddRectFilled({left.x - 1, left.y - thick - 1}, {right.x + 1, right.y + 1}, IM_COL32(0, 0, 0, 200));
    list_.AddRectFilled({left.x, left.y - thick}, right, bright);
    std::array<char, 40> text{};
    if (ruler_.millimetres && length < 0.999) {
      std::snprintf(text.data(), text.size(), "%.4g \xC2\xB5m", length * 1000);
    } else {
      std::snprintf(text.data(), text.size(), "%.4g %s", length, ruler_.unit());
    }
    draw_label(list_, {right.x, right.y - thick - em_ * 1.3F}, text.data(), bright, {1, 0});
    draw_label(list_, {right.x, right.y - thick - em_ * 2.5F}, ruler_.note, IM_COL32(225, 225, 225, 255),
               {1, 0});
  }

  void draw_measurements() {
    for (const Measurement& measurement : state_.measurements) {
      if (!std::ranges::all_of(measurement.points, [&](const VoxelPoint& point) {
            return lies_in_section(document_, state_, geometry_.axis, point);
          }))
        continue;
      draw_points(measurement.points);
      draw_value(measurement);
    }
    const auto last =
        std::find_if(state_.measurements.rbegin(), state_.measurements.rend(), [&](const Measurement& one) {
          return one.kind == MeasurementKind::profile &&
                 lies_in_section(document_, state_, geometry_.axis, one.points[0]) &&
                 lies_in_section(document_, state_, geometry_.axis, one.points[1]);
        });
    if (last != state_.measurements.rend()) draw_profile(*last);
  }

  void draw_tool(const std::optional<ScreenPoint>& hovered) {
    if (!workspace_.tool) return;
    std::vector<VoxelPoint> points;
    for (const VoxelPoint& point : workspace_.clicked)
      if (lies_in_section(document_, state_, geometry_.axis, point)) points.push_back(point);
    if (hovered) points.push_back(geometry_.voxel_at(*hovered, state_.cursor[axes_.across]));
    draw_points(points);
    if (!hovered) return;
    draw_label(list_, {from_.x + em_ * 0.4F, from_.y + em_ * 2.7F}, tool_text(workspace_), measured);
  }

 private:
  // Beside the second point, where there is space.
  void draw_value(const Measurement& measurement) {
    const ImVec2 place = screen(geometry_.screen_of(measurement.points[1]));
    const std::string text = value_text(ruler_, measurement);
    const float away = em_ * 0.6F;
    const bool fits = place.x + away + ImGui::CalcTextSize(text.c_str()).x < to_.x;
    draw_label(list_, {place.x + (fits ? away : -away), place.y}, text, measured, {fits ? 0.0F : 1.0F, 0.5F});
  }

  void draw_broken_line(ImVec2 a, ImVec2 b, ImVec2 c, ImVec2 d, ImU32 color) {
    const float thin = std::max(1.0F, std::round(em_ / 16));
    list_.AddLine(a, b, color, thin);
    list_.AddLine(c, d, color, thin);
  }

  void draw_points(const std::vector<VoxelPoint>& points) {
    for (std::size_t i = 0; i < points.size(); ++i) {
      const ImVec2 place = screen(geometry_.screen_of(points[i]));
      list_.AddCircle(place, em_ * 0.3F, measured, 0, em_ * 0.1F);
      if (i > 0) list_.AddLine(screen(geometry_.screen_of(points[i - 1])), place, measured, em_ * 0.1F);
    }
  }

  void draw_profile(const Measurement& measurement) {
    const std::vector<ProfileSample> profile =
        profile_along(*document_.volume, ruler_, measurement.points[0], measurement.points[1]);
    double lowest = std::numeric_limits<double>::infinity(), highest = -lowest;
    for (const ProfileSample& sample : profile) {
      if (std::isnan(sample.value)) continue;
      lowest = std::min(lowest, sample.value);
      highest = std::max(highest, sample.value);
    }
    if (profile.size() < 2 || !(lowest <= highest)) return;
    const ImVec2 size{std::min(em_ * 16, (to_.x - from_.x) * 0.5F), em_ * 5};
    const ImVec2 corner{from_.x + em_ * 0.5F, to_.y - em_ * 0.5F - size.y};
    list_.AddRectFilled(corner, {corner.x + size.x, corner.y + size.y}, IM_COL32(0, 0, 0, 190), em_ * 0.2F);
    const double height = highest > lowest ? highest - lowest : 1;
    const float top = corner.y + em_ * 1.3F, bottom = corner.y + size.y - em_ * 0.4F;
    std::vector<ImVec2> line;
    for (const ProfileSample& sample : profile) {
      if (std::isnan(sample.value)) continue;
      const double x = sample.distance / profile.back().distance;
      line.push_back({corner.x + em_ * 0.4F + static_cast<float>(x) * (size.x - em_ * 0.8F),
                      bottom - static_cast<float>((sample.value - lowest) / height) * (bottom - top)});
    }
    list_.AddPolyline(line.data(), static_cast<int>(line.size()), measured, 0, em_ * 0.08F);
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "%s: %.4g to %.4g", measurement.name.c_str(), lowest, highest);
    list_.PushClipRect(corner, {corner.x + size.x, corner.y + size.y}, true);
    list_.AddText({corner.x + em_ * 0.4F, corner.y + em_ * 0.1F}, bright, text.data());
    list_.PopClipRect();
  }

  ImDrawList& list_;
  const Document& document_;
  const ViewState& state_;
  const Workspace& workspace_;
  const SliceGeometry& geometry_;
  const SliceAxes axes_;
  const Ruler ruler_;
  const ImVec2 from_;
  const ImVec2 to_;
  const float em_;
};

void draw_shade(ImDrawList& list, ImVec2 corner, ImVec2 size) {
  const float margin = ImGui::GetFontSize() * 0.2F;
  list.AddRectFilled({corner.x - margin, corner.y}, {corner.x + size.x + margin, corner.y + size.y}, shade,
                     margin);
}

}  // namespace

void draw_label(ImDrawList& list, ImVec2 place, const std::string& text, ImU32 color, ImVec2 back) {
  const ImVec2 size = ImGui::CalcTextSize(text.c_str());
  place = {std::round(place.x - back.x * size.x), std::round(place.y - back.y * size.y)};
  draw_shade(list, place, size);
  list.AddText(place, color, text.c_str());
}

void draw_note(ImDrawList& list, ImVec2 corner, float width, const std::string& text) {
  width = std::max(width, ImGui::GetFontSize());
  draw_shade(list, corner, ImGui::CalcTextSize(text.c_str(), nullptr, false, width));
  list.AddText(nullptr, 0, corner, note_color, text.c_str(), nullptr, width);
}

std::string tool_text(const Workspace& workspace) {
  const std::size_t missing = point_count(*workspace.tool) - workspace.clicked.size();
  return std::string(name_of(*workspace.tool)) + ": click " + std::to_string(missing) +
         (missing == 1 ? " point" : " points") + ", Escape ends";
}

double reach_of_points() {
  return ImGui::GetFontSize() * 0.6;
}

ImU32 color_of(SliceAxis axis) {
  if (axis == SliceAxis::bscan) return IM_COL32(90, 160, 255, 255);
  return axis == SliceAxis::enface ? IM_COL32(250, 200, 60, 255) : IM_COL32(100, 215, 120, 255);
}

bool lies_in_section(const Document& document, const ViewState& state, SliceAxis axis,
                     const VoxelPoint& point) {
  const SlicePosition place = slice_position(document, state, axis);
  if (!place.below_surface)
    return std::abs(point[axes_of(axis).across] - static_cast<double>(place.position)) <= 0.5;
  const std::optional<double> depth = surface_depth(document, point[1], point[2]);
  return depth && std::abs(point[0] - *depth - static_cast<double>(place.position)) <= 1;
}

void draw_slice_marks(ImDrawList& list, const Workspace& workspace, const SliceGeometry& geometry,
                      const std::optional<ScreenPoint>& hovered) {
  list.PushClipRect(screen(geometry.corner),
                    screen({geometry.corner[0] + geometry.size[0], geometry.corner[1] + geometry.size[1]}),
                    true);
  Marks marks(list, workspace, geometry);
  if (workspace.state.surface.visible) marks.draw_surface(0, surface_color);
  marks.draw_crosshair();
  marks.draw_measurements();
  marks.draw_tool(hovered);
  marks.draw_axis_labels();
  marks.draw_scale_bar();
  list.PopClipRect();
}

}  // namespace oct::app
