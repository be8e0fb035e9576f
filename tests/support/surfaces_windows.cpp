#include "support/surfaces.h"

#include <d3d9.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "hosting/surfaces/dx9_device_windows.h"
#include "support/com_method_patch_windows.h"
#include "support/dx_interop_stand_in.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

DxInteropStandIn& standIn() {
  static DxInteropStandIn instance;
  return instance;
}

}  // namespace

std::vector<SurfaceSharing> surfaceSharings() {
  return {SurfaceSharing::direct3D, SurfaceSharing::hostMemory};
}

void chooseSharing(SurfaceSharing kind) {
  if (kind == SurfaceSharing::direct3D && !DxInteropStandIn::installed()) {
    const TestContext loadsOpenGL;  // loading would put back the driver's own entry points
    standIn();
  }
  setSurfaceSharing(static_cast<int>(kind));
}

std::shared_ptr<void> keepDirect3D(SurfaceSharing kind) {
  if (kind != SurfaceSharing::direct3D) return nullptr;
  return DX9Device::acquire();
}

std::shared_ptr<void> withoutPresenting(SurfaceSharing kind) {
  if (kind != SurfaceSharing::direct3D) return nullptr;
  using Present = HRESULT(WINAPI*)(IDirect3DDevice9*, const RECT*, const RECT*, HWND, const RGNDATA*);
  struct Silence {
    std::shared_ptr<DX9Device> device = DX9Device::acquire();
    ComMethodPatch<Present> patch{
        device->get(), 17,
        [](IDirect3DDevice9*, const RECT*, const RECT*, HWND, const RGNDATA*) -> HRESULT { return D3D_OK; }};
  };
  return std::make_shared<Silence>();
}

int heldReferences(SurfaceSharing kind) {
  if (kind != SurfaceSharing::direct3D) return 0;
  const auto device = DX9Device::acquire();
  device->get()->AddRef();
  return static_cast<int>(device->get()->Release()) + standIn().registeredObjects() + standIn().openDevices();
}

struct FrameCollector::Tiles {
  static constexpr int capacity = 64;
  const int width;
  const int height;
  const std::shared_ptr<DX9Device> device = DX9Device::acquire();
  const DX9Texture texture =
      device->createTexture(static_cast<UINT>(width), static_cast<UINT>(height* capacity));
  const ComOwner<IDirect3DSurface9> surface = surfaceOf(*texture.texture);
  int used = 0;
};

FrameCollector::FrameCollector(SurfaceSharing kind, int width, int height)
    : tiles_(kind == SurfaceSharing::direct3D ? new Tiles{width, height} : nullptr) {}

FrameCollector::~FrameCollector() = default;

void FrameCollector::add(void* surface) {
  if (!tiles_) return pictures_.push_back(hostSurfacePicture(surface));
  const RECT tile{0, tiles_->used * tiles_->height, tiles_->width, (tiles_->used + 1) * tiles_->height};
  tiles_->device->get()->StretchRect(static_cast<IDirect3DSurface9*>(surface), nullptr, tiles_->surface.get(),
                                     &tile, D3DTEXF_NONE);
  if (++tiles_->used == Tiles::capacity) pictures_ = take();
}

std::vector<Picture> FrameCollector::take() {
  auto result = std::exchange(pictures_, {});
  if (!tiles_ || tiles_->used == 0) return result;
  const Picture all = direct3DSurfacePicture(tiles_->surface.get());
  const auto size = static_cast<std::ptrdiff_t>(tiles_->width) * tiles_->height * 4;
  const int count = std::exchange(tiles_->used, 0);
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    Picture picture(tiles_->width, tiles_->height);
    std::copy_n(all.bytes.begin() + i * size, size, picture.bytes.begin());
    result.push_back(std::move(picture));
  }
  return result;
}

Picture surfacePicture(SurfaceSharing kind, void* handle) {
  return kind == SurfaceSharing::direct3D ? direct3DSurfacePicture(handle) : hostSurfacePicture(handle);
}

// By Direct3D alone. The format has no alpha; it counts as opaque.
Picture direct3DSurfacePicture(void* handle) {
  auto* const surface = static_cast<IDirect3DSurface9*>(handle);
  D3DSURFACE_DESC description{};
  surface->GetDesc(&description);
  IDirect3DDevice9* device = nullptr;
  surface->GetDevice(&device);
  const ComOwner<IDirect3DDevice9> deviceOwner(device);
  IDirect3DSurface9* memory = nullptr;
  device->CreateOffscreenPlainSurface(description.Width, description.Height, description.Format,
                                      D3DPOOL_SYSTEMMEM, &memory, nullptr);
  const ComOwner<IDirect3DSurface9> memoryOwner(memory);
  EXPECT_TRUE(SUCCEEDED(device->GetRenderTargetData(surface, memory)));
  Picture picture(static_cast<int>(description.Width), static_cast<int>(description.Height));
  D3DLOCKED_RECT rectangle{};
  EXPECT_TRUE(SUCCEEDED(memory->LockRect(&rectangle, nullptr, D3DLOCK_READONLY)));
  for (int y = 0; y < picture.height; ++y) {
    std::memcpy(picture.pixel(0, y), static_cast<const char*>(rectangle.pBits) + rectangle.Pitch * y,
                static_cast<std::size_t>(picture.width) * 4);
    for (int x = 0; x < picture.width; ++x) picture.pixel(x, y)[3] = 255;
  }
  memory->UnlockRect();
  return picture;
}

}  // namespace oct::test
