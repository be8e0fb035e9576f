#include "gl/shader.h"

#include <vector>

#include "core/exception.h"
#include "core/log.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "gl/trace/debugging.h"

namespace oct::gl {
namespace {

ShaderObject compile(GLenum stage, const std::string& source) {
  ShaderObject shader = ShaderObject::create(stage);
  const GLchar* const text = source.c_str();
  glShaderSource(shader.get(), 1, &text, nullptr);
  glCompileShader(shader.get());
  return shader;
}

void check_compiled(const ShaderObject& shader, const char* failure) {
  GLint status = GL_FALSE;
  glGetShaderiv(shader.get(), GL_COMPILE_STATUS, &status);
  if (status == GL_TRUE) return;
  GLint length = 0;
  glGetShaderiv(shader.get(), GL_INFO_LOG_LENGTH, &length);
  std::vector<GLchar> text(static_cast<std::size_t>(length) + 1, '\0');
  glGetShaderInfoLog(shader.get(), length, nullptr, text.data());
  log() << "Shader compilation failed: " << text.data();
  throw OpenGLError(failure);
}

std::string link_log(const Program& program) {
  GLint length = 0;
  glGetProgramiv(program.get(), GL_INFO_LOG_LENGTH, &length);
  std::vector<GLchar> text(static_cast<std::size_t>(length) + 1, '\0');
  glGetProgramInfoLog(program.get(), length, nullptr, text.data());
  return text.data();
}

// OpenGL 3.3 has program binaries only as an extension.
bool has_program_binaries() {
  return glProgramParameteri && glGetProgramBinary && glProgramBinary;
}

GLint binary_length(const Program& program) {
  GLint length = 0;
  glGetProgramiv(program.get(), GL_PROGRAM_BINARY_LENGTH, &length);
  return length;
}

// Nothing is kept when the driver offers no binary formats: it then reports length 0,
// and reading would be an error.
void keep_binary(const Program& program, const ProgramKey& key) {
  ProgramBinary binary;
  const GLint length = has_program_binaries() ? binary_length(program) : 0;
  if (length > 0) {
    binary.bytes.resize(static_cast<std::size_t>(length));
    glGetProgramBinary(program.get(), length, nullptr, &binary.format, binary.bytes.data());
  }
  throwOnGLError("BinaryShader");
  if (length > 0) store_program_binary(key, std::move(binary));
}

}  // namespace

void Shader::load_to_program(const std::string& name, const std::string& vertexSource,
                             const std::string& fragmentSource) {
  release();
  const ProgramKey key{{fragmentSource.size(), vertexSource.size()}, name, driver_name()};
  if (load_binary(key)) return;
  compile_and_link(vertexSource, fragmentSource);
  label(program_, name);
  keep_binary(program_, key);
}

bool Shader::load_binary(const ProgramKey& key) {
  const auto binary = find_program_binary(key);
  if (!binary || !has_program_binaries()) return false;
  program_ = Program::create();
  glProgramBinary(program_.get(), binary->format, binary->bytes.data(),
                  static_cast<GLsizei>(binary->bytes.size()));
  label(program_, key.name);
  throwOnGLError("BinaryShader::load_to_program");
  // A driver may refuse a binary without raising an error, as when one of the same name was updated meanwhile. It
  // then holds no executable for the program, and the sources are compiled again.
  return binary_length(program_) > 0;
}

void Shader::compile_and_link(const std::string& vertexSource, const std::string& fragmentSource) {
  vertex_shader_ = compile(GL_VERTEX_SHADER, vertexSource);
  check_compiled(vertex_shader_, "Vertex shader compilation failed");
  fragment_shader_ = compile(GL_FRAGMENT_SHADER, fragmentSource);
  check_compiled(fragment_shader_, "Fragment shader compilation failed");
  program_ = Program::create();
  glAttachShader(program_.get(), vertex_shader_.get());
  glAttachShader(program_.get(), fragment_shader_.get());
  if (has_program_binaries()) {
    glProgramParameteri(program_.get(), GL_PROGRAM_BINARY_RETRIEVABLE_HINT, GL_TRUE);
  }
  glLinkProgram(program_.get());
  GLint status = GL_FALSE;
  glGetProgramiv(program_.get(), GL_LINK_STATUS, &status);
  if (status != GL_TRUE) {
    log() << "Linking failed. ";
    log() << link_log(program_);
    throw OpenGLError("");
  }
  vertex_shader_.reset();
  fragment_shader_.reset();
}

void Shader::release() {
  vertex_shader_.reset();
  fragment_shader_.reset();
  program_.reset();
}

void Shader::use() const {
  if (!program_) throw StateError("Program has not been compiled yet.");
  glUseProgram(program_.get());
}

GLint Shader::uniform(const char* name) const {
  const GLint location = glGetUniformLocation(program_.get(), name);
  if (location == -1) log() << "Uniform " << name << " was not found. ";
  return location;
}

}  // namespace oct::gl
