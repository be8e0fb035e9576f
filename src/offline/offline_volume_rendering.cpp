#include "offline/offline_volume_rendering.h"

#include <stdexcept>

#include "core/exception.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"

namespace oct {
namespace {

// Half the memory traffic of a ray; OCT intensities have fewer bits.
constexpr GLenum volume_format = GL_R16F;
constexpr GLenum secondary_format = GL_R32F;

}  // namespace

OfflineVolumeRendering::OfflineVolumeRendering() {
  const TimingMark mark("OfflineVolumeRendering");
}

OfflineVolumeRendering::~OfflineVolumeRendering() {
  const TimingMark mark("~OfflineVolumeRendering");
  volume_.reset();
  overlay_.reset();
  empty_space_.release();
  secondary_.reset();
}

void OfflineVolumeRendering::set_aspect_ratio(float axial, float lateral1, float lateral2) {
  axial_ = axial;
  lateral1_ = lateral1;
  lateral2_ = lateral2;
}

void OfflineVolumeRendering::allocate(const VolumeExtent& extent) {
  const gl::PassMark mark("allocating volume on GPU");
  refused_ = true;
  refusal_.reset();
  try {
    allocate_texture(extent);
  } catch (const std::exception& error) {
    refusal_ = std::make_shared<const std::string>(error.what());
    throw;
  }
}

void OfflineVolumeRendering::allocate_texture(const VolumeExtent& extent) {
  if (!renderer_) throw StateError("Attach a volume renderer before allocating a volume. ");
  gl::require_opengl();
  if (!volume_ || extent != volume_.extent()) {
    const bool replaced = static_cast<bool>(volume_);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    volume_.allocate(extent, volume_format, "OfflineVolumeRendering::allocate, glTexImage3D");
    volume_.label("volume");
    glBindTexture(GL_TEXTURE_3D, 0);
    filled_.reset();
    overlay_.reset();
    if (replaced) secondary_.reset();  // what came before any volume may be meant for this one
  }
  refused_ = false;
  gl::throwOnGLError("OfflineVolumeRendering::allocate");
}

void OfflineVolumeRendering::require_volume() const {
  if (!volume_ || refused_) throw StateError("Allocate a volume before uploading one. ");
}

void OfflineVolumeRendering::require_b_scans(std::int64_t first, std::int64_t end) const {
  require_volume();
  if (first < 0 || end < first || end > volume_.extent().b_scans) {
    throw std::invalid_argument("The slices lie outside the allocated volume. ");
  }
}

void OfflineVolumeRendering::volume_filled(float fraction) {
  filled_ = fraction;
  if (renderer_) renderer_->set_render_elements(true, false);
}

void OfflineVolumeRendering::upload(const float* volume) {
  const gl::PassMark mark("upload offline volume");
  if (!volume) throw std::invalid_argument("Volume data must not be null. ");
  gl::require_opengl();
  require_volume();
  const auto binding = volume_.bind();
  volume_.upload_b_scans(0, volume_.extent().b_scans, volume, "OfflineVolumeRendering::upload");
  volume_filled(1.0F);
}

void OfflineVolumeRendering::upload_sub_volume(int first, int end, const float* block) {
  const gl::PassMark mark("partial upload offline volume");
  if (!block) {
    filled_ = 0.0F;
    return;
  }
  gl::require_opengl();
  require_b_scans(first, end);
  const auto binding = volume_.bind();
  volume_.upload_b_scans(first, end - first, block, "OfflineVolumeRendering::upload");
  if (volume_.extent().b_scans > 0) {
    volume_filled(static_cast<float>(end) / static_cast<float>(volume_.extent().b_scans));
  }
}

void OfflineVolumeRendering::upload_slice(int index, const float* slice) {
  const gl::PassMark mark("single slice upload offline volume");
  if (!slice) throw std::invalid_argument("Slice data must not be null. ");
  gl::require_opengl();
  require_b_scans(index, std::int64_t{index} + 1);
  const auto binding = volume_.bind();
  volume_.upload_b_scans(index, 1, slice, "OfflineVolumeRendering::upload");
  volume_filled(static_cast<float>(index) / static_cast<float>(volume_.extent().b_scans));
}

void OfflineVolumeRendering::upload_overlay(const float* volume) {
  gl::require_opengl();
  if (!volume) {
    const TimingMark mark("OfflineVolumeRendering::free_overlay");
    overlay_.reset();
    return;
  }
  require_volume();
  if (!overlay_ || overlay_.extent() != volume_.extent()) {
    const gl::PassMark mark("OfflineVolumeRendering::allocate_overlay");
    overlay_.allocate(volume_.extent(), volume_format, "OfflineVolumeRendering::allocate_overlay");
    overlay_.label("overlay of the volume");
  }
  const gl::PassMark mark("OfflineVolumeRendering::upload_overlay");
  const auto binding = overlay_.bind();
  overlay_.upload_b_scans(0, overlay_.extent().b_scans, volume, "OfflineVolumeRendering::upload_overlay");
}

void OfflineVolumeRendering::upload_secondary_data(const SecondaryBlock& block) {
  const gl::PassMark mark("OfflineVolumeRendering::upload_secondary_data");
  constexpr const char* checkpoint = "OfflineVolumeRendering::upload_secondary_data";
  if (!renderer_) throw std::invalid_argument("The specified VolumeRendererHandle is invalid. ");
  gl::require_opengl();
  if (!block.data) {
    const TimingMark free_mark("OfflineVolumeRendering::free_secondary_texture");
    secondary_.reset();
    return;
  }
  const VolumeExtent& extent = block.extent;
  gl::Texture3D::require(extent, secondary_format);
  if (std::int64_t{block.first} + block.count > extent.b_scans) {
    throw std::invalid_argument("The secondary data lies outside its texture. ");
  }
  if (block.first != 0 && (!secondary_ || secondary_.extent() != extent)) {
    throw std::invalid_argument("The first block of secondary data must start at 0. ");
  }
  const bool whole = block.first == 0 && block.count == extent.b_scans;
  if (block.first == 0)
    secondary_.allocate(extent, secondary_format, checkpoint, whole ? block.data : nullptr);
  const auto binding = secondary_.bind();
  secondary_.label("secondary data");
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  if (!whole) secondary_.upload_b_scans(block.first, block.count, block.data, checkpoint);
  gl::throwOnGLError(checkpoint);
}

void OfflineVolumeRendering::render(Content content) {
  const gl::PassMark mark("OfflineRendering::render");
  if (content < Content::volume || content > Content::volume_and_overlay) {
    throw std::invalid_argument("Content type is not supported for rendering. ");
  }
  if (!renderer_) return;
  renderer_->render(source(content));
}

VolumeSource OfflineVolumeRendering::source(Content content) {
  VolumeSource source;
  source.range = range_of(axial_, lateral1_, lateral2_);
  if (secondary_) {
    source.secondary = secondary_.get();
    source.secondary_slice_count = static_cast<int>(secondary_.extent().depth);
    source.secondary_revisions = secondary_.revisions();
  }
  if (!volume_ || volume_.extent().empty()) {
    source.lack = volume_ ? VolumeLack::no_voxels : VolumeLack::not_allocated;
    source.refusal = refusal_;
    return source;
  }
  source.extent = volume_.extent();
  source.slice_count = static_cast<int>(volume_.extent().b_scans);
  const bool overlay_alone = content == Content::overlay;
  VolumeTexture& shown = overlay_alone ? overlay_ : volume_;
  source.main_colormap_is_overlay = overlay_alone;
  if (overlay_alone && !overlay_) source.lack = VolumeLack::no_overlay;
  if (!overlay_alone && !filled_) source.lack = VolumeLack::not_uploaded;
  if (shown) {
    source.volume = shown.get();
    source.volume_revisions = shown.revisions();
    source.volume_maxima = shown.maxima();
    source.empty_space = &empty_space_;
  }
  // An overlay comes whole, and can be looked at before there is a volume.
  source.filled_fraction = filled_.value_or(overlay_alone ? 1.0F : 0.0F);
  if (content == Content::volume_and_overlay && overlay_) {
    source.overlay = overlay_.get();
    source.overlay_present = true;
    source.overlay_revisions = overlay_.revisions();
    source.overlay_maxima = overlay_.maxima();
  }
  return source;
}

}  // namespace oct
