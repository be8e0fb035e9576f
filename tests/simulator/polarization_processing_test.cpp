// Polarization quantities of random fields against their formulas, worked out by plain loops.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "simulator/device_objects.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

using P = PolarizationProcessing;
using Stokes = std::array<double, 4>;
using Box = std::array<int, 3>;

std::unique_ptr<Sensors> random_sensors(unsigned seed, std::array<int, 3> sizes = {7, 5, 4}) {
  auto sensors = std::make_unique<Sensors>();
  std::mt19937 random(seed);
  std::normal_distribution<float> part;
  for (auto& field : sensors->fields) {
    field.resize(sizes, {1.0, 2.0, 3.0});
    for (auto& value : field.samples()) value = {part(random), part(random)};
  }
  return sensors;
}

// The mean Stokes vector of a box, by the definition.
Stokes boxed_stokes(const Sensors& sensors, Box place, Box box) {
  const auto& sizes = sensors.fields[0].sizes();
  Stokes sum{};
  Box first, end;
  for (int axis = 0; axis < 3; ++axis) {
    first[axis] = std::max(0, place[axis] - (box[axis] - 1) / 2);
    end[axis] = std::min(sizes[axis], place[axis] + box[axis] / 2 + 1);
  }
  int count = 0;
  for (int z = first[2]; z < end[2]; ++z)
    for (int y = first[1]; y < end[1]; ++y)
      for (int x = first[0]; x < end[0]; ++x, ++count) {
        const auto n = static_cast<std::size_t>(x + sizes[0] * (y + sizes[1] * z));
        const std::complex<double> a(sensors.fields[0].samples()[n]);
        const std::complex<double> b(sensors.fields[1].samples()[n]);
        sum[0] += std::norm(a) + std::norm(b);
        sum[1] += std::norm(a) - std::norm(b);
        sum[2] += 2.0 * (b * std::conj(a)).real();
        sum[3] += 2.0 * (b * std::conj(a)).imag();
      }
  for (auto& value : sum) value /= count;
  return sum;
}

double polarized_part(const Stokes& s) {
  return std::sqrt(s[1] * s[1] + s[2] * s[2] + s[3] * s[3]);
}

const std::pair<P::Quantity, double (*)(const Stokes&)> quantities[] = {
    {P::intensity, [](const Stokes& s) { return 10.0 * std::log10(s[0]); }},
    {P::stokes_q, [](const Stokes& s) { return s[1] / s[0]; }},
    {P::stokes_u, [](const Stokes& s) { return s[2] / s[0]; }},
    {P::stokes_v, [](const Stokes& s) { return s[3] / s[0]; }},
    {P::retardation,
     [](const Stokes& s) { return 0.5 * std::acos(s[1] / polarized_part(s)) * degrees_per_radian; }},
    {P::optic_axis,
     [](const Stokes& s) {
       const double degrees = 0.5 * std::arg(std::complex(-s[3], s[2])) * degrees_per_radian;
       return degrees < 0.0 ? degrees + 180.0 : degrees;
     }},
    {P::dopu, [](const Stokes& s) { return polarized_part(s) / s[0]; }}};

// DOPU is formed over a box of its own. One box is more than lies side by side, and not a multiple of it;
// one has more places than there are.
TEST(PolarizationProcessing, QuantitiesFollowTheirFormulasOverTheirBoxes) {
  for (const auto& [sizes, box] : {std::pair{Box{7, 5, 4}, Box{3, 2, 4}},
                                   {Box{75, 4, 3}, Box{4, 3, 2}},
                                   {Box{5, 3, 2}, Box{1, 1, 1}},
                                   {Box{7, 5, 4}, Box{1000000000, 1000000000, 1000000000}}})
    for (const auto& [quantity, formula] : quantities) {
      const auto sensors = random_sensors(3, sizes);
      for (int axis = 0; axis < 3; ++axis) {
        if (quantity == P::dopu)
          sensors->processing.set_dopu_box(axis, box[axis]);
        else
          sensors->processing.set_averaging(axis, box[axis]);
      }
      const auto volume = sensors->compute(quantity);
      for (int z = 0; z < sizes[2]; ++z)
        for (int y = 0; y < sizes[1]; ++y)
          for (int x = 0; x < sizes[0]; ++x)
            ASSERT_NEAR(volume.at(x, y, z), formula(boxed_stokes(*sensors, {x, y, z}, box)), 2e-3)
                << quantity << " at " << x << " " << y << " " << z;
    }
}

