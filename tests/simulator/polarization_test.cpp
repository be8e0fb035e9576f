// Polarization: light paths against matrices, known layers, averaging, thresholds.

#include "measurement.h"

#include "optics/polarization.h"
#include "phantoms/mirror.h"
#include "phantoms/polarization_target.h"
#include "processing/polarization_processing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace oct::simulator::test {
namespace {

constexpr double kPi = std::numbers::pi;
const ScanPattern kPattern(64, 1, 3.0, 1.0);

using Complex = std::complex<double>;

/// A 2 by 2 matrix in rows.
struct Matrix {
  Complex a, b, c, d;

  friend Matrix operator*(const Matrix& l, const Matrix& r) {
    return {l.a * r.a + l.b * r.c, l.a * r.b + l.b * r.d, l.c * r.a + l.d * r.c, l.c * r.b + l.d * r.d};
  }
};

Matrix rotation(double angle) {
  return {std::cos(angle), -std::sin(angle), std::sin(angle), std::cos(angle)};
}

Matrix retarder(double retardance, double axis) {
  const Matrix phases{std::polar(1.0, -retardance / 2.0), 0.0, 0.0, std::polar(1.0, retardance / 2.0)};
  return rotation(axis) * phases * rotation(-axis);
}

TEST(LightPath, FollowsTheMatricesOfManyRetardersThereAndBack) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> angle(0.0, 3.0);
  LightPath path;
  Matrix there{1.0, 0.0, 0.0, 1.0};
  Matrix back = there;
  const double h = std::sqrt(0.5);
  for (int layer = 0; layer < 12; ++layer) {
    const double retardance = angle(random);
    const double axis = angle(random);
    path.pass(retardance, axis);
    // A retarder's matrix is symmetric, so that on the way back only the order changes.
    there = retarder(retardance, axis) * there;
    back = back * retarder(retardance, axis);
    const Matrix whole = back * there;
    const Complex x = h * (whole.a + Complex(0.0, 1.0) * whole.b);
    const Complex y = h * (whole.c + Complex(0.0, 1.0) * whole.d);
    const Complex expected0 = h * (x - Complex(0.0, 1.0) * y);
    const Complex expected1 = h * (x + Complex(0.0, 1.0) * y);
    const auto seen = path.returned();
    EXPECT_LT(std::abs(Complex(seen[0]) - expected0), 1e-6) << layer;
    EXPECT_LT(std::abs(Complex(seen[1]) - expected1), 1e-6) << layer;
  }
}

/// Fields of both sensors with a polarization processing.
struct Sensors {
  ComplexData field0;
  ComplexData field1;
  PolarizationProcessing processing;

  /// @param threads number of threads
  Volume compute(PolarizationProcessing::Quantity quantity, int threads = 0) {
    auto data = std::make_shared<Data>();
    processing.setOutput(quantity, data);
    processing.execute(field0, field1, threads);
    return Volume(data);
  }
};

/// Measures a phantom with both sensors.
std::unique_ptr<Sensors> measureBoth(std::shared_ptr<const Phantom> phantom, const ScanPattern& pattern) {
  Device device(standardSpectrometer(), std::move(phantom), 21, 2);
  auto sensors = std::make_unique<Sensors>();
  device.start(pattern, 0);
  for (int camera = 0; camera < 2; ++camera) {
    RawData raw;
    device.acquire(raw, camera);
    const auto field = std::make_shared<ComplexData>();
    Processing processing(device.calibration());
    processing.setOutput(field);
    processing.execute(raw);
    (camera == 0 ? sensors->field0 : sensors->field1) = *field;
  }
  return sensors;
}

double meanOver(const Volume& volume, double topMm, double bottomMm) {
  double sum = 0.0;
  int count = 0;
  for (int aScan = 0; aScan < volume.aScans(); ++aScan)
    for (int depth = static_cast<int>(topMm / volume.cellMm()); depth * volume.cellMm() < bottomMm; ++depth) {
      sum += volume.at(depth, aScan);
      ++count;
    }
  return sum / count;
}

struct Plate {
  double retardanceDegrees;
  double axisDegrees;
};

class WavePlate : public testing::TestWithParam<Plate> {};

