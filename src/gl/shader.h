// A program of one vertex and one fragment shader, built from source once per process
// and from its binary after that.
#pragma once

#include <string>

#include "gl/gl_names.h"
#include "gl/program_cache.h"

namespace oct::gl {

class Shader {
 public:
  Shader() = default;
  virtual ~Shader() = default;
  Shader(const Shader&) = delete;
  Shader& operator=(const Shader&) = delete;

  // Builds the program, or throws: "Vertex shader compilation failed", "Fragment shader compilation failed",
  // an empty message when it does not link, or an OpenGL checkpoint. Compiler and linker texts go to the
  // library log. The binary of a first build is kept under the name, the two source lengths and the driver.
  virtual void load_to_program(const std::string& name, const std::string& vertexSource,
                               const std::string& fragmentSource);

  virtual void release();

  GLuint program() const { return program_.get(); }

  // Makes the program the current one; throws StateError "Program has not been compiled yet.".
  void use() const;

  // Location of a uniform. A missing one (-1, which OpenGL ignores when it is
  // set) is noted in the library log.
  GLint uniform(const char* name) const;

 private:
  bool load_binary(const ProgramKey& key);
  void compile_and_link(const std::string& vertexSource, const std::string& fragmentSource);

  Program program_;
  // Held from compiling to linking; after a failure they stay until the next build or release.
  ShaderObject vertex_shader_;
  ShaderObject fragment_shader_;
};

}  // namespace oct::gl
