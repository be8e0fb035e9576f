// A whole B-scan frame, 1024 x 2048 floats into 1024 x 1024 pixels, against the parts that no implementation
// can do without, measured in turn in the same run: copying the client's samples, uploading them, drawing as
// many pixels, each the mean of two samples, with the least possible shader, reading them back. Then the same
// frame with another boundary of colours ("recoloured") and once more with nothing changed ("unchanged").
// Times are processor time of all threads, which on a shared machine stays when the clock on the wall does not;
// what counts are the ratios.
#include <algorithm>
#include <cstring>
#include <ctime>
#include <vector>

#include <benchmark/benchmark.h>

#include "gl/colormap.h"
#include "gl/gl_names.h"
#include "gl/quad.h"
#include "gl/shader.h"
#include "median.h"
#include "oct_rendering/oct_rendering.h"
#include "shaders.h"

using oct::benchmark_scene::Median;

namespace {

constexpr int depth = 1024;
constexpr int a_scans = 2048;
constexpr unsigned width = 1024;
constexpr unsigned height = 1024;

// Every sample is read once, their mean coloured; all that settings decide is written as constants.
const char* const bare_fragment = R"(#version 330 core
uniform sampler2D image;
uniform sampler1D colors;
out vec4 color;
void main() {
  ivec2 at = ivec2(gl_FragCoord.yx) * ivec2(1, 2);
  float sum = texelFetch(image, at, 0).r + texelFetch(image, at + ivec2(0, 1), 0).r;
  color = texture(colors, 0.5 * sum);
}
)";

// The same work as the frame, written down bare.
class Parts {
 public:
  Parts() : samples_(static_cast<std::size_t>(depth) * a_scans) {
    texture_ = oct::gl::Texture::create();
    glBindTexture(GL_TEXTURE_2D, texture_.get());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, depth, a_scans, 0, GL_RED, GL_FLOAT, nullptr);
    oct::upload_colormap(colors_, oct::default_colormap());
    shader_.load_to_program("bare", oct::shaders::filter_vert, bare_fragment);
    shader_.use();
    glUniform1i(shader_.uniform("image"), 0);
    glUniform1i(shader_.uniform("colors"), 1);
    quad_.create("no buffer");
    framebuffer_ = oct::gl::Framebuffer::create();
    color_ = oct::gl::Renderbuffer::create();
    glBindRenderbuffer(GL_RENDERBUFFER, color_.get());
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_.get());
  }

  void copy(const std::vector<float>& image) {
    std::memcpy(samples_.data(), image.data(), image.size() * sizeof(float));
    benchmark::ClobberMemory();
  }
  void upload() {
    glBindTexture(GL_TEXTURE_2D, texture_.get());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, depth, a_scans, GL_RED, GL_FLOAT, samples_.data());
    glFinish();
  }
  void draw() {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.get());
    glViewport(0, 0, width, height);
    shader_.use();
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_1D, colors_.get());
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture_.get());
    quad_.draw();
    glFinish();
  }
  void read_back(std::vector<unsigned char>& pixels) {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.get());
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, pixels.data());
  }

 private:
  std::vector<float> samples_;
  oct::gl::Texture texture_;
  oct::gl::Texture colors_;
  oct::gl::Shader shader_;
  oct::gl::Quad quad_;
  oct::gl::Framebuffer framebuffer_;
  oct::gl::Renderbuffer color_;
};

template <class Work>
double milliseconds(Work&& work) {
  const std::clock_t start = std::clock();
  work();
  return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

void frame_against_its_parts(benchmark::State& state) {
  std::vector<float> image(static_cast<std::size_t>(depth) * a_scans);
  for (std::size_t i = 0; i < image.size(); ++i)
    image[i] = static_cast<float>(i * 2654435761U % 1000U) / 1000.0F;
  std::vector<unsigned char> pixels(width * height * 4);

  const OffscreenTargetHandle target = createOffscreenTarget();
  const DisplayRenderingHandle display = createDisplayRendering();
  initDisplayRendering(display);
  if (state.range(0) != 0) {
    setDisplayBlur(display, 1, 0);
    setDisplayPepperFilter(display, 1);
  }
  {
    Parts parts;
    Median set, render, read, frame, recoloured, unchanged, copy, upload, draw, read_back;
    const auto render_frame = [&] {
      beginOffscreenFrame(target, width, height);
      renderDisplay(display);
      glFinish();  // so that drawing is not counted as reading back
    };
    const auto read_frame = [&] { finishOffscreenFrame(target, pixels.data()); };
    const auto whole_frame = [&] {
      render_frame();
      read_frame();
    };
    int round = 0;
    for (auto _ : state) {
      const double set_time = milliseconds([&] { setDisplayData(display, depth, a_scans, image.data()); });
      const double render_time = milliseconds(render_frame);
      const double read_time = milliseconds(read_frame);
      set.add(set_time);
      render.add(render_time);
      read.add(read_time);
      frame.add(set_time + render_time + read_time);
      setDisplayColoringBoundaries(display, 0.0, 1.0 + 0.001 * (++round % 2));
      recoloured.add(milliseconds(whole_frame));
      whole_frame();
      unchanged.add(milliseconds(whole_frame));
      copy.add(milliseconds([&] { parts.copy(image); }));
      upload.add(milliseconds([&] { parts.upload(); }));
      draw.add(milliseconds([&] { parts.draw(); }));
      read_back.add(milliseconds([&] { parts.read_back(pixels); }));
    }
    const double sum = copy.value() + upload.value() + draw.value() + read_back.value();
    state.counters["ratio"] = frame.value() / sum;
    state.counters["recoloured_ratio"] = recoloured.value() / sum;
    state.counters["unchanged_ratio"] = unchanged.value() / sum;
    state.counters["frame_ms"] = frame.value();
    state.counters["recoloured_ms"] = recoloured.value();
    state.counters["unchanged_ms"] = unchanged.value();
    state.counters["set_ms"] = set.value();
    state.counters["render_ms"] = render.value();
    state.counters["read_ms"] = read.value();
    state.counters["part_copy_ms"] = copy.value();
    state.counters["part_upload_ms"] = upload.value();
    state.counters["part_draw_ms"] = draw.value();
    state.counters["part_read_ms"] = read_back.value();
  }
  uninitDisplayRendering(display);
  clearDisplayRendering(display);
  clearOffscreenTarget(target);
}
BENCHMARK(frame_against_its_parts)
    ->ArgName("filters")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(40)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
