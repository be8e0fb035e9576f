// The target of snapshots: it lives in OpenGL alone and is read back into client memory when somebody asks.
#pragma once

#include <cstdint>

#include "gl/render_target.h"
#include "hosting/host/signal_event.h"

namespace oct {

// A request (size and client memory) comes from a client's thread, which waits for it; prepare, finish and
// release run on the thread that owns the context.
class OffscreenBufferObject {
 public:
  void release();  // deletes the OpenGL objects
  void prepare();  // begins a frame of the size set last
  void finish();   // ends it, and reads it back if its size is still the one set last

  void resize(std::uint32_t width, std::uint32_t height);

  // Client memory that a coming finish fills: the first one whose frame was prepared at the size set last.
  void set_output_data(void* data);

  // Blocks until a frame has been finished after set_output_data. False when cancelled.
  bool wait();

  // Forgets the client memory and lets every waiter go: no frame will come.
  void cancel();

 private:
  struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const Size&) const = default;
  };

  void detach();
  void read_back(void* data);

  gl::RenderTarget target_;
  Size size_;        // requested; guarded by done_'s mutex
  Size frame_size_;  // of the frame under way
  SignalEvent done_;
  void* output_data_ = nullptr;  // guarded by done_'s mutex
};

}  // namespace oct
