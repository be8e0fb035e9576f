// The setters of the volume renderer.
#include <stdexcept>

#include "core/object_lock.h"
#include "volume/volume_renderer.h"

namespace oct {

glm::vec4 unpackedColor(std::uint32_t color) {
  const auto channel = [color](unsigned shift) {
    return static_cast<float>((color >> shift) & 0xFFU) / 255.0F;
  };
  return {channel(24), channel(16), channel(8), 1.0F};
}

void VolumeRenderer::setAngles(double x, double y) {
  const ObjectLock lock(this);
  settings_.view.angleX = static_cast<float>(wrappedAngle(x));
  settings_.view.angleY = static_cast<float>(wrappedAngle(y));
}

void VolumeRenderer::setTranslation(double x, double y, double z) {
  const ObjectLock lock(this);
  settings_.view.translation = glm::vec3(glm::dvec3(x, y, z));
}

void VolumeRenderer::setRange(double axial, double lateral1, double lateral2) {
  const ObjectLock lock(this);
  settings_.range = rangeOf(axial, lateral1, lateral2);
}

void VolumeRenderer::setZoom(double zoom) {
  const ObjectLock lock(this);
  settings_.view.zoom = zoom;
}

void VolumeRenderer::setUsePerspective(bool perspective) {
  const ObjectLock lock(this);
  settings_.view.perspective = perspective;
}

void VolumeRenderer::setRenderingSlices(int slices) {
  if (slices < 0) throw std::invalid_argument("The number of rendering slices must not be negative. ");
  const ObjectLock lock(this);
  settings_.slices = slices;
}

void VolumeRenderer::setRenderingMode(int mode) {
  if (mode < 0 || mode > 1) throw std::invalid_argument("Invalid rendering mode selected.");
  const ObjectLock lock(this);
  settings_.renderingMode = static_cast<RenderingMode>(mode);
}

void VolumeRenderer::setVolumeMode(int mode) {
  if (mode < 0 || mode > 3) throw std::invalid_argument("Invalid rendering mode selected.");
  const ObjectLock lock(this);
  settings_.volumeMode = static_cast<VolumeMode>(mode);
}

void VolumeRenderer::setRenderElements(bool volume, bool surface) {
  const ObjectLock lock(this);
  settings_.renderVolume = volume;
  settings_.renderSurface = surface;
}

void VolumeRenderer::setSectionalView(const std::array<Section, 3>& sections) {
  const ObjectLock lock(this);
  elements_.sectionalView.set(sections);
}

void VolumeRenderer::setClipPlane(bool enable, bool open_cut, float value) {
  const ObjectLock lock(this);
  clipPlane_.set(enable, open_cut, value);
}

void VolumeRenderer::fixClipPlane(bool fix) {
  const ObjectLock lock(this);
  clipPlane_.setFixed(fix);
}

void VolumeRenderer::setFrame(const FrameFlags& flags) {
  const ObjectLock lock(this);
  settings_.frame = flags;
}

void VolumeRenderer::setRemoveSegment(bool remove) {
  const ObjectLock lock(this);
  settings_.removeSegment = remove;
}

void VolumeRenderer::setBackground(std::uint32_t bottom, std::uint32_t top) {
  const ObjectLock lock(this);
  settings_.backgroundBottom = unpackedColor(bottom);
  settings_.backgroundTop = unpackedColor(top);
}

void VolumeRenderer::setForeground(std::uint32_t color) {
  const ObjectLock lock(this);
  settings_.foreground = unpackedColor(color);
}

void VolumeRenderer::setColormap(ColormapRole role, const void* colors, int count) {
  Colormap colormap = copyColormap(colors, count);
  const ObjectLock lock(this);
  if (VolumeColormap* const object = colormaps_.find(role)) object->setColors(std::move(colormap));
}

void VolumeRenderer::setColoringBoundaries(ColormapRole role, double lower, double upper) {
  const ObjectLock lock(this);
  if (VolumeColormap* const object = colormaps_.find(role)) object->setBoundaries(lower, upper);
}

void VolumeRenderer::setSecondarySliceIndex(int index) {
  const ObjectLock lock(this);
  settings_.secondarySliceIndex = index;
}

void VolumeRenderer::setSurface(int width, int height, double scale, const float* values) {
  const ObjectLock lock(this);
  surface_.set(width, height, scale, values);
}

void VolumeRenderer::setSurfaceDepths(double lower, double upper) {
  const ObjectLock lock(this);
  setColoringBoundaries(ColormapRole::surface, surface_.onMeshScale(lower), surface_.onMeshScale(upper));
}

VolumeSource VolumeRenderer::source() const {
  const ObjectLock lock(this);
  return source_;
}

void VolumeRenderer::setSource(const VolumeSource& source) {
  const ObjectLock lock(this);
  source_ = source;
}

void VolumeRenderer::clear() {
  const ObjectLock lock(this);
  source_.volume = 0;
  source_.sliceCount = 0;
  ++source_.revision;  // counted on, never back: a number that came before would stand for other voxels
  settings_.renderVolume = false;
  settings_.renderSurface = false;
}

VolumeSettings VolumeRenderer::settings() const {
  const ObjectLock lock(this);
  return settings_;
}

}  // namespace oct
