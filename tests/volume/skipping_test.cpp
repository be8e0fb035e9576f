// What rays jump over changes no pixel: frames with and without the tables of empty space.
#include "gl/context/client_state.h"
#include "gl/texture_3d.h"
#include "random_scene.h"
#include "support/process_memory.h"
#include "volume/skipping/empty_space.h"
#include "volume_test.h"

namespace oct::test {
namespace {

// The scene's volume as live volumes have it, and what is made of it.
struct LiveFormat {
  explicit LiveFormat(const Volume& volume)
      : maxima({volume.width, volume.height, volume.depth}, 8, BrickTexture::border) {
    texture.allocate(maxima.extent(), GL_R32F, "test");
    const auto binding = texture.bind();
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
      glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_BORDER);
    texture.upload_b_scans(0, volume.depth, volume.voxels.data(), "test");
    for (int w = 0; w < volume.depth; ++w)
      maxima.take_b_scan(
          w, {volume.voxels.data() + static_cast<std::size_t>(w) * volume.slice_voxels(), volume.width});
  }

  gl::Texture3D texture;
  BrickMaxima maxima;
  EmptySpace empty_space;
};

class SkippingTest : public VolumeTest {
 protected:
  Picture picture_of(const VolumeSource& source) {
    Picture picture(scene_.viewport_width, scene_.viewport_height);
    beginOffscreenFrame(stage_.target, static_cast<unsigned>(picture.width),
                        static_cast<unsigned>(picture.height));
    {
      const gl::ClientState state(gl::ClientState::Use::drawing);
      reinterpret_cast<VolumeRenderer*>(renderer_)->render(source);
    }
    finishOffscreenFrame(stage_.target, picture.bytes.data());
    return picture;
  }

  // Whether anything was skipped.
  bool expect_same(VolumeSource source) {
    const Picture skipping = picture_of(source);
    source.empty_space = nullptr;
    EXPECT_TRUE(agree(skipping, picture_of(source), exact));
    return !agree(skipping, background_picture(scene_), exact);
  }
};

TEST_F(SkippingTest, ChangesNoPixel) {
  const unsigned count = measures_memory ? 66 : 24;  // sanitizers are slow
  int seen = 0;
  for (unsigned seed = 0; seed < count; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Choice choice(seed);
    scene_ = random_scene(choice);
    if (seed % 6 == 1) scene_.coloring = {opaque_colors(64), 0.3, 0.9};
    if (seed % 6 == 0) {  // the zeros beyond a rim show, and nothing else
      for (float& voxel : scene_.volume.voxels) voxel -= 4.0F;
      scene_.coloring = {opaque_colors(64), -1.0, 0.9};
    }
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 8, 8);
    VolumeSource shown = source(static_cast<OfflineVolumeRendering::Content>(scene_.content));
    if (seed % 3 != 0) {
      seen += expect_same(shown);
      scene_.angle_y += 100.0;  // other octants, and other limits of the same volume
      scene_.coloring = random_coloring(choice);
      apply(scene_, renderer_);
      expect_same(shown);
    } else if (scene_.content == 0) {
      LiveFormat live(scene_.volume);
      shown.volume = live.texture.get();
      shown.volume_revisions = live.texture.revisions();
      shown.volume_maxima = &live.maxima;
      shown.empty_space = &live.empty_space;
      seen += expect_same(shown);
    }
  }
  EXPECT_GT(seen, static_cast<int>(5 * count / 11)) << "of the volumes";
}

// Blocks and slices in any order, some twice, one of which OpenGL refuses, and a volume of the same size after it.
TEST_F(SkippingTest, FollowsEveryUpload) {
  Choice choice(7);
  for (int volume = 0; volume < 3; ++volume) {
    scene_ = random_scene(choice);
    scene_.volume = sparse_volume(33, 14, 21, choice);
    scene_.slices_uploaded = -1;
    scene_.coloring = {ramp_colors(256, 0.5), 0.2, 0.9};
    scene_.clip = false;
    stage_.prepare(scene_);
    for (int step = 0; step < 12; ++step) {
      const Volume other = sparse_volume(33, 14, 21, choice);
      const auto from = [&](int b_scan) {
        return other.voxels.data() + static_cast<std::size_t>(b_scan) * other.slice_voxels();
      };
      const int first = choice.below(21);
      beginOffscreenFrame(stage_.target, 8, 8);
      if (choice.one_of(2)) {
        uploadOfflineVolumeSlice(offline_, first, from(first));
      } else {
        uploadOfflineSubVolume(offline_, first, first + choice.below(21 - first) + 1, from(first));
      }
      VolumeSource shown = source(static_cast<OfflineVolumeRendering::Content>(scene_.content));
      shown.filled_fraction = 1.0F;
      expect_same(shown);
    }
  }
}

// As many B-scans as the driver takes, with as many tables as there are.
TEST_F(SkippingTest, TakesAsManyBScansAsTheDriver) {
  beginOffscreenFrame(stage_.target, 8, 8);
  GLint most = 0;
  glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &most);
  Choice choice(3);
  for (const int b_scans : {most / 2 - 1, most / 2, most / 2 + 1, most}) {
    scene_.volume = sparse_volume(5, 3, b_scans, choice);
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 8, 8);
    expect_same(source());
    LiveFormat live(scene_.volume);
    VolumeSource shown = source();
    shown.volume = live.texture.get();
    shown.volume_revisions = live.texture.revisions();
    shown.volume_maxima = &live.maxima;
    shown.empty_space = &live.empty_space;
    expect_same(shown);
  }
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
