#include "octview/model/measurements.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <numbers>
#include <numeric>

#include "octview/model/number_text.h"

namespace oct::app {
namespace {

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t longest_profile = 100'000;

std::array<double, 3> vector_between(const Ruler& ruler, const VoxelPoint& from, const VoxelPoint& to) {
  std::array<double, 3> result{};
  for (std::size_t i = 0; i < 3; ++i) result[i] = (to[i] - from[i]) * ruler.step[i];
  return result;
}

double length_of(const std::array<double, 3>& vector) {
  return std::hypot(vector[0], vector[1], vector[2]);
}

// The two neighbours along an axis, and the weight of the second.
struct Neighbours {
  std::size_t first = 0;
  std::size_t second = 0;
  double weight = 0;
};

// False outside of the volume.
bool find_neighbours(double position, std::size_t count, Neighbours& result) {
  const auto last = static_cast<double>(count) - 1;
  if (!(position >= -0.5 && position <= last + 0.5)) return false;
  const double inside = std::clamp(position, 0.0, last);
  result.first = static_cast<std::size_t>(inside);
  result.second = std::min(result.first + 1, count - 1);
  result.weight = inside - static_cast<double>(result.first);
  return true;
}

std::string quoted(const std::string& field) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
  std::string result = "\"";
  for (const char c : field) {
    if (c == '"') result += c;
    result += c;
  }
  result += '"';
  return result;
}

std::string row_of(const std::vector<std::string>& fields) {
  std::string row;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) row += ',';
    row += quoted(fields[i]);
  }
  row += "\r\n";
  return row;
}

// Empty where there is none.
std::string field_of(double value) {
  return std::isnan(value) ? std::string() : number_text(value);
}

}  // namespace

std::optional<MeasuredPoint> find_point(
    const std::vector<Measurement>& list, const std::array<double, 2>& place, double reach,
    const std::function<std::optional<std::array<double, 2>>(const VoxelPoint&)>& screen_of) {
  for (std::size_t i = list.size(); i-- > 0;) {
    for (std::size_t k = 0; k < list[i].points.size(); ++k) {
      const auto point = screen_of(list[i].points[k]);
      if (point && std::hypot((*point)[0] - place[0], (*point)[1] - place[1]) <= reach)
        return MeasuredPoint{i, k};
    }
  }
  return {};
}

std::size_t point_count(MeasurementKind kind) {
  return kind == MeasurementKind::angle ? 3 : 2;
}

const char* name_of(MeasurementKind kind) {
  if (kind == MeasurementKind::angle) return "angle";
  return kind == MeasurementKind::profile ? "profile" : "distance";
}

std::string next_name(const std::vector<Measurement>& list, MeasurementKind kind) {
  for (std::size_t number = 1;; ++number) {
    std::string name = name_of(kind) + (' ' + std::to_string(number));
    if (std::ranges::find(list, name, &Measurement::name) == list.end()) return name;
  }
}

Ruler ruler_of(const VoxelSpacing& spacing) {
  if (!spacing.is_known()) return {{1, 1, 1}, false, "voxels: no spacing known"};
  return {spacing.mm, true, spacing.source};
}

double distance_between(const Ruler& ruler, const VoxelPoint& from, const VoxelPoint& to) {
  return length_of(vector_between(ruler, from, to));
}

double angle_at(const Ruler& ruler, const VoxelPoint& side, const VoxelPoint& corner,
                const VoxelPoint& other_side) {
  const std::array<double, 3> a = vector_between(ruler, corner, side);
  const std::array<double, 3> b = vector_between(ruler, corner, other_side);
  if (length_of(a) == 0 || length_of(b) == 0) return not_a_number;
  const std::array<double, 3> cross{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                                    a[0] * b[1] - a[1] * b[0]};
  const double dot = std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
  return std::atan2(length_of(cross), dot) * 180 / std::numbers::pi;  // exact near 0 and 180 degrees, too
}

double value_of(const Ruler& ruler, const Measurement& measurement) {
  const std::vector<VoxelPoint>& points = measurement.points;
  if (points.size() != point_count(measurement.kind)) return not_a_number;
  if (measurement.kind == MeasurementKind::angle) return angle_at(ruler, points[0], points[1], points[2]);
  return distance_between(ruler, points[0], points[1]);
}

