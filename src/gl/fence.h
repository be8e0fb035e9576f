// Owner of a fence in the command stream of the current context.
#pragma once

#include <utility>

#include "gl/context/context_identity.h"
#include "gl/gl.h"

namespace oct::gl {

inline constexpr GLuint64 one_second = 1'000'000'000;  // nanoseconds

// As a name it counts as empty where another context is current, and is given up when it is reset there.
class Fence {
 public:
  Fence() = default;
  Fence(const Fence&) = delete;
  Fence& operator=(const Fence&) = delete;
  ~Fence() { reset(); }

  void insert() {
    reset();
    context_ = require_identity();
    if (context_ != no_context) sync_ = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
  }

  void reset() {
    if (*this) glDeleteSync(sync_);
    sync_ = nullptr;
    context_ = no_context;
  }

  // Hands the commands to the GPU and waits for them; the result is glClientWaitSync's.
  GLenum wait(GLuint64 nanoseconds) const {
    return glClientWaitSync(sync_, GL_SYNC_FLUSH_COMMANDS_BIT, nanoseconds);
  }

  explicit operator bool() const { return sync_ && context_ == current_identity(); }

 private:
  GLsync sync_ = nullptr;
  ContextIdentity context_ = no_context;
};

}  // namespace oct::gl
