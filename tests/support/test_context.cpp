#include "support/test_context.h"

#include <array>
#include <fstream>
#include <random>
#include <sstream>

#include "core/log.h"
#include "gl/gl.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::test {

void GLTest::TearDown() {
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

std::string pending_error() {
  std::array<char, 4096> message{};
  if (getRendererError(message.data(), static_cast<int>(message.size())) == 0) return "(none)";
  return message.data();
}

void expect_refused(const std::vector<std::pair<std::string, std::function<void()>>>& calls) {
  for (const auto& [error, call] : calls) {
    call();
    EXPECT_EQ(pending_error(), error);
  }
}

std::string failure_of(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "(none)";
}

void clear_gl_errors() {
  gl::discard_gl_errors();
}

std::string text_of(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

std::string log_of(const std::function<void()>& action) {
  const auto file =
      std::filesystem::temp_directory_path() / ("oct_log_" + std::to_string(std::random_device{}()) + ".txt");
  set_log_file_name(file.string());
  action();
  set_log_file_name("");
  log() << "closes the file before it is read";
  std::string text = text_of(file);
  std::filesystem::remove(file);
  return text;
}

}  // namespace oct::test
