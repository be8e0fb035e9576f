// Every OpenGL call of a B-scan, a volume frame and a loop with a snapshot, failed once.
#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/platform.h"
#include "gl/trace/debugging.h"
#include "oct_rendering/oct_rendering.h"
#include "support/fault_scenario.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"
#include "support/test_loop.h"
#include "support/trace_reader.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

TEST(GlFaultTest, BScan) {
  const DisplayStage stage;
  uninitDisplayRendering(stage.renderer);
  Scene scene;
  scene.image = test_image(64, 48);
  scene.width = 48;
  scene.height = 64;
  scene.first_blur = scene.pepper = true;
  scene.overlay_image = test_image(64, 48, 2);
  scene.overlays = {{{0x8000FF00U, 0x80FF0000U}, 0.0, 1.0}};
  apply(scene, stage.renderer);
  fail_every_call({[&] { initDisplayRendering(stage.renderer); },
                   [&] { return stage.frame(scene.width, scene.height); },
                   [&] { uninitDisplayRendering(stage.renderer); }, pending_error});
}

// With groups, labels and times of the GPU: whatever fails, each group that was begun ends, and the trace stays whole.
TEST(GlFaultTest, WatchedBScan) {
  const std::filesystem::path file =
      std::filesystem::path(testing::TempDir()) / ("oct_watched_" + std::to_string(current_process_id()));
  setRendererTraceFile(file.string().c_str());
  {
    const DisplayStage stage;  // in a context of the compatibility profile, where one fault leaves one error
    gl::set_debugging(true);
    uninitDisplayRendering(stage.renderer);
    Scene scene;
    scene.image = test_image(32, 24);
    scene.width = 24;
    scene.height = 32;
    scene.pepper = true;
    apply(scene, stage.renderer);
    const auto stop = [&] {
      uninitDisplayRendering(stage.renderer);
      beginOffscreenFrame(stage.target, 4, 4);
      GLint depth = 0;
      glGetIntegerv(GL_DEBUG_GROUP_STACK_DEPTH, &depth);
      EXPECT_EQ(depth, 1);
      finishOffscreenFrame(stage.target, nullptr);
    };
    fail_every_call({[&] { initDisplayRendering(stage.renderer); },
                     [&] { return stage.frame(scene.width, scene.height); }, stop, pending_error});
  }
  setRendererTraceFile(nullptr);
  gl::set_debugging(false);
  read_trace(file);
  std::filesystem::remove(file);
}

TEST(GlFaultTest, Volume) {
  const VolumeStage stage;
  VolumeScene scene = scene_of(test_volume(16, 12, 10), 64, 48, 30.0, 20.0);
  scene.overlay = test_volume(16, 12, 10, 2);
  scene.content = 1;
  scene.coloring.colors = ramp_colors(64, 0.5);
  scene.clip = true;
  scene.edges = scene.scale_marks = scene.box = scene.removed_segment = true;
  scene.surface = {8, 8, 10.0, std::vector<float>(64, 5.0F)};
  uninitializeVolumeRenderer(stage.renderer);
  fail_every_call({[&] {
                     initializeVolumeRenderer(stage.renderer);
                     apply(scene, stage.renderer);
                     upload(scene, stage.offline);
                   },
                   [&] { return stage.frame(scene.viewport_width, scene.viewport_height, scene.content); },
                   [&] {
                     beginOffscreenFrame(stage.target, 1, 1);
                     uninitializeVolumeRenderer(stage.renderer);
                     allocateOfflineVolume(stage.offline, 0, 0, 0);
                     finishOffscreenFrame(stage.target, nullptr);
                   },
                   pending_error});
}

// The client of a loop, whose functions have no argument for it.
struct LoopClient {
  static constexpr int width = 48;
  static constexpr int height = 40;

  const DisplayRenderingHandle renderer = createDisplayRendering();
  OpenGLControlLoopHandle loop = nullptr;
  Recorded<Picture> pictures;
  Recorded<std::string> errors;

  void start();
  void stop() { deleteOpenGLControlLoop(std::exchange(loop, nullptr)); }

  // A frame, and below it a snapshot. None of either after an error.
  Picture frame() {
    pictures.clear();
    renderOpenGLControlLoop(loop);
    if (errors.all().empty()) pictures.at_least(1);
    Picture both(width, 2 * height);
    snapshotOpenGLControlLoop(loop, width, height, both.bytes.data());
    const auto frames = pictures.all();
    if (!frames.empty()) std::ranges::copy(frames[0].bytes, both.pixel(0, height));
    return both;
  }

  std::string error() {
    const auto told = errors.all();
    errors.clear();
    const std::string pending = pending_error();
    return told.empty() ? pending : told[0];
  }
};

LoopClient* client = nullptr;

void LoopClient::start() {
  if (loop) stop();
  loop = createOpenGLControlLoopCB([] { initDisplayRendering(client->renderer); },
                                   [] { uninitDisplayRendering(client->renderer); },
                                   [](const char* text) {
                                     uninitDisplayRendering(client->renderer);
                                     client->errors.add(text);
                                     client->pictures.add({});  // no picture will come
                                   });
  OpenGLControlLoopMode(loop, 0);
  registerOpenGLControlLoopRenderCallback(loop, [](unsigned) { renderDisplay(client->renderer); });
  registerOpenGLControlLoopCallback(loop, [](unsigned, unsigned, unsigned, void* surface) {
    client->pictures.add(host_surface_picture(surface));
  });
  resizeOpenGLControlLoop(loop, width, height);
}

TEST(GlFaultTest, LoopWithSnapshot) {
  setSurfaceSharing(1);
  const TestContext loads_opengl;
  LoopClient here;
  client = &here;
  const Image image = test_image(40, 48);
  setDisplayData(here.renderer, image.depth, image.a_scans, image.samples.data());
  fail_every_call({[&] { here.start(); }, [&] { return here.frame(); }, [&] { here.stop(); },
                   [&] { return here.error(); }, true});
  clearDisplayRendering(here.renderer);
}

}  // namespace
}  // namespace oct::test
