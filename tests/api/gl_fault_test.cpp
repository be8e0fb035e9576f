// Every OpenGL call of a B-scan, a volume frame and a loop with a snapshot, failed once.
#include "support/fault_scenario.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"
#include "support/test_loop.h"
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
  stage.frame(scene.width, scene.height);
  fail_every_call({[&] { initDisplayRendering(stage.renderer); },
                   [&] { return stage.frame(scene.width, scene.height); },
                   [&] { uninitDisplayRendering(stage.renderer); },
                   pending_error});
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

}  // namespace
}  // namespace oct::test
