// A framebuffer with colour and depth of its own.
#pragma once

#include "gl/gl_names.h"
#include "gl/trace/debugging.h"

namespace oct::gl {

struct RenderTarget {
  Framebuffer framebuffer;
  Renderbuffer color;  // eight bits a channel
  Renderbuffer depth;  // 24 bits

  // Leaves the framebuffer bound, for whoever asks whether it is complete.
  void create(GLsizei columns, GLsizei rows) {
    framebuffer = Framebuffer::create();
    color = Renderbuffer::create();
    depth = Renderbuffer::create();
    glBindRenderbuffer(GL_RENDERBUFFER, color.get());
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, columns, rows);
    glBindRenderbuffer(GL_RENDERBUFFER, depth.get());
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, columns, rows);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth.get());
    label(framebuffer, "render target");
    label(color, "render target");
    label(depth, "render target");
  }

  void reset() {
    framebuffer.reset();
    color.reset();
    depth.reset();
  }
};

}  // namespace oct::gl
