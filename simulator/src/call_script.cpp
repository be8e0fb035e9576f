#include "call_script.h"

#include <stdexcept>
#include <utility>

namespace oct::simulator {

void FailureScript::add(const std::string& function, int call, const std::string& message) {
  if (call < 0) throw std::invalid_argument("A call number must not be negative. ");
  const std::lock_guard lock(mutex_);
  failures_.emplace(function, Failure{call, 0, message});
}

void FailureScript::clear() {
  const std::lock_guard lock(mutex_);
  failures_.clear();
}

void FailureScript::onCall(const char* function) {
  const std::lock_guard lock(mutex_);
  if (failures_.empty()) return;
  const auto [begin, end] = failures_.equal_range(function);
  const Failure* due = nullptr;
  for (auto failure = begin; failure != end; ++failure) {
    ++failure->second.seen;
    if (!due && (failure->second.call == 0 || failure->second.call == failure->second.seen))
      due = &failure->second;
  }
  if (due) throw std::runtime_error(due->message);
}

void CallRecord::enable(bool enabled) {
  const std::lock_guard lock(mutex_);
  if (enabled) calls_.clear();
  enabled_ = enabled;
}

void CallRecord::add(std::string text) {
  const std::lock_guard lock(mutex_);
  if (enabled_) calls_.push_back(std::move(text));
}

int CallRecord::count() const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(calls_.size());
}

std::string CallRecord::at(int index) const {
  const std::lock_guard lock(mutex_);
  if (index < 0 || index >= static_cast<int>(calls_.size()))
    throw std::out_of_range("There is no such call in the record. ");
  return calls_[index];
}

bool CallRecord::isEnabled() const {
  const std::lock_guard lock(mutex_);
  return enabled_;
}

}  // namespace oct::simulator
