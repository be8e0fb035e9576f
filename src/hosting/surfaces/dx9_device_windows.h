// The Direct3D 9Ex devices of the process: one for each graphics adapter that OpenGL draws with, most often one.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

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

// What a Direct3D function answered, for the log: its name if there is one, and the number.
std::string direct3d_answer(HRESULT result);

// Tells the adapters of a machine apart, in OpenGL and in Direct3D, until it restarts.
using AdapterLuid = std::uint64_t;

class DX9Device {
 public:
  // The device of the adapter, or of any if none is named; of the first adapter if the named one is not
  // Direct3D's. It is shared by all who hold it, and freed with the last. One that was removed is handed out no
  // more, whoever may still hold it. Throws "An error occured creating the Direct 3D device. ".
  static std::shared_ptr<DX9Device> acquire(std::optional<AdapterLuid> adapter = {});

  // The one that was made last among those that are held; null if there is none. It may have been removed.
  static std::shared_ptr<DX9Device> newest();

  ~DX9Device();
  DX9Device(const DX9Device&) = delete;
  DX9Device& operator=(const DX9Device&) = delete;

  IDirect3DDevice9Ex* get() const { return device_.get(); }

  // False for good once the device was removed, hangs or was lost.
  bool is_usable() const;

  // Hands the driver what is queued.
  void present() const;

  // A texture of the format that is shared with OpenGL. Logs the result code and throws
  // "Could not generate render target. ".
  DX9Texture create_texture(std::uint32_t width, std::uint32_t height) const;

 private:
  explicit DX9Device(std::optional<AdapterLuid> adapter);
  bool serves(std::optional<AdapterLuid> adapter) const;
  UINT find_adapter() const;
  void open();
  void close();

  const std::optional<AdapterLuid> wanted_;
  std::optional<AdapterLuid> luid_;
  mutable std::atomic<bool> usable_{true};
  mutable std::atomic<HRESULT> last_present_{D3D_OK};
  const std::shared_ptr<OpenGLHost> host_;
  std::unique_ptr<gl::HiddenWindow> window_;  // on the host's thread, as what follows
  ComOwner<IDirect3D9Ex> direct3d_;
  ComOwner<IDirect3DDevice9Ex> device_;
};

}  // namespace oct
