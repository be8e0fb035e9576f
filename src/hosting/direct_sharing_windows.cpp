#include "hosting/direct_sharing.h"

#include <map>
#include <mutex>
#include <stdexcept>

#include "hosting/dx9_shared_buffer_object.h"

namespace oct {
namespace {

class DX9Sharing : public DirectSharing {
 public:
  explicit DX9Sharing(std::unique_ptr<InteropDevice> interop) : interop_(std::move(interop)) {}

  std::unique_ptr<AbstractBuffer> createBuffer(std::int32_t index) override {
    return std::make_unique<DX9SharedBufferObject>(*interop_, index);
  }

 private:
  const std::unique_ptr<InteropDevice> interop_;
};

struct ClientSurface {
  std::shared_ptr<DX9Device> device;
  DX9Texture texture;
  ComOwner<IDirect3DSurface9> surface;
};

struct SurfaceTable {
  std::mutex mutex;
  std::map<void*, ClientSurface> surfaces;
};

// Never destroyed: surfaces that a client forgot must not be released while the library is being unloaded.
SurfaceTable& surfaceTable() {
  static SurfaceTable& table = *new SurfaceTable;
  return table;
}

}  // namespace

bool directSharingExists() { return true; }

std::unique_ptr<DirectSharing> openDirectSharing() {
  auto interop = InteropDevice::open(DX9Device::acquire());
  return interop ? std::make_unique<DX9Sharing>(std::move(interop)) : nullptr;
}

void* createDirectSurface(std::uint32_t width, std::uint32_t height) {
  ClientSurface client;
  client.device = DX9Device::acquire();
  client.texture = client.device->createTexture(width, height);
  IDirect3DSurface9* surface = nullptr;
  if (FAILED(client.texture.texture->GetSurfaceLevel(0, &surface))) {
    throw std::runtime_error("Could not get surface level of shared texture. ");
  }
  client.surface.reset(surface);
  const std::lock_guard lock(surfaceTable().mutex);
  surfaceTable().surfaces.emplace(surface, std::move(client));
  return surface;
}

void copyDirectSurface(void* source, void* destination) {
  const HRESULT result =
      DX9Device::acquire()->get()->StretchRect(static_cast<IDirect3DSurface9*>(source), nullptr,
                                               static_cast<IDirect3DSurface9*>(destination), nullptr, D3DTEXF_NONE);
  if (FAILED(result)) throw std::runtime_error(std::string("Could not copy the surface: ") + dx9ResultName(result));
}

bool ownsDirectSurface(void* surface) {
  const std::lock_guard lock(surfaceTable().mutex);
  return surfaceTable().surfaces.contains(surface);
}

void destroyDirectSurface(void* surface) {
  const std::lock_guard lock(surfaceTable().mutex);
  if (surfaceTable().surfaces.erase(surface) == 0) {
    throw std::invalid_argument("The surface was not created by createDXSurface. ");
  }
}

}  // namespace oct
