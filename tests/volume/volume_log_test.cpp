// What the volume renderer writes to the library log.
#include <gtest/gtest.h>

#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

// Each variant declares only what it uses; what it lacks is noted and nothing more.
TEST(VolumeLogTest, MissingUniformsAreNotedAndNoError) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  const VolumeRendererHandle renderer = createVolumeRenderer();
  const std::string text = logOf([&] { initializeVolumeRenderer(renderer); });
  for (const char* const uniform :
       {"overlayValues", "secondaryTex", "secondarySlice", "colorTex2", "backTex"}) {
    EXPECT_TRUE(contains(text, std::string("Uniform ") + uniform + " was not found. ")) << uniform;
  }
  // What every variant has is never missing.
  for (const char* const uniform : {"modelview", "projection"}) {
    EXPECT_FALSE(contains(text, std::string("Uniform ") + uniform + " ")) << uniform;
  }
  EXPECT_EQ(pendingError(), "(none)");
  deleteVolumeRenderer(renderer);
  clearOffscreenTarget(target);
}

// A frame that draws writes nothing: the log is for what is wrong.
TEST(VolumeLogTest, AFrameIsSilent) {
  VolumeStage stage;
  VolumeScene scene;
  scene.volume = testVolume(6, 5, 4);
  stage.draw(scene);
  const std::string text = logOf([&] { stage.frame(40, 30, 0); });
  EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace oct::test
