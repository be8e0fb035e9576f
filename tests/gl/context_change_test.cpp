// Renderers of clients whose contexts come, go and change.
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "gl/context_handles.h"
#include "hosting/offscreen/offscreen_buffer_object.h"
#include "live/fast_opengl_volume_renderer.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

constexpr int width = 80;
constexpr int height = 60;
const std::string elsewhere = "The renderer was initialised in another OpenGL context. ";

// Every kind of object that the library makes, made by a client.
class ClientObjects {
 public:
  ClientObjects() {
    glGenTextures(8, textures_);
    glGenBuffers(6, buffers_);
    glGenVertexArrays(6, arrays_);
    for (const GLuint name : textures_) glBindTexture(GL_TEXTURE_2D, name);
    for (const GLuint name : buffers_) glBindBuffer(GL_ARRAY_BUFFER, name);
    for (const GLuint name : arrays_) glBindVertexArray(name);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
    for (GLuint& name : programs_) name = glCreateProgram();
  }

  void expect_alive() const {
    EXPECT_EQ(std::ranges::count_if(textures_, glIsTexture), 8);
    EXPECT_EQ(std::ranges::count_if(buffers_, [](GLuint name) { return glIsBuffer(name); }), 6);
    EXPECT_EQ(std::ranges::count_if(arrays_, [](GLuint name) { return glIsVertexArray(name); }), 6);
    EXPECT_EQ(std::ranges::count_if(programs_, [](GLuint name) { return glIsProgram(name); }), 6);
  }

 private:
  GLuint textures_[8] = {};
  GLuint buffers_[6] = {};
  GLuint arrays_[6] = {};
  GLuint programs_[6] = {};
};

