#include "hosting/surfaces/dx9_device_windows.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <vector>

#include "core/exception.h"
#include "core/immortal.h"
#include "core/log.h"
#include "gl/context/hidden_window_windows.h"
#include "hosting/host/opengl_host.h"
#include "hosting/surfaces/hand_off_buffer.h"

namespace oct {
namespace {

template <class Interface, class Create>
ComOwner<Interface> created(Create&& create) {
  Interface* object = nullptr;
  if (FAILED(create(&object)) || !object)
    throw OpenGLError("An error occured creating the Direct 3D device. ");
  return ComOwner<Interface>(object);
}

// In the order in which they were made. Never destroyed: threads may still ask when the process ends.
struct Devices {
  std::mutex mutex;
  std::vector<std::weak_ptr<DX9Device>> made;
};

Devices& devices() {
  return immortal<Devices>();
}

std::string hexadecimal(std::uint64_t value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(value));
  return text;
}

std::optional<AdapterLuid> luid_of(IDirect3D9Ex& direct3d, UINT adapter) {
  LUID luid{};
  if (FAILED(direct3d.GetAdapterLUID(adapter, &luid))) return {};
  AdapterLuid result = 0;
  static_assert(sizeof result == sizeof luid);
  std::memcpy(&result, &luid, sizeof luid);
  return result;
}

void log_adapter(IDirect3D9Ex& direct3d, UINT adapter, std::optional<AdapterLuid> luid) {
  D3DADAPTER_IDENTIFIER9 identifier{};
  direct3d.GetAdapterIdentifier(adapter, 0, &identifier);
  log() << "Direct3D adapter " << adapter << ": " << identifier.Description << ", driver "
        << identifier.Driver << ", identifier " << (luid ? hexadecimal(*luid) : "unknown");
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

std::string direct3d_answer(HRESULT result) {
  const auto name = [&] {
    switch (result) {
      case D3DERR_DEVICEREMOVED:
        return "D3DERR_DEVICEREMOVED";
      case D3DERR_DEVICEHUNG:
        return "D3DERR_DEVICEHUNG";
      case D3DERR_DEVICELOST:
        return "D3DERR_DEVICELOST";
      case D3DERR_NOTAVAILABLE:
        return "D3DERR_NOTAVAILABLE";
      case S_PRESENT_OCCLUDED:
        return "S_PRESENT_OCCLUDED";
      case S_PRESENT_MODE_CHANGED:
        return "S_PRESENT_MODE_CHANGED";
      default:
        return dx9_result_name(result);
    }
  };
  return std::string(name()) + " (" + hexadecimal(static_cast<std::uint32_t>(result)) + ")";
}

ComOwner<IDirect3DSurface9> surface_of(IDirect3DTexture9& texture) {
  IDirect3DSurface9* surface = nullptr;
  if (FAILED(texture.GetSurfaceLevel(0, &surface))) {
    throw OpenGLError("Could not get surface level of shared texture. ");
  }
  return ComOwner<IDirect3DSurface9>(surface);
}

std::shared_ptr<DX9Device> DX9Device::acquire(std::optional<AdapterLuid> adapter) {
  const std::lock_guard lock(devices().mutex);
  auto& made = devices().made;
  std::erase_if(made, [](const auto& device) { return device.expired(); });
  // The newest first: an older one is that of a removed device or of another adapter.
  for (auto device = made.rbegin(); device != made.rend(); ++device) {
    auto held = device->lock();
    if (held && held->serves(adapter) && held->is_usable()) return held;
  }
  auto device = std::shared_ptr<DX9Device>(new DX9Device(adapter));
  made.push_back(device);
  return device;
}

std::shared_ptr<DX9Device> DX9Device::newest() {
  const std::lock_guard lock(devices().mutex);
  for (auto device = devices().made.rbegin(); device != devices().made.rend(); ++device) {
    if (auto held = device->lock()) return held;
  }
  return nullptr;
}

// Direct3D wants a device to be made and released by the thread that answers its window's messages.
DX9Device::DX9Device(std::optional<AdapterLuid> adapter) : wanted_(adapter), host_(OpenGLHost::acquire()) {
  try {
    host_->run([this] { open(); });
  } catch (...) {
    close();
    throw;
  }
}

bool DX9Device::serves(std::optional<AdapterLuid> adapter) const {
  return !adapter || adapter == wanted_ || adapter == luid_;
}

bool DX9Device::is_usable() const {
  if (!usable_) return false;
  const HRESULT state = device_->CheckDeviceState(window_->handle());
  if (state != D3DERR_DEVICEREMOVED && state != D3DERR_DEVICEHUNG && state != D3DERR_DEVICELOST) return true;
  if (usable_.exchange(false)) log() << "The Direct3D device is gone: " << direct3d_answer(state);
  return false;
}

// The device's window is never shown, so a failure is no error. It is logged when it is new.
void DX9Device::present() const {
  device_->EndScene();  // outside a scene it fails and is meant to
  const HRESULT result = device_->Present(nullptr, nullptr, nullptr, nullptr);
  if (last_present_.exchange(result) != result && FAILED(result))
    log() << "Present answered " << direct3d_answer(result);
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

UINT DX9Device::find_adapter() const {
  if (!wanted_) return 0;
  const UINT count = direct3d_->GetAdapterCount();
  for (UINT adapter = 0; adapter < count; ++adapter) {
    if (luid_of(*direct3d_, adapter) == wanted_) return adapter;
  }
  log() << "Direct3D does not have OpenGL's adapter, " << hexadecimal(*wanted_) << "; it takes the first. ";
  return 0;
}

void DX9Device::open() {
  window_ = std::make_unique<gl::HiddenWindow>("DirectXWindow");
  direct3d_ =
      created<IDirect3D9Ex>([](IDirect3D9Ex** object) { return Direct3DCreate9Ex(D3D_SDK_VERSION, object); });
  const UINT adapter = find_adapter();
  luid_ = luid_of(*direct3d_, adapter);
  log_adapter(*direct3d_, adapter, luid_);
  D3DPRESENT_PARAMETERS parameters{};
  parameters.Windowed = TRUE;
  parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
  parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
  // Nothing is shown, so nothing waits for a screen.
  parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
  device_ = created<IDirect3DDevice9Ex>([&](IDirect3DDevice9Ex** object) {
    return direct3d_->CreateDeviceEx(
        adapter, D3DDEVTYPE_HAL, window_->handle(),
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
