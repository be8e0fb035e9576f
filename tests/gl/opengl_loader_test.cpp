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

}  // namespace
}  // namespace oct::test