TEST(PolarizationProcessing, ThresholdCutsWeakPlacesOfAllButTheIntensity) {
  const auto sensors = random_sensors(8);
  const auto intensity = sensors->compute(P::intensity).samples();
  const auto free = sensors->compute(P::stokes_q).samples();
  sensors->processing.set_threshold(4.0);
  EXPECT_EQ(sensors->compute(P::stokes_q).samples(), free);
  sensors->processing.set_threshold_enabled(true);
  EXPECT_EQ(sensors->compute(P::intensity).samples(), intensity);
  const auto cut = sensors->compute(P::stokes_q).samples();
  for (std::size_t n = 0; n < cut.size(); ++n) EXPECT_EQ(cut[n], intensity[n] < 4.0F ? 0.0F : free[n]);
  const auto weak = std::ranges::count(cut, 0.0F);
  EXPECT_GT(weak, 20);
  EXPECT_LT(weak, 120);
}

TEST(PolarizationProcessing, VolumesAreAveragedAsARunningMean) {
  const auto run = random_sensors(10);
  run->processing.set_volume_averaging(2);
  const auto stokes = [](const Sensors& sensors) { return boxed_stokes(sensors, {2, 2, 2}, {1, 1, 1}); };
  const auto q = [&] { return run->compute(P::stokes_q).at(2, 2, 2); };
  auto expected = stokes(*run);
  for (const unsigned seed : {10U, 11U, 12U}) {
    run->fields = random_sensors(seed)->fields;
    const auto now = stokes(*run);
    for (int i = 0; i < 4; ++i) expected[i] = 0.5 * (expected[i] + now[i]);
    EXPECT_NEAR(q(), expected[1] / expected[0], 1e-4) << seed;
  }
  // A count of 1 forgets what was before.
  run->processing.set_volume_averaging(1);
  run->processing.set_volume_averaging(3);
  EXPECT_NEAR(q(), stokes(*run)[1] / stokes(*run)[0], 1e-4);
}

TEST(PolarizationProcessing, OneObjectTakesOneQuantity) {
  const auto sensors = random_sensors(9);
  const auto data = std::make_shared<Data>();
  sensors->processing.set_output(P::stokes_v, data);
  sensors->processing.set_output(P::stokes_q, data);
  sensors->processing.execute(sensors->fields[0], sensors->fields[1]);
  EXPECT_EQ(data->samples(), sensors->compute(P::stokes_q).samples());
}

TEST(PolarizationProcessing, RefusesWhatItCannotDo) {
  const auto sensors = random_sensors(1);
  auto& [first, second] = sensors->fields;
  EXPECT_THROW(sensors->processing.execute(first, second), std::logic_error);
  EXPECT_THROW(sensors->processing.set_dopu_box(2, -3), std::invalid_argument);
  EXPECT_THROW(sensors->processing.set_volume_averaging(0), std::invalid_argument);
  EXPECT_THROW(sensors->processing.set_threshold(std::nan("")), std::invalid_argument);
  const auto data = std::make_shared<Data>();
  sensors->processing.set_output(P::stokes_q, data);
  EXPECT_THROW(sensors->processing.execute(first, ComplexData()), std::invalid_argument);
  EXPECT_THROW(sensors->processing.execute(first, random_sensors(1, {7, 5, 5})->fields[0]),
               std::invalid_argument);
  EXPECT_TRUE(data->samples().empty());
}

}  // namespace
}  // namespace oct::simulator::test
