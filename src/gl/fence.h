// Owner of a fence in the command stream of the current context.
#pragma once

#include <utility>

#include "gl/context/current_context.h"
#include "gl/gl.h"

namespace oct::gl {

inline constexpr GLuint64 one_second = 1'000'000'000;  // nanoseconds

// As with names, a fence whose context is not current is given up and dies with its context.
class Fence {
 public:
  Fence() = default;
  Fence(const Fence&) = delete;
  Fence& operator=(const Fence&) = delete;
  ~Fence() { reset(); }

  void insert() {
    reset();
    sync_ = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    context_ = current_context();
  }

  void reset() {
    if (sync_ && context_ == current_context()) glDeleteSync(sync_);
    sync_ = nullptr;
    context_ = nullptr;
  }

  // Hands the commands to the GPU and waits for them; the result is glClientWaitSync's.
  GLenum wait(GLuint64 nanoseconds) const {
    return glClientWaitSync(sync_, GL_SYNC_FLUSH_COMMANDS_BIT, nanoseconds);
  }

  explicit operator bool() const { return sync_ != nullptr; }

 private:
  GLsync sync_ = nullptr;
  void* context_ = nullptr;
};

}  // namespace oct::gl
