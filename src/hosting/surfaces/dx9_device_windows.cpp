#include "hosting/surfaces/dx9_device_windows.h"

#include <mutex>
#include <stdexcept>

#include "gl/context/hidden_window_windows.h"
#include "hosting/host/opengl_host.h"
#include "hosting/surfaces/hand_off_buffer.h"

namespace oct {
namespace {

template <class Interface, class Create>
ComOwner<Interface> created(Create&& create) {
  Interface* object = nullptr;
  if (FAILED(create(&object)) || !object)
    throw std::runtime_error("An error occured creating the Direct 3D device. ");
  return ComOwner<Interface>(object);
}

}  // namespace

const char* dx9_result_name(HRESULT result) {
  switch (static_cast<std::uint32_t>(result)) {
    case 0:
      return "D3D_OK";
    case 0x8876086CU:
      return "D3DERR_INVALIDCALL";
    case 0x8876017CU:
      return "D3DERR_OUTOFVIDEOMEMORY";
    case 0x8007000EU:
      return "E_OUTOFMEMORY";
    default:
      return "Unknown Error Code";
  }
}

ComOwner<IDirect3DSurface9> surface_of(IDirect3DTexture9& texture) {
  IDirect3DSurface9* surface = nullptr;
  if (FAILED(texture.GetSurfaceLevel(0, &surface))) {
    throw std::runtime_error("Could not get surface level of shared texture. ");
  }
  return ComOwner<IDirect3DSurface9>(surface);
}

std::shared_ptr<DX9Device> DX9Device::acquire() {
  static std::mutex mutex;
  static std::weak_ptr<DX9Device> current;
  const std::lock_guard lock(mutex);
  std::shared_ptr<DX9Device> device = current.lock();
  if (!device) {
    device = std::shared_ptr<DX9Device>(new DX9Device);
    current = device;
  }
  return device;
}

// Direct3D wants a device to be made and released by the thread that answers its window's messages.
DX9Device::DX9Device() : host_(OpenGLHost::acquire()) {
  try {
    host_->run([this] { open(); });
  } catch (...) {
    close();
    throw;
  }
}

DX9Device::~DX9Device() {
  close();
}

void DX9Device::close() {
  host_->run([this] {
    device_.reset();
    direct3d_.reset();
    window_.reset();
  });
}

void DX9Device::open() {
  window_ = std::make_unique<gl::HiddenWindow>("DirectXWindow");
  direct3d_ =
      created<IDirect3D9Ex>([](IDirect3D9Ex** object) { return Direct3DCreate9Ex(D3D_SDK_VERSION, object); });
  D3DPRESENT_PARAMETERS parameters{};
  parameters.Windowed = TRUE;
  parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
  parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
  // Nothing is shown, so nothing waits for a screen.
  parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  device_ = created<IDirect3DDevice9Ex>([&](IDirect3DDevice9Ex** object) {
    return direct3d_->CreateDeviceEx(
        0, D3DDEVTYPE_HAL, window_->handle(),
        D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_MULTITHREADED | D3DCREATE_FPU_PRESERVE, &parameters,
        nullptr, object);
  });
  // The device draws nothing itself. Some implementations refuse to be without a
  // target; then it keeps its own.
  device_->SetRenderTarget(0, nullptr);
}

DX9Texture DX9Device::create_texture(std::uint32_t width, std::uint32_t height) const {
  DX9Texture result;
  IDirect3DTexture9* texture = nullptr;
  const HRESULT created = device_->CreateTexture(width, height, 1, D3DUSAGE_RENDERTARGET, D3DFMT_X8R8G8B8,
                                                 D3DPOOL_DEFAULT, &texture, &result.share_handle);
  if (FAILED(created)) render_target_failed(dx9_result_name(created));
  result.texture.reset(texture);
  return result;
}

}  // namespace oct
