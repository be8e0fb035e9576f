// Live sessions as the viewer has them: one thread draws, and nothing that a device does holds it up.
#include "octview/live/live_session.h"

#include <functional>
#include <numeric>
#include <thread>

#include "apps/test_files.h"
#include "client/offscreen_target.h"
#include "data/volume_reader.h"
#include "oct_simulator/oct_simulator.h"
#include "octview/live/live_document.h"
#include "octview/live/volume_tap.h"

namespace oct::app::test {
namespace {

using State = LiveSession::State;

std::shared_ptr<const VolumeData> recording() {
  auto volume = std::make_shared<VolumeData>();
  volume->depth = 16;
  volume->ascans = 12;
  volume->bscans = 10;
  volume->voxels.resize(16 * 12 * 10);
  std::iota(volume->voxels.begin(), volume->voxels.end(), 0.0F);
  return volume;
}

// Plays a volume back: 2 x 3 x 1.5 mm.
LiveSetup playback() {
  LiveSetup setup;
  setup.recording = recording();
  setup.device.depth = 2;
  setup.device.scan.width = 3;
  setup.device.scan.length = 1.5;
  return setup;
}

class LiveSessionTest : public testing::Test {
 protected:
  ~LiveSessionTest() override {
    session_.reset();
    clearSimulatedFailures();
    EXPECT_EQ(getSimulatedObjectCount(), 0);
  }

  void frame() {
    target_.render(24, 16, pixels_, [&] {
      session_->update();
      if (draws_) session_->draw(scene_);
    });
  }
  // Frames, for twenty seconds at most, until the condition holds.
  bool frames_until(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end) {
      frame();
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
  }
  bool frames_until_shown() {
    return frames_until([&] { return session_->statistics().shown > 2; });
  }

