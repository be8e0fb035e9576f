// Traces of a loop that draws a volume: threads, the GPU, waits; and what comes and goes while it draws.
#include <filesystem>

#include "core/platform.h"
#include "oct_rendering/oct_rendering.h"
#include "support/test_loop.h"
#include "support/trace_reader.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

// Microseconds by which the clocks may differ.
constexpr double tolerance = 500.0;

class LoopTraceGLTest : public LoopGLTest {
 protected:
  void SetUp() override {
    LoopGLTest::SetUp();
    renderer_ = createVolumeRenderer();
    offline_ = createOfflineRendering();
    setOfflineRenderingRenderer(offline_, renderer_);
  }
  void TearDown() override {
    clearOfflineRendering(offline_);
    deleteVolumeRenderer(renderer_);
    setRendererTraceFile(nullptr);
    std::filesystem::remove(file_);
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_EQ(errors_.all(), std::vector<std::string>{});
  }

  std::unique_ptr<OpenGLControlLoop> make_volume_loop() {
    auto loop = std::make_unique<OpenGLControlLoop>(
        Callback([this] {
          initializeVolumeRenderer(renderer_);
          VolumeScene scene = scene_of(test_volume(16, 12, 10), 64, 48, 30.0, 20.0);
          scene.edges = scene.scale_marks = true;
          apply(scene, renderer_);
          upload(scene, offline_);
        }),
        Callback([this] {
          allocateOfflineVolume(offline_, 0, 0, 0);
          uninitializeVolumeRenderer(renderer_);
        }),
        ErrorCallback([this](const char* message) { errors_.add(message); }));
    loop->set_rendering_callback(RenderingCallback([this](std::uint32_t id) {
      setAngles(renderer_, 10.0 * id, 0.0);
      renderOfflineVolume(offline_, 0);
    }));
    loop->set_image_ready_callback(image_ready([this](Index index, void*) { returned_.add(index); }));
    loop->resize(64, 48);
    return loop;
  }

  const std::filesystem::path file_ =
      std::filesystem::path(testing::TempDir()) / ("oct_loop_trace_" + std::to_string(current_process_id()));
  VolumeRendererHandle renderer_ = nullptr;
  OfflineRenderingHandle offline_ = nullptr;
};

TEST_P(LoopTraceGLTest, ShowsThreadsTheGpuAndWaits) {
  setRendererTraceFile(file_.string().c_str());
  {
    auto loop = make_volume_loop();
    loop->set_mode(OpenGLControlLoop::once_each);
    for (const int id : {1, 2, 3, 4}) {
      loop->request(id);
      await_returned(static_cast<std::uint32_t>(id));
    }
    Picture picture(64, 48);
    loop->snapshot(64, 48, picture.bytes.data());
  }
  setRendererTraceFile(nullptr);
  const Trace trace = read_trace(file_);

  for (const char* const name : {"Rendering Loop", "upload offline volume", "render_raycasting::drawing",
                                 "draw scale marks", "hand over"}) {
    EXPECT_TRUE(trace.find("OCT render", name)) << name;
  }
  EXPECT_TRUE(trace.find("OCT return", "Image ready callback"));
  EXPECT_TRUE(trace.find(own_track(), "OpenGLControlLoop::snap"));
  for (const char* const name : {"request waits", "frame is read back", "frame waits for the client"}) {
    EXPECT_TRUE(trace.waits.contains(name)) << name;
  }
  const auto& instants = trace.instants.at("OCT render");
  EXPECT_GE(std::ranges::count(instants, "frame end"), 10);  // of the volume and of the loop

  // The volume of a snapshot is drawn, and read back, before its phase ends.
  const TracePhase* const drawn = trace.find("OCT render", "Rendering callback (-1)");
  const TracePhase* const worked = trace.find("GPU, OCT render", "Rendering callback (-1)");
  ASSERT_TRUE(drawn && worked);
  EXPECT_GE(worked->begin, drawn->begin - tolerance);
  int rays = 0;
  int of_snapshot = 0;
  for (const TracePhase& phase : trace.tracks.at("GPU, OCT render")) {
    if (phase.name != "render_raycasting::drawing") continue;
    ++rays;
    EXPECT_EQ(phase.depth, 3U);
    EXPECT_GT(phase.end, phase.begin);
    if (phase.begin < worked->begin || phase.end > worked->end) continue;
    ++of_snapshot;
    EXPECT_LE(phase.end, drawn->end + tolerance);
  }
  EXPECT_GE(rays, 5);
  EXPECT_EQ(of_snapshot, 1);
}

TEST_P(LoopTraceGLTest, TracesAndFunctionsComeAndGoWhileItDraws) {
  setRendererTraceFile(file_.string().c_str());
  std::atomic<int> marks{0};
  {
    auto loop = make_volume_loop();
    loop->set_mode(OpenGLControlLoop::round_robin);
    loop->request(1);
    on_threads(2, [&](int i) {
      for (int n = 0; n < 15; ++n) {
        if (i == 0) {
          setRendererTraceFile(n % 3 == 2 ? nullptr : file_.string().c_str());
        } else {
          const auto count = [](const char*, unsigned, unsigned long long, void* user) {
            ++*static_cast<std::atomic<int>*>(user);
          };
          setRendererTimingCallback(n % 2 == 0 ? +count : nullptr, nullptr, nullptr, &marks);
        }
        returned_.at_least(returned_.all().size() + 2);
      }
    });
    setRendererTraceFile(file_.string().c_str());
    const std::size_t before = returned_.all().size();
    EXPECT_GE(returned_.at_least(before + 6).size(), before + 6);
  }
  setRendererTimingCallback(nullptr, nullptr, nullptr, nullptr);
  EXPECT_GT(marks, 0);
  setRendererTraceFile(nullptr);
  const Trace trace = read_trace(file_);
  EXPECT_TRUE(trace.find("OCT render", "rendering_loop_it_excl"));
  EXPECT_TRUE(trace.find("GPU, OCT render", "VolumeRenderer::render"));
}

OCT_EVERY_SHARING(LoopTraceGLTest);

}  // namespace
}  // namespace oct::test
