// Volumes that a client uploads, kept in textures and drawn by a volume renderer that the client attaches.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "gl/texture_3d.h"
#include "volume/skipping/empty_space.h"
#include "volume/skipping/volume_texture.h"
#include "volume/volume_renderer.h"

namespace oct {

// No lock of its own: everything runs on the thread that owns the context. The attached renderer's setters
// may run on other threads. Where another context is current than that of the allocation, nothing is allocated.
// The renderer is handed everything with each frame, so that others may draw with it in between.
class OfflineVolumeRendering {
 public:
  OfflineVolumeRendering();
  ~OfflineVolumeRendering();
  OfflineVolumeRendering(const OfflineVolumeRendering&) = delete;
  OfflineVolumeRendering& operator=(const OfflineVolumeRendering&) = delete;

  // Not owned; null detaches.
  void set_renderer(VolumeRenderer* renderer) { renderer_ = renderer; }
  void set_aspect_ratio(float axial, float lateral1, float lateral2);

  // Keeps volume and contents when the sizes are those it has. A new volume is empty, and nothing of the one
  // before stays. After a failure the picture is as it was, but nothing can be uploaded until an allocation
  // succeeds: the caller's data has the size that was refused.
  void allocate(const VolumeExtent& extent);

  void upload(const float* volume);
  void upload_sub_volume(int first, int end,
                         const float* block);        // B-scans; a null block empties the picture
  void upload_slice(int index, const float* slice);  // one B-scan

  void upload_overlay(const float* volume);  // null frees the overlay

  // Null frees the secondary data. Its depth is the number of values of an A-scan.
  struct SecondaryBlock {
    VolumeExtent extent;      // of all blocks together
    std::uint32_t first = 0;  // B-scan
    std::uint32_t count = 0;
    const float* data = nullptr;
  };
  void upload_secondary_data(const SecondaryBlock& block);

  enum class Content { volume = 0, overlay = 1, volume_and_overlay = 2 };

  // Throws std::invalid_argument for a content that is not listed.
  void render(Content content);

  // What a frame of that content draws.
  VolumeSource source(Content content);

 private:
  void allocate_texture(const VolumeExtent& extent);
  void require_volume() const;
  void require_b_scans(std::int64_t first, std::int64_t end) const;
  void volume_filled(float fraction);

  VolumeRenderer* renderer_ = nullptr;
  float axial_ = 0.0F;
  float lateral1_ = 0.0F;
  float lateral2_ = 0.0F;
  bool refused_ = false;                        // the last allocation
  std::shared_ptr<const std::string> refusal_;  // and what it said
  std::optional<float>
      filled_;  // fraction of the volume; none: nothing has been uploaded since the allocation
  VolumeTexture volume_;
  VolumeTexture overlay_;
  EmptySpace empty_space_;  // of what was drawn last
  gl::Texture3D secondary_;
};

}  // namespace oct