// The picture that `draw` leaves in a target of the current context, which is magenta before.
Picture picture_of(const std::function<void()>& draw) {
  OffscreenBufferObject target;
  target.prepare(width, height);
  glClearColor(1.0F, 0.0F, 1.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  draw();
  Picture picture(width, height);
  target.finish(picture.bytes.data());
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  return picture;
}

Picture untouched() {
  return picture_of([] {});
}

// What a client draws with. Its settings come with the first init and stay.
class Subject {
 public:
  virtual ~Subject() = default;
  virtual void init() = 0;  // and uploads
  virtual void draw() = 0;
  virtual void uninit() = 0;

  Picture picture() {
    return picture_of([this] { draw(); });
  }
};

class DisplaySubject : public Subject {
 public:
  DisplaySubject() {
    Scene scene;
    scene.image = test_image(64, 48);
    scene.colormap = {0xFF000080U, 0xFF00FF00U, 0xFFFF0000U};
    scene.first_blur = scene.pepper = true;
    scene.overlay_image = test_image(64, 48, 2);
    scene.overlays = {{{0x8000FF00U, 0x80FF0000U}, 0.0, 1.0}};
    apply(scene, renderer_);
  }
  ~DisplaySubject() override { clearDisplayRendering(renderer_); }
  void init() override { initDisplayRendering(renderer_); }
  void draw() override { renderDisplay(renderer_); }
  void uninit() override { uninitDisplayRendering(renderer_); }

 private:
  const DisplayRenderingHandle renderer_ = createDisplayRendering();
};

VolumeScene volume_scene() {
  VolumeScene scene = scene_of(test_volume(14, 12, 10), width, height, 20.0, 40.0);
  scene.coloring = {opaque_colors(64), 0.0, 1.2};
  scene.overlay = test_volume(14, 12, 10, 3);
  scene.overlay_coloring = {ramp_colors(16, 0.5), 0.0, 1.0};
  scene.surface = {3, 3, 1.0, {0.4F, 0.5F, 0.4F, 0.5F, 0.6F, 0.5F, 0.4F, 0.5F, 0.4F}};
  scene.edges = scene.scale_marks = scene.box = true;
  return scene;
}

class OfflineSubject : public Subject {
 public:
  OfflineSubject() { setOfflineRenderingRenderer(offline_, renderer_); }
  ~OfflineSubject() override {
    clearOfflineRendering(offline_);
    deleteVolumeRenderer(renderer_);
  }
  void init() override {
    initializeVolumeRenderer(renderer_);
    if (!std::exchange(set_, true)) apply(scene_, renderer_);
    upload(scene_, offline_);
    setRenderElements(renderer_, 1, 1);
  }
  void draw() override { renderOfflineVolume(offline_, 2); }
  void uninit() override { uninitializeVolumeRenderer(renderer_); }

 private:
  const VolumeScene scene_ = volume_scene();
  const VolumeRendererHandle renderer_ = createVolumeRenderer();
  const OfflineRenderingHandle offline_ = createOfflineRendering();
  bool set_ = false;
};

class LiveSubject : public Subject {
 public:
  LiveSubject() { setLiveVolumeRenderingRenderer(live_, renderer_); }
  ~LiveSubject() override {
    clearLiveRendering(live_);
    deleteVolumeRenderer(renderer_);
  }
  void init() override {
    initializeVolumeRenderer(renderer_);
    if (!std::exchange(set_, true)) apply(volume_scene(), renderer_);
    setRenderElements(renderer_, 1, 0);
    claim_ = feed_->start({{14, 12, 10}});
    draw();
    float* const voxels = feed_->take(claim_);
    ASSERT_NE(voxels, nullptr);
    std::ranges::copy(volume_scene().volume.voxels, voxels);
    LiveDelivery delivery;
    feed_->fill(delivery);
    picture();
  }
  void draw() override { renderVolume(live_); }
  void uninit() override {
    feed_->stop(claim_);
    draw();
    uninitializeVolumeRenderer(renderer_);
  }

 private:
  const VolumeRendererHandle renderer_ = createVolumeRenderer();
  const LiveVolumeRenderingHandle live_ = createLiveRendering();
  const std::shared_ptr<LiveFeed> feed_ = reinterpret_cast<FastOpenGLVolumeRenderer*>(live_)->feed();
  LiveClaim claim_ = no_claim;
  bool set_ = false;
};

class ContextChangeGLTest : public testing::TestWithParam<Handles> {
 protected:
  // Nothing of the last round is left.
  void make_subjects() {
    subjects_.clear();
    subjects_.push_back(std::make_unique<DisplaySubject>());
    subjects_.push_back(std::make_unique<OfflineSubject>());
    subjects_.push_back(std::make_unique<LiveSubject>());
  }

  static void expect_no_error() { EXPECT_EQ(pending_error(), "(none)"); }
  static void expect_refused(Subject& subject) {
    EXPECT_TRUE(agree(subject.picture(), untouched(), exact));
    EXPECT_EQ(pending_error(), elsewhere);
  }

  std::vector<std::unique_ptr<Subject>> subjects_;
};

class NextContextGLTest : public ContextChangeGLTest {};

// A client forgets to uninitialise, deletes its context and makes another one, in which it draws, uninitialises or
// deletes.
TEST_P(NextContextGLTest, IsNotTheOneBefore) {
  for (const std::string next : {"draw", "uninit", "delete"}) {
    SCOPED_TRACE(next);
    make_subjects();
    std::vector<Picture> before;
    {
      const ClientContext context;
      const ChangedContextHandles handles(GetParam());
      for (const auto& subject : subjects_) {
        subject->init();
        before.push_back(subject->picture());
        EXPECT_FALSE(agree(before.back(), untouched(), exact));
      }
      expect_no_error();
    }
    const ClientContext context;
    const ChangedContextHandles handles(GetParam());
    const std::vector<ClientObjects> objects(6);  // as many as the renderers had
    for (std::size_t i = 0; next != "delete" && i < subjects_.size(); ++i) {
      if (next == "draw") {
        expect_refused(*subjects_[i]);
        subjects_[i]->init();
        EXPECT_TRUE(agree(subjects_[i]->picture(), before[i], exact)) << "whole again";
      }
      subjects_[i]->uninit();
    }
    subjects_.clear();
    for (const ClientObjects& some : objects) some.expect_alive();
    expect_no_error();
  }
}

INSTANTIATE_TEST_SUITE_P(Handles, NextContextGLTest,
                         testing::ValuesIn(can_change_context_handles
                                               ? std::vector{Handles::same, Handles::hidden}
                                               : std::vector{Handles::known}));

TEST_F(ContextChangeGLTest, ADriverTellsItsNameOnceInAContextOfOursAndOncePerExportInAClients) {
  make_subjects();
  TestContext ours;
  ClientContext clients;
  for (const auto& subject : subjects_) {
    for (const bool in_ours : {true, false}) {
      in_ours ? ours.makeCurrent() : clients.makeCurrent();
      subject->init();
      subject->picture();
      picture_of([&] {
        const GlSpy spy;
        subject->draw();
        EXPECT_EQ(spy.calls("glGetString"), in_ours ? 0 : 3) << "vendor, renderer and version";
      });
      subject->uninit();
    }
  }
  expect_no_error();
}

class TwoContextsGLTest : public ContextChangeGLTest {};

TEST_P(TwoContextsGLTest, ARendererIsAtHomeInOne) {
  make_subjects();
  ClientContext other;
  ClientContext home;
  const auto in = [](ClientContext& context, const std::function<void()>& action) {
    context.makeCurrent();
    const ChangedContextHandles handles(GetParam());
    action();
  };
  for (const auto& subject : subjects_) {
    Picture before;
    in(home, [&] {
      subject->init();
      before = subject->picture();
    });
    in(other, [&] {
      const ClientObjects objects;
      const GlSpy spy;
      for (int i = 0; i < 3; ++i) {
        subject->draw();
        EXPECT_EQ(pending_error(), elsewhere);
      }
      EXPECT_EQ(spy.live_objects(), 0U);
      expect_refused(*subject);
      objects.expect_alive();
    });
    in(home, [&] { EXPECT_TRUE(agree(subject->picture(), before, exact)) << "back home"; });
    expect_no_error();
    in(other, [&] {
      const GlSpy spy;
      subject->init();
      EXPECT_TRUE(agree(subject->picture(), before, exact)) << "moved";
      subject->picture();  // the second of two equal frames may keep its picture
      const std::size_t objects = spy.live_objects();
      for (int i = 0; i < 3; ++i) subject->picture();
      EXPECT_EQ(spy.live_objects(), objects);
    });
    expect_no_error();
    in(home, [&] { expect_refused(*subject); });
  }
}

INSTANTIATE_TEST_SUITE_P(Handles, TwoContextsGLTest,
                         testing::ValuesIn(can_change_context_handles
                                               ? std::vector{Handles::known, Handles::hidden}
                                               : std::vector{Handles::known}));

}  // namespace
}  // namespace oct::test
