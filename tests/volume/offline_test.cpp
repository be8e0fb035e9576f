// Uploads of volumes: whole, in parts, overlays, secondary data, limits and misuse.
#include <algorithm>

#include "support/gl_spy.h"
#include "support/opengl/foreign_state.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

class OfflineTest : public VolumeTest {
 protected:
  const float* voxels() const { return scene_.volume.voxels.data(); }
  const float* slice(int index) const {
    return voxels() + static_cast<std::size_t>(index) * scene_.volume.slice_voxels();
  }
};

TEST_F(OfflineTest, MisuseIsRefusedAndChangesNothing) {
  expect_null_refused("The specified OfflineRenderingHandle is invalid. ", setOfflineRenderingRenderer,
                      setOfflineAspectRatio, allocateOfflineVolume, uploadOfflineVolume,
                      uploadOfflineVolumeOverlay, uploadOfflineSubVolume, uploadOfflineVolumeSlice,
                      uploadOverlayOfflineVolume, renderOfflineVolume);
  expect_null_refused("The specified VolumeRendererHandle is invalid. ", uploadOfflineSecondaryData);
  clearOfflineRendering(nullptr);
  const OfflineRenderingHandle alone = createOfflineRendering();
  renderOfflineVolume(alone, 0);
  expect_no_error();

  stage_.draw(scene_);
  Picture picture(80, 60);
  beginOffscreenFrame(stage_.target, 80, 60);
  glClearColor(1.0F, 0.0F, 1.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  GLint limit = 0;
  glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &limit);
  const OfflineRenderingHandle h = offline_;
  const std::string content = "Content type is not supported for rendering. ";
  const std::string outside = "The slices lie outside the allocated volume. ";
  expect_refused({
      {content, [=] { renderOfflineVolume(alone, 3); }},
      {content, [=] { renderOfflineVolume(h, -1); }},
      {content, [=] { renderOfflineVolume(h, 3); }},
      {"Attach a volume renderer before allocating a volume. ",
       [=] { allocateOfflineVolume(alone, 1, 1, 1); }},
      {"Allocate a volume before uploading one. ", [&] { uploadOfflineVolume(alone, voxels()); }},
      {"The specified VolumeRendererHandle is invalid. ",
       [&] { uploadOfflineSecondaryData(alone, 1, 1, 1, 0, 1, voxels()); }},
      {"Volume data must not be null. ", [=] { uploadOfflineVolume(h, nullptr); }},
      {"Slice data must not be null. ", [=] { uploadOfflineVolumeSlice(h, 0, nullptr); }},
      {outside, [&] { uploadOfflineVolumeSlice(h, -1, voxels()); }},
      {outside, [&] { uploadOfflineVolumeSlice(h, 10, voxels()); }},
      {outside, [&] { uploadOfflineSubVolume(h, 5, 11, voxels()); }},
      {outside, [&] { uploadOfflineSubVolume(h, 5, 4, voxels()); }},
      {outside, [&] { uploadOfflineSubVolume(h, -1, 4, voxels()); }},
      {"Volume sizes must not be negative. ", [=] { allocateOfflineVolume(h, -1, 2, 2); }},
      {"A volume of 4 x " + std::to_string(limit + 1) +
           " x 4 voxels is too large: this OpenGL driver allows " + std::to_string(limit) +
           " voxels along each axis. ",
       [=] { allocateOfflineVolume(h, 4, limit + 1, 4); }},
  });
  allocateOfflineVolume(h, limit, limit, limit);
  EXPECT_TRUE(contains(pending_error(), " voxels needs a texture of "));
  finishOffscreenFrame(stage_.target, picture.bytes.data());
  EXPECT_EQ(picture.bgra(40, 30), (std::array<int, 4>{255, 0, 255, 255})) << "nothing was drawn";
  EXPECT_TRUE(shows(scene_));
  clearOfflineRendering(alone);
  expect_no_error();
}

TEST_F(OfflineTest, SameSizesKeepTheVolume) {
  stage_.draw(scene_);
  const GLuint texture = source().volume;
  allocateOfflineVolume(offline_, 14, 12, 10);
  setRange(renderer_, 5.0, 6.0, 7.0);  // until the frame, which brings the volume's
  EXPECT_EQ(source().volume, texture);
  EXPECT_TRUE(shows(scene_));
  scene_.volume = test_volume(9, 21, 6);
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_));
  EXPECT_EQ(source().slice_count, 6);
}

