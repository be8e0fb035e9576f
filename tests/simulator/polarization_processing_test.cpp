// Polarization quantities of random fields against their formulas, worked out by plain loops.

#include "measurement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace oct::simulator::test {
namespace {

using P = PolarizationProcessing;
using Stokes = std::array<double, 4>;
using Box = std::array<int, 3>;

std::unique_ptr<Sensors> randomSensors(unsigned seed, std::array<int, 3> sizes = {7, 5, 4}) {
  auto sensors = std::make_unique<Sensors>();
  std::mt19937 random(seed);
  std::normal_distribution<float> part;
  for (auto& field : sensors->fields) {
    field.resize(sizes, {1.0, 2.0, 3.0});
    for (auto& value : field.samples()) value = {part(random), part(random)};
  }
  return sensors;
}

/// The mean Stokes vector of a box, by the definition.
Stokes boxedStokes(const Sensors& sensors, Box place, Box box) {
  const auto& sizes = sensors.fields[0].sizes();
  Stokes sum{};
  int count = 0;
  const auto inside = [&](int axis, int i) {
    return i >= place[axis] - (box[axis] - 1) / 2 && i <= place[axis] + box[axis] / 2;
  };
  for (int z = 0; z < sizes[2]; ++z)
    for (int y = 0; y < sizes[1]; ++y)
      for (int x = 0; x < sizes[0]; ++x) {
        if (!inside(0, x) || !inside(1, y) || !inside(2, z)) continue;
        const auto n = static_cast<std::size_t>(x + sizes[0] * (y + sizes[1] * z));
        const std::complex<double> a(sensors.fields[0].samples()[n]);
        const std::complex<double> b(sensors.fields[1].samples()[n]);
        sum[0] += std::norm(a) + std::norm(b);
        sum[1] += std::norm(a) - std::norm(b);
        sum[2] += 2.0 * (b * std::conj(a)).real();
        sum[3] += 2.0 * (b * std::conj(a)).imag();
        ++count;
      }
  for (auto& value : sum) value /= count;
  return sum;
}

double polarizedPart(const Stokes& s) {
  return std::sqrt(s[1] * s[1] + s[2] * s[2] + s[3] * s[3]);
}

struct Quantity {
  P::Quantity quantity;
  double (*formula)(const Stokes&);
};

constexpr double kDegrees = 180.0 / std::numbers::pi;
const Quantity kQuantities[] = {
    {P::kIntensity, [](const Stokes& s) { return 10.0 * std::log10(s[0]); }},
    {P::kQ, [](const Stokes& s) { return s[1] / s[0]; }},
    {P::kU, [](const Stokes& s) { return s[2] / s[0]; }},
    {P::kV, [](const Stokes& s) { return s[3] / s[0]; }},
    {P::kRetardation, [](const Stokes& s) { return 0.5 * std::acos(s[1] / polarizedPart(s)) * kDegrees; }},
    {P::kOpticAxis,
     [](const Stokes& s) {
       const double degrees = 0.5 * std::arg(std::complex(-s[3], s[2])) * kDegrees;
       return degrees < 0.0 ? degrees + 180.0 : degrees;
     }},
    {P::kDopu, [](const Stokes& s) { return polarizedPart(s) / s[0]; }}};

/// DOPU is formed over a box of its own. One box is more than lies side by side, and not a multiple of it;
/// one has more places than there are.
TEST(PolarizationProcessing, QuantitiesFollowTheirFormulasOverTheirBoxes) {
  for (const auto& [sizes, box] : {std::pair{Box{7, 5, 4}, Box{3, 2, 4}},
                                   {Box{75, 6, 5}, Box{4, 3, 2}},
                                   {Box{5, 3, 2}, Box{1, 1, 1}},
                                   {Box{7, 5, 4}, Box{1000000000, 1000000000, 1000000000}}})
    for (const auto& [quantity, formula] : kQuantities) {
      const auto sensors = randomSensors(3, sizes);
      for (int axis = 0; axis < 3; ++axis) {
        if (quantity == P::kDopu)
          sensors->processing.setDopuBox(axis, box[axis]);
        else
          sensors->processing.setAveraging(axis, box[axis]);
      }
      const auto volume = sensors->compute(quantity);
      for (int z = 0; z < sizes[2]; ++z)
        for (int y = 0; y < sizes[1]; ++y)
          for (int x = 0; x < sizes[0]; ++x)
            ASSERT_NEAR(volume.at(x, y, z), formula(boxedStokes(*sensors, {x, y, z}, box)), 2e-3)
                << quantity << " at " << x << " " << y << " " << z;
    }
}

TEST(PolarizationProcessing, ThresholdCutsWeakPlacesOfAllButTheIntensity) {
  const auto sensors = randomSensors(8);
  const auto intensity = sensors->compute(P::kIntensity).samples();
  const auto free = sensors->compute(P::kQ).samples();
  sensors->processing.setThreshold(4.0);
  EXPECT_EQ(sensors->compute(P::kQ).samples(), free);
  sensors->processing.setThresholdEnabled(true);
  EXPECT_EQ(sensors->compute(P::kIntensity).samples(), intensity);
  const auto cut = sensors->compute(P::kQ).samples();
  int weak = 0;
  for (std::size_t n = 0; n < cut.size(); ++n) {
    weak += intensity[n] < 4.0f;
    EXPECT_EQ(cut[n], intensity[n] < 4.0f ? 0.0f : free[n]);
  }
  EXPECT_GT(weak, 20);
  EXPECT_LT(weak, 120);
}

TEST(PolarizationProcessing, VolumesAreAveragedAsARunningMean) {
  const auto run = randomSensors(10);
  run->processing.setVolumeAveraging(2);
  const auto stokes = [](const Sensors& sensors) { return boxedStokes(sensors, {2, 2, 2}, {1, 1, 1}); };
  const auto q = [&] { return run->compute(P::kQ).at(2, 2, 2); };
  auto expected = stokes(*run);
  for (const unsigned seed : {10u, 11u, 12u}) {
    run->fields = randomSensors(seed)->fields;
    const auto now = stokes(*run);
    for (int i = 0; i < 4; ++i) expected[i] = 0.5 * (expected[i] + now[i]);
    EXPECT_NEAR(q(), expected[1] / expected[0], 1e-4) << seed;
  }
  // A count of 1 forgets what was before.
  run->processing.setVolumeAveraging(1);
  run->processing.setVolumeAveraging(3);
  EXPECT_NEAR(q(), stokes(*run)[1] / stokes(*run)[0], 1e-4);
}

TEST(PolarizationProcessing, OneObjectTakesOneQuantity) {
  const auto sensors = randomSensors(9);
  const auto data = std::make_shared<Data>();
  sensors->processing.setOutput(P::kV, data);
  sensors->processing.setOutput(P::kQ, data);
  sensors->processing.execute(sensors->fields[0], sensors->fields[1]);
  EXPECT_EQ(data->samples(), sensors->compute(P::kQ).samples());
}

TEST(PolarizationProcessing, RefusesWhatItCannotDo) {
  const auto sensors = randomSensors(1);
  auto& [first, second] = sensors->fields;
  EXPECT_THROW(sensors->processing.execute(first, second), std::logic_error);
  EXPECT_THROW(sensors->processing.setAveraging(0, 0), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setDopuBox(2, -3), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setVolumeAveraging(0), std::invalid_argument);
  EXPECT_THROW(sensors->processing.setThreshold(std::nan("")), std::invalid_argument);
  const auto data = std::make_shared<Data>();
  sensors->processing.setOutput(P::kQ, data);
  EXPECT_THROW(sensors->processing.execute(first, ComplexData()), std::invalid_argument);
  EXPECT_THROW(sensors->processing.execute(first, randomSensors(1, {7, 5, 5})->fields[0]),
               std::invalid_argument);
  EXPECT_TRUE(data->samples().empty());
}

}  // namespace
}  // namespace oct::simulator::test
