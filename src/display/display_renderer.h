// Draws a B-scan, and overlays on it, into the current target.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/last_frame.h"
#include "core/picture_part.h"
#include "display/filters.h"
#include "display/simple_data_provider.h"
#include "gl/colormap.h"
#include "gl/context/context_identity.h"
#include "gl/kept_picture.h"
#include "gl/quad.h"
#include "gl/shader.h"

namespace oct {

// A frame takes all settings and images as they are at its start, each of them whole; setters never wait for
// a frame. init, uninit and render run on the thread that owns the context. A frame starts from OpenGL's own
// settings, which its caller sees to (gl::ClientState), and leaves what it set. It does only what the frame before
// has not done: image, overlay and colour maps are uploaded when they change, filters run over another image only,
// and the second of two equal frames keeps its picture, which those after it copy. A frame that fails leaves nothing
// of all that to the next.
class DisplayRenderer {
 public:
  // Enough for the layers of a retina segmentation; a layer costs bytes.
  static constexpr int overlay_count = 8;

  DisplayRenderer() = default;
  ~DisplayRenderer();
  DisplayRenderer(const DisplayRenderer&) = delete;
  DisplayRenderer& operator=(const DisplayRenderer&) = delete;

  void init();
  void uninit();
  void render();

  // In plain words why the last frame shows nothing or one colour only; empty when it shows something. Any thread.
  std::string explain() const;

  void set_data(const ImageExtent& extent, const float* data) { display_data_.set_data(extent, data); }
  void set_blur(bool first, bool second);
  void set_pepper_filter(bool enabled);
  void set_median_filter(int median_filter) const;
  void set_flip(bool flip);
  void set_part(std::optional<PicturePart> part);  // what frames show; none: the whole picture
  void set_background_color(int color);
  void set_colormap(const void* colors, int count);
  void set_coloring_boundaries(double lower, double upper);
  void set_number_overlays(int count);
  void set_overlay_data(const ImageExtent& extent, const float* data) {
    overlay_data_.set_data(extent, data);
  }
  void set_overlay_colormap(int overlay, const void* colors, int count);
  void set_overlay_coloring_boundaries(int overlay, double lower, double upper);
  void set_overlay_threshold(double threshold);

 private:
  static constexpr std::size_t layer_count = 1 + overlay_count;

  struct LayerSettings {
    bool enabled = false;
    float lowerValue = 0.0F;
    float upperValue = 1.0F;

    bool operator==(const LayerSettings&) const = default;
  };

  // Layer 0 is the base image, the others are overlays.
  struct Layer {
    LayerSettings settings;
    RevisedColormap colormap;

    bool operator==(const Layer&) const = default;
  };

  struct Settings {
    bool flip = false;
    std::array<float, 4> backgroundColor{0.0F, 0.0F, 0.0F, 1.0F};
    float threshold = 0.0F;
    FilterSwitches filters;
    std::optional<PicturePart> part;

    bool operator==(const Settings&) const = default;
  };

  using Image = std::shared_ptr<const SimpleDataProvider::Image>;

  // All that a picture depends on. Boundaries that are no numbers equal nothing.
  struct Content {
    Settings common;
    std::array<Layer, layer_count> layers;
    std::uint64_t image = 0;  // revision
    std::uint64_t overlay_image = 0;
    GLsizei width = 0;  // of the viewport
    GLsizei height = 0;

    PicturePart shown() const { return common.part.value_or(PicturePart{width, height, 0, 0}); }
    bool operator==(const Content&) const = default;
  };

  // What one frame is drawn with. Never changes after it.
  struct Frame {
    Content content;
    Image image;
    Image overlay_image;
  };

  // Programs come in one version for each layout of the image's texels.
  static constexpr std::size_t layout_count = 2;

  struct DisplayProgram {
    gl::Shader shader;
    GLint lowerValue, upperValue, displayTex, colorTex, textureSize, texel_count, displaySize, dpp, gamma,
        flip, part;

    void build(TexelLayout layout);
  };

  struct OverlayProgram {
    gl::Shader shader;
    GLint lowerValue, upperValue, displayTex, overlayTex, colorTex, textureSize, texel_count, displaySize,
        threshold, flip, part;

    void build(TexelLayout layout);
  };

  static std::size_t overlay_layer(int overlay);
  void set_layer_colormap(std::size_t layer, const void* colors, int count);
  void set_layer_boundaries(std::size_t layer, double lower, double upper);

  template <class Program>
  static const Program& built(std::array<Program, layout_count>& programs, TexelLayout layout);
  void release();
  void release_textures();
  Frame take_frame(GLsizei width, GLsizei height);
  static std::string cause(const Frame& frame);
  static bool overlay_shows(const Frame& frame);
  void draw_frame();
  void draw_or_forget();
  TextureView upload(const Frame& frame);
  void clear(const Frame& frame) const;
  void draw(const Frame& frame, const TextureView& image);
  void draw_base(const Frame& frame, const TextureView& image);
  template <class Program>
  static void set_part(const Program& program, const Content& content);
  void draw_overlays(const Frame& frame, const TextureView& image);
  void draw_overlay(const Frame& frame, const OverlayProgram& program, std::size_t index);

  SimpleDataProvider display_data_;
  SimpleDataProvider overlay_data_;
  FilterChain filters_;

  mutable std::mutex settings_mutex_;  // never held across OpenGL
  Settings settings_;
  std::array<Layer, layer_count> layers_;

  std::array<DisplayProgram, layout_count> display_;
  std::array<OverlayProgram, layout_count> overlay_;
  gl::Quad quad_;
  std::array<ColormapTexture, layer_count> colormap_textures_;
  std::optional<Content> shown_;  // by the last frame
  gl::KeptPicture picture_;       // of that
  LastFrame<Frame> last_frame_{LastFrame<Frame>::AfterFailure::keep};
  std::atomic<bool> initialized_{false};
  gl::ContextIdentity home_ = gl::no_context;  // where it was initialised
};

}  // namespace oct
