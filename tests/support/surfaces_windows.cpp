#include "support/surfaces.h"

#include <cstring>

#include <d3d9.h>

#include "hosting/surfaces/dx9_device_windows.h"
#include "support/dx_interop_stand_in.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

std::unique_ptr<DxInteropStandIn> installed;

}  // namespace

DxInteropStandIn& installed_stand_in() {
  if (!installed) {
    const TestContext loads_opengl;  // loading would put back the driver's own entry points
    installed = std::make_unique<DxInteropStandIn>();
  }
  return *installed;
}

std::vector<SurfaceSharing> surface_sharings() {
  return {SurfaceSharing::direct3d, SurfaceSharing::host_memory};
}

void choose_sharing(SurfaceSharing kind) {
  if (kind == SurfaceSharing::direct3d) installed_stand_in();
  set_surface_sharing(static_cast<int>(kind));
}

std::shared_ptr<void> keep_direct3d(SurfaceSharing kind) {
  if (kind != SurfaceSharing::direct3d) return nullptr;
  return DX9Device::acquire();
}

int held_references(SurfaceSharing kind) {
  if (kind != SurfaceSharing::direct3d) return 0;
  const auto device = DX9Device::acquire();
  device->get()->AddRef();
  return static_cast<int>(device->get()->Release()) + installed_stand_in().registered_objects() +
         installed_stand_in().open_devices();
}

std::vector<std::string> sharing_faults() {
  return installed ? installed->take_faults() : std::vector<std::string>();
}

Picture surface_picture(SurfaceSharing kind, void* handle) {
  return kind == SurfaceSharing::direct3d ? direct3d_surface_picture(handle) : host_surface_picture(handle);
}

// By Direct3D alone. The format has no alpha; it counts as opaque.
Picture direct3d_surface_picture(void* handle) {
  auto* const surface = static_cast<IDirect3DSurface9*>(handle);
  D3DSURFACE_DESC description{};
  surface->GetDesc(&description);
  IDirect3DDevice9* device = nullptr;
  surface->GetDevice(&device);
  const ComOwner<IDirect3DDevice9> device_owner(device);
  IDirect3DSurface9* memory = nullptr;
  device->CreateOffscreenPlainSurface(description.Width, description.Height, description.Format,
                                      D3DPOOL_SYSTEMMEM, &memory, nullptr);
  const ComOwner<IDirect3DSurface9> memory_owner(memory);
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
