#include "offline/offline_volume_rendering.h"

#include <stdexcept>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"

namespace oct {
namespace {

// Half the memory traffic of a ray; OCT intensities have fewer bits.
constexpr GLenum volume_format = GL_R16F;
constexpr GLenum secondary_format = GL_R32F;

void unbind() {
  glBindTexture(GL_TEXTURE_3D, 0);
}

}  // namespace

OfflineVolumeRendering::OfflineVolumeRendering() {
  const TimingMark mark("OfflineVolumeRendering");
}

OfflineVolumeRendering::~OfflineVolumeRendering() {
  const TimingMark mark("~OfflineVolumeRendering");
  volume_.reset();
  overlay_.reset();
  secondary_.reset();
}

// Changes what the renderer knows of the volume, between frames and setters of other threads.
template <class Change>
void OfflineVolumeRendering::change_source(Change change) {
  if (!renderer_) return;
  const ObjectLock lock(renderer_);
  VolumeSource source = renderer_->source();
  change(source);
  renderer_->set_source(source);
}

void OfflineVolumeRendering::set_aspect_ratio(float axial, float lateral1, float lateral2) {
  axial_ = axial;
  lateral1_ = lateral1;
  lateral2_ = lateral2;
}

void OfflineVolumeRendering::allocate(const VolumeExtent& extent) {
  const TimingMark mark("allocating volume on GPU");
  if (!renderer_) throw std::invalid_argument("Attach a volume renderer before allocating a volume. ");
  gl::require_opengl();
  if (volume_ && extent == volume_.extent()) return;
  gl::Texture3D::require(extent, volume_format);

  const ObjectLock lock(renderer_);
  change_source([](VolumeSource& source) {
    source.volume = 0;
    source.slice_count = 0;
    ++source.revision;
  });
  glEnable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  volume_.allocate(extent, volume_format, "OfflineVolumeRendering::allocate, glTexImage3D");
  change_source([&](VolumeSource& source) {
    source.volume = volume_.get();
    source.slice_count = static_cast<int>(extent.b_scans);
  });
  unbind();
  gl::throwOnGLError("OfflineVolumeRendering::allocate");
}

void OfflineVolumeRendering::require_volume() const {
  if (!volume_) throw std::invalid_argument("Allocate a volume before uploading one. ");
}

void OfflineVolumeRendering::require_b_scans(std::int64_t first, std::int64_t end) const {
  require_volume();
  if (first < 0 || end < first || end > volume_.extent().b_scans) {
    throw std::invalid_argument("The slices lie outside the allocated volume. ");
  }
}

void OfflineVolumeRendering::volume_filled(float fraction) {
  if (!renderer_) return;
  const ObjectLock lock(renderer_);
  change_source([fraction](VolumeSource& source) {
    source.filled_fraction = fraction;
    ++source.revision;
  });
  renderer_->set_render_elements(true, false);
}

void OfflineVolumeRendering::upload(const float* volume) {
  const TimingMark mark("upload offline volume");
  if (!volume) throw std::invalid_argument("Volume data must not be null. ");
  gl::require_opengl();
  require_volume();
  volume_.bind();
  volume_.upload_b_scans(0, volume_.extent().b_scans, volume);
  unbind();
  volume_filled(1.0F);
  gl::throwOnGLError("OfflineVolumeRendering::upload");
}

void OfflineVolumeRendering::upload_sub_volume(int first, int end, const float* block) {
  const TimingMark mark("partial upload offline volume");
  if (!block) return change_source([](VolumeSource& source) { source.filled_fraction = 0.0F; });
  gl::require_opengl();
  require_b_scans(first, end);
  volume_.bind();
  volume_.upload_b_scans(first, end - first, block);
  unbind();
  if (volume_.extent().b_scans > 0) {
    volume_filled(static_cast<float>(end) / static_cast<float>(volume_.extent().b_scans));
  }
  gl::throwOnGLError("OfflineVolumeRendering::upload");
}

void OfflineVolumeRendering::upload_slice(int index, const float* slice) {
  const TimingMark mark("single slice upload offline volume");
  if (!slice) throw std::invalid_argument("Slice data must not be null. ");
  gl::require_opengl();
  require_b_scans(index, std::int64_t{index} + 1);
  volume_.bind();
  volume_.upload_b_scans(index, 1, slice);
  unbind();
  volume_filled(static_cast<float>(index) / static_cast<float>(volume_.extent().b_scans));
  gl::throwOnGLError("OfflineVolumeRendering::upload");
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
    const TimingMark mark("OfflineVolumeRendering::allocate_overlay");
    overlay_.allocate(volume_.extent(), volume_format, "OfflineVolumeRendering::allocate_overlay");
  }
  const TimingMark mark("OfflineVolumeRendering::upload_overlay");
  overlay_.bind();
  overlay_.upload_b_scans(0, overlay_.extent().b_scans, volume);
  unbind();
  change_source([](VolumeSource& source) { ++source.revision; });  // the overlay may be what is shown
  gl::throwOnGLError("OfflineVolumeRendering::upload_overlay");
}

