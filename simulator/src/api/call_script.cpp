#include "api/call_script.h"

#include <stdexcept>

namespace oct::simulator {
namespace {

void check(int call) {
  if (call < 0) throw std::invalid_argument("A call number must not be negative. ");
}

// Counts the call; returns the first entry that it concerns, or null.
template <class Entries>
auto* due_of(Entries& entries, const char* function) {
  const auto [begin, end] = entries.equal_range(function);
  typename Entries::mapped_type* due = nullptr;
  for (auto entry = begin; entry != end; ++entry) {
    ++entry->second.seen;
    if (!due && (entry->second.call == 0 || entry->second.call == entry->second.seen)) due = &entry->second;
  }
  return due;
}

}  // namespace

void CallScript::fail(const std::string& function, int call, const std::string& message) {
  check(call);
  const std::lock_guard lock(mutex_);
  failures_.emplace(function, Entry{.call = call, .message = message});
}

void CallScript::delay(const std::string& function, int call,
                       std::optional<std::chrono::milliseconds> delay) {
  check(call);
  const std::lock_guard lock(mutex_);
  delays_.emplace(function, Delay{{.call = call, .message = {}}, delay});
}

void CallScript::clear_failures() {
  const std::lock_guard lock(mutex_);
  failures_.clear();
}

void CallScript::release() {
  const std::lock_guard lock(mutex_);
  delays_.clear();
  ++releases_;
  released_.notify_all();
}

int CallScript::waiting() const {
  const std::lock_guard lock(mutex_);
  return waiting_;
}

void CallScript::on_call(const char* function) {
  std::unique_lock lock(mutex_);
  if (failures_.empty() && delays_.empty()) return;
  const auto* const failure = due_of(failures_, function);
  const auto message = failure ? std::optional(failure->message) : std::nullopt;
  if (const auto* const delay = due_of(delays_, function)) {
    const auto is_released = [this, seen = releases_] { return releases_ != seen; };
    ++waiting_;
    // Copied, because a release takes the entry away.
    if (const auto time = delay->time)
      released_.wait_for(lock, *time, is_released);
    else
      released_.wait(lock, is_released);
    --waiting_;
  }
  if (message) throw std::runtime_error(*message);
}

}  // namespace oct::simulator
