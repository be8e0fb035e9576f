// What OpenGL debuggers see of the library, in contexts that are made for them.
#include "gl/trace/debugging.h"

#include <algorithm>
#include <string>
#include <vector>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

using Names = std::vector<std::string>;

// Groups that begin ("+name") and end ("-") while it lives, as OpenGL tells them.
class GroupRecorder {
 public:
  GroupRecorder() {
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    glDebugMessageControl(GL_DONT_CARE, GL_DONT_CARE, GL_DEBUG_SEVERITY_NOTIFICATION, 0, nullptr, GL_TRUE);
    glDebugMessageCallback(
        [](GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* text, const void* names) {
          auto& all = *const_cast<Names*>(static_cast<const Names*>(names));
          if (type == GL_DEBUG_TYPE_PUSH_GROUP)
            all.push_back("+" + std::string(text, static_cast<std::size_t>(length)));
          if (type == GL_DEBUG_TYPE_POP_GROUP) all.push_back("-");
          if (type == GL_DEBUG_TYPE_ERROR) all.push_back("error: " + std::string(text));
        },
        &groups);
  }
  ~GroupRecorder() { glDebugMessageCallback(nullptr, nullptr); }

  Names groups;
};

template <class Is>
Names without_label(GLenum identifier, Is&& is) {
  Names names;
  for (GLuint name = 1; name < 300; ++name) {
    char label[100] = "";
    if (!is(name)) continue;
    glGetObjectLabel(identifier, name, sizeof label, nullptr, label);
    if (!*label) names.push_back(std::to_string(identifier) + ": " + std::to_string(name));
  }
  return names;
}

TEST(DebuggingTest, ADebugContextDrawsTheSameInGroupsWithNamedObjects) {
  VolumeScene scene = scene_of(test_volume(16, 12, 10), 64, 48, 30.0, 20.0);
  scene.overlay = test_volume(16, 12, 10, 2);
  scene.content = 1;
  scene.clip = scene.edges = scene.scale_marks = scene.box = scene.removed_segment = true;
  scene.surface = {8, 8, 10.0, std::vector<float>(64, 5.0F)};
  const Picture usual = VolumeStage().draw(scene);

  gl::set_debugging(true);
  Picture picture;
  Names groups;
  const std::string log = log_of([&] {
    VolumeStage stage;
    stage.prepare(scene);
    beginOffscreenFrame(stage.target, 64, 48);
    GLint profile = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_EQ(profile, GL_CONTEXT_CORE_PROFILE_BIT);
    GLint flags = 0;
    glGetIntegerv(GL_CONTEXT_FLAGS, &flags);
    EXPECT_TRUE(flags & GL_CONTEXT_FLAG_DEBUG_BIT);
    glEnable(0xDEAD);  // the log tells it
    clear_gl_errors();
    {
      GroupRecorder recorder;
      renderOfflineVolume(stage.offline, 1);
      groups = recorder.groups;
    }
    picture = Picture(64, 48);
    finishOffscreenFrame(stage.target, picture.bytes.data());

    beginOffscreenFrame(stage.target, 64, 48);

    EXPECT_EQ(without_label(GL_TEXTURE, [](GLuint name) { return glIsTexture(name); }), Names{});
    EXPECT_EQ(without_label(GL_BUFFER, [](GLuint name) { return glIsBuffer(name); }), Names{});
    EXPECT_EQ(without_label(GL_PROGRAM, [](GLuint name) { return glIsProgram(name); }), Names{});
    EXPECT_EQ(without_label(GL_FRAMEBUFFER, [](GLuint name) { return glIsFramebuffer(name); }), Names{});
    EXPECT_EQ(without_label(GL_VERTEX_ARRAY, [](GLuint name) { return glIsVertexArray(name); }), Names{});
    finishOffscreenFrame(stage.target, nullptr);
  });
  gl::set_debugging(false);
  EXPECT_TRUE(agree(picture, usual));
  EXPECT_TRUE(contains(log, "OpenGL error: ")) << log;
  EXPECT_EQ(pending_error(), "(none)");

  ASSERT_GE(groups.size(), 4U);
  EXPECT_EQ(groups[0], "+OfflineRendering::render");
  EXPECT_EQ(groups[1], "+VolumeRenderer::render");
  EXPECT_TRUE(std::ranges::count(groups, "+render_raycasting::drawing") == 1);
  EXPECT_EQ(2 * std::ranges::count(groups, "-"), static_cast<std::ptrdiff_t>(groups.size()));
}

}  // namespace
}  // namespace oct::test
