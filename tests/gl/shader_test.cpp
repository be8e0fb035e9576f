#include "gl/shader.h"

#include "gl/program_cache.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

const std::string head = "#version 330 core\n";
const std::string vertex =
    head + "layout(location = 0) in vec2 v;\nvoid main() { gl_Position = vec4(v, 0.0, 1.0); }\n";
const std::string fragment = head + "uniform float used;\nout vec4 c;\nvoid main() { c = vec4(used); }\n";

class ShaderGLTest : public GLTest {
 protected:
  // A name of its own for every test: binaries are never forgotten.
  static std::string name() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }
  static gl::ProgramKey key() { return {{fragment.size(), vertex.size()}, name(), gl::driver_name()}; }

  static std::string failure(gl::Shader& shader, const std::string& v = vertex,
                             const std::string& f = fragment) {
    return failure_of([&] { shader.load_to_program(name(), v, f); });
  }

  // Builds and expects so many links since the spy was made.
  static void expect_built(gl::Shader& shader, const GlSpy& spy, int links) {
    EXPECT_EQ(failure(shader), "(none)");
    GLint status = GL_FALSE;
    glGetProgramiv(shader.program(), GL_LINK_STATUS, &status);
    EXPECT_EQ(status, GL_TRUE);
    EXPECT_EQ(spy.calls("glLinkProgram"), links);
  }
};

TEST_F(ShaderGLTest, SecondBuildReadsTheBinaryInAnyContext) {
  GlSpy spy;
  gl::Shader first;
  EXPECT_EQ(failure_of([&] { first.use(); }), "Program has not been compiled yet.");
  {
    TestContext other;
    gl::Shader shader;
    expect_built(shader, spy, 1);
    EXPECT_EQ(spy.calls("glCompileShader"), 2);
    EXPECT_EQ(spy.calls("glDeleteShader"), 2);
  }
  context_.makeCurrent();
  expect_built(first, spy, 1);
  EXPECT_EQ(spy.calls("glCompileShader"), 2);
  EXPECT_EQ(spy.calls("glProgramBinary"), 1);
  EXPECT_EQ(log_of([&] {
              EXPECT_EQ(first.uniform("absent"), -1);
              EXPECT_GE(first.uniform("used"), 0);
            }),
            "Uniform absent was not found. \n");
}

TEST_F(ShaderGLTest, NameAndLengthsAreTheKey) {
  GlSpy spy;
  std::string same_length = fragment;
  same_length.replace(same_length.find("used);"), 6, "1.0 );");
  int compiled = 0;
  for (const auto& [suffix, source, compiles] : {std::tuple{"", fragment, 2},
                                                 {"", same_length, 0},  // texts are not compared
                                                 {"", fragment + " ", 2},
                                                 {"2", fragment, 2}}) {
    gl::Shader shader;
    shader.load_to_program(name() + suffix, vertex, source);
    EXPECT_EQ(spy.calls("glCompileShader"), compiled += compiles);
  }
}

// A process may meet two drivers, as with two graphics cards, and an update that changes the version alone.
TEST_F(ShaderGLTest, ABinaryIsItsDriversOwn) {
  GlSpy spy;
  gl::Shader shader;
  expect_built(shader, spy, 1);
  int links = 1;
  for (const GLenum name : {GL_VENDOR, GL_RENDERER, GL_VERSION}) {
    spy.answer(name, std::string("another"));
    expect_built(shader, spy, ++links);
    expect_built(shader, spy, links);
  }
  EXPECT_EQ(spy.calls("glProgramBinary"), 3);
}

TEST_F(ShaderGLTest, DriverWithoutBinaries) {
  GlSpy spy;
  spy.answer(GL_PROGRAM_BINARY_LENGTH, 0);
  const auto parameter = __glewProgramParameteri;
  const auto get_binary = __glewGetProgramBinary;
  for (int links = 1; links <= 4; ++links) {
    if (links == 3) __glewProgramParameteri = nullptr, __glewGetProgramBinary = nullptr;
    gl::Shader shader;
    expect_built(shader, spy, links);
  }
  __glewProgramParameteri = parameter;
  __glewGetProgramBinary = get_binary;
  EXPECT_EQ(spy.calls("glGetProgramBinary"), 0);
  EXPECT_EQ(gl::find_program_binary(key()), nullptr);
}

TEST_F(ShaderGLTest, BinariesThatFail) {
  GlSpy spy;
  const std::string where = "An OpenGL error in BinaryShader";
  gl::Shader shader;
  spy.fail_next("glGetProgramBinary");
  EXPECT_EQ(failure(shader).find(where + " occured: There is not enough"), 0U);
  EXPECT_EQ(gl::find_program_binary(key()), nullptr);
  expect_built(shader, spy, 2);
  const gl::ProgramBinary good = *gl::find_program_binary(key());
  gl::ProgramBinary damaged = good;
  for (std::size_t i = damaged.bytes.size() / 2; i < damaged.bytes.size(); ++i) damaged.bytes[i] ^= 0xFFU;
  // Refused in silence it is compiled again, and the good one replaces it.
  gl::store_program_binary(key(), damaged);
  expect_built(shader, spy, 3);
  expect_built(shader, spy, 3);
  gl::store_program_binary(key(), {0xDEADU, {1, 2, 3}});
  EXPECT_EQ(failure(shader).find(where + "::load_to_program occured: "), 0U);
  clear_gl_errors();
  shader.release();
  EXPECT_EQ(spy.live_objects(), 0U);
}

TEST_F(ShaderGLTest, SourcesThatFail) {
  const std::string varying = head + "layout(location = 0) in vec2 v;\nout vec2 passed;\n" +
                              "void main() { passed = v; gl_Position = vec4(v, 0.0, 1.0); }\n";
  const struct {
    std::string vertex, fragment, failure, log, words;
    std::size_t objects;  // that stay until the program is released
  } rows[] = {
      {vertex, head + "out vec4 c;\nvoid main() { c = nonsense; }\n", "Fragment shader compilation failed",
       "Shader compilation failed: ", "nonsense", 2},
      {head + "nonsense\n", fragment, "Vertex shader compilation failed",
       "Shader compilation failed: ", "error", 1},
      {varying, head + "in vec4 passed;\nout vec4 c;\nvoid main() { c = passed; }\n", "",
       "Linking failed. \n", "passed", 3},
  };
  gl::Shader shader;
  GlSpy spy;
  for (const auto& row : rows) {
    const std::string text =
        log_of([&] { EXPECT_EQ(failure(shader, row.vertex, row.fragment), row.failure); });
    EXPECT_EQ(text.find(row.log), 0U) << text;
    EXPECT_TRUE(contains(text, row.words)) << "the driver's own words: " << text;
    EXPECT_EQ(spy.live_objects(), row.objects);
    shader.release();
    EXPECT_EQ(spy.live_objects(), 0U);
  }
  expect_built(shader, spy, 2);
}

}  // namespace
}  // namespace oct::test