void OfflineVolumeRendering::free_secondary() {
  const TimingMark mark("OfflineVolumeRendering::free_secondary_texture");
  secondary_.reset();
  change_source([](VolumeSource& source) {
    source.secondary = 0;
    source.secondary_slice_count = 0;
  });
}

void OfflineVolumeRendering::upload_secondary_data(const SecondaryBlock& block) {
  const TimingMark mark("OfflineVolumeRendering::upload_secondary_data");
  if (!renderer_) throw std::invalid_argument("The specified VolumeRendererHandle is invalid. ");
  gl::require_opengl();
  if (!block.data) return free_secondary();
  const VolumeExtent& extent = block.extent;
  gl::Texture3D::require(extent, secondary_format);
  if (std::int64_t{block.first} + block.count > extent.b_scans) {
    throw std::invalid_argument("The secondary data lies outside its texture. ");
  }
  const bool whole = block.first == 0 && block.count == extent.b_scans;
  if (block.first == 0) {
    free_secondary();
    secondary_.allocate(extent, secondary_format, "OfflineVolumeRendering::upload_secondary_data",
                        whole ? block.data : nullptr);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  } else if (!secondary_ || secondary_.extent() != extent) {
    throw std::invalid_argument("The first block of secondary data must start at 0. ");
  } else {
    secondary_.bind();
  }
  if (!whole) secondary_.upload_b_scans(block.first, block.count, block.data);
  unbind();
  gl::throwOnGLError("OfflineVolumeRendering::upload_secondary_data");

  change_source([&](VolumeSource& source) {
    source.secondary = secondary_.get();
    source.secondary_slice_count = static_cast<int>(extent.depth);
  });
}

void OfflineVolumeRendering::render(Content content) {
  const TimingMark mark("OfflineRendering::render");
  if (content < Content::volume || content > Content::volume_and_overlay) {
    throw std::invalid_argument("Content type is not supported for rendering. ");
  }
  if (!renderer_) return;
  const ObjectLock lock(renderer_);  // no setter comes between the hand-over and the frame
  renderer_->set_range(axial_, lateral1_, lateral2_);
  renderer_->set_source(source_of(content));
  renderer_->render();
}

VolumeSource OfflineVolumeRendering::source_of(Content content) const {
  VolumeSource source = renderer_->source();
  source.volume = 0;
  source.slice_count = 0;
  source.overlay = 0;
  source.overlay_present = false;
  source.main_colormap_is_overlay = false;
  source.secondary = secondary_.get();
  source.secondary_slice_count = secondary_ ? static_cast<int>(secondary_.extent().depth) : 0;
  if (!volume_ || volume_.extent().empty()) return source;
  source.slice_count = static_cast<int>(volume_.extent().b_scans);
  if (content == Content::overlay) {
    source.volume = overlay_.get();
    source.main_colormap_is_overlay = true;
    return source;
  }
  source.volume = volume_.get();
  if (content == Content::volume_and_overlay) {
    source.overlay = overlay_.get();
    source.overlay_present = static_cast<bool>(overlay_);
  }
  return source;
}

}  // namespace oct
