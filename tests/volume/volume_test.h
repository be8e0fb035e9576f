// What tests of volumes share: a stage, a scene, and what is asked of the two.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "offline/offline_volume_rendering.h"
#include "support/reference/reference_camera.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"
#include "volume/volume_renderer.h"

namespace oct::test {

class VolumeTest : public testing::Test {
 protected:
  VolumeTest() {
    scene_.coloring = {opaque_colors(64), 0.0, 1.2};
    scene_.mode = 1;
    scene_.background_bottom = 0xFF602000U;
    scene_.background_top = 0x0040FF00U;
  }

  const VolumeRenderer& object() const { return *reinterpret_cast<VolumeRenderer*>(renderer_); }
  VolumeSource source(
      OfflineVolumeRendering::Content content = OfflineVolumeRendering::Content::volume) const {
    return reinterpret_cast<OfflineVolumeRendering*>(offline_)->source(content);
  }
  VolumeSettings settings() const { return object().settings(); }
  Picture frame(int content = 0) const {
    return stage_.frame(scene_.viewport_width, scene_.viewport_height, content);
  }

  testing::AssertionResult shows(const VolumeScene& scene, int content = 0) const {
    return agree(frame(content), reference_picture(scene), {1, 0.99, 255});
  }
  testing::AssertionResult shows_background(int content = 0) const {
    return agree(frame(content), background_picture(scene_), {1, 1.0, 1});
  }
  static void expect_no_error() { EXPECT_EQ(pending_error(), "(none)"); }

  VolumeStage stage_;
  const VolumeRendererHandle renderer_ = stage_.renderer;
  const OfflineRenderingHandle offline_ = stage_.offline;
  VolumeScene scene_ = scene_of(test_volume(14, 12, 10), 80, 60, 20.0, 40.0);
};

}  // namespace oct::test