TEST_P(WavePlate, ShowsItsRetardationAndAxisBelowIt) {
  const auto [retardance, axis] = GetParam();
  const auto target = std::make_shared<PolarizationTarget>(retardance * kPi / 180.0, axis * kPi / 180.0);
  const auto sensors = measureBoth(target, kPattern);
  sensors->processing.setAveraging(0, 9);
  sensors->processing.setAveraging(1, 9);
  const auto seen = sensors->compute(PolarizationProcessing::kRetardation);
  EXPECT_NEAR(meanOver(seen, 0.45, 0.75), 0.0, 2.5);
  EXPECT_NEAR(meanOver(seen, 0.96, 1.35), retardance, 1.5);
  const auto directions = sensors->compute(PolarizationProcessing::kOpticAxis);
  for (int aScan = 5; aScan < 60; ++aScan)
    for (int depth = 280; depth < 380; ++depth) {
      const double off = std::remainder(directions.at(depth, aScan) - axis, 180.0);
      ASSERT_NEAR(off, 0.0, 6.0) << aScan << " " << depth;
      ASSERT_GE(directions.at(depth, aScan), 0.0f);
      ASSERT_LE(directions.at(depth, aScan), 180.0f);
    }
}

INSTANTIATE_TEST_SUITE_P(Plates, WavePlate,
                         testing::Values(Plate{45.0, 30.0}, Plate{20.0, 120.0}, Plate{75.0, 75.0},
                                         Plate{45.0, 0.0}));

TEST(Polarization, RetardationGrowsWithDepthInFibres) {
  const auto sensors = measureBoth(std::make_shared<PolarizationTarget>(0.0, 0.5), kPattern);
  sensors->processing.setAveraging(0, 5);
  sensors->processing.setAveraging(1, 15);
  const auto seen = sensors->compute(PolarizationProcessing::kRetardation);
  for (const double below : {0.08, 0.15, 0.25, 0.32}) {
    const double expected = PolarizationTarget::kFibreRate * below * 180.0 / kPi;
    const double depth = PolarizationTarget::kFibresTop + below;
    EXPECT_NEAR(meanOver(seen, depth - 0.01, depth + 0.01), expected, 2.5) << below;
  }
  // Past a quarter turn the retardation folds back.
  const double folded = 180.0 - PolarizationTarget::kFibreRate * 0.6 * 180.0 / kPi;
  EXPECT_NEAR(meanOver(seen, 2.39, 2.41), folded, 3.0);
}

TEST(Polarization, IsUniformEverywhereButInTheDepolarizer) {
  const auto sensors = measureBoth(std::make_shared<PolarizationTarget>(0.8, 0.5), kPattern);
  sensors->processing.setDopuBox(0, 9);
  sensors->processing.setDopuBox(1, 9);
  const auto dopu = sensors->compute(PolarizationProcessing::kDopu);
  EXPECT_GT(meanOver(dopu, 0.5, 0.7), 0.97);
  EXPECT_GT(meanOver(dopu, 1.0, 1.3), 0.97);
  EXPECT_LT(meanOver(dopu, 1.45, 1.75), 0.45);
  EXPECT_GT(meanOver(dopu, 1.9, 2.3), 0.95);
  EXPECT_LT(meanOver(dopu, 3.0, 3.4), 0.45);  // noise
}

TEST(Polarization, AMirrorKeepsItAndSendsItToSensor0) {
  const auto sensors = measureBoth(std::make_shared<Mirror>(1.0, 0.02, 0.1f), ScanPattern(64, 1, 1.0, 1.0));
  const auto dopu = sensors->compute(PolarizationProcessing::kDopu);
  const auto q = sensors->compute(PolarizationProcessing::kQ);
  const auto retardation = sensors->compute(PolarizationProcessing::kRetardation);
  const auto intensity = sensors->compute(PolarizationProcessing::kIntensity);
  for (int aScan = 0; aScan < 64; ++aScan) {
    const int peak = static_cast<int>(std::lround(intensity.peak(aScan)));
    EXPECT_GT(dopu.at(peak, aScan), 0.99f);
    EXPECT_GT(q.at(peak, aScan), 0.999f);
    EXPECT_LT(retardation.at(peak, aScan), 1.0f);
    EXPECT_NEAR(peak * intensity.cellMm(), 1.0, 0.02);
  }
}

TEST(Polarization, NoiseOfTheSensorsIsIndependent) {
  const auto sensors = measureBoth(std::make_shared<UniformPhantom>(0.0f), ScanPattern(64, 1, 1.0, 1.0));
  std::complex<double> product = 0.0;
  double power0 = 0.0, power1 = 0.0;
  for (std::size_t n = 0; n < sensors->field0.samples().size(); ++n) {
    product += std::complex<double>(sensors->field1.samples()[n] * std::conj(sensors->field0.samples()[n]));
    power0 += std::norm(sensors->field0.samples()[n]);
    power1 += std::norm(sensors->field1.samples()[n]);
  }
  EXPECT_LT(std::abs(product) / std::sqrt(power0 * power1), 0.03);
  EXPECT_NEAR(power1 / power0, 1.0, 0.1);
}

