// The Direct3D 9Ex device of the process.
#pragma once

#include <cstdint>
#include <memory>

#include <d3d9.h>

namespace oct {

namespace gl {
class HiddenWindow;
}
class OpenGLHost;

struct ComRelease {
  void operator()(IUnknown* object) const { object->Release(); }
};

template <class Interface>
using ComOwner = std::unique_ptr<Interface, ComRelease>;

// A render target texture with a share handle.
struct DX9Texture {
  ComOwner<IDirect3DTexture9> texture;
  HANDLE share_handle = nullptr;
};

// The texture's surface. Throws "Could not get surface level of shared texture. ".
ComOwner<IDirect3DSurface9> surface_of(IDirect3DTexture9& texture);

// Name of a result code of texture creation.
const char* dx9_result_name(HRESULT result);

class DX9Device {
 public:
  // The one device, made by the first user and freed with the last. Throws
  // "An error occured creating the Direct 3D device. ".
  static std::shared_ptr<DX9Device> acquire();

  ~DX9Device();
  DX9Device(const DX9Device&) = delete;
  DX9Device& operator=(const DX9Device&) = delete;

  IDirect3DDevice9Ex* get() const { return device_.get(); }

  // A texture of the format that is shared with OpenGL. Logs the result code and throws
  // "Could not generate render target. ".
  DX9Texture create_texture(std::uint32_t width, std::uint32_t height) const;

 private:
  DX9Device();
  void open();
  void close();

  const std::shared_ptr<OpenGLHost> host_;
  std::unique_ptr<gl::HiddenWindow> window_;  // on the host's thread, as what follows
  ComOwner<IDirect3D9Ex> direct3d_;
  ComOwner<IDirect3DDevice9Ex> device_;
};

}  // namespace oct