  OffscreenTarget target_;  // the viewer's context
  LiveScene scene_;
  bool draws_ = true;
  std::vector<std::uint8_t> pixels_;
  std::optional<LiveSession> session_{std::in_place};
};

TEST_F(LiveSessionTest, VolumesComeAsTheDeviceMeasuresThem) {
  LiveSetup setup = playback();
  EXPECT_EQ(session_->state(), State::off);
  for (const int kept : {16, 4}) {
    setup.source.size_z = kept;
    setup.source.refractive_index = 1.25;
    session_->start(setup);
    EXPECT_EQ(session_->state(), State::opening);
    ASSERT_TRUE(frames_until_shown()) << session_->error();
    EXPECT_EQ(session_->state(), State::running);
    ASSERT_TRUE(frames_until([&] {
      const auto latest = session_->latest();
      return latest && latest->data.depth == static_cast<std::size_t>(kept);
    }));
    const auto latest = session_->latest();
    const VolumeData& seen = latest->data;
    const VolumeData& played = *setup.recording;
    ASSERT_EQ(seen.voxels.size(), kept * 12U * 10U);
    for (std::size_t i = 0; i < seen.voxels.size(); ++i) {
      ASSERT_EQ(seen.voxels[i], played.voxels[i / kept * 16 + i % kept]) << i;
    }
    const std::array expected{2.0 / 16 / 1.25, 3.0 / 12, 1.5 / 10};
    for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_DOUBLE_EQ(seen.spacing.mm[axis], expected[axis]);
    const OctLiveStatistics statistics = session_->statistics();
    EXPECT_LE(statistics.shown, statistics.acquired);
  }
  session_->stop();
  EXPECT_EQ(session_->state(), State::off);
  EXPECT_EQ(session_->renderer(), nullptr);
  EXPECT_GT(session_->statistics().shown, 2U);
  EXPECT_EQ(session_->latest()->data.depth, 4U) << "the last volume stays";
}

// What the user has set stays while volumes come, over a stop and a start; other sizes and other data begin anew.
TEST_F(LiveSessionTest, VolumesBecomeTheDocument) {
  Workspace workspace;
  LiveDocument document;
  LiveSetup setup = playback();
  const auto next = [&] {
    const std::uint64_t before = workspace.document.revision;
    ASSERT_TRUE(frames_until([&] {
      session_->request_volume();
      if (session_->state() == State::running) document.show(*session_, "played", workspace);
      return workspace.document.revision != before;
    }));
  };
  session_->start(setup);
  next();
  EXPECT_EQ(workspace.document.title, "played");
  EXPECT_EQ(workspace.document.extent(), (std::array<double, 3>{2, 3, 1.5}));
  const ValueRange first = workspace.state.base.range;
  EXPECT_GT(first.upper, first.lower);
  workspace.state.cursor = {1, 2, 3};
  workspace.state.base.range = {5, 6};
  next();
  EXPECT_EQ(workspace.state.base.range.lower, 5.0);
  session_->stop();
  session_->start(setup);
  next();
  EXPECT_EQ(workspace.state.cursor[2], 3.0);
  EXPECT_EQ(workspace.state.base.range.lower, first.lower) << "it follows the data";
  workspace.state.base.shares.reset();
  workspace.state.base.range = {5, 6};
  session_->start(setup);
  next();
  EXPECT_EQ(workspace.state.base.range.lower, 5.0) << "it is the user's";
  setup.source.size_z = 8;
  session_->start(setup);
  next();
  EXPECT_EQ(workspace.state.cursor[0], 4.0);
  EXPECT_EQ(workspace.document.volume->depth, 8U);
  workspace.document = {};
  EXPECT_FALSE(document.is_shown(workspace));
}

// Sections alone are looked at: their volumes come without the picture of the volume, and none is dropped for it.
TEST_F(LiveSessionTest, VolumesComeWhileNobodyDrawsThem) {
  draws_ = false;
  session_->start(playback());
  const auto come_to = [&](std::uint64_t index) {
    return frames_until([&] {
      session_->request_volume();
      return session_->latest() && session_->latest()->index > index;
    });
  };
  ASSERT_TRUE(come_to(20));
  EXPECT_EQ(session_->statistics().shown, 0U);
  draws_ = true;
  ASSERT_TRUE(frames_until_shown());
  draws_ = false;
  frame(), frame();
  const auto before = session_->statistics();
  ASSERT_TRUE(come_to(session_->latest()->index + 20));
  EXPECT_EQ(session_->statistics().shown, before.shown);
  EXPECT_LE(session_->statistics().dropped_no_frame, before.dropped_no_frame + 1);
}

// Nobody waits for a device: neither whoever stops it nor the frames; what comes next waits for its end.
TEST_F(LiveSessionTest, ADeviceThatHangs) {
  session_->start(playback());
  ASSERT_TRUE(frames_until_shown());
  delaySimulatedCall("executeProcessing", 1, -1);
  ASSERT_TRUE(frames_until([] { return getSimulatedWaitingCalls() == 1; }));
  session_->stop();
  EXPECT_EQ(session_->state(), State::off);
  session_->start(playback());
  for (int i = 0; i < 20; ++i) frame();
  EXPECT_EQ(session_->state(), State::opening);
  EXPECT_EQ(getSimulatedWaitingCalls(), 1);
  releaseSimulatedCalls();
  EXPECT_TRUE(frames_until_shown());
  // Whatever is opened and left again, at any pace, leaves nothing behind.
  for (int i = 0; i < 12; ++i) {
    session_->start(playback());
    for (int k = 0; k < i % 5; ++k) frame();
  }
  EXPECT_TRUE(frames_until_shown());
}

TEST_F(LiveSessionTest, FailuresSayWhyAndLeaveTheLastVolume) {
  session_->start(playback());
  ASSERT_TRUE(frames_until([&] { return session_->latest() != nullptr; }));
  const std::pair<std::function<void(LiveSetup&)>, const char*> wrong[] = {
      {[](LiveSetup& setup) { setup.device.library = "no_such_device"; }, "no_such_device"},
      {[](LiveSetup& setup) { setup.recording = nullptr, setup.device.scan.spectrum_length = 63; },
       "spectrum"},
      {[](LiveSetup& setup) { setup.recording = nullptr, setup.device.scan.width = -1; }, "idth"},
      {[](LiveSetup& setup) { setup.source.size_z = 40; }, "Insufficient memory allocated."}};
  for (const auto& [spoil, text] : wrong) {
    LiveSetup setup = playback();
    spoil(setup);
    session_->start(setup);
    EXPECT_TRUE(frames_until([&] { return session_->state() == State::failed; }));
    EXPECT_NE(session_->error().find(text), std::string::npos) << session_->error();
    ASSERT_NE(session_->latest(), nullptr);
    EXPECT_EQ(session_->latest()->data.voxels, recording()->voxels);
  }
  // What a device says in between is shown until the next volume comes.
  session_->start(playback());
  ASSERT_TRUE(frames_until_shown());
  failSimulatedCall("executeProcessing", 0, "unplugged");
  EXPECT_TRUE(frames_until([&] { return session_->error().find("unplugged") != std::string::npos; }));
  EXPECT_EQ(session_->state(), State::running);
  clearSimulatedFailures();
  EXPECT_TRUE(frames_until([&] { return session_->error().empty(); }));
}

TEST_F(LiveSessionTest, TheLastVolumesAreWrittenToFiles) {
  const TemporaryFolder folder;
  LiveSetup setup = playback();
  setup.device.noise = 1;  // so that each is another one
  session_->start(setup);
  VolumeRecorder& recorder = session_->recorder();
  recorder.keep(3);
  ASSERT_TRUE(frames_until_shown());
  ASSERT_TRUE(frames_until([&] { return recorder.content().volumes == 3; }));
  session_->stop();
  EXPECT_EQ(recorder.content().bytes, 3 * 16 * 12 * 10 * sizeof(float));
  recorder.write(folder / "finger.npy");
  ASSERT_TRUE(frames_until([&] { return !recorder.writing().active; }));
  EXPECT_EQ(recorder.writing().error, "");
  EXPECT_EQ(recorder.writing().done, 3U);
  EXPECT_EQ(folder.file_count(), 4);
  std::vector<std::vector<float>> written;
  for (const char* name : {"finger-0001.npy", "finger-0002.npy", "finger-0003.npy"}) {
    const VolumeData volume = load_volume({folder / name, {}, {}});
    EXPECT_EQ(volume.ascans, 12U);
    written.push_back(volume.voxels);
  }
  EXPECT_NE(written[0], written[1]);
  EXPECT_NE(written[1], written[2]);
  std::ifstream times(folder / "finger.csv");
  std::string line;
  std::getline(times, line);
  double before = -1;
  for (int i = 1; i <= 3; ++i) {
    ASSERT_TRUE(std::getline(times, line));
    EXPECT_EQ(line.find("finger-000" + std::to_string(i) + ".npy,"), 0U) << line;
    const double time = std::stod(line.substr(line.rfind(',') + 1));
    EXPECT_GT(time, before);
    before = time;
  }
  // Nothing is written over.
  EXPECT_THROW(recorder.write(folder / "finger"), WriteError);
  recorder.write(folder / "missing/finger");
  ASSERT_TRUE(frames_until([&] { return !recorder.writing().active; }));
  EXPECT_NE(recorder.writing().error.find("missing"), std::string::npos);
}

TEST(VolumeTap, CopiesWhatIsWantedIntoMemoryThatIsFree) {
  VolumeRecorder recorder(2 * sizeof(float) * 8);
  VolumeTap tap({1, 1, 1}, recorder);
  std::vector<float> samples(8);
  std::uint64_t index = 0;
  const auto come = [&] {
    samples[0] = static_cast<float>(index);
    tap.take({samples.data(), {2, 2, 2}, index++, 0});
    return tap.latest() ? static_cast<int>(tap.latest()->data.voxels[0]) : -1;
  };
  EXPECT_EQ(come(), 0) << "the first one is wanted";
  EXPECT_EQ(come(), 0);
  tap.request();
  EXPECT_EQ(come(), 2);
  EXPECT_EQ(come(), 2);
  // Who looks at a volume keeps it, whatever comes.
  const auto held = tap.latest();
  std::vector<const float*> places;
  for (int i = 0; i < 6; ++i) {
    tap.request();
    come();
    places.push_back(tap.latest()->data.voxels.data());
  }
  EXPECT_EQ(held->data.voxels[0], 2.0F);
  EXPECT_EQ(places[0], places[2]);
  EXPECT_EQ(places[1], places[5]);
  // A recording has them all, as far as there is room.
  recorder.keep(5);
  EXPECT_FALSE(recorder.content().limited);
  for (const int number : {10, 11, 12, 13}) EXPECT_EQ(come(), number);
  EXPECT_EQ(recorder.content().volumes, 2U);
  EXPECT_TRUE(recorder.content().limited);
  recorder.keep(0);
  EXPECT_EQ(recorder.content().volumes, 0U);
  EXPECT_THROW(recorder.write("nothing"), WriteError);
}

}  // namespace
}  // namespace oct::app::test