/// Random fields, small enough to be worked out by plain loops.
std::unique_ptr<Sensors> randomSensors(unsigned seed, std::array<int, 3> sizes = {7, 5, 4}) {
  auto sensors = std::make_unique<Sensors>();
  std::mt19937 random(seed);
  std::normal_distribution<float> part;
  for (auto* field : {&sensors->field0, &sensors->field1}) {
    field->resize(sizes, {1.0, 2.0, 3.0});
    for (auto& value : field->samples()) value = {part(random), part(random)};
  }
  return sensors;
}

/// The mean Stokes vector of a box, by the definition.
std::array<double, 4> boxedStokes(const Sensors& sensors, std::array<int, 3> place, std::array<int, 3> box) {
  const auto& sizes = sensors.field0.sizes();
  std::array<double, 4> sum{};
  int count = 0;
  const auto inside = [&](int axis, int i) {
    return i >= place[axis] - (box[axis] - 1) / 2 && i <= place[axis] + box[axis] / 2;
  };
  for (int z = 0; z < sizes[2]; ++z)
    for (int y = 0; y < sizes[1]; ++y)
      for (int x = 0; x < sizes[0]; ++x) {
        if (!inside(0, x) || !inside(1, y) || !inside(2, z)) continue;
        const auto n = static_cast<std::size_t>(x + sizes[0] * (y + sizes[1] * z));
        const Complex a(sensors.field0.samples()[n]);
        const Complex b(sensors.field1.samples()[n]);
        sum[0] += std::norm(a) + std::norm(b);
        sum[1] += std::norm(a) - std::norm(b);
        sum[2] += 2.0 * (b * std::conj(a)).real();
        sum[3] += 2.0 * (b * std::conj(a)).imag();
        ++count;
      }
  for (auto& value : sum) value /= count;
  return sum;
}

/// Compares a whole volume with a formula of the mean Stokes vector of each place.
void expectEverywhere(const Sensors& sensors, const Volume& volume, std::array<int, 3> box,
                      const std::function<double(const std::array<double, 4>&)>& formula) {
  const auto& sizes = sensors.field0.sizes();
  for (int z = 0; z < sizes[2]; ++z)
    for (int y = 0; y < sizes[1]; ++y)
      for (int x = 0; x < sizes[0]; ++x)
        ASSERT_NEAR(volume.at(x, y, z), formula(boxedStokes(sensors, {x, y, z}, box)), 2e-3)
            << x << " " << y << " " << z;
}

TEST(PolarizationProcessing, QuantitiesFollowTheirFormulas) {
  const auto sensors = randomSensors(3);
  const std::array<int, 3> box{3, 2, 4};
  for (int axis = 0; axis < 3; ++axis) sensors->processing.setAveraging(axis, box[axis]);
  using P = PolarizationProcessing;
  const auto check = [&](P::Quantity quantity, const std::function<double(const std::array<double, 4>&)>& f) {
    SCOPED_TRACE(quantity);
    expectEverywhere(*sensors, sensors->compute(quantity), box, f);
  };
  check(P::kIntensity, [](const auto& s) { return 10.0 * std::log10(s[0]); });
  check(P::kQ, [](const auto& s) { return s[1] / s[0]; });
  check(P::kU, [](const auto& s) { return s[2] / s[0]; });
  check(P::kV, [](const auto& s) { return s[3] / s[0]; });
  check(P::kRetardation, [](const auto& s) {
    const double polarized = std::sqrt(s[1] * s[1] + s[2] * s[2] + s[3] * s[3]);
    return 0.5 * std::acos(s[1] / polarized) * 180.0 / kPi;
  });
  check(P::kOpticAxis, [](const auto& s) {
    const double degrees = 0.5 * (std::arg(Complex(s[2], s[3])) + kPi / 2.0) * 180.0 / kPi;
    return degrees < 0.0 ? degrees + 180.0 : degrees;
  });
}

TEST(PolarizationProcessing, DopuIsFormedOverItsOwnBox) {
  const auto sensors = randomSensors(5);
  const std::array<int, 3> box{5, 3, 1};
  for (int axis = 0; axis < 3; ++axis) sensors->processing.setDopuBox(axis, box[axis]);
  expectEverywhere(*sensors, sensors->compute(PolarizationProcessing::kDopu), box,
                   [](const auto& s) { return std::sqrt(s[1] * s[1] + s[2] * s[2] + s[3] * s[3]) / s[0]; });
}

/// More depths than are averaged side by side, and not a multiple of them; and more places than there are.
TEST(PolarizationProcessing, BoxesAreAveragedAlongAllAxes) {
  for (const auto& [sizes, box] : std::initializer_list<std::pair<std::array<int, 3>, std::array<int, 3>>>{
           {{75, 6, 5}, {4, 3, 2}}, {{7, 5, 4}, {1000000000, 1000000000, 1000000000}}}) {
    const auto sensors = randomSensors(9, sizes);
    for (int axis = 0; axis < 3; ++axis) sensors->processing.setAveraging(axis, box[axis]);
    expectEverywhere(*sensors, sensors->compute(PolarizationProcessing::kQ), box,
                     [](const auto& s) { return s[1] / s[0]; });
  }
}

