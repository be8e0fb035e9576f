#include "gl/shader.h"

#include "gl/shader_fixture.h"
#include "support/gl_spy.h"

namespace oct::test {
namespace {

TEST_F(ShaderGLTest, SecondBuildReadsTheBinary) {
  GlSpy spy;
  gl::Shader first;
  first.load_to_program(name(), vertex, fragment);
  EXPECT_EQ(spy.calls("glCompileShader"), 2);
  EXPECT_EQ(spy.calls("glDeleteShader"), 2);
  EXPECT_TRUE(linked(first));

  gl::Shader second;
  second.load_to_program(name(), vertex, fragment);
  EXPECT_EQ(spy.calls("glCompileShader"), 2);
  EXPECT_EQ(spy.calls("glLinkProgram"), 1);
  EXPECT_EQ(spy.calls("glProgramBinary"), 1);
  EXPECT_TRUE(linked(second));
  EXPECT_GE(second.uniform("used"), 0);
}

TEST_F(ShaderGLTest, BinaryServesAnotherContext) {
  {
    TestContext other;
    gl::Shader shader;
    shader.load_to_program(name(), vertex, fragment);
  }
  context_.makeCurrent();
  GlSpy spy;
  gl::Shader shader;
  shader.load_to_program(name(), vertex, fragment);
  EXPECT_EQ(spy.calls("glCompileShader"), 0);
  EXPECT_TRUE(linked(shader));
}

TEST_F(ShaderGLTest, NameAndLengthsAreTheKey) {
  GlSpy spy;
  gl::Shader first;
  first.load_to_program(name(), vertex, fragment);
  std::string sameLength = fragment;
  sameLength.replace(sameLength.find("used);"), 6, "1.0 );");
  sameLength.resize(fragment.size(), '\n');
  gl::Shader shared;
  shared.load_to_program(name(), vertex, sameLength);
  EXPECT_EQ(spy.calls("glCompileShader"), 2) << "texts are not compared";
  gl::Shader longer;
  longer.load_to_program(name(), vertex, fragment + " ");
  EXPECT_EQ(spy.calls("glCompileShader"), 4);
  gl::Shader renamed;
  renamed.load_to_program(name() + "2", vertex, fragment);
  EXPECT_EQ(spy.calls("glCompileShader"), 6);
}

TEST_F(ShaderGLTest, UseBeforeBuild) {
  EXPECT_EQ(failureOf([] { gl::Shader().use(); }), "Program has not been compiled yet.");
}

TEST_F(ShaderGLTest, DriverWithoutBinaryFormats) {
  GlSpy spy;
  spy.answer(GL_PROGRAM_BINARY_LENGTH, 0);
  for (int i = 1; i <= 2; ++i) {
    gl::Shader shader;
    shader.load_to_program(name(), vertex, fragment);
    EXPECT_TRUE(linked(shader));
    EXPECT_EQ(spy.calls("glLinkProgram"), i);
  }
  EXPECT_EQ(spy.calls("glGetProgramBinary"), 0);
  EXPECT_EQ(gl::findProgramBinary(key()), nullptr);
}

TEST_F(ShaderGLTest, DriverWithoutProgramBinaries) {
  const auto parameter = __glewProgramParameteri;
  const auto getBinary = __glewGetProgramBinary;
  __glewProgramParameteri = nullptr;
  __glewGetProgramBinary = nullptr;
  gl::Shader shader;
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  EXPECT_TRUE(linked(shader));
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  __glewProgramParameteri = parameter;
  __glewGetProgramBinary = getBinary;
  EXPECT_EQ(gl::findProgramBinary(key()), nullptr);
}

TEST_F(ShaderGLTest, FailedReadBackOfTheBinaryKeepsNothing) {
  GlSpy spy;
  spy.failNext("glGetProgramBinary");
  gl::Shader shader;
  EXPECT_EQ(
      failure(shader, vertex, fragment).find("An OpenGL error in BinaryShader occured: There is not enough"),
      0U);
  EXPECT_EQ(gl::findProgramBinary(key()), nullptr);
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  shader.release();
  EXPECT_EQ(spy.liveObjects(), 0U);
}

TEST_F(ShaderGLTest, BinaryRefusedWithAnError) {
  gl::storeProgramBinary(key(), {0xDEADU, {1, 2, 3}});
  gl::Shader shader;
  EXPECT_EQ(
      failure(shader, vertex, fragment).find("An OpenGL error in BinaryShader::load_to_program occured: "),
      0U);
  clearGLErrors();
}

TEST_F(ShaderGLTest, BinaryRefusedInSilenceIsCompiledAgain) {
  gl::Shader shader;
  shader.load_to_program(name(), vertex, fragment);
  gl::ProgramBinary damaged = *gl::findProgramBinary(key());
  for (std::size_t i = damaged.bytes.size() / 2; i < damaged.bytes.size(); ++i) damaged.bytes[i] ^= 0xFFU;
  gl::storeProgramBinary(key(), damaged);
  GlSpy spy;
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  EXPECT_TRUE(linked(shader));
  EXPECT_EQ(spy.calls("glLinkProgram"), 1);
  EXPECT_EQ(failure(shader, vertex, fragment), "(none)");
  EXPECT_EQ(spy.calls("glLinkProgram"), 1) << "the good binary has replaced the damaged one";
}

}  // namespace
}  // namespace oct::test
