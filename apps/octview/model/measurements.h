// Distances, angles and profiles between points of a volume, and their table.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "data/volume.h"
#include "data/voxel_spacing.h"

namespace oct::app {

// Depth, A-scan, B-scan; whole numbers are the centres of voxels.
using VoxelPoint = std::array<double, 3>;

enum class MeasurementKind { distance, angle, profile };

struct Measurement {
  MeasurementKind kind = MeasurementKind::distance;
  std::string name;
  std::vector<VoxelPoint> points;  // two; of an angle three, the middle one its corner

  bool operator==(const Measurement&) const = default;
};

// One of the points of a list of measurements.
struct MeasuredPoint {
  std::size_t measurement;
  std::size_t point;
};

// The one that was drawn last of those that lie within reach of a place on the screen. screen_of: where a point is, if it shows.
std::optional<MeasuredPoint> find_point(
    const std::vector<Measurement>& list, const std::array<double, 2>& place, double reach,
    const std::function<std::optional<std::array<double, 2>>(const VoxelPoint&)>& screen_of);

std::size_t point_count(MeasurementKind kind);
const char* name_of(MeasurementKind kind);  // "distance"

// "distance 3": the first number that no measurement of the list has.
std::string next_name(const std::vector<Measurement>& list, MeasurementKind kind);

// From voxels to lengths.
struct Ruler {
  std::array<double, 3> step{1, 1, 1};  // along depth, A-scans, B-scans
  bool millimetres = false;             // else voxels
  std::string note;                     // where the steps come from, to be shown beside what is measured

  const char* unit() const { return millimetres ? "mm" : "voxels"; }
};

// spacing: between the voxels. Where not all of it is known, lengths are in voxels.
Ruler ruler_of(const VoxelSpacing& spacing);

double distance_between(const Ruler& ruler, const VoxelPoint& from, const VoxelPoint& to);

// In degrees; NaN where a side has no length.
double angle_at(const Ruler& ruler, const VoxelPoint& side, const VoxelPoint& corner,
                const VoxelPoint& other_side);

// Of a measurement with all of its points: a length in the ruler's unit, of an angle degrees.
double value_of(const Ruler& ruler, const Measurement& measurement);
// "1.234 mm", "45.0°".
std::string value_text(const Ruler& ruler, const Measurement& measurement);

// point: in samples of the volume's file. Linear between the voxels. As at the nearest in the outer half of a voxel at the border;
// beyond it, and where a voxel that counts is NaN, NaN.
double value_at(const VolumeData& volume, const VoxelPoint& point);

struct ProfileSample {
  double distance = 0;  // from the first point, in the ruler's unit
  VoxelPoint point{};
  double value = 0;
};

// Along the line, at even distances of at most half a voxel.
std::vector<ProfileSample> profile_along(const VolumeData& volume, const Ruler& ruler, const VoxelPoint& from,
                                         const VoxelPoint& to);

// Tables as CSV (comma, quoted where needed, lines end in CR LF). file: that was measured, for people.
std::string measurements_csv(const std::vector<Measurement>& list, const Ruler& ruler,
                             const std::string& file);
std::string profile_csv(const std::vector<ProfileSample>& profile, const Ruler& ruler);

}  // namespace oct::app
