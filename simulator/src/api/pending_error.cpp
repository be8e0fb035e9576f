#include "api/pending_error.h"

#include <cstdio>

namespace oct::simulator {

void PendingError::set(const char* function, const char* message) {
  const std::lock_guard lock(mutex_);
  if (isSet_) return;
  isSet_ = true;
  std::snprintf(text_.data(), text_.size(), "%s: %s", function, message);
}

bool PendingError::isSet() const {
  const std::lock_guard lock(mutex_);
  return isSet_;
}

bool PendingError::take(char* buffer, int size) {
  const std::lock_guard lock(mutex_);
  const bool wasSet = isSet_;
  if (!buffer || size < 1) return wasSet;
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", wasSet ? text_.data() : "");
  isSet_ = false;
  return wasSet;
}

}  // namespace oct::simulator
