#include "hosting/surfaces/direct3d_sharing.h"

#include <stdexcept>
#include <string>

#include "core/log.h"
#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"

namespace oct {
namespace {

class DX9BufferSource : public AbstractBufferSource {
 public:
  explicit DX9BufferSource(std::unique_ptr<InteropDevice> interop) : interop_(std::move(interop)) {}

  std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index) override {
    return std::make_unique<DX9SharedBufferObject>(interop_->device(), interop_.get(), index);
  }

 private:
  const std::unique_ptr<InteropDevice> interop_;
};

// Keeps the device alive as long as the surface.
class DX9ClientSurface : public AbstractClientSurface {
 public:
  DX9ClientSurface(std::uint32_t width, std::uint32_t height)
      : device_(DX9Device::acquire()),
        texture_(device_->create_texture(width, height)),
        surface_(surface_of(*texture_.texture)) {}

  void* pointer() override { return surface_.get(); }

 private:
  const std::shared_ptr<DX9Device> device_;
  const DX9Texture texture_;
  const ComOwner<IDirect3DSurface9> surface_;
};

}  // namespace

constexpr bool has_direct3d = true;

std::unique_ptr<AbstractBufferSource> open_direct3d_buffer_source() {
  try {
    auto interop = InteropDevice::open(DX9Device::acquire());
    if (interop) return std::make_unique<DX9BufferSource>(std::move(interop));
  } catch (const std::exception& error) {
    log() << error.what();  // once per attempt; the control says that it gave up
  }
  return nullptr;
}

std::unique_ptr<AbstractClientSurface> create_direct3d_surface(std::uint32_t width, std::uint32_t height) {
  return std::make_unique<DX9ClientSurface>(width, height);
}

void copy_direct3d_surface(void* source, void* destination) {
  const HRESULT result = DX9Device::acquire()->get()->StretchRect(
      static_cast<IDirect3DSurface9*>(source), nullptr, static_cast<IDirect3DSurface9*>(destination), nullptr,
      D3DTEXF_NONE);
  if (FAILED(result))
    throw std::runtime_error(std::string("Could not copy the surface: ") + dx9_result_name(result));
}

}  // namespace oct
