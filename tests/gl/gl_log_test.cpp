// What the OpenGL foundation writes to the library log.
#include "gl/context/opengl_window.h"
#include "gl/shader_fixture.h"
#include "support/gl_spy.h"

namespace oct::test {
namespace {

TEST(OpenGLWindowGLTest, CreationIsLogged) {
  EXPECT_EQ(logOf([] { const gl::OpenGLWindow window; }), "Creating hidden Window\n");
}

TEST_F(ShaderGLTest, SyntaxErrors) {
  gl::Shader shader;
  GlSpy spy;
  std::string text = logOf([&] {
    EXPECT_EQ(failure(shader, vertex, "#version 330 core\nout vec4 c;\nvoid main() { c = nonsense; }\n"),
              "Fragment shader compilation failed");
  });
  EXPECT_EQ(text.find("Shader compilation failed: "), 0U);
  EXPECT_TRUE(contains(text, "nonsense")) << "the driver's own words: " << text;
  EXPECT_EQ(spy.liveObjects(), 2U) << "both shader objects stay until the program is released";
  shader.release();
  EXPECT_EQ(spy.liveObjects(), 0U);

  EXPECT_EQ(failure(shader, "#version 330 core\nnonsense\n", fragment), "Vertex shader compilation failed");
  EXPECT_EQ(shader.program(), 0U);
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  EXPECT_TRUE(linked(shader));
}

TEST_F(ShaderGLTest, LinkFailure) {
  gl::Shader shader;
  GlSpy spy;
  const std::string gives =
      "#version 330 core\nlayout(location = 0) in vec2 v;\nout vec2 passed;\n"
      "void main() { passed = v; gl_Position = vec4(v, 0.0, 1.0); }\n";
  const std::string takes = "#version 330 core\nin vec4 passed;\nout vec4 c;\nvoid main() { c = passed; }\n";
  const std::string text = logOf([&] { EXPECT_EQ(failure(shader, gives, takes), ""); });
  EXPECT_EQ(text, "Linking failed. \n");
  shader.release();
  EXPECT_EQ(spy.liveObjects(), 0U);
}

TEST_F(ShaderGLTest, MissingUniformIsLogged) {
  gl::Shader shader;
  shader.load_to_program(name(), vertex, fragment);
  EXPECT_EQ(logOf([&] {
              EXPECT_EQ(shader.uniform("absent"), -1);
              EXPECT_GE(shader.uniform("used"), 0);
            }),
            "Uniform absent was not found. \n");
}

}  // namespace
}  // namespace oct::test
