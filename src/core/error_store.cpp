#include "core/error_store.h"

#include <stdexcept>

#include "core/platform.h"

namespace oct {
namespace {

ErrorStore store(__builtin_cpu_supports("sse4.2"));

}  // namespace

ErrorStore& error_store() {
  return store;
}

ErrorStore::ErrorStore(bool processor_has_sse42) {
  if (!processor_has_sse42) {
    postError(std::runtime_error("Processor with SSE 4.2 required for proper operation."), true);
  }
}

void ErrorStore::postError(const std::exception& error, bool sticky) noexcept {
  try {
    const std::lock_guard lock(mutex_);
    records_.try_emplace(current_thread_id(), ErrorRecord{sticky, error.what()});
  } catch (const std::exception&) {
    // Out of memory while reporting: the line on the standard error stream has to do.
  }
}

bool ErrorStore::hasError() const {
  const std::lock_guard lock(mutex_);
  return !records_.empty();
}

std::optional<std::string> ErrorStore::takeError() {
  const std::lock_guard lock(mutex_);
  auto record = records_.find(current_thread_id());
  if (record == records_.end()) {
    if (records_.empty()) return std::nullopt;
    record = records_.begin();
  }
  std::string message = record->second.message;
  if (!record->second.sticky) records_.erase(record);
  return message;
}

}  // namespace oct