TEST_F(OfflineTest, NothingThatTheClientSetShowsOrChanges) {
  scene_.mode = 0;
  scene_.overlay = test_volume(14, 12, 10, 7);
  scene_.secondary = test_volume(3, 12, 10, 4);
  scene_.content = 2;
  scene_.edges = scene_.box = scene_.scale_marks = true;
  scene_.surface = {4, 4, 1.0, std::vector<float>(16, 0.5F)};
  scene_.clip = scene_.removed_segment = true;
  scene_.clip_value = 0.6F;
  const Picture good = stage_.draw(scene_);
  expect_same_whatever_the_client_sets(stage_.target, good, [&] {
    stage_.restart();  // so that everything is uploaded again
    stage_.prepare(scene_);
    renderOfflineVolume(offline_, 2);
  });
  // New sizes test depth and show all faces from then on.
  beginOffscreenFrame(stage_.target, 80, 60);
  glDisable(GL_DEPTH_TEST);
  glEnable(GL_CULL_FACE);
  StateValues expected = state_values();
  allocateOfflineVolume(offline_, 9, 21, 6);
  glDisable(GL_DEPTH_TEST);
  glEnable(GL_CULL_FACE);
  EXPECT_TRUE(same_state(expected, state_values()));
  expect_no_error();
}

