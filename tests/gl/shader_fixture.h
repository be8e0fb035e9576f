// Two small sources and what tests of programs ask of them.
#pragma once

#include <string>

#include "gl/program_cache.h"
#include "gl/shader.h"
#include "support/test_context.h"

namespace oct::test {

inline const std::string vertex =
    "#version 330 core\nlayout(location = 0) in vec2 v;\nvoid main() { gl_Position = vec4(v, 0.0, 1.0); }\n";
inline const std::string fragment =
    "#version 330 core\nuniform float used;\nout vec4 c;\nvoid main() { c = vec4(used); }\n";

class ShaderGLTest : public GLTest {
 protected:
  // A name of its own for every test: binaries are never forgotten.
  static std::string name() { return testing::UnitTest::GetInstance()->current_test_info()->name(); }

  static std::string failure(gl::Shader& shader, const std::string& v, const std::string& f) {
    return failureOf([&] { shader.load_to_program(name(), v, f); });
  }

  static bool linked(const gl::Shader& shader) {
    GLint status = GL_FALSE;
    glGetProgramiv(shader.program(), GL_LINK_STATUS, &status);
    return status == GL_TRUE;
  }

  static gl::ProgramKey key() { return {{fragment.size(), vertex.size()}, name()}; }
};

}  // namespace oct::test
