#include "hosting/surfaces/client_surfaces.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "core/immortal.h"

namespace oct {

// Keeps two surfaces where they are while one is copied to the other, without holding the table's mutex.
class ClientSurfaces::Copy {
 public:
  Copy(ClientSurfaces& surfaces, const SurfaceType& type, void* source, void* destination)
      : surfaces_(surfaces) {
    const std::lock_guard lock(surfaces_.mutex_);
    source_ = &usable(type, source);
    destination_ = &usable(type, destination);
    ++source_->copies;
    ++destination_->copies;
  }
  ~Copy() {
    const std::lock_guard lock(surfaces_.mutex_);
    --source_->copies;
    --destination_->copies;
    surfaces_.copied_.notify_all();
  }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;

 private:
  Known& usable(const SurfaceType& type, void* surface) const {
    const auto entry = surfaces_.surfaces_.find(surface);
    if (entry == surfaces_.surfaces_.end()) throw std::invalid_argument("The specified surface is unknown. ");
    if (entry->second.type == type) return entry->second;
    throw std::invalid_argument("The surface is of another kind than those of the loop. ");
  }

  ClientSurfaces& surfaces_;
  Known* source_ = nullptr;
  Known* destination_ = nullptr;
};

void* ClientSurfaces::create(const SurfaceType& type, std::uint32_t width, std::uint32_t height) {
  if (width == 0 || height == 0) throw std::invalid_argument("A surface must not be empty. ");
  if (width > std::numeric_limits<std::uint32_t>::max() / 4 / height) {
    throw std::invalid_argument("The surface is too large. ");
  }
  auto surface = surface_kind(type.sharing).create_surface(width, height);
  void* const pointer = surface->pointer();
  const std::lock_guard lock(mutex_);
  surfaces_.emplace(pointer, Known{type, std::move(surface)});
  return pointer;
}

bool ClientSurfaces::destroy(void* surface) {
  std::unique_ptr<AbstractClientSurface> removed;  // dies after the lock
  std::unique_lock lock(mutex_);
  const auto entry = surfaces_.find(surface);
  if (entry == surfaces_.end() || !entry->second.owner) return false;
  removed = std::move(entry->second.owner);
  forget(entry, lock);
  return true;
}

void ClientSurfaces::copy(const SurfaceType& type, void* source, void* destination) {
  if (!source || !destination) throw std::invalid_argument("A surface to copy must not be null. ");
  const Copy copy(*this, type, source, destination);
  if (source != destination) surface_kind(type.sharing).copy(source, destination);
}

// Nobody finds the entry any more; those that use it have found it before.
void ClientSurfaces::forget(Table::iterator entry, std::unique_lock<std::mutex>& lock) {
  const auto forgotten = surfaces_.extract(entry);
  copied_.wait(lock, [&] { return forgotten.mapped().copies == 0; });
}

ClientSurfaces::Loan::Loan(ClientSurfaces& surfaces, const SurfaceType& type, void* surface)
    : surfaces_(surfaces), surface_(surface) {
  const std::lock_guard lock(surfaces_.mutex_);
  surfaces_.surfaces_.emplace(surface, Known{type, nullptr});
}

ClientSurfaces::Loan::~Loan() {
  std::unique_lock lock(surfaces_.mutex_);
  surfaces_.forget(surfaces_.surfaces_.find(surface_), lock);
}

// Surfaces that a client forgot are not released while the library is being unloaded.
ClientSurfaces& client_surfaces() {
  return immortal<ClientSurfaces>();
}

}  // namespace oct
