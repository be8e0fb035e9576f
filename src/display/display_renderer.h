// Draws a B-scan, and overlays on it, into the current target.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

#include "display/filters.h"
#include "display/simple_data_provider.h"
#include "gl/colormap.h"
#include "gl/quad.h"
#include "gl/shader.h"

namespace oct {

// Image setters wait while a frame uses the image. The other setters hold a short lock of their own, so that
// a frame sees each setting whole; a frame takes them all at its start. init, uninit and render run on the
// thread that owns the context.
class DisplayRenderer {
 public:
  static constexpr int overlayCount =
      8;  // enough for the layers of a retina segmentation; a layer costs bytes

  DisplayRenderer() = default;
  ~DisplayRenderer();
  DisplayRenderer(const DisplayRenderer&) = delete;
  DisplayRenderer& operator=(const DisplayRenderer&) = delete;

  void init();
  void uninit();
  void render();

  void setData(const ImageExtent& extent, const float* data) { displayData_.setData(extent, data); }
  void setBlur(bool first, bool second) { filters_.setBlur(first, second); }
  void setPepperFilter(bool enabled) { filters_.setPepper(enabled); }
  void setMedianFilter(int medianFilter) const;
  void setFlip(bool flip);
  void setBackgroundColor(int color);
  void setColormap(const void* colors, int count);
  void setColoringBoundaries(double lower, double upper);
  void setNumberOverlays(int count);
  void setOverlayData(const ImageExtent& extent, const float* data) { overlayData_.setData(extent, data); }
  void setOverlayColormap(int overlay, const void* colors, int count);
  void setOverlayColoringBoundaries(int overlay, double lower, double upper);
  void setOverlayThreshold(double threshold);

 private:
  static constexpr std::size_t layerCount = 1 + overlayCount;

  struct LayerSettings {
    bool enabled = false;
    float lowerValue = 0.0F;
    float upperValue = 1.0F;
  };

  // Layer 0 is the base image, the others are overlays.
  struct Layer {
    LayerSettings settings;
    Colormap colormap = defaultColormap();
    bool colormapChanged = true;
  };

  struct Settings {
    bool flip = false;
    std::array<float, 4> backgroundColor{0.0F, 0.0F, 0.0F, 1.0F};
    float threshold = 0.0F;
  };

  struct ChangedColormap {
    std::size_t layer;
    Colormap colormap;
  };

  // What one frame is drawn with.
  struct FrameSettings {
    Settings common;
    std::array<LayerSettings, layerCount> layers;
    std::vector<ChangedColormap> changedColormaps;
  };

  struct DisplayProgram {
    gl::Shader shader;
    GLint lowerValue, upperValue, displayTex, colorTex, textureSize, displaySize, dpp, gamma, flip;
  };

  struct OverlayProgram {
    gl::Shader shader;
    GLint lowerValue, upperValue, displayTex, overlayTex, colorTex, displaySize, threshold, flip;
  };

  struct Frame;

  static std::size_t overlayLayer(int overlay);
  void setLayerColormap(std::size_t layer, const void* colors, int count);
  void setLayerBoundaries(std::size_t layer, double lower, double upper);

  void buildPrograms();
  void release();
  FrameSettings takeSettings();
  void uploadColormaps(const FrameSettings& settings);
  void drawBase(const Frame& frame);
  void drawOverlays(const Frame& frame);
  void drawOverlay(const Frame& frame, std::size_t index);

  SimpleDataProvider displayData_;
  SimpleDataProvider overlayData_;
  FilterChain filters_;

  std::mutex settingsMutex_;  // never held across OpenGL
  Settings settings_;
  std::array<Layer, layerCount> layers_;

  DisplayProgram display_;
  OverlayProgram overlay_;
  gl::Quad quad_;
  std::array<gl::Texture, layerCount> colormapTextures_;
  std::atomic<bool> initialized_{false};
};

}  // namespace oct
