#include "hosting/surfaces/direct3d_sharing.h"

#include <stdexcept>
#include <string>

#include "core/exception.h"
#include "core/log.h"
#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"
#include "hosting/surfaces/graphics_device.h"

namespace oct {
namespace {

class DX9BufferSource : public AbstractBufferSource {
 public:
  explicit DX9BufferSource(std::unique_ptr<InteropDevice> interop) : interop_(std::move(interop)) {}

  std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index, gl::PixelFormat /*format*/) override {
    return std::make_unique<DX9SharedBufferObject>(interop_->device(), interop_.get(), index);
  }

  bool device_removed() const override { return !interop_->device().is_usable(); }

 private:
  const std::unique_ptr<InteropDevice> interop_;
};

// Keeps the device alive as long as the surface.
class DX9ClientSurface : public AbstractClientSurface {
 public:
  DX9ClientSurface(std::shared_ptr<DX9Device> device, std::uint32_t width, std::uint32_t height)
      : device_(std::move(device)),
        texture_(device_->create_texture(width, height)),
        surface_(surface_of(*texture_.texture)) {}

  void* pointer() override { return surface_.get(); }

 private:
  const std::shared_ptr<DX9Device> device_;
  const DX9Texture texture_;
  const ComOwner<IDirect3DSurface9> surface_;
};

std::unique_ptr<AbstractBufferSource> open_direct3d_source() {
  try {
    require_interop();  // without it a Direct3D device is of no use
    auto interop = InteropDevice::open(DX9Device::acquire(opengl_adapter()));
    if (interop) return std::make_unique<DX9BufferSource>(std::move(interop));
  } catch (const std::exception& error) {
    log() << error.what();  // once per attempt; the control says that it gave up
  }
  return nullptr;
}

// No device is made here: without one there are no loops whose frames could be copied.
std::shared_ptr<DX9Device> device_of_frames() {
  auto device = DX9Device::newest();
  if (!device) throw OpenGLError(direct3d_not_supported);
  if (!device->is_usable()) throw OpenGLError(graphics_device_removed);
  return device;
}

std::unique_ptr<AbstractClientSurface> create_direct3d_surface(std::uint32_t width, std::uint32_t height) {
  return std::make_unique<DX9ClientSurface>(device_of_frames(), width, height);
}

[[noreturn]] void copy_failed(HRESULT result) {
  const bool memory = result == E_OUTOFMEMORY || result == D3DERR_OUTOFVIDEOMEMORY;
  throw Exception(memory ? ErrorKind::memory : ErrorKind::opengl,
                  "Could not copy the surface: " + direct3d_answer(result));
}

ComOwner<IDirect3DDevice9> device_of(IDirect3DSurface9& surface) {
  IDirect3DDevice9* device = nullptr;
  const HRESULT result = surface.GetDevice(&device);
  if (FAILED(result)) copy_failed(result);
  return ComOwner<IDirect3DDevice9>(device);
}

// By the device that made both. A surface may be older than the device that the library uses now.
void copy_direct3d_surface(void* from_surface, void* to_surface) {
  auto& source = *static_cast<IDirect3DSurface9*>(from_surface);
  auto& destination = *static_cast<IDirect3DSurface9*>(to_surface);
  const auto device = device_of(source);
  if (device != device_of(destination)) {
    throw std::invalid_argument("Could not copy the surface: the two belong to different Direct3D devices. ");
  }
  const HRESULT result = device->StretchRect(&source, nullptr, &destination, nullptr, D3DTEXF_NONE);
  if (FAILED(result)) copy_failed(result);
}

}  // namespace

constexpr SurfaceKind direct3d9_surfaces{SurfaceSharing::direct3d, true, open_direct3d_source,
                                         create_direct3d_surface, copy_direct3d_surface};

}  // namespace oct
