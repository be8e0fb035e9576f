#include "live/volume_upload.h"

#include "gl/pixel_store.h"

namespace oct {
namespace {

constexpr GLenum format = GL_R32F;  // as the device delivers: a conversion would cost more than the copy

void unbind_buffer() {
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

}  // namespace

void VolumeUpload::allocate(const VolumeExtent& extent) {
  volume_.allocate(extent, format, "FastOpenGLVolumeRenderer::initialize");
  for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) {
    glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_BORDER);
  }
  for (gl::Buffer& buffer : buffers_) buffer.reset();
  for (gl::Buffer& buffer : buffers_) {
    buffer = gl::Buffer::create();
    respecify(buffer);
  }
  unbind_buffer();
}

void VolumeUpload::allocate_secondary() {
  if (!secondary_) secondary_ = gl::Texture::create();
  glBindTexture(GL_TEXTURE_3D, secondary_.get());
  for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
    glTexParameteri(GL_TEXTURE_3D, filter, GL_LINEAR);
  }
  // Along S the channels of the analog input follow each other, which keeps its default.
  for (const GLenum wrap : {GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) {
    glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_EDGE);
  }
}

void VolumeUpload::release() {
  unbind_buffer();
  glBindTexture(GL_TEXTURE_3D, 0);
  volume_.reset();
  for (gl::Buffer& buffer : buffers_) buffer.reset();
  secondary_.reset();
}

void VolumeUpload::respecify(const gl::Buffer& buffer) const {
  const VolumeExtent& extent = volume_.extent();
  const auto voxels = static_cast<GLsizeiptr>(extent.depth * extent.a_scans * extent.b_scans);
  // Empty volumes keep a byte or so: a buffer without any cannot be mapped.
  const GLsizeiptr bytes = (voxels > 0 ? voxels : 1) * static_cast<GLsizeiptr>(sizeof(float));
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer.get());
  glBufferData(GL_PIXEL_UNPACK_BUFFER, bytes, nullptr, GL_STREAM_DRAW);
}

float* VolumeUpload::map() {
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[current_].get());
  auto* const data = static_cast<float*>(glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY));
  unbind_buffer();
  return data;
}

float* VolumeUpload::map_fresh() {
  respecify(buffers_[current_]);
  return map();
}

void VolumeUpload::unmap() {
  if (!buffers_[current_]) return;  // unmapped with its context
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[current_].get());
  glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
  unbind_buffer();
}

bool VolumeUpload::upload() {
  const VolumeExtent& extent = volume_.extent();
  gl::reset_pixel_unpack();
  const auto binding = volume_.bind();
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[current_].get());
  const bool intact = glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER) == GL_TRUE;
  if (intact) {
    glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, static_cast<GLsizei>(extent.depth),
                    static_cast<GLsizei>(extent.a_scans), static_cast<GLsizei>(extent.b_scans), GL_RED,
                    GL_FLOAT, nullptr);
    volume_.all_changed();
  }
  unbind_buffer();
  current_ = (current_ + 1) % buffers_.size();
  return intact;
}

void VolumeUpload::upload_secondary(const VolumeHandOver::Secondary& secondary) {
  if (secondary.values.empty() || !secondary_) return;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_3D, secondary_.get());
  gl::reset_pixel_unpack();
  glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(format), secondary.width,
               static_cast<GLsizei>(volume_.extent().a_scans), static_cast<GLsizei>(volume_.extent().b_scans),
               0, GL_RED, GL_FLOAT, secondary.values.data());
}

}  // namespace oct
