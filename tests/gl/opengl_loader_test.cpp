#include "gl/context/opengl_loader.h"

#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class LoaderGLTest : public GLTest {
 protected:
  static std::string checked(GlSpy& spy, int major, int minor, int requiredMajor, int requiredMinor) {
    spy.answer(GL_MAJOR_VERSION, major);
    spy.answer(GL_MINOR_VERSION, minor);
    testing::internal::CaptureStdout();
    const std::string result = failureOf([&] { gl::checkOpenGLVersion(requiredMajor, requiredMinor); });
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Found OpenGL " + std::to_string(major) + "." + std::to_string(minor) + "\n");
    return result;
  }
};

TEST_F(LoaderGLTest, RequiredVersion) {
  GlSpy spy;
  EXPECT_EQ(checked(spy, 3, 0, 3, 0), "(none)");
  EXPECT_EQ(checked(spy, 4, 0, 3, 3), "(none)");
  EXPECT_EQ(checked(spy, 3, 2, 3, 3), "OpenGL 3.3 required. Version is currently 3.2");
  EXPECT_EQ(checked(spy, 2, 1, 3, 0), "OpenGL 3.0 required. Version is currently 2.1");
}

TEST_F(LoaderGLTest, OlderThanEveryRenderer) {
  GlSpy spy;
  spy.answer(GL_MAJOR_VERSION, 2);
  EXPECT_THROW(gl::initGlew(), std::runtime_error);
  EXPECT_TRUE(gl::glewInitialized());
}

}  // namespace
}  // namespace oct::test
