// Sections of a file that memory holds only reduced: at once from there, and in full from the file.
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include "apps/program_test.h"
#include "octview/model/octrender_command.h"
#include "octview/model/slice_position.h"
#include "octview/model/slice_source.h"
#include "octview/model/workspace.h"

namespace oct::app::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr std::array<SliceAxis, 3> axes{SliceAxis::bscan, SliceAxis::enface, SliceAxis::third};

class LargeFile : public ProgramTest {
 protected:
  LargeFile() : ProgramTest("") {
    std::vector<float> values =
        volume_where(13, 8, 9, [](int z, int a, int b) { return (z * 31 + a * 17 + b * 7) % 101; });
    values[500] = nan;
    values[501] = std::numeric_limits<float>::infinity();
    write_npy("large.npy", "9, 13, 8", values);
    for (float& value : values) value = 50 - value;
    write_npy("overlay.npy", "9, 13, 8", values);
    std::vector<float> heights;
    for (int i = 0; i < 9 * 8; ++i) heights.push_back(i % 7 ? static_cast<float>(i % 10) : nan);
    write_npy("heights.npy", "9, 8", heights);
    files_.base.path = "large.npy";
    files_.overlay.path = "overlay.npy";
    files_.surface.path = "heights.npy";
    whole_ = load_document(files_, no_progress);
    DocumentLimits limits;
    limits.memory = {7, 4 * 13 * 8 * 9};
    reduced_ = load_document(files_, no_progress, {}, limits);
    state_ = start_state(whole_);
  }

  // No value is equal to no value.
  static std::vector<float> samples_of(const Image& image) {
    std::vector<float> samples = image.samples;
    std::ranges::replace_if(
        samples, [](float sample) { return std::isnan(sample); }, -1e9F);
    return samples;
  }
  static void expect_equal(const SliceImages& images, const SliceImages& wanted) {
    EXPECT_EQ(samples_of(*images.base), samples_of(*wanted.base));
    EXPECT_EQ(images.base->spacing.mm, wanted.base->spacing.mm);
    ASSERT_EQ(images.overlay == nullptr, wanted.overlay == nullptr);
    if (!images.overlay) return;
    EXPECT_EQ(samples_of(*images.overlay), samples_of(*wanted.overlay));
  }

  // Frames of the interface, for ten seconds at most.
  static bool updates_until(SliceSource& source, const Document& document, const ViewState& state,
                            const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    do {
      source.update(document, state);
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    } while (std::chrono::steady_clock::now() < end);
    return false;
  }

  SessionFiles files_;
  Document whole_;
  Document reduced_;
  ViewState state_;
};

TEST_F(LargeFile, IsCutAsIfMemoryHeldAllOfIt) {
  ASSERT_EQ(reduced_.volume->reduction, (std::array<std::size_t, 3>{2, 2, 2}));
  EXPECT_EQ(reduced_.sizes(), whole_.sizes());
  EXPECT_EQ(reduced_.spacing().mm, whole_.spacing().mm);
  EXPECT_EQ(middle_of(reduced_), middle_of(whole_));
  EXPECT_EQ(surface_depth(reduced_, 3, 4), surface_depth(whole_, 3, 4));
  std::vector<std::function<void()>> changes{
      [] {},
      [&] {
        state_.cursor = {12, 7, 8};
      },
      [&] {
        state_.cursor = {0, 0, 5};
      },  // the B-scan whose samples are not finite
      [&] {
        state_.enface = {2, Projection::maximum, true};
      },
      [&] { state_.below_surface = -3; },
      [&] { state_.overlay.visible = false; },
  };
  SliceFiles files;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    changes[i]();
    for (const SliceAxis axis : axes) {
      SCOPED_TRACE(std::to_string(i) + " " + std::to_string(static_cast<int>(axis)));
      EXPECT_EQ(slice_position(reduced_, state_, axis).position,
                slice_position(whole_, state_, axis).position);
      const SliceImages wanted = slice_images(whole_, state_, axis);
      expect_equal(finest_slice_images(reduced_, state_, axis, files, no_progress), wanted);
      // What is there at once has the same size, and means of blocks.
      const SliceImages coarse = slice_images(reduced_, state_, axis);
      EXPECT_EQ(coarse.base->samples.size(), wanted.base->samples.size());
      EXPECT_NE(samples_of(*coarse.base), samples_of(*wanted.base));
    }
  }
  // Layers that are frames of the file are in memory all at once.
  files_.base.axes = AxisOrder{Axis::bscan, Axis::ascan, Axis::depth};
  files_.overlay.path.clear();
  files_.surface.path.clear();
  DocumentLimits limits;
  limits.memory.voxels_per_axis = 7;
  const Document turned = load_document(files_, no_progress, {}, limits);
  files = {};
  state_.enface = {2, Projection::mean, false};
  EXPECT_EQ(finest_slice_images(turned, state_, SliceAxis::enface, files, no_progress).base->samples,
            slice_images(load_document(files_, no_progress), state_, SliceAxis::enface).base->samples);
  state_.enface.layers = 9;
  expect_in("so many layers in full resolution would take too much memory", error_of<ReadError>([&] {
              finest_slice_images(turned, state_, SliceAxis::enface, files, no_progress);
            }));
}

