// The ray casting algorithms written down plainly, one after the other: what the library's programs are
// measured against, and have to agree with.
#pragma once

#include <string>

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"
#include "gl/gl_names.h"
#include "shaders.h"
#include "volume/frame/volume_frame.h"
#include "volume/passes/box.h"

namespace oct::literal {

inline const char* const back_vertex = R"(#version 330 core
layout(location = 0) in vec4 vertex;
uniform mat4 modelview;
uniform mat4 projection;
out vec4 back;
void main() {
  back = vec4(0.5 * vertex.xyz + 0.5, 1.0);
  gl_Position = projection * modelview * vertex;
}
)";

inline const char* const back_fragment = R"(#version 330 core
in vec4 back;
out vec4 frag_color;
void main() {
  frag_color = back;
}
)";

inline const char* const start = R"(#version 330 core
in vec4 clip_pos;
in vec3 front;
in float clip_dist;
out vec4 frag_color;
uniform sampler3D volumeTex;
uniform sampler1D colorTex;
uniform sampler2D backTex;
uniform float lowerValue;
uniform float upperValue;
uniform int slices;
uniform float stepSize;
void main() {
  if (clip_dist < 0.0) discard;
  vec2 screen_pos = 0.5 * clip_pos.xy / clip_pos.w + vec2(0.5, 0.5);
  vec3 back = texture(backTex, screen_pos).rgb;
  vec3 dir = back - front;
  float max_length = length(dir);
  float diffInt = upperValue - lowerValue;
  vec3 step = normalize(dir) * stepSize;
  vec3 current = front;
)";

inline const char* const compositing = R"(
  vec4 final = vec4(0.0);
  for (int i = 0; i <= slices; ++i) {
    float intensity = texture(volumeTex, current.yxz).r;
    if (intensity > lowerValue) {
      vec4 col = texture(colorTex, (intensity - lowerValue) / diffInt);
      if (col.a > 0.0) {
        final = mix(vec4(col.rgb, 1.0) * col.a, vec4(final.rgb, 1.0), final.a);
        final.rgb /= final.a;
        if (final.a > 0.9) {
          frag_color = vec4(final.rgb, 1.0);
          return;
        }
      }
    }
    if (length(current - front) >= max_length) break;
    current = front + float(i + 1) * step;
  }
  frag_color = final;
}
)";

inline const char* const maximum = R"(
  float maximum = texture(volumeTex, current.yxz).r;
  for (int i = 1; i <= slices; ++i) {
    maximum = max(maximum, texture(volumeTex, current.yxz).r);
    if (maximum > upperValue) break;
    if (length(current - front) >= max_length) break;
    current = front + float(i) * step;
  }
  frag_color = texture(colorTex, (maximum - lowerValue) / diffInt);
}
)";

inline const char* const mean = R"(
  float mean = texture(volumeTex, current.yxz).r;
  int counter = 0;
  for (int i = 1; i <= slices; ++i) {
    mean += texture(volumeTex, current.yxz).r;
    if (length(current - front) >= max_length) break;
    current = front + float(i) * step;
    ++counter;
  }
  mean /= float(counter);
  frag_color = texture(colorTex, (mean - lowerValue) / diffInt);
}
)";

// Two passes: where rays leave the box goes into a texture, then they are cast from the front faces.
class Raycaster {
 public:
  Raycaster(const char* text, Viewport viewport) : viewport_(viewport) {
    back_.load("literal_back", back_vertex, back_fragment);
    front_.load("literal", shaders::raycasting_vert, std::string(start) + text);
    glBindTexture(GL_TEXTURE_2D, texture_.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, viewport.width, viewport.height, 0, GL_RGBA, GL_FLOAT,
                 nullptr);
    const gl::DrawTargetGuard target;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_.get(), 0);
  }

  void draw(const VolumeFrame& frame, Box& box) {
    const gl::DepthTest depth(GL_ALWAYS, true);
    draw_back(frame, box);
    use_volume_program(front_, frame);
    bind_volume_texture(volume_unit::surface, GL_TEXTURE_2D, texture_.get());
    glUniform1i(front_.ray().backTex, volume_unit::surface);
    glUniform1i(front_.ray().slices, frame.settings.slices);
    glUniform1f(front_.ray().stepSize, 1.7320508F / static_cast<float>(frame.settings.slices));
    glUniform4f(front_.ray().clipPlane, 0.0F, 0.0F, 0.0F, 0.0F);
    const gl::Blending blending;
    const gl::FaceCulling culling(GL_BACK, frame.front_winding());
    box.draw(frame.box);
  }

 private:
  void draw_back(const VolumeFrame& frame, Box& box) {
    const gl::DrawTargetGuard target;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
    glViewport(0, 0, viewport_.width, viewport_.height);
    glClear(GL_COLOR_BUFFER_BIT);
    back_.use();
    glUniformMatrix4fv(back_.at().modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
    glUniformMatrix4fv(back_.at().projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
    const gl::FaceCulling culling(GL_FRONT, frame.front_winding());
    box.draw(frame.box);
  }

  Viewport viewport_;
  RaycastingProgram back_;
  RaycastingProgram front_;
  gl::Texture texture_ = gl::Texture::create();
  gl::Framebuffer framebuffer_ = gl::Framebuffer::create();
};

}  // namespace oct::literal
