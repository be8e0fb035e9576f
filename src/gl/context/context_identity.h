// Which OpenGL context is current, by a number that never comes back, and whose it is. Handles do come back: a new
// context often gets that of one that is gone, and contexts of other window systems have none at all.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

namespace oct::gl {

using ContextIdentity = std::uint64_t;
inline constexpr ContextIdentity no_context = 0;

// Of the context that is current on the calling thread; no_context when there is none, and when nothing of the
// library's has ever been made in it. The answer is kept for the thread until it is forgotten.
ContextIdentity current_identity();

// The same, and gives the context an identity if it has none: a client's context gets a vertex array object that
// holds it, and dies with it. Still no_context below OpenGL 3.3 and where OpenGL is not loaded.
ContextIdentity require_identity();

struct Version {
  int major = 0;
  int minor = 0;
  auto operator<=>(const Version&) const = default;
};

struct Driver {
  std::size_t card = 0;  // a number for vendor and renderer; 0: no context is current
  Version version;       // 0.0 for OpenGL ES
};

// Of the context that is current on the calling thread. A context of the library's own is asked once in its life, a
// client's one until its identity is forgotten.
Driver current_driver();

// Call where the thread's context may have been changed by others.
void forget_current_identity();

// Forgets at both ends of an export: in between the context is the library's to change.
class FreshIdentity {
 public:
  FreshIdentity() { forget_current_identity(); }
  ~FreshIdentity() { forget_current_identity(); }
  FreshIdentity(const FreshIdentity&) = delete;
  FreshIdentity& operator=(const FreshIdentity&) = delete;
};

// A context that the library makes is known by its handle from its making to its end, without a mark in it.
ContextIdentity register_context(void* handle);
void unregister_context(ContextIdentity identity);

// False once an own context has ended, or a client's one was found to be gone.
bool is_known(ContextIdentity identity);

// Throws StateError "The renderer was initialised in another OpenGL context. " unless the given context
// is the current one.
void require_home(ContextIdentity home);

}  // namespace oct::gl
