// A machine without any font.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/test_context.h"
#include "support/volume_scene.h"
#include "volume/missing_fonts.h"
#include "volume/text_rasteriser.h"

namespace oct::test {
namespace {

constexpr const char* noFont = "No font was found for text labels. ";

std::string failure() {
  try {
    TextRasteriser rasteriser(18, false);
    return "(none)";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(MissingFontTest, IsAClearError) {
  {
    const MissingFonts none;
    EXPECT_EQ(failure(), noFont);
  }
  EXPECT_EQ(failure(), "(none)");
}

TEST(MissingFontTest, TheSceneIsDrawnWithoutLabelsAndTheErrorReported) {
  VolumeScene scene;
  scene.volume = testVolume(16, 16, 16);
  scene.coloring = {opaqueColors(16), 0.0, 1.0};
  scene.viewportWidth = 200;
  scene.viewportHeight = 160;
  scene.angleX = 25.0;
  scene.angleY = -35.0;
  VolumeStage stage;
  apply(scene, stage.renderer);
  upload(scene, stage.offline);
  setBorder(stage.renderer, 0, 1, 1);
  const Picture unmarked = stage.frame(200, 160, 0);
  const auto changed = [&](const Picture& picture) {
    int pixels = 0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) pixels += picture.bytes[i] != unmarked.bytes[i];
    return pixels;
  };
  setBorder(stage.renderer, 1, 1, 1);
  Picture unlabelled;
  {
    const MissingFonts none;
    unlabelled = stage.frame(200, 160, 0);
    EXPECT_EQ(pendingError(), noFont);
  }
  EXPECT_GT(changed(unlabelled), 50) << "ticks";
  const Picture labelled = stage.frame(200, 160, 0);
  EXPECT_EQ(pendingError(), "(none)");
  EXPECT_GT(changed(labelled), changed(unlabelled) + 200) << "labels";
}

}  // namespace
}  // namespace oct::test
