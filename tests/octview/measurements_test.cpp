// Distances, angles, profiles and their tables.
#include "octview/model/measurements.h"

#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

namespace oct::app::test {
namespace {

// Linear in all three positions, so that what lies between voxels is known: 100 depth + 10 A-scan + B-scan.
VolumeData linear_volume() {
  VolumeData volume;
  volume.depth = 5;
  volume.ascans = 4;
  volume.bscans = 3;
  for (int b = 0; b < 3; ++b)
    for (int a = 0; a < 4; ++a)
      for (int z = 0; z < 5; ++z) volume.voxels.push_back(static_cast<float>(100 * z + 10 * a + b));
  return volume;
}

const Ruler millimetres = ruler_of({{0.5, 2, 4}, "NRRD header"});
const Ruler voxels = ruler_of({{0.5, 0, 4}, "NRRD header"});

TEST(Measurements, AreInMillimetresOnlyWhereAllSpacingIsKnown) {
  EXPECT_DOUBLE_EQ(distance_between(millimetres, {1, 1, 1}, {9, 2.5, 4}), 13);
  EXPECT_DOUBLE_EQ(distance_between(voxels, {1, 1, 1}, {3, 2, 3}), 3);
  EXPECT_EQ(millimetres.note, "NRRD header");
  EXPECT_EQ(voxels.note, "voxels: no spacing known");
  const Measurement line{MeasurementKind::distance, "a", {{1, 1, 1}, {9, 2.5, 4}}};
  EXPECT_EQ(value_text(millimetres, line), "13 mm");
  EXPECT_EQ(value_text(voxels, line), "8.7 voxels");
}

TEST(Measurements, AnglesAreThoseOfTheTissueNotOfTheVoxels) {
  EXPECT_NEAR(angle_at(millimetres, {4, 0, 0}, {0, 0, 0}, {4, 1, 0}), 45, 1e-12);
  EXPECT_NEAR(angle_at(voxels, {4, 0, 0}, {0, 0, 0}, {4, 4, 0}), 45, 1e-12);
  EXPECT_NEAR(angle_at(millimetres, {0, 0, 1}, {0, 1, 1}, {0, 3, 1}), 180, 1e-12);
  EXPECT_NEAR(angle_at(millimetres, {0, 1, 0}, {0, 0, 0}, {1e-6, 1, 0}), 2.5e-7 * 180 / std::numbers::pi,
              1e-12);
  EXPECT_TRUE(std::isnan(angle_at(millimetres, {1, 1, 1}, {1, 1, 1}, {0, 0, 0})));
}

TEST(Measurements, ProfilesAreLinearAlongObliqueLines) {
  VolumeData volume = linear_volume();
  const std::vector<ProfileSample> profile = profile_along(volume, millimetres, {4, 0, 0}, {0, 3, 2});
  ASSERT_EQ(profile.size(), 9U);  // half a voxel apart, along depth
  for (std::size_t i = 0; i < profile.size(); ++i) {
    const double share = static_cast<double>(i) / 8;
    EXPECT_NEAR(profile[i].distance, share * std::sqrt(4.0 + 36 + 64), 1e-12);
    EXPECT_NEAR(profile[i].value, 400 - 400 * share + 30 * share + 2 * share, 1e-9);
  }
  EXPECT_EQ(value_at(volume, {-0.5, 3.5, 2.5}), 32);  // the outer halves of the outer voxels
  for (const VoxelPoint outside : {VoxelPoint{-0.6, 0, 0}, {0, 3.6, 0}, {0, 0, 2.6}, {NAN, 0, 0}})
    EXPECT_TRUE(std::isnan(value_at(volume, outside)));
  volume.voxels[1] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(value_at(volume, {0, 0, 0}), 0);  // its neighbour does not count here
  EXPECT_TRUE(std::isnan(value_at(volume, {0.1, 0, 0})));
}

TEST(Measurements, TablesHaveAColumnForEverything) {
  std::vector<Measurement> list{{MeasurementKind::distance, "wall, \"left\"", {{0, 0, 0}, {0.1, 0, 0}}}};
  list.push_back(
      {MeasurementKind::angle, next_name(list, MeasurementKind::angle), {{1, 0, 0}, {0, 0, 0}, {0, 0, 7}}});
  list.push_back(
      {MeasurementKind::angle, next_name(list, MeasurementKind::angle), {{1, 0, 0}, {1, 0, 0}, {0, 0, 7}}});
  EXPECT_EQ(measurements_csv(list, millimetres, "a,b.npy"),
            "name,kind,value,unit,depth_1,ascan_1,bscan_1,depth_2,ascan_2,bscan_2,depth_3,ascan_3,bscan_3,"
            "depth_step,"
            "ascan_step,bscan_step,step_unit,spacing_source,file\r\n"
            "\"wall, \"\"left\"\"\",distance,0.05,mm,0,0,0,0.1,0,0,,,,0.5,2,4,mm,NRRD header,\"a,b.npy\"\r\n"
            "angle 1,angle,90,degrees,1,0,0,0,0,0,0,0,7,0.5,2,4,mm,NRRD header,\"a,b.npy\"\r\n"
            "angle 2,angle,,degrees,1,0,0,1,0,0,0,0,7,0.5,2,4,mm,NRRD header,\"a,b.npy\"\r\n");
  EXPECT_EQ(profile_csv(profile_along(linear_volume(), voxels, {0, 0, 0}, {0.5, 0, 0}), voxels),
            "distance_voxels,depth,ascan,bscan,value\r\n0,0,0,0,0\r\n0.5,0.5,0,0,50\r\n");
}

}  // namespace
}  // namespace oct::app::test
