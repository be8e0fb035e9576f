#include "octview/model/camera.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace oct::app {
namespace {

constexpr double viewer_distance = 5;
constexpr double least_zoom = 0.1, most_zoom = 170;  // the same that the command line takes
constexpr std::array<double, 2> first_angles{25, -35};
// Half of what is seen of the plane of the box's centre, with which a box and its labels fit at any angles.
constexpr double half_height = 2.25;
constexpr double part_with_labels = 0.82;
constexpr double part_of_box = 0.96;

double radians(double degrees) {
  return degrees * std::numbers::pi / 180;
}

double width_of(PictureSize size) {
  return std::max(1U, size.width);
}

double height_of(PictureSize size) {
  return std::max(1U, size.height);
}

// Model units from the middle of the picture to its upper edge: with perspective at a distance of 1.
double half_height_of(const VolumeView& view, PictureSize size) {
  if (view.perspective) return std::tan(radians(view.zoom + 5) / 2);
  return view.zoom / 10 * height_of(size) / width_of(size);
}

double zoom_of(double half_height, bool perspective, PictureSize size) {
  const double zoom = perspective ? std::atan(half_height) * 360 / std::numbers::pi - 5
                                  : half_height * 10 * width_of(size) / height_of(size);
  return std::clamp(zoom, least_zoom, most_zoom);
}

double centre_distance(const VolumeView& view) {
  return view.perspective ? std::max(0.1, viewer_distance - view.translation[2]) : 1;
}

// Model units of a pixel in the plane of the box's centre.
double pixel_length(const VolumeView& view, PictureSize size) {
  return 2 * half_height_of(view, size) * centre_distance(view) / height_of(size);
}

double wrapped(double degrees) {
  return std::remainder(degrees, 360.0);
}

// To the right, upwards and towards the viewer of the box's centre, in model units.
std::array<double, 3> turned(const VolumeView& view, const BoxExtent& extent, const BoxPoint& point) {
  const double scale = 2 / std::hypot(extent[0], extent[1], extent[2]);
  const double x = (2 * point[1] - 1) * extent[1] * scale;
  const double y = (1 - 2 * point[0]) * extent[0] * scale;
  const double z = (2 * point[2] - 1) * extent[2] * scale;
  const double cx = std::cos(radians(view.angles[0])), sx = std::sin(radians(view.angles[0]));
  const double cy = std::cos(radians(view.angles[1])), sy = std::sin(radians(view.angles[1]));
  const double right = cy * x + sy * z;
  const double forward = cy * z - sy * x;
  return {right, cx * y - sx * forward, sx * y + cx * forward};
}

// The box's corners along one direction of the picture: where they are, and how much is seen there of a unit of the
// picture's half height.
class Spread {
 public:
  void add(double place, double seen) {
    for (const Corner& other : corners_) widen(place, seen, other);
    corners_[count_++] = {place, seen};
  }
  // The least half height with which all corners are seen, somehow moved.
  double least() const { return least_; }
  // How far to move them into the middle.
  double shift(double half_height) const {
    double lowest = -std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (const Corner& corner : corners_) {
      lowest = std::max(lowest, -half_height * corner.seen - corner.place);
      highest = std::min(highest, half_height * corner.seen - corner.place);
    }
    return (lowest + highest) / 2;
  }

 private:
  struct Corner {
    double place = 0;
    double seen = 0;
  };
  void widen(double place, double seen, const Corner& other) {
    if (other.seen > 0) least_ = std::max(least_, std::abs(place - other.place) / (seen + other.seen));
  }

  std::array<Corner, 8> corners_{};
  unsigned count_ = 0;
  double least_ = 0;
};

}  // namespace

void turn(VolumeView& view, const PixelPoint& drag, PictureSize size) {
  const double degrees = 180 / width_of(size);
  view.angles[0] = std::clamp(view.angles[0] + drag[1] * degrees, -90.0, 90.0);
  view.angles[1] = wrapped(view.angles[1] + drag[0] * degrees);
}

void pan(VolumeView& view, const PixelPoint& drag, PictureSize size) {
  const double unit = pixel_length(view, size);
  view.translation[0] += drag[0] * unit;
  view.translation[1] -= drag[1] * unit;
}

void zoom_at(VolumeView& view, const PixelPoint& cursor, double factor, PictureSize size) {
  const double before = pixel_length(view, size);
  view.zoom = zoom_of(half_height_of(view, size) * factor, view.perspective, size);
  const double grown = pixel_length(view, size) - before;
  view.translation[0] += (cursor[0] - width_of(size) / 2) * grown;
  view.translation[1] -= (cursor[1] - height_of(size) / 2) * grown;
}

void reset_camera(VolumeView& view, PictureSize size) {
  view.angles = first_angles;
  view.translation = {};
  // A picture that is narrower than most shows as much to either side.
  const double wanted = half_height * std::max(1.0, height_of(size) / width_of(size));
  // With perspective the front of a box is larger than its middle.
  view.zoom = zoom_of(view.perspective ? 1.2 * wanted / viewer_distance : wanted, view.perspective, size);
}

void fit_box(VolumeView& view, const BoxExtent& extent, PictureSize size) {
  view.translation[2] = 0;
  const double part = view.scale_marks ? part_with_labels : part_of_box;
  const double aspect = width_of(size) / height_of(size);
  Spread across, upwards;
  for (unsigned i = 0; i < 8; ++i) {
    const BoxPoint corner{static_cast<double>(i & 1U), static_cast<double>(i >> 1U & 1U),
                          static_cast<double>(i >> 2U)};
    const auto [right, up, towards] = turned(view, extent, corner);
    const double distance = view.perspective ? viewer_distance - towards : 1;
    across.add(right, distance * aspect * part);
    upwards.add(up, distance * part);
  }
  view.zoom = zoom_of(std::max(across.least(), upwards.least()), view.perspective, size);
  const double half = half_height_of(view, size);
  view.translation[0] = across.shift(half);
  view.translation[1] = upwards.shift(half);
}

std::optional<PixelPoint> pixel_of(const VolumeView& view, const BoxExtent& extent, const BoxPoint& point,
                                   PictureSize size) {
  const auto [right, up, towards] = turned(view, extent, point);
  const double distance = view.perspective ? viewer_distance - view.translation[2] - towards : 1;
  if (distance < 0.05) return std::nullopt;
  const double unit = height_of(size) / 2 / half_height_of(view, size) / distance;
  return PixelPoint{width_of(size) / 2 + (right + view.translation[0]) * unit,
                    height_of(size) / 2 - (up + view.translation[1]) * unit};
}

}  // namespace oct::app
