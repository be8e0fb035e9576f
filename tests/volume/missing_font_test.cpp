// A machine without any font.
#include <gtest/gtest.h>

#include "support/test_context.h"
#include "support/volume_scene.h"
#include "volume/missing_fonts.h"
#include "volume/text/text_rasteriser.h"

namespace oct::test {
namespace {

constexpr const char* noFont = "No font was found for text labels. ";

std::string failure() {
  return failureOf([] { TextRasteriser(18, false); });
}

TEST(MissingFontTest, IsAClearError) {
  {
    const MissingFonts none;
    EXPECT_EQ(failure(), noFont);
  }
  EXPECT_EQ(failure(), "(none)");
}

TEST(MissingFontTest, TheSceneIsDrawnWithoutLabelsAndTheErrorReported) {
  VolumeScene scene = sceneOf(testVolume(16, 16, 16), 200, 160, 25.0, -35.0);
  scene.coloring = {opaqueColors(16), 0.0, 1.0};
  VolumeStage stage;
  stage.prepare(scene);
  setBorder(stage.renderer, 0, 1, 1);
  const Picture unmarked = stage.frame();
  const auto changed = [&](const Picture& picture) {
    int pixels = 0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) pixels += picture.bytes[i] != unmarked.bytes[i];
    return pixels;
  };
  setBorder(stage.renderer, 1, 1, 1);
  Picture unlabelled;
  {
    const MissingFonts none;
    unlabelled = stage.frame();
    EXPECT_EQ(pendingError(), noFont);
  }
  EXPECT_GT(changed(unlabelled), 50) << "ticks";
  const Picture labelled = stage.frame();
  EXPECT_EQ(pendingError(), "(none)");
  EXPECT_GT(changed(labelled), changed(unlabelled) + 200) << "labels";
}

}  // namespace
}  // namespace oct::test
