#include "offline/offline_volume_rendering.h"

#include <stdexcept>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/opengl_error.h"
#include "gl/context/opengl_loader.h"

namespace oct {
namespace {

constexpr GLenum volumeFormat = GL_R16F;  // half the memory traffic of a ray; OCT intensities have fewer bits
constexpr GLenum secondaryFormat = GL_R32F;

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
void OfflineVolumeRendering::changeSource(Change change) {
  if (!renderer_) return;
  const ObjectLock lock(renderer_);
  VolumeSource source = renderer_->source();
  change(source);
  renderer_->setSource(source);
}

void OfflineVolumeRendering::setAspectRatio(float axial, float lateral1, float lateral2) {
  axial_ = axial;
  lateral1_ = lateral1;
  lateral2_ = lateral2;
}

void OfflineVolumeRendering::allocate(const VolumeExtent& extent) {
  const TimingMark mark("allocating volume on GPU");
  if (!renderer_) throw std::invalid_argument("Attach a volume renderer before allocating a volume. ");
  gl::requireOpenGL();
  if (volume_ && extent == volume_.extent()) return;
  gl::Texture3D::require(extent, volumeFormat);

  const ObjectLock lock(renderer_);
  changeSource([](VolumeSource& source) {
    source.volume = 0;
    source.sliceCount = 0;
    ++source.revision;
  });
  glEnable(GL_DEPTH_TEST);
  glDisable(GL_CULL_FACE);
  volume_.allocate(extent, volumeFormat, "OfflineVolumeRendering::allocate, glTexImage3D");
  changeSource([&](VolumeSource& source) {
    source.volume = volume_.get();
    source.sliceCount = static_cast<int>(extent.b_scans);
  });
  unbind();
  gl::throwOnGLError("OfflineVolumeRendering::allocate");
}

void OfflineVolumeRendering::requireVolume() const {
  if (!volume_) throw std::invalid_argument("Allocate a volume before uploading one. ");
}

void OfflineVolumeRendering::requireBScans(std::int64_t first, std::int64_t end) const {
  requireVolume();
  if (first < 0 || end < first || end > volume_.extent().b_scans) {
    throw std::invalid_argument("The slices lie outside the allocated volume. ");
  }
}

void OfflineVolumeRendering::volumeFilled(float fraction) {
  if (!renderer_) return;
  const ObjectLock lock(renderer_);
  changeSource([fraction](VolumeSource& source) {
    source.filledFraction = fraction;
    ++source.revision;
  });
  renderer_->setRenderElements(true, false);
}

void OfflineVolumeRendering::upload(const float* volume) {
  const TimingMark mark("upload offline volume");
  if (!volume) throw std::invalid_argument("Volume data must not be null. ");
  gl::requireOpenGL();
  requireVolume();
  volume_.bind();
  volume_.uploadBScans(0, volume_.extent().b_scans, volume);
  unbind();
  volumeFilled(1.0F);
  gl::throwOnGLError("OfflineVolumeRendering::upload");
}

void OfflineVolumeRendering::uploadSubVolume(int first, int end, const float* block) {
  const TimingMark mark("partial upload offline volume");
  if (!block) return changeSource([](VolumeSource& source) { source.filledFraction = 0.0F; });
  gl::requireOpenGL();
  requireBScans(first, end);
  volume_.bind();
  volume_.uploadBScans(first, end - first, block);
  unbind();
  if (volume_.extent().b_scans > 0) {
    volumeFilled(static_cast<float>(end) / static_cast<float>(volume_.extent().b_scans));
  }
  gl::throwOnGLError("OfflineVolumeRendering::upload");
}

void OfflineVolumeRendering::uploadSlice(int index, const float* slice) {
  const TimingMark mark("single slice upload offline volume");
  if (!slice) throw std::invalid_argument("Slice data must not be null. ");
  gl::requireOpenGL();
  requireBScans(index, std::int64_t{index} + 1);
  volume_.bind();
  volume_.uploadBScans(index, 1, slice);
  unbind();
  volumeFilled(static_cast<float>(index) / static_cast<float>(volume_.extent().b_scans));
  gl::throwOnGLError("OfflineVolumeRendering::upload");
}

void OfflineVolumeRendering::uploadOverlay(const float* volume) {
  gl::requireOpenGL();
  if (!volume) {
    const TimingMark mark("OfflineVolumeRendering::free_overlay");
    overlay_.reset();
    return;
  }
  requireVolume();
  if (!overlay_ || overlay_.extent() != volume_.extent()) {
    const TimingMark mark("OfflineVolumeRendering::allocate_overlay");
    overlay_.allocate(volume_.extent(), volumeFormat, "OfflineVolumeRendering::allocate_overlay");
  }
  const TimingMark mark("OfflineVolumeRendering::upload_overlay");
  overlay_.bind();
  overlay_.uploadBScans(0, overlay_.extent().b_scans, volume);
  unbind();
  changeSource([](VolumeSource& source) { ++source.revision; });  // the overlay may be what is shown
  gl::throwOnGLError("OfflineVolumeRendering::upload_overlay");
}

void OfflineVolumeRendering::freeSecondary() {
  const TimingMark mark("OfflineVolumeRendering::free_secondary_texture");
  secondary_.reset();
  changeSource([](VolumeSource& source) {
    source.secondary = 0;
    source.secondarySliceCount = 0;
  });
}

void OfflineVolumeRendering::uploadSecondaryData(const SecondaryBlock& block) {
  const TimingMark mark("OfflineVolumeRendering::upload_secondary_data");
  if (!renderer_) throw std::invalid_argument("The specified VolumeRendererHandle is invalid. ");
  gl::requireOpenGL();
  if (!block.data) return freeSecondary();
  const VolumeExtent& extent = block.extent;
  gl::Texture3D::require(extent, secondaryFormat);
  if (std::int64_t{block.first} + block.count > extent.b_scans) {
    throw std::invalid_argument("The secondary data lies outside its texture. ");
  }
  const bool whole = block.first == 0 && block.count == extent.b_scans;
  if (block.first == 0) {
    freeSecondary();
    secondary_.allocate(extent, secondaryFormat, "OfflineVolumeRendering::upload_secondary_data",
                        whole ? block.data : nullptr);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  } else if (!secondary_ || secondary_.extent() != extent) {
    throw std::invalid_argument("The first block of secondary data must start at 0. ");
  } else {
    secondary_.bind();
  }
  if (!whole) secondary_.uploadBScans(block.first, block.count, block.data);
  unbind();
  gl::throwOnGLError("OfflineVolumeRendering::upload_secondary_data");

  changeSource([&](VolumeSource& source) {
    source.secondary = secondary_.get();
    source.secondarySliceCount = static_cast<int>(extent.depth);
  });
}

void OfflineVolumeRendering::render(Content content) {
  const TimingMark mark("OfflineRendering::render");
  if (content < Content::volume || content > Content::volume_and_overlay) {
    throw std::invalid_argument("Content type is not supported for rendering. ");
  }
  if (!renderer_) return;
  const ObjectLock lock(renderer_);  // no setter comes between the hand-over and the frame
  renderer_->setRange(axial_, lateral1_, lateral2_);
  renderer_->setSource(sourceOf(content));
  renderer_->render();
}

VolumeSource OfflineVolumeRendering::sourceOf(Content content) const {
  VolumeSource source = renderer_->source();
  source.volume = 0;
  source.sliceCount = 0;
  source.overlay = 0;
  source.overlayPresent = false;
  source.mainColormapIsOverlay = false;
  if (volume_.extent().empty()) return source;
  source.sliceCount = static_cast<int>(volume_.extent().b_scans);
  if (content == Content::overlay) {
    source.volume = overlay_.get();
    source.mainColormapIsOverlay = true;
    return source;
  }
  source.volume = volume_.get();
  if (content == Content::volume_and_overlay) {
    source.overlay = overlay_.get();
    source.overlayPresent = static_cast<bool>(overlay_);
  }
  return source;
}

}  // namespace oct