std::string value_text(const Ruler& ruler, const Measurement& measurement) {
  const double value = value_of(ruler, measurement);
  if (std::isnan(value)) return "-";
  std::array<char, 64> text{};
  if (measurement.kind == MeasurementKind::angle) {
    std::snprintf(text.data(), text.size(), "%.1f\xC2\xB0", value);
  } else {
    std::snprintf(text.data(), text.size(), ruler.millimetres ? "%.4g mm" : "%.1f voxels", value);
  }
  return text.data();
}

double value_at(const VolumeData& volume, const VoxelPoint& point) {
  std::array<Neighbours, 3> axes;
  const std::array<std::size_t, 3> size = volume.sizes();
  for (std::size_t i = 0; i < 3; ++i) {
    const double place = (point[i] + 0.5) / static_cast<double>(volume.reduction[i]) - 0.5;
    if (!find_neighbours(place, size[i], axes[i])) return not_a_number;
  }
  double sum = 0;
  for (unsigned corner = 0; corner < 8; ++corner) {
    std::array<std::size_t, 3> at{};
    double weight = 1;
    for (std::size_t i = 0; i < 3; ++i) {
      const bool second = (corner >> i & 1U) != 0;
      at[i] = second ? axes[i].second : axes[i].first;
      weight *= second ? axes[i].weight : 1 - axes[i].weight;
    }
    if (weight > 0) sum += weight * volume.voxels[(at[2] * volume.ascans + at[1]) * volume.depth + at[0]];
  }
  return sum;
}

std::vector<ProfileSample> profile_along(const VolumeData& volume, const Ruler& ruler, const VoxelPoint& from,
                                         const VoxelPoint& to) {
  double voxels = 0;
  for (std::size_t i = 0; i < 3; ++i) voxels = std::max(voxels, std::abs(to[i] - from[i]));
  const auto steps =
      static_cast<std::size_t>(std::clamp(std::ceil(2 * voxels), 1.0, static_cast<double>(longest_profile)));
  const double length = distance_between(ruler, from, to);
  std::vector<ProfileSample> samples(steps + 1);
  for (std::size_t i = 0; i <= steps; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(steps);
    ProfileSample& sample = samples[i];
    sample.distance = share * length;
    for (std::size_t axis = 0; axis < 3; ++axis) sample.point[axis] = std::lerp(from[axis], to[axis], share);
    sample.value = value_at(volume, sample.point);
  }
  return samples;
}

std::string measurements_csv(const std::vector<Measurement>& list, const Ruler& ruler,
                             const std::string& file) {
  std::string text = row_of({"name", "kind", "value", "unit", "depth_1", "ascan_1", "bscan_1", "depth_2",
                             "ascan_2", "bscan_2", "depth_3", "ascan_3", "bscan_3", "depth_step",
                             "ascan_step", "bscan_step", "step_unit", "spacing_source", "file"});
  for (const Measurement& measurement : list) {
    const bool is_angle = measurement.kind == MeasurementKind::angle;
    std::vector<std::string> fields{measurement.name, name_of(measurement.kind),
                                    field_of(value_of(ruler, measurement)),
                                    is_angle ? "degrees" : ruler.unit()};
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t axis = 0; axis < 3; ++axis)
        fields.push_back(i < measurement.points.size() ? field_of(measurement.points[i][axis]) : "");
    }
    for (const double step : ruler.step) fields.push_back(number_text(step));
    std::ranges::copy(std::array<std::string, 3>{ruler.unit(), ruler.note, file}, std::back_inserter(fields));
    text += row_of(fields);
  }
  return text;
}

std::string profile_csv(const std::vector<ProfileSample>& profile, const Ruler& ruler) {
  std::string text = row_of(
      {std::string("distance_") + (ruler.millimetres ? "mm" : "voxels"), "depth", "ascan", "bscan", "value"});
  for (const ProfileSample& sample : profile) {
    text += row_of({number_text(sample.distance), number_text(sample.point[0]), number_text(sample.point[1]),
                    number_text(sample.point[2]), field_of(sample.value)});
  }
  return text;
}

}  // namespace oct::app