TEST_F(OfflineTest, PartsAddUpToTheWhole) {
  apply(scene_, renderer_);
  setOfflineAspectRatio(offline_, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(offline_, 14, 12, 10);
  const auto shows_slices = [&](int filled) {
    scene_.slices_uploaded = filled;
    EXPECT_EQ(source().filled_fraction, static_cast<float>(filled) / 10.0F);
    EXPECT_TRUE(shows(scene_)) << filled;
  };
  uploadOfflineSubVolume(offline_, 0, 4, slice(0));
  shows_slices(4);
  uploadOfflineSubVolume(offline_, 4, 7, slice(4));
  shows_slices(7);
  for (int i = 7; i < 10; ++i) {
    uploadOfflineVolumeSlice(offline_, i, slice(i));
    shows_slices(i);  // the last slice alone leaves the box one slice short
  }
  uploadOfflineSubVolume(offline_, 9, 10, slice(9));
  shows_slices(10);
  uploadOfflineSubVolume(offline_, 0, 10, nullptr);
  shows_slices(0);
  scene_.volume = test_volume(14, 12, 10, 5);
  uploadOfflineVolumeOverlay(offline_, voxels());
  shows_slices(10);
  expect_no_error();
}

// What changed tells which slices, and no upload that failed does.
TEST_F(OfflineTest, AnUploadShowsTheVolumeHidesTheSurfaceAndCountsItsSlices) {
  scene_.overlay = test_volume(14, 12, 10, 7);
  stage_.draw(scene_);
  const auto h = offline_;
  constexpr auto content = OfflineVolumeRendering::Content::volume_and_overlay;
  const auto changed_since = [](const gl::SliceRevisions& revisions, std::uint64_t before) {
    std::string slices;
    for (std::int64_t i = 0; i < revisions.count(); ++i) slices += revisions.of(i) > before ? 'x' : '.';
    return slices;
  };
  GlSpy spy;
  const auto failing = [&](std::size_t after) {
    spy.fail_next("glTexSubImage3D", 1, GL_OUT_OF_MEMORY, after);
    uploadOfflineSubVolume(h, 3, 8, voxels());
    EXPECT_TRUE(contains(pending_error(), "An OpenGL error in OfflineVolumeRendering::upload occured: "));
  };
  struct Case {
    const char* name;
    std::function<void()> change;
    const char* slices;
    const char* overlay = "..........";
    bool hides_surface = true;
  };
  const Case cases[] = {
      {"volume", [&] { uploadOfflineVolume(h, voxels()); }, "xxxxxxxxxx"},
      {"twin", [&] { uploadOfflineVolumeOverlay(h, voxels()); }, "xxxxxxxxxx"},
      {"slice", [&] { uploadOfflineVolumeSlice(h, 2, voxels()); }, "..x......."},
      {"part", [&] { uploadOfflineSubVolume(h, 2, 5, voxels()); }, "..xxx....."},
      {"part that fails", [&] { failing(2); }, "...xx.....", "..........", false},
      {"part that fails at once", [&] { failing(0); }, "..........", "..........", false},
      {"overlay", [&] { uploadOverlayOfflineVolume(h, voxels()); }, "..........", "xxxxxxxxxx", false},
      {"boundaries and a frame", [&] { setRendererColoringBoundaries(renderer_, 0.0, 2.0), frame(); },
       "..........", "..........", false},
      {"clear", [&] { clearVolumeRenderer(renderer_); }, ".........."},
      {"refused allocation", [=] { allocateOfflineVolume(h, -1, 3, 3), pending_error(); }, "..........",
       "..........", false},
      {"same allocation", [=] { allocateOfflineVolume(h, 14, 12, 10); }, "..........", "..........", false},
  };
  for (const auto& [name, change, slices, overlay, hides_surface] : cases) {
    setRenderElements(renderer_, 0, 1);
    const VolumeSource before = source(content);
    const std::uint64_t newest =
        std::max(before.volume_revisions->newest(), before.overlay_revisions->newest());
    change();
    EXPECT_EQ(changed_since(*source(content).volume_revisions, newest), slices) << name;
    EXPECT_EQ(changed_since(*source(content).overlay_revisions, newest), overlay) << name;
    EXPECT_EQ(settings().render_surface, !hides_surface) << name;
    EXPECT_EQ(settings().render_volume, hides_surface && name != std::string("clear")) << name;
  }
  const std::uint64_t before = source().volume_revisions->newest();
  allocateOfflineVolume(h, 3, 3, 3);
  EXPECT_EQ(changed_since(*source().volume_revisions, before), "xxx");
}

// Each draws with its own range, part, overlay and secondary data, and with those of nobody who drew before or is
// gone.
TEST_F(OfflineTest, OwnersOfOneRendererLeaveNothingToEachOther) {
  scene_.overlay = test_volume(14, 12, 10, 7);
  scene_.content = 2;
  const Picture first = stage_.draw(scene_);
  VolumeScene other = scene_;
  other.volume = test_volume(9, 21, 10);
  other.overlay = {};
  other.content = 0;
  other.slices_uploaded = 4;
  const OfflineRenderingHandle second = createOfflineRendering();
  setOfflineRenderingRenderer(second, renderer_);
  setOfflineAspectRatio(second, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(second, 9, 21, 10);
  uploadOfflineSubVolume(second, 0, 4, other.volume.voxels.data());
  setRange(renderer_, 5.0, 6.0, 7.0);  // for live volumes
  const auto drawn = [&](OfflineRenderingHandle offline, int content) {
    Picture picture(scene_.viewport_width, scene_.viewport_height);
    beginOffscreenFrame(stage_.target, 80, 60);
    renderOfflineVolume(offline, content);
    finishOffscreenFrame(stage_.target, picture.bytes.data());
    return picture;
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(agree(drawn(offline_, 2), first, exact)) << round;
    EXPECT_TRUE(agree(drawn(second, 0), reference_picture(other), {1, 0.99, 255})) << round;
    EXPECT_TRUE(agree(drawn(second, 2), reference_picture(other), {1, 0.99, 255})) << round;
  }
  clearOfflineRendering(second);
  EXPECT_TRUE(agree(drawn(offline_, 2), first, exact));
  EXPECT_EQ(settings().range.extent, range_of(5.0, 6.0, 7.0).extent);
  expect_no_error();
}

// With the volume's overlay and secondary data it would be one made of two.
TEST_F(OfflineTest, ANewVolumeIsEmptyAndHasNothingOfTheOneBefore) {
  scene_.overlay = test_volume(14, 12, 10, 7);
  scene_.secondary = test_volume(3, 12, 10, 4);
  scene_.content = 2;
  stage_.draw(scene_);
  allocateOfflineVolume(offline_, 14, 12, 11);
  for (const int content : {0, 1, 2}) EXPECT_TRUE(shows_background(content)) << content;
  EXPECT_EQ(source().secondary, 0U);
  scene_.volume = test_volume(14, 12, 11);
  scene_.overlay = {};
  scene_.content = 0;
  uploadOfflineVolume(offline_, voxels());
  EXPECT_TRUE(shows(scene_, 2));
  expect_no_error();
}

TEST_F(OfflineTest, SecondaryDataComesInBlocks) {
  scene_.secondary = test_volume(3, 12, 10, 4);
  scene_.secondary_coloring.colors = opaque_colors(8);
  scene_.secondary_index = 2;
  scene_.mode = 3;
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_));
  EXPECT_EQ(source().secondary_slice_count, 3);

  const float* const data = scene_.secondary.voxels.data();
  const auto upload = [&](unsigned first, unsigned count, const float* block) {
    uploadOfflineSecondaryData(offline_, 12, 10, 3, first, count, block);
  };
  upload(0, 10, nullptr);
  EXPECT_EQ(source().secondary, 0U);
  upload(4, 6, data + 4 * 36);
  EXPECT_EQ(pending_error(), "The first block of secondary data must start at 0. ");
  upload(0, 4, data);
  upload(4, 6, data + 4 * 36);
  expect_no_error();
  EXPECT_TRUE(shows(scene_));
  const std::string outside = "The secondary data lies outside its texture. ";
  expect_refused({{outside, [&] { upload(4, 7, data); }}, {outside, [&] { upload(0xFFFFFFFFU, 1, data); }}});
  EXPECT_TRUE(shows(scene_));
}

}  // namespace
}  // namespace oct::test
