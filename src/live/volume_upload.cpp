#include "live/volume_upload.h"

#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"

namespace oct {
namespace {

constexpr GLenum format = GL_R32F;  // as the device delivers: a conversion would cost more than the copy

void unbind_buffer() {
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

}  // namespace

void VolumeUpload::allocate(const VolumeExtent& extent) {
  volume_.allocate(extent, format, "FastOpenGLVolumeRenderer::initialize");
  volume_.label("live volume");
  for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) {
    glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_BORDER);
  }
  for (UploadBuffer& buffer : buffers_) buffer.name.reset(), buffer.read.reset();
  for (UploadBuffer& buffer : buffers_) {
    buffer.name = gl::Buffer::create();
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer.name.get());
    glBufferData(GL_PIXEL_UNPACK_BUFFER, bytes(), nullptr, GL_STREAM_DRAW);
    gl::label(buffer.name, "live volume on its way");
  }
  unbind_buffer();
}

void VolumeUpload::allocate_secondary() {
  if (!secondary_) secondary_ = gl::Texture::create();
  glBindTexture(GL_TEXTURE_3D, secondary_.get());
  gl::label(secondary_, "analog input");
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
  for (UploadBuffer& buffer : buffers_) buffer.name.reset(), buffer.read.reset();
  secondary_.reset();
}

// Empty volumes keep a byte or so: a buffer without any cannot be mapped.
GLsizeiptr VolumeUpload::bytes() const {
  const VolumeExtent& extent = volume_.extent();
  const auto voxels = static_cast<GLsizeiptr>(extent.depth * extent.a_scans * extent.b_scans);
  return (voxels > 0 ? voxels : 1) * static_cast<GLsizeiptr>(sizeof(float));
}

bool VolumeUpload::is_free() const {
  const gl::Fence& read = buffers_[current_].read;
  return !read || read.wait(0) != GL_TIMEOUT_EXPIRED;
}

// What the buffer held is not wanted, so that the driver need not keep it; and with a fence that has passed
// it need not look whether the buffer is in use either.
float* VolumeUpload::map() {
  UploadBuffer& buffer = buffers_[current_];
  GLbitfield access = GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_BUFFER_BIT;
  if (buffer.read && buffer.read.wait(0) == GL_ALREADY_SIGNALED) access |= GL_MAP_UNSYNCHRONIZED_BIT;
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer.name.get());
  auto* const data = static_cast<float*>(glMapBufferRange(GL_PIXEL_UNPACK_BUFFER, 0, bytes(), access));
  unbind_buffer();
  return data;
}

void VolumeUpload::unmap() {
  if (!buffers_[current_].name) return;  // unmapped with its context
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[current_].name.get());
  glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
  unbind_buffer();
}

bool VolumeUpload::take_back() {
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers_[current_].name.get());
  const bool intact = glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER) == GL_TRUE;
  unbind_buffer();
  current_ = other();
  return intact;
}

void VolumeUpload::upload(const char* checkpoint) {
  const gl::PassMark mark("upload live volume");
  const VolumeExtent& extent = volume_.extent();
  gl::reset_pixel_unpack();
  const auto binding = volume_.bind();
  UploadBuffer& buffer = buffers_[other()];
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer.name.get());
  glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, static_cast<GLsizei>(extent.depth),
                  static_cast<GLsizei>(extent.a_scans), static_cast<GLsizei>(extent.b_scans), GL_RED,
                  GL_FLOAT, nullptr);
  buffer.read.insert();
  unbind_buffer();
  gl::throwOnGLError(checkpoint);
  volume_.all_changed();
}

void VolumeUpload::upload_secondary(const std::vector<float>& values, std::int32_t width) {
  if (values.empty() || !secondary_) return;
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_3D, secondary_.get());
  gl::reset_pixel_unpack();
  glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(format), width,
               static_cast<GLsizei>(volume_.extent().a_scans), static_cast<GLsizei>(volume_.extent().b_scans),
               0, GL_RED, GL_FLOAT, values.data());
}

}  // namespace oct
