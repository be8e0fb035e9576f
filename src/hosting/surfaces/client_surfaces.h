// The surfaces that clients may hand to the library, process-wide: those that they made through it, and the
// frames that their image-ready functions are looking at.
#pragma once

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class ClientSurfaces {
 public:
  void* create(const SurfaceType& type, std::uint32_t width, std::uint32_t height);

  // False for a pointer that create did not return or that was destroyed before. Waits for copies of the surface
  // that other threads are making.
  bool destroy(void* surface);

  // The whole source, stretched over the whole destination without a filter. Throws std::invalid_argument for
  // what is no surface of the kind.
  void copy(const SurfaceType& type, void* source, void* destination);

  // Makes a frame's surface known while it lives; its end waits for copies, as destroy does.
  class Loan {
   public:
    Loan(ClientSurfaces& surfaces, const SurfaceType& type, void* surface);
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

   private:
    ClientSurfaces& surfaces_;
    void* const surface_;
  };

 private:
  struct Known {
    SurfaceType type;
    std::unique_ptr<AbstractClientSurface> owner;  // null for a frame's
    int copies = 0;                                // that are being made from or to it
  };
  class Copy;
  using Table = std::map<void*, Known>;

  void forget(Table::iterator entry, std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable copied_;
  Table surfaces_;
};

ClientSurfaces& client_surfaces();

}  // namespace oct