TEST(PolarizationProcessing, DoesNotDependOnTheNumberOfThreads) {
  const auto sensors = randomSensors(7, {40, 11, 9});
  for (int axis = 0; axis < 3; ++axis) sensors->processing.setAveraging(axis, 3);
  const auto one = sensors->compute(PolarizationProcessing::kDopu, 1);
  const auto many = sensors->compute(PolarizationProcessing::kDopu, 5);
  EXPECT_EQ(one.samples(), many.samples());
}

TEST(PolarizationProcessing, ThresholdCutsWeakPlacesOfAllButTheIntensity) {
  const auto sensors = randomSensors(8);
  const auto intensity = sensors->compute(PolarizationProcessing::kIntensity);
  const auto free = sensors->compute(PolarizationProcessing::kQ);
  sensors->processing.setThreshold(4.0);
  const auto off = sensors->compute(PolarizationProcessing::kQ);
  sensors->processing.setThresholdEnabled(true);
  const auto cut = sensors->compute(PolarizationProcessing::kQ);
  const auto uncut = sensors->compute(PolarizationProcessing::kIntensity);
  int weak = 0;
  for (int z = 0; z < 4; ++z)
    for (int y = 0; y < 5; ++y)
      for (int x = 0; x < 7; ++x) {
        const bool isWeak = intensity.at(x, y, z) < 4.0f;
        weak += isWeak;
        EXPECT_EQ(off.at(x, y, z), free.at(x, y, z));
        EXPECT_EQ(cut.at(x, y, z), isWeak ? 0.0f : free.at(x, y, z));
        EXPECT_EQ(uncut.at(x, y, z), intensity.at(x, y, z));
      }
  EXPECT_GT(weak, 20);
  EXPECT_LT(weak, 120);
}

TEST(PolarizationProcessing, VolumesAreAveragedAsARunningMean) {
  const auto run = randomSensors(10);
  run->processing.setVolumeAveraging(2);
  const auto q = [](const Sensors& sensors) { return boxedStokes(sensors, {2, 2, 2}, {1, 1, 1}); };
  auto expected = q(*run);
  for (const unsigned seed : {10u, 11u, 12u}) {
    const auto next = randomSensors(seed);
    run->field0 = next->field0;
    run->field1 = next->field1;
    const auto now = q(*next);
    if (seed > 10)
      for (int i = 0; i < 4; ++i) expected[i] = 0.5 * (expected[i] + now[i]);
    EXPECT_NEAR(run->compute(PolarizationProcessing::kQ).at(2, 2, 2), expected[1] / expected[0], 1e-4)
        << seed;
  }
  // A count of 1 forgets what was before.
  run->processing.setVolumeAveraging(1);
  run->processing.setVolumeAveraging(3);
  const auto last = q(*run);
  EXPECT_NEAR(run->compute(PolarizationProcessing::kQ).at(2, 2, 2), last[1] / last[0], 1e-4);
}

TEST(PolarizationProcessing, OneObjectTakesOneQuantity) {
  const auto sensors = randomSensors(9);
  const auto data = std::make_shared<Data>();
  sensors->processing.setOutput(PolarizationProcessing::kV, data);
  sensors->processing.setOutput(PolarizationProcessing::kQ, data);
  sensors->processing.execute(sensors->field0, sensors->field1);
  expectEverywhere(*sensors, Volume(data), {1, 1, 1}, [](const auto& s) { return s[1] / s[0]; });
}

TEST(PolarizationProcessing, RefusesWhatItCannotDo) {
  const auto sensors = randomSensors(1);
  EXPECT_THROW(sensors->processing.execute(sensors->field0, sensors->field1), std::logic_error);
  EXPECT_THROW(sensors->processing.setAveraging(0, 0), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setDopuBox(2, -3), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setVolumeAveraging(0), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setThreshold(std::nan("")), std::invalid_argument);
  const auto data = std::make_shared<Data>();
  sensors->processing.setOutput(PolarizationProcessing::kQ, data);
  EXPECT_THROW(sensors->processing.execute(sensors->field0, ComplexData()), std::invalid_argument);
  EXPECT_THROW(sensors->processing.execute(sensors->field0, randomSensors(1, {7, 5, 5})->field0),
               std::invalid_argument);
  EXPECT_TRUE(data->samples().empty());
}

}  // namespace
}  // namespace oct::simulator::test
