// The ray casting algorithms written down plainly, one after the other: what the library's programs are
// measured against, and have to agree with.
#pragma once

namespace oct::literal {

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

}  // namespace oct::literal
