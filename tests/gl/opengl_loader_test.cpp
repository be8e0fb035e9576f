#include "gl/context/opengl_loader.h"

#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class LoaderGLTest : public GLTest {};

TEST_F(LoaderGLTest, VersionsRequiredAndFound) {
  GlSpy spy;
  const struct {
    int major, minor, required_major, required_minor;
    std::string refusal;
  } rows[] = {
      {3, 0, 3, 0, "(none)"},
      {3, 3, 3, 3, "(none)"},
      {5, 0, 3, 3, "(none)"},
      {3, 2, 3, 3, "OpenGL 3.3 required. Version is currently 3.2"},
      {2, 1, 3, 0, "OpenGL 3.0 required. Version is currently 2.1"},
  };
  for (const auto& row : rows) {
    const std::string found = std::to_string(row.major) + "." + std::to_string(row.minor);
    SCOPED_TRACE(found);
    spy.answer(GL_MAJOR_VERSION, row.major);
    spy.answer(GL_MINOR_VERSION, row.minor);
    testing::internal::CaptureStdout();
    EXPECT_EQ(failure_of([&] { gl::checkOpenGLVersion(row.required_major, row.required_minor); }),
              row.refusal);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Found OpenGL " + found + "\n");
    if (row.major < 3) {
      EXPECT_THROW(gl::initGlew(), std::runtime_error);
    } else {
      gl::initGlew();
    }
  }
  EXPECT_TRUE(gl::glewInitialized());
}

// Entry points as a driver without them leaves them.
TEST_F(LoaderGLTest, ADriverThatIsTooOldSpoilsNothingForTheNextOne) {
  const ClientContext client;
  GlSpy spy;
  const auto in_next_export = [](const std::function<void()>& action) {
    const gl::FreshIdentity fresh;
    return failure_of(action);
  };
  const auto create_shader = __glewCreateShader;
  spy.answer(GL_RENDERER, std::string("basic"));
  spy.answer(GL_MAJOR_VERSION, 0);  // as OpenGL 1.1 leaves it
  spy.answer(GL_MINOR_VERSION, 0);
  spy.answer(GL_VERSION, std::string("1.1.0"));
  spy.queue_error(GL_INVALID_ENUM);
  EXPECT_EQ(in_next_export([] { gl::require_opengl(); }), "OpenGL 3.0 required. Version is currently 1.1");
  EXPECT_EQ(__glewCreateShader, create_shader) << "others are drawing with it";
  EXPECT_FALSE(gl::is_loaded_for_current_driver());

  spy.answer(GL_MAJOR_VERSION, 4);
  for (const auto& [name, text] : {std::pair{GL_RENDERER, "a second card"}, {GL_VENDOR, "a second maker"}}) {
    __glewCreateShader = nullptr;
    __glewGenVertexArrays = nullptr;
    spy.answer(static_cast<GLenum>(name), std::string(text));
    EXPECT_EQ(in_next_export([] { gl::require_opengl(); }), "(none)");
    EXPECT_NE(__glewCreateShader, nullptr) << text;
    EXPECT_NE(__glewGenVertexArrays, nullptr) << text;
    EXPECT_TRUE(gl::is_loaded_for_current_driver());
  }
  context_.makeCurrent();
}

}  // namespace
}  // namespace oct::test
