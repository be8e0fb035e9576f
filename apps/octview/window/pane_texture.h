// What a pane draws into, and shows until something changes.
#pragma once

#include "octview/window/gl_functions.h"

namespace oct::app {

class PaneTexture {
 public:
  explicit PaneTexture(const GlFunctions& gl);
  ~PaneTexture();
  PaneTexture(const PaneTexture&) = delete;
  PaneTexture& operator=(const PaneTexture&) = delete;

  // Draws with the function into all of it. The framebuffer and the viewport of before come back.
  template <class Draw>
  void draw(int width, int height, Draw draw_content) {
    const Target target(*this, width, height);
    draw_content();
  }

  int width() const { return width_; }
  int height() const { return height_; }
  // For ImGui::Image, with the bottom row first.
  void* id() const;

 private:
  // The framebuffer is bound while it lives.
  class Target {
   public:
    Target(PaneTexture& texture, int width, int height);
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

   private:
    const GlFunctions& gl_;
    GLint framebuffer_ = 0;
    GLint viewport_[4]{};
  };

  void resize(int width, int height);

  const GlFunctions& gl_;  // lives as long as the window
  GLuint framebuffer_ = 0;
  GLuint texture_ = 0;
  GLuint depth_ = 0;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace oct::app