TEST_F(LargeFile, VoxelsInMemoryAreFoundAtTheirPlaces) {
  state_.cursor = {6, 4, 4};
  const Image section = *slice_images(reduced_, state_, SliceAxis::bscan).base;
  const VolumeData& volume = *reduced_.volume;
  for (const std::size_t a : {0, 3, 7}) {
    for (const std::size_t z : {0, 2, 3, 12})
      EXPECT_EQ(section.samples[a * 13 + z],
                volume.voxels[(std::size_t{2} * volume.ascans + a / 2) * volume.depth + z / 2]);
  }
  // The middle of a block has its mean.
  EXPECT_EQ(value_at(volume, {2.5, 2.5, 4.5}), volume.voxels[(2 * volume.ascans + 1) * volume.depth + 1]);
}

TEST_F(LargeFile, SectionsAreDrawnByOctrenderAsTheyAreSaved) {
  state_.windows[1] = {2, {0.4, 0.6}};
  SliceFiles files;
  for (const SliceAxis axis : axes) {
    const PictureSize size{40, 30};
    const SliceImages images = finest_slice_images(reduced_, state_, axis, files, no_progress);
    ASSERT_EQ(run_program(pane_command(reduced_, state_, static_cast<Pane>(axis), size, "out.png")), 0);
    EXPECT_EQ(read_picture("out.png").pixels,
              render_slice(slice_scene(state_, axis, images, size)).picture.pixels);
  }
  EXPECT_THROW(pane_command(reduced_, state_, Pane::volume, {40, 30}, "out.png"), std::runtime_error);
}

TEST_F(LargeFile, FinerSamplesFollowWhatIsLookedAt) {
  SliceSource source(SliceAxis::third);
  const auto shows = [&](const Document& document) {
    return source.is_finest() &&
           source.images().base->samples == slice_images(document, state_, SliceAxis::third).base->samples;
  };
  EXPECT_TRUE(source.update(reduced_, state_));
  EXPECT_FALSE(source.is_finest());
  // Of those that are asked for while others are read only the last come.
  for (const double a : {1.0, 7.0, 2.0, 5.0}) {
    state_.cursor[1] = a;
    EXPECT_TRUE(source.update(reduced_, state_));
    EXPECT_FALSE(source.is_finest());
  }
  EXPECT_TRUE(updates_until(source, reduced_, state_, [&] { return shows(whole_); }));
  EXPECT_FALSE(source.update(reduced_, state_));

  // Another document while one is read.
  state_.cursor[1] = 3;
  source.update(reduced_, state_);
  EXPECT_TRUE(source.update(whole_, state_));
  EXPECT_TRUE(updates_until(source, whole_, state_, [&] { return !source.is_reading(); }));
  EXPECT_TRUE(shows(whole_));

  // A file that is another one now.
  write_npy("large.npy", "2, 2, 2", std::vector<float>(8));
  Document again = reduced_;
  again.revision = next_revision();
  EXPECT_TRUE(updates_until(source, again, state_, [&] { return !source.error().empty(); }));
  expect_in("the file has changed since it was opened", source.error());
  EXPECT_FALSE(source.is_finest());
  EXPECT_EQ(source.images().base->samples, slice_images(reduced_, state_, SliceAxis::third).base->samples);
}

}  // namespace
}  // namespace oct::app::test
