#include "octview/panels/curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "octview/panels/widgets.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

using Points = std::vector<std::array<double, 2>>;

constexpr float height = 7;    // letters
constexpr float reach = 0.7F;  // letters around a point in which it is taken hold of

// The curve without points, as one with points.
Points square_points() {
  Points points;
  for (const double place : {0.0, 0.25, 0.5, 0.75, 1.0}) points.push_back({place, place * place});
  return points;
}

// 0 to 1, in thousandths: nobody points more precisely, and commands are to be read.
double part(float length, float whole) {
  return std::round(1000 * std::clamp(static_cast<double>(length) / static_cast<double>(whole), 0.0, 1.0)) /
         1000;
}

// Places of the curve on the screen.
struct Canvas {
  ImVec2 from;
  ImVec2 to;

  ImVec2 at(const std::array<double, 2>& point) const {
    return {from.x + static_cast<float>(point[0]) * (to.x - from.x),
            to.y - static_cast<float>(point[1]) * (to.y - from.y)};
  }
  std::array<double, 2> point(ImVec2 place) const {
    return {part(place.x - from.x, to.x - from.x), part(to.y - place.y, to.y - from.y)};
  }
};

std::optional<std::size_t> nearest_point(const Canvas& canvas, const Points& points, ImVec2 mouse) {
  std::optional<std::size_t> nearest;
  float best = em(reach);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const ImVec2 place = canvas.at(points[i]);
    const float distance = std::hypot(place.x - mouse.x, place.y - mouse.y);
    if (distance > best) continue;
    best = distance;
    nearest = i;
  }
  return nearest;
}

// Between its neighbours.
void move_point(Points& points, std::size_t index, std::array<double, 2> to) {
  const double lowest = index > 0 ? points[index - 1][0] : 0;
  const double highest = index + 1 < points.size() ? points[index + 1][0] : 1;
  points[index] = {std::clamp(to[0], lowest, highest), to[1]};
}

std::size_t add_point(Points& points, std::array<double, 2> point) {
  const auto after = std::ranges::find_if(points, [&](const auto& other) { return other[0] > point[0]; });
  const auto index = static_cast<std::size_t>(after - points.begin());
  points.insert(after, point);
  return index;
}

void draw(const Canvas& canvas, const OpacityRule& rule, std::optional<std::size_t> held) {
  ImDrawList& list = *ImGui::GetWindowDrawList();
  list.AddRectFilled(canvas.from, canvas.to, ImGui::GetColorU32(ImGuiCol_FrameBg));
  OpacityRule shape = rule;
  shape.highest = 1;
  shape.shift = 0;
  std::vector<ImVec2> line;
  const auto columns = static_cast<int>(canvas.to.x - canvas.from.x);
  for (int i = 0; i <= columns; ++i) {
    const double place = static_cast<double>(i) / columns;
    line.push_back(canvas.at({place, opacity_at(shape, place)}));
  }
  list.AddPolyline(line.data(), static_cast<int>(line.size()), ImGui::GetColorU32(ImGuiCol_PlotLines), 0,
                   std::max(1.0F, em(0.12F)));
  for (std::size_t i = 0; i < rule.points.size(); ++i) {
    const ImU32 color = ImGui::GetColorU32(held == i ? ImGuiCol_SliderGrabActive : ImGuiCol_SliderGrab);
    const ImVec2 place = canvas.at(rule.points[i]);
    list.AddCircleFilled(place, em(0.35F), color);
    mark_item("Point " + std::to_string(i + 1), {place.x - em(0.35F), place.y - em(0.35F)},
              {place.x + em(0.35F), place.y + em(0.35F)});
  }
}

bool show_shapes(Points& points) {
  const std::array<std::pair<const char*, Points>, 3> shapes{
      {{"Square", {}}, {"Straight", {{0, 0}, {1, 1}}}, {"Step", {{0, 0}, {0.3, 0}, {0.35, 1}, {1, 1}}}}};
  bool changed = false;
  for (const auto& [name, shape] : shapes) {
    if (ImGui::Button(name)) {
      points = shape;
      changed = true;
    }
    ImGui::SameLine();
  }
  ImGui::NewLine();
  return changed;
}

}  // namespace

bool CurveEditor::show(LayerLook& look) {
  bool changed = show_shapes(look.opacity.points);
  const ImVec2 from = ImGui::GetCursorScreenPos();
  const ImVec2 size{std::max(ImGui::GetContentRegionAvail().x, em(4)), em(height)};
  const float margin = em(0.4F);
  const Canvas canvas{{from.x + margin, from.y + margin},
                      {from.x + size.x - margin, from.y + size.y - margin}};
  ImGui::InvisibleButton("Opacity curve", size,
                         ImGuiButtonFlags_MouseButtonLeft | ImGuiButtonFlags_MouseButtonRight);
  mark_item("Opacity curve", canvas.from, canvas.to);
  hint("Click to add a point, drag to move it, right click to remove it");
  const ImVec2 mouse = ImGui::GetIO().MousePos;
  Points& points = look.opacity.points;
  if (ImGui::IsItemClicked(ImGuiMouseButton_Left)) {
    held_ = nearest_point(canvas, points, mouse);
    if (!held_) {
      if (points.empty()) points = square_points();
      held_ = nearest_point(canvas, points, mouse);
      if (!held_) held_ = add_point(points, canvas.point(mouse));
      changed = true;
    }
  } else if (ImGui::IsItemClicked(ImGuiMouseButton_Right)) {
    const std::optional<std::size_t> hit = nearest_point(canvas, points, mouse);
    if (hit) {
      points.erase(points.begin() + static_cast<std::ptrdiff_t>(*hit));
      changed = true;
    }
  } else if (!ImGui::IsItemActive()) {
    held_.reset();
  }
  if (held_ && *held_ < points.size() && ImGui::IsMouseDragging(ImGuiMouseButton_Left, 0)) {
    const std::array<double, 2> before = points[*held_];
    move_point(points, *held_, canvas.point(mouse));
    changed |= points[*held_] != before;
  }
  draw(canvas, look.opacity, held_);
  return changed;
}

}  // namespace oct::app
