// Contexts whose handles say little. One source per platform.
#pragma once

namespace oct::test {

enum class Handles {
  known,   // each context has its own
  same,    // every context has the handle of one that is gone
  hidden,  // the system gives none, as for contexts of another window system
};

extern const bool can_change_context_handles;

// Make contexts current and delete them outside of its life.
class ChangedContextHandles {
 public:
  explicit ChangedContextHandles(Handles handles);
  ~ChangedContextHandles();
  ChangedContextHandles(const ChangedContextHandles&) = delete;
  ChangedContextHandles& operator=(const ChangedContextHandles&) = delete;
};

}  // namespace oct::test
