// Polarization: light paths against matrices, and layers that are known.

#include "optics/polarization.h"

#include <cmath>
#include <numbers>
#include <random>

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include "phantoms/polarization_target.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

constexpr double pi = std::numbers::pi;
using Complex = std::complex<double>;
using P = PolarizationProcessing;

TEST(LightPath, FollowsTheMatricesOfManyRetardersThereAndBack) {
  using Matrix = Eigen::Matrix2cd;
  const Complex i(0.0, 1.0);
  std::mt19937 random(4);
  std::uniform_real_distribution<double> angle(0.0, 3.0);
  LightPath path;
  Matrix there = Matrix::Identity(), back = there;
  for (int layer = 0; layer < 12; ++layer) {
    const double retardance = angle(random);
    const double axis = angle(random);
    path.pass(retardance, axis);
    const Matrix turn = Eigen::Rotation2Dd(axis).toRotationMatrix().cast<Complex>();
    const Eigen::Vector2cd phases(std::polar(1.0, -retardance / 2.0), std::polar(1.0, retardance / 2.0));
    const Matrix retarder = turn * phases.asDiagonal() * turn.transpose();
    // A retarder's matrix is symmetric, so that on the way back only the order changes.
    there = retarder * there;
    back = back * retarder;
    const Eigen::Vector2cd light = back * there * Eigen::Vector2cd(1.0, i);
    const auto seen = path.returned();
    EXPECT_LT(std::abs(Complex(seen[0]) - 0.5 * (light[0] - i * light[1])), 1e-6) << layer;
    EXPECT_LT(std::abs(Complex(seen[1]) - 0.5 * (light[0] + i * light[1])), 1e-6) << layer;
  }
}

// Measures a phantom with both sensors.
std::unique_ptr<Sensors> measure_both(std::shared_ptr<const Phantom> phantom) {
  Device device(standard_spectrometer, std::move(phantom), 21, 2);
  auto sensors = std::make_unique<Sensors>();
  sensors->measure(device, ScanPattern(64, 1, 3.0, 1.0));
  return sensors;
}

double mean_over(const Volume& volume, double top_mm, double bottom_mm) {
  double sum = 0.0;
  int count = 0;
  for (int a_scan = 0; a_scan < volume.a_scans(); ++a_scan)
    for (int depth = static_cast<int>(top_mm / volume.cell_mm()); depth * volume.cell_mm() < bottom_mm;
         ++depth, ++count)
      sum += volume.at(depth, a_scan);
  return sum / count;
}

TEST(Polarization, APlateShowsItsRetardationAndAxisBelowIt) {
  for (const auto& [retardance, axis] :
       {std::pair{45.0, 30.0}, {20.0, 120.0}, {75.0, 75.0}, {45.0, 0.0}, {0.0, 29.0}}) {
    SCOPED_TRACE(retardance);
    const auto sensors =
        measure_both(std::make_shared<PolarizationTarget>(retardance * pi / 180.0, axis * pi / 180.0));
    for (int direction = 0; direction < 2; ++direction) {
      sensors->processing.set_averaging(direction, 9);
      sensors->processing.set_dopu_box(direction, 9);
    }
    const auto seen = sensors->compute(P::retardation);
    EXPECT_NEAR(mean_over(seen, 0.45, 0.75), 0.0, 2.5);
    if (retardance > 0.0) {
      EXPECT_NEAR(mean_over(seen, 0.96, 1.35), retardance, 1.5);
      const auto directions = sensors->compute(P::optic_axis);
      for (int a_scan = 5; a_scan < 60; ++a_scan)
        for (int depth = 280; depth < 380; ++depth)
          ASSERT_NEAR(std::remainder(directions.at(depth, a_scan) - axis, 180.0), 0.0, 6.0);
      continue;
    }
    // Without the plate, retardation grows with depth in the fibres, and folds back past a quarter turn.
    for (const double below : {0.08, 0.15, 0.25, 0.32, 0.6}) {
      const double expected = PolarizationTarget::fibre_rate * below * 180.0 / pi;
      const double depth = PolarizationTarget::fibres_top + below;
      EXPECT_NEAR(mean_over(seen, depth - 0.01, depth + 0.01), std::min(expected, 180.0 - expected), 3.0);
    }
  }
}

TEST(Polarization, IsUniformEverywhereButInTheDepolarizerAndInNoise) {
  const auto sensors = measure_both(std::make_shared<PolarizationTarget>(0.8, 0.5));
  for (int direction = 0; direction < 2; ++direction) sensors->processing.set_dopu_box(direction, 9);
  const auto dopu = sensors->compute(P::dopu);
  for (const auto& [top, bottom] : {std::pair{0.5, 0.7}, {1.0, 1.3}, {1.9, 2.3}})
    EXPECT_GT(mean_over(dopu, top, bottom), 0.95) << top;
  for (const auto& [top, bottom] : {std::pair{1.45, 1.75}, {3.0, 3.4}})
    EXPECT_LT(mean_over(dopu, top, bottom), 0.45) << top;
}

}  // namespace
}  // namespace oct::simulator::test
