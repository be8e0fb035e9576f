#include "api/pending_error.h"

#include <cstdio>

namespace oct::simulator {

void PendingError::set(const char* function, const char* message) {
  const std::lock_guard lock(mutex_);
  if (is_set_) return;
  is_set_ = true;
  std::snprintf(text_.data(), text_.size(), "%s: %s", function, message);
}

bool PendingError::is_set() const {
  const std::lock_guard lock(mutex_);
  return is_set_;
}

bool PendingError::take(char* buffer, int size) {
  const std::lock_guard lock(mutex_);
  const bool was_set = is_set_;
  if (!buffer || size < 1) return was_set;
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", was_set ? text_.data() : "");
  is_set_ = false;
  return was_set;
}

}  // namespace oct::simulator
