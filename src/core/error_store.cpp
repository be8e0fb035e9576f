#include "core/error_store.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "core/exception.h"
#include "core/immortal.h"
#include "core/platform.h"

namespace oct {
namespace {

constexpr std::size_t reserved_length = 255;  // of the text of the reserved record

// Of the calling thread. There is one store but in tests.
thread_local ErrorKind kind_taken_last = ErrorKind::none;

ErrorStore& store = immortal<ErrorStore>(static_cast<bool>(__builtin_cpu_supports("sse4.2")));

}  // namespace

ErrorStore& error_store() {
  return store;
}

ErrorStore::ErrorStore(bool processor_has_sse42) {
  Records made;
  made[0].message.reserve(reserved_length);
  keep_in_reserve(made.extract(made.begin()));
  if (!processor_has_sse42) {
    postError(SystemError("Processor with SSE 4.2 required for proper operation."), true);
  }
}

void ErrorStore::close() noexcept {
  const std::unique_lock lock(mutex_, std::try_to_lock);
  if (!lock) return;
  records_.clear();
  reserve_ = {};
}

void ErrorStore::postError(const std::exception& error, bool sticky) noexcept {
  const std::uint32_t thread = current_thread_id();
  const std::lock_guard lock(mutex_);
  if (records_.contains(thread)) return;
  try {
    records_.try_emplace(thread, ErrorRecord{sticky, kind_of(error), error.what()});
  } catch (const std::bad_alloc&) {
    post_in_reserve(thread, error);
  }
}

void ErrorStore::post_in_reserve(std::uint32_t thread, const std::exception& error) noexcept {
  if (!reserve_) return;  // taken by another thread, whose error is pending
  reserve_.key() = thread;
  const char* const message = error.what();
  reserve_.mapped().kind = kind_of(error);
  reserve_.mapped().message.assign(message, std::min(std::strlen(message), reserved_length));
  records_.insert(std::move(reserve_));
}

// Only a text with room serves; others are freed with the node.
void ErrorStore::keep_in_reserve(Records::node_type record) noexcept {
  if (!reserve_ && record.mapped().message.capacity() >= reserved_length) reserve_ = std::move(record);
}

bool ErrorStore::hasError() const {
  const std::lock_guard lock(mutex_);
  return !records_.empty();
}

ErrorKind ErrorStore::kind() const {
  const std::lock_guard lock(mutex_);
  const auto record = records_.find(current_thread_id());
  return record == records_.end() ? kind_taken_last : record->second.kind;
}

std::optional<std::string> ErrorStore::takeError() {
  const std::lock_guard lock(mutex_);
  auto record = records_.find(current_thread_id());
  if (record == records_.end()) {
    if (records_.empty()) return std::nullopt;
    record = records_.begin();
  }
  return take(record);
}

std::optional<std::string> ErrorStore::take_own_error() {
  const std::lock_guard lock(mutex_);
  const auto record = records_.find(current_thread_id());
  if (record == records_.end()) return std::nullopt;
  return take(record);
}

std::string ErrorStore::take(Records::iterator record) {
  kind_taken_last = record->second.kind;
  if (record->second.sticky) return record->second.message;
  // The record in reserve comes back with its room for the next text.
  std::string message = reserve_ ? std::move(record->second.message) : std::string(record->second.message);
  keep_in_reserve(records_.extract(record));
  return message;
}

}  // namespace oct
